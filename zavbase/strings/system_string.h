#ifndef ZAVBASE_STRINGS_SYSTEM_STRING_H
#define ZAVBASE_STRINGS_SYSTEM_STRING_H

#include <zavbase/foundation/object.h>
#include <zavbase/strings/utf_string.h>

/// A text that goes to or comes from the operating system, such as a file name: held in the system's code
/// page, with a UTF-8 form made on first request and dropped whenever the text is set.
///
/// One converter serves all system strings; the program sets it up once with Initialize. Before that, text
/// that needs converting fails (result -1, an empty text). The strings themselves are not locked.
class ZAV_API ZAV_SystemString : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_SystemString)
public:
    /// Chooses the code page, see ZAV_TextEncodingConverter::Initialize: configured under `name`, or that of
    /// the locale for null. Returns 0.
    static int Initialize(const char* name);
    static void Cleanup();

    ZAV_SystemString();
    ZAV_SystemString(const ZAV_SystemString& s);
    /// System text, taken as it is.
    ZAV_SystemString(const char* s);
    ZAV_SystemString(const ZAV_String& s);
    /// UTF-8, converted.
    ZAV_SystemString(const ZAV_UTFString& u);
    ZAV_SystemString(const char* s, boolean_t isUtf);
    ~ZAV_SystemString() override;
    ZAV_SystemString& operator=(const ZAV_SystemString& s);

    /// Return 0, or -1 when the conversion failed: the text is then what could be converted, with "?" for
    /// what the code page lacks.
    int Set(const ZAV_SystemString& s);
    int Set(const char* s);
    int Set(const ZAV_String& s);
    int Set(const ZAV_UTFString& u);
    int Set(const char* s, boolean_t isUtf);

    /// Changing the text through this reference does not drop a UTF-8 form already made.
    ZAV_String& GetSystemString() { return mString; }
    const ZAV_String& GetSystemString() const { return mString; }
    /// The same object until the next Set.
    ZAV_UTFString& GetUtfString();
    /// Not for several threads at once, although const: the first call makes the form.
    const ZAV_UTFString& GetUtfString() const;

    /// Writes the system text.
    void PrintOn(std::ostream& os) override;

private:
    void dropUtf();

    ZAV_String mString;
    mutable ZAV_UTFString* mUtfString;
};

#endif
