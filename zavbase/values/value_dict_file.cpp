#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/foundation/tracer.h>
#include <zavbase/os/file.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/bin_pack.h>
#include <zavbase/values/nesting_internal.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_text_reader_internal.h>
#include <zavbase/values/value_dict.h>
#include <zavbase/values/value_dict_internal.h>

namespace {

enum FileCode : unsigned short {
    INVALID_FILE = 2,
    OPEN_READ_ERROR = 3,
    OPEN_WRITE_ERROR = 4,
    READ_ERROR = 6,
    WRITE_ERROR = 7
};

// The first byte of a binary file, the header of its first atom. No text begins with it.
constexpr char BINARY_MARK = BINPACK_16;
const char gMagic[] = "UVALBINDUMP_2.0";
const uint16_t gMagicSize = sizeof gMagic;

constexpr size_t PIECE = 65536;

// No larger file can be read, so none is written.
using zav_text::MOST_BYTES;
const char TOO_LARGE[] = "more than 2147483647 bytes";

const char* NameOf(const ZAV_SystemString& file) { return file.GetSystemString().Ptr(); }

// The exception has no number of the system, as ever; its context has.
[[noreturn]] void Throw(FileCode code, uint32_t error, const char* reason = "") {
    ZAV_ExceptionContext known;
    known.mReason = reason;
    known.mOsError = error;
    ZAV_ThrowFileException(code, 0, known);
}

// What leaves an operation on a file names the file.
template <class Operation>
void Naming(const ZAV_SystemString& file, Operation operation) {
    try {
        operation();
    } catch (ZAV_Exception* e) {
        ZAV_AddExceptionContext(e, {NameOf(file)});
        throw;
    }
}

class WholeFile {
public:
    explicit WholeFile(const ZAV_SystemString& file) {
        zav_text::ClearTextError(); // what is told is about this file
        zav_os::ReadStatus status = zav_os::ReadWholeFile(NameOf(file), MOST_BYTES, &mBytes);
        if (status == zav_os::READ_NOT_OPEN) Throw(OPEN_READ_ERROR, mBytes.mError);
        if (status == zav_os::READ_TOO_LARGE) Throw(READ_ERROR, mBytes.mError, TOO_LARGE);
        if (status != zav_os::READ_DONE) Throw(READ_ERROR, mBytes.mError);
    }
    ~WholeFile() { zav_os::FreeFileBytes(&mBytes); }
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    char* Data() const { return mBytes.mData; }
    size_t Size() const { return mBytes.mSize; }
    bool IsBinary() const { return Size() > 0 && Data()[0] == BINARY_MARK; }

private:
    zav_os::FileBytes mBytes;
};

// A file that appears when Finish has returned; its failures are the file exceptions.
class NewFile {
public:
    explicit NewFile(const ZAV_SystemString& file) {
        if (uint32_t error = mFile.Open(NameOf(file))) Throw(OPEN_WRITE_ERROR, error);
    }
    void Write(const void* data, size_t size) {
        if (size > MOST_BYTES - mSize) Throw(WRITE_ERROR, 0, TOO_LARGE);
        if (uint32_t error = mFile.Write(data, size)) Throw(WRITE_ERROR, error);
        mSize += size;
    }
    bool IsDirect() const { return mFile.IsDirect(); }
    void Finish() {
        if (uint32_t error = mFile.Commit()) Throw(WRITE_ERROR, error);
    }

private:
    zav_os::FileReplacement mFile;
    size_t mSize = 0;
};

// Lets the text writer, which knows streams, write to a file. A stream takes exceptions for itself, so the
// first failure is kept as the stream's state and told at the end.
class NewFileBuffer : public std::streambuf {
public:
    explicit NewFileBuffer(zav_os::FileReplacement& file) : mFile(file), mError(0) {}

