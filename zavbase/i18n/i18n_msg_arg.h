#ifndef ZAVBASE_I18N_I18N_MSG_ARG_H
#define ZAVBASE_I18N_I18N_MSG_ARG_H

#include <zavbase/collections/linked_list.h>
#include <zavbase/i18n/i18n_msg.h>

/// One argument of a message. A text is kept as the identifier of a message without arguments.
class ZAV_API ZAV_I18nMsgArg : public ZAV_Link {
    ZAV_DECLARE_CLASS(ZAV_I18nMsgArg)
public:
    ZAV_I18nMsgArg(const char* tag, const ZAV_I18nMsg& msg, ZAV_I18nMsgArgType type);
    ZAV_I18nMsgArg(const ZAV_I18nMsgArg& other);
    ~ZAV_I18nMsgArg() override;
    ZAV_I18nMsgArg& operator=(const ZAV_I18nMsgArg& other);

    void PrintOn(std::ostream& os) override; ///< tag, " = ", message, then "(tag)" or "(SubErr)" by type

    const ZAV_UTFString& GetTag() const { return mTag; }
    ZAV_I18nMsgArgType GetType() const { return mType; }
    const ZAV_I18nMsg& GetMsg() const { return mMsg; }

private:
    ZAV_UTFString mTag; ///< with its brackets, e.g. "<<filename>>"
    ZAV_I18nMsgArgType mType;
    ZAV_I18nMsg mMsg;
};

/// The arguments of a message, in the order in which they were added. It holds ZAV_I18nMsgArg and nothing
/// else, owns them, and copies them with all that they hold.
class ZAV_API ZAV_I18nMsgArgList : public ZAV_LinkedList {
    ZAV_DECLARE_CLASS(ZAV_I18nMsgArgList)
public:
    ZAV_I18nMsgArgList();
    ZAV_I18nMsgArgList(const ZAV_I18nMsgArgList& other);
    explicit ZAV_I18nMsgArgList(const ZAV_I18nMsgArgList* other); ///< null gives an empty list
    ~ZAV_I18nMsgArgList() override;
    ZAV_I18nMsgArgList& operator=(const ZAV_I18nMsgArgList& other);

    void PrintOn(std::ostream& os) override; ///< the arguments, one after the other

private:
    void AddCopies(const ZAV_I18nMsgArgList& other);
};

#endif
