#ifndef AT_TOOLS_SHARED_EXIT_STATUS_H
#define AT_TOOLS_SHARED_EXIT_STATUS_H

#include <stdexcept>
#include <string>

// How the tools end. A script asks for the number, a person reads the one line on standard error, which
// begins with the tool's name and says what happened, with what, and what to do. A tool that is stopped by
// Ctrl-C takes away what it made and ends by that signal (128 + its number in a shell).

inline constexpr int kExitGood = 0;
inline constexpr int kExitNo = 1;            // it was done, and the answer is no: another result, no such key
inline constexpr int kExitMisuse = 2;        // the call is wrong, a name is unknown, or there is no server
inline constexpr int kExitNothingCame = 3;   // no answer or too few reports in time
inline constexpr int kExitNoPermission = 4;  // a queue or a file belongs to somebody else
inline constexpr int kExitTaken = 5;         // somebody has the module's queue already
inline constexpr int kExitFull = 6;          // the server's queue is full
inline constexpr int kExitBroken = 7;        // the system refused, or something broke on the way

// What ends a tool. The text is one line without the tool's name.
class Failure : public std::runtime_error {
  public:
    Failure(int status, const std::string& text) : std::runtime_error(text), status_(status) {}
    int Status() const { return status_; }

  private:
    int status_;
};

// What the user has to change before anything can be done.
class Misuse : public Failure {
  public:
    explicit Misuse(const std::string& text) : Failure(kExitMisuse, text) {}
};

#endif