    uint32_t Error() const { return mError; } ///< of the first failure
    bool IsTooLarge() const { return mIsTooLarge; }

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        if (static_cast<size_t>(size) > MOST_BYTES - mSize) mIsTooLarge = true;
        if (mError == 0 && !mIsTooLarge) mError = mFile.Write(text, static_cast<size_t>(size));
        if (mError != 0 || mIsTooLarge) return 0;
        mSize += static_cast<size_t>(size);
        return size;
    }
    int_type overflow(int_type c) override {
        char byte = traits_type::to_char_type(c);
        return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
    }

private:
    zav_os::FileReplacement& mFile;
    uint32_t mError;
    size_t mSize = 0;
    bool mIsTooLarge = false;
};

class MemoryBuffer : public std::streambuf {
public:
    MemoryBuffer(char* data, size_t size) { setg(data, data, data + size); }
};

[[noreturn]] void ThrowInvalid(const char* reason, long long offset) {
    ZAV_ExceptionContext known;
    known.mReason = reason;
    known.mOffset = offset;
    ZAV_BASE_TRACE(0x1, "Binary value file is malformed near byte " << offset);
    ZAV_ThrowFileException(INVALID_FILE, 0, known);
}

bool TakeMagic(const unsigned char** cursor, const unsigned char* limit) {
    uint16_t magicSize = 0;
    char magic[sizeof gMagic] = {};
    ZAV_BinPackAtom sizeAtom(BINPACK_16, 1, &magicSize);
    ZAV_BinPackAtom magicAtom(BINPACK_BLOCK, sizeof magic, magic);
    bool isThere = false;
    ZAV_TRY {
        isThere = !sizeAtom.Get(cursor, limit) && magicSize == gMagicSize && !magicAtom.Get(cursor, limit) &&
                  std::char_traits<char>::compare(magic, gMagic, sizeof magic) == 0;
    }
    ZAV_CATCH(ZAV_BinPackException, e) { (void)e; }
    ZAV_CATCH_END
    return isThere;
}

void ReadBinary(const WholeFile& file, ZAV_UValDict& dict) {
    const unsigned char* start = reinterpret_cast<const unsigned char*>(file.Data());
    const unsigned char* limit = start + file.Size();
    const unsigned char* cursor = start;
    if (!TakeMagic(&cursor, limit)) ThrowInvalid("not a binary value file", 0);
    const unsigned char* tree = cursor;
    ZAV_BinPackUValDict packer(dict);
    bool isWhole = false;
    ZAV_TRY { isWhole = packer.Get(&cursor, limit) == 0; }
    ZAV_CATCH(ZAV_BinPackException, e) {
        const ZAV_ExceptionContext& inner = ZAV_GetExceptionContext(e); // counts from where the tree begins
        ThrowInvalid(inner.mReason, (tree - start) + inner.mOffset);
    }
    ZAV_CATCH_END
    if (!isWhole) ThrowInvalid("the file ends too early", limit - start);
    if (cursor != limit) ThrowInvalid("more bytes than the values have", cursor - start);
}

void ReadText(const WholeFile& file, const ZAV_String& name, std::unique_ptr<ZAV_UVal>& value) {
    ZAV_UVal* result = nullptr;
    if (name.IsEmpty()) {
        result = zav_text::Reader(file.Data(), file.Size()).Read();
    } else {
        MemoryBuffer buffer(file.Data(), file.Size());
        std::istream is(&buffer);
        ZAV_ReadUValTxt(is, result, name);
    }
    value.reset(result);
}

// The top of a file must be a dictionary.
ZAV_UValDict& DictIn(const WholeFile& file, ZAV_UVal& value) {
    if (!ZAV_IsDict(&value))
        zav_text::FailReading(zav_text::HIERARCHY_ERROR, zav_text::Place(), file.Data(),
                              file.Data() + file.Size());
    return static_cast<ZAV_UValDict&>(value);
}

} // namespace

