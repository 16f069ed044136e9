#ifndef AT_TOOLS_MODEMSIM_MODEL_MESSAGES_H
#define AT_TOOLS_MODEMSIM_MODEL_MESSAGES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;
struct Pdu;
struct Submit;

// The message stores of the card and of the modem, and messages on their way. In PDU mode alone.
class Messages {
  public:
    explicit Messages(Modem& modem);

    // A message comes in; gives what is wrong, or an empty text.
    std::string Deliver(const std::string& from, const std::string& text);
    void Describe(nlohmann::json& state) const;

  private:
    enum Status { kUnread = 0, kRead = 1, kUnsent = 2, kSent = 3, kAll = 4 };

    struct Message {
        int status;
        std::string alpha;
        std::string pdu;
        std::size_t length;
    };
    struct Store {
        std::string name;
        int places;
        std::map<int, Message> messages;

        int FreePlace() const;  // 0 when there is none
    };

    Store* Find(const std::string& name);
    Store& Reading() { return stores_.at(used_[0]); }
    std::string Usage(bool names) const;
    bool Take(const std::vector<Pdu>& pdus);
    Reply WhenReady(const CommandLine& line, Reply (Messages::*answer)(const CommandLine&));
    Reply Storages(const CommandLine& line);
    Reply List(const CommandLine& line);
    Reply Read(const CommandLine& line);
    Reply Delete(const CommandLine& line);
    Reply Send(const CommandLine& line);
    Reply Sent(const Submit& message);
    Reply Write(const CommandLine& line);
    Reply Indications(const CommandLine& line);

    Modem& modem_;
    std::array<Store, 2> stores_;
    std::array<std::size_t, 3> used_ = {0, 0, 0};  // to read from, to write into, for what comes in
    std::array<int, 5> indications_ = {2, 1, 0, 0, 0};
    std::string centre_ = "+447700900000";
    int last_reference_ = 16;
    std::uint8_t last_long_one_ = 0;
    std::vector<std::string> sent_to_;
};

}  // namespace modemsim

#endif
