#include <zavbase/foundation/trace_stream.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// A viewer that listens in a run-time folder of its own.
class Viewer : public ::testing::Test {
protected:
    void SetUp() override {
        char folder[] = "/tmp/zavbase-test-XXXXXX";
        mFolder = mkdtemp(folder);
        setenv("XDG_RUNTIME_DIR", folder, 1);
    }
    void TearDown() override {
        if (mSocket >= 0) close(mSocket);
        unlink(Channel().c_str());
        rmdir(mFolder.c_str());
        unsetenv("XDG_RUNTIME_DIR");
    }

    std::string Channel() {
        char name[200] = "";
        ZAV_GetTraceChannel(name, sizeof name);
        return name;
    }
    void Listen() {
        sockaddr_un address = {AF_UNIX, ""};
        std::strcpy(address.sun_path, Channel().c_str());
        mSocket = socket(AF_UNIX, SOCK_DGRAM, 0);
        ASSERT_EQ(0, bind(mSocket, reinterpret_cast<sockaddr*>(&address), sizeof address));
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

    std::string mFolder;
    int mSocket = -1;
};

} // namespace

TEST_F(Viewer, TakesOverAndGivesBack) {
    EXPECT_EQ("one", OnStandardError("one"));
    Listen();
    EXPECT_EQ("", OnStandardError("two"));
    EXPECT_EQ("two", Receive());
    close(mSocket);
    mSocket = -1;
    EXPECT_EQ("three", OnStandardError("three"));
}

TEST_F(Viewer, ThatDoesNotReadIsPassedOver) {
    Listen();
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
}

TEST_F(Viewer, InAFolderOpenToOthersIsNotTrusted) {
    Listen();
    chmod(mFolder.c_str(), 0755);
    EXPECT_FALSE(Channel().starts_with(mFolder));
    EXPECT_EQ("secret", OnStandardError("secret"));
    chmod(mFolder.c_str(), 0700);
    EXPECT_EQ("", Receive());
    char small[5];
    EXPECT_FALSE(ZAV_GetTraceChannel(small, sizeof small));
}
