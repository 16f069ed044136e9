#ifndef AT_TOOLS_ATCTL_DESCRIBE_H
#define AT_TOOLS_ATCTL_DESCRIBE_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <span>
#include <string>

#include "commands/row.h"
#include "tools/shared/terminal.h"

// What is known about the commands, without asking anybody.

// A line for each command; on a terminal lines that are no longer than it is wide (40 columns or more), and
// what the columns say where there is room for it.
void PrintList(std::ostream& out, const Look& look, std::span<const Row* const> rows);
nlohmann::ordered_json ListJson(std::span<const Row* const> rows);

void PrintCommand(std::ostream& out, const Look& look, const Row& row);
nlohmann::ordered_json CommandJson(const Row& row);

// Name, size and fields of a record. With the row of the request that carries it also which fields are
// required.
nlohmann::ordered_json RecordJson(const Record& record, const Row* request_of);

// A call that `atctl send` takes, such as "atctl send '+CFUN=' 1"; empty for what is only reported.
std::string ExampleCall(const Row& row);

#endif
