#include "typed_value.h"

#include <algorithm>
#include <memory>
#include <sstream>

#include <zavbase/foundation/exception.h>
#include <zavbase/strings/rune.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_text_check.h>
#include <zavbase/values/uval_types.h>

#include "../support/harmless.h"
#include "../support/tool.h"
#include "../support/utf8.h"

namespace {

const char* const integers[] = {"char", "uchar", "short", "ushort", "long", "ulong"};
const char* const reals[] = {"float", "double"};

template <size_t N>
bool IsOneOf(const std::string& word, const char* const (&words)[N]) {
    return std::find(words, words + N, word) != words + N;
}

[[noreturn]] void Refuse(const std::string& typed, const std::string& why) {
    throw ToolFailure{TOOL_TROUBLE, Harmless(typed) + ": " + why};
}

/// What the reader thinks of a text.
struct Reading {
    bool mIsValid = false;
    int mRemark = 0; ///< kind of the first remark
    std::string mMessage, mFound;
};

void Note(void* context, const ZAV_UValTextRemark& remark) {
    Reading& reading = *static_cast<Reading*>(context);
    if (reading.mRemark) return;
    reading.mRemark = remark.mKind;
    reading.mMessage = remark.mMessage;
    reading.mFound = remark.mFound;
}

Reading Read(const std::string& text) {
    Reading reading;
    std::istringstream is(text);
    ZAV_UVal* value = nullptr;
    ZAV_TRY {
        ZAV_CheckUValTxt(is, value, Note, &reading);
        delete value;
        reading.mIsValid = true;
    }
    ZAV_CATCH(ZAV_FileException, e) { (void)e; }
    ZAV_CATCH_END
    return reading;
}

bool IsNumber(const std::string& word) {
    if (word.empty() || word.find_first_not_of("0123456789.eE+-") != word.npos) return false;
    const Reading reading = Read(word);
    return reading.mIsValid && reading.mRemark != UVAL_REMARK_NUMBER_TAIL &&
           reading.mRemark != UVAL_REMARK_NO_NUMBER;
}

/// A word of digits alone would be read as an integer of 32 bits, also for a real.
std::string NumberText(const std::string& word, const std::string& type) {
    const bool isInteger = word.find_first_not_of("0123456789-") == word.npos;
    if (!IsNumber(word)) Refuse(word, "no number");
    if (!isInteger && IsOneOf(type, integers)) Refuse(word, "no whole number");
    const std::string text = word + (isInteger && IsOneOf(type, reals) ? ".0" : "") +
                             (type == "long" || type == "double" ? "" : " zav" + type);
    // The reader takes -1 for the largest, since the writer writes that so.
    const bool isBelow = word[0] == '-' && type[0] == 'u';
    if (isBelow || Read(text).mRemark) Refuse(word, "does not fit the type " + type + ", see --type");
    return text;
}

std::string StringText(const std::string& typed, bool isUtf) {
    if (isUtf && (!IsUtf8(typed) || !isutfstr(typed.c_str())))
        Refuse(typed, "a UTF string holds UTF-8 text of characters up to U+FFFF");
    const std::unique_ptr<ZAV_UVal> value(ZAV_NewUVal(isUtf ? UVAL_UTFSTRING : UVAL_STRING));
    value->SetStrValue(ZAV_String(typed.data(), static_cast<unsigned int>(typed.size())), 0);
    std::ostringstream text;
    text.exceptions(std::ios::badbit); // a lack of memory comes through
    ZAV_WriteUValTxt(text, value.get(), 0);
    const std::string result = text.str();
    return result.substr(0, result.find_last_not_of(' ') + 1);
}

std::string TextOfType(const std::string& typed, const std::string& type) {
    if (IsOneOf(type, integers) || IsOneOf(type, reals)) return NumberText(typed, type);
    if (type == "string" || type == "utfstring") return StringText(typed, type == "utfstring");
    Refuse(type,
           "no type; they are char, uchar, short, ushort, long, ulong, float, double, string, utfstring");
}

/// What is written as text form is meant so: then nothing in it may be read as something else.
std::string CheckedText(const std::string& typed) {
    const Reading reading = Read(typed);
    if (!reading.mIsValid) Refuse(typed, "not valid text form; --type=string stores it as it stands");
    if (reading.mRemark) Refuse(typed, reading.mMessage + " (found \"" + reading.mFound + "\")");
    return typed;
}

/// "5 zavshort"
bool SplitKeyword(const std::string& typed, std::string& number, std::string& type) {
    std::istringstream words(typed);
    std::string keyword, more;
    if (!(words >> number >> keyword) || words >> more || keyword.compare(0, 3, "zav") != 0) return false;
    type = keyword.substr(3);
    return IsNumber(number) && (IsOneOf(type, integers) || IsOneOf(type, reals));
}

} // namespace

std::string TypedValue(const std::string& typed, const std::string& type) {
    if (!type.empty()) return TextOfType(typed, type);
    if (!typed.empty() && (typed[0] == '(' || typed[0] == '[' || typed.compare(0, 2, "<<") == 0))
        return CheckedText(typed);
    if (IsNumber(typed))
        return NumberText(typed, typed.find_first_of(".eE") == typed.npos ? "long" : "double");
    std::string number, numberType;
    if (SplitKeyword(typed, number, numberType)) return NumberText(number, numberType);
    return StringText(typed, false);
}
