#include <syslog.h>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/shapes.h"
#include "commands/atdecode.h"
#include "commands/atencode.h"

// Commands of device identity and radio status, beyond the attention check and +CGSN.

namespace {

const TypeList kExecSetAndRead = {EXEC, SET, READ};

// One text of at most `width` characters in an array of `size` bytes, read from raw text up to the first
// blank.
void ExpectReadsARawWord(uint16_t id, size_t width, size_t size) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        for (uint8_t type : kExecAndRead) {
            const auto read = [&](const std::string& text) { return Decode(id, type, text).Record(); };
            EXPECT_EQ(read("V1.0-a,b"), Bytes().Text("V1.0-a,b", size).data);
            EXPECT_EQ(read("\"V1 0\""), Bytes().Text("\"V1", size).data);
            EXPECT_EQ(read(" V1"), Bytes().Text("V1", size).data);
            EXPECT_EQ(read("\"\""), Bytes().Text("\"\"", size).data);
            EXPECT_EQ(read(""), Bytes().Zeros(size).data);
            for (size_t longer : {0U, 1U, 500U})
                EXPECT_EQ(read(std::string(width + longer, 'v')),
                          Bytes().Text(std::string(width, 'v'), size).data);
            EXPECT_EQ(Decode(id, type, "V1").paras[size], '\xa5');
        }
    }
    ExpectServesOnly(id, kExecAndRead);
}

// The same from normalised text.
void ExpectReadsANormalisedWord(uint16_t id, size_t width, size_t size) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        for (uint8_t type : kExecAndRead) {
            const auto read = [&](const std::string& text) { return Decode(id, type, text).Record(); };
            EXPECT_EQ(read("V1.0,2"), Bytes().Text("V1.0", size).data);
            EXPECT_EQ(read("\"V1, 0\",2"), Bytes().Text("V1, 0", size).data);
            EXPECT_EQ(read("\"\",2"), Bytes().Zeros(size).data);
            EXPECT_EQ(read(""), Bytes().Zeros(size).data);
            for (size_t longer : {0U, 1U, 500U})
                EXPECT_EQ(read(std::string(width + longer, 'v')),
                          Bytes().Text(std::string(width, 'v'), size).data);
            EXPECT_EQ(Decode(id, type, "V1").paras[size], '\xa5');
        }
    }
    ExpectServesOnly(id, kExecAndRead);
}

}  // namespace

// ---- encoders
// -------------------------------------------------------------------------------------------

TEST(DeviceCommands, WithoutParameters) {
    StartWith(kModule);
    for (uint16_t id : IdList{0x0602, 0x0607, 0x0543, 0x060C, 0x053F, 0x060D, 0x0610, 0x0554, 0x0555,
                              0x0556, 0x055B, 0x0557, 0x0558, 0x0559, 0x055A, 0x061A, 0x050A, 0x0622,
                              0x063F, 0x0640, 0x061B, 0x062C, 0x055D, 0x0633, 0x0635, 0x0636, 0x0643})
        ExpectPrintsNothing(id);
}
ENCODE_VECTOR(0x0546, Zledctrl, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0546, 1);
}
ENCODE_VECTOR(0x0548, Zpcmfre, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0548, 1);
}
ENCODE_VECTOR(0x062B, Fotactr, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x062B, 1);
}
ENCODE_VECTOR(0x062D, Zamtmode, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x062D, 1);
}
ENCODE_VECTOR(0x062E, Zdogref, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x062E, 1);
}
ENCODE_VECTOR(0x0634, Atdog, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0634, 1);
}
ENCODE_VECTOR(0x0642, Trafficwarning, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0642, 1);
}
ENCODE_VECTOR(0x0641, Zimsr, SetPrintsTheValueAndLogsIt) {
    ExpectPrintsIntegers(0x0641, 1);
    StartWith(kModule);
    Encoded(0x0641, SET, I32(-1));
    EXPECT_TRUE(Logged("send AT+ZIMSR=-1", "atencode"));
}
ENCODE_VECTOR(0x0621, Zltelc, SetOfTheFirstValueAlone) {
    ExpectPrints(0x0621, Integers({7, 0, 0}), "7");
    ExpectPrints(0x0621, Integers({INT32_MIN, 0, 0}), "-2147483648");
    ExpectPrints(0x0621, Integers({0, 0, 0}), "0");
}
ENCODE_VECTOR(0x0621, Zltelc, SetOfThreeValues) {
    ExpectPrints(0x0621, Integers({7, 8, 9}), "7,8,9");
    ExpectPrints(0x0621, Integers({7, 0, 9}), "7,0,9");
    ExpectPrints(0x0621, Integers({7, -1, 0}), "7,-1,0");
    ExpectPrints(0x0621, Integers({INT32_MAX, INT32_MAX, INT32_MIN}), "2147483647,2147483647,-2147483648");
}
ENCODE_VECTOR(0x062A, Zemci, SetPrintsTheValueAndLogs) {
    ExpectPrintsIntegers(0x062A, 1);
    StartWith(kModule);
    Encoded(0x062A, SET, I32(1));
    EXPECT_TRUE(Logged("make zemci finished\n", "atencode"));
}
TEST(Zemci, NullArgumentsAreLogged) {
    AT_CMD_LINE_T line = {};
    _BK_AT_CMD_T request = {};
    StartWith(kModule);
    Make_ZEMCI_Cmd(&line, &request);
    EXPECT_TRUE(LoggedLines().empty());
    Make_ZEMCI_Cmd(nullptr, &request);
    EXPECT_TRUE(Logged("Make_ZEMCI_Cmd input para is NULL", "atencode"));
    ClearLog();
    Make_ZEMCI_Cmd(&line, nullptr);
    EXPECT_TRUE(Logged("Make_ZEMCI_Cmd input para is NULL", "atencode"));
}

