#include "results.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "bench_folder.h"

// Nothing but the name that the benchmark was registered under.
static benchmark::BenchmarkName plain_name(const benchmark::BenchmarkName& name)
{
    benchmark::BenchmarkName plain;
    plain.function_name = name.function_name;
    return plain;
}

// What waits for the disk is measured by the clock, the rest by the processor's time.
static double seconds_of(const benchmark::BenchmarkReporter::Run& run)
{
    const bool waits = !run.run_name.time_type.empty();
    return (waits ? run.real_accumulated_time : run.cpu_accumulated_time) / static_cast<double>(run.iterations);
}

void results::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        demand(!run.error_occurred, run.error_message.c_str());
        Run& kept = runs_.emplace_back(run);
        kept.run_name = plain_name(run.run_name);
        if (run.run_type != Run::RT_Iteration) continue;

        const std::string& name = run.run_name.function_name;
        const size_t subject = name.find('/') + 1, records = name.find('/', subject) + 1;
        const std::string operation = name.substr(0, subject - 1);
        if (std::ranges::find(operations_, operation) == operations_.end()) operations_.push_back(operation);
        measured_[operation][name.substr(subject, records - subject - 1)][std::stoll(name.substr(records))].push_back(
            seconds_of(run));
    }
}

static double quantile(std::vector<double> times, double share)
{
    std::ranges::sort(times);
    return times[static_cast<size_t>(std::lround(share * static_cast<double>(times.size() - 1)))];
}

static double median(const std::vector<double>& times)
{
    return quantile(times, 0.5);
}

// Half of the repetitions lie within so many percent of the median.
static double spread(const std::vector<double>& times)
{
    return (quantile(times, 0.75) - quantile(times, 0.25)) / median(times) * 100;
}

// The power of the number of records that the times grow with.
template <typename ByRecords>
static double exponent(const ByRecords& times)
{
    const auto& [fewest, shortest] = *times.begin();
    const auto& [most, longest] = *times.rbegin();
    return std::log(median(longest) / median(shortest)) /
           std::log(static_cast<double>(most) / static_cast<double>(fewest));
}

const results::times* results::baseline_of(const std::string& operation, int64_t records) const
{
    const by_subject& subjects = measured_.at(operation);
    const auto baseline = subjects.find(BASELINE);
    if (baseline == subjects.end()) return nullptr;
    const auto found = baseline->second.find(records);
    return found == baseline->second.end() ? nullptr : &found->second;
}

void results::print(FILE* out) const
{
    std::fprintf(out, "%-17s %-8s %8s %14s %7s %12s %10s\n", "operation", "subject", "records", "median us", "spread",
                 "of sqlite's", "exponent");
    for (const std::string& operation : operations_) {
        for (const auto& [subject, sizes] : measured_.at(operation)) {
            for (const auto& [records, all] : sizes) {
                std::fprintf(out, "%-17s %-8s %8lld %14.3f %6.1f%%", operation.c_str(), subject.c_str(),
                             static_cast<long long>(records), median(all) * 1e6, spread(all));
                const times* baseline = baseline_of(operation, records);
                if (baseline != nullptr && subject != BASELINE)
                    std::fprintf(out, " %12.3f", median(all) / median(*baseline));
                else
                    std::fprintf(out, " %12s", "");
                if (sizes.size() > 1 && records == sizes.rbegin()->first) std::fprintf(out, " %10.2f", exponent(sizes));
                std::fprintf(out, "\n");
            }
        }
    }
}

void results::write_json(const std::string& file)
{
    for (const std::string& operation : operations_)
        for (const auto& [subject, sizes] : measured_.at(operation))
            if (sizes.size() > 1) {
                std::string name = "exponent ";
                name.append(operation).append("/").append(subject);
                benchmark::AddCustomContext(name, std::to_string(exponent(sizes)));
            }
    std::ofstream stream(file);
    benchmark::JSONReporter json;
    json.SetOutputStream(&stream);
    json.SetErrorStream(&stream);
    json.ReportContext(Context());
    json.ReportRuns(runs_);
    json.Finalize();
    stream.flush();
    demand(stream.good(), file.c_str());
}
