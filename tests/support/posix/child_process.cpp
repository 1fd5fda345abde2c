#include "tests/support/child_process.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments) {
    int input[2], output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) std::abort();
    // A child for another processor needs the emulator, which the system does not start by itself.
    const std::string emulator = ZAVBASE_TEST_EMULATOR;
    const std::string& file = emulator.empty() ? program : emulator;
    std::vector<char*> argv;
    if (!emulator.empty()) argv.push_back(const_cast<char*>(emulator.c_str()));
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& a : arguments) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], 0);
    posix_spawn_file_actions_adddup2(&actions, output[1], 1);
    pid_t id = 0;
    if (posix_spawn(&id, file.c_str(), &actions, nullptr, argv.data(), environ) == 0) mProcess = id;
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    mId = static_cast<unsigned long>(id);
    mInput.reset(fdopen(input[1], "w"));
    mOutput.reset(fdopen(output[0], "r"));
}

ChildProcess::~ChildProcess() {
    Kill();
    Wait();
}

void ChildProcess::Kill() {
    if (mProcess > 0) kill(static_cast<pid_t>(mProcess), SIGKILL);
}

int ChildProcess::Wait() {
    int status = 0;
    if (mProcess > 0) waitpid(static_cast<pid_t>(mProcess), &status, 0);
    mProcess = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000;
}