// ---- identities
// -------------------------------------------------------------------------------------------

TEST(DeviceCommands, WhoseResultSaysEverything) {
    StartWith(kModule);
    for (uint16_t id : IdList{0x0546, 0x0554, 0x0555, 0x0556, 0x0557, 0x0558, 0x0559, 0x055B, 0x050A, 0x0622,
                              0x0643, 0x062D, 0x0642})
        ExpectServesOnly(id, {});
}
DECODE_VECTOR(0x0602, Gmr, ExecAndReadGiveTheVersion) {
    ExpectReadsARawWord(0x0602, 64, 68);
}
DECODE_VECTOR(0x060D, Cgmr, ExecAndReadGiveTheVersion) {
    ExpectReadsARawWord(0x060D, 64, 68);
}
DECODE_VECTOR(0x062C, Zversion, ExecAndReadGiveTheVersion) {
    ExpectReadsARawWord(0x062C, 64, 68);
}
DECODE_VECTOR(0x060C, Gsn, FifteenDigitsWithoutANul) {
    ExpectReadsARawWord(0x060C, 15, 15);
    EXPECT_EQ(Decode(0x060C, EXEC, "864213050001234").Record(), "864213050001234");
}
TEST(Cgsn, ExecAndReadOnly) {
    ExpectServesOnly(0x0603, kExecAndRead);
}
DECODE_VECTOR(0x0543, Hver, ExecAndReadGiveTheVersion) {
    ExpectReadsANormalisedWord(0x0543, 67, 68);
}
DECODE_VECTOR(0x053F, Hwver, ExecAndReadGiveTheVersion) {
    ExpectReadsANormalisedWord(0x053F, 67, 68);
}
DECODE_VECTOR(0x055A, Cnum, ExecAndReadGiveTheFirstWord) {
    ExpectReadsANormalisedWord(0x055A, 30, 32);
}
TEST(Pin, CnumTakesTheFirstWord) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x055A, EXEC, "\"My own\",\"+8613800138000\",145").Record(),
              Bytes().Text("My own", 32).data);
    EXPECT_EQ(Decode(0x055A, EXEC, ",\"+8613800138000\",145").Record(),
              Bytes().Text("+8613800138000", 32).data);
    EXPECT_EQ(Decode(0x055A, EXEC, "\"\",\"+8613800138000\",145").Record(), Bytes().Zeros(32).data);
}
DECODE_VECTOR(0x0641, Zimsr, ExecAndReadGiveTheText) {
    ExpectReadsANormalisedWord(0x0641, 32, 36);
}
DECODE_VECTOR(0x0610, Cgmm, ExecAndReadGiveTheModel) {
    ExpectCopiesTheText(0x0610, kExecAndRead, 32, 32);
    ExpectServesOnly(0x0610, kExecAndRead);
}
DECODE_VECTOR(0x061B, Cgmi, ExecAndReadGiveTheMaker) {
    ExpectCopiesTheText(0x061B, kExecAndRead, 64, 64);
    ExpectServesOnly(0x061B, kExecAndRead);
}
DECODE_VECTOR(0x0636, Zcellsiginfo, ExecAndReadGiveTheText) {
    ExpectCopiesTheText(0x0636, kExecAndRead, 480, 480);
    ExpectServesOnly(0x0636, kExecAndRead);
}
DECODE_VECTOR(0x0607, Zvn, ExecAndReadGiveTwoTexts) {
    for (uint8_t type : kExecAndRead) {
        StartWith(kModule);
        const auto read = [&](const std::string& text) { return Decode(0x0607, type, text).Record(); };
        EXPECT_EQ(read("V1.0"), Bytes().Text("V1.0", 68).Zeros(68).data);
        EXPECT_EQ(read("V1.0 2026"), Bytes().Text("V1.0", 68).Zeros(68).data);
        EXPECT_EQ(read("V1.0["), Bytes().Text("V1.0[", 68).Zeros(68).data);
        EXPECT_EQ(read(std::string(64, 'v') + " [" + std::string(64, 'd') + "]"),
                  Bytes().Text(std::string(64, 'v'), 68).Text(std::string(64, 'd'), 68).data);
        EXPECT_EQ(read(std::string(65, 'v') + " [d]"), Bytes().Text(std::string(64, 'v'), 68).Zeros(68).data);
        EXPECT_EQ(read(""), Bytes().Zeros(136).data);
        EXPECT_EQ(Decode(0x0607, type, "V1.0").paras[136], '\xa5');
    }
    ExpectServesOnly(0x0607, kExecAndRead);
}
TEST(Pin, ZvnKeepsTheClosingBracket) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0607, EXEC, "V1.0 [2026-05-05]").Record(),
              Bytes().Text("V1.0", 68).Text("2026-05-05]", 68).data);
}

