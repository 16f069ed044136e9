#include "tools/modemsim/scenario.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <utility>

#include "tools/modemsim/words.h"

namespace modemsim {

namespace {

constexpr std::array<std::string_view, 12> kTopWords = {
    "include", "echo", "latency", "pace", "pieces", "clock", "on", "report", "use", "seed", "do", "fault"};
constexpr std::array<std::string_view, 13> kBodyWords = {"|",     "send",   "repeat", "wait",  "pieces",
                                                         "echo",  "prompt", "silent", "until", "unplug",
                                                         "modem", "do",     "fault"};

bool IsOneOf(std::span<const std::string_view> words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// What stands under one "on" or "report".
struct Block {
    Place place;
    bool report = false;
    std::size_t index = 0;  // of the group or report
    std::vector<Step> steps;
    std::vector<Pattern> until;
    std::size_t bytes = 0;
    bool fresh = true;    // nothing was sent yet, or a pause came after it
    bool broken = false;  // the line break in front of the next line has been sent
    bool silent = false;
    bool prompt = false;
    bool unplug = false;
    bool modem = false;
    bool failed = false;  // a line of it was refused: that it is empty need not be told too
};

class Parser {
  public:
    Parser(ParseResult& result, const FileReader& reader) : result_(result), reader_(reader) {}

    void File(const std::string& name, std::string_view text, std::size_t depth);
    // After the last file: whether what it says can be done.
    void CheckModem();

  private:
    bool Fail(std::string reason);
    bool CheckBytes(std::string_view line);
    void Line(std::string_view line, std::size_t depth);
    bool TopLine(std::string_view word, Words words, std::size_t depth);
    bool Setting(std::string_view word, Words words);
    bool Include(Words words, std::size_t depth);
    bool On(Words words);
    bool ReportHead(Words words);
    bool BodyLine(std::string_view line);
    bool BodyWord(std::string_view word, Words words);
    bool AddText(std::string_view text, std::uint64_t times = 1);
    bool AddFramed(std::string_view text);
    void AddStep(Step step) { block_->steps.push_back(std::move(step)); }
    void CloseBlock();
    bool NothingMore(const Words& words);
    bool ReadSwitch(Words& words, bool& on);
    bool TakePieces(Words& words, Pieces& pieces);
    bool ReadPattern(std::string_view text, std::optional<Pattern>& pattern);
    bool TakeOrder(std::string_view word, const Words& words, Order& order);
    void NeedModem(const std::string& what);

    ParseResult& result_;
    const FileReader& reader_;
    std::optional<Block> block_;
    bool skip_body_ = false;  // the head of the body was refused: its lines would only bring follow-up errors
    bool rules_begun_ = false;  // in the file at hand
    Place here_;
    std::vector<std::pair<Place, std::string>> need_modem_;     // what cannot be done without "use modem"
    std::map<std::string, std::size_t, std::less<>> settings_;  // of the file at hand, with their lines
};

bool Parser::Fail(std::string reason) {
    if (result_.problems.size() < kMaxProblems)
        result_.problems.push_back({result_.scenario.files[here_.file], here_.line, std::move(reason)});
    return false;
}

void Parser::File(const std::string& name, std::string_view text, std::size_t depth) {
    const Place outer = here_;
    auto outer_settings = std::exchange(settings_, {});
    here_ = {result_.scenario.files.size(), 0};
    result_.scenario.files.push_back(name);
    rules_begun_ = false;
    if (text.size() > kMaxScenarioBytes) {
        Fail("the file is longer than " + std::to_string(kMaxScenarioBytes) + " bytes");
        text = {};
    }
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        ++here_.line;
        if (CheckBytes(line))
            Line(line, depth);
        else if (block_)
            block_->failed = true;
    }
    CloseBlock();
    skip_body_ = false;
    rules_begun_ = false;
    settings_ = std::move(outer_settings);
    here_ = outer;
}

bool Parser::CheckBytes(std::string_view line) {
    if (line.size() > kMaxScenarioLine)
        return Fail("the line is longer than " + std::to_string(kMaxScenarioLine) + " characters");
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte == 0) return Fail("the line holds a NUL byte; send \"\\x00\" sends one");
        if ((byte < 0x20 && c != '\t') || byte == 0x7F)
            return Fail("the line holds the control character " + std::to_string(byte) +
                        "; send \"\\xHH\" sends one");
    }
    return true;
}

