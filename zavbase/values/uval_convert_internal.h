#ifndef ZAVBASE_VALUES_UVAL_CONVERT_INTERNAL_H
#define ZAVBASE_VALUES_UVAL_CONVERT_INTERNAL_H

#include <cstdint>
#include <type_traits>

/// A real as an integer: truncated toward zero to 64 bits. What does not fit, and not-a-number, gives the
/// machine's "integer indefinite", the lowest 64-bit number, whose low 32 bits are 0.
inline int64_t ZAV_TruncateReal(double value) {
    const double limit = 9223372036854775808.0; // 2^63
    return value >= -limit && value < limit ? static_cast<int64_t>(value) : INT64_MIN;
}

/// The ordinary conversion between two of the element types and the argument types of the accessors, defined
/// for every value and the same on every platform. A char is signed. Wide integers (long on some platforms)
/// count with their low 32 bits.
template <class To, class From>
inline To ZAV_ConvertNumber(From value) {
    using Narrow = std::conditional_t<std::is_signed_v<To>, int32_t, uint32_t>;
    if constexpr (std::is_floating_point_v<To> && std::is_floating_point_v<From>)
        return static_cast<To>(value);
    else if constexpr (std::is_floating_point_v<From>)
        return static_cast<To>(static_cast<Narrow>(ZAV_TruncateReal(value)));
    else if constexpr (std::is_same_v<From, char>)
        return ZAV_ConvertNumber<To>(static_cast<signed char>(value));
    else if constexpr (std::is_floating_point_v<To>)
        return static_cast<To>(
            static_cast<std::conditional_t<std::is_signed_v<From>, int32_t, uint32_t>>(value));
    else
        return static_cast<To>(static_cast<Narrow>(value));
}

#endif
