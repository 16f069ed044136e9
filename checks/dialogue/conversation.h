#ifndef AT_CHECKS_DIALOGUE_CONVERSATION_H
#define AT_CHECKS_DIALOGUE_CONVERSATION_H

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "checks/dialogue/world.h"

// Whole conversations between modules, the daemon and a modem. Messages are compared in one piece, as text
// that shows every field and every byte of the parameters.

inline constexpr uint8_t kExec = AT_CMD_TYPE_EXEC;
inline constexpr uint8_t kSet = AT_CMD_TYPE_SET;
inline constexpr uint8_t kRead = AT_CMD_TYPE_READ;

// A message with all its fields; the zeros at the end of the parameters are only counted.
std::string Show(const Received& message);

// The next message of a module, or "nothing" when none comes in time.
std::string Next(const Module& module, double seconds = kPatience);

// What a report to `module` and the answer to a request of `module` look like. `length` is the length word of
// the parameters where it is not that of `paras`.
std::string Report(const Module& module, uint16_t id, uint8_t type, const std::string& paras,
                   int length = -1);
std::string Answer(const Module& module, uint16_t id, uint8_t type, uint8_t result, const std::string& paras,
                   int length = -1);
// The OK of a dial: the request is marked idle when it is sent, so its message type is gone.
std::string DialAnswer(const Module& module);

// The file's bytes; the zeros at its end are only counted.
std::string ShowFile(const std::string& path);
// What ShowFile says of a file with this content, padded with zeros to `size`.
std::string FileOf(const std::string& content, size_t size);
std::string ConfigValue(const char* key);  // "(missing)" when it is

// Answers of a modem to some lines; PlainAnswer speaks for the others.
Modem::Answer Answers(std::map<std::string, std::string> answers);
// A modem that says nothing of its own accord.
std::string Silence(const std::string& line);

// While it lives the daemon serves a data card that is not the router's own module.
class OtherCard {
  public:
    OtherCard();
    ~OtherCard();
};

// The modules of the router, each with an empty queue.
struct Router {
    Module call{AT_MODULE_CALL};
    Module sim{AT_MODULE_SIM};
    Module sms{AT_MODULE_SMS};
    Module time{AT_MODULE_TIME};
    Module toolkit{AT_MODULE_TOOLKIT};
    Module ussd{AT_MODULE_USSD};
    Module data{AT_MODULE_DATA};
    Module other{0x2345};

    // Everything that waits in the queues; empty when every message was expected.
    std::string Leftovers() const;
};

// One daemon for all conversations of a suite. Each leaves it idle and no message behind.
class Conversation : public testing::Test, protected Router {
  protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override;

    static Modem& TheModem() { return world_->modem; }
    static LogCollector& Log() { return world_->log; }
    static void Say(const std::string& text) { world_->modem.Say(text); }
    // Says it and waits until the daemon has read it all, so that what is said next comes in another read.
    static void SayAlone(const std::string& text);

    // Has another module ask for the signal quality: whatever was said before has been handled by then.
    void Settle();

  private:
    static World* world_;
};

#endif
