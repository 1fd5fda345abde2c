#include "tools/zavmod/module_file.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/file_support.h"

namespace {

std::string Bytes(const std::string& name) { return FileText(PLUGIN_FOLDER "/" + name + PLUGIN_EXTENSION); }

} // namespace

TEST(ModuleFile, TellsWhichEntryPointsAreThere) {
    const char* const lacking[][2] = {{"plugin_whole", ""},
                                      {"plugin_no_create", "CreateObjectInstance"},
                                      {"plugin_no_free", "FreeObjectInstance"},
                                      {"plugin_no_definitions", "GetI18nDefs"}};
    for (const auto& row : lacking) {
        ModuleFile module;
        ASSERT_EQ("", ReadModuleFile(Bytes(row[0]), module)) << row[0];
        for (const char* name : {"CreateObjectInstance", "FreeObjectInstance", "GetI18nDefs"})
            EXPECT_EQ(std::string(row[1]) != name, module.mFunctions.count(name) == 1)
                << row[0] << " " << name;
    }
}

TEST(ModuleFile, DamageNeverLeadsBeyondTheBytes) {
    const std::string whole = Bytes("plugin_no_free");
    ModuleFile module;
    for (size_t size = 0; size < whole.size(); size += size < 1024 ? 1 : whole.size() / 300) {
        // A heap block of just that size, so that the sanitizer sees the byte behind it.
        ReadModuleFile(std::string(whole, 0, size), module);
    }
    const size_t step = (std::max)(size_t(1), whole.size() / 1500);
    for (size_t at = 0; at < whole.size(); at += at < 512 ? 1 : step) {
        std::string flipped = whole;
        flipped[at] = static_cast<char>(~flipped[at]);
        ReadModuleFile(flipped, module);
    }
    EXPECT_NE("", ReadModuleFile("", module));
    EXPECT_NE("", ReadModuleFile("MZ", module));
    EXPECT_NE("", ReadModuleFile(std::string(whole, 0, 1024), module));
}
