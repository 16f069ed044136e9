#include <benchmark/benchmark.h>
#include <stdio.h>

#include <map>
#include <string>
#include <vector>

// One table: each path, and where there is one its plain form and how many times longer that takes.

namespace {

class Table : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                fprintf(stderr, "bench: %s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
                failed = true;
                continue;
            }
            if (run.run_type != Run::RT_Iteration) continue;
            const double ns = run.cpu_accumulated_time / static_cast<double>(run.iterations) * 1e9;
            const std::string name = run.benchmark_name();
            if (name.rfind("plain/", 0) == 0) {
                plain_[name.substr(6)] = ns;
            } else {
                const auto rate = run.counters.find("bytes_per_second");
                rows_.push_back(
                    {name, ns, rate == run.counters.end() ? 0 : rate->second.value / 1e6, run.report_label});
            }
        }
    }
    void Finalize() override {
        printf("%-52s %12s %9s %14s %9s\n", "path", "CPU time, ns", "MB/s", "plain form, ns", "ratio");
        for (const Row& row : rows_) {
            printf("%-52s %12.0f", row.name.c_str(), row.ns);
            if (row.rate != 0)
                printf(" %9.1f", row.rate);
            else
                printf(" %9s", "");
            const auto plain = plain_.find(row.name);
            if (plain != plain_.end()) printf(" %14.0f %9.1f", plain->second, plain->second / row.ns);
            printf("%s%s\n", row.label.empty() ? "" : "  ", row.label.c_str());
        }
    }
    bool failed = false;

  private:
    struct Row {
        std::string name;
        double ns, rate;
        std::string label;
    };
    std::vector<Row> rows_;
    std::map<std::string, double> plain_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return table.failed ? 1 : 0;
}
