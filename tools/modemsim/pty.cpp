#include "tools/modemsim/pty.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace modemsim {

namespace {

std::string ErrorText() {
    return std::strerror(errno);
}

// Where the link at `path` points to, or an empty text.
std::string LinkTarget(const std::string& path) {
    char target[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    return length < 0 ? std::string() : std::string(target, static_cast<std::size_t>(length));
}

}  // namespace

bool ModemPort::OpenPty(std::string& reason) {
    char name[128];
    master_ = posix_openpt(O_RDWR | O_NOCTTY);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0 ||
        ptsname_r(master_, name, sizeof name) != 0 || fcntl(master_, F_SETFL, O_NONBLOCK) != 0 ||
        fcntl(master_, F_SETFD, FD_CLOEXEC) != 0) {
        reason = "cannot open a pty: " + ErrorText();
        return false;
    }
    slave_name_ = name;
    // Raw, or the line discipline would echo the modem's own text back to it. Held open, or the master could
    // not be read while the host has not opened the port.
    slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings = {};
    if (slave_ < 0 || tcgetattr(slave_, &settings) != 0) {
        reason = "cannot open " + slave_name_ + ": " + ErrorText();
        return false;
    }
    cfmakeraw(&settings);
    if (tcsetattr(slave_, TCSANOW, &settings) != 0) {
        reason = "cannot set up " + slave_name_ + ": " + ErrorText();
        return false;
    }
    return true;
}

bool ModemPort::ClearPlace(std::string& reason) const {
    struct stat info = {};
    if (lstat(link_.c_str(), &info) != 0) {
        if (errno == ENOENT) return true;
        reason = link_ + ": " + ErrorText();
        return false;
    }
    if (!S_ISLNK(info.st_mode)) {
        reason = link_ + (S_ISCHR(info.st_mode) ? " is a real device" : " exists") + ": it is left alone";
        return false;
    }
    // A link that leads nowhere was left behind, and so was one that leads to the pty we have just been
    // given.
    const std::string target = LinkTarget(link_);
    if (target != slave_name_ && (stat(link_.c_str(), &info) == 0 || errno != ENOENT)) {
        reason = link_ + " leads to " + target + ", which exists: remove the link if no modem is there";
        return false;
    }
    if (unlink(link_.c_str()) != 0 && errno != ENOENT) {
        reason = "cannot replace " + link_ + ": " + ErrorText();
        return false;
    }
    return true;
}

bool ModemPort::Open(const std::string& link, std::string& reason) {
    place_ = link;
    link_ = link;
    bool ok = OpenPty(reason) && ClearPlace(reason);
    if (ok && symlink(slave_name_.c_str(), link.c_str()) != 0) {
        reason = "cannot make the link " + link + ": " + ErrorText();
        ok = false;
    }
    if (!ok) {
        link_.clear();
        Close();
    }
    return ok;
}

void ModemPort::Close() {
    if (!link_.empty() && LinkTarget(link_) == slave_name_) unlink(link_.c_str());
    link_.clear();
    if (slave_ >= 0) close(std::exchange(slave_, -1));
    if (master_ >= 0) close(std::exchange(master_, -1));
}

}  // namespace modemsim
