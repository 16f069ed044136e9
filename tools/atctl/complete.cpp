#include "tools/atctl/complete.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>

#include "tools/atctl/answer.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/meaning.h"
#include "tools/atctl/module_name.h"
#include "tools/atctl/request.h"
#include "tools/shared/exit_status.h"
#include "tools/shared/text.h"

namespace {

using Candidates = std::vector<Candidate>;

// Those that begin with what was typed, in any case.
Candidates Matching(Candidates candidates, std::string_view typed) {
    const std::string lower = Lower(typed);
    std::erase_if(candidates, [&](const Candidate& one) { return !Lower(one.word).starts_with(lower); });
    return candidates;
}

// A form that takes or gives something. The others are answered with the result alone.
bool IsUseful(const Row& row, uint8_t type) {
    if (RequestRecord(row, type) != nullptr || TakesNumber(row, type)) return true;
    const Answer* answer = AnswerOf(row, type);
    return answer != nullptr && answer->record != nullptr;
}

// What `send` takes as its first word.
Candidates Calls(std::string_view typed, bool with_values) {
    Candidates all;
    Candidates bare;  // commands that give nothing in any form
    for (const Row& row : Commands()) {
        if (row.encode.kind == EncodeKind::absent) continue;
        bool any = false;
        for (const uint8_t type : kTypes) {
            if (!IsUseful(row, type)) continue;
            any = true;
            const bool takes = RequestRecord(row, type) != nullptr || TakesNumber(row, type);
            if (with_values || !takes) all.push_back({CallName({&row, type}), row.title, false});
        }
        if (!any || row.decode.kind == DecodeKind::text) bare.push_back({CommandName(row), row.title, false});
    }
    all.insert(all.end(), bare.begin(), bare.end());
    Candidates found = Matching(all, typed);
    if (!found.empty() || typed.empty()) return found;
    // Typed without its sign: only where the shell can replace the whole word.
    std::erase_if(all, [&](const Candidate& one) {
        return !Lower(std::string_view(one.word).substr(1)).starts_with(Lower(typed));
    });
    if (all.size() == 1) return all;
    return {};
}

Candidates Names(std::string_view typed) {
    Candidates names;
    for (const Row& row : Commands())
        names.push_back({CommandName(row), row.title, false});
    return Matching(names, typed);
}

std::optional<Call> CallOf(const std::string& text) {
    try {
        return FindCall(text);
    } catch (const Misuse&) {
        return std::nullopt;
    }
}

Candidates ListedFor(const Field& field, const std::string& before) {
    Candidates values;
    for (const Listed& listed : ListedValues(field.meaning))
        values.push_back({before + std::to_string(listed.number), std::string(listed.words), false});
    return values;
}

// The values of a command's fields behind those that are given.
Candidates Fields(const std::string& command, std::span<const std::string> given, const std::string& typed) {
    const std::optional<Call> call = CallOf(command);
    const Record* record = call ? RequestRecord(*call->row, call->type) : nullptr;
    if (record == nullptr) return {};
    std::set<std::string> named;
    size_t in_order = 0;
    for (const std::string& word : given) {
        const size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const bool is_name = equals != std::string::npos &&
                             std::any_of(record->fields, record->fields + record->count,
                                         [&](const Field& field) { return name == field.name; });
        if (is_name)
            named.insert(name);
        else
            ++in_order;
    }
    Candidates candidates;
    for (size_t i = 0; i < record->count; ++i) {
        const Field& field = record->fields[i];
        if (i < in_order || named.contains(field.name)) continue;
        const std::string assign = std::string(field.name) + "=";
        if (i == in_order && named.empty())
            for (Candidate& value : ListedFor(field, ""))
                candidates.push_back(std::move(value));
        candidates.push_back({assign, field.meaning, true});
        if (typed.starts_with(assign))
            for (Candidate& value : ListedFor(field, assign))
                candidates.push_back(std::move(value));
    }
    candidates = Matching(candidates, typed);
    // The field's name alone is no more than was typed.
    if (typed.ends_with('=') && candidates.size() > 1)
        std::erase_if(candidates, [&](const Candidate& one) { return one.word == typed; });
    return candidates;
}

Candidates AnswerFields(const std::string& command, std::string_view typed) {
    Candidates fields;
    const std::optional<Call> call = CallOf(command);
    const Answer* answer = call ? AnswerOf(*call->row, call->type) : nullptr;
    if (answer != nullptr && answer->record != nullptr)
        for (size_t i = 0; i < answer->record->count; ++i)
            fields.push_back({answer->record->fields[i].name, answer->record->fields[i].meaning, false});
    return Matching(fields, typed);
}

Candidates Modules(std::span<const std::string> given, std::string_view typed) {
    Candidates modules;
    for (const ModuleName& module : ReportedModules())
        if (std::find(given.begin(), given.end(), module.name) == given.end())
            modules.push_back({module.name, "module " + HexNumber(module.id), false});
    return Matching(modules, typed);
}

Candidates ValuesOf(const std::string& option, const std::string& command, std::string_view typed) {
    if (option == "--color")
        return Matching({{"auto", "on a terminal", false}, {"always", "", false}, {"never", "", false}},
                        typed);
    if (option == "--field") return AnswerFields(command, typed);
    if (option == "--command") return Calls(typed, false);
    return {};
}

}  // namespace

