// Formatting of messages and lookup of their texts.
#include <zavbase/i18n/i18n_msg.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/values/value_dict.h>

#include <benchmark/benchmark.h>

#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#ifdef HAVE_ICU
#include <unicode/msgfmt.h>
#endif

namespace {

const char kText[] = "Error <<number>> opening <<filetype>> file for reading : <<filename>>";
const std::vector<std::pair<std::string, std::string>> kArgs = {
    {"<<number>>", "13"}, {"<<filetype>>", "UVALBIN"}, {"<<filename>>", "/var/lib/instrument/settings.bin"}};

ZAV_I18nMsg Message(const char* id) {
    ZAV_I18nMsg msg{ZAV_UTFString(id)};
    for (const auto& [tag, value] : kArgs)
        msg.AddArg(tag.c_str(), ZAV_UTFString(value.c_str()), ZAV_I18N_STRING);
    return msg;
}

void FormatText(benchmark::State& state) {
    ZAV_I18nMsg msg = Message(kText);
    for (auto _ : state) benchmark::DoNotOptimize(msg.Format("", nullptr, nullptr));
}
BENCHMARK(FormatText)->Name("Format/zav/text_3_args");

void ReplaceLoop(benchmark::State& state) {
    for (auto _ : state) {
        std::string text(kText);
        for (const auto& [tag, value] : kArgs) {
            size_t at = text.find(tag);
            if (at != text.npos) text.replace(at, tag.size(), value);
        }
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(ReplaceLoop)->Name("Format/std_string/text_3_args");

std::string Id(int i) { return "MESSAGE_" + std::to_string(i) + "_OF_THE_CATALOGUE"; }

std::vector<int> Order(int count) {
    std::vector<int> order(4096);
    std::mt19937 random(1);
    for (int& i : order) i = static_cast<int>(random() % static_cast<unsigned>(count));
    return order;
}

ZAV_I18nResource& Resource(int count) {
    static ZAV_I18nResource resource;
    static int known = 0;
    ZAV_UValDict defs;
    for (; known < count; ++known)
        ZAV_I18nDef2Dict(&defs, Id(known).c_str(), ("text of " + Id(known)).c_str());
    ZAV_I18nDef2Dict(&defs, "FORMAT", kText);
    resource.SetDefaultDefs(&defs);
    return resource;
}

void FormatFromResource(benchmark::State& state) {
    ZAV_I18nResource& resource = Resource(1000);
    ZAV_I18nMsg msg = Message("FORMAT");
    for (auto _ : state) benchmark::DoNotOptimize(msg.Format("%$@#", &resource, nullptr));
}
BENCHMARK(FormatFromResource)->Name("Format/zav/resource_3_args");

#ifdef HAVE_ICU
// Ours takes the text from the resource at every call. So does the first of these with its pattern; the
// second has it parsed once.
const icu::UnicodeString kPattern("Error {0} opening {1} file for reading : {2}");

std::vector<icu::Formattable> IcuArgs() {
    std::vector<icu::Formattable> args;
    for (const auto& [tag, value] : kArgs) args.emplace_back(icu::UnicodeString::fromUTF8(value));
    return args;
}

void FormatIcu(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    std::vector<icu::Formattable> args = IcuArgs();
    for (auto _ : state) {
        icu::UnicodeString text;
        benchmark::DoNotOptimize(icu::MessageFormat::format(kPattern, args.data(), 3, text, status));
    }
    if (U_FAILURE(status)) state.SkipWithError("ICU failed");
}
BENCHMARK(FormatIcu)->Name("Format/icu/resource_3_args");

void FormatIcuPrepared(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    icu::MessageFormat format(kPattern, icu::Locale::getEnglish(), status);
    std::vector<icu::Formattable> args = IcuArgs();
    for (auto _ : state) {
        icu::UnicodeString text;
        icu::FieldPosition position;
        benchmark::DoNotOptimize(format.format(args.data(), 3, text, position, status));
    }
    if (U_FAILURE(status)) state.SkipWithError("ICU failed");
}
BENCHMARK(FormatIcuPrepared)->Name("Format/icu_prepared/resource_3_args");
#endif

void GetResource(benchmark::State& state) {
    int count = static_cast<int>(state.range(0));
    ZAV_I18nResource& resource = Resource(count);
    std::vector<ZAV_UTFString> ids;
    for (int i : Order(count)) ids.emplace_back(Id(i).c_str());
    ZAV_String lang("%$@#");
    size_t at = 0;
    for (auto _ : state) benchmark::DoNotOptimize(&resource.GetResource(ids[at++ % ids.size()], lang));
}
BENCHMARK(GetResource)->Name("GetResource/zav/known")->Arg(100)->Arg(1000);

// A catalogue as msgfmt makes it, in a folder of its own. The C locale would not look anything up.
bool MakeCatalogue(int count, const std::string& domain) {
    if (!std::setlocale(LC_ALL, "C.UTF-8")) return false;
    setenv("LANGUAGE", "nl", 1);
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "zavbase-message-bench";
    std::filesystem::create_directories(folder / "nl/LC_MESSAGES");
    std::ofstream po(folder / "messages.po");
    po << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
    for (int i = 0; i < count; ++i) po << "msgid \"" << Id(i) << "\"\nmsgstr \"text of " << Id(i) << "\"\n";
    po.close();
    std::string command = "msgfmt -o " + (folder / "nl/LC_MESSAGES" / (domain + ".mo")).string() + " " +
                          (folder / "messages.po").string();
    if (std::system(command.c_str()) != 0) return false;
    bindtextdomain(domain.c_str(), folder.c_str());
    return true;
}

void Gettext(benchmark::State& state) {
    int count = static_cast<int>(state.range(0));
    std::string domain = "bench" + std::to_string(count);
    if (!MakeCatalogue(count, domain)) return state.SkipWithError("no catalogue (is msgfmt there?)");
    std::vector<std::string> ids;
    for (int i : Order(count)) ids.push_back(Id(i));
    if (dgettext(domain.c_str(), ids[0].c_str()) == ids[0])
        return state.SkipWithError("gettext does not look up");
    size_t at = 0;
    for (auto _ : state) benchmark::DoNotOptimize(dgettext(domain.c_str(), ids[at++ % ids.size()].c_str()));
}
BENCHMARK(Gettext)->Name("GetResource/gettext/known")->Arg(100)->Arg(1000);

} // namespace
