// zavconf: looks into value files, changes them, and carries them to and from JSON.

#include "json.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include <zavbase/foundation/exception.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_types.h>

namespace {

enum Exit { DONE = 0, NOT_SO = 1, TROUBLE = 2 };

const char* const help =
    "usage: zavconf [--separator=C] COMMAND ...\n"
    "\n"
    "  get FILE KEY...        prints the value at the path: one element a line, a dictionary as a list\n"
    "  list FILE              prints the whole dictionary\n"
    "  set FILE PATH VALUE    stores VALUE, given in text form (5, 5 zavshort, [ 1 2 ], << ... >>); a VALUE "
    "that\n"
    "                         begins like none of these is taken as a string. FILE keeps its form, text or\n"
    "                         binary, but comments in it are lost\n"
    "  convert IN OUT         writes a text file as a binary one and a binary file as text\n"
    "  import JSON OUT        writes JSON as a text file, or a binary one when OUT ends in .bin\n"
    "  export FILE [JSON]     writes FILE as JSON, to the standard output when no JSON is named\n"
    "  check FILE...          says file, line and column of the first error in each\n"
    "  --help                 this text\n"
    "\n"
    "FILE may be text or binary. A path is keys with \":\" between them, or the character C. Keys have up to "
    "64\n"
    "bytes. The text form keeps six decimals, drops empty keys, and reads a key that holds the separator as "
    "a\n"
    "path; choose another separator, or a binary file, where that matters.\n"
    "\n"
    "Exit code: 0 done; 1 no such value, or check found an error; 2 a file could not be read or written, or "
    "the\n"
    "command line is wrong.\n";

typedef std::vector<std::string> Arguments;

struct Failure {
    Exit mExit;
    std::string mText;
};

std::string Describe(const std::string& path, const ZAV_FileException& e) {
    const ZAV_UValTextError& error = ZAV_GetUValTextError();
    if (e.mCode == 2 && error.mLine > 0) {
        std::ostringstream text;
        text << path << ":" << error.mLine << ":" << error.mColumn << ": " << error.mMessage << " (found \""
             << error.mFound << "\")";
        return text.str();
    }
    switch (e.mCode) {
    case 2:
        return path + ": not a valid binary value file";
    case 3:
        return path + ": cannot be opened";
    case 6:
        return path + ": cannot be read";
    default:
        return path + ": cannot be written";
    }
}

// Runs an operation on a file and tells its failure as text.
template <class Operation>
void Guard(const std::string& path, Exit exit, Operation operation) {
    std::string trouble;
    ZAV_TRY { operation(); }
    ZAV_CATCH(ZAV_FileException, e) { trouble = Describe(path, *e); }
    ZAV_CATCH(ZAV_Exception, e) {
        std::ostringstream text;
        text << path << ": " << *e << " (too many entries in a dictionary, or a text too long)";
        trouble = text.str();
    }
    ZAV_CATCH_END
    if (!trouble.empty()) throw Failure{exit, trouble};
}

void Load(const std::string& path, ZAV_UValDict& dict, Exit exit = TROUBLE) {
    Guard(path, exit, [&] { dict.ReadFile(path.c_str()); });
}

bool IsBinary(const std::string& path) { return std::ifstream(path, std::ios::binary).get() == 3; }

void Save(const std::string& path, ZAV_UValDict& dict, bool binary) {
    Guard(path, TROUBLE, [&] {
        if (binary)
            dict.WriteBinFile(path.c_str());
        else
            dict.WriteTextFile(path.c_str());
    });
}

std::string ReadAll(const std::string& path) {
    std::error_code ignored;
    std::ifstream file;
    // Opening a pipe would wait for its writer.
    if (std::filesystem::is_regular_file(path, ignored)) file.open(path, std::ios::binary);
    std::ostringstream text;
    if (!file.is_open() || !(text << file.rdbuf())) throw Failure{TROUBLE, path + ": cannot be read"};
    return text.str();
}

Exit Get(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    ZAV_DictPath path;
    for (size_t i = 1; i < arguments.size(); ++i) path += arguments[i].c_str();
    ZAV_UVal* value = dict.GetUVal(path);
    if (!value) throw Failure{NOT_SO, arguments[0] + ": no such value"};
    if (value->GetType() == UVAL_DICT) {
        std::cout << *value;
        return DONE;
    }
    for (long i = 0; i < value->GetDimension() || i == 0; ++i) {
        ZAV_String text;
        value->GetStrValue(text, i);
        std::cout.write(text.Ptr(), static_cast<std::streamsize>(text.Size())) << "\n";
    }
    return DONE;
}

Exit List(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    std::cout << dict;
    return DONE;
}

ZAV_UVal* MakeValue(const std::string& text) {
    ZAV_UVal* value = nullptr;
    if (!text.empty() && std::strchr("([<-.0123456789", text[0])) {
        std::istringstream is(text);
        Guard("VALUE", TROUBLE, [&] { ZAV_ReadUValTxt(is, value); });
        return value;
    }
    value = new ZAV_UValString;
    value->SetStrValue(ZAV_String(text.c_str()), 0);
    return value;
}

Exit Set(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    bool binary = IsBinary(arguments[0]);
    if (!dict.SetUVal(arguments[1].c_str(), MakeValue(arguments[2])))
        throw Failure{NOT_SO, arguments[1] + ": the path leads through a value that is no dictionary"};
    Save(arguments[0], dict, binary);
    return DONE;
}

Exit Convert(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    Save(arguments[1], dict, !IsBinary(arguments[0]));
    return DONE;
}

Exit Import(const Arguments& arguments) {
    JsonResult json = ReadJson(ReadAll(arguments[0]));
    if (!json.mDict) {
        std::ostringstream text;
        text << arguments[0] << ":" << json.mLine << ":" << json.mColumn << ": " << json.mError;
        throw Failure{NOT_SO, text.str()};
    }
    if (json.mCutKeys > 0) std::cerr << "zavconf: keys that were cut to 64 bytes: " << json.mCutKeys << "\n";
    if (json.mLostEntries > 0)
        std::cerr << "zavconf: entries replaced by a later one: " << json.mLostEntries << "\n";
    const std::string& out = arguments[1];
    Save(out, *json.mDict, out.size() > 4 && out.compare(out.size() - 4, 4, ".bin") == 0);
    return DONE;
}

Exit Export(const Arguments& arguments) {
    ZAV_UValDict dict(16);
    Load(arguments[0], dict);
    if (arguments.size() == 1) {
        WriteJson(std::cout, dict);
        return DONE;
    }
    std::ofstream file(arguments[1], std::ios::binary);
    WriteJson(file, dict);
    file.close();
    if (!file) throw Failure{TROUBLE, arguments[1] + ": cannot be written"};
    return DONE;
}

Exit Check(const Arguments& arguments) {
    Exit result = DONE;
    for (const std::string& path : arguments) {
        ZAV_UValDict dict(16);
        try {
            Load(path, dict, NOT_SO);
        } catch (const Failure& failure) {
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
    {"get", 2, 1000, Get},    {"list", 1, 1, List},     {"set", 3, 3, Set},        {"convert", 2, 2, Convert},
    {"import", 2, 2, Import}, {"export", 1, 2, Export}, {"check", 1, 1000, Check},
};

Exit Run(Arguments words) {
    if (!words.empty() && words[0].rfind("--separator=", 0) == 0 && words[0].size() == 13) {
        ZAV_DictPath::SetSeparator(words[0][12]);
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
    try {
        Exit result = Run(Arguments(argv + 1, argv + argc));
        std::cout.flush();
        return std::cout ? result : TROUBLE;
    } catch (const Failure& failure) {
        std::cerr << "zavconf: " << failure.mText << "\n";
        return failure.mExit;
    }
}
