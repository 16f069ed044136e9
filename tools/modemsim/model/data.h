#ifndef AT_TOOLS_MODEMSIM_MODEL_DATA_H
#define AT_TOOLS_MODEMSIM_MODEL_DATA_H

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// The packet domain: contexts, and the addresses that they get.
class Data {
  public:
    explicit Data(Modem& modem);

    Reply Dial();        // ATD*99#: the first context, for data
    std::string Drop();  // the network ends every connection; gives what is wrong, or an empty text
    void NetworkLost();
    void Restart();
    void Describe(nlohmann::json& state) const;

  private:
    struct Context {
        std::string type = "IP";
        std::string apn = {};
        std::string address = {};  // asked for
        int data_compression = 0;
        int header_compression = 0;
        bool active = false;
    };

    bool Attached() const;
    bool AnyActive() const;
    void DeactivateAll();
    Reply Define(const CommandLine& line);
    Reply Attach(const CommandLine& line);
    Reply Activate(int state, int cid, bool report);
    Reply ActivationState() const;
    Reply Addresses(const CommandLine& line) const;
    void TellAddresses(int cid) const;

    Modem& modem_;
    bool attached_ = true;
    std::map<int, Context> contexts_;
};

}  // namespace modemsim

#endif
