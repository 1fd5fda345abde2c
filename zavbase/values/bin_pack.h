#ifndef ZAVBASE_VALUES_BIN_PACK_H
#define ZAVBASE_VALUES_BIN_PACK_H

#include <zavbase/foundation/exception.h>

/// Resumable packers, by which any amount of data streams through a small fixed buffer. Each has
///
///     int Put(unsigned char** cursor, const unsigned char* limit);
///     int Get(const unsigned char** cursor, const unsigned char* limit);
///
/// Put writes as much as fits between the cursor and the limit, advances the cursor and returns non-zero
/// while it has more to write; call it again with room. Get reads what stands between the cursor and the
/// limit and returns non-zero while it needs more. Once they have returned 0 they do nothing. How the calls
/// are cut never changes the bytes. A packer belongs to one thread; the data it points to stays the caller's.
///
/// On the wire an atom is a header byte (its kind; with bit 0x10 a big-endian 4-byte count follows, without
/// it the count is 1) and then the elements in the machine's order, which is little-endian.

class ZAV_UValDict;

/// Thrown by pointer: a count that does not fit its field, a value that has no binary form, bytes that are
/// not what the reader expects. ZAV_UValDict::ReadBinFile turns the last into a ZAV_FileException* of code 2.
class ZAV_API ZAV_BinPackException : public ZAV_Exception {
    ZAV_DECLARE_CLASS(ZAV_BinPackException)
public:
    ZAV_BinPackException();
    ZAV_BinPackException(const ZAV_BinPackException& other);
    ~ZAV_BinPackException() override;
    /// Appends "Binary Packing Error".
    ZAV_String& ToString(ZAV_String& s) const override;
};

/// Throws a new ZAV_BinPackException.
[[noreturn]] ZAV_API void ZAV_ThrowBinPackException();

/// The kinds of atoms and, behind them, the size of their elements in bytes.
enum ZAV_BinPackKind : int {
    BINPACK_NONE = 0,  ///< 0: no data
    BINPACK_CHAR = 1,  ///< 1
    BINPACK_BLOCK = 2, ///< 1: texts, with their NUL
    BINPACK_16 = 3,    ///< 2
    BINPACK_32 = 4,    ///< 4
    BINPACK_64 = 5,    ///< 8
    BINPACK_FLOAT = 6, ///< 4
    BINPACK_DOUBLE = 7 ///< 8
};

/// The element size of a kind; 0 for a kind that does not exist.
ZAV_API unsigned int ZAV_BinPackElementSize(int kind);

/// Raw bytes, as they are.
class ZAV_API ZAV_BinPackBuffer {
public:
    ZAV_BinPackBuffer() : mData(nullptr), mLeft(0) {}
    /// Get writes to `data`, Put only reads it.
    ZAV_BinPackBuffer(void* data, unsigned long size)
        : mData(static_cast<unsigned char*>(data)), mLeft(size) {}

    int Put(unsigned char** cursor, const unsigned char* limit);
    int Get(const unsigned char** cursor, const unsigned char* limit);
    int Get(unsigned char** cursor, const unsigned char* limit);

private:
    unsigned char* mData;
    unsigned long mLeft;
};

/// One counted run of elements of one kind, with its header.
class ZAV_API ZAV_BinPackAtom {
public:
    /// `count` elements at `data`. Get expects exactly this kind and count and throws ZAV_BinPackException*
    /// for any other header, before it stores an element; so does the constructor for a kind that does not
    /// exist or a count above 4294967295.
    ZAV_BinPackAtom(int kind, unsigned long count, void* data);

    int Put(unsigned char** cursor, const unsigned char* limit);
    int Get(const unsigned char** cursor, const unsigned char* limit);
    int Get(unsigned char** cursor, const unsigned char* limit);

private:
    unsigned char mHeader[5];  // header byte and count
    unsigned char mHeaderSize; // 1 or 5
    unsigned char mHeaderDone; // how many of them are through
    ZAV_BinPackBuffer mElements;
};

/// A whole dictionary tree: its entry count, then its entries in insertion order, depth first.
class ZAV_API ZAV_BinPackUValDict {
public:
    /// Binds `dict`, which must live and, while it is put, stay unchanged until the packer is done. The
    /// packer does one thing: all its calls are Put, or all are Get.
    ///
    /// What does not fit is refused before Put has written a byte. A caller who can take back what was put
    /// saves that look over the tree with `checkFirst` B_FALSE: any Put may then throw.
    explicit ZAV_BinPackUValDict(ZAV_UValDict& dict, boolean_t checkFirst = B_TRUE);
    ~ZAV_BinPackUValDict();
    ZAV_BinPackUValDict(const ZAV_BinPackUValDict&) = delete;
    ZAV_BinPackUValDict& operator=(const ZAV_BinPackUValDict&) = delete;

    /// Throws ZAV_BinPackException*, with the cursor where it was, when a dictionary has more than 65535
    /// entries, a text more than 65534 bytes, a value no binary form, or all pointer arrays together more
    /// than ZAV_BINPACK_MAX_POINTERS elements. Any depth is put; WriteBinFile refuses what Get would. A value
    /// of a host's own class is put as its virtual accessors tell it.
    int Put(unsigned char** cursor, const unsigned char* limit);

    /// Adds what it reads to the dictionary, keys as they stand (no paths); entries that are there already
    /// are replaced. Throws ZAV_BinPackException* for bytes that no Put writes, or that nest deeper than
    /// ZAV_GetUValNestingLimit(). The entries appear in the dictionary when all of it has been read. Memory
    /// is taken only for data that has arrived.
    int Get(const unsigned char** cursor, const unsigned char* limit);
    int Get(unsigned char** cursor, const unsigned char* limit);

private:
    friend class ZAV_UValDict;
    /// For a file: what nests deeper than so many levels is refused too; 0 means any depth.
    ZAV_BinPackUValDict(ZAV_UValDict& dict, boolean_t checkFirst, unsigned long nestingLimit);

    class Writer;
    class Reader;
    ZAV_UValDict& mDict;
    boolean_t mCheckFirst;
    Writer* mWriter;
    Reader* mReader;
};

/// Pointers have no bytes in the file, so nothing but this bounds what a short file may ask for.
constexpr unsigned long ZAV_BINPACK_MAX_POINTERS = 65536;

#endif
