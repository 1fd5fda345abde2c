#ifndef ZAVBASE_STRINGS_STR_H
#define ZAVBASE_STRINGS_STR_H

#include <cstdint>
#include <cstring>
#include <iosfwd>

#include <zavbase/foundation/types.h>

class ZAV_SubStr;

/// The storage layer of the byte strings: a growable buffer of characters, always followed by a NUL, that one
/// string owns alone. Copies duplicate the bytes. Programs normally use ZAV_String; classes that add text
/// operations of their own derive from here.
///
/// The empty state (default construction, Empty()) owns no buffer: mData points at one NUL byte that belongs
/// to the library and all empty strings share, and mCapacity is 0. A buffer's mCapacity is a multiple of 16
/// strictly above the length it was asked for.
///
/// Nothing is checked and nothing fails, except that memory may run out. No locking: one thread at a time.
/// Compare with Compare(): `==` of two ZAV_Strs compares the addresses that they convert to (it is ZAV_String
/// that has comparisons).
class ZAV_API ZAV_Str {
public:
    ZAV_Str() : mData(sEmpty), mLength(0), mCapacity(0) {}
    /// Empty, with room for `n` characters.
    explicit ZAV_Str(unsigned int n);
    ZAV_Str(const ZAV_Str& s);
    ZAV_Str(const ZAV_SubStr& s);
    virtual ~ZAV_Str();
    /// Writes the characters up to the first NUL.
    virtual void PrintOn(std::ostream& os);

    ZAV_Str& operator=(const ZAV_Str& s);
    /// A range of this same string is moved to the front of the buffer, without a reallocation.
    ZAV_Str& operator=(const ZAV_SubStr& s);
    /// Both may append a string to itself.
    ZAV_Str& operator+=(const ZAV_Str& s);
    ZAV_Str& operator+=(const ZAV_SubStr& s);

    unsigned int Size() const { return mLength; }
    const char* Ptr() const { return mData; }
    operator const char*() const { return mData; }
    boolean_t IsEmpty() const { return ZAV_Bool(mLength == 0); }
    /// One less than the allocation: a 17th character makes 15 to 31. The empty state reports 4294967295.
    unsigned int Capacity() const { return mCapacity - 1; }
    /// Takes a new buffer for the larger of `n` and the length, so it may also shrink the buffer, and returns
    /// Capacity(). The text stays whole. Sub-strings of this string become invalid.
    unsigned int ReSize(unsigned int n);
    /// Gives the buffer back.
    void Empty();
    /// strcmp of both texts: what follows a NUL does not count.
    int Compare(const ZAV_Str& s) const;

    /// White space is what isspace says. The buffer is kept.
    void TrimLeft();
    /// Looks at the text up to its first NUL only.
    void TrimRight();

    /// The reads append to the text that is there; they stop when the stream is no longer good and keep what
    /// they read. A read that consumes no byte at all sets the fail bit, so `while (s.ReadLine(is))` comes to
    /// an end. With `skipWhite` leading white space (line ends too) is dropped. A line ends at CR, LF or
    /// CR LF, which is consumed and not stored.
    std::istream& ReadLine(std::istream& is, boolean_t skipWhite = B_FALSE);
    /// Up to a NUL.
    std::istream& ReadString(std::istream& is);
    /// Up to `delim`, which is consumed and not stored.
    std::istream& ReadToDelim(std::istream& is, char delim);

protected:
    /// The empty state, without freeing what is there.
    void init();
    /// Frees a buffer that allocBuffer made; null and the shared empty buffer are left alone.
    static void safeDelete(char* data);
    /// Takes a new buffer for `n` characters and sets mLength to `n`; the old buffer is the caller's to free,
    /// the characters and the terminator are the caller's to write.
    void allocBuffer(unsigned int n);
    /// Makes `dest` the `count` characters from `index` on, with room for `extra` more. What `dest` had is
    /// not freed.
    void allocCopy(ZAV_Str& dest, int count, int index, int extra) const;
    void assignCopy(unsigned int n, const char* p);
    /// Makes this `p1` followed by `p2`; `p1` may be the own buffer. The terminator is the caller's to write.
    void concatCopy(unsigned int len1, const char* p1, unsigned int len2, const char* p2);
    void concatInPlace(unsigned int n, const char* p);
    /// The next character as an unsigned char, or -1 with the end-of-file state set.
    static int getChar(std::istream& is);
    /// The same after skipping white space.
    static int getCharSw(std::istream& is);
    void readToDelim(std::istream& is, char delim, boolean_t skipWhite);

