#include "tools/atctl/find_command.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "commands/catalog.h"
#include "tools/shared/exit_status.h"
#include "tools/shared/suggest.h"
#include "tools/shared/text.h"

namespace {

struct Spelling {
    uint8_t type;
    const char* name;
    const char* suffix;
};
// "=?" before its own ending "?".
constexpr Spelling kSpellings[] = {{AT_CMD_TYPE_TEST, "test", "=?"},
                                   {AT_CMD_TYPE_READ, "read", "?"},
                                   {AT_CMD_TYPE_SET, "set", "="},
                                   {AT_CMD_TYPE_EXEC, "execute", ""}};

std::string_view WithoutSign(std::string_view name) {
    if (name.size() > 1 && std::string_view("+^$%!").find(name[0]) != std::string_view::npos)
        name.remove_prefix(1);
    return name;
}

// Null when no name fits; Misuse when several do.
const Row* Lookup(std::string_view name) {
    const std::string lower = Lower(name);
    std::vector<const Row*> found;
    const auto take = [&](auto&& fits) {
        for (const Row& row : Commands()) {
            const bool known = std::any_of(found.begin(), found.end(),
                                           [&](const Row* other) { return SameText(row.name, other->name); });
            if (!known && fits(row)) found.push_back(&row);
        }
        return !found.empty();
    };
    if (!take([&](const Row& row) { return name == row.name; }) &&
        !take([&](const Row& row) { return lower == Lower(CommandName(row)); }))
        take([&](const Row& row) { return !lower.empty() && lower == Lower(WithoutSign(row.name)); });
    if (found.size() > 1) {
        std::vector<std::string> names;
        for (const Row* row : found)
            names.emplace_back(row->name);
        throw Misuse("\"" + Printable(name) + "\" may be " + Join(names, " or ") + "; write its sign, too");
    }
    return found.empty() ? nullptr : found[0];
}

// The parameters of a line, as arguments of their own.
std::vector<std::string> SplitParameters(const Row& row, std::string_view text) {
    std::vector<std::string> parts(1);
    if (row.encode.kind == EncodeKind::copy) return {std::string(text)};
    // Where the server prints the quotation marks, they are not part of the value.
    const bool quotes_are_printed =
        std::any_of(std::begin(row.encode.forms), std::end(row.encode.forms), [](const Form& form) {
            return form.format != nullptr &&
                   std::string_view(form.format).find('"') != std::string_view::npos;
        });
    bool quoted = false;
    for (const char c : text) {
        if (c == '"') quoted = !quoted;
        if (c == ',' && !quoted)
            parts.emplace_back();
        else if (c != '"' || !quotes_are_printed)
            parts.back() += c;
    }
    return parts;
}

// The right call for AT syntax without its "AT"; empty when it begins with no command.
std::string CallFor(std::string_view syntax) {
    const Row* best = nullptr;
    std::string best_call;
    for (const Row& row : Commands()) {
        const std::string_view name = row.name;
        if (best != nullptr && name.size() <= std::string_view(best->name).size()) continue;
        if (Lower(syntax.substr(0, name.size())) != Lower(name)) continue;
        const std::string_view rest = syntax.substr(name.size());
        std::string call;
        for (const Spelling& form : kSpellings)
            if (rest == form.suffix) call = ShellWord(std::string(name) + form.suffix);
        if (call.empty() && !name.empty() && rest.starts_with('=')) {
            call = ShellWord(std::string(name) + "=");
            for (const std::string& value : SplitParameters(row, rest.substr(1)))
                call += " " + ShellWord(value);
        }
        const bool number =
            !rest.empty() && std::string_view("0123456789+*#").find(rest[0]) != std::string_view::npos;
        if (call.empty() && row.encode.kind == EncodeKind::dial && number)
            call = std::string(name) + " " + ShellWord(rest.substr(0, rest.find(';')));
        if (call.empty()) continue;
        best = &row;
        best_call = "atctl send " + call;
    }
    return best_call;
}

[[noreturn]] void RefuseUnknown(std::string_view name) {
    std::vector<std::pair<size_t, std::string>> near;
    const std::string_view bare = WithoutSign(name);
    std::vector<std::string> bare_names;
    for (const Row& row : Commands())
        bare_names.emplace_back(WithoutSign(row.name));
    // Those with the sign that was typed stand first.
    for (const std::string& found : Nearest(bare, bare_names))
        for (const Row& row : Commands())
            if (WithoutSign(row.name) == found)
                near.emplace_back(
                    EditDistance(bare, found) + (bare != name && name[0] != row.name[0] ? 1 : 0), row.name);
    std::stable_sort(near.begin(), near.end(), [](auto& a, auto& b) { return a.first < b.first; });
    std::vector<std::string> names;
    for (const auto& [distance, other] : near)
        if (names.size() < 3 && std::find(names.begin(), names.end(), other) == names.end())
            names.push_back(other);
    throw Misuse("there is no command \"" + Printable(name) + "\"" +
                 (names.empty() ? "; atctl list shows them all" : DidYouMean(names)));
}

// Refuses what is AT syntax rather than a name.
void RefuseSyntax(std::string_view text) {
    if (Lower(text.substr(0, 2)) == "at") {
        const std::string call = CallFor(text.substr(2));
        if (!call.empty())
            throw Misuse("modules never send AT syntax, they fill records; names stand without AT: " + call);
    }
    if (text.empty()) return;
    const std::string call = CallFor(text);
    if (!call.empty())
        throw Misuse("modules never send AT syntax, they fill records; values stand one by one: " + call);
}

}  // namespace

