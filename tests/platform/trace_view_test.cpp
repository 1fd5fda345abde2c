// The trace viewer at work: this program traces, and zavtrace shows it.

#include <zavbase/foundation/trace_stream.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/child_process.h"

namespace {

/// A private folder for the channel, where the system wants one.
class TraceView : public ::testing::Test {
protected:
    TraceView() : mFolder(std::filesystem::absolute("trace_view_test.run")) {
        std::filesystem::create_directory(mFolder);
        std::filesystem::permissions(mFolder, std::filesystem::perms::owner_all);
        // The environment keeps the text itself, so it stays for the life of the process.
        static std::string variable = "XDG_RUNTIME_DIR=" + mFolder.string();
        putenv(variable.data());
    }
    ~TraceView() override { std::filesystem::remove_all(mFolder); }

    std::filesystem::path mFolder;
};

} // namespace

TEST_F(TraceView, FollowsMatchesAndKeepsControlCharactersHarmless) {
    ChildProcess viewer(ZAVTRACE, {"--announce", "--match", "pump", "--count", "3"});
    ASSERT_EQ("listening", viewer.ReadLine());
    ChildProcess second(ZAVTRACE, {});
    EXPECT_EQ(2, second.Wait());

    dout << "pump 1 on" << std::endl << "valve 1 open" << std::endl << "pump \x1B[31m2" << std::endl;
    EXPECT_EQ("pump 1 on", viewer.ReadLine());
    EXPECT_EQ("pump \\033[31m2", viewer.ReadLine());
    // More than the channel carries at once, and its line end apart.
    const std::string text = "pump " + std::string(700, 'x');
    dout << text << std::flush;
    dout << std::endl;
    EXPECT_EQ(text, viewer.ReadLine());
    EXPECT_EQ(0, viewer.Wait());
    dout << "nobody looks" << std::endl;
}

TEST_F(TraceView, AViewerThatWasKilledLeavesThePlaceToTheNext) {
    for (int i = 0; i < 2; ++i) {
        ChildProcess viewer(ZAVTRACE, {"--announce"});
        ASSERT_EQ("listening", viewer.ReadLine());
        dout << "line " << i << std::endl;
        EXPECT_EQ("line " + std::to_string(i), viewer.ReadLine());
    }
}
