#include "tool.h"

#include <charconv>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/foundation/new_handler.h>
#include <zavbase/strings/byte_string.h>

#include "console.h"

namespace {

// Standard error is not buffered, so nothing here asks for memory.
int Tell(const char* name, const char* text, int exit) {
    std::cerr << name << ": " << text << "\n";
    return exit;
}

int Guarded(const char* name, int argc, char** argv, int (*work)(int argc, char** argv)) {
    try {
        const int result = work(argc, argv);
        return std::cout.flush() ? result : Tell(name, "standard output cannot be written", TOOL_TROUBLE);
    } catch (const ToolFailure& failure) {
        std::cout.flush();
        return Tell(name, failure.mText.c_str(), failure.mExit);
    } catch (ZAV_Exception* e) {
        const bool noMemory = !e || e->IsKindOf(&ZAV_MemoryException::classZAV_MemoryException);
        const int exit = Tell(name, ZAV_ExceptionLine(e).Ptr(), noMemory ? TOOL_NO_MEMORY : TOOL_TROUBLE);
        if (e) e->Delete();
        return exit;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        return Tell(name, e.what(), TOOL_TROUBLE);
    }
}

} // namespace

int RunTool(const char* name, int argc, char** argv, int (*work)(int argc, char** argv)) {
    SetNewHandler();
    try {
        const Utf8Console console;
        if (!IsCommandLineWhole())
            return Tell(name, "the command line has characters outside the system's code page", TOOL_TROUBLE);
        return Guarded(name, argc, argv, work);
    } catch (const std::bad_alloc&) {
        return Tell(name, "out of memory", TOOL_NO_MEMORY);
    }
}

std::filesystem::path PathOf(const std::string& name) { return std::u8string(name.begin(), name.end()); }

std::string NameOf(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return std::string(name.begin(), name.end());
}

std::string ReadWhole(const std::string& name) {
    namespace fs = std::filesystem;
    const fs::path path = PathOf(name);
    std::error_code error;
    std::ifstream file;
    if (fs::is_regular_file(path, error)) file.open(path, std::ios::binary);
    const auto size = file.is_open() ? fs::file_size(path, error) : 0;
    std::string bytes(static_cast<size_t>(size), '\0');
    if (!file.is_open() || error || !file.read(bytes.data(), static_cast<std::streamsize>(size)))
        throw ToolFailure{TOOL_TROUBLE, name + ": cannot be read"};
    return bytes;
}

bool IsWholeNumber(const std::string& word, unsigned long& number) {
    const char* const end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}
