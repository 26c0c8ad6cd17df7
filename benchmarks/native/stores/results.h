// results.h: what was measured, as a table and as Google Benchmark's JSON.
#ifndef JSR75_PIM_BENCHMARKS_RESULTS_H
#define JSR75_PIM_BENCHMARKS_RESULTS_H

#include <cstdint>
#include <cstdio>
#include <map>
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

    // With how the times grow from the least number of records to the greatest as context.
    void write_json(const std::string& file);

private:
    using times = std::vector<double>; // In seconds, a repetition each.
    using by_records = std::map<int64_t, times>;
    using by_subject = std::map<std::string, by_records>;

    const times* baseline_of(const std::string& operation, int64_t records) const;

    std::vector<Run> runs_;
    std::vector<std::string> operations_; // In the order of their first results.
    std::map<std::string, by_subject> measured_;
};

#endif
