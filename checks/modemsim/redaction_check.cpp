// What a redacted recording holds in place of private data.

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "tools/modemsim/redact_message.h"
#include "tools/modemsim/redactor.h"
#include "tools/modemsim/trace.h"

namespace modemsim {
namespace {

constexpr StandIns::Key kKey = {0x0123456789ABCDEF, 0xFEDCBA9876543210};
using Way = Redactor::Way;

struct Passed {
    Way way;
    std::string bytes;
};

// Everything of each way, from pieces.
struct Both {
    std::string to;
    std::string from;

    bool operator==(const Both&) const = default;
};

void PrintTo(const Both& both, std::ostream* out) {
    *out << "-> " << Visible(both.to) << "\n<- " << Visible(both.from);
}

Both Run(Redactor redactor, const std::vector<Passed>& pieces) {
    Both both;
    for (const Passed& piece : pieces) {
        redactor.Feed(piece.way, piece.bytes);
        both.to += redactor.Take(Way::ToModem);
        both.from += redactor.Take(Way::FromModem);
    }
    redactor.Finish(Way::ToModem);
    redactor.Finish(Way::FromModem);
    both.to += redactor.Take(Way::ToModem);
    both.from += redactor.Take(Way::FromModem);
    return both;
}

Both Redacted(const std::vector<Passed>& pieces) {
    return Run(Redactor(kKey), pieces);
}
Both Shape(const std::vector<Passed>& pieces) {
    return Run(Redactor::Shape(), pieces);
}
std::string ToModem(const std::string& line) {
    return Redacted({{Way::ToModem, line + "\r"}}).to;
}
std::string FromModem(const std::string& line) {
    return Redacted({{Way::FromModem, "\r\n" + line + "\r\n"}}).from;
}

// Every letter a, every capital A, every digit 0: what a stand-in has to keep.
std::string Classes(std::string text) {
    for (char& c : text) {
        if (c >= '0' && c <= '9') c = '0';
        if (c >= 'a' && c <= 'z') c = 'a';
        if (c >= 'A' && c <= 'Z') c = 'A';
    }
    return text;
}

// The parts of `line` between braces are private: they come out with the same classes and otherwise
// different, everything else as it was.
void ExpectPrivate(Way way, std::string line) {
    std::vector<std::pair<std::size_t, std::size_t>> secret;
    for (std::size_t open = 0; (open = line.find('{')) != std::string::npos;) {
        line.erase(open, 1);
        const std::size_t close = line.find('}', open);
        line.erase(close, 1);
        secret.emplace_back(open, close - open);
    }
    std::string out = way == Way::ToModem ? ToModem(line) : FromModem(line);
    out = way == Way::ToModem ? out.substr(0, out.size() - 1) : out.substr(2, out.size() - 4);
    ASSERT_EQ(out.size(), line.size());
    std::string rest = out;
    for (const auto& [at, length] : secret) {
        EXPECT_NE(out.substr(at, length), line.substr(at, length)) << line << " became " << out;
        EXPECT_EQ(Classes(out.substr(at, length)), Classes(line.substr(at, length)))
            << line << " became " << out;
        rest.replace(at, length, line.substr(at, length));
    }
    EXPECT_EQ(rest, line) << "beside the private parts, in " << out;
}

TEST(Redaction, LosesWhatTheDaemonSendsInPrivate) {
    for (const char* line : {
             "AT",
             "AT+CSQ",
             "ATE0",
             "ATS0=1",
             "AT+CREG=2",
             "AT+CLIP=1",
             "AT+CMGS=20",
             "AT+CMGR=12",
             "AT+CPMS=\"SM\",\"ME\",\"SM\"",
             "AT+CSCS=\"UCS2\"",
             "AT+COPS=1,2,\"00101\"",
             "ATD112;",
             "ATD*99***1#",
             "AT+CLCK=\"SC\",2",
             "AT+CGDCONT?",
             "AT!=\"addscanfreq 40 38950\"",
             "AT+ZNLOCKBAND=0,0,1234567890ABCDEF1234,0",
             "AT+CRSM=176,28486,0,0,17",
             "ATD{07700900123};",
             "ATD+{447700900123};",
             "ATD*21*{07700900123}#;",
             "AT+CDV{5550123};",
             "AT+CMGS={07700900123}",
             "AT+CMGS=\"+{447700900123}\",145",
             "AT+CPIN=\"{1234}\"",
             "AT+CPIN={1234}",
             "AT+CPIN=\"{12345678}\",\"{0000}\"",
             "AT+CPWD=\"SC\",\"{1234}\",\"{4321}\"",
             "AT+CLCK=\"SC\",1,\"{1234}\"",
             "AT+ZNCK=\"{12345678}\"",
             "at+cpin=\"{1234}\"",
             "AT+VTS={1234}",
             "AT+CGDCONT=1,\"IP\",\"{internet}.{example}\",\"{10.64.12.34}\",0,0",
             "AT+CGDCONT=1,\"IPV4V6\",,,0,0",
             "AT$QCPDPP=1,2,\"{secret}\",\"{userName}\"",
             "AT$QCPDPP=1,2,{secret},{userName}",
             "AT+CSCA=\"+{447700900000}\"",
             "AT+CCFC=0,3,\"+{447700900121}\",145",
             "AT+CPBW=1,\"+{447700900123}\",145,\"{Anna} {Example}\"",
             "AT+ZCPBW=1,\"{02079460123}\",129,\"{Anna}\",\"\",\"\",\"{anna}@{example}.{com}\"",
             "AT+CUSD=1,\"*100*{4444}#\",15",
             "AT+CMEE=1;+CPIN=\"{1234}\";+CREG=2",
             "AT+ZINPR=1,{hello}{there}",
             "AT+ZUTR=35,0,1,0,0,4,\"{hello}\"",
             "AT+CRSM=214,28486,0,0,4,\"{01546573}\"",
             "AT^UNKNOWN=\"{whatever}\",5",
         })
        ExpectPrivate(Way::ToModem, line);
}

TEST(Redaction, LosesWhatTheModemSendsInPrivate) {
    for (const char* line : {
             "OK",
             "ERROR",
             "RING",
             "CONNECT 1500000000",
             "+CME ERROR: 10",
             "+CMS ERROR: 321",
             "HANGUP: 16",
             "+CPIN: SIM PIN",
             "+CPIN: READY",
             "+CSQ: 20,99",
             "+CMTI: \"SM\",6",
             "+CPMS: 5,50,5,50,5,50",
             "+COPS: (2,\"Testnet One\",\"TN1\",\"00101\",7),,(0,1,2)",
             "TM4100_V2.14.0.1",
             "Manufacturer: Testmodems Ltd",
             "+CCLK: \"26/11/21,16:40:02+04\"",
             "+ZNITZ: 26,11,21,13,24,15,0,0",
             "+CFUN: 1",
             "+CREG: 2",
             "+CLCK: 0",
             "+ZRSSI: -95,-8,-12,20.5",
             "+ZPAS: \"LTE\",\"CS_PS\"",
             "+CGDCONT: 2,\"IPV4V6\",\"{ims}\",\"\",0,0",
             "{356938035643809}",
             "{8944110000000012345}",
             "IMEI: {001015012345671}",
             "+ZIMSI: {001010123456789}",
             "+ZICCID: {89441100}",
             "SNE{0123456789012}",
             "+CREG: 2,1,\"{1A2B}\",\"{00C3D4E5}\"",
             "+CREG: 1,{1A2B},{00C3D4E5}",
             "+CEREG: 2,1,\"{1A2B}\",\"{00C3D4E5}\",7,0",
             "+CGREG: 2,1,\"{1A2B}\",\"{00C3D4E5}\",7,\"{01}\",0",
             "+ZCELLINFO: {12833765}, 145, B3, 1300",
             "+ZEMCI: {C3D4E5},1,{1A2B},145,1300,3,-95,0,0,0,-8",
             "+CNUM: \"{Own} {number}\",\"+{447700900111}\",145",
             "+CSCA: \"+{447700900000}\",145",
             "+CLIP: \"+{447700900123}\",145,,,\"{Anna}\",0",
             "+CLIP: \"112\",129",
             "+CLCC: 1,0,1,0,0,\"+{447700900123}\",145,0,0",
             "+CCFC: 1,1,\"+{447700900121}\",145",
             "+CPBR: 5,\"{07700900789}\",129,\"{Depot}, {Leeds}\"",
             "+CPBR: 9,\"121\",129,\"{Voice} {mail}\"",
             "+CUSD: 0,\"{Your} \"{balance}\", {sir}: {12}.{34}\",15",
             "+ZGIPDNS: 1,1,\"IP\",\"{10.64.12.34}\",\"{10.64.12.33}\",\"0.0.0.0\"",
             "+CGPADDR: 1,{10.64.12.34}",
             "+CRSM: 144,0,\"{01546573746E6574}FFFFFFFF\"",
             "+CRSM: 106,130",
             "+ZUPCI: 35,1,0,4,\"{Select} {item}\"",
             "+ZDIST: {48656C6C6F}",
             "+CMGR: \"REC READ\",\"+{447700900123}\",,\"26/11/21,16:40:02+04\"",
             "^UNKNOWN: \"{whatever}\",5",
             "{DEADBEEF00DEADBEEF00}",
         })
        ExpectPrivate(Way::FromModem, line);
}

// What stands at each end of a line of the modem's after a result has come: nothing is left over.
TEST(Redaction, KnowsTheTextOfAMessageByWhatStandsBeforeIt) {
    const auto from = [](const std::string& text) { return Redacted({{Way::FromModem, text}}).from; };
    const std::string list =
        "\r\n+CMGL: 1,\"REC READ\",\"+447700900123\",,\"26/11/21,16:40:02+04\"\r\nMeeting: at Bob's\r\nbring "
        "5\r\n"
        "\r\nOK\r\n";
    const std::string out = from(list);
    EXPECT_EQ(out.find("Meeting"), std::string::npos);
    EXPECT_EQ(out.find("Bob"), std::string::npos);
    EXPECT_EQ(out.find("bring"), std::string::npos);
    EXPECT_EQ(Classes(out), Classes(list));
    // A report in between does not end the list; the result does.
    const std::string mixed =
        from("\r\n+CMGL: 1,1,,5\r\n+CREG: 2\r\nRING\r\nsecret text\r\n\r\nOK\r\nTM4100\r\n");
    EXPECT_EQ(mixed.find("secret"), std::string::npos);
    EXPECT_NE(mixed.find("+CREG: 2\r\nRING\r\n"), std::string::npos);
    EXPECT_NE(mixed.find("OK\r\nTM4100\r\n"), std::string::npos);
    // One that comes by itself ends with its digits, so that the next report is known.
    const std::string pdu = "079144770009000006110C91447700091032621102800351006211028003550000";
    EXPECT_TRUE(from("\r\n+CDS: 24\r\n" + pdu + "\r\n\r\nHANGUP: 16\r\n").ends_with("\r\nHANGUP: 16\r\n"));
    EXPECT_TRUE(
        from("\r\n+CDS: 24\r\n" + pdu + "\r\nready to start\r\n").ends_with("\r\nready to start\r\n"));
    EXPECT_EQ(from("\r\n+CMT: \"+447700900123\",,\"26/11/21,16:40:02+04\"\r\nCall me\r\n").find("Call"),
              std::string::npos);
}

TEST(Redaction, LosesTheTextThatFollowsAPromptAndItsEcho) {
    const Both out = Redacted({{Way::ToModem, "AT+CMGS=\"+447700900123\"\r"},
                               {Way::FromModem, "AT+CMGS=\"+447700900123\"\r\r\n> "},
                               {Way::ToModem, "Attention,\rall of you\x1A"},
                               {Way::FromModem, "Attention,\rall of you\x1A"},
                               {Way::FromModem, "\r\n+CMGS: 17\r\n\r\nOK\r\n"},
                               {Way::ToModem, "AT+CSQ\r"}});
    for (const std::string& text : {out.to, out.from}) {
        EXPECT_EQ(text.find("447700900123"), std::string::npos) << text;
        EXPECT_EQ(text.find("Attention"), std::string::npos) << text;
        EXPECT_EQ(text.find("all"), std::string::npos) << text;
    }
    EXPECT_TRUE(
        out.to.ends_with("\x1A"
                         "AT+CSQ\r"));
    EXPECT_TRUE(out.from.ends_with("\r\n+CMGS: 17\r\n\r\nOK\r\n"));
    EXPECT_EQ(out.to.substr(0, 24), out.from.substr(0, 24)) << "the echo has the same stand-in";
}

TEST(Redaction, UssdTextOverSeveralLinesIsOne) {
    const std::string text = "\r\n+CUSD: 1,\"Menu\r\n1. Balance\r\n2: Offers\r\nOK?\",15\r\n\r\nTM4100\r\n";
    const std::string out = Redacted({{Way::FromModem, text}}).from;
    for (const char* word : {"Menu", "Balance", "Offers"})
        EXPECT_EQ(out.find(word), std::string::npos) << out;
    EXPECT_TRUE(out.ends_with("?\",15\r\n\r\nTM4100\r\n")) << out;
}

TEST(Redaction, UnfinishedLineLosesEverything) {
    const Both out = Redacted({{Way::ToModem, "AT+CPIN=\"12"}, {Way::FromModem, "\r\n00101012"}});
    EXPECT_EQ(out.to.find("12"), std::string::npos);
    EXPECT_EQ(out.from.find("00101"), std::string::npos);
    EXPECT_EQ(out.to.size(), 11U);
    EXPECT_EQ(out.from.size(), 10U);
}

TEST(Redaction, LineWithoutAnEndIsNotHeldForEver) {
    Redactor redactor(kKey);
    redactor.Feed(Way::FromModem, std::string(100'000, 'x'));
    EXPECT_GE(redactor.Take(Way::FromModem).size(), 65536U);
}

TEST(Redaction, PromptIsNotHeldBack) {
    Redactor redactor(kKey);
    redactor.Feed(Way::FromModem, "\r\n> ");
    EXPECT_EQ(redactor.Take(Way::FromModem), "\r\n> ");
}

// One session with everything in it, in the order in which it passed.
const std::vector<Passed>& Session() {
    static const std::vector<Passed> session = {
        {Way::ToModem, "AT+CPIN=\"1234\"\r"},
        {Way::FromModem, "\r\nOK\r\n"},
        {Way::FromModem, "\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\"\r\n"},
        {Way::ToModem, "AT+CIMI\r"},
        {Way::FromModem, "\r\n001010123456789\r\n\r\nOK\r\n"},
        {Way::ToModem, "ATD07700900123;\r"},
        {Way::FromModem, "\r\nOK\r\n\r\nRINGBACK\r\n"},
        {Way::ToModem, "AT+CMGR=1\r"},
        {Way::FromModem,
         "\r\n+CMGR: "
         "1,\"Oksana\",50\r\n0791447700090000040C9144770009103200006211028003510023C7F79B0C6ABFE5EEB4FB1C"
         "0251E5E1B41BC42E87EDE539284C07E574B09A0B\r\n\r\nOK\r\n"},
        {Way::ToModem, "AT+CMGS=18\r"},
        {Way::FromModem, "\r\n> "},
        {Way::ToModem, "0011000C914477000910320000AA0BE8329BFD06DDDF723619\x1A"},
        {Way::FromModem, "\r\n+CMGS: 17\r\n\r\nOK\r\n"},
        {Way::FromModem, "\r\n+CUSD: 1,\"Menu\r\n1. Balance 07700900123\r\n\",15\r\n"},
        {Way::FromModem, "\r\n+CLIP: \"+447700900123\",145,,,\"An\xC3\xA4 na\",0\r\n"},
        {Way::FromModem, "\r\n+CGDCONT: 1,\"IP\",\"internet.example\",\"10.64.12.34\",0,0\r\n\r\nOK\r\n"},
        {Way::FromModem,
         "\r\n+CDS: 24\r\n079144770009000006110C91447700091032621102800351006211028003550000\r\n"},
        {Way::FromModem, "\r\nHANGUP: 16\r\n"},
    };
    return session;
}

TEST(Redaction, DoesNotDependOnThePieces) {
    const std::vector<Passed>& session = Session();
    const Both whole = Redacted(session);
    std::size_t splits = 0;
    for (std::size_t i = 0; i < session.size(); ++i) {
        for (std::size_t at = 1; at < session[i].bytes.size(); ++at, ++splits) {
            std::vector<Passed> cut = session;
            cut[i].bytes.resize(at);
            cut.insert(cut.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                       {session[i].way, session[i].bytes.substr(at)});
            ASSERT_EQ(Redacted(cut), whole) << "piece " << i << " cut at " << at;
        }
    }
    EXPECT_GT(splits, 500U);
    std::vector<Passed> bytes;
    for (const Passed& piece : session)
        for (const char c : piece.bytes)
            bytes.push_back({piece.way, std::string(1, c)});
    EXPECT_EQ(Redacted(bytes), whole);
    std::vector<Passed> glued;
    for (const Passed& piece : session) {
        if (glued.empty() || glued.back().way != piece.way)
            glued.push_back(piece);
        else
            glued.back().bytes += piece.bytes;
    }
    EXPECT_EQ(Redacted(glued), whole);
}

TEST(Redaction, KeepsTheShape) {
    for (std::uint64_t key = 0; key < 200; ++key) {
        std::vector<Passed> redacted;
        Redactor redactor(StandIns::Key{key, ~key});
        for (const Passed& piece : Session()) {
            redactor.Feed(piece.way, piece.bytes);
            redacted.push_back({piece.way, redactor.Take(piece.way)});
            ASSERT_EQ(redacted.back().bytes.size(), piece.bytes.size());
        }
        ASSERT_EQ(Shape(redacted), Shape(Session())) << "key " << key;
    }
}

// Random lines of the sort that occurs: the shape stays, nothing grows or shrinks, no split matters.
TEST(Redaction, KeepsTheShapeOfAnything) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    static const std::vector<std::string> parts = {"AT",
                                                   "+CMGR: ",
                                                   "+CUSD: ",
                                                   "+CPIN=",
                                                   "\"",
                                                   "\"",
                                                   ",",
                                                   ",",
                                                   "1234",
                                                   "07700900123",
                                                   "ABCDEF0123456789",
                                                   "Anna",
                                                   "\r\n",
                                                   "\r\n",
                                                   "\r",
                                                   "> ",
                                                   "\x1A",
                                                   ";",
                                                   "10.64.12.34",
                                                   "+",
                                                   "SM",
                                                   "OK",
                                                   "004100420043",
                                                   ".",
                                                   " ",
                                                   "-",
                                                   "+CREG: ",
                                                   "FF",
                                                   "\xC3\xA4",
                                                   "\xE9",
                                                   "D",
                                                   "*100#",
                                                   "+ZDIST: ",
                                                   "FFFFFFFFFFFFFFFFFF",
                                                   "2001:db8::1"};
    for (int round = 0; round < 20'000; ++round) {
        std::vector<Passed> pieces;
        for (std::size_t i = 1 + below(4); i > 0; --i) {
            std::string text;
            for (std::size_t n = 1 + below(12); n > 0; --n)
                text += parts[below(parts.size())];
            pieces.push_back({below(2) == 0 ? Way::ToModem : Way::FromModem, text + "\r\n"});
        }
        const Both whole = Redacted(pieces);
        std::vector<Passed> redacted;
        std::vector<Passed> bytes;
        std::size_t to = 0;
        std::size_t from = 0;
        for (const Passed& piece : pieces) {
            std::size_t& at = piece.way == Way::ToModem ? to : from;
            const std::string& text = piece.way == Way::ToModem ? whole.to : whole.from;
            redacted.push_back({piece.way, text.substr(at, piece.bytes.size())});
            at += piece.bytes.size();
            for (const char c : piece.bytes)
                bytes.push_back({piece.way, std::string(1, c)});
        }
        ASSERT_EQ(to, whole.to.size());
        ASSERT_EQ(from, whole.from.size());
        ASSERT_EQ(Redacted(bytes), whole) << "round " << round;
        ASSERT_EQ(Shape(redacted), Shape(pieces)) << "round " << round;
    }
}

TEST(StandIn, OfANumberIsTheSameHoweverItIsWritten) {
    StandIns stand_ins(kKey);
    const std::string national = stand_ins.Text("07700900123");
    const std::string international = stand_ins.Text("+447700900123");
    EXPECT_EQ(international.front(), '+');
    EXPECT_EQ(national.substr(2), international.substr(4));
    EXPECT_EQ(stand_ins.Text("call 07700900123 now").substr(5, 11), national);
    const std::string message =
        RedactMessage("0011000C914477000910320000AA0BE8329BFD06DDDF723619", stand_ins);
    std::string digits;
    for (std::size_t i = 10; i < 22; i += 2)
        digits += {message[i + 1], message[i]};
    EXPECT_EQ("+" + digits, international);
    EXPECT_NE(StandIns(StandIns::Key{1, 2}).Text("07700900123"), national);
}

TEST(StandIn, DifferentShortNumbersStayDifferent) {
    StandIns stand_ins(kKey);
    std::set<std::string> seen;
    for (int number = 1000; number < 4000; ++number)
        EXPECT_TRUE(seen.insert(stand_ins.Number(std::to_string(number))).second) << number;
    // All of them are in use before one is used twice.
    StandIns crowded(kKey);
    for (int number = 0; number < 10'000; ++number)
        crowded.Number(std::to_string(10'000 + number).substr(1));
}

// The septets of a text that begins at a bit of a message in hexadecimal digits.
std::string Septets(const std::string& message, std::size_t bit, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        unsigned septet = 0;
        for (std::size_t n = 0; n < 7; ++n) {
            const std::size_t at = bit + 7 * i + n;
            const unsigned long octet = std::stoul(message.substr(at / 8 * 2, 2), nullptr, 16);
            septet |= static_cast<unsigned>((octet >> (at % 8)) & 1U) << n;
        }
        text += static_cast<char>(septet);
    }
    return text;
}

TEST(StandIn, OfAMessageHasItsNumbersAndTextReplacedOnly) {
    StandIns stand_ins(kKey);
    const std::string received =
        "0791447700090000040C9144770009103200006211028003510023C7F79B0C6ABFE5EEB4FB1C0251E5E1B41BC42E87EDE539"
        "284C07"
        "E574B09A0B";
    const std::string out = RedactMessage(received, stand_ins);
    ASSERT_EQ(out.size(), received.size());
    // Lengths and types of both addresses, the first octet, protocol, coding, time stamp, length of the text.
    for (const auto& [at, length] : {std::pair{0, 4}, {16, 6}, {34, 20}})
        EXPECT_EQ(out.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(length)),
                  received.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(length)))
            << at;
    for (const auto& [at, length] : {std::pair{4, 12}, {22, 12}, {56, 60}})
        EXPECT_NE(out.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(length)),
                  received.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(length)))
            << at;
    EXPECT_EQ(RedactMessage(received, stand_ins), out);
    EXPECT_EQ(Septets(received, 27 * 8, 35), "Good morning! Train leaves at 9:05.");
    EXPECT_EQ(Classes(Septets(out, 27 * 8, 35)), Classes(Septets(received, 27 * 8, 35)));
}

TEST(StandIn, OfA16BitTextStaysInItsScript) {
    StandIns stand_ins(kKey);
    const std::string message =
        "0791447700090000040C9144770009406500086211022151000022041F04400438043204350442002C00200434043E002004"
        "32043504"
        "47043504400430";
    const std::string out = RedactMessage(message, stand_ins);
    ASSERT_EQ(out.size(), message.size());
    const std::string text = out.substr(54);
    EXPECT_NE(text, message.substr(54));
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const std::string unit = message.substr(54 + i, 4);
        if (unit.starts_with("04"))
            EXPECT_EQ(text.substr(i, 2), "04");
        else
            EXPECT_EQ(text.substr(i, 4), unit) << "comma and blank stay";
    }
}

