#ifndef ZAVBASE_VALUES_UVAL_TEXT_CHECK_INTERNAL_H
#define ZAVBASE_VALUES_UVAL_TEXT_CHECK_INTERNAL_H

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <zavbase/values/uval.h>
#include <zavbase/values/uval_text_check.h>
#include <zavbase/values/uval_text_reader_internal.h>

namespace zav_text {

/// Which entries a text makes, and where they stand: the tree that reading it gives, without the values. A
/// node is known by its number; the top is 0. Takes time n log n at worst, whatever the keys.
class EntryTree {
public:
    typedef uint32_t Node;
    static constexpr Node TOP = 0;
    static constexpr Node NONE = 0xFFFFFFFF;

    enum Finding : unsigned {
        KEY_CUT_LONG = 1,
        KEY_CUT_NUL = 2,
        TWICE = 4,
        EMPTY = 8,
        EMPTY_LEVEL = 16,
        BLOCKED = 32
    };

    EntryTree() : mNodes(1) {}
    /// Puts an entry under a key of a dictionary, as storing at a path does, and tells what it met on the
    /// way. NONE when the entry is dropped.
    Node Put(Node dict, std::string_view key, bool isDict, unsigned* findings);
    /// A dictionary that hangs nowhere.
    Node Loose() { return Make(true); }
    Node Find(const ZAV_DictPath& path) const;
    ZAV_UValTextEntry& PlaceOf(Node node) { return mNodes[node].mPlace; }

private:
    struct Info {
        ZAV_UValTextEntry mPlace = {0, 0, 0, 0};
        bool mIsDict = true;
    };
    Node Make(bool isDict);

    std::vector<Info> mNodes;
    std::map<std::pair<Node, std::string>, Node> mChildren;
};

/// Looks over a text that reading accepts.
class Inspector {
public:
    /// `tell` may be null.
    Inspector(const char* text, size_t size, ZAV_UValTextRemarkFunc tell, void* context);

    void Inspect();
    EntryTree& Entries() { return mTree; }

private:
    /// A number or string as it stands in the text.
    struct Scalar {
        TokenKind mKind;
        const char* mStart;
        const char* mEnd;
        bool mHasKeyword;
    };
    struct Dict {
        EntryTree::Node mNode;
        bool mWantsValue; // a key is waiting for it
        std::string mKey;
        const char* mKeyStart;
        const char* mKeyEnd;
    };

    void Take(const Token& token);
    void TakeScalar(const Token& token);
    void TakeArrayEnd();
    void TakeItem(std::string_view text, const char* start, const char* end);
    void OpenDict(const char* start);
    void CloseDict();
    EntryTree::Node PutEntry(bool isDict, const char* start, const char* end);
    unsigned long OffsetOf(const char* p) const { return static_cast<unsigned long>(p - mText); }

    void CheckScalar(const Scalar& scalar, ZAV_UValType type);
    void CheckInteger(const Scalar& scalar, ZAV_UValType type);
    void CheckReal(const Scalar& scalar, ZAV_UValType type);
    void TellNumber(const Scalar& scalar, bool hasDigits, const char* end, bool fits);
    void TellFindings(unsigned findings, const char* start, const char* end);
    void Tell(ZAV_UValTextRemarkKind kind, const char* message, const char* start, const char* end);

    Tokeniser mTokens;
    const char* mText;
    ZAV_UValTextRemarkFunc mTell;
    void* mContext;
    Place mPlace; // of mPlaceAt
    const char* mPlaceAt;

    EntryTree mTree;
    std::vector<Dict> mDicts; // the open ones
    const char* mArray;       // the "[" of the open array, or null
    std::vector<Scalar> mElements;
    std::string mFirstText; // of the open array's first element
};

} // namespace zav_text

#endif