void Parser::Line(std::string_view line, std::size_t depth) {
    Words words(line);
    if (words.AtEnd() || words.Peek().front() == '#') return;
    if (line.front() == ' ' || line.front() == '\t') {
        if (skip_body_) return;
        if (!block_) {
            Fail("the line is indented, but no 'on' or 'report' stands above it");
            return;
        }
        if (!BodyLine(line)) block_->failed = true;
        return;
    }
    const std::string_view word = words.Next();
    if (!IsOneOf(kTopWords, word) && (word.front() == '|' || IsOneOf(kBodyWords, word))) {
        if (block_) block_->failed = true;
        Fail((word.front() == '|' ? "an answer line" : Quoted(word)) +
             " must be indented below its 'on' or 'report'");
        return;
    }
    CloseBlock();
    skip_body_ = !TopLine(word, words, depth);
}

bool Parser::TopLine(std::string_view word, Words words, std::size_t depth) {
    if (word == "on") return On(words);
    if (word == "report") return ReportHead(words);
    if (word == "include") return Include(words, depth);
    if (word == "do" || word == "fault") {
        rules_begun_ = true;
        Order order;
        if (!TakeOrder(word, words, order)) return false;
        result_.scenario.orders.push_back(std::move(order));
        return true;
    }
    if (IsOneOf(kTopWords, word)) return Setting(word, words);
    return Fail(UnknownWord(word, kTopWords));
}

bool Parser::NothingMore(const Words& words) {
    if (words.AtEnd()) return true;
    return Fail(Quoted(words.Rest()) + " is too much on this line");
}

bool Parser::ReadSwitch(Words& words, bool& on) {
    const std::string_view word = words.Next();
    if (word != "on" && word != "off") return Fail("'on' or 'off' is missing");
    on = word == "on";
    return NothingMore(words);
}

bool Parser::TakePieces(Words& words, Pieces& pieces) {
    std::string reason;
    const auto read = ReadPieces(words, reason);
    if (!read) return Fail(reason);
    pieces = *read;
    return NothingMore(words);
}

bool Parser::ReadPattern(std::string_view text, std::optional<Pattern>& pattern) {
    if (text.size() > kMaxPattern)
        return Fail("the command line is longer than " + std::to_string(kMaxPattern) + " characters");
    std::string reason;
    pattern = Pattern::Compile(text, reason);
    return pattern ? true : Fail(reason);
}

// "do ORDER", or "fault ..", which is an order itself.
bool Parser::TakeOrder(std::string_view word, const Words& words, Order& order) {
    std::string reason;
    const std::string text = (word == "fault" ? "fault " : "") + std::string(words.Rest());
    const auto read = ReadOrder(text, reason);
    if (!read) return Fail(reason);
    if (!FitsScenario(read->kind))
        return Fail(Quoted(text) + " is for the control socket, not for a scenario");
    order = *read;
    if (NeedsModem(order.kind)) NeedModem(Quoted(Words(text).Peek()));
    return true;
}

// Whether it is there is known only when all has been read.
void Parser::NeedModem(const std::string& what) {
    need_modem_.emplace_back(here_, what);
}

void Parser::CheckModem() {
    if (result_.scenario.use_modem) return;
    for (const auto& [place, what] : need_modem_) {
        here_ = place;
        Fail(what + " needs the modem with a memory: the scenario must say 'use modem'");
    }
}

