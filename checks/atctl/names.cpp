#include <gtest/gtest.h>

#include <string>

#include "commands/timeouts.h"
#include "tools/atctl/error_words.h"
#include "tools/atctl/find_command.h"
#include "tools/shared/exit_status.h"
#include "tools/shared/suggest.h"
#include "tools/shared/text.h"

namespace {

// The name with its suffix that a text is understood as, or the refusal.
std::string Found(const std::string& text) {
    try {
        const Call call = FindCall(text);
        return std::string(call.row->name) + Suffix(call.type);
    } catch (const Misuse& misuse) {
        return std::string("refused: ") + misuse.what();
    }
}

std::string Named(const std::string& text) {
    try {
        return FindCommand(text).name;
    } catch (const Misuse& misuse) {
        return std::string("refused: ") + misuse.what();
    }
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST(FindCall, TheSuffixIsTheForm) {
    EXPECT_EQ(FindCall("+CSQ").type, AT_CMD_TYPE_EXEC);
    EXPECT_EQ(FindCall("+CFUN=").type, AT_CMD_TYPE_SET);
    EXPECT_EQ(FindCall("+CREG?").type, AT_CMD_TYPE_READ);
    EXPECT_EQ(FindCall("+COPS=?").type, AT_CMD_TYPE_TEST);
    EXPECT_EQ(FindCall("+COPS=?").row->id, 0x0517);
}

TEST(FindCall, EveryRowIsFoundInEveryForm) {
    ASSERT_EQ(Commands().size(), 186U);
    for (const Row& row : Commands())
        for (const uint8_t type : kTypes) {
            const std::string text = std::string(row.name) + Suffix(type);
            EXPECT_EQ(FindCall(text).row->id, row.id) << text;
            EXPECT_EQ(FindCall(text).type, type) << text;
        }
}

TEST(FindCall, NamesThatHoldAnEqualsSignAreNames) {
    EXPECT_EQ(Found("!=\"poweron\""), "!=\"poweron\"");
    EXPECT_EQ(FindCall("!=\"poweron\"").type, AT_CMD_TYPE_EXEC);
}

TEST(FindCall, TheEmptyNameIsTheBareCommand) {
    EXPECT_EQ(FindCall("AT").row->id, 0x0001);
    EXPECT_EQ(FindCall("at").type, AT_CMD_TYPE_EXEC);
    EXPECT_EQ(FindCall("AT?").type, AT_CMD_TYPE_READ);
    EXPECT_EQ(CallName(FindCall("")), "AT");
    EXPECT_EQ(FindCall("").row->id, 0x0001);
    EXPECT_EQ(FindCall("?").type, AT_CMD_TYPE_READ);
}

TEST(FindCall, CaseAndSignMayBeLeftAway) {
    EXPECT_EQ(Found("csq"), "+CSQ");
    EXPECT_EQ(Found("+csq"), "+CSQ");
    EXPECT_EQ(Found("cfun="), "+CFUN=");
    EXPECT_EQ(Found("sysinfo"), "^SYSINFO");
    EXPECT_EQ(Found("zvconnect"), "ZVCONNECT");
    EXPECT_EQ(Found("d"), "D");
}

TEST(FindCall, ANameThatFitsTwoCommandsIsRefused) {
    EXPECT_EQ(Found("CPIN?"), "refused: \"CPIN\" may be +CPIN or ^CPIN; write its sign, too");
    EXPECT_EQ(Found("^cpin?"), "^CPIN?");
    // Two rows of one name are one command.
    EXPECT_EQ(Found("cimi"), "+CIMI");
}

TEST(FindCall, AtSyntaxIsRefusedWithTheRightCall) {
    EXPECT_EQ(Found("AT+CSQ"),
              "refused: modules never send AT syntax, they fill records; names stand without AT: atctl send "
              "'+CSQ'");
    EXPECT_TRUE(Has(Found("at+creg?"), "atctl send '+CREG?'"));
    EXPECT_TRUE(Has(Found("AT+COPS=?"), "atctl send '+COPS=?'"));
    EXPECT_TRUE(Has(Found("AT+CPMS=\"SM\",\"ME\",\"SM\""), "atctl send '+CPMS=' SM ME SM"));
    EXPECT_TRUE(Has(Found("ATD5550123;"), "atctl send D 5550123"));
    EXPECT_TRUE(Has(Found("ATA"), "atctl send A"));
    // Not AT syntax: a command of this name.
    EXPECT_EQ(Found("atdog"), "+ATDOG");
}

TEST(FindCall, ValuesBehindTheEqualsSignAreRefusedWithTheRightCall) {
    EXPECT_EQ(Found("+CFUN=1"),
              "refused: modules never send AT syntax, they fill records; values stand one by one: atctl send "
              "'+CFUN=' 1");
    // Quotation marks that the server does not print are the value's own.
    EXPECT_TRUE(Has(Found("+COPS=1,2,\"26201\",7"), "atctl send '+COPS=' 1 2 '\"26201\"' 7"));
    EXPECT_TRUE(Has(Found("D5550123"), "atctl send D 5550123"));
}

TEST(FindCall, UnknownNamesAreAnsweredWithTheNearest) {
    EXPECT_EQ(Found("+CSX"), "refused: there is no command \"+CSX\"; did you mean +CSQ?");
    EXPECT_TRUE(Has(Found("+CPSM="), "did you mean +CPMS"));
    EXPECT_EQ(Found("xyzzy"), "refused: there is no command \"xyzzy\"; atctl list shows them all");
    EXPECT_TRUE(Has(Found("+CSQ\x1b[2J"), "there is no command \"+CSQ\\x1b[2J\""));
}

TEST(FindCommand, TakesAFormForItsName) {
    EXPECT_EQ(Named("+CREG?"), "+CREG");
    EXPECT_EQ(Named("+COPS=?"), "+COPS");
    EXPECT_EQ(Named("cgreg"), "+CGREG");
    EXPECT_EQ(Named("AT+CSQ"), "refused: names stand without AT: atctl show '+CSQ'");
    EXPECT_TRUE(Has(Named("+CSX"), "did you mean +CSQ?"));
}

TEST(Text, PrintableKeepsUtf8AndEscapesTheRest) {
    EXPECT_EQ(Printable("plain"), "plain");
    EXPECT_EQ(Printable("Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x98\x80"),
              "Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x98\x80");
    EXPECT_EQ(Printable("a\xFFz"), "a\\xffz");
    EXPECT_EQ(Printable("a\xC3"), "a\\xc3");                  // cut
    EXPECT_EQ(Printable("\xC0\x80"), "\\xc0\\x80");           // longer than needed
    EXPECT_EQ(Printable("\xED\xA0\x80"), "\\xed\\xa0\\x80");  // a surrogate
    EXPECT_EQ(Printable("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(Printable("\x1b[2J\n"), "\\x1b[2J\\x0a");
    EXPECT_EQ(Printable("\xC2\x9B"
                        "2J"),
              "\\xc2\\x9b2J");  // the same control in one character
    EXPECT_EQ(Printable("a\nb\xFF", Controls::keep), "a\nb\\xff");
}

TEST(Text, EditDistanceCountsSwapsOnceAndNoCase) {
    EXPECT_EQ(EditDistance("", ""), 0U);
    EXPECT_EQ(EditDistance("", "abc"), 3U);
    EXPECT_EQ(EditDistance("abc", ""), 3U);
    EXPECT_EQ(EditDistance("CSQ", "csq"), 0U);
    EXPECT_EQ(EditDistance("CPSM", "CPMS"), 1U);
    EXPECT_EQ(EditDistance("kitten", "sitting"), 3U);
}

TEST(Text, ShellWordsAreQuotedWhereTheShellWouldRead) {
    EXPECT_EQ(ShellWord("SM"), "SM");
    EXPECT_EQ(ShellWord(""), "''");
    EXPECT_EQ(ShellWord("+COPS=?"), "'+COPS=?'");
    EXPECT_EQ(ShellWord("it's"), "'it'\\''s'");
}

TEST(ErrorWords, NumbersOfTheStandardHaveWords) {
    EXPECT_EQ(ErrorWords(AT_RESULT_CME_ERROR, "10"), "no SIM is inserted");
    EXPECT_EQ(ErrorWords(AT_RESULT_CMS_ERROR, "321"), "there is no message at this place");
    EXPECT_EQ(ErrorWords(AT_RESULT_USSD_ERROR, "30"), "no network");
}

TEST(ErrorWords, OtherNumbersTextsAndResultsHaveNone) {
    EXPECT_EQ(ErrorWords(AT_RESULT_CME_ERROR, "9999"), "");
    EXPECT_EQ(ErrorWords(AT_RESULT_CME_ERROR, "-1"), "");
    EXPECT_EQ(ErrorWords(AT_RESULT_CME_ERROR, "10 "), "");
    EXPECT_EQ(ErrorWords(AT_RESULT_CME_ERROR, "SIM not inserted"), "");
    EXPECT_EQ(ErrorWords(AT_RESULT_CME_ERROR, ""), "");
    EXPECT_EQ(ErrorWords(AT_RESULT_OK, "10"), "");
    EXPECT_EQ(ErrorWords(AT_RESULT_CMS_ERROR, "10"), "barred");
}

TEST(Timeouts, SlowCommandsHaveTheirOwn) {
    EXPECT_EQ(TimeoutSeconds(0x0517), 180U);  // +COPS
    EXPECT_EQ(TimeoutSeconds(0x010B), 120U);  // +CMGD
    EXPECT_EQ(TimeoutSeconds(0x0604), 10U);   // +CSQ
    EXPECT_EQ(TimeoutSeconds(0), 10U);
}
