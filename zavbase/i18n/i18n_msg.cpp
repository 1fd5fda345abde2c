#include <zavbase/i18n/i18n_msg.h>

#include <zavbase/collections/clt_string.h>
#include <zavbase/i18n/i18n_msg_arg.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/i18n/number_format_internal.h>
#include <zavbase/strings/rune_internal.h>
#include <zavbase/strings/text_length_internal.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <ostream>
#include <string_view>
#include <vector>

ZAV_DEFINE_CLASS(ZAV_I18nMsg, ZAV_Object)

ZAV_I18nMsg::ZAV_I18nMsg() : mWarning(B_FALSE), mArgs(nullptr) {}
ZAV_I18nMsg::ZAV_I18nMsg(const ZAV_UTFString& id) : mWarning(B_FALSE), mId(id), mArgs(nullptr) {}

ZAV_I18nMsg::ZAV_I18nMsg(const ZAV_I18nMsg& other)
    : ZAV_Link(), mWarning(other.mWarning), mId(other.mId),
      mArgs(other.mArgs ? new ZAV_I18nMsgArgList(*other.mArgs) : nullptr) {}

ZAV_I18nMsg::~ZAV_I18nMsg() { delete mArgs; }

// `other` may be a message inside this one's own arguments: it is copied before these go.
ZAV_I18nMsg& ZAV_I18nMsg::operator=(const ZAV_I18nMsg& other) {
    if (this == &other) return *this;
    ZAV_I18nMsgArgList* before = mArgs;
    mArgs = other.mArgs ? new ZAV_I18nMsgArgList(*other.mArgs) : nullptr;
    mWarning = other.mWarning;
    mId = other.mId;
    delete before;
    return *this;
}

ZAV_I18nMsg& ZAV_I18nMsg::operator=(const ZAV_UTFString& id) {
    mId = id;
    return *this;
}

ZAV_I18nMsg& ZAV_I18nMsg::Set(const ZAV_UTFString& id) {
    ZAV_UTFString kept(id);
    Clear();
    mId = kept;
    return *this;
}

void ZAV_I18nMsg::Clear() {
    mWarning = B_FALSE;
    mId.Empty();
    delete mArgs;
    mArgs = nullptr;
}

void ZAV_I18nMsg::AddArg(const char* tag, const ZAV_I18nMsg& sub, ZAV_I18nMsgArgType type) {
    ZAV_I18nMsgArg* arg = new ZAV_I18nMsgArg(tag, sub, type);
    if (!mArgs) mArgs = new ZAV_I18nMsgArgList;
    mArgs->Add(arg);
}

void ZAV_I18nMsg::AddArg(const char* tag, const ZAV_UTFString& value, ZAV_I18nMsgArgType type) {
    AddArg(tag, ZAV_I18nMsg(value), type);
}

void ZAV_I18nMsg::AddArg(const char* tag, long value, const char* format, ZAV_I18nMsgArgType type) {
    ZAV_NumberFormat numbers(format, "diouxXc", 'd');
    AddArg(tag, ZAV_UTFString(numbers.Apply(static_cast<int32_t>(value))), type);
}

void ZAV_I18nMsg::AddArg(const char* tag, unsigned long value, const char* format, ZAV_I18nMsgArgType type) {
    ZAV_NumberFormat numbers(format, "diouxXc", 'u');
    AddArg(tag, ZAV_UTFString(numbers.Apply(static_cast<uint32_t>(value))), type);
}

void ZAV_I18nMsg::AddArg(const char* tag, long long value, const char* format, ZAV_I18nMsgArgType type) {
    ZAV_NumberFormat numbers(format, "diouxX", 'd', "ll");
    AddArg(tag, ZAV_UTFString(numbers.Apply(value)), type);
}

void ZAV_I18nMsg::AddArg(const char* tag, unsigned long long value, const char* format,
                         ZAV_I18nMsgArgType type) {
    ZAV_NumberFormat numbers(format, "diouxX", 'u', "ll");
    AddArg(tag, ZAV_UTFString(numbers.Apply(value)), type);
}

void ZAV_I18nMsg::AddArg(const char* tag, double value, const char* format, ZAV_I18nMsgArgType type) {
    ZAV_NumberFormat numbers(format, "eEfFgG", 'g');
    AddArg(tag, ZAV_UTFString(numbers.Apply(value)), type);
}

void ZAV_I18nMsg::PrintOn(std::ostream& os) {
    os << mId;
    if (mArgs) os << "[" << *mArgs << "]";
}