bool Parser::Setting(std::string_view word, Words words) {
    const auto [before, first] = settings_.emplace(word, here_.line);
    if (!first) return Fail(Quoted(word) + " was already set in line " + std::to_string(before->second));
    Scenario& scenario = result_.scenario;
    std::string reason;
    if (word == "echo") return ReadSwitch(words, scenario.echo);
    if (word == "pieces") return TakePieces(words, scenario.pieces);
    if (word == "latency") {
        const auto time = ReadTime(words.Next(), reason);
        if (!time) return Fail(reason);
        scenario.latency = *time;
        return NothingMore(words);
    }
    if (word == "pace") {
        const auto pace = ReadNumber(words.Next(), 1, kMaxPace, reason);
        if (!pace) return Fail(reason);
        scenario.pace = *pace;
        return NothingMore(words);
    }
    if (word == "use") {
        if (words.Next() != "modem") return Fail("'modem' is missing: there is nothing else to use");
        scenario.use_modem = true;
        return NothingMore(words);
    }
    if (word == "seed") {
        const auto seed = ReadNumber(words.Next(), 0, kMaxSeed, reason);
        if (!seed) return Fail(reason);
        scenario.seed = *seed;
        return NothingMore(words);
    }
    const std::string_view clock = words.Next();
    if (clock != "start" && clock != "first-line") return Fail("'start' or 'first-line' is missing");
    scenario.clock_at_first_line = clock == "first-line";
    return NothingMore(words);
}

bool Parser::Include(Words words, std::size_t depth) {
    if (rules_begun_ || !settings_.empty())
        return Fail(
            "'include' stands before settings, rules and reports, so that they can replace what it brings");
    const std::string file(words.Rest());
    if (file.empty()) return Fail("a file name is missing");
    if (depth + 1 >= kMaxIncludeDepth)
        return Fail("files include each other more than " + std::to_string(kMaxIncludeDepth) + " deep");
    if (result_.scenario.files.size() == kMaxFiles)
        return Fail("more than " + std::to_string(kMaxFiles) + " files");
    const std::string& outer = result_.scenario.files[here_.file];
    const std::size_t slash = outer.rfind('/');
    const std::string path =
        file.front() == '/' || slash == std::string::npos ? file : outer.substr(0, slash + 1) + file;
    std::string reason;
    const auto text = reader_(path, reason);
    if (!text) return Fail("cannot include " + path + ": " + reason);
    File(path, *text, depth + 1);
    return true;
}

bool Parser::On(Words words) {
    rules_begun_ = true;
    std::optional<Pattern> pattern;
    if (!ReadPattern(words.Rest(), pattern)) return false;
    if (result_.scenario.RuleCount() == kMaxRules)
        return Fail("more than " + std::to_string(kMaxRules) + " rules");
    auto& groups = result_.scenario.groups;
    auto group = std::find_if(groups.begin(), groups.end(),
                              [&](const RuleGroup& g) { return g.pattern.Same(*pattern); });
    if (group == groups.end()) group = groups.insert(groups.end(), RuleGroup{*pattern, {}});
    // What a file says itself replaces what it included.
    if (!group->rules.empty() && group->rules.front().place.file != here_.file) group->rules.clear();
    group->rules.push_back({here_, {}});
    block_.emplace();
    block_->place = here_;
    block_->index = static_cast<std::size_t>(group - groups.begin());
    return true;
}

bool Parser::ReportHead(Words words) {
    rules_begun_ = true;
    if (result_.scenario.reports.size() == kMaxReports)
        return Fail("more than " + std::to_string(kMaxReports) + " reports");
    Report report;
    report.place = here_;
    std::string reason;
    bool timed = false;
    if (words.Peek() == "at" ||
        (!words.AtEnd() && words.Peek().front() >= '0' && words.Peek().front() <= '9')) {
        if (words.Peek() == "at") words.Next();
        const auto delay = ReadTime(words.Next(), reason);
        if (!delay) return Fail(reason);
        report.delay = *delay;
        timed = true;
    }
    if (words.Peek() == "every") {
        words.Next();
        const auto every = ReadTime(words.Next(), reason);
        if (!every) return Fail(reason);
        if (every->count() == 0) return Fail("'every' needs a time above 0");
        report.every = *every;
        if (!timed) report.delay = *every;
        timed = true;
        if (words.Peek() == "times") {
            words.Next();
            const auto times = ReadNumber(words.Next(), 1, kMaxRepeat, reason);
            if (!times) return Fail(reason);
            report.times = *times;
        }
    }
    if (words.Peek() == "after") {
        words.Next();
        if (!ReadPattern(words.Rest(), report.after)) return false;
    } else if (!words.AtEnd()) {
        constexpr std::array<std::string_view, 4> kWords = {"at", "every", "times", "after"};
        if (words.Peek() == "times") return Fail("'times' needs 'every TIME' in front");
        return Fail(UnknownWord(words.Peek(), kWords));
    } else if (!timed) {
        return Fail("a report needs a time: 'at TIME', 'every TIME' or 'after LINE'");
    }
    auto& reports = result_.scenario.reports;
    // As with rules, what a file says itself replaces what it included.
    if (report.after) {
        std::erase_if(reports, [&](const Report& r) {
            return r.after && r.place.file != here_.file && r.after->Same(*report.after);
        });
    }
    reports.push_back(std::move(report));
    block_.emplace();
    block_->place = here_;
    block_->report = true;
    block_->index = reports.size() - 1;
    return true;
}

