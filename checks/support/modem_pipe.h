#ifndef AT_CHECKS_SUPPORT_MODEM_PIPE_H
#define AT_CHECKS_SUPPORT_MODEM_PIPE_H

#include <string>

// A pipe in the place of the modem's port, for as long as the object lives: what the server writes can be
// read back.
class ModemPipe {
  public:
    ModemPipe();
    ~ModemPipe();
    ModemPipe(const ModemPipe&) = delete;
    ModemPipe& operator=(const ModemPipe&) = delete;

    // Everything written since the last call.
    std::string Written();
    // Lets every further write fail.
    void Break();

  private:
    int before_;
    int read_end_;
    int write_end_;
};

#endif
