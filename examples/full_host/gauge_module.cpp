// What makes a shared library a plug-in module: the three entry points, exported without name mangling.

#include "gauge.h"

#if defined(_WIN32)
#define MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

MODULE_EXPORT ZAV_Object* CreateObjectInstance(unsigned short id) { return CreateGauge(id); }
MODULE_EXPORT void FreeObjectInstance(ZAV_Object* obj) { FreeGauge(obj); }
MODULE_EXPORT void GetI18nDefs(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs) {
    GetGaugeDefs(dict, paramDefs, baseDefs);
}
