// zavconf: looks into value files, changes them, and carries them to and from JSON.

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <vector>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/platform/file.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_text_check.h>
#include <zavbase/values/uval_types.h>

#include "../support/harmless.h"
#include "../support/tool.h"
#include "exact.h"
#include "json.h"
#include "text_edit.h"
#include "typed_value.h"

namespace {

enum Exit { DONE = TOOL_DONE, NOT_SO = 1, TROUBLE = TOOL_TROUBLE, LOST = 3 };

const char* const help =
    "usage: zavconf [--separator=C] COMMAND ...\n"
    "\n"
    "  get FILE KEY...        prints the value at the path: one element a line, a dictionary as a list\n"
    "  list FILE              prints the whole dictionary\n"
    "  set [--type=T] FILE PATH VALUE\n"
    "                         stores VALUE: a number if all of it is one (5, -2.5e3, 5 zavshort), text form "
    "if\n"
    "                         it begins with (, [ or <<, otherwise a string. --type stores a number or "
    "string\n"
    "                         of type T: char uchar short ushort long ulong float double string utfstring.\n"
    "                         A text file keeps all its other bytes, comments and order\n"
    "  convert IN OUT         writes a text file as a binary one and a binary file as text\n"
    "  import JSON OUT        writes JSON as a text file, or a binary one when OUT ends in .bin\n"
    "  export FILE [JSON]     writes FILE as JSON, to the standard output when no JSON is named\n"
    "  check [--strict] FILE...\n"
    "                         says file, line and column of the first error in each; with --strict also of "
    "what is\n"
    "                         read although it was hardly meant: 5, 5% 0x1F, keys that are cut, empty or "
    "there "
    "twice\n"
    "  --help                 this text\n"
    "\n"
    "FILE may be text or binary. A path is keys with \":\" between them, or the character C. Keys have up to "
    "64\n"
    "bytes. The text form keeps six decimals, drops empty keys, and reads a key that holds the separator as "
    "a\n"
    "path; choose another separator, or a binary file, where that matters.\n"
    "\n"
    "Exit code: 0 done; 1 no such value, or check or import found an error; 2 a file could not be read or "
    "written,\n"
    "the value cannot be stored, or the command line is wrong; 3 done, but not all could be kept: each loss "
    "is "
    "named\n"
    "on standard error; 4 memory ran out.\n";

typedef std::vector<std::string> Arguments;

// Runs an operation on a file; its failure names the file.
template <class Operation>
void Guard(const std::string& path, Exit exit, Operation operation) {
    std::string trouble;
    ZAV_TRY { operation(); }
    ZAV_CATCH(ZAV_MemoryException, e) {
        (void)e;
        ZAV_RETHROW;
    }
    ZAV_CATCH(ZAV_Exception, e) {
        ZAV_AddExceptionContext(e, {path.c_str()});
        trouble = ZAV_ExceptionLine(e).Ptr();
    }
    ZAV_CATCH_END
    if (!trouble.empty()) throw ToolFailure{exit, trouble};
}

void Load(const std::string& path, ZAV_UValDict& dict, Exit exit = TROUBLE) {
    Guard(path, exit, [&] { dict.ReadFile(path.c_str()); });
}

std::unique_ptr<ZAV_UVal> Parse(const std::string& name, const std::string& text) {
    ZAV_UVal* value = nullptr;
    std::istringstream is(text);
    Guard(name, TROUBLE, [&] { ZAV_ReadUValTxt(is, value); });
    return std::unique_ptr<ZAV_UVal>(value);
}

bool IsBinary(const std::string& path) { return std::ifstream(PathOf(path), std::ios::binary).get() == 3; }

void WriteBytes(const std::string& path, const std::string& bytes) {
    Guard(path, TROUBLE, [&] { ZAV_ReplaceFile(path.c_str(), bytes.data(), bytes.size()); });
}

Exit Report(const std::string& path, const std::vector<std::string>& losses) {
    for (const std::string& loss : losses) std::cerr << "zavconf: " << path << ": lost: " << loss << "\n";
    return losses.empty() ? DONE : LOST;
}

Exit Save(const std::string& path, ZAV_UValDict& dict, bool binary) {
    std::vector<std::string> losses;
    Guard(path, TROUBLE, [&] {
        if (binary)
            dict.WriteBinFile(path.c_str());
        else
            dict.WriteTextFile(path.c_str());
        if (!binary) losses = TextLosses(dict);
    });
    return Report(path, losses);
}

Exit Get(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    ZAV_DictPath path;
    for (size_t i = 1; i < arguments.size(); ++i) path += arguments[i].c_str();
    ZAV_UVal* value = dict.GetUVal(path);
    if (!value) throw ToolFailure{NOT_SO, arguments[0] + ": no such value"};
    if (value->GetType() == UVAL_DICT) {
        std::cout << *value;
        return DONE;
    }
    for (long i = 0; i < value->GetDimension() || i == 0; ++i) std::cout << ElementText(*value, i) << "\n";
    return DONE;
}

Exit List(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    std::cout << dict;
    return DONE;
}

void CheckPath(const std::string& path, bool isText) {
    const ZAV_DictPath keys(path.c_str());
    const char* key = nullptr;
    for (int i = 0; i < keys.Size(); ++i) {
        key = keys.NextKey(key);
        if (std::string(key).size() > 64) throw ToolFailure{TROUBLE, path + ": a key of more than 64 bytes"};
        if (isText && !*key) throw ToolFailure{TROUBLE, path + ": a text file cannot hold an empty key"};
    }
}

void Place(ZAV_UValDict& dict, const ZAV_DictPath& path, std::unique_ptr<ZAV_UVal> value) {
    if (!dict.SetUVal(path, value.release()))
        throw ToolFailure{NOT_SO, std::string(ZAV_String(path).Ptr()) +
                                      " leads through a value that is no dictionary"};
}

// A text that cannot be read is not the same: the value may end in a comment, which hides what follows.
bool IsSame(const std::string& text, ZAV_UValDict& wanted) {
    try {
        const std::unique_ptr<ZAV_UVal> read = Parse("", text);
        ZAV_UValDict& found = static_cast<ZAV_UValDict&>(*read);
        return Differences(wanted, found).empty() && Differences(found, wanted).empty();
    } catch (const ToolFailure&) {
        return false;
    }
}

// Where several entries of the text make one value, changing one of them may not do: a later one at the end
// does. What is written holds what was there before but for the one value, or nothing is written.
void SetText(const std::string& file, const ZAV_DictPath& path, const std::string& value) {
    const std::string text = ReadWhole(file);
    const std::unique_ptr<ZAV_UVal> before = Parse(file, text);
    if (before->GetType() != UVAL_DICT) throw ToolFailure{TROUBLE, file + ": holds no dictionary"};
    ZAV_UValDict& wanted = static_cast<ZAV_UValDict&>(*before);
    Place(wanted, path, Parse("VALUE", value));
    for (int outer = path.Size(); outer >= 0; --outer) {
        const std::string changed =
            outer == path.Size() ? ReplaceInText(text, path, value) : AppendToText(text, path, outer, value);
        if (!changed.empty() && IsSame(changed, wanted)) return WriteBytes(file, changed);
    }
    throw ToolFailure{TROUBLE, file + ": the entry cannot be changed without changing others"};
}

Exit Set(const Arguments& arguments) {
    const std::string option = "--type=";
    const bool hasType = arguments[0].compare(0, option.size(), option) == 0;
    if (arguments.size() != (hasType ? 4 : 3)) throw ToolFailure{TROUBLE, "set [--type=T] FILE PATH VALUE"};
    const std::string *rest = &arguments[hasType ? 1 : 0], &file = rest[0], &path = rest[1];
    const std::string typed = TypedValue(rest[2], hasType ? arguments[0].substr(option.size()) : "");
    const bool isText = !IsBinary(file);
    CheckPath(path, isText);
    if (isText) return SetText(file, path.c_str(), typed), DONE;
    ZAV_UValDict dict(16);
    Load(file, dict);
    Place(dict, path.c_str(), Parse("VALUE", typed));
    return Save(file, dict, true);
}

Exit Convert(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    return Save(arguments[1], dict, !IsBinary(arguments[0]));
}

Exit Import(const Arguments& arguments) {
    JsonResult json = ReadJson(ReadWhole(arguments[0]));
    if (!json.mDict) {
        std::ostringstream text;
        text << arguments[0] << ":" << json.mLine << ":" << json.mColumn << ": " << json.mError;
        throw ToolFailure{NOT_SO, text.str()};
    }
    const std::string& out = arguments[1];
    const bool binary = out.size() > 4 && out.compare(out.size() - 4, 4, ".bin") == 0;
    const Exit saved = Save(out, *json.mDict, binary);
    return (std::max)(saved, Report(arguments[0], json.mLosses));
}

Exit Export(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    std::ostringstream json;
    json.exceptions(std::ios::badbit); // a lack of memory comes through
    const std::vector<std::string> losses = WriteJson(json, dict);
    if (arguments.size() == 1)
        std::cout << json.str();
    else
        WriteBytes(arguments[1], json.str());
    return Report(arguments[0], losses);
}

struct StrictCheck {
    const std::string& mPath;
    bool mFound = false;
};

void TellRemark(void* context, const ZAV_UValTextRemark& remark) {
    StrictCheck& check = *static_cast<StrictCheck*>(context);
    std::cout << check.mPath << ":" << remark.mLine << ":" << remark.mColumn << ": " << remark.mMessage
              << " (found \"" << remark.mFound << "\")\n";
    check.mFound = true;
}

Exit CheckFile(const std::string& path, bool isStrict) {
    ZAV_UValDict dict(16);
    Load(path, dict, NOT_SO);
    if (!isStrict || IsBinary(path)) return DONE;
    std::istringstream text(ReadWhole(path));
    StrictCheck check = {path};
    ZAV_UVal* value = nullptr;
    Guard(path, NOT_SO, [&] { ZAV_CheckUValTxt(text, value, TellRemark, &check); });
    delete value;
    return check.mFound ? NOT_SO : DONE;
}

Exit Check(const Arguments& arguments) {
    const bool isStrict = arguments[0] == "--strict";
    Exit result = DONE;
    for (size_t i = isStrict ? 1 : 0; i < arguments.size(); ++i) {
        try {
            result = (std::max)(result, CheckFile(arguments[i], isStrict));
        } catch (const ToolFailure& failure) {
            std::cout << failure.mText << "\n";
            result = NOT_SO;
        }
    }
    return result;
}

struct Command {
    const char* mName;
    size_t mLeast, mMost; // arguments
    Exit (*mRun)(const Arguments& arguments);
};

const Command commands[] = {
    {"get", 2, 1000, Get},    {"list", 1, 1, List},     {"set", 3, 4, Set},        {"convert", 2, 2, Convert},
    {"import", 2, 2, Import}, {"export", 1, 2, Export}, {"check", 1, 1000, Check},
};

int Run(int argc, char** argv) {
    Arguments words(argv + 1, argv + argc);
    const std::string option = "--separator=";
    if (!words.empty() && words[0].size() == option.size() + 1 &&
        words[0].compare(0, option.size(), option) == 0) {
        ZAV_DictPath::SetSeparator(words[0].back());
        words.erase(words.begin());
    }
    if (words.size() == 1 && (words[0] == "--help" || words[0] == "help")) {
        std::cout << help;
        return DONE;
    }
    for (const Command& command : commands) {
        if (words.empty() || words[0] != command.mName) continue;
        Arguments arguments(words.begin() + 1, words.end());
        if (arguments.size() < command.mLeast || arguments.size() > command.mMost) break;
        return command.mRun(arguments);
    }
    std::cerr << help;
    return TROUBLE;
}

} // namespace

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    return RunTool("zavconf", argc, argv, Run);
}