bool Parser::BodyLine(std::string_view line) {
    const std::size_t start = line.find_first_not_of(" \t");
    line.remove_prefix(start);
    if (block_->unplug) return Fail("nothing can follow 'unplug'");
    if (block_->modem) return Fail("nothing can follow 'modem'");
    if (block_->silent) return Fail("'silent' stands alone in its rule");
    if (line.front() == '|') {
        line.remove_prefix(line.size() > 1 && line[1] == ' ' ? 2 : 1);
        return AddFramed(line);
    }
    Words words(line);
    const std::string_view word = words.Next();
    return BodyWord(word, words);
}

bool Parser::BodyWord(std::string_view word, Words words) {
    std::string reason;
    Step step;
    if (word == "send" || word == "repeat") {
        std::uint64_t times = 1;
        if (word == "repeat") {
            const auto count = ReadNumber(words.Next(), 1, kMaxRepeat, reason);
            if (!count) return Fail(reason);
            times = *count;
        }
        const auto text = ReadQuoted(words.Rest(), reason);
        if (!text) return Fail(reason);
        if (text->empty()) return Fail("the text is empty");
        block_->fresh = false;
        block_->broken = false;
        return AddText(*text, times);
    }
    if (word == "wait") {
        const auto time = ReadTime(words.Next(), reason);
        if (!time) return Fail(reason);
        step.kind = Step::Kind::Wait;
        block_->fresh = true;
        step.wait = *time;
    } else if (word == "pieces") {
        step.kind = Step::Kind::Pieces;
        if (!TakePieces(words, step.pieces)) return false;
        AddStep(std::move(step));
        return true;
    } else if (word == "echo") {
        step.kind = Step::Kind::Echo;
        if (!ReadSwitch(words, step.on)) return false;
        AddStep(std::move(step));
        return true;
    } else if (word == "prompt") {
        if (block_->report) return Fail("'prompt' belongs to a rule: a report waits for nobody");
        if (block_->prompt) return Fail("a second 'prompt' in one rule");
        block_->prompt = true;
        block_->fresh = true;
        step.kind = Step::Kind::Prompt;
    } else if (word == "silent") {
        if (block_->report) return Fail("'silent' belongs to a rule");
        if (!block_->steps.empty()) return Fail("'silent' stands alone in its rule");
        block_->silent = true;
        return NothingMore(words);
    } else if (word == "until") {
        if (!block_->report) return Fail("'until' belongs to a report");
        std::optional<Pattern> pattern;
        if (!ReadPattern(words.Rest(), pattern)) return false;
        block_->until.push_back(*pattern);
        return true;
    } else if (word == "modem") {
        if (block_->report) return Fail("'modem' belongs to a rule: it answers a line");
        block_->modem = true;
        step.kind = Step::Kind::Modem;
        NeedModem("'modem'");
    } else if (word == "do" || word == "fault" || (word == "unplug" && !words.AtEnd())) {
        const std::string order = (word == "do" ? "" : std::string(word) + " ") + std::string(words.Rest());
        step.kind = Step::Kind::Order;
        if (!TakeOrder("do", Words(order), step.order)) return false;
        AddStep(std::move(step));
        return true;
    } else if (word == "unplug") {
        block_->unplug = true;
        step.kind = Step::Kind::Unplug;
    } else if (IsOneOf(kTopWords, word)) {
        return Fail(Quoted(word) + " must start at the beginning of its line");
    } else {
        return Fail(UnknownWord(word, kBodyWords));
    }
    AddStep(std::move(step));
    return NothingMore(words);
}

