#ifndef ZAVBASE_I18N_I18N_RESOURCE_H
#define ZAVBASE_I18N_I18N_RESOURCE_H

#include <zavbase/collections/dictionary.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/strings/utf_string.h>

class ZAV_UValDict;

/// Turns a message identifier and a language code into a text. The texts of a language come from one value
/// dictionary file, named FILE.LANG (msgs.nl), which is read once, when the language is first asked for; what
/// it lacks comes from the default definitions that the program installed, and failing these the identifier
/// is the text. In both an entry is IDENTIFIER = text; the identifier is a dictionary path, so one that holds
/// the path separator (":") names an entry of a nested dictionary.
///
/// Copies of a resource share the languages and the definitions read so far; each later reads its own.
///
/// Language codes become part of a file name as they are. A code that comes from outside could name any file
/// ("/../../x") or end the name (NUL): let through only what ZAV_IsPlainLangCode accepts. The code "%$@#" is
/// taken: it names the default definitions.
///
/// Threads: GetResource changes the resource only when it meets a language for the first time. After every
/// language has been asked for once, threads may call it at once; SetDefaultDefs must not run meanwhile.
class ZAV_API ZAV_I18nResource : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_I18nResource)
public:
    ZAV_I18nResource(); ///< no file name: the files ".en" and so on of the current folder would be read
    explicit ZAV_I18nResource(const ZAV_SystemString& file); ///< reads nothing yet
    ZAV_I18nResource(const ZAV_I18nResource& other);
    ~ZAV_I18nResource() override;
    ZAV_I18nResource& operator=(const ZAV_I18nResource& other);

    /// From now on languages are read from files of this name; those read already stay.
    void SetResourceFile(const ZAV_SystemString& file);

    /// Adds the definitions of `defs`, a ZAV_UValDict, to the default ones, replacing those of the same
    /// identifier. `defs` stays the caller's. Texts handed out for replaced definitions become invalid.
    void SetDefaultDefs(ZAV_Object* defs);

    /// The text of `id`. An empty `lang` asks for the default definitions only. A language file that cannot
    /// be read costs one trace line (level 0x1) and is not tried again. An entry that is not a string counts
    /// as missing. The result lives as long as this resource or the last of its copies (but see
    /// SetDefaultDefs); for an unknown identifier it is `id` itself, which must then outlive its use.
    const ZAV_UTFString& GetResource(const ZAV_UTFString& id, const ZAV_String& lang);

private:
    friend struct ZAV_I18nMsgFormatter;
    const ZAV_UTFString& Lookup(const ZAV_UTFString& id, const char* lang, unsigned length);

    ZAV_SystemString mResourceFile;
    ZAV_DictAutoDel mDicts; ///< language code to dictionary
};

/// Whether a language code names a file beside the others and nothing else: 1 to 64 letters, digits and
/// "_-@.", beginning with a letter or digit, not ending in "." and without "..".
ZAV_API boolean_t ZAV_IsPlainLangCode(const ZAV_String& lang);

/// Adds the definition `id` = `text` (UTF-8) to `dict`; nothing happens if it cannot be made or `dict` is
/// null.
ZAV_API void ZAV_I18nDef2Dict(ZAV_UValDict* dict, const char* id, const char* text);

/// Adds the library's own English messages to `dict`: those about parameters (2) if `paramDefs` is B_TRUE,
/// the others (13) if `baseDefs` is B_TRUE. Other non-zero flags add nothing.
ZAV_API void ZAV_Base_GetI18nDefs(ZAV_UValDict* dict, boolean_t paramDefs, boolean_t baseDefs);
/// The same as the entry point "GetI18nDefs" of a module (platform/shared_lib.h): `dict` is a ZAV_UValDict.
ZAV_API void ZAV_Base_GetI18nDefsEntry(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs);

#endif
