#ifndef AT_TOOLS_MODEMSIM_MODEL_SIM_H
#define AT_TOOLS_MODEMSIM_MODEL_SIM_H

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// The card: its codes and their attempts, its locks, its identities.
class Sim {
  public:
    explicit Sim(Modem& modem);

    bool Ready() const { return !Obstacle(); }
    // What stands in the way of everything that needs the card, nullopt when it is ready.
    std::optional<Cme> Obstacle() const;
    // The same as the message commands say it.
    std::optional<Cms> MessageObstacle() const;
    // Number of the subscriber, international.
    static std::string OwnNumber();

    // Steering; each gives what is wrong, or an empty text.
    std::string Pull();
    std::string Insert();
    std::string Lock();  // the card asks for its PIN, now and after every start

    void Restart() { verified_ = false; }
    void Describe(nlohmann::json& state) const;

  private:
    // A code and how often it may still be wrong.
    struct Code {
        std::string code;
        int most;
        int left = most;

        bool Try(const std::string& attempt);
        bool Blocked() const { return left == 0; }
    };

    std::string Status() const;
    std::string Attempts(const char* separator) const;
    Reply Pin(const CommandLine& line);
    Reply Unblock(Code& code, const Code& puk, const CommandLine& line, bool right);
    Reply Password(const CommandLine& line);
    Reply Lock(const CommandLine& line);
    Reply File(const CommandLine& line) const;
    Reply Check(Code& code, const std::string& attempt);
    void BecameReady();

    Modem& modem_;
    bool present_ = true;
    bool asks_ = false;  // for the PIN at every start
    bool verified_ = false;
    Code pin_{"1234", 3};
    Code pin2_{"5678", 3};
    Code puk_{"12345678", 10};
    Code puk2_{"87654321", 10};
    std::map<std::string, bool> locks_;  // of other facilities, by their two letters
};

}  // namespace modemsim

#endif
