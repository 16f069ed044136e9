#ifndef AT_TOOLS_MODEMSIM_MODEL_TOOLKIT_H
#define AT_TOOLS_MODEMSIM_MODEL_TOOLKIT_H

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// The menu of the card's own application.
class Toolkit {
  public:
    explicit Toolkit(Modem& modem);

    void Restart() { place_ = Place::Closed; }
    void Describe(nlohmann::json& state) const;

  private:
    // What the card waits for.
    enum class Place { Closed, Menu, Submenu, Text, Key, Shown };

    Reply Need(Place place, const std::function<void()>& then);
    void Show(const std::string& text);
    void Leave();
    Reply Select(const CommandLine& line);
    Reply SelectItem(const CommandLine& line);
    Reply Back();

    Modem& modem_;
    Place place_ = Place::Closed;
};

}  // namespace modemsim

#endif
