#include <zavbase/platform/static_dll.h>

#include <zavbase/collections/iterator.h>

// Made by the first module and not by a constructor of its own: modules of other source files register
// during static construction, in any order.
ZAV_LinkedList* ZAV_StaticDll::theDLLRegistry = nullptr;

ZAV_StaticDll::ZAV_StaticDll(const char* name, ZAV_CreateObjectFn create, ZAV_FreeObjectFn free,
                             ZAV_GetI18nDefsFn definitions)
    : mName(name), mCreateFn(create), mFreeFn(free), mGetI18nDefsFn(definitions) {
    if (!theDLLRegistry) theDLLRegistry = new ZAV_LinkedList;
    theDLLRegistry->Add(this);
}

// The link part stays apart: a copied link would be a second way into the list.
ZAV_StaticDll::ZAV_StaticDll(const ZAV_StaticDll& other)
    : ZAV_Link(), mName(other.mName), mCreateFn(other.mCreateFn), mFreeFn(other.mFreeFn),
      mGetI18nDefsFn(other.mGetI18nDefsFn) {}

ZAV_StaticDll& ZAV_StaticDll::operator=(const ZAV_StaticDll& other) {
    mName = other.mName;
    mCreateFn = other.mCreateFn;
    mFreeFn = other.mFreeFn;
    mGetI18nDefsFn = other.mGetI18nDefsFn;
    return *this;
}

ZAV_StaticDll::~ZAV_StaticDll() {
    if (!theDLLRegistry) return;
    theDLLRegistry->Remove(static_cast<const ZAV_Link*>(this));
    if (!theDLLRegistry->IsEmpty()) return;
    delete theDLLRegistry;
    theDLLRegistry = nullptr;
}

ZAV_StaticDll* ZAV_StaticDll::GetStaticDll(const char* name) {
    if (!theDLLRegistry) return nullptr;
    ZAV_Iterator it(theDLLRegistry);
    while (ZAV_CltObject* next = ++it) {
        ZAV_StaticDll* module = static_cast<ZAV_StaticDll*>(next);
        if (module->mName == name) return module;
    }
    return nullptr;
}
