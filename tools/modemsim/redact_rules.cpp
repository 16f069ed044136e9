#include "tools/modemsim/redact_rules.h"

#include <algorithm>
#include <array>

namespace modemsim {

namespace {

constexpr RedactRule kOther = {"", "d", "d"};

constexpr RedactRule kRules[] = {
    // codes and passwords
    {"+CPIN", "s", "k"},
    {"+CPIN2", "s", "k"},
    {"^CPIN", "s", "k"},
    {"+CPWD", "ks", "k"},
    {"+CLCK", "kks", "k"},
    {"+ZNCK", "s", "k"},
    {"+ZSEC", "s", "k"},
    {"+VTS", "s", "k"},
    {"$QCPDPP", "kks", "kks"},
    {"+CGAUTH", "kks", "kks"},
    {"^AUTHDATA", "ks", "ks"},
    // identities and numbers
    {"+CIMI", "d", "n"},
    {"+ZIMSI", "d", "n"},
    {"+ZIMSR", "d", "n"},
    {"+CGSN", "d", "n"},
    {"+GSN", "d", "n"},
    {"+ZICCID", "d", "n"},
    {"+CCID", "d", "n"},
    {"^ICCID", "d", "n"},
    {"+CSCA", "n", "n"},
    {"+CMGS", "n", "d"},
    {"+CMGW", "n", "d"},
    {"+CDV", "n", "d"},
    // where it is
    {"+CREG", "k", "c"},
    {"+CGREG", "k", "c"},
    {"$CGREG", "k", "c"},
    {"+CEREG", "k", "c"},
    {"+C5GREG", "k", "c"},
    {"+ZLACELLID", "k", "c"},
    {"+ZCELLINFO", "k", "ck"},
    {"+ZCELLSIGINFO", "k", "c"},
    {"+ZEMCI", "k", "ckck"},
    // data of the SIM
    {"+CRSM", "kkkkkh", "kkh"},
    {"+CSIM", "kh", "kh"},
    {"+CGLA", "kkh", "kkh"},
    // texts
    {"+CUSD", "w", "w"},
    {"+ZCLAS", "k", "kp"},
    {"+ZSTM", "t", "t"},
    {"+ZSTI", "t", "t"},
    {"+ZSELM", "t", "t"},
    {"+ZSELI", "t", "t"},
    {"+ZSMSR", "t", "t"},
    {"+ZDIST", "t", "t"},
    {"+ZFDIST", "t", "t"},
    {"+ZBK", "t", "t"},
    {"+ZPSTM", "t", "t"},
    {"+ZGINP", "t", "t"},
    {"+ZINPR", "t", "t"},
    {"+ZGINK", "t", "t"},
    {"+ZINKR", "t", "t"},
    {"+ZUPCI", "t", "t"},
    {"+ZUTR", "t", "t"},
    // names of operators, versions, times, counters, masks: they are needed to understand a recording
    {"+COPS", "k", "k"},
    {"+COPN", "k", "k"},
    {"^ZOPS", "k", "k"},
    {"+ZDON", "k", "k"},
    {"+ZDONR", "k", "k"},
    {"+ZDNT", "k", "k"},
    {"+ZPAS", "k", "k"},
    {"+ZPASR", "k", "k"},
    {"+ZPCB", "k", "k"},
    {"+GMR", "k", "k"},
    {"+CGMR", "k", "k"},
    {"+CGMM", "k", "k"},
    {"+CGMI", "k", "k"},
    {"+ZVN", "k", "k"},
    {"^HWVER", "k", "k"},
    {"^HVER", "k", "k"},
    {"^ZVERSION", "k", "k"},
    {"+CCLK", "k", "k"},
    {"+ZNITZ", "k", "k"},
    {"^DSFLOWRPT", "k", "k"},
    {"+ZSET", "k", "k"},
    {"+ZFLAG", "k", "k"},
    {"+ZLOCKBAND", "k", "k"},
    {"+ZLOCKF", "k", "k"},
    {"+ZNLOCKBAND", "k", "k"},
    {"+ZUTP", "k", "k"},
    {"!", "k", "k"},
};

constexpr std::array<std::string_view, 33> kWellKnown = {
    "SM",  "ME",    "MT",    "SR",         "BM",         "TA",       "IP",       "IPV6", "IPV4V6",
    "PPP", "GSM",   "UCS2",  "IRA",        "HEX",        "LTE",      "UMTS",     "GPRS", "CS_PS",
    "CS",  "PS",    "VOICE", "DATA",       "REC UNREAD", "REC READ", "STO SENT", "SC",   "FD",
    "AO",  "READY", "ALL",   "STO UNSENT", "SIM PIN",    "SIM PUK"};

}  // namespace

const RedactRule& FindRedactRule(std::string_view name) {
    const auto* const rule = std::find_if(std::begin(kRules), std::end(kRules),
                                          [&](const RedactRule& r) { return r.name == name; });
    return rule == std::end(kRules) ? kOther : *rule;
}

bool IsWellKnown(std::string_view quoted) {
    if (std::find(kWellKnown.begin(), kWellKnown.end(), quoted) != kWellKnown.end()) return true;
    // "26/11/21,16:40:02+04"
    constexpr std::string_view form = "00/00/00,00:00:00";
    if (quoted.size() < form.size()) return false;
    for (std::size_t i = 0; i < form.size(); ++i) {
        const bool digit = quoted[i] >= '0' && quoted[i] <= '9';
        if (form[i] == '0' ? !digit : quoted[i] != form[i]) return false;
    }
    const std::string_view zone = quoted.substr(form.size());
    return zone.empty() ||
           (zone.size() == 3 && zone.find_first_not_of("0123456789+-") == std::string_view::npos);
}

}  // namespace modemsim
