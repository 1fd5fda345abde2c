#include <zavbase/platform/numeric.h>

#include <cmath>
#include <cstdint>

namespace {

double change(double I, double Imax, double Dmin, double Dmax, double g, double gamma, double black,
              double range) {
    const double D = ZAV_Int2Dens(I, Imax, Dmin, Dmax, g, 1.0);
    return Imax * (ZAV_Exp10(-D / gamma) - black) / range;
}

template <class Real>
void changeAll(int n, const Real* in, Real* out, Real Imax, Real Dmin, Real Dmax, Real g, Real gamma) {
    const double black = ZAV_Exp10(-double{Dmax} / gamma);
    const double range = ZAV_Exp10(-double{Dmin} / gamma) - black;
    for (int i = 0; i < n; ++i)
        out[i] = static_cast<Real>(change(in[i], Imax, Dmin, Dmax, g, gamma, black, range));
}

} // namespace

double ZAV_Exp10(double x) { return std::exp(std::log(10.0) * x); }

double ZAV_Pow(double x, double y) { return y == 1.0 ? x : std::exp(std::log(x) * y); }

double ZAV_Int2Dens(double I, double Imax, double Dmin, double Dmax, double g, double p) {
    return Dmax - g * std::log10(ZAV_Pow(I / Imax, p) * (ZAV_Exp10((Dmax - Dmin) / g) - 1.0) + 1.0);
}

double ZAV_Dens2Int(double D, double Imax, double Dmin, double Dmax, double g, double p) {
    const double part = (ZAV_Exp10((Dmax - D) / g) - 1.0) / (ZAV_Exp10((Dmax - Dmin) / g) - 1.0);
    return Imax * ZAV_Pow(part, 1.0 / p);
}

double ZAV_IntGamma(double I, double Imax, double Dmin, double Dmax, double g, double gamma) {
    double out;
    changeAll(1, &I, &out, Imax, Dmin, Dmax, g, gamma);
    return out;
}

void ZAV_IntGamma(int n, const double* in, double* out, double Imax, double Dmin, double Dmax, double g,
                  double gamma) {
    changeAll(n, in, out, Imax, Dmin, Dmax, g, gamma);
}

// The float forms compute in double and round once.
float ZAV_Exp10(float x) { return static_cast<float>(ZAV_Exp10(double{x})); }

float ZAV_Pow(float x, float y) { return static_cast<float>(ZAV_Pow(double{x}, double{y})); }

float ZAV_Int2Dens(float I, float Imax, float Dmin, float Dmax, float g, float p) {
    return static_cast<float>(
        ZAV_Int2Dens(double{I}, double{Imax}, double{Dmin}, double{Dmax}, double{g}, double{p}));
}

float ZAV_Dens2Int(float D, float Imax, float Dmin, float Dmax, float g, float p) {
    return static_cast<float>(
        ZAV_Dens2Int(double{D}, double{Imax}, double{Dmin}, double{Dmax}, double{g}, double{p}));
}

float ZAV_IntGamma(float I, float Imax, float Dmin, float Dmax, float g, float gamma) {
    float out;
    changeAll(1, &I, &out, Imax, Dmin, Dmax, g, gamma);
    return out;
}

void ZAV_IntGamma(int n, const float* in, float* out, float Imax, float Dmin, float Dmax, float g,
                  float gamma) {
    changeAll(n, in, out, Imax, Dmin, Dmax, g, gamma);
}

// The product is truncated to 64 bits and narrowed, which is defined for every D and what x86 code does.
unsigned long ZAV_Dens2InvInt(double D, unsigned long N) {
    const double product = (1.0 - std::pow(10.0, -D)) * static_cast<double>(static_cast<uint32_t>(N));
    if (!(std::fabs(product) < 9223372036854775808.0)) return 0;
    return static_cast<uint32_t>(static_cast<int64_t>(product));
}

boolean_t ZAV_BigEndian() { return B_FALSE; }
