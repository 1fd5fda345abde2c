#ifndef ZAVBASE_I18N_I18N_MSG_H
#define ZAVBASE_I18N_I18N_MSG_H

#include <zavbase/collections/link.h>
#include <zavbase/collections/ordered_cltn.h>
#include <zavbase/strings/utf_string.h>

class ZAV_I18nMsgArgList;
class ZAV_I18nResource;

/// What an argument of a message is. Other values act as strings.
enum ZAV_I18nMsgArgType : int {
    ZAV_I18N_STRING = 0,  ///< the text is inserted as it is
    ZAV_I18N_TAG = 1,     ///< a message, formatted and inserted
    ZAV_I18N_SUBERROR = 2 ///< the same, and listed by GetTagList and FormatAll
};

/// A message that knows no language: an identifier and named arguments. Only Format looks the identifier up
/// in a resource (i18n_resource.h) and puts the arguments in the place of the "<<tag>>"s of the text found
/// there. Arguments may be messages themselves.
///
///     ZAV_I18nMsg msg("ERR_BASE_FILEREAD");
///     msg.AddArg("<<filetype>>", "UVALBIN", ZAV_I18N_STRING);
///     msg.AddArg("<<filename>>", name, ZAV_I18N_STRING);
///     std::cout << msg.Format("nl", &resource, nullptr).Ptr();
///
/// A message owns its arguments, and copies of it have their own; it can be linked into a list, and copying
/// never touches the link. One thread at a time.
class ZAV_API ZAV_I18nMsg : public ZAV_Link {
    ZAV_DECLARE_CLASS(ZAV_I18nMsg)
public:
    ZAV_I18nMsg();
    ZAV_I18nMsg(const ZAV_UTFString& id);
    ZAV_I18nMsg(const ZAV_I18nMsg& other);
    ~ZAV_I18nMsg() override;
    ZAV_I18nMsg& operator=(const ZAV_I18nMsg& other);
    ZAV_I18nMsg& operator=(const ZAV_UTFString& id); ///< changes only the identifier

    ZAV_I18nMsg& Set(const ZAV_UTFString& id); ///< clears the message first
    void Clear();                              ///< no identifier, no arguments, not a warning

    void SetWarning(boolean_t warning) { mWarning = warning; }
    boolean_t IsWarning() const { return mWarning; }
    boolean_t IsValid() const { return ZAV_Bool(!mId.IsEmpty()); } ///< has an identifier

    /// Compare the identifier. Text on the left is found only where the right side is a message: as free
    /// functions these would take part in comparisons of two texts, by conversion, and make them ambiguous.
    boolean_t operator==(const ZAV_UTFString& id) const { return mId == id; }
    boolean_t operator==(const ZAV_Str& id) const { return *this == ZAV_UTFString(id); }
    boolean_t operator==(const ZAV_SubStr& id) const { return *this == ZAV_UTFString(id); }
    boolean_t operator==(const char* id) const { return *this == ZAV_UTFString(id); }
    boolean_t operator!=(const ZAV_UTFString& id) const { return ZAV_Bool(!(*this == id)); }
    boolean_t operator!=(const ZAV_Str& id) const { return ZAV_Bool(!(*this == id)); }
    boolean_t operator!=(const ZAV_SubStr& id) const { return ZAV_Bool(!(*this == id)); }
    boolean_t operator!=(const char* id) const { return ZAV_Bool(!(*this == id)); }
    friend boolean_t operator==(const ZAV_UTFString& id, const ZAV_I18nMsg& msg) { return msg == id; }
    friend boolean_t operator==(const ZAV_Str& id, const ZAV_I18nMsg& msg) { return msg == id; }
    friend boolean_t operator==(const ZAV_SubStr& id, const ZAV_I18nMsg& msg) { return msg == id; }
    friend boolean_t operator==(const char* id, const ZAV_I18nMsg& msg) { return msg == id; }
    friend boolean_t operator!=(const ZAV_UTFString& id, const ZAV_I18nMsg& msg) { return msg != id; }
    friend boolean_t operator!=(const ZAV_Str& id, const ZAV_I18nMsg& msg) { return msg != id; }
    friend boolean_t operator!=(const ZAV_SubStr& id, const ZAV_I18nMsg& msg) { return msg != id; }
    friend boolean_t operator!=(const char* id, const ZAV_I18nMsg& msg) { return msg != id; }

