#include "tools/atctl/send.h"

#include <nlohmann/json.hpp>

#include "tools/atctl/asking.h"
#include "tools/atctl/print_answer.h"
#include "tools/atctl/request.h"
#include "tools/shared/text.h"

namespace {

using Status = QueueClient::Status;

void ShowRequest(const Streams& streams, const QueueClient& client, const Question& question) {
    const Row& row = *question.call.row;
    streams.err << "request  " << question.name << "  id " << HexNumber(row.id) << ", type "
                << unsigned{question.call.type} << ", " << Number(question.paras.size(), "byte", "bytes")
                << " of parameters, from module " << HexNumber(client.Module()) << ", message type "
                << client.MessageType() << '\n';
    if (const Record* record = RequestRecord(row, question.call.type))
        PrintFields(streams.err, Look(), DecodeFields(*record, question.paras));
    PrintHex(streams.err, question.paras);
}

void ShowAnswer(std::ostream& err, const Reply& reply) {
    char time[32];
    snprintf(time, sizeof time, "%.3f s", reply.taken.count());
    err << "answer   after " << time << "  id " << HexNumber(reply.res.usCmdID) << ", type "
        << unsigned{reply.res.ucCmdType} << ", result " << unsigned{reply.res.ucResult} << ", usParaLen "
        << reply.res.usParaLen << ", usDataLen " << reply.message.usDataLen << ", usMsgCmd "
        << HexNumber(reply.message.usMsgCmd) << ", from " << HexNumber(reply.message.usSourceModuleID)
        << '\n';
}

}  // namespace

int Send(const SendOptions& options, const QueueClient::Setup& setup, const Streams& streams) {
    const Question question = MakeQuestion(options.command, options.fields, options.timeout);
    Asking asking(setup, options.module);
    asking.Open();
    if (!asking.Put(question)) {
        streams.err << "atctl: interrupted; the request was not sent\n";
        return kExitMisuse;
    }
    if (options.verbose) ShowRequest(streams, asking.Client(), question);

    const Reply reply = asking.Wait(
        question, [&](const std::string& text) { streams.err << "atctl: " << text << std::endl; });
    if (const unsigned dropped = asking.Client().Dropped(); dropped != 0)
        streams.err << "atctl: " << Number(dropped, "message", "messages")
                    << " for this module that did not answer this request came in and went away\n";
    if (reply.status == Status::stopped) {
        streams.err << "atctl: interrupted; the request was sent, its answer is not waited for\n";
        return kExitNothingCame;
    }
    if (reply.status == Status::timed_out) {
        streams.err << "atctl: " << asking.WhyNoAnswer(question) << '\n';
        return kExitNothingCame;
    }
    asking.Close();
    if (options.verbose) ShowAnswer(streams.err, reply);

    const Decoded decoded = asking.Read(question, reply);
    if (options.json)
        streams.out << AnswerJson(*question.call.row, decoded).dump(2) << '\n';
    else
        PrintAnswer(streams.out, streams.look, *question.call.row, decoded);
    return decoded.result == AT_RESULT_OK ? kExitGood : kExitNo;
}
