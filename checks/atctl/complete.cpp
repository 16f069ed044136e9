#include <gtest/gtest.h>

#include <algorithm>

#include "tools/atctl/complete.h"
#include "tools/atctl/find_command.h"

// What the shells are told to offer.

namespace {

using Words = std::vector<std::string>;

const std::vector<SubcommandWords> kSubcommands = {
    {"", "", {{"--help", "", false}, {"--version", "", false}}},
    {"send", "sends", {{"--json", "", false}, {"--timeout", "", true}, {"--color", "", true}}},
    {"watch", "watches", {{"--field", "", true}}},
    {"monitor", "", {{"--count", "", true}}},
    {"bench", "", {{"--command", "", true}}},
    {"show", "", {}},
};

Words Offered(const Words& words) {
    Words offered;
    for (const Candidate& candidate : Complete(words, kSubcommands))
        offered.push_back(candidate.word);
    return offered;
}

bool Has(const Words& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

TEST(Complete, FirstComesASubcommandOrAnOptionOfTheProgram) {
    EXPECT_EQ(Offered({""}), (Words{"send", "watch", "monitor", "bench", "show"}));
    EXPECT_EQ(Offered({"s"}), (Words{"send", "show"}));
    EXPECT_EQ(Offered({"--v"}), Words{"--version"});
    EXPECT_EQ(Offered({"x"}), Words{});
    EXPECT_EQ(Offered({}), Words{});
}

TEST(Complete, AnUnknownSubcommandHasNothing) {
    EXPECT_EQ(Offered({"sned", "+C"}), Words{});
}

TEST(Complete, CommandsComeInTheFormsThatTakeOrGiveSomething) {
    EXPECT_EQ(Offered({"send", "+CSQ"}), Words{"+CSQ"});
    EXPECT_EQ(Offered({"send", "+creg"}), (Words{"+CREG=", "+CREG?"}));
    EXPECT_EQ(Offered({"send", "csq"}), Words{"+CSQ"});
    EXPECT_EQ(Offered({"send", "c"}), Words{});
    EXPECT_TRUE(Has(Offered({"send", ""}), "D"));
    // What is only reported cannot be sent, but be shown.
    EXPECT_FALSE(Has(Offered({"send", ""}), "+CMTI"));
    EXPECT_TRUE(Has(Offered({"show", ""}), "+CMTI"));
}

TEST(Complete, EveryCommandThatCanBeSentIsOfferedAndUnderstood) {
    const Words offered = Offered({"send", ""});
    for (const std::string& word : offered)
        EXPECT_NO_THROW(FindCall(word)) << word;
    for (const Row& row : Commands()) {
        const bool any = std::any_of(offered.begin(), offered.end(), [&](const std::string& word) {
            return SameText(FindCall(word).row->name, row.name);
        });
        EXPECT_EQ(any, row.encode.kind != EncodeKind::absent) << row.name;
    }
}

TEST(Complete, FieldsComeByNameWithTheValuesThatAreListed) {
    EXPECT_EQ(Offered({"send", "+CPMS=", "me"}), (Words{"mem1=", "mem2=", "mem3="}));
    EXPECT_EQ(Offered({"send", "+CPMS=", "SM", "mem3=SM", ""}), Words{"mem2="});
    EXPECT_EQ(Offered({"send", "+CREG=", ""}), (Words{"0", "1", "2", "n="}));
    EXPECT_EQ(Offered({"send", "+CREG=", "n="}), (Words{"n=0", "n=1", "n=2"}));
    EXPECT_EQ(Offered({"send", "+CREG=", "1", ""}), Words{});
    EXPECT_EQ(Offered({"send", "+CSQ", ""}), Words{});
    EXPECT_EQ(Offered({"watch", "+CREG=", ""}), Words{});
    EXPECT_EQ(Offered({"watch", "+CREG=", "2", "n"}), Words{"n="});
    EXPECT_TRUE(Complete(Words{"send", "+CREG=", "n"}, kSubcommands)[0].more);
    EXPECT_FALSE(Complete(Words{"send", "+CREG="}, kSubcommands)[0].more);
}

TEST(Complete, OptionsAndTheirValues) {
    EXPECT_EQ(Offered({"send", "+CSQ", "--"}), (Words{"--json", "--timeout", "--color"}));
    EXPECT_EQ(Offered({"send", "--timeout", ""}), Words{});
    EXPECT_EQ(Offered({"send", "--timeout", "5", "+CSQ"}), Words{"+CSQ"});
    EXPECT_EQ(Offered({"send", "--color", "a"}), (Words{"auto", "always"}));
    EXPECT_EQ(Offered({"send", "--color=n"}), Words{"--color=never"});
    EXPECT_EQ(Offered({"send", "+CPMS=", "--", "--j"}), Words{});
    EXPECT_EQ(Offered({"watch", "+CSQ", "--field", ""}), (Words{"rssi", "ber"}));
    // Without values, so no form that takes some.
    EXPECT_EQ(Offered({"bench", "--command", "+CREG"}), Words{"+CREG?"});
}

TEST(Complete, ModulesAreOfferedOnce) {
    EXPECT_EQ(Offered({"monitor", "s"}), (Words{"sim", "sms"}));
    EXPECT_EQ(Offered({"monitor", "sms", "s"}), Words{"sim"});
}
