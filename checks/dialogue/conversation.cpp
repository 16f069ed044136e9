#include "checks/dialogue/conversation.h"

#include <stdio.h>

#include <fstream>
#include <sstream>

#include "platform/platform.h"

namespace {

std::string Printable(const std::string& bytes) {
    std::string text;
    for (char byte : bytes) {
        if (byte >= ' ' && byte <= '~' && byte != '\\') {
            text += byte;
            continue;
        }
        char code[8];
        snprintf(code, sizeof code, "\\%02x", static_cast<unsigned char>(byte));
        text += code;
    }
    return text;
}

std::string ShowBytes(std::string bytes) {
    const size_t size = bytes.size();
    bytes.resize(bytes.find_last_not_of('\0') + 1);
    return Printable(bytes) + " and " + std::to_string(size - bytes.size()) + " zeros";
}

std::string Padded(const std::string& paras) {
    std::string padded = paras;
    padded.resize(AT_RESPONSE_PARAS_SIZE, '\0');
    return padded;
}

uint16_t LengthWord(const std::string& paras, int length) {
    return static_cast<uint16_t>(length >= 0 ? static_cast<size_t>(length) : paras.size());
}

}  // namespace

std::string Show(const Received& message) {
    char head[256];
    snprintf(head, sizeof head,
             "message type %ld to %04x from %04x command %04x length %u: id %04x type %u result %u "
             "parameters %u guard %08x: ",
             message.type, message.target, message.source, message.command, message.data_len, message.id,
             message.cmd_type, message.result, message.para_len, message.magic);
    return head + ShowBytes(message.paras);
}

std::string Next(const Module& module, double seconds) {
    Received message;
    return module.Receive(message, seconds) ? Show(message) : "nothing";
}

std::string Report(const Module& module, uint16_t id, uint8_t type, const std::string& paras, int length) {
    Received message;
    message.type = 1;
    message.target = module.Id();
    message.source = AT_MODULE_SERVER;
    message.command = AT_MESSAGE_COMMAND;
    message.data_len = 518;
    message.id = id;
    message.cmd_type = type;
    message.result = AT_RESULT_OK;
    message.para_len = LengthWord(paras, length);
    message.paras = Padded(paras);
    message.magic = AT_MESSAGE_MAGIC;
    return Show(message);
}

static Received AnswerMessage(const Module& module, uint16_t id, uint8_t type, uint8_t result,
                              const std::string& paras, int length) {
    Received message;
    message.type = 7;
    message.target = module.Id();
    message.source = AT_MODULE_SERVER;
    message.command = AT_MESSAGE_COMMAND;
    message.para_len = LengthWord(paras, length);
    message.data_len = static_cast<uint16_t>(message.para_len + 6);
    message.id = id;
    message.cmd_type = type;
    message.result = result;
    message.paras = Padded(paras);
    message.magic = AT_MESSAGE_MAGIC;
    return message;
}

std::string Answer(const Module& module, uint16_t id, uint8_t type, uint8_t result, const std::string& paras,
                   int length) {
    return Show(AnswerMessage(module, id, type, result, paras, length));
}

std::string DialAnswer(const Module& module) {
    Received message = AnswerMessage(module, 0x0401, kExec, AT_RESULT_OK, "OK", -1);
    message.type = 1;
    return Show(message);
}

std::string ShowFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return "no file";
    std::ostringstream content;
    content << file.rdbuf();
    return ShowBytes(content.str());
}

std::string FileOf(const std::string& content, size_t size) {
    return ShowBytes(Text(content, size));
}

std::string ConfigValue(const char* key) {
    const char* value = cfg_get(key);
    return value != nullptr ? value : "(missing)";
}

Modem::Answer Answers(std::map<std::string, std::string> answers) {
    return [answers = std::move(answers)](const std::string& line) {
        const auto found = answers.find(line);
        return found != answers.end() ? found->second : PlainAnswer(line);
    };
}

std::string Silence(const std::string&) {
    return "";
}

OtherCard::OtherCard() {
    cfg_set("data_card_mode", "OTHER_CARD");
}
OtherCard::~OtherCard() {
    cfg_set("data_card_mode", "KVX_LTE");
}

std::string Router::Leftovers() const {
    std::string all;
    for (const Module* module : {&call, &sim, &sms, &time, &toolkit, &ussd, &data, &other}) {
        Received message;
        while (module->Receive(message, 0))
            all += Show(message) + "\n";
    }
    return all;
}

World* Conversation::world_ = nullptr;

void Conversation::SetUpTestSuite() {
    world_ = new World(PlainAnswer);
}

void Conversation::TearDownTestSuite() {
    delete world_;
    world_ = nullptr;
}

void Conversation::SetUp() {
    if (world_ == nullptr) world_ = new World(PlainAnswer);
    world_->modem.SetAnswer(PlainAnswer);
    world_->modem.ForgetLines();
    world_->log.Forget();
}

void Conversation::TearDown() {
    ASSERT_TRUE(world_->daemon.Running());
    world_->modem.SetAnswer(PlainAnswer);
    if (!HasFailure()) Settle();
    EXPECT_EQ(Leftovers(), "");
    // What a failed conversation left unfinished must not fail the next one.
    if (HasFailure()) TearDownTestSuite();
}

void Conversation::SayAlone(const std::string& text) {
    const auto bytes_read = [] {
        int bytes = 0;
        for (const LogCollector::Line& line : Log().Lines()) {
            int length = 0;
            if (sscanf(line.text.c_str(), "Receive AT response ok,RecvLen(chars) =  %d.", &length) == 1)
                bytes += length;
        }
        return bytes;
    };
    Log().Forget();
    Say(text);
    ASSERT_TRUE(WaitUntil([&] { return bytes_read() >= static_cast<int>(text.size()); }, 20));
}

void Conversation::Settle() {
    Module module(0x2346);
    module.Ask(0x0604, kExec);
    EXPECT_EQ(Next(module, 20), Answer(module, 0x0604, kExec, 1, I32({20, 0})));
}
