// results.h: what was measured, as a table and as Google Benchmark's JSON.
#ifndef JSR75_PIM_BENCHMARKS_RESULTS_H
#define JSR75_PIM_BENCHMARKS_RESULTS_H

#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

// Gathers several rounds of benchmarks, one for each number of records. Their names are
// <operation>/<subject>/<records>.
class results : public benchmark::BenchmarkReporter {
public:
    static constexpr const char* BASELINE = "sqlite";

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    void print(FILE* out) const;

    // With what the table has beside the times as context.
    void write_json(const std::string& file);

private:
    using times = std::vector<double>; // In seconds, a repetition each.
    using by_records = std::map<int64_t, times>;
    using by_subject = std::map<std::string, by_records>;

    // The time as a multiple of the baseline's; nothing without one.
    std::optional<double> of_baseline(const std::string& operation, int64_t records, const times& all) const;
    void add_context(const std::string& operation, const std::string& subject, const by_records& sizes) const;

    std::vector<Run> runs_;
    std::vector<std::string> operations_; // In the order of their first results.
    std::map<std::string, by_subject> measured_;
    std::set<std::string> in_turns_; // Operations whose subjects took turns in each repetition.
};

#endif