// ---- radio status
// -------------------------------------------------------------------------------------------

DECODE_VECTOR(0x055D, Zsinr, ExecAndReadGiveEightValues) {
    ExpectReadsIntegers(0x055D, kExecAndRead, 8, Reading::raw);
    ExpectServesOnly(0x055D, kExecAndRead);
}
DECODE_VECTOR(0x0640, Zrtemp, ExecAndReadGiveSixValues) {
    ExpectReadsIntegers(0x0640, kExecAndRead, 6, Reading::raw);
    ExpectServesOnly(0x0640, kExecAndRead);
}
DECODE_VECTOR(0x063F, Zcai, ExecAndReadGiveTheValue) {
    ExpectReadsIntegers(0x063F, kExecAndRead, 1, Reading::raw);
    ExpectServesOnly(0x063F, kExecAndRead);
}
DECODE_VECTOR(0x0633, Zairinfo, AnIntegerAndAFraction) {
    StartWith(kModule);
    for (uint8_t type : kExecAndRead) {
        const auto read = [&](const std::string& text) { return Decode(0x0633, type, text).Record(); };
        EXPECT_EQ(read("-3,20.5"), Bytes().I32(-3).F32(20.5F).data);
        EXPECT_EQ(read("3,-0.25,1"), Bytes().I32(3).F32(-0.25F).data);
        EXPECT_EQ(read("99999999999,7"), Bytes().I32(INT32_MAX).F32(7).data);
        EXPECT_EQ(read("3,"), Bytes().I32(3).F32(0).data);
        EXPECT_EQ(read("3"), Bytes().I32(3).F32(0).data);
        EXPECT_EQ(read("3 4"), Bytes().I32(3).F32(0).data);
        EXPECT_EQ(read("\"3\",4"), Bytes().Zeros(8).data);
        EXPECT_EQ(read("OK"), Bytes().Zeros(8).data);
        EXPECT_EQ(Decode(0x0633, type, "3,4").paras[8], '\xa5');
    }
    ExpectServesOnly(0x0633, kExecAndRead);
}
DECODE_VECTOR(0x0621, Zltelc, SetHasNoParameters) {
    ExpectNoParameters(0x0621, SET);
}
DECODE_VECTOR(0x0621, Zltelc, ReadGivesThreeValues) {
    ExpectReadsIntegers(0x0621, {READ}, 3, Reading::raw);
    ExpectServesOnly(0x0621, {SET, READ});
}
DECODE_VECTOR(0x0635, Ztrc, ExecHasNoParameters) {
    ExpectNoParameters(0x0635, EXEC);
    ExpectServesOnly(0x0635, {EXEC});
}
DECODE_VECTOR(0x0634, Atdog, ExecHasNoParameters) {
    ExpectNoParameters(0x0634, EXEC);
    ExpectServesOnly(0x0634, {EXEC});
}
DECODE_VECTOR(0x062E, Zdogref, AllButTestGiveTheValue) {
    ExpectReadsIntegers(0x062E, kExecSetAndRead, 1, Reading::raw);
    ExpectServesOnly(0x062E, kExecSetAndRead);
}
DECODE_VECTOR(0x062B, Fotactr, AllButTestGiveTwoValues) {
    ExpectReadsIntegers(0x062B, kExecSetAndRead, 2, Reading::raw);
    ExpectServesOnly(0x062B, kExecSetAndRead);
}
DECODE_VECTOR(0x0548, Zpcmfre, SetAndReadGiveTheValue) {
    ExpectReadsIntegers(0x0548, {SET, READ}, 1, Reading::raw);
    ExpectServesOnly(0x0548, {SET, READ});
}
TEST(Zemci, TheAnswerIsOnlyLogged) {
    StartWith(kModule);
    for (uint8_t type : kEvery)
        EXPECT_TRUE(Decode(0x062A, type, "1A2B,3,4C").Untouched());
    EXPECT_TRUE(Logged("ZEMCI is 1A2B,3,4C\n", "atdecode"));
}

