#ifndef AT_TOOLS_ATCTL_PRINT_ANSWER_H
#define AT_TOOLS_ATCTL_PRINT_ANSWER_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>

#include "tools/atctl/answer.h"
#include "tools/shared/terminal.h"

// Answers for people and for scripts.

// A value as people read it, and its words behind it where there are some ("2 (current)").
std::string ValueText(const Value& value);

void PrintAnswer(std::ostream& out, const Look& look, const Row& row, const Decoded& decoded);

// {command, type, id, result, result_text, fields and entries or text, para_len, ...}
nlohmann::ordered_json AnswerJson(const Row& row, const Decoded& decoded);

// What the parameters hold, for an object that says already whose they are: fields and entries or text,
// para_len, ...
void AddContentJson(nlohmann::ordered_json& json, const Decoded& decoded);

// Two digits for each byte.
std::string HexText(const std::vector<uint8_t>& bytes);

// `name  value  (meaning)`, aligned.
void PrintFields(std::ostream& out, const Look& look, const std::vector<Value>& values);

#endif
