#ifndef AT_TOOLS_MODEMSIM_MODEL_PHONEBOOK_H
#define AT_TOOLS_MODEMSIM_MODEL_PHONEBOOK_H

#include <array>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// The phonebooks of the card and of the modem, in short entries (+CPBR) and long ones (+ZCPBR).
class Phonebook {
  public:
    explicit Phonebook(Modem& modem);

    void Describe(nlohmann::json& state) const;

  private:
    struct Entry {
        std::string number;
        std::string name;
        std::array<std::string, 3> more = {};  // a second number, and two texts
    };
    struct Book {
        int places;
        std::map<int, Entry> entries;
    };

    Reply Storage(const CommandLine& line);
    Reply Read(const CommandLine& line, bool long_form) const;
    Reply Write(const CommandLine& line, bool long_form);

    Modem& modem_;
    std::map<std::string, Book> books_;
    std::string used_ = "SM";
};

}  // namespace modemsim

#endif
