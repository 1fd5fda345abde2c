#include <tests/support/file_support.h>
#include <zavbase/os/file_lock.h>

#include <csignal>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

TEST(FileLock, EndsAlthoughAChildWasMadeMeanwhile) {
    const TestFolder folder;
    const std::string path = folder.Path("guard");
    std::optional<zav_os::FileLock> lock(std::in_place);
    ASSERT_EQ(lock->Take(path.c_str()), 0u);
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    lock.reset();
    EXPECT_EQ(lock.emplace().Take(path.c_str()), 0u); // else waits for the child
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}
