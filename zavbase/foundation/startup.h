#ifndef ZAVBASE_FOUNDATION_STARTUP_H
#define ZAVBASE_FOUNDATION_STARTUP_H

#include <zavbase/foundation/types.h>

/// The platform the process runs on. The library asks the system once, when it is loaded; the answers below
/// read that record. The record is written without a lock: call SetRuntimeOSVersion again only while no other
/// thread asks.

/// Fills the platform record and traces it through the tracer "BASE" at level 0x10 (at 0x1 when the system
/// does not tell; the record then keeps what it held, zeros at load, so that ZAV_Win32s is true). The library
/// calls it when it is loaded, when no tracer speaks yet; a host calls it again to see the lines.
///
/// On systems other than Windows the record says platform 2, version 5.0, and the service-pack text names the
/// system: such a host is told to expect what the NT family offers.
ZAV_API void SetRuntimeOSVersion(void);

ZAV_API boolean_t ZAV_Win32s(void); ///< platform id 0; also the answer when the system did not tell
ZAV_API boolean_t ZAV_Win95(void);  ///< platform id 1, version 4.0 to 4.9
ZAV_API boolean_t ZAV_Win98(void);  ///< platform id 1, version 4.10 and later minor versions
ZAV_API boolean_t ZAV_WinNT4(void); ///< platform id 2, version 4
ZAV_API boolean_t ZAV_WinNT5(void); ///< platform id 2, every version after 4

#endif
