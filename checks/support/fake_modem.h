#ifndef AT_CHECKS_SUPPORT_FAKE_MODEM_H
#define AT_CHECKS_SUPPORT_FAKE_MODEM_H

#include <string>

// A modem inside one process: the other end of the port.
class FakeModem {
  public:
    FakeModem();   // g_iFdCom is the port from here on
    ~FakeModem();  // and -1 again
    FakeModem(const FakeModem&) = delete;
    FakeModem& operator=(const FakeModem&) = delete;

    void Say(const std::string& text) const;
    std::string Heard() const;  // what was written to the port since the last call
    void Unplug();              // writes to the port fail from here on

  private:
    int modem_ = -1;
};

// What the C library is asked for on the way to the modem's device: opening it, and waiting.
struct FakeDevice {
    bool present = false;     // opening /dev/ttyUSB1 opens /dev/null
    int absent_openings = 0;  // that many openings fail first, even if it is present
    int openings = 0;
    int flags = 0;            // of the last opening
    bool skip_waits = false;  // waits return at once and are counted
    long waited_ms = 0;
    long first_wait_ms = 0;
    bool refuse_long_waits = false;  // a wait with more microseconds than a second has is an error
    int refused_waits = 0;

    void Reset() { *this = FakeDevice(); }
};

FakeDevice& Device();

#endif
