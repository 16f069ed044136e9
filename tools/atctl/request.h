#ifndef AT_TOOLS_ATCTL_REQUEST_H
#define AT_TOOLS_ATCTL_REQUEST_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tools/atctl/find_command.h"

// From what was typed to the parameter record of a request.

// The record that a form of a command takes; null when it takes none.
const Record* RequestRecord(const Row& row, uint8_t type);

// True for the form that takes a telephone number, a text of 1 to kLongestNumber characters.
bool TakesNumber(const Row& row, uint8_t type);
inline constexpr size_t kLongestNumber = AT_DIAL_NUMBER_SIZE;
inline constexpr char kNumberField[] = "number";

// True when every line that the server makes of the record needs the field, or it is no part of the line (the
// text of a message follows later). Other fields may be left out: zero or empty.
bool Required(const Row& row, const Field& field);

// Characters that a text field takes.
size_t Capacity(const Field& field);

// The bytes that go into aucParas: exactly the record, or nothing. The arguments stand for the fields in
// order, then name=value in any order. Misuse says what does not fit.
std::vector<uint8_t> BuildRequest(const Call& call, std::span<const std::string> arguments);

#endif
