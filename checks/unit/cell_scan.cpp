#include <string.h>
#include <syslog.h>

#include <memory>
#include <vector>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"
#include "commands/atdecode.h"

// The choice of the best cell of a background LTE scan.

namespace {

struct Scan {
    std::string mode;  // lte_diag_mode
    int better = 0;    // how often a better cell was found
};

// Scans `text` with lte_select_mode "Auto"; the response must stay as it is.
Scan Scanned(const std::string& text, uint8_t type = EXEC) {
    StartWith(kModule);
    Platform().config["lte_select_mode"] = "Auto";
    Platform().config["lte_diag_mode"] = "before";
    auto line = std::make_unique<AT_RES_LINE_T>();
    memcpy(line->strResParas, text.c_str(), text.size() + 1);
    _BK_AT_RES_T response;
    memset(&response, 0xa5, sizeof response);
    response.ucCmdType = type;
    const _BK_AT_RES_T before = response;
    Parse_BGLTEPLMN_Res(&response, line.get());
    EXPECT_EQ(memcmp(&response, &before, sizeof response), 0) << "the response was changed";
    Scan scan;
    scan.mode = Platform().Get("lte_diag_mode");
    for (const LogLine& logged : LoggedLines())
        scan.better += logged.text == "Have better cell\n";
    return scan;
}

std::string Cell(int istat, int rsrp, int qrxlevmin, const std::string& sub_net_type) {
    return "(" + std::to_string(istat) + ",\"Net A\",\"A\",\"46001\",\"7\"," + std::to_string(rsrp) + "," +
           std::to_string(qrxlevmin) + ",\"" + sub_net_type + "\")";
}

}  // namespace

TEST(CellScan, OneFddCell) {
    const Scan scan = Scanned(Cell(2, 40, 10, "1"));
    EXPECT_EQ(scan.mode, "Fdd_Pref");
    EXPECT_EQ(scan.better, 1);
    EXPECT_TRUE(Logged("diag 4g networkrk: Parse_BGLTEPLMN_Res begin\n", "atdecode", LOG_EMERG));
    EXPECT_TRUE(Logged("pResLine->strResParas:2,\"Net A\",\"A\",\"46001\",\"7\",40,10,\"1\"\n"));
    EXPECT_TRUE(Logged("stParasList.nCount:1\n"));
    EXPECT_TRUE(
        Logged("istat:2\nlalpha_oper:Net A\nsalpha_oper:A\nnumeric_oper:46001\nnet_type:7\niRsrp:40\n"
               "iQrxlevmin:10\nsub_net_type:1\n"));
    EXPECT_TRUE(Logged("Set lte_diag_mode Fdd_Pref\n"));
    EXPECT_TRUE(Logged("diag 4g networkrk: Parse_BGLTEPLMN_Res end\n"));
}
TEST(CellScan, OneTddCell) {
    EXPECT_EQ(Scanned(Cell(1, 40, 10, "0")).mode, "Tdd_Only");
    EXPECT_TRUE(Logged("Set lte_diag_mode Tdd_Only\n"));
}
TEST(CellScan, AnotherSubNetworkTypeKeepsTheChosenMode) {
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "2")).mode, "Auto");
    EXPECT_TRUE(Logged("Get the better cell's subAct error:2\n"));
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "")).mode, "Auto");
    EXPECT_TRUE(Logged("Get the better cell's subAct error:\n"));
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "10")).mode, "Auto");
}
TEST(CellScan, EveryStepLogsTheText) {
    Scanned(Cell(2, 40, 10, "1") + ",,(0-4),(0-2)");
    int texts = 0;
    for (const LogLine& line : LoggedLines())
        texts += line.text.starts_with("pResLine->strResParas:");
    EXPECT_EQ(texts, 3);
    EXPECT_TRUE(Logged("pResLine->strResParas:2,\"Net A\",\"A\",\"46001\",\"7\",40,10,\"1\";,0-4;0-2\n"));
    EXPECT_TRUE(Logged("pResLine->strResParas:2,\"Net A\",\"A\",\"46001\",\"7\",40,10,\"1\";\n"));
    EXPECT_TRUE(Logged("stParasList.nCount:1\n"));
}

// The second is weaker but asks for less: it wins and counts as strong as the first.
TEST(CellScan, AWeakerCellThatAsksForLessWins) {
    const Scan scan = Scanned(Cell(2, 40, 10, "0") + "," + Cell(2, 30, 5, "1"));
    EXPECT_EQ(scan.mode, "Fdd_Pref");
    EXPECT_EQ(scan.better, 2);
    // So that a third of 35, which is stronger than the second really is, cannot win by its strength.
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "0") + "," + Cell(2, 30, 5, "1") + "," + Cell(2, 35, 6, "0")).mode,
              "Fdd_Pref");
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "0") + "," + Cell(2, 30, 5, "1") + "," + Cell(2, 41, 6, "0")).mode,
              "Tdd_Only");
}
TEST(CellScan, AWeakerCellThatAsksForMoreLoses) {
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "0") + "," + Cell(2, 30, 11, "1")).mode, "Tdd_Only");
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "0") + "," + Cell(2, 30, 10, "1")).mode, "Fdd_Pref");
    EXPECT_EQ(Scanned(Cell(2, 40, 10, "0") + "," + Cell(2, 40, 11, "1")).mode, "Tdd_Only");
}
TEST(CellScan, StatesZeroAndThreeAreNeverChosen) {
    for (int istat : {0, 3}) {
        EXPECT_EQ(Scanned(Cell(istat, 40, 10, "1")).mode, "Auto");
        EXPECT_TRUE(Logged("Need not to switch the lte network mode!"));
        EXPECT_EQ(Scanned(Cell(istat, 90, 1, "1") + "," + Cell(2, 20, 10, "0")).mode, "Tdd_Only");
    }
    for (int istat : {-1, 1, 2, 4})
        EXPECT_EQ(Scanned(Cell(istat, 40, 10, "1")).mode, "Fdd_Pref");
}
TEST(CellScan, ACellBelowItsOwnLeastPowerIsNotChosen) {
    EXPECT_EQ(Scanned(Cell(2, 9, 10, "1")).mode, "Auto");
    EXPECT_EQ(Scanned(Cell(2, 10, 10, "1")).mode, "Fdd_Pref");
}
TEST(Pin, CellScanNeverChoosesPowersOfZeroOrLess) {
    const Scan scan = Scanned(Cell(2, -80, -120, "1") + "," + Cell(2, 0, -120, "1"));
    EXPECT_EQ(scan.mode, "Auto");
    EXPECT_EQ(scan.better, 0);
    EXPECT_TRUE(Logged("Need not to switch the lte network mode!"));
    EXPECT_TRUE(Logged("diag 4g networkrk: Parse_BGLTEPLMN_Res end\n"));
}

