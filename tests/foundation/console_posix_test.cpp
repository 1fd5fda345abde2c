#include <zavbase/zavbase.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/file_support.h"

namespace {

// A viewer that listens in a run-time folder of its own.
class Viewer : public ::testing::Test {
protected:
    Viewer() {
        chmod(mFolder.Path().c_str(), 0700);
        setenv("XDG_RUNTIME_DIR", mFolder.Path().c_str(), 1);
        sockaddr_un address = {AF_UNIX, ""};
        std::strcpy(address.sun_path, Channel().c_str());
        EXPECT_EQ(0, bind(mSocket, reinterpret_cast<sockaddr*>(&address), sizeof address));
    }
    ~Viewer() override {
        close(mSocket);
        unsetenv("XDG_RUNTIME_DIR");
    }

    static std::string Channel() {
        char name[200] = "";
        ZAV_GetTraceChannel(name, sizeof name);
        return name;
    }
    std::string Receive() {
        char text[300];
        ssize_t length = recv(mSocket, text, sizeof text, MSG_DONTWAIT);
        return std::string(text, length < 0 ? 0 : static_cast<size_t>(length));
    }
    static std::string OnStandardError(const std::string& text) {
        ::testing::internal::CaptureStderr();
        dout << text << std::flush;
        return ::testing::internal::GetCapturedStderr();
    }

    TestFolder mFolder;
    int mSocket = socket(AF_UNIX, SOCK_DGRAM, 0);
};

} // namespace

TEST_F(Viewer, ThatDoesNotReadIsPassedOverAndOneThatEndsGivesBack) {
    std::string passed;
    int sent = 0;
    for (; passed.empty(); ++sent) {
        ASSERT_LT(sent, 100000);
        passed = OnStandardError(std::to_string(sent));
    }
    EXPECT_EQ(std::to_string(sent - 1), passed);
    EXPECT_EQ("again", OnStandardError("again"));
    for (int i = 0; i < sent - 1; ++i) EXPECT_EQ(std::to_string(i), Receive());
    EXPECT_EQ("", OnStandardError("back"));
    EXPECT_EQ("back", Receive());
    unlink(Channel().c_str());
    EXPECT_EQ("ended", OnStandardError("ended"));
}

TEST_F(Viewer, InAFolderOpenToOthersIsNotTrusted) {
    chmod(mFolder.Path().c_str(), 0755);
    EXPECT_FALSE(Channel().starts_with(mFolder.Path()));
    EXPECT_EQ("secret", OnStandardError("secret"));
    EXPECT_EQ("", Receive());
    char small[5];
    EXPECT_FALSE(ZAV_GetTraceChannel(small, sizeof small));
}
