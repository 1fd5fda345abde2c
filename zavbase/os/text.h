#ifndef ZAVBASE_OS_TEXT_H
#define ZAVBASE_OS_TEXT_H

#include <cstdint>

namespace zav_os {

/// Text of a code page to and from 16-bit Unicode. Code page 0 is the platform's default, 65001 UTF-8; the
/// numbers are those of Windows. Sources end at their NUL. `room` counts destination units, for the
/// terminator too; *units receives those written before it.
///
/// Both return 0 or, with an empty result, the system's error number: kTextNoRoom when the destination is too
/// small, kTextNoCodePage for a number that the system does not know. What the source's code page does not
/// define never fails.
constexpr uint32_t kTextNoRoom = 122;
constexpr uint32_t kTextNoCodePage = 87;

uint32_t TextToUcs(int32_t codePage, const char* src, uint16_t* dst, long room, long* units);
/// *replaced tells whether a character that the code page lacks became "?".
uint32_t UcsToText(int32_t codePage, const uint16_t* src, char* dst, long room, long* units, bool* replaced);

} // namespace zav_os

#endif
