#include "tools/zavmod/module_file.h"

#include <gtest/gtest.h>

#include "tests/support/file_support.h"

namespace {

std::string Bytes(const std::string& name) { return FileText(PLUGIN_FOLDER "/" + name + PLUGIN_EXTENSION); }

} // namespace

TEST(ModuleFile, TellsWhichEntryPointsAreThere) {
    for (const auto& [plugin, lacking] : {std::pair{"plugin_whole", ""},
                                          {"plugin_no_create", "CreateObjectInstance"},
                                          {"plugin_no_free", "FreeObjectInstance"},
                                          {"plugin_no_definitions", "GetI18nDefs"}}) {
        ModuleFile module;
        ASSERT_EQ("", ReadModuleFile(Bytes(plugin), module)) << plugin;
        for (const std::string name : {"CreateObjectInstance", "FreeObjectInstance", "GetI18nDefs"})
            EXPECT_EQ(name != lacking, module.mFunctions.count(name) == 1) << plugin << " " << name;
    }
}

TEST(ModuleFile, DamageNeverLeadsBeyondTheBytes) {
    const std::string whole = Bytes("plugin_no_free");
    ModuleFile module;
    for (size_t at = 0; at < whole.size(); at += at < 1024 ? 1 : whole.size() / 900) {
        // A heap block of just that size, so that the sanitizer sees the byte behind it.
        ReadModuleFile(std::string(whole, 0, at), module);
        std::string flipped = whole;
        flipped[at] = static_cast<char>(~flipped[at]);
        ReadModuleFile(flipped, module);
    }
    for (const std::string& cut : {std::string(), std::string("MZ"), std::string(whole, 0, 1024)})
        EXPECT_NE("", ReadModuleFile(cut, module));
}