TEST(StandIn, OfAHeaderOfALongTextStays) {
    StandIns stand_ins(kKey);
    // Two parts of one text: reference 42, parts 2, number 1, then septets.
    const std::string message =
        "0041000C914477000910320000"
        "0D"
        "0500032AFFC4"
        "D2E2B03D0E97";
    const std::string out = RedactMessage(message, stand_ins);
    EXPECT_EQ(out.substr(22, 18), message.substr(22, 18));
    EXPECT_NE(out.substr(40), message.substr(40));
    EXPECT_EQ(out.size(), message.size());
    // The text begins behind seven septets, which hold the header and a bit that fills them up.
    const std::size_t begin = 14 * 8 + 7 * 7;
    EXPECT_EQ(Classes(Septets(out, begin, 6)), Classes(Septets(message, begin, 6)));
    EXPECT_NE(Septets(out, begin, 6), Septets(message, begin, 6));
}

TEST(StandIn, OfWhatIsNoMessageIsHexadecimalToo) {
    StandIns stand_ins(kKey);
    for (const std::string& text :
         {std::string("07914477"), std::string("FF11223344556677"), std::string("00"), std::string("0011"),
          std::string("0791447700090000040C9144770009103200006211028003510FFF"), std::string("123"),
          std::string("D0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0")}) {
        const std::string out = RedactMessage(text, stand_ins);
        EXPECT_EQ(out.size(), text.size());
        EXPECT_TRUE(IsHexText(out)) << out;
    }
}

}  // namespace
}  // namespace modemsim
