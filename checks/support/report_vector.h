#ifndef AT_CHECKS_SUPPORT_REPORT_VECTOR_H
#define AT_CHECKS_SUPPORT_REPORT_VECTOR_H

#include <gtest/gtest.h>
#include <stdint.h>

#include <string>

#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/fake_shell.h"
#include "checks/support/log_capture.h"
#include "checks/support/modem_pipe.h"

// The bytes of a record, field by field, in the byte order of the machine.
class ReportBytes {
  public:
    ReportBytes& Int(int32_t value) {
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
        return *this;
    }
    // A text in an array of `size` bytes, zero-padded.
    ReportBytes& Text(const std::string& text, size_t size) {
        EXPECT_LT(text.size(), size);
        bytes_.append(text).append(size - text.size(), '\0');
        return *this;
    }
    ReportBytes& Zeros(size_t count) {
        bytes_.append(count, '\0');
        return *this;
    }
    const std::string& str() const { return bytes_; }

  private:
    std::string bytes_;
};

// What travels behind the type of a report: all 652 bytes, typed by hand at their offsets.
std::string ReportBody(uint16_t target, uint16_t id, uint8_t type, const std::string& paras);

// Checks that report traffic stands in a clean world: no request in flight, every module has its queue, the
// port is a pipe, the store and the log are empty.
class ReportVectors : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // The one message sent since the last look is exactly this report.
    void ExpectReport(uint16_t target, uint16_t id, uint8_t type, const std::string& paras);
    void ExpectNothingSent();

    // Makes a request pending.
    void Pending(uint16_t id, const std::string& paras = "");
    // Nothing is in flight: 656 zero bytes but for the type -1.
    static bool Idle();

    ModemPipe modem_;
};

#endif