// MoveTo passes over entries without a value, which a binary file may hold. They come where there is no entry
// yet; into an empty dictionary all entries go in their order.
void ZAV_UValDict::TakeFrom(ZAV_UValDict& other) {
    bool isPlain = GetSize() == 0 && !mCaseInsensitive;
    if (!isPlain) other.MoveTo(this);
    for (ZAV_AssocUVal* entry = other.mFirst; entry; entry = entry->GetNext())
        if (isPlain || (!entry->Value() && !AssocAt(entry->Key())))
            SetEntry(entry->Key(), entry->KeyLength(), entry->Value(nullptr));
}

void ZAV_UValDict::WriteTextFile(const ZAV_SystemString& file) {
    Naming(file, [&] {
        zav_os::FileReplacement replacement;
        if (uint32_t error = replacement.Open(NameOf(file))) Throw(OPEN_WRITE_ERROR, error);
        NewFileBuffer buffer(replacement);
        std::ostream os(&buffer);
        if (!zav_text::WriteTree(os, *this, 0, replacement.IsDirect())) Throw(WRITE_ERROR, 0, ZAV_TOO_DEEP);
        if (buffer.IsTooLarge()) Throw(WRITE_ERROR, 0, TOO_LARGE);
        uint32_t error = os ? replacement.Commit() : buffer.Error();
        if (!os || error != 0) Throw(WRITE_ERROR, error);
    });
}

void ZAV_UValDict::ReadTextFile(const ZAV_SystemString& file) { ReadTextFile(file, ZAV_String()); }

void ZAV_UValDict::ReadTextFile(const ZAV_SystemString& file, const ZAV_String& name) {
    Naming(file, [&] {
        WholeFile bytes(file);
        std::unique_ptr<ZAV_UVal> value;
        ReadText(bytes, name, value);
        if (value) TakeFrom(DictIn(bytes, *value));
    });
}

void ZAV_UValDict::ReadFile(const ZAV_SystemString& file) {
    Naming(file, [&] {
        WholeFile bytes(file);
        if (bytes.IsBinary()) {
            ZAV_UValDict read(16);
            ReadBinary(bytes, read);
            return TakeFrom(read);
        }
        std::unique_ptr<ZAV_UVal> value;
        ReadText(bytes, ZAV_String(), value);
        TakeFrom(DictIn(bytes, *value));
    });
}

void ZAV_UValDict::WriteBinFile(const ZAV_SystemString& file) {
    Naming(file, [&] {
        uint16_t magicSize = gMagicSize;
        ZAV_BinPackAtom sizeAtom(BINPACK_16, 1, &magicSize);
        ZAV_BinPackAtom magicAtom(BINPACK_BLOCK, sizeof gMagic, const_cast<char*>(gMagic));
        NewFile out(file);
        // A file that is not finished does not appear, unless it is written directly.
        ZAV_BinPackUValDict packer(*this, ZAV_Bool(out.IsDirect()), ZAV_GetUValNestingLimit());
        std::unique_ptr<unsigned char[]> buffer(new unsigned char[PIECE]);
        unsigned char* cursor = buffer.get();
        const unsigned char* limit = cursor + PIECE;
        sizeAtom.Put(&cursor, limit);
        magicAtom.Put(&cursor, limit);
        bool more = packer.Put(&cursor, limit) != 0;
        for (; more; more = packer.Put(&cursor, limit) != 0) {
            out.Write(buffer.get(), static_cast<size_t>(cursor - buffer.get()));
            cursor = buffer.get();
        }
        out.Write(buffer.get(), static_cast<size_t>(cursor - buffer.get()));
        out.Finish();
    });
}

void ZAV_UValDict::ReadBinFile(const ZAV_SystemString& file) {
    Naming(file, [&] {
        WholeFile bytes(file);
        ZAV_UValDict read(16);
        ReadBinary(bytes, read);
        TakeFrom(read);
    });
}
