// zavmsg: checks, extracts and imports the language files of message resources.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/platform/shared_lib.h>
#include <zavbase/strings/rune.h>
#include <zavbase/values/uval_text.h>

#include "../support/harmless.h"
#include "../support/tool.h"
#include "../support/utf8.h"
#include "definitions.h"
#include "gettext_file.h"

namespace {

namespace fs = std::filesystem;

enum Exit { CLEAN = TOOL_DONE, FINDINGS = 1, TROUBLE = TOOL_TROUBLE };

const char* const help =
    "usage: zavmsg check   [DEFINITIONS] DIR_OR_FILE...\n"
    "       zavmsg extract [DEFINITIONS] [-o OUT]\n"
    "       zavmsg import  [--source] [--fuzzy] [-o OUT] FILE.po\n"
    "\n"
    "  check    compares language files (text or binary) with the definitions: identifiers that are\n"
    "           missing or unknown, tags that differ, entries that are no texts\n"
    "  extract  writes the definitions as a language file, to be translated\n"
    "  import   turns a gettext file (.po or .mo, UTF-8) into a language file; messages without a\n"
    "           translation, and fuzzy ones unless --fuzzy is given, are left out; --source writes\n"
    "           the source texts instead, as the definitions that belong to it\n"
    "\n"
    "DEFINITIONS are, all that are given together:\n"
    "  --defs FILE      a dictionary file of definitions\n"
    "  --module FILE    a plug-in module (its absolute path): what its GetI18nDefs adds\n"
    "  --base           the library's own messages; also taken when nothing else is given\n"
    "\n"
    "A gettext message is filed under its source text, or, where that cannot be an identifier (it\n"
    "has a context, is longer than 64 characters, or holds \":\" or anything but plain ASCII), under\n"
    "PO_ and a number made from it. Plural forms beyond the first get [1], [2], ... appended.\n"
    "Without -o the result goes to standard output.\n"
    "Exit code: 0 nothing found, 1 check found something, or extract or import had to leave something\n"
    "out, which is named, 2 a file could not be read or written, or the command line is wrong,\n"
    "4 memory ran out.\n";

struct Options {
    ZAV_UValDict mDefinitions{16};
    bool mHasDefinitions = false, mWantsSource = false, mWantsFuzzy = false, mIsWrong = false;
    std::string mOut;
    std::vector<std::string> mFiles;
};

void AddModule(const std::string& path, ZAV_UValDict& definitions) {
    const fs::path whole = fs::absolute(PathOf(path));
    ZAV_SharedLib module(NameOf(whole.parent_path() / whole.stem()).c_str(), "");
    module.LoadStrict();
    module.GetI18nDefs(&definitions, B_TRUE, B_TRUE);
    module.Release();
}

/// Returns whether the option has a value and took it.
bool TakeOption(const std::string& name, const char* value, Options& options) {
    if (name == "--source") return options.mWantsSource = true, false;
    if (name == "--fuzzy") return options.mWantsFuzzy = true, false;
    if (name == "-o" && value) return options.mOut = value, true;
    options.mHasDefinitions = true;
    if (name == "--base") return ZAV_Base_GetI18nDefs(&options.mDefinitions, B_TRUE, B_TRUE), false;
    if (name == "--defs" && value) return options.mDefinitions.ReadFile(value), true;
    if (name == "--module" && value) return AddModule(value, options.mDefinitions), true;
    options.mIsWrong = true;
    return false;
}

void Parse(int argc, char** argv, Options& options) {
    for (int i = 0; i < argc; ++i) {
        if (argv[i][0] != '-')
            options.mFiles.push_back(argv[i]);
        else if (TakeOption(argv[i], i + 1 < argc ? argv[i + 1] : nullptr, options))
            ++i;
    }
    if (!options.mHasDefinitions) ZAV_Base_GetI18nDefs(&options.mDefinitions, B_TRUE, B_TRUE);
}

std::vector<std::string> FilesOf(const std::vector<std::string>& arguments) {
    std::vector<std::string> files;
    std::error_code ignored;
    for (const std::string& argument : arguments) {
        if (!fs::is_directory(PathOf(argument), ignored)) {
            files.push_back(argument);
            continue;
        }
        const size_t first = files.size();
        for (const fs::directory_entry& entry : fs::directory_iterator(PathOf(argument)))
            if (entry.is_regular_file(ignored)) files.push_back(NameOf(entry.path()));
        std::sort(files.begin() + static_cast<std::ptrdiff_t>(first), files.end());
    }
    return files;
}

int CheckFile(const std::string& path, const Definitions& wanted) {
    ZAV_UValDict language(16);
    bool isRead = true;
    ZAV_TRY { language.ReadFile(path.c_str()); }
    ZAV_CATCH(ZAV_Exception, e) {
        isRead = false;
        std::cerr << "zavmsg: " << ZAV_ExceptionLine(e) << "\n";
    }
    ZAV_CATCH_END
    if (!isRead) return TROUBLE;
    const std::vector<std::string> findings = Compare(wanted, Flatten(language));
    for (const std::string& finding : findings) std::cout << path << ": " << Harmless(finding) << "\n";
    return findings.empty() ? CLEAN : FINDINGS;
}

int Check(Options& options) {
    const Definitions wanted = Flatten(options.mDefinitions);
    int result = CLEAN;
    for (const std::string& file : FilesOf(options.mFiles))
        result = (std::max)(result, CheckFile(file, wanted));
    return result;
}

void Write(ZAV_UValDict& dict, const std::string& out) {
    if (!out.empty()) return dict.WriteTextFile(out.c_str());
    ZAV_WriteUValTxt(std::cout, &dict, 0);
    std::cout << "\n";
}

/// Extracted and imported texts are UTF-8 and say so in the file.
void Define(ZAV_UValDict& dict, const std::string& id, const std::string& text) {
    ZAV_I18nDef2Dict(&dict, id.c_str(), text.c_str());
}

void LeftOut(const std::string& id, const char* why) {
    std::cerr << "zavmsg: left out, " << why << ": " << Harmless(id) << "\n";
}

int Extract(Options& options) {
    ZAV_UValDict language(16);
    const Definitions definitions = Flatten(options.mDefinitions);
    for (const auto& [id, text] : definitions.mTexts) Define(language, id, text);
    for (const std::string& id : definitions.mOthers) LeftOut(id, "it is no text");
    Write(language, options.mOut);
    return definitions.mOthers.empty() ? CLEAN : FINDINGS;
}

/// Why a text cannot be taken over; null if it can.
const char* Obstacle(const std::string& text) {
    if (!IsUtf8(text)) return "it is not UTF-8";
    if (!isutfstr(text.c_str())) return "it has characters beyond U+FFFF";
    return text.find('\0') == text.npos ? nullptr : "it has a NUL";
}

int ImportEntry(const GettextEntry& entry, const Options& options, ZAV_UValDict& language) {
    if (entry.mIsFuzzy && !options.mWantsFuzzy && !options.mWantsSource) return CLEAN;
    const std::string id = IdentifierOf(entry.mContext, entry.mSource);
    std::vector<std::string> texts = entry.mTranslations;
    if (options.mWantsSource)
        texts.assign(texts.size(), entry.mSourcePlural.empty() ? entry.mSource : entry.mSourcePlural);
    if (options.mWantsSource) texts[0] = entry.mSource;
    int result = CLEAN;
    for (size_t i = 0; i < texts.size(); ++i) {
        const std::string suffix = i ? "[" + std::to_string(i) + "]" : std::string();
        if (texts[i].empty()) continue;
        const std::string formId =
            (id.size() + suffix.size() <= 64 ? id : IdentifierOf("plural", id)) + suffix;
        const char* obstacle = Obstacle(texts[i]);
        if (!obstacle && language.GetUVal(formId.c_str())) obstacle = "the message is there twice";
        if (!obstacle) {
            Define(language, formId, texts[i]);
            continue;
        }
        LeftOut(formId, obstacle);
        result = FINDINGS;
    }
    return result;
}

int Import(const Options& options) {
    const std::string& path = options.mFiles[0];
    std::vector<GettextEntry> entries;
    const std::string problem = ReadGettext(ReadWhole(path), entries);
    if (!problem.empty()) throw ToolFailure{TROUBLE, path + ": " + Harmless(problem)};
    ZAV_UValDict language(16);
    int result = CLEAN;
    for (const GettextEntry& entry : entries)
        result = (std::max)(result, ImportEntry(entry, options, language));
    Write(language, options.mOut);
    return result;
}

int Run(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "--help" || command == "help") return std::cout << help, CLEAN;
    Options options;
    if (argc > 1) Parse(argc - 2, argv + 2, options);
    const size_t files = options.mFiles.size();
    if (!options.mIsWrong && command == "check" && files > 0) return Check(options);
    if (!options.mIsWrong && command == "extract" && files == 0) return Extract(options);
    if (!options.mIsWrong && command == "import" && files == 1) return Import(options);
    std::cerr << help;
    return TROUBLE;
}

} // namespace

int main(int argc, char** argv) { return RunTool("zavmsg", argc, argv, Run); }
