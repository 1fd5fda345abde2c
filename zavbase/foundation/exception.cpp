#include <zavbase/foundation/exception.h>

#include <zavbase/foundation/exception_internal.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/os/error.h>
#include <zavbase/strings/byte_string.h>

#include <cstdio>
#include <new>

ZAV_DEFINE_CLASS(ZAV_Exception, ZAV_Object)
ZAV_DEFINE_CLASS(ZAV_MemoryException, ZAV_Exception)
ZAV_DEFINE_CLASS(ZAV_FileException, ZAV_Exception)
ZAV_DEFINE_CLASS(ZAV_ExitException, ZAV_Exception)

ZAV_Exception::ZAV_Exception() : ZAV_Exception(B_TRUE) {}

// An exception whose memory was taken back without its destructor may have left something at this address.
ZAV_Exception::ZAV_Exception(boolean_t deletable) : mDeletable(deletable), mDeleted(B_FALSE) {
    ZAV_DropExceptionContext(this);
}

ZAV_Exception::ZAV_Exception(const ZAV_Exception& other)
    : ZAV_Object(other), mDeletable(other.mDeletable), mDeleted(other.mDeleted) {
    ZAV_CopyExceptionContext(this, &other);
}

ZAV_Exception& ZAV_Exception::operator=(const ZAV_Exception& other) {
    mDeletable = other.mDeletable;
    mDeleted = other.mDeleted;
    ZAV_CopyExceptionContext(this, &other);
    return *this;
}

ZAV_Exception::~ZAV_Exception() { ZAV_DropExceptionContext(this); }

void ZAV_Exception::PrintOn(std::ostream& os) {
    ZAV_String text;
    os << ToString(text);
}

void ZAV_Exception::DumpOn(std::ostream&) {}

ZAV_String& ZAV_Exception::ToString(ZAV_String& s) const {
    s += "Base exception";
    return s;
}

void ZAV_Exception::Delete() {
    if (mDeletable <= 0) return;
    mDeleted = B_TRUE;
    delete this;
}

ZAV_MemoryException::ZAV_MemoryException() {}
ZAV_MemoryException::ZAV_MemoryException(boolean_t deletable) : ZAV_Exception(deletable) {}
ZAV_MemoryException::ZAV_MemoryException(const ZAV_MemoryException& other) = default;
ZAV_MemoryException::~ZAV_MemoryException() {}

ZAV_String& ZAV_MemoryException::ToString(ZAV_String& s) const {
    s += "Memory exception: ";
    return s;
}

ZAV_FileException::ZAV_FileException() : ZAV_FileException(0, 0) {}
ZAV_FileException::ZAV_FileException(unsigned short code, unsigned long osError)
    : mCode(code), mOsError(static_cast<zav_ulong32>(osError)) {}
ZAV_FileException::ZAV_FileException(const ZAV_FileException& other) = default;
ZAV_FileException::~ZAV_FileException() {}

ZAV_String& ZAV_FileException::ToString(ZAV_String& s) const {
    static const char* const names[] = {"NoError",     "FileNotFound",  "InvalidFile", "OpenRdError",
                                        "OpenWrError", "OpenRdWrError", "ReadError",   "WriteError",
                                        "SeekError",   "TellError",     "LockError",   "Unknown"};
    constexpr unsigned count = sizeof names / sizeof *names;
    s += "File exception: ";
    s += mCode < count ? names[mCode] : "\v"; // a vertical tab is what callers know for other codes
    return s;
}

ZAV_ExitException::ZAV_ExitException() {}
ZAV_ExitException::ZAV_ExitException(const ZAV_ExitException& other) = default;
ZAV_ExitException::~ZAV_ExitException() {}

ZAV_String& ZAV_ExitException::ToString(ZAV_String& s) const {
    s += "Exit exception: ";
    return s;
}

// Made in place by the first throw, and for good: throwing it takes no memory, at any time.
ZAV_MemoryException* ZAV_StaticMemoryException() {
    alignas(ZAV_MemoryException) static unsigned char storage[sizeof(ZAV_MemoryException)];
    static ZAV_MemoryException* const exception = new (storage) ZAV_MemoryException(B_FALSE);
    return exception;
}

static ZAV_ProcessHooks hooks(
    ZAV_ProcessHooks::kMade, [] { ZAV_StaticMemoryException(); }, nullptr, nullptr);

void ZAV_ThrowMemoryException() { throw ZAV_StaticMemoryException(); }

void ZAV_ThrowFileException(unsigned short code, unsigned long osError) {
    throw new (std::nothrow) ZAV_FileException(code, osError);
}

void ZAV_ThrowFileException(unsigned short code, unsigned long osError, const ZAV_ExceptionContext& known) {
    ZAV_ThrowKnown<ZAV_FileException>(known, code, osError);
}

void ZAV_ThrowExitException() { throw new (std::nothrow) ZAV_ExitException(); }

const char* GetErrorString(unsigned long osError) {
    static char text[80];
    uint32_t code = static_cast<uint32_t>(osError);
    if (!zav_os::ErrorText(code, text, sizeof text))
        std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(code));
    return text;
}

namespace {

thread_local ZAV_EXCEPTION_LINK* ownHead = nullptr;
thread_local ZAV_EXCEPTION_LINK** namedHead = nullptr;

} // namespace

ZAV_EXCEPTION_LINK*& ZAV_CurrentLinkHead() { return namedHead ? *namedHead : ownHead; }

void ZAV_SetThreadLinkHead(ZAV_EXCEPTION_LINK** head) { namedHead = head; }

ZAV_EXCEPTION_LINK::ZAV_EXCEPTION_LINK() : mNext(ZAV_CurrentLinkHead()), mException(nullptr) {
    ZAV_CurrentLinkHead() = this;
}

ZAV_EXCEPTION_LINK::~ZAV_EXCEPTION_LINK() { ZAV_TryCleanup(); }

void ZAV_TryCleanup() {
    ZAV_EXCEPTION_LINK*& head = ZAV_CurrentLinkHead();
    if (head->mException) head->mException->Delete();
    head = head->mNext;
}

void ZAV_ThrowLastCleanup() {
    if (ZAV_EXCEPTION_LINK* head = ZAV_CurrentLinkHead()) head->mException = nullptr;
}
