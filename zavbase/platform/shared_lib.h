#ifndef ZAVBASE_PLATFORM_SHARED_LIB_H
#define ZAVBASE_PLATFORM_SHARED_LIB_H

#include <zavbase/collections/clt_object.h>
#include <zavbase/platform/static_dll.h>
#include <zavbase/strings/system_string.h>

/// A plug-in module: loaded from the file system or, when its name contains "_static_dll", taken from the
/// modules linked into the program (ZAV_StaticDll). Both are then used alike.
///
///     ZAV_SharedLib lib;
///     lib.Load(name, directory);                  // throws ZAV_FileException*
///     ZAV_Object* o = lib.CreateObjectInstance(1);
///     lib.FreeObjectInstance(o);                  // the module frees what it made
///     lib.Release();                              // after its last object is gone
///
/// Names are given without extension; the library adds the platform's own: ".dll" on Windows, ".so" on
/// Linux. Objects, functions and texts of a module must not be used after its release.
///
/// A ZAV_SharedLib belongs to one thread at a time. Load changes the current directory of the process for a
/// moment, which other threads see; LoadStrict does not.
class ZAV_API ZAV_SharedLib : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_SharedLib)

public:
    ZAV_SharedLib();
    /// Stores both and computes the full path; loads nothing.
    ZAV_SharedLib(const ZAV_SystemString& name, const ZAV_SystemString& directory);
    /// Copies share the module: each holds it, and it goes when the last of them releases it. Should the
    /// system refuse another hold, the copy is not loaded. Assigning releases what the target held.
    ZAV_SharedLib(const ZAV_SharedLib& other);
    ZAV_SharedLib& operator=(const ZAV_SharedLib& other);
    ~ZAV_SharedLib() override;

    /// Sets the names, then Load(). On an object that is already loaded only the names change.
    void Load(const ZAV_SystemString& name, const ZAV_SystemString& directory);

    /// Loads the module; does nothing when it is loaded. A module of the file system is sought in three
    /// steps, the first success ending the search:
    ///  1. by its bare name with the module's directory as the current one (the former is restored; left
    ///     out when there is no way back to that, e.g. a private folder of another user);
    ///  2. by its full path;
    ///  3. by its bare name with the process's current directory.
    /// "By bare name" is the system loader's own search, which adds the extension unless the name has a ".";
    /// on Linux the current directory is searched first, since the loader there leaves it out.
    ///
    /// Throws a ZAV_FileException*: code 1 (FileNotFound) when no step succeeds; code 2 (InvalidFile) when an
    /// entry point is missing (the file stays held until Release), and for an unknown or incomplete linked-in
    /// module, then with error number 0. The error number is the system's; on Linux it is 2 for an absent
    /// file, 8 for one that is no module and 22 for a missing entry point.
    void Load();

    /// The careful way: only the full path is tried, it must be absolute, and the current directory is
    /// neither used nor changed. A relative path throws code 1 with the number 2. Linked-in modules load as
    /// with Load.
    void LoadStrict();

    boolean_t IsLoaded() const;

    /// Computes the full path: directory, separator, name and extension, or just name and extension when the
    /// directory is empty.
    void SetFullPath();
    /// The path of the last SetFullPath, Load or naming constructor; lent.
    ZAV_SystemString& GetFullPath();
    /// A hook for hosts with special names of debug builds; leaves the text as it is.
    void AddDebugD(ZAV_SystemString& name);

    /// The module's entry points, called without any test: only on a loaded module. Exceptions thrown by the
    /// module pass through; catch and delete them before Release, since their code lives in the module.
    ZAV_Object* CreateObjectInstance(unsigned short id);
    void FreeObjectInstance(ZAV_Object* obj);
    void GetI18nDefs(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs);

    /// Lets the module go; does nothing when none is held. The pointer to the definitions entry is left as it
    /// was: GetI18nDefs still works for a linked-in module, and for no other.
    void Release();

private:
    boolean_t LoadStatic();
    void Hold(void* module);
    void* Entry(const char* name);

    ZAV_SystemString mName;
    ZAV_SystemString mDirectory;
    ZAV_SystemString mFullPath;
    boolean_t mLoaded;
    void* mModule;
    ZAV_CreateObjectFn mCreateFn;
    ZAV_FreeObjectFn mFreeFn;
    ZAV_GetI18nDefsFn mGetI18nDefsFn;
};

#endif
