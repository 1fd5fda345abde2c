#include "../channel.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <zavbase/foundation/trace_stream.h>

namespace {

volatile std::sig_atomic_t theEnd = 0;

void OnSignal(int) { theEnd = 1; }

/// The signals arrive only inside ppoll: so none is missed between a look at theEnd and the wait.
void CatchSignals(sigset_t& whileWaiting) {
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
        sigaddset(&ending, signal);
    }
    sigprocmask(SIG_BLOCK, &ending, &whileWaiting);
}

std::string Reason(const char* what, const char* path) {
    return std::string(what) + " " + path + ": " + std::strerror(errno);
}

/// The library's last resort, made here because a program that traces only looks for it.
bool FindChannel(char* path, unsigned size) {
    if (ZAV_GetTraceChannel(path, size)) return true;
    mkdir(("/tmp/zavbase-" + std::to_string(geteuid())).c_str(), 0700);
    return ZAV_GetTraceChannel(path, size);
}

/// A socket file that nobody reads any more was left by a viewer that did not end in order.
bool IsLeftOver(const sockaddr_un& address) {
    const int probe = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool left = connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
                      errno == ECONNREFUSED;
    close(probe);
    return left;
}

std::string OpenSocket(sockaddr_un& address, int& socketFile) {
    address.sun_family = AF_UNIX;
    if (!FindChannel(address.sun_path, sizeof address.sun_path))
        return "there is no private folder for the channel";
    socketFile = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    if (socketFile < 0 || setsockopt(socketFile, SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0)
        return Reason("no socket for", address.sun_path);
    umask(077);
    const sockaddr* const where = reinterpret_cast<const sockaddr*>(&address);
    if (bind(socketFile, where, sizeof address) == 0) return std::string();
    if (errno != EADDRINUSE) return Reason("cannot listen at", address.sun_path);
    if (!IsLeftOver(address)) return std::string("another viewer listens at ") + address.sun_path;
    unlink(address.sun_path);
    return bind(socketFile, where, sizeof address) == 0 ? std::string()
                                                        : Reason("cannot listen at", address.sun_path);
}

bool ReceiveOne(int socketFile, Receiver& receiver) {
    char text[65536];
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(ucred))];
    iovec part = {text, sizeof text};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t length = recvmsg(socketFile, &message, MSG_DONTWAIT);
    if (length < 0) return true;
    ucred sender = {};
    const cmsghdr* header = CMSG_FIRSTHDR(&message);
    if (header && header->cmsg_type == SCM_CREDENTIALS)
        std::memcpy(&sender, CMSG_DATA(header), sizeof sender);
    return receiver.Take(static_cast<unsigned long>(sender.pid),
                         std::string(text, static_cast<size_t>(length)));
}

} // namespace

std::string Listen(Receiver& receiver) {
    sigset_t whileWaiting;
    CatchSignals(whileWaiting);
    sockaddr_un address = {};
    int socketFile = -1;
    const std::string problem = OpenSocket(address, socketFile);
    if (!problem.empty()) return problem;

    receiver.Ready();
    const timespec fifth = {0, 200000000};
    pollfd waiting = {socketFile, POLLIN, 0};
    bool idle = true, more = true;
    while (more && !theEnd) {
        const int ready = ppoll(&waiting, 1, idle ? nullptr : &fifth, &whileWaiting);
        if (ready > 0) more = ReceiveOne(socketFile, receiver);
        if (ready == 0) more = receiver.Idle();
        idle = ready == 0;
    }
    unlink(address.sun_path);
    close(socketFile);
    return std::string();
}
