#include "tools/modemsim/control.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "tools/modemsim/order.h"

namespace modemsim {

namespace {

constexpr std::size_t kMaxClients = 16;  // beyond these, whoever connects is turned away
constexpr int kBacklog = 8;

std::string ErrorText() {
    return std::strerror(errno);
}

// False when the path is longer than a socket's may be.
bool AddressOf(const std::string& path, sockaddr_un& address, std::string& reason) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        reason = "the path of the control socket must have 1 to " +
                 std::to_string(sizeof address.sun_path - 1) + " characters: " + path;
        return false;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return true;
}

const sockaddr* Generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

// Takes away what a simulator that was killed has left.
bool ClearPlace(const std::string& path, std::string& reason) {
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) {
        if (errno == ENOENT) return true;
        reason = path + ": " + ErrorText();
        return false;
    }
    if (!S_ISSOCK(info.st_mode)) {
        reason = path + " exists and is no socket: it is left alone; choose another place with --control";
        return false;
    }
    std::string nobody;
    const int other = ConnectTo(path, nobody);
    if (other >= 0) {
        close(other);
        reason = "another modemsim is steered at " + path + "; choose another place with --control";
        return false;
    }
    if (unlink(path.c_str()) == 0 || errno == ENOENT) return true;
    reason = "cannot replace " + path + ": " + ErrorText();
    return false;
}

}  // namespace

std::string ControlPath(const std::string& link) {
    return link + ".ctl";
}

int ConnectTo(const std::string& path, std::string& reason) {
    sockaddr_un address;
    if (!AddressOf(path, address, reason)) return -ENAMETOOLONG;
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && connect(fd, Generic(address), sizeof address) == 0) return fd;
    const int error = errno;
    reason = path + ": " + std::strerror(error);
    if (fd >= 0) close(fd);
    return -error;
}

bool ControlSocket::Open(const std::string& path, std::string& reason) {
    sockaddr_un address;
    if (!AddressOf(path, address, reason) || !ClearPlace(path, reason)) return false;
    listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (listener_ >= 0 && bind(listener_, Generic(address), sizeof address) == 0) {
        path_ = path;
        if (listen(listener_, kBacklog) == 0) return true;
    }
    reason = "cannot make the control socket " + path + ": " + ErrorText();
    Close();
    return false;
}

void ControlSocket::Close() {
    if (!path_.empty()) unlink(path_.c_str());
    path_.clear();
    for (const Client& client : clients_)
        close(client.fd);
    clients_.clear();
    if (listener_ >= 0) close(std::exchange(listener_, -1));
}

void ControlSocket::AddTo(std::vector<pollfd>& watched) const {
    if (listener_ >= 0) watched.push_back({listener_, POLLIN, 0});
    for (const Client& client : clients_)
        watched.push_back({client.fd, static_cast<short>(client.out.empty() ? POLLIN : POLLOUT), 0});
}

void ControlSocket::Serve(const Answer& answer) {
    if (listener_ < 0) return;
    Accept();
    for (Client& client : clients_) {
        // One at a time: whoever does not take its answers is not listened to.
        if (client.out.empty()) Read(client, answer);
        Write(client);
        if (client.gone) close(client.fd);
    }
    clients_.remove_if([](const Client& client) { return client.gone; });
}

void ControlSocket::Accept() {
    while (true) {
        const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd < 0) return;
        if (clients_.size() < kMaxClients)
            clients_.push_back({fd});
        else
            close(fd);
    }
}

void ControlSocket::Read(Client& client, const Answer& answer) {
    char buffer[4096];
    const ssize_t count = read(client.fd, buffer, sizeof buffer);
    if (count > 0) client.in.append(buffer, static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) client.gone = true;
    std::size_t end = client.in.find('\n');
    while (end != std::string::npos) {
        client.out += answer(client.in.substr(0, end)) + "\n";
        client.in.erase(0, end + 1);
        end = client.in.find('\n');
    }
    // A line that never ends.
    if (client.in.size() > kMaxOrder) client.gone = true;
}

void ControlSocket::Write(Client& client) {
    while (!client.out.empty()) {
        const ssize_t count = send(client.fd, client.out.data(), client.out.size(), MSG_NOSIGNAL);
        if (count < 0) {
            if (errno != EAGAIN && errno != EINTR) client.gone = true;
            return;
        }
        client.out.erase(0, static_cast<std::size_t>(count));
    }
}

}  // namespace modemsim