std::string CommandName(const Row& row) {
    return *row.name == '\0' ? "AT" : row.name;
}

std::string CallName(const Call& call) {
    return CommandName(*call.row) + Suffix(call.type);
}

std::span<const Row> Commands() {
    return kCatalog;
}

std::vector<const Row*> CommandsWith(std::string_view text) {
    const std::string lower = Lower(text);
    const auto has = [&](std::string_view words) { return Lower(words).find(lower) != std::string::npos; };
    std::vector<const Row*> rows;
    for (const Row& row : Commands())
        if (has(CommandName(row)) || has(row.title)) rows.push_back(&row);
    if (rows.empty())
        throw Misuse("no command has \"" + Printable(text) +
                     "\" in its name or title; atctl list shows them all");
    return rows;
}

const char* TypeName(uint8_t type) {
    for (const Spelling& form : kSpellings)
        if (form.type == type) return form.name;
    return "unknown";
}

const char* Suffix(uint8_t type) {
    for (const Spelling& form : kSpellings)
        if (form.type == type) return form.suffix;
    return "";
}

const Row& FindCommand(std::string_view name) {
    if (const Row* row = Lookup(name)) return *row;
    // A form was written where a name was asked for.
    for (const Spelling& form : kSpellings)
        if (*form.suffix != '\0' && name.ends_with(form.suffix))
            if (const Row* row = Lookup(name.substr(0, name.size() - std::string_view(form.suffix).size())))
                return *row;
    if (Lower(name.substr(0, 2)) == "at")
        if (const Row* row = Lookup(name.substr(2)))
            throw Misuse("names stand without AT: atctl show " + ShellWord(row->name));
    RefuseUnknown(name);
}

Call FindCall(std::string_view text) {
    if (const Row* row = Lookup(text)) return {row, AT_CMD_TYPE_EXEC};
    std::string_view name = text;
    for (const Spelling& form : kSpellings) {
        if (*form.suffix == '\0' || !text.ends_with(form.suffix)) continue;
        name = text.substr(0, text.size() - std::string_view(form.suffix).size());
        if (const Row* row = Lookup(name)) return {row, form.type};
        break;
    }
    RefuseSyntax(text);
    RefuseUnknown(name);
}

std::string CallInstead(std::string_view text) {
    if (text.empty()) return {};
    try {
        if (const Row* row = Lookup(text)) return "atctl send " + ShellWord(CommandName(*row));
    } catch (const Misuse&) {
        return {};
    }
    if (Lower(text.substr(0, 2)) == "at")
        if (const std::string call = CallFor(text.substr(2)); !call.empty()) return call;
    return CallFor(text);
}

void RefuseRaw(const std::vector<std::string>& words) {
    std::string reason = "nothing is sent raw: modules never send AT syntax, they fill records; ";
    const std::string text = Join(words, " ");
    if (text.empty())
        throw Misuse(reason + "atctl send COMMAND [FIELD...] fills one, atctl show COMMAND tells its fields");
    const std::string call = CallInstead(text);
    if (!call.empty()) throw Misuse(reason + "type: " + call);
    throw Misuse(reason + "and there is no command for \"" + Printable(text) +
                 "\" (atctl list shows those there are)");
}
