// Runs a fuzz target on the files of a folder, and on each of their beginnings; needs no fuzzing compiler.

#include "tests/support/watchdog.h"

#include <zavbase/foundation/new_handler.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    SetNewHandler();
    Watchdog watchdog;
    size_t runs = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
            std::ostringstream text;
            text << std::ifstream(file.path(), std::ios::binary).rdbuf();
            const std::string bytes = text.str();
            for (size_t size = 0; size <= bytes.size(); ++size, ++runs) {
                watchdog.Watch(file.path().string() + " cut to " + std::to_string(size));
                LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), size);
            }
        }
    }
    std::cout << runs << " inputs\n";
    return runs > 0 ? 0 : 1;
}
