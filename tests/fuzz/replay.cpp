// Runs a fuzz target on the files of a folder, and on each of their beginnings; needs no fuzzing compiler.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    size_t runs = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
            std::ostringstream text;
            text << std::ifstream(file.path(), std::ios::binary).rdbuf();
            const std::string bytes = text.str();
            for (size_t size = 0; size <= bytes.size(); ++size, ++runs)
                LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), size);
        }
    }
    std::cout << runs << " inputs\n";
    return runs > 0 ? 0 : 1;
}
