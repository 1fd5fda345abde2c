#ifndef ZAVBASE_PLATFORM_NUMERIC_H
#define ZAVBASE_PLATFORM_NUMERIC_H

#include <type_traits>

#include <zavbase/foundation/types.h>

/// Exponentials, and conversions between intensities and optical densities: density D passes the fraction
/// 10^-D of the light. Each function exists for float and double; nothing is checked, infinities and not a
/// number pass through.

/// 10 to the power x.
ZAV_API float ZAV_Exp10(float x);
ZAV_API double ZAV_Exp10(double x);

/// x to the power y by way of the logarithm: not a number for a negative x, except that y = 1 gives x itself.
ZAV_API float ZAV_Pow(float x, float y);
ZAV_API double ZAV_Pow(double x, double y);

/// The density of an intensity: 0 gives Dmax, Imax gives Dmin; p (above 0) shapes the curve between, 1 is the
/// plain logarithm.
ZAV_API float ZAV_Int2Dens(float I, float Imax, float Dmin, float Dmax, float g, float p);
ZAV_API double ZAV_Int2Dens(double I, double Imax, double Dmin, double Dmax, double g, double p);

/// The inverse for the same parameters.
ZAV_API float ZAV_Dens2Int(float D, float Imax, float Dmin, float Dmax, float g, float p);
ZAV_API double ZAV_Dens2Int(double D, double Imax, double Dmin, double Dmax, double g, double p);

/// The intensity after a change of the gamma.
ZAV_API float ZAV_IntGamma(float I, float Imax, float Dmin, float Dmax, float g, float gamma);
ZAV_API double ZAV_IntGamma(double I, double Imax, double Dmin, double Dmax, double g, double gamma);

/// The same for `n` intensities; `in` and `out` may be the same array.
ZAV_API void ZAV_IntGamma(int n, const float* in, float* out, float Imax, float Dmin, float Dmax, float g,
                          float gamma);
ZAV_API void ZAV_IntGamma(int n, const double* in, double* out, double Imax, double Dmin, double Dmax,
                          double g, double gamma);

/// (1 - 10^-D) N, truncated; N and the result are 32 bits wide. A product outside 0 to 2^32 - 1 is taken
/// modulo 2^32, one outside 64 bits is 0.
ZAV_API unsigned long ZAV_Dens2InvInt(double D, unsigned long N);

/// B_FALSE: files and memory are little-endian on all platforms of the library.
ZAV_API boolean_t ZAV_BigEndian();

/// Whole numbers, and numbers of both types beside each other, are computed as double.
template <bool IsRightCount, class... X>
using ZAV_DoubleOf = std::enable_if_t<IsRightCount && (std::is_arithmetic_v<X> && ...), double>;

template <class... X>
ZAV_DoubleOf<sizeof...(X) == 1, X...> ZAV_Exp10(X... x) {
    return ZAV_Exp10(static_cast<double>(x)...);
}
template <class... X>
ZAV_DoubleOf<sizeof...(X) == 2, X...> ZAV_Pow(X... x) {
    return ZAV_Pow(static_cast<double>(x)...);
}
template <class... X>
ZAV_DoubleOf<sizeof...(X) == 6, X...> ZAV_Int2Dens(X... x) {
    return ZAV_Int2Dens(static_cast<double>(x)...);
}
template <class... X>
ZAV_DoubleOf<sizeof...(X) == 6, X...> ZAV_Dens2Int(X... x) {
    return ZAV_Dens2Int(static_cast<double>(x)...);
}
template <class... X>
ZAV_DoubleOf<sizeof...(X) == 6, X...> ZAV_IntGamma(X... x) {
    return ZAV_IntGamma(static_cast<double>(x)...);
}

#endif
