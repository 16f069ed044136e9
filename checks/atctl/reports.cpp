#include <gtest/gtest.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <string>

#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "commands/list_file.h"
#include "records/state.h"
#include "reports/response.h"
#include "tools/atctl/report_line.h"

// From the modem's text through the whole server to the line that is shown: what the server sends is what the
// catalogue says, whoever sends it.

namespace {

// The report's text, or its fields; the clock and the module stand in front.
struct Vector {
    const char* modem;
    const char* line;
    uint16_t last_answer = 0;  // g_last_atcmd
    uint16_t pending = 0;
};

constexpr Vector kVectors[] = {
    {"\r\nZREFRESH: \"6F07\",\"abc\"\r\n", "sms      SIM files changed  file_id 6F07  text abc"},
    {"\r\n+CMTI: \"SM\",3\r\n", "sms      new message  memory SM  index 3"},
    {"\r\n+ZVMTI: \"ME\",4\r\n", "sms      new voice mail message  memory ME  index 4"},
    {"\r\n+CDSI: \"SR\",5\r\n", "sms      new status report stored  memory SR  index 5"},
    {"\r\n+ZCLAS: 26,\"00AABB\"\r\n", "sms      message for the display  length 26  pdu 00AABB"},
    {"\r\nZVMAIL: 1\r\n", "sms      voice mail  vm_flag 1 (voice mail is waiting)"},
    {"\r\n+CBM: 88\r\n00112233\r\n", "sms      cell broadcast page  length 88  pdu 00112233"},
    {"\r\n+CDS: 24\r\n0791447700\r\n", "sms      status report  length 24  pdu 0791447700"},
    {"\r\nRINGBACK\r\n", "call     ringing over there  \"RINGBACK\""},
    {"\r\nVOICE NO CARRIER: 16\r\n", "call     call ended  \"VOICE NO CARRIER: 16\""},
    {"\r\nSTOPRING\r\n", "call     ringing stopped  \"STOPRING\""},
    {"\r\nRING\r\n", "call     incoming call  \"RING\""},
    {"\r\n+CLIP: \"+447700900123\",145,,,,0\r\n", "call     calling number  \"+447700900123\""},
    {"\r\n+CCWA: \"+447700900456\",145,1\r\n", "call     call waiting  \"+CCWA: \"+447700900456\",145,1\""},
    {"\r\nVOICE CONNECT\r\n", "call     call connected  \"VOICE CONNECT\""},
    {"\r\nANSWER\r\n", "call     call answered  \"ANSWER\""},
    {"\r\nHANGUP: 16\r\n", "call     call hung up  \"HANGUP: 16\""},
    {"\r\n^CONN:1,0\r\n", "call     call connected  \"^CONN:1,0\""},
    {"\r\n^CEND:1,0,104\r\n", "call     call ended  \"^CEND:1,0,104\""},
    {"\r\n+ZCPI: 1,2\r\n", "call     call state  \"+ZCPI: 1,2\""},
    {"\r\n^HRSSILVL:60\r\n", "sim      HDR signal  hdr_rssi 60"},
    {"\r\n+ZICCID: 8944123412341234123\r\n", "sim      card number  iccid 8944123412341234123"},
    {"\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\"\r\n",
     "sim      circuit-switched registration  state 1 (home)  lac 1A2B  cellid 00C3D4E5"},
    {"\r\n+CREG: 2\r\n", "sim      circuit-switched registration  state 2 (searching)"},
    {"\r\n+CGREG: 5,\"1A2B\",\"00C3D4E5\",7,\"01\",3\r\n",
     "sim      packet-switched registration  state 5 (roaming)  lac 1A2B  cellid 00C3D4E5  act 7  rac 01  "
     "sub_act 3"},
    {"\r\n+CEREG: 3,\"1A2B\",\"00C3D4E5\",7,2\r\n",
     "sim      LTE registration  state 3 (denied)  tac 1A2B  cellid 00C3D4E5  act 7  sub_act 2"},
    {"\r\n+ZUPCI: 35,1,2,3,\"Hello there\"\r\n",
     "sim      proactive command of the SIM  cmdtype 35 (a text to send)  value1 1  value2 2  value3 3  txt "
     "Hello there"},
    {"\r\n+ZUEND: 2\r\n", "sim      end of the toolkit session  result 2"},
    {"\r\n+ZSIMREFRESH\r\n", "sim      SIM refreshed  \"+ZSIMREFRESH\""},
    {"\r\n+ZCONSTAT: 1\r\n", "data     data connection  stat 1"},
    {"\r\n+ZGIPDNS: 1,2,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"192.0.2.1\",\"192.0.2.2\"\r\n",
     "data     addresses of the data connection  cid_num 1  cid1 2  PDP_type IP  PDP_addr 10.0.0.2  gateway "
     "10.0.0.1  primary_dns 192.0.2.1  secondary_dns 192.0.2.2"},
    {"\r\n+ZNITZ: 26,11,21,13,24,15,0,1\r\n",
     "time     network time  value1 26  value2 11  value3 21  value4 13  value5 24  value6 15  value7 0  "
     "value8 1"},
    {"\r\n+ZSTI: \"Menu\"\r\n", "toolkit  toolkit menu  \"\"Menu\"\""},
    {"\r\n+ZSMSR: 1\r\n", "toolkit  the SIM sent a message  \"1\""},
    {"\r\n+ZDIST: \"Hi\"\r\n", "toolkit  text to display  \"\"Hi\"\""},
    {"\r\n+ZEND\r\n", "toolkit  toolkit ended  \"+ZEND\""},
    {"\r\n+ZPSTM: 1\r\n", "toolkit  toolkit submenu  \"1\""},
    {"\r\n+ZGINP: 1\r\n", "toolkit  the SIM asks for a text  \"1\""},
    {"\r\n+ZGINK: 2\r\n", "toolkit  the SIM asks for a key  \"2\""},
    {"\r\n+ZMTime: 3\r\n", "toolkit  toolkit time  \"3\""},
    {"\r\n+ZFDIST: 4\r\n", "toolkit  text to display, or an unsupported command  \"4\""},
    {"\r\n+CUSD: 0,\"Bye\",15\r\n", "ussd     USSD text  mode 0 (over)  str Bye  type 15"},
    {"\r\n+CME ERROR: network timeout\r\n",
     "ussd     USSD failed: modem error (CME)  \"+CME ERROR: network timeout\"", 0, 0x0532},
    {"\r\n+CCFC: 1,1,\"+447700900121\",145\r\n",
     "call     further line of the call diverts  status 1 (active)  classx 1  number +447700900121  type "
     "145 (international)  time 0",
     0x052B},
    {"\r\nRING\r\n", "call     further line of the call diverts  \"RING\"", 0x052B},
    {"\r\n+CCWA: 1,1\r\n", "call     further line of the call waiting state  \"+CCWA: 1,1\"", 0x052C},
};

// What the server wrote into a file last; it is never written here.
int g_file = -1;
std::string g_file_path;

FileContent WrittenFile(const char* path, size_t size) {
    if (g_file_path != path) return {{}, "not written"};
    FileContent content;
    content.bytes.resize(size);
    const ssize_t got = pread(g_file, content.bytes.data(), size, 0);
    content.bytes.resize(static_cast<size_t>(std::max<ssize_t>(got, 0)));
    return content;
}

}  // namespace

