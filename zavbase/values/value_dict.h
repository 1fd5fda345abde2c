#ifndef ZAVBASE_VALUES_VALUE_DICT_H
#define ZAVBASE_VALUES_VALUE_DICT_H

#include <cstddef>

#include <zavbase/collections/set.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/assoc_uval.h>
#include <zavbase/values/dict_path.h>
#include <zavbase/values/uval.h>

/// A dictionary of named values, itself a value: dictionaries nest, and a ZAV_DictPath names a value anywhere
/// in the tree. Wherever a path is wanted, its text will do: dict.SetUVal("window:width", value).
///
/// Keys have at most 64 characters (longer ones are cut) and keep the order in which they were added; every
/// listing, copy, print and file follows it. Depth is limited by memory only: no operation recurses.
///
/// Ownership: a dictionary owns its entries and their values. SetUVal takes a value over, GetUVal lends one
/// until its entry is replaced or removed or the dictionary ends. Nothing here throws, except the file
/// operations (ZAV_FileException*, ZAV_BinPackException*). Not locked: one thread at a time, or several that
/// only read.
class ZAV_API ZAV_UValDict : public ZAV_UVal {
    ZAV_DECLARE_CLASS(ZAV_UValDict)

public:
    /// `capacity` entries fit before the table grows.
    explicit ZAV_UValDict(unsigned int capacity = 16);
    ZAV_UValDict(const ZAV_UValDict& other);
    ~ZAV_UValDict() override;
    /// Deep, like the copy constructor; `other` may lie inside this tree or around it.
    ZAV_UValDict& operator=(const ZAV_UValDict& other);
    ZAV_UValDict* DeepCopy() override;

    /// When set, a key that is not found as it stands is sought again without regard to case (with the
    /// platform's upper-case rules). It holds for this dictionary only, not for those in it.
    void SetCaseInsensitive(boolean_t on) { mCaseInsensitive = on; }

    // Values by path.

    /// The value, or null. A path given as text is walked as it stands, which is quicker than a ZAV_DictPath.
    ZAV_UVal* GetUVal(const ZAV_DictPath& path) const;
    ZAV_UVal* GetUVal(const char* path) const;
    ZAV_UVal* GetUVal(const ZAV_String& path) const;
    /// Stores `uval` at the path, creating dictionaries on the way; what was there is deleted. Returns
    /// `uval`. When the path is empty or leads through a value that is no dictionary, `uval` is deleted, a
    /// line is traced (level 0x10), and null is returned.
    ZAV_UVal* SetUVal(const ZAV_DictPath& path, ZAV_UVal* uval);
    ZAV_UVal* SetUVal(const char* path, ZAV_UVal* uval);
    ZAV_UVal* SetUVal(const ZAV_String& path, ZAV_UVal* uval);
    /// Stores a new value of a type (uval_types.h tells what dimension and buffer mean) and returns it; for
    /// UVAL_DICT as DefineUValDict; null for a number that is no type.
    ZAV_UVal* DefineUVal(const ZAV_DictPath& path, ZAV_UValType type, long dimension = 0,
                         void* buffer = nullptr);
    /// The dictionary at the path, made if there is none; null when something else is there.
    ZAV_UValDict* DefineUValDict(const ZAV_DictPath& path);
    /// Deletes the entry and its value; nothing happens when there is none.
    void RemoveUVal(const ZAV_DictPath& path);
    /// 0 for a missing path.
    ZAV_UValType GetUValType(const ZAV_DictPath& path) const;
    /// -1 for a missing path.
    long GetUValDimension(const ZAV_DictPath& path) const;

    // Elements by path.

    /// The element as the wanted type, converted by the value whatever its own type (a long asked of a string
    /// is 0); the default when there is no value. Text and pointers are asked only of strings and pointers,
    /// any other value gives the default; ZAV_String and ZAV_UTFString take the text of any scalar.
    char GetValue(const ZAV_DictPath& path, char deflt, long index = 0) const;
    unsigned char GetValue(const ZAV_DictPath& path, unsigned char deflt, long index = 0) const;
    short GetValue(const ZAV_DictPath& path, short deflt, long index = 0) const;
    unsigned short GetValue(const ZAV_DictPath& path, unsigned short deflt, long index = 0) const;
    int GetValue(const ZAV_DictPath& path, int deflt, long index = 0) const;
    unsigned int GetValue(const ZAV_DictPath& path, unsigned int deflt, long index = 0) const;
    long GetValue(const ZAV_DictPath& path, long deflt, long index = 0) const;
    unsigned long GetValue(const ZAV_DictPath& path, unsigned long deflt, long index = 0) const;
    long long GetValue(const ZAV_DictPath& path, long long deflt, long index = 0) const;
    unsigned long long GetValue(const ZAV_DictPath& path, unsigned long long deflt, long index = 0) const;
    boolean_t GetValue(const ZAV_DictPath& path, boolean_t deflt, long index = 0) const;
    float GetValue(const ZAV_DictPath& path, float deflt, long index = 0) const;
    double GetValue(const ZAV_DictPath& path, double deflt, long index = 0) const;
    const char* GetValue(const ZAV_DictPath& path, const char* deflt, long index = 0) const;
    const char* GetValue(const ZAV_DictPath& path, std::nullptr_t deflt, long index = 0) const;
    void* GetValue(const ZAV_DictPath& path, void* deflt, long index = 0) const;
    ZAV_String GetValue(const ZAV_DictPath& path, const ZAV_String& deflt, long index = 0) const;
    ZAV_UTFString GetValue(const ZAV_DictPath& path, const ZAV_UTFString& deflt, long index = 0) const;

