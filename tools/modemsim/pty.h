#ifndef AT_TOOLS_MODEMSIM_PTY_H
#define AT_TOOLS_MODEMSIM_PTY_H

#include <string>

namespace modemsim {

// A pty whose slave is the modem's port, and the link by which the host finds it.
class ModemPort {
  public:
    ModemPort() = default;
    ~ModemPort() { Close(); }
    ModemPort(const ModemPort&) = delete;
    ModemPort& operator=(const ModemPort&) = delete;

    // Opens the pty and links it at `link`. A link that a dead simulator left there is replaced; anything
    // else that stands there is left alone and refused. On failure false, with a reason that names the path.
    bool Open(const std::string& link, std::string& reason);

    // Removes the link, if it is still ours, and closes the pty: the host sees an unplugged modem.
    void Close();

    // Opens a pty again after Close(), under the same link.
    bool Reopen(std::string& reason) { return Open(place_, reason); }
    bool IsOpen() const { return master_ >= 0; }

    int Master() const { return master_; }  // non-blocking
    const std::string& Slave() const { return slave_name_; }

  private:
    bool OpenPty(std::string& reason);
    bool ClearPlace(std::string& reason) const;

    int master_ = -1;
    int slave_ = -1;
    std::string slave_name_;
    std::string place_;  // where the link is to be
    std::string link_;   // empty while none was made
};

}  // namespace modemsim

#endif