/// What all messages of one formatting have in common, and the walks over a message's arguments.
struct ZAV_I18nMsgFormatter {
    ZAV_I18nMsgFormatter(const char* lang, ZAV_I18nResource* resources, ZAV_I18nResource* baseResources)
        : mLang(lang), mLangLength(lang ? static_cast<unsigned>(std::strlen(lang)) : 0),
          mResources(resources), mBaseResources(baseResources) {}

    /// A message's arguments, for a range-based loop.
    class Args {
    public:
        class Position {
        public:
            explicit Position(const ZAV_Link* link) : mLink(link) {}
            const ZAV_I18nMsgArg& operator*() const { return static_cast<const ZAV_I18nMsgArg&>(*mLink); }
            void operator++() { mLink = mLink->NextLink(); }
            bool operator!=(const Position& other) const { return mLink != other.mLink; }

        private:
            const ZAV_Link* mLink;
        };
        explicit Args(const ZAV_I18nMsg& msg) : mList(msg.mArgs), mEnd(ZAV_Link::GetNilLink()) {}
        Position begin() const { return Position(mList ? static_cast<ZAV_Link*>(mList->First()) : mEnd); }
        Position end() const { return Position(mEnd); }

    private:
        const ZAV_I18nMsgArgList* mList;
        const ZAV_Link* mEnd;
    };

    ZAV_UTFString Format(const ZAV_I18nMsg& msg) const;
    ZAV_UTFString FormatOnce(const ZAV_I18nMsg& msg) const;

    /// Calls visit(message) for each sub-error below `msg`, depth first.
    template <class Visit>
    static void VisitSubErrors(const ZAV_I18nMsg& msg, const Visit& visit) {
        for (const ZAV_I18nMsgArg& arg : Args(msg)) {
            if (arg.GetType() == ZAV_I18N_SUBERROR) visit(arg.GetMsg());
            VisitSubErrors(arg.GetMsg(), visit);
        }
    }

private:
    struct Place {
        unsigned mStart;
        const ZAV_I18nMsgArg* mArg;
        unsigned End() const { return mStart + mArg->GetTag().Size(); }
    };

    static bool IsMessage(const ZAV_I18nMsgArg& arg) {
        return arg.GetType() == ZAV_I18N_TAG || arg.GetType() == ZAV_I18N_SUBERROR;
    }
    static void Claim(std::vector<Place>& places, const char* text, const ZAV_I18nMsgArg& arg);
    const ZAV_UTFString& Lookup(const ZAV_UTFString& id, std::optional<ZAV_UTFString>& key) const;

    const char* mLang;
    unsigned mLangLength;
    ZAV_I18nResource* mResources;
    ZAV_I18nResource* mBaseResources;
};

// `key` is where a text lives that is in no resource.
const ZAV_UTFString& ZAV_I18nMsgFormatter::Lookup(const ZAV_UTFString& id,
                                                  std::optional<ZAV_UTFString>& key) const {
    if (std::string_view(id.Ptr(), id.Size()).starts_with("+++")) {
        key.emplace(id.Ptr() + 3);
        return mBaseResources ? mBaseResources->Lookup(*key, mLang, mLangLength) : *key;
    }
    return mResources ? mResources->Lookup(id, mLang, mLangLength) : id;
}

namespace {

// A text under change. Most messages fit into the room on the stack, and only the result takes memory.
class WorkText {
public:
    explicit WorkText(const ZAV_UTFString& text)
        : mData(mOnStack), mLength(0), mTextLength(0), mRoom(sizeof mOnStack) {
        Splice(0, 0, text);
    }
    ~WorkText() {
        if (mData != mOnStack) delete[] mData;
    }

    // As ZAV_UTFString::Find: when the first place is inside a rune, the text is taken not to have it.
    bool Find(const ZAV_UTFString& tag, size_t& at) const {
        at = std::string_view(mData, mTextLength).find({tag.Ptr(), tag.Size()});
        return at != std::string_view::npos && !zav_utf::IsInsideRune(mData, mTextLength, at);
    }

    void Splice(size_t at, size_t length, const ZAV_UTFString& with) {
        const unsigned after = zav_text::Checked(uint64_t{mLength} - length + with.Size());
        MakeRoom(after);
        std::memmove(mData + at + with.Size(), mData + at + length, mLength - at - length);
        std::memcpy(mData + at, with.Ptr(), with.Size());
        mLength = after;
        const size_t textLength = std::strlen(with.Ptr());
        mTextLength = textLength < with.Size() ? at + textLength : mTextLength - length + textLength;
    }

    const char* Ptr() const { return mData; }
    unsigned Size() const { return mLength; }

private:
    void MakeRoom(unsigned length) {
        if (length <= mRoom) return;
        const uint64_t ahead = uint64_t{length} + length / 2;
        const unsigned room = static_cast<unsigned>((std::min)(ahead, uint64_t{UINT32_MAX}));
        char* data = new char[room];
        std::memcpy(data, mData, mLength);
        if (mData != mOnStack) delete[] mData;
        mData = data;
        mRoom = room;
    }