    /// Makes mCapacity what allocBuffer(length) would make it, without losing the text.
    void growTo(unsigned long long length);
    /// The same for one character more than a full buffer holds.
    void growByOne() {
        if (mCapacity != 0 && mCapacity < roomOf(mData))
            mCapacity += 16;
        else
            growTo(mCapacity + 1ull);
    }

    char* mData;
    unsigned int mLength;
    unsigned int mCapacity;

private:
    friend class ZAV_SubStr;
    friend class ZAV_UTFString;

    // The characters a buffer really has room for stand in front of it. They may be more than mCapacity:
    // appending makes room ahead while the visible capacity keeps growing by 16, so that a long run of
    // appends copies each byte a constant number of times. Four bytes keep the smallest buffer within a
    // 32-byte block of the heap.
    typedef uint32_t Room;
    static Room roomOf(const char* data) {
        Room room;
        std::memcpy(&room, data - sizeof room, sizeof room);
        return room;
    }

    bool holds(const char* p) const;
    static char* newBuffer(uint64_t room);
    void appendRead(char c);
    void cutFront(unsigned int n);
    void trimEnd(int below);
    void readSkipping(std::istream& is, char delim, int below);
    void terminate();

    static char sEmpty[1];
};

/// A view of a range of characters inside a ZAV_Str. Reading it reads the owner; assigning to it splices the
/// owner. It holds a bare pointer into the owner's buffer and is valid only while the owner lives and its
/// buffer stays where it is (an assignment through this view itself keeps it valid).
///
/// After an assignment that changed the length the view still spans its old count of characters from the same
/// start.
class ZAV_API ZAV_SubStr {
public:
    ZAV_SubStr() : mStart(nullptr), mLength(0), mOwner(nullptr) {}
    ZAV_SubStr(const ZAV_SubStr& s) : mStart(s.mStart), mLength(s.mLength), mOwner(s.mOwner) {}

    /// Replace the range inside the owner. The source may lie in the owner itself.
    ZAV_SubStr& operator=(const ZAV_Str& s);
    ZAV_SubStr& operator=(const ZAV_SubStr& s);

    unsigned int Size() const { return mLength; }
    boolean_t IsEmpty() const { return ZAV_Bool(mLength == 0); }
    /// The first character; the range is not terminated.
    const char* Ptr() const { return mStart; }
    ZAV_Str operator+(const ZAV_SubStr& s) const;
    ZAV_Str operator+(const ZAV_Str& s) const;
    void PrintOn(std::ostream& os) const;

protected:
    /// strncmp over the range; of texts that agree so far the shorter one is less.
    int compare(const ZAV_Str& s) const;
    int compare(const ZAV_SubStr& s) const;
    int compare(const char* p, unsigned int length) const;
    /// Puts `n` characters in place of the range.
    void replace(const char* p, unsigned int n);

    char* mStart;
    unsigned int mLength;
    ZAV_Str* mOwner;

private:
    friend class ZAV_Str;
};

/// Writes the string with its PrintOn.
ZAV_API std::ostream& operator<<(std::ostream& os, const ZAV_Str& s);
ZAV_API std::ostream& operator<<(std::ostream& os, const ZAV_SubStr& s);

#endif
