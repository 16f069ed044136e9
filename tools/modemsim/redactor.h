#ifndef AT_TOOLS_MODEMSIM_REDACTOR_H
#define AT_TOOLS_MODEMSIM_REDACTOR_H

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/modemsim/stand_ins.h"

namespace modemsim {

// Replaces what is private in the two streams between the daemon and a modem by stand-ins of the same length.
// A stream is read line by line, so that it does not matter into which pieces it was cut; what belongs to an
// unfinished line is held back.
class Redactor {
  public:
    enum class Way { ToModem, FromModem };

    explicit Redactor(const StandIns::Key& key) : stand_ins_(key), shape_(false) {}

    // Gives the shape instead: each letter and digit that would be replaced becomes a 0. A text and its
    // redacted form have the same shape.
    static Redactor Shape() { return Redactor(); }

    // Takes what passed, in the order in which it passed.
    void Feed(Way way, std::string_view bytes);

    // The unfinished line of this way will not be continued. It loses all its letters and digits.
    void Finish(Way way);

    // What is decided since the last call: as many bytes as were fed, but for the held back ones.
    std::string Take(Way way);

  private:
    struct Stream {
        std::string line;  // unfinished
        std::string done;
        bool line_begins = true;  // behind a line feed: a prompt may come
    };
    enum class Kind { Text, Dialled, Secret, Hex, Message };
    // What a line of the modem's that is neither a result nor named is part of.
    enum class Text {
        None,
        Message,   // one that came by itself, up to its hexadecimal line or the daemon's next command
        Messages,  // those that were asked for, up to the result
        Quoted,    // up to a quotation mark
    };

    Redactor() : stand_ins_({}), shape_(true) {}

    Stream& Of(Way way) { return way == Way::ToModem ? to_ : from_; }
    void EndLine(Way way, char end);
    std::string FromDaemon(const std::string& line, char end);
    std::string FromTheModem(const std::string& line, char end);
    std::string Commands(const std::string& line);
    std::string Body(const std::string& line);
    std::string Parameters(std::string_view text, std::string_view kinds, bool daemon);
    std::string Parameter(std::string_view text, char kind);
    std::string QuotedParameter(std::string_view text, char kind);
    std::string Bare(std::string_view text, char kind);
    std::string Replace(Kind kind, std::string_view text);
    std::string StandIn(Kind kind, std::string_view text);

    StandIns stand_ins_;
    bool shape_;
    Stream to_;
    Stream from_;
    bool prompted_ = false;  // the modem waits for the text of a message
    Text text_ = Text::None;
};

}  // namespace modemsim

#endif
