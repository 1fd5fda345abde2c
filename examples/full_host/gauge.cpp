// The gauges themselves: compiled once into a plug-in module and once into the host.

#include "gauge.h"

#include <zavbase/foundation/error.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/values/value_dict.h>

namespace {

class Barometer : public Gauge {
public:
    double Read(unsigned step) override { return 1013.25 - 0.75 * step; }
};

/// Its sensor overheats at the third reading: an error with a detail of its own, in no language yet.
class Thermometer : public Gauge {
public:
    double Read(unsigned step) override {
        const double celsius = 21.5 + 20 * step;
        if (celsius > limit) {
            ZAV_Error tooHot("GAUGE_TOO_HIGH");
            tooHot.AddArg("<<value>>", celsius, "%.1f", ZAV_I18N_STRING);
            tooHot.AddArg("<<limit>>", limit, "%.0f", ZAV_I18N_STRING);
            ZAV_Error failed("GAUGE_FAILED");
            failed.AddArg("<<gauge>>", ZAV_I18nMsg("THERMOMETER_NAME"), ZAV_I18N_TAG);
            failed.AddArg("<<detail>>", tooHot, ZAV_I18N_SUBERROR);
            ZAV_ThrowErrorException(failed);
        }
        return celsius;
    }

private:
    static constexpr double limit = 60;
};

} // namespace

ZAV_Object* CreateGauge(unsigned short kind) {
    if (kind == BAROMETER) return new Barometer;
    if (kind == THERMOMETER) return new Thermometer;
    return nullptr;
}

// Whoever made an object deletes it: the two modules may use different heaps.
void FreeGauge(ZAV_Object* gauge) { delete gauge; }

void GetGaugeDefs(ZAV_Object* dict, boolean_t, boolean_t baseDefs) {
    ZAV_UValDict* defs = static_cast<ZAV_UValDict*>(dict);
    if (!defs || !baseDefs) return;
    ZAV_I18nDef2Dict(defs, "GAUGE_FAILED", "The <<gauge>> failed: <<detail>>");
    ZAV_I18nDef2Dict(defs, "GAUGE_TOO_HIGH", "the value <<value>> is above <<limit>>");
    ZAV_I18nDef2Dict(defs, "THERMOMETER_NAME", "thermometer");
}