TEST(CellScan, NoCells) {
    for (const char* text : {"", "OK"}) {
        EXPECT_EQ(Scanned(text).mode, "Auto") << text;
        EXPECT_TRUE(Logged("stParasList.nCount:0\n"));
        EXPECT_TRUE(Logged("No lte cell info searched\n", "atdecode", LOG_EMERG));
        EXPECT_FALSE(Logged("diag 4g networkrk: Parse_BGLTEPLMN_Res end\n"));
    }
}
TEST(CellScan, AListThatBeginsWithAnEmptyFieldIsEmpty) {
    for (const std::string start : {",", "(,", " ,", ",,"}) {
        EXPECT_EQ(Scanned(start + Cell(2, 40, 10, "1")).mode, "Auto") << start;
        EXPECT_TRUE(Logged("stParasList.nCount:0\n"));
        EXPECT_FALSE(LoggedPart("pResLine->strResParas:"));
    }
    EXPECT_EQ(Scanned("  " + Cell(2, 40, 10, "1")).mode, "Fdd_Pref");
}
TEST(CellScan, AnEarlierListIsForgotten) {
    Scanned(Cell(2, 40, 10, "1"));
    EXPECT_EQ(Scanned(",").mode, "Auto");
    EXPECT_EQ(Scanned("(2)").mode, "Auto");
}
TEST(CellScan, AHundredAndOneCells) {
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += Cell(3, 40, 10, "0") + ",";
    EXPECT_EQ(Scanned(text + Cell(2, 40, 10, "1")).mode, "Auto");
    EXPECT_TRUE(Logged("stParasList.nCount:100\n"));
    EXPECT_EQ(Scanned(text.substr(text.find("),") + 2) + Cell(2, 40, 10, "1")).mode, "Fdd_Pref");
}
TEST(CellScan, TextsAreCutAtTheirWidths) {
    Scanned("(2,\"" + std::string(64, 'l') + "\",\"" + std::string(16, 's') + "\",\"0123456789\",\"" +
            std::string(20, 'n') + "\",99999999999,-99999999999,\"" + std::string(21, 'u') + "\")");
    EXPECT_TRUE(
        Logged("istat:2\nlalpha_oper:" + std::string(64, 'l') + "\nsalpha_oper:" + std::string(16, 's') +
               "\nnumeric_oper:0123456789\nnet_type:" + std::string(20, 'n') +
               "\niRsrp:2147483647\niQrxlevmin:-2147483648\nsub_net_type:" + std::string(20, 'u') + "\n"));
}
TEST(CellScan, MissingLastFieldsAreZero) {
    EXPECT_EQ(Scanned("(2,\"Net A\",\"\",\"46001\",\"7\",40)").mode, "Auto");
    EXPECT_TRUE(
        Logged("istat:2\nlalpha_oper:Net A\nsalpha_oper:\nnumeric_oper:46001\nnet_type:7\niRsrp:40\n"
               "iQrxlevmin:0\nsub_net_type:\n"));
    EXPECT_TRUE(Logged("Get the better cell's subAct error:\n"));
}

TEST(CellScan, WithoutASelectedModeTheKeyIsEmptied) {
    StartWith(kModule);
    Platform().config["lte_diag_mode"] = "before";
    auto line = std::make_unique<AT_RES_LINE_T>();
    _BK_AT_RES_T response = {};
    response.ucCmdType = EXEC;
    Parse_BGLTEPLMN_Res(&response, line.get());
    EXPECT_EQ(Platform().Get("lte_diag_mode"), "");
}
TEST(CellScan, OtherTypesAndNullArgumentsDoNothing) {
    for (uint8_t type : std::vector<uint8_t>{0, SET, READ, TEST_}) {
        EXPECT_EQ(Scanned(Cell(2, 40, 10, "1"), type).mode, "before");
        EXPECT_TRUE(LoggedLines().empty());
    }
    auto line = std::make_unique<AT_RES_LINE_T>();
    _BK_AT_RES_T response = {};
    response.ucCmdType = EXEC;
    Parse_BGLTEPLMN_Res(nullptr, line.get());
    Parse_BGLTEPLMN_Res(&response, nullptr);
    EXPECT_TRUE(Platform().writes.empty());
    EXPECT_TRUE(LoggedLines().empty());
}