bool Parser::AddText(std::string_view text, std::uint64_t times) {
    if (text.size() > kMaxAnswer || times > (kMaxAnswer - block_->bytes) / text.size())
        return Fail("the answer is longer than " + std::to_string(kMaxAnswer) + " bytes");
    block_->bytes += text.size() * static_cast<std::size_t>(times);
    // One step for all that goes out without a pause, so that a report never comes in the middle of it.
    if (block_->steps.empty() || block_->steps.back().kind != Step::Kind::Text) AddStep(Step());
    std::string& out = block_->steps.back().text;
    for (; times > 0; --times)
        out += text;
    return true;
}

bool Parser::AddFramed(std::string_view text) {
    const bool own_frame = block_->fresh || HasOwnBreak(text, block_->report);
    std::string framed;
    if (own_frame && !block_->broken && !text.empty()) framed = "\r\n";
    framed += text;
    framed += "\r\n";
    block_->fresh = false;
    block_->broken = text.empty();
    return AddText(framed);
}

void Parser::CloseBlock() {
    if (!block_) return;
    Block block = std::move(*block_);
    block_.reset();
    const Place outer = std::exchange(here_, block.place);
    if (block.steps.empty() && !block.silent && !block.failed) {
        Fail(block.report ? "the report has no text"
                          : "the rule has no answer; 'silent' says so when none is meant");
    }
    here_ = outer;
    if (block.report) {
        Report& report = result_.scenario.reports[block.index];
        report.steps = std::move(block.steps);
        report.until = std::move(block.until);
    } else {
        result_.scenario.groups[block.index].rules.back().steps = std::move(block.steps);
    }
}

}  // namespace

std::size_t Scenario::RuleCount() const {
    std::size_t count = 0;
    for (const RuleGroup& group : groups)
        count += group.rules.size();
    return count;
}

std::string Scenario::Describe(const Place& place) const {
    const std::string& file = files[place.file];
    return file.substr(file.rfind('/') + 1) + ":" + std::to_string(place.line);
}

std::string Problem::Text() const {
    return file + (line == 0 ? std::string() : ":" + std::to_string(line)) + ": " + reason;
}

bool HasOwnBreak(std::string_view line, bool in_report) {
    constexpr std::string_view kReportSigns = "+^$%";
    return IsResultCode(line) ||
           (in_report && !line.empty() && kReportSigns.find(line.front()) != std::string_view::npos);
}

bool IsResultCode(std::string_view line) {
    constexpr std::array<std::string_view, 8> kWhole = {"OK",         "ERROR",     "BUSY",        "RING",
                                                        "NO CARRIER", "NO ANSWER", "NO DIALTONE", "CONNECT"};
    constexpr std::array<std::string_view, 5> kBegin = {"+CME ERROR:", "+CMS ERROR:", "CONNECT ", "VOICE ",
                                                        "COMMAND NOT SUPPORT"};
    return std::find(kWhole.begin(), kWhole.end(), line) != kWhole.end() ||
           std::any_of(kBegin.begin(), kBegin.end(),
                       [&](std::string_view begin) { return line.starts_with(begin); });
}

std::optional<std::string> ReadRegularFile(const std::string& path, std::size_t max, std::string& reason) {
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) {
        reason = std::strerror(errno);
        return std::nullopt;
    }
    // Anything else might never end, or block.
    if (!S_ISREG(info.st_mode)) {
        reason = "not a file";
        return std::nullopt;
    }
    if (static_cast<std::uint64_t>(info.st_size) > max) {
        reason = "longer than " + std::to_string(max) + " bytes";
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file.is_open() || file.bad()) {
        reason = "cannot be read";
        return std::nullopt;
    }
    return text;
}

std::optional<std::string> ReadScenarioFile(const std::string& path, std::string& reason) {
    return ReadRegularFile(path, kMaxScenarioBytes, reason);
}

ParseResult ParseScenario(const std::string& name, std::string_view text, const FileReader& reader) {
    ParseResult result;
    Parser parser(result, reader);
    parser.File(name, text, 0);
    parser.CheckModem();
    return result;
}

ParseResult LoadScenario(const std::string& path) {
    std::string reason;
    const auto text = ReadScenarioFile(path, reason);
    if (!text) {
        ParseResult result;
        result.problems.push_back({path, 0, reason});
        return result;
    }
    return ParseScenario(path, *text);
}

}  // namespace modemsim
