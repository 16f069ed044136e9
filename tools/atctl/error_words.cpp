#include "tools/atctl/error_words.h"

#include <charconv>
#include <span>

#include "records/message.h"

namespace {

struct Meaning {
    int number;
    const char* words;
};

// Of the mobile equipment (3GPP TS 27.007).
constexpr Meaning kCmeErrors[] = {
    {0, "the phone part failed"},
    {1, "no connection to the phone part"},
    {3, "not allowed now"},
    {4, "not supported by this modem"},
    {5, "the modem is locked to another SIM: its PIN is needed"},
    {10, "no SIM is inserted"},
    {11, "the SIM's PIN is needed"},
    {12, "the SIM is blocked: its PUK is needed"},
    {13, "the SIM failed"},
    {14, "the SIM is busy"},
    {15, "this SIM cannot be used"},
    {16, "wrong PIN or password"},
    {17, "the SIM's PIN2 is needed"},
    {18, "PIN2 is blocked: its PUK2 is needed"},
    {20, "the memory is full"},
    {21, "there is no such place in the memory"},
    {22, "not found"},
    {23, "the memory failed"},
    {24, "a text is too long"},
    {25, "a text holds characters that are not allowed"},
    {26, "the number is too long"},
    {27, "the number holds characters that are not allowed"},
    {30, "no network"},
    {31, "the network did not answer in time"},
    {32, "the network allows emergency calls only"},
    {40, "locked to a network: the unlock code is needed"},
    {41, "the network lock is blocked: its unblocking code is needed"},
    {50, "wrong parameters"},
    {100, "unknown error"},
    {103, "the network refuses this subscriber"},
    {106, "the network refuses this modem"},
    {107, "packet service is not allowed"},
    {111, "this network is not allowed"},
    {112, "this location area is not allowed"},
    {113, "roaming is not allowed in this location area"},
    {132, "the service is not supported"},
    {133, "the service is not subscribed"},
    {134, "the service is out of order for now"},
    {148, "unspecified error of the packet service"},
    {149, "the data connection's user or password is wrong"},
    {150, "not possible in this class of mobile"},
};

// Of the message service (3GPP TS 27.005, with the network's causes of 24.011 and 23.040).
constexpr Meaning kCmsErrors[] = {
    {1, "the number is not in use"},
    {8, "barred by the operator"},
    {10, "barred"},
    {21, "the message was rejected"},
    {27, "the destination is out of service"},
    {28, "the receiver is not known"},
    {29, "the network rejected the service"},
    {30, "the subscriber is not known"},
    {38, "the network is out of order"},
    {41, "temporary failure of the network"},
    {42, "the network is congested"},
    {47, "no resources are left in the network"},
    {50, "not subscribed"},
    {69, "not implemented in the network"},
    {96, "something required is wrong in the message"},
    {111, "protocol error"},
    {127, "failure between networks"},
    {194, "the service centre failed"},
    {208, "the SIM's message memory is full"},
    {211, "the memory is full"},
    {300, "the modem failed"},
    {301, "the modem's message service is reserved"},
    {302, "not allowed now"},
    {303, "not supported by this modem"},
    {304, "a parameter of the PDU is wrong"},
    {305, "a parameter of the text mode is wrong"},
    {310, "no SIM is inserted"},
    {311, "the SIM's PIN is needed"},
    {312, "the modem is locked to another SIM: its PIN is needed"},
    {313, "the SIM failed"},
    {314, "the SIM is busy"},
    {315, "this SIM cannot be used"},
    {316, "the SIM is blocked: its PUK is needed"},
    {317, "the SIM's PIN2 is needed"},
    {318, "PIN2 is blocked: its PUK2 is needed"},
    {320, "the memory failed"},
    {321, "there is no message at this place"},
    {322, "the memory is full"},
    {330, "the service centre's address is not known"},
    {331, "no network"},
    {332, "the network did not answer in time"},
    {340, "no acknowledgement is expected"},
    {500, "unknown error"},
};

}  // namespace

std::string_view ErrorWords(uint8_t result, std::string_view text) {
    std::span<const Meaning> meanings;
    if (result == AT_RESULT_CMS_ERROR) meanings = kCmsErrors;
    if (result == AT_RESULT_CME_ERROR || result == AT_RESULT_USSD_ERROR) meanings = kCmeErrors;
    int number = -1;
    const auto [stop, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault != std::errc() || stop != text.data() + text.size()) return {};
    for (const Meaning& meaning : meanings)
        if (meaning.number == number) return meaning.words;
    return {};
}