// ---- +ZCELLINFO
// -------------------------------------------------------------------------------------------

namespace {
std::string CellInfo(int32_t value1, int32_t value2, const std::string& cell, int32_t value3) {
    return Bytes().I32(value1).I32(value2).Text(cell, 20).I32(value3).data;
}
}  // namespace

DECODE_VECTOR(0x061A, Zcellinfo, ReadOfThreeValues) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        Platform().config["Zcell_result"] = "NULL";
        EXPECT_EQ(Decode(0x061A, READ, "1,2,ABCDEF").Record(), CellInfo(1, 2, "ABCDEF", 0));
        EXPECT_EQ(Platform().Get("Zcell_result"), "");
        EXPECT_TRUE(Logged("tPara is 1,2,ABCDEF\n", "atdecode"));
        EXPECT_FALSE(Logged("LTE is in"));
        EXPECT_EQ(Decode(0x061A, READ, "1, 2, \"A B\"").Record(), CellInfo(1, 2, "\"A", 0));
        EXPECT_EQ(Decode(0x061A, READ, "1,2,").Record(), CellInfo(1, 2, "", 0));
        EXPECT_EQ(Decode(0x061A, READ, "1,2").Record(), CellInfo(1, 2, "", 0));
        EXPECT_EQ(Decode(0x061A, READ, "99999999999,-99999999999,c").Record(),
                  CellInfo(INT32_MAX, INT32_MIN, "c", 0));
        EXPECT_EQ(Decode(0x061A, READ, "1,2," + std::string(19, 'c')).Record(),
                  CellInfo(1, 2, std::string(19, 'c'), 0));
        EXPECT_EQ(Decode(0x061A, READ, "1,2," + std::string(25, 'c')).Record(),
                  CellInfo(1, 2, std::string(19, 'c'), 0));
        EXPECT_EQ(Decode(0x061A, READ, "x,y").Record(), CellInfo(0, 0, "", 0));
        EXPECT_EQ(Decode(0x061A, READ, "1,2,c").paras[32], '\xa5');
    }
    ExpectServesOnly(0x061A, {READ});
}
TEST(Pin, ZcellinfoOfLteIsLiteral) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x061A, READ, "1,2,ABCDEF,25").Record(), CellInfo(1, 2, "ABCDEF,25", 0));
    EXPECT_TRUE(Logged("LTE is in", "atdecode"));
    EXPECT_TRUE(Logged("tPara is 1,2,ABCDEF,25,0\n", "atdecode"));
}
TEST(Zcellinfo, ReadOfACellWithCommas) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x061A, READ, "1,2,A,B,C,25").Record(), CellInfo(1, 2, "A,B,C,25", 0));
    EXPECT_EQ(Decode(0x061A, READ, "1, 2, A B,C, 25").Record(), CellInfo(1, 2, " A B,C", 0));
    EXPECT_EQ(Decode(0x061A, READ, "1,2,,").Record(), CellInfo(1, 2, ",", 0));
    EXPECT_EQ(Decode(0x061A, READ, "1,2," + std::string(19, 'c') + ",25").Record(),
              CellInfo(1, 2, std::string(19, 'c'), 25));
    EXPECT_EQ(Decode(0x061A, READ, "1,2,a b " + std::string(30, 'c') + ",25").Record(),
              CellInfo(1, 2, "a b " + std::string(15, 'c'), 0));
    EXPECT_EQ(Decode(0x061A, READ, ",,,").Record(), CellInfo(0, 0, "", 0));
}
TEST(Zcellinfo, ReadWithoutACellHasNoParameters) {
    StartWith(kModule);
    for (const char* text : {"", "OK", "1"}) {
        Platform().config["Zcell_result"] = "x";
        EXPECT_TRUE(Decode(0x061A, READ, text).Untouched());
        EXPECT_EQ(Platform().Get("Zcell_result"), "NULL");
    }
}
TEST(Zcellinfo, ReadThatFailedIsLogged) {
    StartWith(kModule);
    for (uint8_t result : TypeList{0, 2, 4}) {
        ClearLog();
        EXPECT_TRUE(Decode(0x061A, READ, "1,2,c", result).Untouched());
        EXPECT_TRUE(Logged("error in ProcAtZCELLINFORes read!", "atdecode"));
    }
    EXPECT_TRUE(Platform().writes.empty());
}
