#ifndef ZAVBASE_PLATFORM_STATIC_DLL_H
#define ZAVBASE_PLATFORM_STATIC_DLL_H

#include <zavbase/collections/link.h>
#include <zavbase/collections/linked_list.h>
#include <zavbase/strings/byte_string.h>

/// The entry points of a plug-in module, as plain functions with C linkage:
///
///     extern "C" ZAV_Object* CreateObjectInstance(unsigned short id);
///     extern "C" void FreeObjectInstance(ZAV_Object* obj);
///     extern "C" void GetI18nDefs(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs);
///
/// GetI18nDefs adds the module's message definitions to `dict`, which is a ZAV_UValDict.
typedef ZAV_Object* (*ZAV_CreateObjectFn)(unsigned short id);
typedef void (*ZAV_FreeObjectFn)(ZAV_Object* obj);
typedef void (*ZAV_GetI18nDefsFn)(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs);

/// A module that is linked into the program: normally a static object in the module's source,
///
///     static ZAV_StaticDll theModule("shapes_static_dll", CreateObjectInstance, FreeObjectInstance,
///                                    GetI18nDefs);
///
/// which ZAV_SharedLib then finds by that name. The name must contain "_static_dll" to be looked for here.
///
/// The registry holds the objects themselves and owns none of them. It is not locked: register before the
/// program starts threads (static construction does) and load modules from one thread at a time.
class ZAV_API ZAV_StaticDll : public ZAV_Link {
public:
    /// Stores the values and enters the registry, which the first module creates.
    ZAV_StaticDll(const char* name, ZAV_CreateObjectFn create, ZAV_FreeObjectFn free,
                  ZAV_GetI18nDefsFn definitions);
    /// A copy is not entered in the registry; assigning leaves both where they are.
    ZAV_StaticDll(const ZAV_StaticDll& other);
    ZAV_StaticDll& operator=(const ZAV_StaticDll& other);
    /// Leaves the registry; the last module that leaves destroys it.
    ~ZAV_StaticDll() override;

    /// The first registered module of exactly this name (case counts), or null.
    static ZAV_StaticDll* GetStaticDll(const char* name);

    const ZAV_String& Name() const { return mName; }
    ZAV_CreateObjectFn CreateFn() const { return mCreateFn; }
    ZAV_FreeObjectFn FreeFn() const { return mFreeFn; }
    ZAV_GetI18nDefsFn I18nDefsFn() const { return mGetI18nDefsFn; }

    /// All registered modules, in order of registration; null while there is none.
    static ZAV_LinkedList* theDLLRegistry;

private:
    ZAV_String mName;
    ZAV_CreateObjectFn mCreateFn;
    ZAV_FreeObjectFn mFreeFn;
    ZAV_GetI18nDefsFn mGetI18nDefsFn;
};

#endif
