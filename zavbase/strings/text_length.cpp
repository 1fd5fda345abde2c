#include <zavbase/strings/text_length_internal.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace zav_text {

namespace {

// Volatile, or the compiler would say that no allocation has this size.
const volatile size_t refusedSize = SIZE_MAX - 64;

} // namespace

void Refuse() {
    ::operator delete(::operator new(refusedSize));
    std::abort();
}

unsigned LengthOf(const char* p) { return p ? Checked(std::strlen(p)) : 0; }

} // namespace zav_text
