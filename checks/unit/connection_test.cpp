#include "reports/connection.h"

#include <syslog.h>

#include "checks/support/report_vector.h"
#include "records/state.h"

namespace {

using Writes = std::vector<std::pair<std::string, std::string>>;

const Writes kWanReset = {
    {"wan_ipaddr", "0.0.0.0"},  {"prefer_dns_auto", "0.0.0.0"}, {"standby_dns_auto", "0.0.0.0"},
    {"wan_netmask", "0.0.0.0"}, {"wan_primary_dns", "0.0.0.0"}, {"wan_secondary_dns", "0.0.0.0"},
    {"wan_gateway", "0.0.0.0"},
};

Writes operator+(Writes left, const Writes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class Connection : public ReportVectors {
  protected:
    void ExpectState(int32_t stat) { ExpectReport(0x1022, 0x0625, 1, ReportBytes().Int(stat).str()); }
};

// --- WAN reset -------------------------------------------------------------------------------------------

TEST_F(Connection, WanResetWritesSevenKeysInOrderAndEndsTheDhcpClient) {
    Shell().status = 256;
    EXPECT_EQ(wan_reset(), 256);
    EXPECT_EQ(Platform().writes, kWanReset);
    EXPECT_EQ(Shell().commands, std::vector<std::string>{"killall -9 udhcpc "});
}

// --- connection state ------------------------------------------------------------------------------------

TEST_F(Connection, DownWithoutUserActionAsksForANewConnection) {
    for (const char* action : {"", "0", "2", "11"}) {
        Platform().Reset();
        if (*action != '\0') Platform().config["user_action"] = action;
        EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT: 0"), 0);
        EXPECT_EQ(Platform().writes, kWanReset + (Writes{{"ppp_status", "ppp_disconnected"},
                                                         {"zgipdns_result", "0"},
                                                         {"zconstat_up_result", "1"},
                                                         {"auto_reconnect", "1"}}));
        ExpectState(0);
    }
    EXPECT_TRUE(Logged("---.>>>>>>>>>>g_last_atcmd == AT_ZCONSTAT_CMD", "response", LOG_DEBUG));
    EXPECT_TRUE(Logged("tPara.stat:0 ", "response", LOG_DEBUG));
    EXPECT_TRUE(Logged("user_action<<at-server:\n ", "response", LOG_DEBUG));
    EXPECT_TRUE(Logged("---.>>>>>>>>>>send msg AT_ZCONSTAT_CMD\n", "response", LOG_EMERG));
}

TEST_F(Connection, DownByTheUserStaysDown) {
    Platform().config["user_action"] = "1";
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT: 0"), 0);
    EXPECT_EQ(Platform().Get("zconstat_up_result"), "0");
    EXPECT_EQ(Platform().Get("auto_reconnect"), "0");
    EXPECT_TRUE(Logged("user_action<<at-server:1\n ", "response", LOG_DEBUG));
    ExpectState(0);
}

TEST_F(Connection, DownMarksAConnectedModemAsNotConnected) {
    Platform().config["modem_is_connected"] = "1";
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT: 0"), 0);
    EXPECT_EQ(Platform().Get("modem_is_connected"), "0");
    EXPECT_TRUE(Logged("make modem connect......!", "response", LOG_DEBUG));
}

TEST_F(Connection, DownLeavesAModemThatIsNotConnectedAlone) {
    for (const char* connected : {"0", "", "10"}) {
        Platform().Reset();
        Platform().config["modem_is_connected"] = connected;
        on_recieve_at_process_zconstat("+ZCONSTAT: 0");
        EXPECT_EQ(Platform().Get("modem_is_connected"), connected);
        for (const auto& write : Platform().writes)
            EXPECT_NE(write.first, "modem_is_connected");
    }
    EXPECT_FALSE(LoggedPart("make modem connect"));
}

TEST_F(Connection, UpSetsOneKeyAndIsRelayed) {
    Platform().config["modem_is_connected"] = "1";
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT: 1"), 0);
    EXPECT_EQ(Platform().writes, (Writes{{"zconstat_up_result", "0"}}));
    EXPECT_TRUE(Shell().commands.empty());
    ExpectState(1);
}

TEST_F(Connection, AnyOtherStateIsUp) {
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT: -7,1"), 0);
    EXPECT_EQ(Platform().writes, (Writes{{"zconstat_up_result", "0"}}));
    ExpectState(-7);
}

TEST_F(Connection, StateWithoutNumberIsDown) {
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT: x"), 0);
    ExpectState(0);
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCON"), 0);
    ExpectState(0);
}

TEST_F(Connection, StateStandsBehindElevenCharactersWhateverTheyAre) {
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT:12"), 0);  // no blank: the 1 stands in its place
    ExpectState(2);
    EXPECT_EQ(on_recieve_at_process_zconstat("12345678901-3"), 0);
    ExpectState(-3);
}

TEST_F(Connection, StateNullChangesNothing) {
    EXPECT_EQ(on_recieve_at_process_zconstat(nullptr), 1);
    ExpectNothingSent();
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Connection, StateThatCannotBeSent) {
    Queues().fail_send = 11;
    EXPECT_EQ(on_recieve_at_process_zconstat("+ZCONSTAT: 1"), 1);
    EXPECT_EQ(Platform().Get("zconstat_up_result"), "0");
}

// --- addresses -------------------------------------------------------------------------------------------

TEST_F(Connection, AddressesAreReported) {
    EXPECT_EQ(on_recieve_at_process_zgipdns(
                  "+ZGIPDNS: 1,2,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"192.0.2.1\",\"192.0.2.2\""),
              0);
    ExpectReport(0x1022, 0x0627, 1,
                 ReportBytes()
                     .Int(1)
                     .Int(2)
                     .Text("IP", 10)
                     .Text("10.0.0.2", 60)
                     .Text("10.0.0.1", 60)
                     .Text("192.0.2.1", 60)
                     .Text("192.0.2.2", 60)
                     .Zeros(2)
                     .str());
    EXPECT_TRUE(Logged("---.>>>>>>>>>>on_recieve_at_process_zgipdns\n", "response", LOG_EMERG));
    EXPECT_TRUE(Logged("on_recieve_at_process_zgipdns :1, 2,IP,10.0.0.2,10.0.0.1,192.0.2.1,192.0.2.2",
                       "response", LOG_EMERG));
}

TEST_F(Connection, EmptyAddressKeepsItsMarker) {
    EXPECT_EQ(on_recieve_at_process_zgipdns("+ZGIPDNS: 1,2,\"IP\",\"\",\"b\",\"c\",\"d\""), 0);
    ExpectReport(0x1022, 0x0627, 1,
                 ReportBytes()
                     .Int(1)
                     .Int(2)
                     .Text("IP", 10)
                     .Text("\xFD", 60)
                     .Text("b", 60)
                     .Text("c", 60)
                     .Text("d", 60)
                     .Zeros(2)
                     .str());
}

TEST_F(Connection, MissingAddressesAreZero) {
    EXPECT_EQ(on_recieve_at_process_zgipdns("+ZGIPDNS: 1,2"), 0);
    ExpectReport(0x1022, 0x0627, 1, ReportBytes().Int(1).Int(2).Zeros(252).str());
    EXPECT_EQ(on_recieve_at_process_zgipdns(""), 0);
    ExpectReport(0x1022, 0x0627, 1, ReportBytes().Zeros(260).str());
}

TEST_F(Connection, AddressOf59CharactersFitsAndALongerOneRunsIntoTheNextField) {
    const std::string full(59, 'a');
    EXPECT_EQ(on_recieve_at_process_zgipdns(("+ZGIPDNS: 1,2,\"IP\",\"" + full + "\",\"b\"").c_str()), 0);
    ExpectReport(0x1022, 0x0627, 1,
                 ReportBytes().Int(1).Int(2).Text("IP", 10).Text(full, 60).Text("b", 60).Zeros(122).str());
    EXPECT_EQ(on_recieve_at_process_zgipdns(("+ZGIPDNS: 1,2,\"IP\",\"" + full + "xy\",\"b\"").c_str()), 0);
    ExpectReport(0x1022, 0x0627, 1,
                 ReportBytes()
                     .Int(1)
                     .Int(2)
                     .Text("IP", 10)
                     .Text(full, 60)
                     .Text("xy", 60)
                     .Text("b", 60)
                     .Zeros(62)
                     .str());
}

TEST_F(Connection, AddressTextIsCutAt511Characters) {
    // Blanks up to character 510, then "12": only the "1" is read.
    const std::string text = "+ZGIPDNS: " + std::string(500, ' ') + "12";
    EXPECT_EQ(on_recieve_at_process_zgipdns(text.c_str()), 0);
    ExpectReport(0x1022, 0x0627, 1, ReportBytes().Int(1).Zeros(256).str());
}

TEST_F(Connection, AddressesNullSendsNothing) {
    EXPECT_EQ(on_recieve_at_process_zgipdns(nullptr), 1);
    ExpectNothingSent();
}

// --- cell measurement ------------------------------------------------------------------------------------

TEST_F(Connection, CellMeasurementStoresThreeFieldsAndStopsTheReport) {
    const uint32_t written = g_at_statistics.send;
    zemci_resolve("\r\n+ZEMCI: 0A1B2C,2,1F2E,4,5,6,7,8,9,10,-11,12\r\n");
    EXPECT_EQ(Platform().writes, (Writes{{"Z_CELL_ID", "0A1B2C"}, {"Z_LAC", "1F2E"}, {"Z_rsrq", "-11"}}));
    EXPECT_EQ(modem_.Written(), "AT+ZEMCI=0\r");
    EXPECT_EQ(g_at_statistics.send, written + 1);  // a line as any other: it is counted
    EXPECT_TRUE(Logged("send AT+ZEMCI=0 over\n", "response"));
    EXPECT_TRUE(LoggedPart("zemci_resolve pStr is :\r\n+ZEMCI: 0A1B2C,"));
    ExpectNothingSent();
}

TEST_F(Connection, CellMeasurementOfElevenFields) {
    zemci_resolve("\r\n+ZEMCI: 1,2,3,4,5,6,7,8,9,10,11\r\nOK\r\n");
    EXPECT_EQ(Platform().writes, (Writes{{"Z_CELL_ID", "1"}, {"Z_LAC", "3"}, {"Z_rsrq", "11"}}));
}

TEST_F(Connection, CellMeasurementOfTenFieldsStoresNothing) {
    zemci_resolve("\r\n+ZEMCI: 1,2,3,4,5,6,7,8,9,10\r\n");
    zemci_resolve("\r\n+ZEMCI: 1,2,3,4,5,6,7,8,9,10\r\n,11,12");
    zemci_resolve("\r\n+ZEMCI: ");
    zemci_resolve("+ZEMCI:");
    EXPECT_TRUE(Platform().writes.empty());
    EXPECT_EQ(modem_.Written(), "");
}

TEST_F(Connection, CellMeasurementFieldsAreCut) {
    zemci_resolve(("\r\n+ZEMCI: " + std::string(16, 'a') + ",," + std::string(10, 'b') + ",,,,,,,," +
                   std::string(10, 'c') + ",")
                      .c_str());
    EXPECT_EQ(Platform().writes, (Writes{{"Z_CELL_ID", std::string(15, 'a')},
                                         {"Z_LAC", std::string(9, 'b')},
                                         {"Z_rsrq", std::string(9, 'c')}}));
}

TEST_F(Connection, CellMeasurementEmptyFields) {
    zemci_resolve("\r\n+ZEMCI: ,,,,,,,,,,");
    EXPECT_EQ(Platform().writes, (Writes{{"Z_CELL_ID", ""}, {"Z_LAC", ""}, {"Z_rsrq", ""}}));
}

TEST_F(Connection, CellMeasurementFirstFieldBeginsTenCharactersIn) {
    zemci_resolve("+ZEMCI: 123,2,3,4,5,6,7,8,9,10,11");
    EXPECT_EQ(Platform().Get("Z_CELL_ID"), "3");
}

TEST_F(Connection, CellMeasurementIgnoresOtherText) {
    zemci_resolve("\r\n+ZEMC: 1,2,3,4,5,6,7,8,9,10,11,12\r\n");
    EXPECT_TRUE(Platform().writes.empty());
    EXPECT_EQ(modem_.Written(), "");
    EXPECT_TRUE(Logged("zemci_resolve pStr is :\r\n+ZEMC: 1,2,3,4,5,6,7,8,9,10,11,12\r\n\n", "response"));
}

TEST_F(Connection, CellMeasurementNullIsLogged) {
    zemci_resolve(nullptr);
    EXPECT_TRUE(Logged("zemci_resolve input para is null\n", "response"));
    EXPECT_TRUE(Platform().writes.empty());
}

// --- SIM toolkit -----------------------------------------------------------------------------------------

TEST_F(Connection, ToolkitEndIsMarked) {
    EXPECT_EQ(stk_end_mark(), 0);
    EXPECT_EQ(Platform().writes, (Writes{{"stk", "ZEND"}, {"stk_write_flag", "0"}}));
    EXPECT_TRUE(Logged("stk=ZEND", "response"));
}

TEST_F(Connection, ToolkitEndThatCannotBeStoredLogsWhatIs) {
    Platform().config["stk"] = "ZMENU";
    Platform().fail_writes = true;
    EXPECT_EQ(stk_end_mark(), -1);
    EXPECT_TRUE(Logged("stk=ZMENU", "response"));
    EXPECT_FALSE(LoggedPart("ZEND"));
}

}  // namespace
