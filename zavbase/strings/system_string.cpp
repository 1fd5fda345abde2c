#include <zavbase/strings/system_string.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <ostream>

#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/strings/text_encoding.h>

ZAV_DEFINE_CLASS(ZAV_SystemString, ZAV_Object)

namespace {

// Lives as long as the process, so that static objects of a host may still convert while they go.
ZAV_TextEncodingConverter& converter() {
    static ZAV_TextEncodingConverter& theConverter = *new ZAV_TextEncodingConverter;
    return theConverter;
}

ZAV_ProcessHooks hooks(
    ZAV_ProcessHooks::kMade, [] { converter(); }, nullptr, [] { delete &converter(); });

// A room that a long cannot tell: what does not fit in the rest fails.
long longOf(size_t room) { return static_cast<long>((std::min)(room, size_t{LONG_MAX})); }

} // namespace

int ZAV_SystemString::Initialize(const char* name) { return converter().Initialize(name); }

void ZAV_SystemString::Cleanup() {}

ZAV_SystemString::ZAV_SystemString() : mUtfString(nullptr) {}

ZAV_SystemString::ZAV_SystemString(const ZAV_SystemString& s)
    : ZAV_Object(s), mString(s.mString), mUtfString(nullptr) {}

ZAV_SystemString::ZAV_SystemString(const char* s) : mString(s), mUtfString(nullptr) {}

ZAV_SystemString::ZAV_SystemString(const ZAV_String& s) : mString(s), mUtfString(nullptr) {}

ZAV_SystemString::ZAV_SystemString(const ZAV_UTFString& u) : mUtfString(nullptr) { Set(u); }

ZAV_SystemString::ZAV_SystemString(const char* s, boolean_t isUtf) : mUtfString(nullptr) { Set(s, isUtf); }

ZAV_SystemString::~ZAV_SystemString() { delete mUtfString; }

ZAV_SystemString& ZAV_SystemString::operator=(const ZAV_SystemString& s) {
    Set(s);
    return *this;
}

int ZAV_SystemString::Set(const ZAV_SystemString& s) { return Set(s.mString); }

int ZAV_SystemString::Set(const char* s) {
    mString = s;
    dropUtf();
    return 0;
}

int ZAV_SystemString::Set(const ZAV_String& s) {
    mString = s;
    dropUtf();
    return 0;
}

// The text is read before the old UTF-8 form goes: it may be that form.
int ZAV_SystemString::Set(const ZAV_UTFString& u) {
    const size_t room = 4 * size_t{u.Length()} + 1;
    const std::unique_ptr<char[]> text(new char[room]);
    const int result = converter().Utf2Text(u, text.get(), longOf(room));
    mString = text.get();
    dropUtf();
    return result;
}

int ZAV_SystemString::Set(const char* s, boolean_t isUtf) { return isUtf ? Set(ZAV_UTFString(s)) : Set(s); }

void ZAV_SystemString::dropUtf() {
    delete mUtfString;
    mUtfString = nullptr;
}

ZAV_UTFString& ZAV_SystemString::GetUtfString() {
    if (mUtfString == nullptr) {
        const size_t room = 4 * size_t{mString.Size()} + 1;
        const std::unique_ptr<char[]> utf(new char[room]);
        converter().Text2Utf(mString, utf.get(), longOf(room));
        mUtfString = new ZAV_UTFString(utf.get());
    }
    return *mUtfString;
}

const ZAV_UTFString& ZAV_SystemString::GetUtfString() const {
    return const_cast<ZAV_SystemString*>(this)->GetUtfString();
}

void ZAV_SystemString::PrintOn(std::ostream& os) { os << mString; }
