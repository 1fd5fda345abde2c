#include <zavbase/i18n/i18n_msg_arg.h>

#include <ostream>

ZAV_DEFINE_CLASS(ZAV_I18nMsgArg, ZAV_Link)
ZAV_DEFINE_CLASS(ZAV_I18nMsgArgList, ZAV_LinkedList)

ZAV_I18nMsgArg::ZAV_I18nMsgArg(const char* tag, const ZAV_I18nMsg& msg, ZAV_I18nMsgArgType type)
    : mTag(tag), mType(type), mMsg(msg) {}
ZAV_I18nMsgArg::ZAV_I18nMsgArg(const ZAV_I18nMsgArg& other) = default;
ZAV_I18nMsgArg::~ZAV_I18nMsgArg() {}
ZAV_I18nMsgArg& ZAV_I18nMsgArg::operator=(const ZAV_I18nMsgArg& other) = default;

void ZAV_I18nMsgArg::PrintOn(std::ostream& os) {
    os << mTag << " = " << static_cast<ZAV_Object&>(mMsg);
    if (mType == ZAV_I18N_TAG) os << "(tag)";
    if (mType == ZAV_I18N_SUBERROR) os << "(SubErr)";
}

ZAV_I18nMsgArgList::ZAV_I18nMsgArgList() {}
ZAV_I18nMsgArgList::ZAV_I18nMsgArgList(const ZAV_I18nMsgArgList& other) : ZAV_LinkedList() {
    AddCopies(other);
}
ZAV_I18nMsgArgList::ZAV_I18nMsgArgList(const ZAV_I18nMsgArgList* other) {
    if (other) AddCopies(*other);
}
ZAV_I18nMsgArgList::~ZAV_I18nMsgArgList() { ClearAndDestroy(); }

ZAV_I18nMsgArgList& ZAV_I18nMsgArgList::operator=(const ZAV_I18nMsgArgList& other) {
    if (this == &other) return *this;
    ClearAndDestroy();
    AddCopies(other);
    return *this;
}

void ZAV_I18nMsgArgList::AddCopies(const ZAV_I18nMsgArgList& other) {
    for (ZAV_Link* l = static_cast<ZAV_Link*>(other.First()); !l->IsListEnd(); l = l->NextLink())
        Add(new ZAV_I18nMsgArg(*static_cast<ZAV_I18nMsgArg*>(l)));
}

void ZAV_I18nMsgArgList::PrintOn(std::ostream& os) {
    for (ZAV_Link* l = static_cast<ZAV_Link*>(First()); !l->IsListEnd(); l = l->NextLink()) l->PrintOn(os);
}
