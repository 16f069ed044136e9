#include "reports/broadcast.h"

#include <syslog.h>

#include "checks/support/report_vector.h"

namespace {

class Broadcast : public ReportVectors {
  protected:
    static std::string Page(int32_t length, const std::string& pdu) {
        return ReportBytes().Int(length).Text(pdu, 508).str();
    }
    void ExpectCbm(int32_t length, const std::string& pdu) {
        ExpectReport(0x100a, 0x0115, 1, Page(length, pdu));
    }
    void ExpectCds(int32_t length, const std::string& pdu) {
        ExpectReport(0x100a, 0x0119, 1, Page(length, pdu));
    }
};

TEST_F(Broadcast, CbmCarriesLengthAndPdu) {
    EXPECT_EQ(cbm_resolve("\r\n+CBM: 88\r\n00112233AABB\r\n"), 0);
    ExpectCbm(88, "00112233AABB");
    EXPECT_TRUE(Logged(">>>+CBM over\n", "response"));
}

TEST_F(Broadcast, CbmBehindOtherTextAndBeforeIt) {
    EXPECT_EQ(cbm_resolve("\r\nOK\r\n\r\n+CBM: 4\r\n0011\r\n\r\n+CREG: 1\r\n"), 0);
    ExpectCbm(4, "0011");
}

TEST_F(Broadcast, CbmFirstOfTwoPages) {
    EXPECT_EQ(cbm_resolve("\r\n+CBM: 1\r\nAA\r\n\r\n+CBM: 2\r\nBB\r\n"), 0);
    ExpectCbm(1, "AA");
}

TEST_F(Broadcast, CbmWithoutSecondLineBreakTakesTheRest) {
    EXPECT_EQ(cbm_resolve("+CBM: 3\r\nAABBCC"), 0);
    ExpectCbm(3, "AABBCC");
    EXPECT_EQ(cbm_resolve("+CBM: 3\r\nAABBCC\r"), 0);  // half of the line break has been read
    ExpectCbm(3, "AABBCC");
    EXPECT_EQ(cbm_resolve("+CBM: 3\r\n\r"), 0);
    ExpectCbm(3, "");
}

TEST_F(Broadcast, CbmWithoutLineBreakIsSentEmpty) {
    EXPECT_EQ(cbm_resolve("+CBM: 88"), 0);
    ExpectCbm(0, "");
    EXPECT_EQ(cbm_resolve("+CBM: 88\n0011\n"), 0);
    ExpectCbm(0, "");
}

TEST_F(Broadcast, CbmWithoutNumberHasLengthZero) {
    EXPECT_EQ(cbm_resolve("+CBM: \r\n001122\r\n"), 0);
    ExpectCbm(0, "001122");
    EXPECT_EQ(cbm_resolve("+CBM: x\r\n001122\r\n"), 0);
    ExpectCbm(0, "001122");
}

TEST_F(Broadcast, CbmEmptyPdu) {
    EXPECT_EQ(cbm_resolve("+CBM: 9\r\n\r\n0011\r\n"), 0);
    ExpectCbm(9, "");
}

TEST_F(Broadcast, CbmLengthSaturates) {
    EXPECT_EQ(cbm_resolve("+CBM: 99999999999\r\n00\r\n"), 0);
    ExpectCbm(INT32_MAX, "00");
}

TEST_F(Broadcast, CbmPduIsCutToItsField) {
    // 512 characters are taken: "1", the line break and 509 of the PDU, of which 507 fit.
    const std::string pdu(600, 'A');
    EXPECT_EQ(cbm_resolve(("+CBM: 1\r\n" + pdu + "\r\n").c_str()), 0);
    ExpectCbm(1, pdu.substr(0, 507));
    EXPECT_EQ(cbm_resolve(("+CBM: 1\r\n" + pdu.substr(0, 507) + "\r\n").c_str()), 0);
    ExpectCbm(1, pdu.substr(0, 507));
    EXPECT_EQ(cbm_resolve(("+CBM: 1\r\n" + pdu.substr(0, 508) + "\r\n").c_str()), 0);
    ExpectCbm(1, pdu.substr(0, 507));
    EXPECT_EQ(cbm_resolve(("+CBM: 100\r\n" + pdu.substr(0, 506)).c_str()), 0);
    ExpectCbm(100, pdu.substr(0, 506));
}

TEST_F(Broadcast, CbmTakes512CharactersBehindTheName) {
    // A long number line leaves less for the PDU.
    EXPECT_EQ(cbm_resolve(("+CBM: " + std::string(508, ' ') + "7\r\nAABB\r\n").c_str()), 0);
    ExpectCbm(7, "A");
    EXPECT_EQ(cbm_resolve(("+CBM: " + std::string(511, ' ') + "7\r\nAABB\r\n").c_str()), 0);
    ExpectCbm(0, "");
}

TEST_F(Broadcast, CbmWithoutBlankSendsNothing) {
    EXPECT_EQ(cbm_resolve("\r\n+CBM:88\r\n0011\r\n"), 1);
    EXPECT_EQ(cbm_resolve("\r\n+CREG: 1\r\n"), 1);
    EXPECT_EQ(cbm_resolve(""), 1);
    ExpectNothingSent();
    EXPECT_TRUE(Logged("cbm_resolve para is wrong\n", "response", LOG_ERR));
    EXPECT_FALSE(LoggedPart("over"));
}

TEST_F(Broadcast, NullSendsNothing) {
    EXPECT_EQ(cbm_resolve(nullptr), 1);
    EXPECT_TRUE(Logged("cbm_resolve para is wrong\n", "response", LOG_ERR));
    EXPECT_EQ(cds_resolve(nullptr), 1);
    EXPECT_TRUE(Logged("cds_resolve para is wrong\n", "response", LOG_ERR));
    ExpectNothingSent();
}

TEST_F(Broadcast, CdsCarriesLengthAndPdu) {
    EXPECT_EQ(cds_resolve("\r\n+CDS: 26\r\n0006330C91\r\n"), 0);
    ExpectCds(26, "0006330C91");
    EXPECT_TRUE(Logged(">>>+CDS over\n", "response"));
}

TEST_F(Broadcast, CdsOnOneLine) {
    EXPECT_EQ(cds_resolve("+CDS: 26 0006"), 0);
    ExpectCds(26, "0006");
}

TEST_F(Broadcast, CdsWithoutPduOrNumber) {
    EXPECT_EQ(cds_resolve("+CDS: 26\r\n"), 0);
    ExpectCds(26, "");
    EXPECT_EQ(cds_resolve("+CDS: x\r\n0006"), 0);
    ExpectCds(0, "");
    EXPECT_EQ(cds_resolve("+CDS: "), 0);
    ExpectCds(0, "");
}

TEST_F(Broadcast, CdsPduIsCutToItsField) {
    const std::string pdu(600, 'B');
    EXPECT_EQ(cds_resolve(("+CDS: 1\r\n" + pdu + "\r\n").c_str()), 0);
    ExpectCds(1, pdu.substr(0, 507));
    EXPECT_EQ(cds_resolve(("+CDS: 1\r\n" + pdu.substr(0, 507) + "\r\n").c_str()), 0);
    ExpectCds(1, pdu.substr(0, 507));
    // 512 characters are taken: 3 digits and the line break leave 507.
    EXPECT_EQ(cds_resolve(("+CDS: 1234\r\n" + pdu + "\r\n").c_str()), 0);
    ExpectCds(1234, pdu.substr(0, 506));
}

TEST_F(Broadcast, CdsWithoutNameSendsNothing) {
    EXPECT_EQ(cds_resolve("\r\n+CDS:26\r\n0006\r\n"), 1);
    EXPECT_EQ(cds_resolve("\r\n+CDSI: \"SR\",1\r\n"), 1);
    ExpectNothingSent();
    EXPECT_TRUE(Logged("cds_resolve para is wrong\n", "response", LOG_ERR));
}

TEST_F(Broadcast, NameInsideQuotesIsNoReport) {
    EXPECT_EQ(cbm_resolve("+X: \"+CBM: 1\r\nAA\r\n\"\r\n"), 1);
    EXPECT_EQ(cds_resolve("+X: \"+CDS: 1\r\nAA\r\n\"\r\n"), 1);
    ExpectNothingSent();
}

TEST_F(Broadcast, SendThatFailsIsReported) {
    Queues().Reset();
    EXPECT_EQ(cbm_resolve("+CBM: 1\r\nAA\r\n"), 1);
    EXPECT_EQ(cds_resolve("+CDS: 1\r\nAA\r\n"), 1);
    EXPECT_TRUE(Logged("ERROR: send_auto_report send msg failed.\n", "response", LOG_ERR));
}

}  // namespace
