#include <zavbase/zavbase.h>

#include <zavbase/os/console.h>
#include <zavbase/os/module_entry.h>
#include <zavbase/os/version.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "tests/support/main.h"
#include "tests/support/trace_capture.h"

namespace {

std::optional<zav_os::VersionRecord> theAnswer;
std::vector<std::string> thePieces;

} // namespace

namespace zav_os {

bool QueryVersion(VersionRecord& record) {
    EXPECT_EQ(148u, record.mSize);
    record = theAnswer.value_or(record);
    return theAnswer.has_value();
}

void TraceText(const char* text, size_t) { thePieces.emplace_back(text); }
bool TraceChannel(char*, size_t) { return false; }
void FatalMessage(const char* text, const char* caption) { std::fprintf(stderr, "[%s] %s", caption, text); }
void Terminate() { std::_Exit(0); }

} // namespace zav_os

// Comes first: the record is empty until somebody has told.
TEST(Startup, AFailedQueryCountsAsWin32s) {
    TraceCapture capture;
    EXPECT_EQ(1, zav_os::OnModuleEvent(1));
    EXPECT_EQ("failed to get OS version info\n", capture.Text());
    EXPECT_TRUE(ZAV_Win32s());
}

TEST(Startup, TellsThePlatformsAndTracesTheRecord) {
    struct {
        uint32_t mPlatform, mMajor, mMinor, mBuild;
        const char* mName;
    } const rows[] = {
        {0, 1, 30, 0, "Win32s"},        // whatever the version
        {1, 9, 9, 0x040003B6, "Win95"}, // here the build number tells
        {1, 0, 0, 0x04090000, "Win95"}, // the last of them
        {2, 4, 0, 1381, "WinNT4"},      // only this one
        {2, 3, 51, 1057, "WinNT5"},     // none of the five; the line says the last
        {2, 5, 0, 2195, "WinNT5"},      // or later
        {1, 0, 0, 0x040A07CE, "Win98"}, // the first of them
    };
    TraceCapture capture(0x10);
    for (const auto& row : rows) {
        theAnswer = {148, row.mMajor, row.mMinor, row.mBuild, row.mPlatform, "Service Pack 1"};
        capture.Clear();
        SetRuntimeOSVersion();
        EXPECT_EQ(std::string("ZAV OS settings:      ") + row.mName, capture.Lines().back());
        EXPECT_EQ(std::string(row.mName) == "WinNT5" && row.mMajor >= 5, ZAV_WinNT5() == B_TRUE);
    }
    zav_os::OnModuleEvent(0); // the other events of a module trace nothing
    zav_os::OnModuleEvent(2);
    EXPECT_EQ("OS version information\n"
              "----------------------\n"
              "Platform Id:          1\n"
              "Major version number: 4\n"
              "Minor version number: 10\n"
              "Build number:         1998\n"
              "CSD version:          Service Pack 1\n"
              "ZAV OS settings:      Win98\n",
              capture.Text());
}

TEST(TraceStream, SendsPiecesThatTheViewerCanTake) {
    dout << "x" << std::endl;
    _trace(nullptr, std::string(600, 'y').data(), 600);
    const std::string most(255, 'y');
    EXPECT_EQ((std::vector<std::string>{"x\n", most, most, std::string(90, 'y')}), thePieces);
}

TEST(FatalDeathTest, TheDefaultPolicyTellsTheUserAndEndsTheProcess) {
    EXPECT_EXIT(theDefaultNewHandler(), ::testing::ExitedWithCode(0),
                "\\[Fatal Error\\] Memory Allocation Error, program will abort!");
}
