#include <zavbase/os/console.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

namespace zav_os {

namespace {

constexpr suseconds_t kViewerTimeout = 200000;

// Set while the viewer does not read what it gets: nobody waits for it again until it does.
constinit std::atomic<bool> viewerHangs{false};

bool IsPrivateFolder(const std::string& path) {
    struct stat info;
    return path[0] == '/' && lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == geteuid() && (info.st_mode & 077) == 0;
}

// The socket's path, empty without a private folder. Nobody else can put a file into such a folder, so what
// is found there is the user's own.
std::string ViewerPath() {
    const char* runtime = secure_getenv("XDG_RUNTIME_DIR");
    std::string user = std::to_string(geteuid());
    for (const std::string& folder :
         {std::string(runtime ? runtime : ""), "/run/user/" + user, "/tmp/zavbase-" + user})
        if (IsPrivateFolder(folder)) return folder + "/zavbase-trace";
    return {};
}

bool ViewerAddress(sockaddr_un& address) {
    std::string path = ViewerPath();
    if (path.empty() || path.size() >= sizeof address.sun_path) return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return true;
}

// A socket of its own for each piece: a kept one could meanwhile have been closed by a host that tidies up
// descriptors, and its number be something else's.
bool SendToViewer(const char* text, size_t length) {
    sockaddr_un address;
    if (!ViewerAddress(address) || access(address.sun_path, F_OK) != 0) return false;
    int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    timeval timeout = {0, kViewerTimeout};
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
    int flags = MSG_NOSIGNAL | (viewerHangs ? MSG_DONTWAIT : 0);
    ssize_t sent;
    do {
        sent = sendto(fd, text, length, flags, reinterpret_cast<sockaddr*>(&address), sizeof address);
    } while (sent < 0 && errno == EINTR);
    viewerHangs = sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    close(fd);
    return sent >= 0;
}

void WriteStandardError(const char* text, size_t length) {
    while (length > 0) {
        ssize_t written = write(STDERR_FILENO, text, length);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        text += written;
        length -= static_cast<size_t>(written);
    }
}

} // namespace

void TraceText(const char* text, size_t length) {
    int error = errno;
    if (!SendToViewer(text, length)) WriteStandardError(text, length);
    errno = error;
}

bool TraceChannel(char* name, size_t size) {
    sockaddr_un address;
    if (!ViewerAddress(address) || std::strlen(address.sun_path) >= size) return false;
    std::strcpy(name, address.sun_path);
    return true;
}

void FatalMessage(const char* text, const char* caption) {
    // No memory is left to put the line together with.
    for (const char* part : {caption, ": ", text, "\n"}) WriteStandardError(part, std::strlen(part));
}

void Terminate() { _exit(0); }

} // namespace zav_os
