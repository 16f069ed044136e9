#ifndef AT_TOOLS_MODEMSIM_MODEL_PDU_H
#define AT_TOOLS_MODEMSIM_MODEL_PDU_H

// Messages as the modem stores them and passes them on: hexadecimal, the service centre's address in front.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

inline constexpr std::size_t kMaxMessageParts = 10;  // that a long text is cut into

struct Pdu {
    std::string hex;
    std::size_t length = 0;  // bytes without the service centre's address, as +CMGR gives it
};

// `text` (UTF-8) from `from`, as it arrives at `clock` ("YY/MM/DD,hh:mm:ss"): in the default alphabet where
// that has all its characters, else in UCS-2; a long one in parts that carry `reference`. nullopt and
// `reason` when it is no UTF-8 or longer than kMaxMessageParts parts.
std::optional<std::vector<Pdu>> DeliverPdus(std::string_view from, std::string_view text,
                                            std::string_view clock, std::uint8_t reference,
                                            std::string& reason);

// A message that is to be sent.
struct Submit {
    std::string to;
    bool wants_report = false;  // when it has arrived
    bool has_header = false;    // a part of a longer one
    std::uint8_t coding = 0;
    std::string user_data;  // hexadecimal: its length and itself
};

// nullopt when `hex` is no such message, or not `length` bytes long without the service centre's address.
std::optional<Submit> ReadSubmit(std::string_view hex, std::size_t length);

// The same text on its way back to the sender.
Pdu DeliverOf(const Submit& message, std::string_view from, std::string_view clock);

// The network's word that message `reference` has arrived at `to`.
Pdu StatusReport(std::uint8_t reference, std::string_view to, std::string_view clock);

}  // namespace modemsim

#endif
