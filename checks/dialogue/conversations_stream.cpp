#include <sys/ipc.h>
#include <sys/msg.h>

#include <algorithm>
#include <deque>

#include "checks/dialogue/conversation.h"
#include "platform/platform.h"

// What the daemon makes of a modem that speaks whenever it likes, and of modules that do not listen.

namespace {

// Something that the modem says, and the message that it causes.
struct Event {
    std::string text;
    const Module* module = nullptr;  // null: nobody is told
    std::string message;
};

// The text with each '#' replaced by the number, at least `width` digits long.
std::string Number(const std::string& text, int number, size_t width = 1) {
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    std::string result;
    for (char c : text)
        result += c == '#' ? digits : std::string(1, c);
    return result;
}

// Takes what comes to a module, so that its queue is never full for long.
class Reader {
  public:
    explicit Reader(const Module& module)
        : module_(module), thread_([this] {
              Received message;
              while (!stop_)
                  while (module_.Receive(message, 0.01)) {
                      std::lock_guard<std::mutex> hold(lock_);
                      messages_.push_back(Show(message));
                  }
          }) {}
    ~Reader() {
        stop_ = true;
        thread_.join();
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    const Module& Of() const { return module_; }
    std::vector<std::string> Messages() const {
        std::lock_guard<std::mutex> hold(lock_);
        return messages_;
    }

  private:
    const Module& module_;
    mutable std::mutex lock_;
    std::vector<std::string> messages_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

class StreamTalks : public Conversation {
  protected:
    // Reports of every kind but those of a message that brings its PDU: these are reported once for each
    // response that ends before them.
    Event EventOf(int number, bool other_card) const {
        const int i = number;
        switch (number % 14) {
            case 0:
                return {Number("\r\n+CMTI: \"SM\",#\r\n", i), &sms,
                        Report(sms, 0x0110, 1, Text("SM", 12) + I32({i}))};
            case 1:
                return {Number("\r\n+CREG: 1,\"#\",\"0#\"\r\n", i, 4), &sim,
                        Report(sim, 0x052D, 6,
                               I32({1}) + Text(Number("#", i, 4), 16) + Text(Number("0#", i, 4), 16))};
            case 2:
                return {"\r\nRING\r\n", &call, Report(call, 0x0407, 1, "RING")};
            case 3:
                return {Number("\r\n+CLIP: \"+49#\",145\r\n", i, 6), &call,
                        Report(call, 0x0513, 1, Number("+49#", i, 6))};
            case 4:
                return {Number("\r\n+ZCONSTAT: #,5\r\n", i), &data, Report(data, 0x0625, 1, I32({i}))};
            case 5:
                return {
                    Number("\r\n+ZGIPDNS: 1,#,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"8.8.8.8\",\"8.8.4.4\"\r\n",
                           i),
                    &data,
                    Report(data, 0x0627, 1,
                           I32({1, i}) + Text("IP", 10) + Text("10.0.0.2", 60) + Text("10.0.0.1", 60) +
                               Text("8.8.8.8", 60) + Text("8.8.4.4", 62))};
            case 6:
                return {Number("\r\n+ZNITZ: 2024,11,21,14,30,59,4,#\r\n", i), &time,
                        Report(time, 0x063E, 1, I32({2024, 11, 21, 14, 30, 59, 4, i}))};
            case 7:
                return {Number("\r\n+ZSTI: \"OK\",#\r\n", i), other_card ? nullptr : &toolkit,
                        Report(toolkit, 0x0702, 2, Number("\"OK\",#", i))};
            case 8:
                return {Number("\r\nHANGUP: #\r\n", i), &call,
                        Report(call, 0x0408, 1, Number("HANGUP: #", i))};
            case 9:
                return {Number("\r\n^NOROW: #\r\n", i), nullptr, ""};
            case 10:
                return {Number("\r\n+CUSD: 1,\"RING #\r\nOK\r\n\",15\r\n", i), other_card ? nullptr : &ussd,
                        Report(ussd, 0x0532, 2, "", 824)};
            case 11:
                return {Number("\r\n^HRSSILVL:#\r\n", i % 100, 2), &sim,
                        Report(sim, 0x0550, 1, Text(Number("#", i % 100, 2), 8))};
            case 12:
                return {Number("\r\n+CGEV: ME PDN ACT #\r\n", i), nullptr, ""};
            default:
                return {Number("\r\n+ZUEND: #\r\n", i), &sim, Report(sim, 0x0632, 6, I32({i}))};
        }
    }

    // Two modules ask 30 times each while `storm` is said; `answer` gives what the modem says to a request
    // for the signal quality. Every module must get its reports in their order, every request its answer.
    void RunStorm(const std::vector<Event>& events, const std::string& storm, const Modem::Answer& answer) {
        constexpr int kRequests = 30;
        Module first(0x2401);
        Module second(0x2402);
        const Module* const asking[] = {&first, &second};
        std::deque<Reader> readers;
        for (const Module* module : std::initializer_list<const Module*>{&call, &sim, &sms, &time, &toolkit,
                                                                         &ussd, &data, &first, &second})
            readers.emplace_back(*module);
        TheModem().SetAnswer(answer);

        std::thread modem([&] { Say(storm); });
        for (int i = 0; i < kRequests; ++i)
            for (const Module* module : asking)
                module->Ask(0x0604, kExec);
        const size_t reports = static_cast<size_t>(
            std::count_if(events.begin(), events.end(), [](const Event& event) { return event.module; }));
        WaitUntil(
            [&] {
                size_t messages = 0;
                for (const Reader& reader : readers)
                    messages += reader.Messages().size();
                return messages >= reports + 2 * kRequests;
            },
            90);
        modem.join();
        TheModem().SetAnswer(PlainAnswer);
        Settle();
        TheModem().ForgetLines();  // by now the modem's thread is through with `answer`

        for (const Reader& reader : readers) {
            std::vector<std::string> expected;
            for (const Event& event : events)
                if (event.module == &reader.Of()) expected.push_back(event.message);
            // The modem counts the requests, which were put in turns.
            for (int i = 0; i < kRequests; ++i)
                for (int who = 0; who < 2; ++who)
                    if (asking[who] == &reader.Of())
                        expected.push_back(Answer(*asking[who], 0x0604, kExec, 1, I32({2 * i + who, 0})));
            const std::vector<std::string> messages = reader.Messages();
            EXPECT_EQ(messages.size(), expected.size()) << std::hex << reader.Of().Id();
            for (size_t i = 0; i < std::min(messages.size(), expected.size()); ++i)
                ASSERT_EQ(messages[i], expected[i]) << std::hex << reader.Of().Id() << std::dec << " " << i;
        }
    }

    std::vector<Event> Events(int count, bool other_card) const {
        std::vector<Event> events;
        for (int i = 0; i < count; ++i)
            events.push_back(EventOf(i, other_card));
        return events;
    }

    // Reports of one kind until the module's queue takes no more; how many it holds then.
    int FillQueue(const Module& module, int more) {
        msqid_ds state{};
        EXPECT_EQ(msgctl(module.Queue(), IPC_STAT, &state), 0);
        const int room = static_cast<int>(state.msg_qbytes / AT_WIRE_SIZE);
        std::string text;
        for (int i = 0; i < room + more; ++i)
            text += Number("\r\n+CMTI: \"SM\",#\r\n", i);
        Say(text);
        EXPECT_TRUE(WaitUntil([&] { return Depth(module) == room; }, 20));
        return room;
    }
    static int Depth(const Module& module) {
        msqid_ds state{};
        return msgctl(module.Queue(), IPC_STAT, &state) == 0 ? static_cast<int>(state.msg_qnum) : -1;
    }
};

// ---- Storms

TEST_F(StreamTalks, FiveHundredReportsInOneGoLoseNothing) {
    for (const bool other_card : {false, true}) {
        SCOPED_TRACE(other_card);
        cfg_set("data_card_mode", other_card ? "OTHER_CARD" : "KVX_LTE");
        const std::vector<Event> events = Events(500, other_card);
        std::string storm;
        for (const Event& event : events)
            storm += event.text;
        std::atomic<int> asked{0};
        const auto answer = [&asked](const std::string& line) {
            if (line != "AT+CSQ" || asked == 60) return PlainAnswer(line);
            return Number("\r\n+CSQ: #,99\r\n\r\nOK\r\n", asked++);
        };
        RunStorm(events, storm, answer);
    }
    cfg_set("data_card_mode", "KVX_LTE");
}

TEST_F(StreamTalks, FiveHundredReportsBeforeInsideAndBehindAnswersLoseNothing) {
    for (const bool other_card : {false, true}) {
        SCOPED_TRACE(other_card);
        cfg_set("data_card_mode", other_card ? "OTHER_CARD" : "KVX_LTE");
        const std::vector<Event> events = Events(500, other_card);
        std::atomic<size_t> said{0};
        std::atomic<int> asked{0};
        const auto reports = [&](size_t count) {
            std::string text;
            for (; count != 0 && said < events.size(); --count)
                text += events[said++].text;
            return text;
        };
        const auto answer = [&](const std::string& line) {
            if (line != "AT+CSQ" || asked == 60) return PlainAnswer(line);
            std::string text = reports(3);
            text += Number("\r\n+CSQ: #,99\r\n", asked);
            text += reports(3);
            text += "\r\nOK\r\n";
            text += reports(++asked < 60 ? 3 : events.size());
            return text;
        };
        RunStorm(events, "", answer);
        EXPECT_EQ(said, events.size());
    }
    cfg_set("data_card_mode", "KVX_LTE");
}

// ---- Cuts

TEST_F(StreamTalks, ReportsCutAnywhereAreTheSame) {
    for (int kind : {0, 1, 2, 3, 5, 10}) {
        const Event event = EventOf(kind, false);
        for (size_t cut = 1; cut < event.text.size(); cut += kind == 5 ? 7 : 2) {
            SCOPED_TRACE(event.text.substr(0, cut) + "|");
            SayAlone(event.text.substr(0, cut));
            Say(event.text.substr(cut));
            ASSERT_EQ(Next(*event.module), event.message);
        }
    }
}

TEST_F(StreamTalks, LinesWithoutAnEmptyOneBetweenThemMayBeCutAnywhere) {
    const std::string text = "\r\n+CMTI: \"SM\",8\r\n+ZUEND: 1\r\nHANGUP: 16\r\n";
    for (size_t cut = 1; cut < text.size(); ++cut) {
        SCOPED_TRACE(text.substr(0, cut) + "|");
        SayAlone(text.substr(0, cut));
        Say(text.substr(cut));
        ASSERT_EQ(Next(sms), Report(sms, 0x0110, 1, Text("SM", 12) + I32({8})));
        ASSERT_EQ(Next(sim), Report(sim, 0x0632, 6, I32({1})));
        ASSERT_EQ(Next(call), Report(call, 0x0408, 1, "HANGUP: 16"));
    }
}

TEST_F(StreamTalks, AnswerWithAReportInsideIsTheSameWhereverItIsCut) {
    TheModem().SetAnswer(Silence);
    const std::string text = "\r\n+CFUN: 1\r\n\r\n+CMTI: \"SM\",8\r\n\r\nOK\r\n";
    for (size_t cut = 1; cut < text.size(); ++cut) {
        SCOPED_TRACE(text.substr(0, cut) + "|");
        TheModem().ForgetLines();
        other.Ask(0x0544, kRead);
        ASSERT_TRUE(TheModem().WaitForLine("AT+CFUN?"));
        SayAlone(text.substr(0, cut));
        Say(text.substr(cut));
        ASSERT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
        ASSERT_EQ(Next(sms), Report(sms, 0x0110, 1, Text("SM", 12) + I32({8})));
    }
}

TEST_F(StreamTalks, PromptInTwoPiecesSendsTheMessageOnce) {
    TheModem().SetAnswer(Silence);
    for (const size_t cut : {1U, 2U, 3U}) {
        SCOPED_TRACE(cut);
        TheModem().ForgetLines();
        sms.Ask(0x0108, kSet, I32({2}) + Text("0011", 500));
        ASSERT_TRUE(TheModem().WaitForLine("AT+CMGS=2"));
        const std::string prompt = "\r\n> ";
        SayAlone(prompt.substr(0, cut));
        Say(prompt.substr(cut));
        ASSERT_TRUE(TheModem().WaitForLine("0011"));
        Say("\r\n+CMGS: 1\r\n\r\nOK\r\n");
        ASSERT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({1}) + Text("", 504)));
        EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=2\r0011\x1a");
    }
}

TEST_F(StreamTalks, TwoAnswersInOneReadGoToTheFirstAndToNobody) {
    TheModem().SetAnswer(Answers(
        {{"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nOK\r\n\r\n+CFUN: 4\r\n\r\nOK\r\n\r\n+CMTI: \"SM\",8\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, Text("SM", 12) + I32({8})));
}

// ---- Modules that do not listen

TEST_F(StreamTalks, FullModuleQueueStallsTheServerUntilItIsDrained) {
    const int room = FillQueue(sms, 5);
    other.Ask(0x0544, kRead);
    EXPECT_TRUE(TheModem().WaitForLine("AT+CFUN?")) << "lines are written by another thread";
    EXPECT_EQ(Next(other, 0.3), "nothing");
    EXPECT_EQ(Depth(sms), room);
    for (int i = 0; i < room + 5; ++i)
        ASSERT_EQ(Next(sms), Report(sms, 0x0110, 1, Text("SM", 12) + I32({i})));
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
}

TEST_F(StreamTalks, QueueRemovedUnderTheStalledServerLosesItsReportsOnly) {
    const int room = FillQueue(sms, 2);
    // The last line before a report is put in the queue: one more is on its way.
    EXPECT_TRUE(Log().WaitFor("_BK_AT_RES_T : usCmdID=0x110,", 10, room + 1));
    ASSERT_EQ(msgctl(sms.Queue(), IPC_RMID, nullptr), 0);
    EXPECT_TRUE(Log().WaitFor("ERROR: send_auto_report send msg failed.", 10, 2));
    // The one on its way may not have come so far.
    const int late = Log().Count("send_msg_buf ::get target msg id 0x100a failed!");
    EXPECT_EQ(late + Log().Count("ERROR: send_msg_buf:: send msg failed, error code "), 2);
    EXPECT_GE(late, 1);
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    const Module again(AT_MODULE_SMS);
    Say("\r\n+CMTI: \"SM\",8\r\n");
    EXPECT_EQ(Next(again), Report(again, 0x0110, 1, Text("SM", 12) + I32({8})));
}

TEST_F(StreamTalks, QueueRemovedBeforeTheAnswerLosesTheAnswerOnly) {
    TheModem().SetAnswer(Silence);
    {
        const Module leaving(0x2347);
        leaving.Ask(0x0544, kRead);
        ASSERT_TRUE(TheModem().WaitForLine("AT+CFUN?"));
    }
    Say("\r\n+CFUN: 1\r\n\r\nOK\r\n");
    EXPECT_TRUE(Log().WaitFor("send_msg_buf ::get target msg id 0x2347 failed!"));
    EXPECT_TRUE(Log().WaitFor("ERROR: send_msg_buf send msg failed, error code 42506!"));
}

}  // namespace
