#include <zavbase/values/uval_text.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <new>
#include <string>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/foundation/tracer.h>
#include <zavbase/values/uval_text_check_internal.h>
#include <zavbase/values/uval_text_reader_internal.h>

namespace zav_text {

namespace {

constinit std::atomic<unsigned long> gNestingLimit{10000};
constinit thread_local ZAV_UValTextError gLastError = {0, 0, "", ""};

const char TOO_LONG_ERROR[] = "Text is longer than 2147483647 bytes";

} // namespace

void CopyFound(char (&to)[48], const char* found, const char* end) {
    size_t n = 0;
    for (; found < end && n < sizeof to - 1; ++n, ++found) {
        if (n > 0 && gChars.Is(*found, CHAR_BLANK | CHAR_DELIMITER) && *found != to[n - 1]) break;
        to[n] = *found >= 0x20 && *found < 0x7F ? *found : '?';
    }
    if (n == 0) n = static_cast<size_t>(std::snprintf(to, sizeof to, "end of input"));
    to[n] = '\0';
}

namespace {

// What is left of a stream, in one piece and with a NUL behind it.
class StreamText {
public:
    StreamText() : mData(nullptr), mSize(0), mRoom(0) {}
    ~StreamText() { std::free(mData); }
    StreamText(const StreamText&) = delete;
    StreamText& operator=(const StreamText&) = delete;

    void Take(std::istream& is);
    const char* Data() const { return mData ? mData : ""; }
    size_t Size() const { return mSize; }

private:
    void Reserve(size_t room);

    char* mData;
    size_t mSize;
    size_t mRoom;
};

void StreamText::Take(std::istream& is) {
    if (!is.good() || !is.rdbuf()) return;
    std::streambuf& source = *is.rdbuf();
    std::streamsize ready = source.in_avail();
    Reserve(ready > 0 ? static_cast<size_t>(ready) + 1 : 4096);
    for (;;) {
        std::streamsize got = source.sgetn(mData + mSize, static_cast<std::streamsize>(mRoom - mSize));
        mSize += static_cast<size_t>(got);
        if (mSize < mRoom) break;
        Reserve(mRoom + mRoom / 2 + 4096);
    }
    mData[mSize] = '\0';
    is.setstate(std::ios::eofbit);
}

void StreamText::Reserve(size_t room) {
    if (room > MOST_BYTES) FailReading(TOO_LONG_ERROR, Place(), mData, mData + mSize);
    char* data = static_cast<char*>(std::realloc(mData, room));
    if (!data) throw std::bad_alloc();
    mData = data;
    mRoom = room;
}

void ReadAll(std::istream& is, StreamText& text, ZAV_UVal*& result) {
    result = nullptr;
    ClearTextError();
    text.Take(is);
    result = Reader(text.Data(), text.Size()).Read();
}

} // namespace

void Place::Pass(char c) {
    bool isSecondOfPair = c == '\n' && mAfterReturn;
    mAfterReturn = c == '\r';
    if (c == '\n' || c == '\r') {
        if (!isSecondOfPair) ++mLine;
        mColumn = 1;
    } else {
        ++mColumn;
    }
}

Place Place::After(const char* text, const char* to) const {
    Place place = *this;
    while (text < to) place.Pass(*text++);
    return place;
}

void ClearTextError() { gLastError = {0, 0, "", ""}; }

void SetTextError(const char* message, Place place, const char* found, const char* foundEnd) {
    gLastError.mLine = place.mLine;
    gLastError.mColumn = place.mColumn;
    gLastError.mMessage = message;
    CopyFound(gLastError.mFound, found, foundEnd);
}

void FailReading(const char* message, Place place, const char* found, const char* foundEnd) {
    SetTextError(message, place, found, foundEnd);
    ZAV_BASE_TRACE(0x1, message);
    ZAV_ExceptionContext known;
    known.mReason = gLastError.mMessage;
    known.mFound = gLastError.mFound;
    known.mLine = gLastError.mLine;
    known.mColumn = gLastError.mColumn;
    ZAV_ThrowFileException(2, 0, known);
}

} // namespace zav_text

void ZAV_ReadUValTxt(std::istream& is, ZAV_UVal*& result) {
    zav_text::StreamText text;
    zav_text::ReadAll(is, text, result);
}

void ZAV_CheckUValTxt(std::istream& is, ZAV_UVal*& result, ZAV_UValTextRemarkFunc tell, void* context) {
    zav_text::StreamText text;
    zav_text::ReadAll(is, text, result);
    zav_text::Inspector(text.Data(), text.Size(), tell, context).Inspect();
}

void ZAV_ReadUValTxt(std::istream& is, ZAV_UVal*& result, ZAV_String name) {
    if (name.IsEmpty()) return ZAV_ReadUValTxt(is, result);
    result = nullptr;
    zav_text::ClearTextError();
    std::string text;
    zav_text::Place place;
    if (!zav_text::FindDictionary(is, name.Ptr(), name.Length(), text, place)) {
        ZAV_BASE_TRACE(0x1, "Dictionary " << name << " not found");
        return;
    }
    ZAV_BASE_TRACE(0x10, "ZAV_FindDictionaryInText: found dictionary " << name);
    if (text.size() > zav_text::MOST_BYTES)
        zav_text::FailReading(zav_text::TOO_LONG_ERROR, place, text.data(), text.data() + text.size());
    result = zav_text::Reader(text.data(), text.size(), place).Read();
}

const ZAV_UValTextError& ZAV_GetUValTextError() { return zav_text::gLastError; }

void ZAV_SetUValNestingLimit(unsigned long levels) { zav_text::gNestingLimit = levels; }

unsigned long ZAV_GetUValNestingLimit() { return zav_text::gNestingLimit; }