    /// Adds an argument; `tag` is the placeholder as it stands in the text, brackets included. A text belongs
    /// to ZAV_I18N_STRING (with the message types it is taken for the identifier of a message without
    /// arguments), a message to the other two.
    void AddArg(const char* tag, const ZAV_UTFString& value, ZAV_I18nMsgArgType type);
    void AddArg(const char* tag, const ZAV_I18nMsg& sub, ZAV_I18nMsgArgType type);
    /// Adds a number as text, formatted by the first conversion of a printf-style `format`. Length letters
    /// are ignored: int and long have 32 bits everywhere, long long 64. A conversion that does not suit the
    /// number ("%s", "%n", "%d" for a double, or "%c" for a long long) is replaced by the usual one, a "*"
    /// counts as absent, and the text does not depend on the process's locale.
    void AddArg(const char* tag, long value, const char* format, ZAV_I18nMsgArgType type);
    void AddArg(const char* tag, unsigned long value, const char* format, ZAV_I18nMsgArgType type);
    void AddArg(const char* tag, long long value, const char* format, ZAV_I18nMsgArgType type);
    void AddArg(const char* tag, unsigned long long value, const char* format, ZAV_I18nMsgArgType type);
    void AddArg(const char* tag, double value, const char* format, ZAV_I18nMsgArgType type);
    void AddArg(const char* tag, int value, const char* format, ZAV_I18nMsgArgType type) {
        AddArg(tag, static_cast<long>(value), format, type);
    }
    void AddArg(const char* tag, unsigned value, const char* format, ZAV_I18nMsgArgType type) {
        AddArg(tag, static_cast<unsigned long>(value), format, type);
    }
    /// The text in language `lang`. The identifier is looked up in `resources`, or, if it begins with "+++",
    /// in `baseResources` without these three characters; without a resource it is its own text. Then each
    /// argument in turn replaces the first occurrence of its tag in the text as it stands by then: a tag that
    /// occurs twice needs two arguments, and a tag that an earlier argument brought in is replaced too. A tag
    /// without argument stays, an argument without tag is left out. Tags are looked for up to a NUL, and are
    /// never found inside a rune.
    ZAV_UTFString Format(const char* lang, ZAV_I18nResource* resources,
                         ZAV_I18nResource* baseResources) const;
    /// The same in one pass: tags are looked for in the text of the resource only, so those that occur inside
    /// arguments are left alone. Use it where argument texts come from outside. An empty tag matches nothing.
    ZAV_UTFString FormatOnce(const char* lang, ZAV_I18nResource* resources,
                             ZAV_I18nResource* baseResources) const;

    /// The identifiers (new ZAV_CltString) or formatted texts (new ZAV_CltUTFString) of this message and of
    /// its sub-errors, depth first. The elements are the caller's to delete (ClearAndDestroy).
    ZAV_OrderedCltn GetTagList() const;
    ZAV_OrderedCltn FormatAll(const char* lang, ZAV_I18nResource* resources,
                              ZAV_I18nResource* baseResources) const;

    /// The identifier, then the arguments in brackets: ID[<<tag>> = text<<sub>> = ID2(SubErr)]
    void PrintOn(std::ostream& os) override;

private:
    friend struct ZAV_I18nMsgFormatter;

    boolean_t mWarning;
    ZAV_UTFString mId;
    ZAV_I18nMsgArgList* mArgs; ///< null while there are none
};

#endif