    char* mData;
    unsigned mLength;
    size_t mTextLength; // up to the first NUL: tags are not looked for behind it
    unsigned mRoom;
    char mOnStack[500];
};

} // namespace

ZAV_UTFString ZAV_I18nMsgFormatter::Format(const ZAV_I18nMsg& msg) const {
    std::optional<ZAV_UTFString> key;
    const ZAV_UTFString& found = Lookup(msg.mId, key);
    WorkText work(found);
    for (const ZAV_I18nMsgArg& arg : Args(msg)) {
        const ZAV_I18nMsg& value = arg.GetMsg();
        size_t at;
        if (!work.Find(arg.GetTag(), at)) continue;
        if (IsMessage(arg))
            work.Splice(at, arg.GetTag().Size(), Format(value));
        else
            work.Splice(at, arg.GetTag().Size(), value.mId);
    }
    // Put together from valid texts, it needs no cleaning: the byte string's append will do.
    ZAV_UTFString text(work.Size());
    text.ZAV_String::Append(work.Ptr(), work.Size());
    return text;
}

// The argument takes the first occurrence of its tag that overlaps no other argument's and no rune.
void ZAV_I18nMsgFormatter::Claim(std::vector<Place>& places, const char* text, const ZAV_I18nMsgArg& arg) {
    if (arg.GetTag().IsEmpty()) return;
    const size_t length = std::strlen(text);
    for (const char* p = text; (p = std::strstr(p, arg.GetTag().Ptr())); ++p) {
        if (zav_utf::IsInsideRune(text, length, static_cast<size_t>(p - text))) continue;
        Place place = {static_cast<unsigned>(p - text), &arg};
        auto overlaps = [&](const Place& o) { return place.mStart < o.End() && o.mStart < place.End(); };
        if (std::any_of(places.begin(), places.end(), overlaps)) continue;
        places.push_back(place);
        return;
    }
}

ZAV_UTFString ZAV_I18nMsgFormatter::FormatOnce(const ZAV_I18nMsg& msg) const {
    std::optional<ZAV_UTFString> key;
    const ZAV_UTFString& found = Lookup(msg.mId, key);
    std::vector<Place> places;
    for (const ZAV_I18nMsgArg& arg : Args(msg)) Claim(places, found.Ptr(), arg);
    std::sort(places.begin(), places.end(),
              [](const Place& a, const Place& b) { return a.mStart < b.mStart; });

    ZAV_String text;
    unsigned at = 0;
    for (const Place& place : places) {
        text.Append(found.Ptr() + at, place.mStart - at);
        const ZAV_I18nMsg& value = place.mArg->GetMsg();
        if (IsMessage(*place.mArg))
            text += FormatOnce(value);
        else
            text += value.mId;
        at = place.End();
    }
    text.Append(found.Ptr() + at, found.Size() - at);
    return ZAV_UTFString(text);
}

ZAV_UTFString ZAV_I18nMsg::Format(const char* lang, ZAV_I18nResource* resources,
                                  ZAV_I18nResource* baseResources) const {
    return ZAV_I18nMsgFormatter(lang, resources, baseResources).Format(*this);
}

ZAV_UTFString ZAV_I18nMsg::FormatOnce(const char* lang, ZAV_I18nResource* resources,
                                      ZAV_I18nResource* baseResources) const {
    return ZAV_I18nMsgFormatter(lang, resources, baseResources).FormatOnce(*this);
}

ZAV_OrderedCltn ZAV_I18nMsg::GetTagList() const {
    ZAV_OrderedCltn list(16);
    auto add = [&](const ZAV_I18nMsg& msg) { list.Add(new ZAV_CltString(msg.mId)); };
    add(*this);
    ZAV_I18nMsgFormatter::VisitSubErrors(*this, add);
    return list;
}

ZAV_OrderedCltn ZAV_I18nMsg::FormatAll(const char* lang, ZAV_I18nResource* resources,
                                       ZAV_I18nResource* baseResources) const {
    ZAV_I18nMsgFormatter formatter(lang, resources, baseResources);
    ZAV_OrderedCltn list(16);
    auto add = [&](const ZAV_I18nMsg& msg) {
        ZAV_CltUTFString* text = new ZAV_CltUTFString("");
        *text = formatter.Format(msg); // with what stands behind a NUL
        list.Add(text);
    };
    add(*this);
    ZAV_I18nMsgFormatter::VisitSubErrors(*this, add);
    return list;
}
