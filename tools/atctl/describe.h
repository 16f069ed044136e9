#ifndef AT_TOOLS_ATCTL_DESCRIBE_H
#define AT_TOOLS_ATCTL_DESCRIBE_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>

#include "commands/row.h"
#include "tools/atctl/text.h"

// What is known about the commands, without asking anybody.

void PrintList(std::ostream& out, const Paint& paint);  // at most 100 columns
nlohmann::ordered_json ListJson();

void PrintCommand(std::ostream& out, const Paint& paint, const Row& row);
nlohmann::ordered_json CommandJson(const Row& row);

// Name, size and fields of a record. With the row of the request that carries it also which fields are
// required.
nlohmann::ordered_json RecordJson(const Record& record, const Row* request_of);

// A call that `atctl send` takes, such as "atctl send '+CFUN=' 1"; empty for what is only reported.
std::string ExampleCall(const Row& row);

#endif
