#include <zavbase/foundation/exception_context.h>

#include <sstream>
#include <string>

#include <zavbase/collections/clt_string.h>
#include <zavbase/foundation/error.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/os/error.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/value_dict.h>

namespace {

bool IsBlankOrControl(char c) { return (c >= 0 && c <= ' ') || c == 0x7F; }

// Descriptions end with ": " where more may follow; texts of the system may end with a line end.
std::string Trimmed(std::string text) {
    while (!text.empty() && (IsBlankOrControl(text.back()) || text.back() == ':')) text.pop_back();
    return text;
}

void Append(std::string& line, const std::string& piece) {
    if (piece.empty()) return;
    if (!line.empty()) line += ": ";
    line += piece;
}

std::string PlaceOf(const ZAV_ExceptionContext& context) {
    std::string place = context.mPath;
    const bool named = !place.empty();
    if (context.mLine > 0) {
        place += (named ? ":" : "line ") + std::to_string(context.mLine);
        place += (named ? ":" : ", column ") + std::to_string(context.mColumn);
    } else if (context.mOffset >= 0) {
        place += (named ? ": byte " : "byte ") + std::to_string(context.mOffset);
    }
    return place;
}

// The line is for the system's terminal or log; where the message cannot be converted, better UTF-8 than
// nothing.
std::string SystemText(const ZAV_UTFString& text) {
    ZAV_SystemString converted;
    return (converted.Set(text) == 0 ? converted.GetSystemString() : ZAV_String(text.Ptr())).Ptr();
}

// The message, and those of its sub-errors that its text does not contain.
std::string MessageOf(const ZAV_Error& error, const char* lang, ZAV_I18nResource& resources) {
    if (error == error.Format(lang, &resources, nullptr)) {
        std::ostringstream unknown;
        unknown << error;
        return unknown.str();
    }
    std::string message;
    ZAV_OrderedCltn texts = error.FormatAll(lang, &resources, nullptr);
    for (unsigned i = 0; i < texts.Size(); ++i) {
        std::string text = SystemText(*static_cast<ZAV_CltUTFString*>(texts.At(static_cast<int>(i))));
        if (message.find(text) == message.npos) Append(message, Trimmed(text));
    }
    texts.ClearAndDestroy();
    return message;
}

std::string MessageOf(const ZAV_Error& error, const char* lang, ZAV_I18nResource* resources) {
    if (!error.IsValid()) return std::string();
    if (resources) return MessageOf(error, lang ? lang : "", *resources);
    ZAV_UValDict definitions;
    ZAV_Base_GetI18nDefs(&definitions, B_TRUE, B_TRUE);
    ZAV_I18nResource own;
    own.SetDefaultDefs(&definitions);
    return MessageOf(error, "", own);
}

std::string ReasonOf(const ZAV_ExceptionContext& context, uint32_t osError) {
    std::string reason = Trimmed(context.mReason);
    if (*context.mFound) reason += std::string(" (found \"") + context.mFound + "\")";
    if (!reason.empty() || osError == 0) return reason;
    char text[256];
    if (zav_os::ErrorText(osError, text, sizeof text)) return Trimmed(text);
    return "system error " + std::to_string(osError);
}

} // namespace

ZAV_String ZAV_ExceptionLine(const ZAV_Exception* e, const char* lang, ZAV_I18nResource* resources) {
    if (!e) return "Out of memory";
    const ZAV_ExceptionContext& context = ZAV_GetExceptionContext(e);
    uint32_t osError = context.mOsError;
    if (osError == 0 && e->IsKindOf(&ZAV_FileException::classZAV_FileException))
        osError = static_cast<const ZAV_FileException*>(e)->mOsError;
    ZAV_String description;
    std::string line = PlaceOf(context);
    Append(line, Trimmed(e->ToString(description).Ptr()));
    if (e->IsKindOf(&ZAV_ErrorException::classZAV_ErrorException))
        Append(line, MessageOf(static_cast<const ZAV_ErrorException*>(e)->mError, lang, resources));
    Append(line, ReasonOf(context, osError));
    for (char& c : line)
        if (IsBlankOrControl(c)) c = ' ';
    return ZAV_String(line.data(), static_cast<unsigned int>(line.size()));
}
