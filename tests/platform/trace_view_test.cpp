// The trace viewer at work: this program traces, and zavtrace shows it.

#include <zavbase/foundation/trace_stream.h>

#include <list>

#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/file_support.h"

namespace {

/// A private folder for the channel, where the system wants one.
class TraceView : public ::testing::Test {
protected:
    TraceView() {
        std::filesystem::permissions(mFolder.Path(), std::filesystem::perms::owner_all);
        // The environment keeps the text itself, so it stays for the life of the process.
        static std::list<std::string> variables;
        putenv(variables.emplace_back("XDG_RUNTIME_DIR=" + mFolder.Path()).data());
    }

    const TestFolder mFolder;
};

} // namespace

TEST_F(TraceView, FollowsMatchesAndKeepsControlCharactersHarmless) {
    ChildProcess viewer(ZAVTRACE, {"--announce", "--match", "pump", "--count", "3"});
    ASSERT_EQ("listening", viewer.ReadLine());
    EXPECT_EQ(2, ChildProcess(ZAVTRACE, {}).Wait());
    // The last is more than the channel carries at once, and its line end comes apart.
    const std::string text = "pump " + std::string(700, 'x');
    for (const std::string& piece : {std::string("pump 1 on\nvalve 1 open\npump \x1B[31m2\n"), text})
        dout << piece << std::flush;
    dout << std::endl;
    for (const std::string& line : {std::string("pump 1 on"), std::string("pump \\033[31m2"), text})
        EXPECT_EQ(line, viewer.ReadLine());
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
