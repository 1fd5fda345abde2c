#ifndef FULL_HOST_GAUGE_H
#define FULL_HOST_GAUGE_H

#include <zavbase/foundation/object.h>

/// What the host and its plug-in modules agree on: this class, and the numbers by which a module makes its
/// kinds of gauges. The methods are virtual, so the host calls into the module without being linked to it.
class Gauge : public ZAV_Object {
public:
    /// The reading at the n-th step. Throws a ZAV_ErrorException* when the gauge fails.
    virtual double Read(unsigned step) = 0;
};

enum GaugeKind : unsigned short { BAROMETER = 1, THERMOMETER = 2 };

/// The three entry points of the gauges, under names of their own, for a program that links them in.
ZAV_Object* CreateGauge(unsigned short kind);
void FreeGauge(ZAV_Object* gauge);
void GetGaugeDefs(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs);

#endif
