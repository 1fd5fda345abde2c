#include <zavbase/platform/shared_lib.h>

#include <cstdio>
#include <cstring>
#include <string>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/os/module.h>

// The record's base link is the root, although the class is a collectable object.
ZAV_DEFINE_CLASS(ZAV_SharedLib, ZAV_Object)

using zav_os::ModuleError;

namespace {

const unsigned short fileNotFound = 1, invalidFile = 2;
const uint32_t absent = 2;

const char* Text(ZAV_SystemString& s) { return s.GetSystemString(); }

[[noreturn]] void Throw(unsigned short code, ZAV_SystemString& path, const ModuleError& error) {
    ZAV_ThrowFileException(code, error.mNumber, {Text(path), error.mReason});
}

void* SearchModule(const char* folder, const char* name, const char* path, ModuleError& error) {
    void* module = zav_os::FindModuleIn(folder, name, error);
    if (!module) module = zav_os::OpenModule(path, error);
    if (!module) module = zav_os::FindModule(name, error);
    return module;
}

} // namespace

ZAV_SharedLib::ZAV_SharedLib()
    : mLoaded(B_FALSE), mModule(nullptr), mCreateFn(nullptr), mFreeFn(nullptr), mGetI18nDefsFn(nullptr) {}

ZAV_SharedLib::ZAV_SharedLib(const ZAV_SystemString& name, const ZAV_SystemString& directory)
    : ZAV_SharedLib() {
    mName = name;
    mDirectory = directory;
    AddDebugD(mDirectory);
    SetFullPath();
}

ZAV_SharedLib::ZAV_SharedLib(const ZAV_SharedLib& other) : ZAV_CltObject(other), mModule(nullptr) {
    *this = other;
}

ZAV_SharedLib& ZAV_SharedLib::operator=(const ZAV_SharedLib& other) {
    if (this == &other) return *this;
    // The new reference first: releasing the old one may be what would unload the module.
    void* module = other.mModule ? zav_os::RetainModule(other.mModule) : nullptr;
    Release();
    mName = other.mName;
    mDirectory = other.mDirectory;
    mFullPath = other.mFullPath;
    mLoaded = other.mLoaded;
    mModule = module;
    mCreateFn = other.mCreateFn;
    mFreeFn = other.mFreeFn;
    mGetI18nDefsFn = other.mGetI18nDefsFn;
    if (other.mModule && !module) Release();
    return *this;
}

ZAV_SharedLib::~ZAV_SharedLib() { Release(); }

void ZAV_SharedLib::Load(const ZAV_SystemString& name, const ZAV_SystemString& directory) {
    mName = name;
    AddDebugD(mName);
    mDirectory = directory;
    Load();
}

void ZAV_SharedLib::Load() {
    SetFullPath();
    if (mLoaded || LoadStatic()) return;
    ModuleError error;
    void* module = SearchModule(Text(mDirectory), Text(mName), Text(mFullPath), error);
    if (!module) Throw(fileNotFound, mFullPath, error);
    Hold(module);
}

void ZAV_SharedLib::LoadStrict() {
    SetFullPath();
    if (mLoaded || LoadStatic()) return;
    ModuleError error{absent};
    const char* path = Text(mFullPath);
    void* module = zav_os::IsAbsolutePath(path) ? zav_os::OpenModule(path, error) : nullptr;
    if (!module) Throw(fileNotFound, mFullPath, error);
    Hold(module);
}

boolean_t ZAV_SharedLib::IsLoaded() const { return mLoaded; }

void ZAV_SharedLib::SetFullPath() {
    std::string path = Text(mDirectory);
    if (!path.empty()) path += zav_os::pathSeparator;
    path += Text(mName);
    path += zav_os::moduleExtension;
    mFullPath.Set(path.c_str(), B_FALSE);
}

ZAV_SystemString& ZAV_SharedLib::GetFullPath() { return mFullPath; }

void ZAV_SharedLib::AddDebugD(ZAV_SystemString&) {}

ZAV_Object* ZAV_SharedLib::CreateObjectInstance(unsigned short id) { return mCreateFn(id); }
void ZAV_SharedLib::FreeObjectInstance(ZAV_Object* obj) { mFreeFn(obj); }

void ZAV_SharedLib::GetI18nDefs(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs) {
    mGetI18nDefsFn(dict, paramDefs, baseDefs);
}

void ZAV_SharedLib::Release() {
    if (mModule) zav_os::CloseModule(mModule);
    mModule = nullptr;
    mCreateFn = nullptr;
    mFreeFn = nullptr;
    mLoaded = B_FALSE;
}

boolean_t ZAV_SharedLib::LoadStatic() {
    if (!std::strstr(Text(mName), "_static_dll")) return B_FALSE;
    const ZAV_StaticDll* module = ZAV_StaticDll::GetStaticDll(Text(mName));
    if (!module) Throw(invalidFile, mFullPath, {0, "no module of this name is linked in"});
    mCreateFn = module->CreateFn();
    mFreeFn = module->FreeFn();
    mGetI18nDefsFn = module->I18nDefsFn();
    if (!mCreateFn || !mFreeFn || !mGetI18nDefsFn)
        Throw(invalidFile, mFullPath, {0, "the linked-in module lacks an entry point"});
    mLoaded = B_TRUE;
    return B_TRUE;
}

void ZAV_SharedLib::Hold(void* module) {
    // One that an earlier attempt left here for want of an entry point.
    Release();
    mModule = module;
    mCreateFn = reinterpret_cast<ZAV_CreateObjectFn>(Entry("CreateObjectInstance"));
    mFreeFn = reinterpret_cast<ZAV_FreeObjectFn>(Entry("FreeObjectInstance"));
    mGetI18nDefsFn = reinterpret_cast<ZAV_GetI18nDefsFn>(Entry("GetI18nDefs"));
    mLoaded = B_TRUE;
}

void* ZAV_SharedLib::Entry(const char* name) {
    ModuleError error;
    void* entry = zav_os::FindSymbol(mModule, name, error);
    std::snprintf(error.mReason, sizeof error.mReason, "no entry point \"%s\"", name);
    if (!entry) Throw(invalidFile, mFullPath, error);
    return entry;
}