    /// Any of these for the text of a path, which is walked as it stands.
    template <class T>
    auto GetValue(const char* path, T deflt, long index = 0) const {
        return ElementOf(GetUVal(path), deflt, index);
    }

    /// Changes an element of an existing value, converted to its type; a missing path is ignored. const char*
    /// acts on strings only, void* on pointers only, null on either.
    void SetValue(const ZAV_DictPath& path, char value, long index = 0);
    void SetValue(const ZAV_DictPath& path, unsigned char value, long index = 0);
    void SetValue(const ZAV_DictPath& path, short value, long index = 0);
    void SetValue(const ZAV_DictPath& path, unsigned short value, long index = 0);
    void SetValue(const ZAV_DictPath& path, int value, long index = 0);
    void SetValue(const ZAV_DictPath& path, unsigned int value, long index = 0);
    void SetValue(const ZAV_DictPath& path, long value, long index = 0);
    void SetValue(const ZAV_DictPath& path, unsigned long value, long index = 0);
    void SetValue(const ZAV_DictPath& path, long long value, long index = 0);
    void SetValue(const ZAV_DictPath& path, unsigned long long value, long index = 0);
    void SetValue(const ZAV_DictPath& path, boolean_t value, long index = 0);
    void SetValue(const ZAV_DictPath& path, float value, long index = 0);
    void SetValue(const ZAV_DictPath& path, double value, long index = 0);
    void SetValue(const ZAV_DictPath& path, const char* value, long index = 0);
    void SetValue(const ZAV_DictPath& path, std::nullptr_t value, long index = 0);
    void SetValue(const ZAV_DictPath& path, void* value, long index = 0);
    void SetValue(const ZAV_DictPath& path, const ZAV_String& value, long index = 0);

    // Entries of this dictionary alone. Here a key is one key, also when it is empty or holds the separator.

    unsigned int GetSize() const { return mSet.Size(); }
    /// The key of the i-th entry in the order of adding; null outside 0 .. GetSize() - 1.
    const char* GetKey(int i) const;
    /// The first entry for null, else the one after `entry`; null after the last.
    ZAV_AssocUVal* GetNextAssoc(const ZAV_AssocUVal* entry) const;
    /// The entry with this key, or null.
    ZAV_AssocUVal* AssocAt(const char* key) const;
    /// The same for the first `length` bytes of `key`, which hold no NUL.
    ZAV_AssocUVal* AssocAt(const char* key, unsigned int length) const;
    /// Adds the entry or replaces its value, which may be null; the value before is deleted. Returns `uval`.
    ZAV_UVal* SetEntry(const char* key, ZAV_UVal* uval);
    ZAV_UVal* SetEntry(const char* key, unsigned int length, ZAV_UVal* uval);
    void RemoveEntry(const char* key);
    /// The table of the entries, all of them ZAV_AssocUVal. Look, but do not add or remove.
    ZAV_Set* GetValuePtr() { return &mSet; }
    /// Makes room for so many entries.
    void ReSize(unsigned int capacity) { mSet.ReSize(capacity); }
    void Clear();

    /// For the readers and writers of files: many entries at once.
    struct Chain;
    struct Fields;
    struct Filler;

    // Merging. Where both sides hold a dictionary its entries are merged one by one; anything else in the
    // destination is replaced. Entries without a value are passed over. The destination may be this
    // dictionary (nothing happens) or lie inside it or around it: what is taken is the state at the call.