std::vector<Candidate> Complete(std::span<const std::string> words,
                                const std::vector<SubcommandWords>& subcommands) {
    if (words.empty()) return {};
    const std::string& typed = words.back();
    const auto options = [&](const SubcommandWords& of) {
        Candidates candidates;
        for (const OptionWords& option : of.options)
            candidates.push_back({option.name, option.about, false});
        return Matching(candidates, typed);
    };
    if (words.size() == 1) {
        if (typed.starts_with('-')) return options(subcommands.front());
        Candidates candidates;
        for (const SubcommandWords& one : subcommands)
            if (!one.name.empty()) candidates.push_back({one.name, one.about, false});
        return Matching(candidates, typed);
    }
    const auto sub = std::find_if(subcommands.begin(), subcommands.end(),
                                  [&](const SubcommandWords& one) { return one.name == words[0]; });
    if (sub == subcommands.end()) return {};
    const auto takes_value = [&](const std::string& word) {
        return std::any_of(sub->options.begin(), sub->options.end(), [&](const OptionWords& option) {
            return option.takes_value && option.name == word;
        });
    };

    // The words that are no options, before the one that is typed.
    std::vector<std::string> given;
    bool behind = false;  // "--"
    std::string option;   // whose value is typed
    for (size_t i = 1; i + 1 < words.size(); ++i) {
        const std::string& word = words[i];
        if (!option.empty())
            option.clear();
        else if (!behind && word == "--")
            behind = true;
        else if (!behind && takes_value(word))
            option = word;
        else if (behind || !word.starts_with("--"))
            given.push_back(word);
    }
    const std::string command = given.empty() ? "" : given[0];
    if (!option.empty()) return ValuesOf(option, command, typed);
    if (!behind && typed.starts_with("--")) {
        const size_t equals = typed.find('=');
        if (equals == std::string::npos) return options(*sub);
        Candidates values =
            ValuesOf(typed.substr(0, equals), command, std::string_view(typed).substr(equals + 1));
        for (Candidate& value : values)
            value.word.insert(0, typed, 0, equals + 1);
        return values;
    }
    if (typed == "-") return options(*sub);
    const std::span<const std::string> rest(given);
    if (sub->name == "send") {
        if (given.empty()) return Calls(typed, true);
        return Fields(command, rest.subspan(1), typed);
    }
    if (sub->name == "watch") {
        if (given.empty()) return Calls(typed, true);
        return given.size() == 1 ? Candidates() : Fields(command, rest.subspan(2), typed);
    }
    if (sub->name == "monitor") return Modules(given, typed);
    if (sub->name == "show" && given.empty()) return Names(typed);
    return {};
}
