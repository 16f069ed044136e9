#ifndef AT_TOOLS_MODEMSIM_PORT_WATCH_H
#define AT_TOOLS_MODEMSIM_PORT_WATCH_H

#include <string>
#include <vector>

namespace modemsim {

// Tells when somebody opens or closes a device. Those who had it open before do not count.
class PortWatch {
  public:
    PortWatch() = default;
    ~PortWatch() { Stop(); }
    PortWatch(const PortWatch&) = delete;
    PortWatch& operator=(const PortWatch&) = delete;

    // On failure false and a reason.
    bool Start(const std::string& device, std::string& reason);
    void Stop();

    int Descriptor() const {
        return fd_;
    }  // readable when something has happened; -1 when nothing is watched

    enum class Event { Open, Close };
    // What has happened since the last call, in its order: the first who opens it and the last who closes it.
    std::vector<Event> Read();
    bool IsOpen() const { return open_ > 0; }

  private:
    int fd_ = -1;
    int open_ = 0;  // how many have it open
};

}  // namespace modemsim

#endif
