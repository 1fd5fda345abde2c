#ifndef ZAVBASE_VALUES_NESTING_INTERNAL_H
#define ZAVBASE_VALUES_NESTING_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include <zavbase/values/value_dict.h>

/// How many dictionaries a key used as a path puts around its value.
uint32_t ZAV_LevelsOfKey(const char* key, size_t length);

/// The reason that an exception tells for what nests deeper.
inline constexpr char ZAV_TOO_DEEP[] = "dictionaries nest too deep";

/// Whether dictionaries nest at most `limit` deep, the top counting 1, as the readers count; 0 means any
/// depth. With `pathKeys` a key counts each of its levels, as in a text.
bool ZAV_FitsNesting(const ZAV_UValDict& top, unsigned long limit, bool pathKeys);

namespace zav_text {

/// ZAV_WriteUValTxt; false for what nests too deep. But unless `checkFirst` a tree that nests too deep may
/// have been written in part when the fail bit is set. The look over the tree is dear, in comparison; a small
/// tree does without it.
bool WriteTree(std::ostream& os, ZAV_UVal& value, int indent, bool checkFirst);

} // namespace zav_text

#endif
