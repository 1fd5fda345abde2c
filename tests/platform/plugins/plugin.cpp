// A plug-in module; built with a macro that gives an entry point another name, one that lacks it.

#include <ostream>
#include <stdexcept>

#include <zavbase/foundation/exception.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/platform/static_dll.h>
#include <zavbase/values/value_dict.h>

#if defined(_WIN32)
#define PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

class Sample : public ZAV_Object {
    ZAV_DECLARE_CLASS(Sample)

public:
    inline static int theCount = 0;
    Sample() { ++theCount; }
    ~Sample() override { --theCount; }
    void PrintOn(std::ostream& os) override { os << PLUGIN_NAME << " with " << theCount; }
};
ZAV_DEFINE_CLASS(Sample, ZAV_Object)

/// Registered while this module is in the process: so a test sees when the system really lets it go.
ZAV_StaticDll thePresence(PLUGIN_NAME " is loaded", nullptr, nullptr, nullptr);

} // namespace

/// 1 makes an object; 2 throws an exception object of the library, 3 one of C++; anything else makes none.
PLUGIN_EXPORT ZAV_Object* CreateObjectInstance(unsigned short id) {
    if (id == 2) ZAV_ThrowFileException(6, 77);
    if (id == 3) throw std::runtime_error(PLUGIN_NAME);
    return id == 1 ? new Sample : nullptr;
}

PLUGIN_EXPORT void FreeObjectInstance(ZAV_Object* obj) { delete obj; }

PLUGIN_EXPORT void GetI18nDefs(ZAV_Object* dict, boolean_t, boolean_t baseDefs) {
    if (baseDefs) ZAV_I18nDef2Dict(static_cast<ZAV_UValDict*>(dict), "SAMPLE_NAME", PLUGIN_NAME);
}
