#include "tools/modemsim/port_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace modemsim {

bool PortWatch::Start(const std::string& device, std::string& reason) {
    Stop();
    fd_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd_ >= 0 && inotify_add_watch(fd_, device.c_str(), IN_OPEN | IN_CLOSE) >= 0) return true;
    reason = "cannot watch who opens " + device + ": " + std::strerror(errno);
    return false;
}

void PortWatch::Stop() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
    open_ = 0;
}

std::vector<PortWatch::Event> PortWatch::Read() {
    std::vector<Event> events;
    alignas(inotify_event) char buffer[4096];
    while (fd_ >= 0) {
        const ssize_t count = read(fd_, buffer, sizeof buffer);
        if (count <= 0) break;
        for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(count);) {
            inotify_event event;
            std::memcpy(&event, buffer + at, sizeof event);
            at += sizeof event + event.len;
            if ((event.mask & IN_OPEN) != 0 && ++open_ == 1) events.push_back(Event::Open);
            if ((event.mask & IN_CLOSE) != 0 && open_ > 0 && --open_ == 0) events.push_back(Event::Close);
        }
    }
    return events;
}

}  // namespace modemsim
