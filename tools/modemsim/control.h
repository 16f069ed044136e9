#ifndef AT_TOOLS_MODEMSIM_CONTROL_H
#define AT_TOOLS_MODEMSIM_CONTROL_H

#include <poll.h>

#include <functional>
#include <list>
#include <string>
#include <vector>

namespace modemsim {

// Where the control socket of the modem at `link` stands when nobody says otherwise.
std::string ControlPath(const std::string& link);

// A socket at which a running simulator is steered: a line comes in, a line goes back. Several may be
// connected at once.
class ControlSocket {
  public:
    // Gives the answer to a line.
    using Answer = std::function<std::string(const std::string& line)>;

    ControlSocket() = default;
    ~ControlSocket() { Close(); }
    ControlSocket(const ControlSocket&) = delete;
    ControlSocket& operator=(const ControlSocket&) = delete;

    // A socket that a dead simulator left at `path` is replaced; anything else that stands there is left
    // alone and refused. On failure false, with a reason that names the path.
    bool Open(const std::string& path, std::string& reason);

    // Removes the socket, and ends every connection.
    void Close();

    // What to wait for.
    void AddTo(std::vector<pollfd>& watched) const;

    // Does what can be done without waiting.
    void Serve(const Answer& answer);

  private:
    struct Client {
        int fd;
        std::string in = {};
        std::string out = {};
        bool gone = false;
    };

    void Accept();
    static void Read(Client& client, const Answer& answer);
    static void Write(Client& client);

    int listener_ = -1;
    std::string path_;  // empty while there is no socket
    std::list<Client> clients_;
};

// Connects to the socket at `path`. When that fails the negated error number (-EACCES: it belongs to somebody
// else), and a reason.
int ConnectTo(const std::string& path, std::string& reason);

}  // namespace modemsim

#endif
