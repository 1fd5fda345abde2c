// A host's way with its settings: tracers, the configuration out of two text files, typed questions with
// defaults, and the binary file. Run it in the folder of spectrometer.zav and site.zav.

#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/foundation/new_handler.h>
#include <zavbase/foundation/tracer.h>
#include <zavbase/platform/file.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/config.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/value_dict.h>

namespace {

// The tracers' masks are in the settings too, so they are read first and alone.
void StartTracing() {
    ZAV_UValDict masks;
    masks.ReadTextFile("spectrometer.zav", "TRACERS");
    ZAV_Tracer::Initialize(masks);
    // A service program shows the lines on its own console; otherwise they go to the trace viewer.
    ZAV_Tracer::SetStreamP("BASE", &std::cout);
    std::cout << "tracers: " << masks.GetSize() << ", BASE with mask " << masks.GetValue("BASE", 0) << "\n";
}

void AskBeforeThereAreAny() {
    std::cout << "\nasked too early:\n";
    long port = ZAV_ConfigGet("SPECTRO", "NETWORK", "PORT", 1234);
    std::cout << "port " << port << " (default)\n";
}

struct Tally {
    long mDicts = 0, mValues = 0, mElements = 0;
};

void Count(const ZAV_UValDict& dict, Tally& tally) {
    for (ZAV_AssocUVal* entry = dict.GetNextAssoc(nullptr); entry; entry = entry->GetNext()) {
        ZAV_UVal& value = *entry->Value();
        if (value.GetType() == UVAL_DICT) {
            ++tally.mDicts;
            Count(static_cast<ZAV_UValDict&>(value), tally);
        } else {
            ++tally.mValues;
            tally.mElements += value.GetDimension() > 0 ? value.GetDimension() : 1;
        }
    }
}

void ReadSettings() {
    std::cout << "\nreading:\n";
    for (const char* file : {"spectrometer.zav", "site.zav"}) {
        ZAV_ConfigInit(file);
        Tally tally;
        Count(*ZAV_ConfigGet(), tally);
        std::cout << file << ": now " << tally.mDicts << " sections, " << tally.mValues << " entries, "
                  << tally.mElements << " elements\n";
    }
}

void AskQuestions() {
    std::cout << "\nanswers:\n";
    ZAV_String model, notes;
    ZAV_UTFString label;
    ZAV_ConfigGet("SPECTRO", "IDENTITY", "MODEL", "unknown", &model);
    ZAV_ConfigGet("SPECTRO", "IDENTITY", "NOTES", "", &notes);
    ZAV_ConfigGet("SPECTRO", "IDENTITY", "LABEL", "", &label);
    std::cout << "model         " << model << "\n"
              << "label         " << label.Ptr() << " (" << label.Length() << " characters)\n"
              << "notes         " << notes << "\n"
              << "language      " << ZAV_ConfigGet("SPECTRO", "SYSTEM", "LANGUAGE", "en") << "\n"
              << "port          " << ZAV_ConfigGet("SPECTRO", "NETWORK", "PORT", 4000) << "\n"
              << "keep days     " << ZAV_ConfigGet("SPECTRO", "SYSTEM", "KEEP_DAYS", 30) << "\n"
              << "memory        " << ZAV_ConfigGet("SPECTRO", "SYSTEM", "MAX_MEMORY", 0ul) << "\n"
              << "watchdog      " << ZAV_ConfigGet("SPECTRO", "SYSTEM", "WATCHDOG", 1.0f) << " s\n"
              << "mirror focus  " << ZAV_ConfigGet("OPTICS", "MIRROR:M1", "FOCUS", 100.0) << " mm\n"
              << "lamp hours    " << ZAV_ConfigGet("LAMPS", "halogen", "HOURS", 0.0) << "\n"
              << "uv lamp       "
              << (ZAV_IsConfigured("SPECTRO", "IDENTITY", "OPTIONS", "UV LAMP") ? "fitted" : "none") << "\n";
    std::cout << "languages    ";
    for (long i = 0; i < ZAV_ConfigGetDimension("SPECTRO", "SYSTEM", "LANGUAGES"); ++i)
        std::cout << " " << ZAV_ConfigGetAt("SPECTRO", "SYSTEM", "LANGUAGES", i, "?");
    ZAV_UVal* blaze = ZAV_ConfigGet("CALIBRATION", "WAVELENGTH", "FIRST");
    std::cout << "\nwavelength of pixel 1000: "
              << blaze->GetDoubleValue(0) +
                     1000 * (blaze->GetDoubleValue(1) + 1000 * blaze->GetDoubleValue(2))
              << " nm\n";
}

void AskForWhatIsNotSo() {
    std::cout << "\nmissing and of the wrong type:\n";
    std::cout << ZAV_ConfigGet("SPECTRO", "NETWORK", "GATEWAY", "no gateway") << "\n";
    std::cout << ZAV_ConfigGet("SPECTRO", "NETWORK", "HOST", 80) << "\n";
}

bool SameElement(ZAV_UVal& a, ZAV_UVal& b, long index) {
    ZAV_String textA, textB;
    a.GetStrValue(textA, index);
    b.GetStrValue(textB, index);
    return textA == textB && a.GetDoubleValue(index) == b.GetDoubleValue(index);
}

// The number of entries that are not the same in both, in order, type and every element.
long Differences(const ZAV_UValDict& a, const ZAV_UValDict& b) {
    long count = a.GetSize() == b.GetSize() ? 0 : 1;
    ZAV_AssocUVal* theirs = b.GetNextAssoc(nullptr);
    for (ZAV_AssocUVal* ours = a.GetNextAssoc(nullptr); ours && theirs;
         ours = ours->GetNext(), theirs = theirs->GetNext()) {
        ZAV_UVal &x = *ours->Value(), &y = *theirs->Value();
        bool same = std::strcmp(ours->Key(), theirs->Key()) == 0 && x.GetType() == y.GetType() &&
                    x.GetDimension() == y.GetDimension();
        if (same && x.GetType() == UVAL_DICT)
            count += Differences(static_cast<ZAV_UValDict&>(x), static_cast<ZAV_UValDict&>(y));
        for (long i = 0; same && (i < x.GetDimension() || i == 0); ++i) same = SameElement(x, y, i);
        if (!same) ++count;
    }
    return count;
}

bool StoreAndCompare() {
    const std::string path = (std::filesystem::temp_directory_path() / "settings_host.bin").string();
    ZAV_ConfigGet()->WriteBinFile(path.c_str());
    ZAV_UValDict read;
    read.ReadFile(path.c_str());
    long differences = Differences(*ZAV_ConfigGet(), read);
    std::cout << "\nbinary file: " << std::filesystem::file_size(path) << " bytes, read back with "
              << differences << " differences\n";
    ZAV_SystemString name(path.c_str());
    ZAV_File(name).RemoveFile();
    return differences == 0;
}

} // namespace

int main() {
    SetNewHandler(); // out of memory is an exception, not the end of the process
    bool done = false;
    ZAV_TRY {
        StartTracing();
        AskBeforeThereAreAny();
        ReadSettings();
        AskQuestions();
        AskForWhatIsNotSo();
        done = StoreAndCompare();
    }
    ZAV_CATCH(ZAV_Exception, e) { std::cerr << "settings_host: " << ZAV_ExceptionLine(e) << "\n"; }
    ZAV_CATCH_END
    ZAV_ConfigCleanup();
    ZAV_Tracer::SetStreamP("BASE", nullptr);
    return done ? 0 : 1;
}