// In place of the one that opens the file by its path.
int OpenListFile(const char* path) {
    if (g_file >= 0) close(g_file);
    g_file = memfd_create("list", MFD_CLOEXEC);
    g_file_path = path;
    return dup(g_file);
}

class Reports : public testing::Test {
  protected:
    static void Clear() {
        Platform().Reset();
        Platform().config["data_card_mode"] = "KVX_LTE";
        Queues().Reset();
        Queues().CreateModules();
        ClearLog();
        ForgetReceived();
        ClearPendingRequest();
        g_last_atcmd = 0;
    }
    void SetUp() override { Clear(); }
    void TearDown() override { Clear(); }

    static Arrival Read(const FakeMessage& message) {
        return ReadArrival({}, static_cast<uint16_t>(message.key), message.type, message.body, WrittenFile);
    }
    static Arrival Route(uint16_t id, const std::string& text) {
        Queues().sent.clear();
        MSG_BUF message = {};
        _BK_AT_RES_T res = {};
        res.usCmdID = id;
        res.usParaLen = static_cast<uint16_t>(text.size());
        memcpy(res.aucParas, text.data(), text.size());
        memcpy(message.aucDataBuf, &res, sizeof res);
        resolve_auto_report(&message);
        EXPECT_EQ(Queues().sent.size(), 1U);
        return Queues().sent.empty() ? Arrival() : Read(Queues().sent[0]);
    }
    static void Feed(const Vector& vector) {
        Clear();
        g_last_atcmd = vector.last_answer;
        if (vector.pending != 0) PendingRequest()->usCmdID = vector.pending;
        std::string text = vector.modem;
        text.resize(text.size() + 16);
        ProcessReceived(text.data());
    }
};

TEST_F(Reports, EachIsShownAsTheModemMeantIt) {
    for (const Vector& vector : kVectors) {
        SCOPED_TRACE(vector.modem);
        Feed(vector);
        EXPECT_EQ(Queues().sent.size(), 1U);
        if (Queues().sent.empty()) continue;
        const Arrival arrival = Read(Queues().sent[0]);
        EXPECT_EQ(arrival.kind, Arrival::Kind::report);
        EXPECT_EQ(ArrivalLine(arrival, Look()).substr(sizeof "00:00:00.000  " - 1), vector.line);
    }
}

TEST_F(Reports, EveryOneOfTheCatalogueIsReallySent) {
    std::set<const ReportInfo*> seen;
    for (const Vector& vector : kVectors) {
        Feed(vector);
        for (const FakeMessage& message : Queues().sent)
            seen.insert(Read(message).report);
    }
    // These two come from what is no line of the modem's own.
    Clear();
    PendingRequest()->usCmdID = 0x0001;
    seen.insert(Route(0, "OK").report);
    seen.insert(Route(0x0108, "+CMGS: 17").report);
    for (const ReportInfo* report : kReports)
        EXPECT_TRUE(seen.contains(report)) << report->name << ": " << report->title;
}
