#ifndef ZAVBASE_VALUES_CONFIG_H
#define ZAVBASE_VALUES_CONFIG_H

#include <cstddef>

#include <zavbase/strings/system_string.h>

class ZAV_UVal;
class ZAV_UValDict;

/// The configuration: one dictionary a process, from which any code reads its settings by three texts that
/// together are a path: two dictionaries and the variable. Each may hold several keys, or be empty.
///
///     ZAV_ConfigInit("instrument.cfg");
///     long port = ZAV_ConfigGet("HOST", "NETWORK", "PORT", 4711);
///
/// A reader gives its default when the variable is missing (traced at level 0x10), is of another family
/// (0x01) or when there is no configuration (0x02). Texts that are returned, and values, belong to the
/// configuration and live until it changes. Not locked: set it up at start-up, then any thread may read.

/// Reads a text or binary file and merges it into the configuration, which is created when there is none.
/// When reading fails, a line is traced (level 0x04), the configuration keeps what it had (nothing, if it was
/// just created), and the exception goes on. After success level 0x08 shows the whole configuration.
ZAV_API void ZAV_ConfigInit(const ZAV_SystemString& file);
/// Replaces the configuration by a copy of `dict`, which may be (part of) the configuration itself.
ZAV_API void ZAV_ConfigInit(const ZAV_UValDict& dict);
ZAV_API void ZAV_ConfigCleanup();

/// The configuration itself; null when there is none.
ZAV_API ZAV_UValDict* ZAV_ConfigGet();
/// A variable of any family, or null.
ZAV_API ZAV_UVal* ZAV_ConfigGet(const char* a, const char* b, const char* c);

/// Element 0 of a number.
ZAV_API long ZAV_ConfigGet(const char* a, const char* b, const char* c, long deflt);
ZAV_API float ZAV_ConfigGet(const char* a, const char* b, const char* c, float deflt);
ZAV_API double ZAV_ConfigGet(const char* a, const char* b, const char* c, double deflt);
ZAV_API int ZAV_ConfigGet(const char* a, const char* b, const char* c, int deflt);
ZAV_API unsigned int ZAV_ConfigGet(const char* a, const char* b, const char* c, unsigned int deflt);
ZAV_API unsigned long ZAV_ConfigGet(const char* a, const char* b, const char* c, unsigned long deflt);
ZAV_API long long ZAV_ConfigGet(const char* a, const char* b, const char* c, long long deflt);
ZAV_API unsigned long long ZAV_ConfigGet(const char* a, const char* b, const char* c,
                                         unsigned long long deflt);
ZAV_API boolean_t ZAV_ConfigGet(const char* a, const char* b, const char* c, boolean_t deflt);

/// Element 0 of a string; into `out` it is copied, with any NUL bytes it holds.
ZAV_API const char* ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt);
ZAV_API const char* ZAV_ConfigGet(const char* a, const char* b, const char* c, std::nullptr_t deflt);
ZAV_API void ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt, ZAV_String* out);
ZAV_API void ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt,
                           ZAV_UTFString* out);
/// The same as system text. A variable that is not a string leaves `out` as it is, without a trace line.
ZAV_API void ZAV_ConfigGet(const char* a, const char* b, const char* c, const ZAV_String& deflt,
                           ZAV_SystemString* out);
ZAV_API void ZAV_ConfigGet(const char* a, const char* b, const char* c, const ZAV_UTFString& deflt,
                           ZAV_SystemString* out);
ZAV_API void ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt,
                           ZAV_SystemString* out);

/// The number of elements of a string, 1 for a scalar; 0 for anything else, numbers included.
ZAV_API long ZAV_ConfigGetDimension(const char* a, const char* b, const char* c);
/// Element `i` of a string; a scalar has element 0 only. An index outside gives the default.
ZAV_API const char* ZAV_ConfigGetAt(const char* a, const char* b, const char* c, long i, const char* deflt);
ZAV_API void ZAV_ConfigGetAt(const char* a, const char* b, const char* c, long i, const char* deflt,
                             ZAV_String* out);
ZAV_API void ZAV_ConfigGetAt(const char* a, const char* b, const char* c, long i, const char* deflt,
                             ZAV_UTFString* out);

/// Whether a string, or an element of an array of strings, equals `value` without regard to case.
ZAV_API boolean_t ZAV_IsConfigured(const char* a, const char* b, const char* c, const char* value);

#endif
