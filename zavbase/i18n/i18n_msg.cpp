#include <zavbase/i18n/i18n_msg.h>

#include <zavbase/collections/clt_string.h>
#include <zavbase/i18n/i18n_msg_arg.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/i18n/number_format_internal.h>

#include <algorithm>
#include <cstring>
#include <ostream>
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
        : mLang(lang), mResources(resources), mBaseResources(baseResources) {}

    static const ZAV_I18nMsgArg* FirstArg(const ZAV_I18nMsg& msg) {
        return msg.mArgs ? AsArg(static_cast<ZAV_Link*>(msg.mArgs->First())) : nullptr;
    }
    static const ZAV_I18nMsgArg* NextArg(const ZAV_I18nMsgArg* arg) { return AsArg(arg->NextLink()); }

    ZAV_UTFString Format(const ZAV_I18nMsg& msg) const;
    ZAV_UTFString FormatOnce(const ZAV_I18nMsg& msg) const;

    /// Calls visit(message) for each sub-error below `msg`, depth first.
    template <class Visit> static void VisitSubErrors(const ZAV_I18nMsg& msg, const Visit& visit) {
        for (const ZAV_I18nMsgArg* arg = FirstArg(msg); arg; arg = NextArg(arg)) {
            if (arg->GetType() == ZAV_I18N_SUBERROR) visit(arg->GetMsg());
            VisitSubErrors(arg->GetMsg(), visit);
        }
    }

private:
    struct Place {
        unsigned mStart;
        const ZAV_I18nMsgArg* mArg;
        unsigned End() const { return mStart + mArg->GetTag().Size(); }
    };

    static const ZAV_I18nMsgArg* AsArg(ZAV_Link* link) {
        return link->IsListEnd() ? nullptr : static_cast<const ZAV_I18nMsgArg*>(link);
    }
    static bool IsMessage(const ZAV_I18nMsgArg& arg) {
        return arg.GetType() == ZAV_I18N_TAG || arg.GetType() == ZAV_I18N_SUBERROR;
    }
    static void Claim(std::vector<Place>& places, const char* text, const ZAV_I18nMsgArg& arg);
    const ZAV_UTFString& Lookup(const ZAV_UTFString& id, ZAV_UTFString& key) const;

    ZAV_String mLang;
    ZAV_I18nResource* mResources;
    ZAV_I18nResource* mBaseResources;
};

// `key` is where a text lives that is in no resource.
const ZAV_UTFString& ZAV_I18nMsgFormatter::Lookup(const ZAV_UTFString& id, ZAV_UTFString& key) const {
    if (std::strncmp(id.Ptr(), "+++", 3) == 0) {
        key = ZAV_UTFString(id.Ptr() + 3);
        return mBaseResources ? mBaseResources->GetResource(key, mLang) : key;
    }
    return mResources ? mResources->GetResource(id, mLang) : id;
}

namespace {

unsigned RoomFor(const ZAV_UTFString& text, const ZAV_I18nMsg& msg) {
    unsigned room = text.Size();
    for (const ZAV_I18nMsgArg* arg = ZAV_I18nMsgFormatter::FirstArg(msg); arg;
         arg = ZAV_I18nMsgFormatter::NextArg(arg))
        room += arg->ValueSize();
    return room;
}

void ReplaceFirst(ZAV_String& text, const ZAV_UTFString& tag, const ZAV_UTFString& value) {
    int at = text.Find(tag.Ptr());
    if (at >= 0) text(static_cast<unsigned>(at), tag.Size()) = value;
}

} // namespace

// The room is taken at once, so that the replacements happen in place.
ZAV_UTFString ZAV_I18nMsgFormatter::Format(const ZAV_I18nMsg& msg) const {
    ZAV_UTFString key;
    const ZAV_UTFString& found = Lookup(msg.mId, key);
    ZAV_UTFString text(RoomFor(found, msg));
    text += found;
    for (const ZAV_I18nMsgArg* arg = FirstArg(msg); arg; arg = NextArg(arg)) {
        if (IsMessage(*arg)) {
            if (text.Find(arg->GetTag().Ptr()) >= 0) ReplaceFirst(text, arg->GetTag(), Format(arg->GetMsg()));
        } else {
            ReplaceFirst(text, arg->GetTag(), arg->GetMsg().mId);
        }
    }
    return text;
}

// The argument takes the first occurrence of its tag that overlaps no other argument's.
void ZAV_I18nMsgFormatter::Claim(std::vector<Place>& places, const char* text, const ZAV_I18nMsgArg& arg) {
    if (arg.GetTag().IsEmpty()) return;
    for (const char* p = text; (p = std::strstr(p, arg.GetTag().Ptr())); ++p) {
        Place place = {static_cast<unsigned>(p - text), &arg};
        auto overlaps = [&](const Place& o) { return place.mStart < o.End() && o.mStart < place.End(); };
        if (std::any_of(places.begin(), places.end(), overlaps)) continue;
        places.push_back(place);
        return;
    }
}

ZAV_UTFString ZAV_I18nMsgFormatter::FormatOnce(const ZAV_I18nMsg& msg) const {
    ZAV_UTFString key;
    const ZAV_UTFString& found = Lookup(msg.mId, key);
    std::vector<Place> places;
    for (const ZAV_I18nMsgArg* arg = FirstArg(msg); arg; arg = NextArg(arg)) Claim(places, found.Ptr(), *arg);
    std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) { return a.mStart < b.mStart; });

    ZAV_String text(RoomFor(found, msg));
    unsigned at = 0;
    for (const Place& place : places) {
        text.Append(found.Ptr() + at, place.mStart - at);
        text += IsMessage(*place.mArg) ? FormatOnce(place.mArg->GetMsg()) : place.mArg->GetMsg().mId;
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
    auto add = [&](const ZAV_I18nMsg& msg) { list.Add(new ZAV_CltUTFString(formatter.Format(msg).Ptr())); };
    add(*this);
    ZAV_I18nMsgFormatter::VisitSubErrors(*this, add);
    return list;
}