    /// Returns the destination's value: the merged dictionary or the copy; null when there is nothing at
    /// `path` here, or `path` is blocked in the destination.
    ZAV_UVal* CopyUValTo(const ZAV_DictPath& path, ZAV_UValDict* dest) const;
    void CopyTo(ZAV_UValDict* dest) const;
    /// The same, but values leave this dictionary. A dictionary whose entries were merged stays, as does what
    /// found its path blocked; what contains the destination is copied.
    ZAV_UVal* MoveUValTo(const ZAV_DictPath& path, ZAV_UValDict* dest);
    void MoveTo(ZAV_UValDict* dest);

    // Text and files.

    /// One line an entry, "- key => value", each after the prefix and one "    |" a level.
    void PrintDict(std::ostream& os, const char* prefix);
    /// PrintDict with an empty prefix.
    void PrintOn(std::ostream& os) override;

    /// The text form (uval_text.h) and the binary form (bin_pack.h). Reading merges into this dictionary as
    /// MoveTo does; a file that cannot be read changes nothing. ReadFile takes either form. With a name,
    /// ReadTextFile takes the entries of the first dictionary of that name; when there is none it traces
    /// that and changes nothing. A file is written beside its name and then put in its place. What could not
    /// be read again is not written: a tree that nests deeper than ZAV_GetUValNestingLimit(), before there is
    /// a file, or more than 2147483647 bytes; WriteTextFile then throws code 7, WriteBinFile for the nesting
    /// a ZAV_BinPackException*.
    void WriteTextFile(const ZAV_SystemString& file);
    void ReadTextFile(const ZAV_SystemString& file);
    void ReadTextFile(const ZAV_SystemString& file, const ZAV_String& name);
    void ReadFile(const ZAV_SystemString& file);
    void WriteBinFile(const ZAV_SystemString& file);
    void ReadBinFile(const ZAV_SystemString& file);

private:
    static char ElementOf(ZAV_UVal* value, char deflt, long index);
    static unsigned char ElementOf(ZAV_UVal* value, unsigned char deflt, long index);
    static short ElementOf(ZAV_UVal* value, short deflt, long index);
    static unsigned short ElementOf(ZAV_UVal* value, unsigned short deflt, long index);
    static int ElementOf(ZAV_UVal* value, int deflt, long index);
    static unsigned int ElementOf(ZAV_UVal* value, unsigned int deflt, long index);
    static long ElementOf(ZAV_UVal* value, long deflt, long index);
    static unsigned long ElementOf(ZAV_UVal* value, unsigned long deflt, long index);
    static long long ElementOf(ZAV_UVal* value, long long deflt, long index);
    static unsigned long long ElementOf(ZAV_UVal* value, unsigned long long deflt, long index);
    static boolean_t ElementOf(ZAV_UVal* value, boolean_t deflt, long index);
    static float ElementOf(ZAV_UVal* value, float deflt, long index);
    static double ElementOf(ZAV_UVal* value, double deflt, long index);
    static const char* ElementOf(ZAV_UVal* value, const char* deflt, long index);
    static const char* ElementOf(ZAV_UVal* value, std::nullptr_t deflt, long index);
    static void* ElementOf(ZAV_UVal* value, void* deflt, long index);
    static ZAV_String ElementOf(ZAV_UVal* value, const ZAV_String& deflt, long index);
    static ZAV_UTFString ElementOf(ZAV_UVal* value, const ZAV_UTFString& deflt, long index);

    struct KeyWalk;
    ZAV_AssocUVal* FindUValPath(KeyWalk keys, bool create, ZAV_UValDict** owner = nullptr);
    ZAV_UVal* ValueAt(KeyWalk keys) const;
    ZAV_UVal* StoreAt(KeyWalk keys, ZAV_UVal* uval);
    static ZAV_UVal* Replace(ZAV_AssocUVal* entry, ZAV_UVal* uval);
    ZAV_AssocUVal* FindIgnoringCase(const char* key, unsigned int length) const;

    ZAV_AssocUVal* AddEntry(const char* key, unsigned int length, ZAV_UVal* uval);
    void Adopt(ZAV_AssocUVal* entry);
    void AdoptAll(ZAV_AssocUVal* chain);
    void Unlink(ZAV_AssocUVal* entry);
    ZAV_AssocUVal* TakeAll();
    static void DestroyEntries(ZAV_AssocUVal* chain);
    void CopyEntriesOf(const ZAV_UValDict& other);
    void TakeFrom(ZAV_UValDict& other);

    struct MergeLevel;
    static void Merge(ZAV_UValDict& from, ZAV_UValDict& to);
    void MoveAllInto(ZAV_UValDict& empty);
    bool Holds(const ZAV_UValDict* sought) const;

    ZAV_Set mSet;
    ZAV_AssocUVal* mFirst;
    ZAV_AssocUVal* mLast;
    boolean_t mCaseInsensitive;
};

#endif
