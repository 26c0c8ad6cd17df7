#include "results.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>

#include "bench_folder.h"

// Nothing but the name that the benchmark was registered under.
static benchmark::BenchmarkName plain_name(const benchmark::BenchmarkName& name)
{
    benchmark::BenchmarkName plain;
    plain.function_name = name.function_name;
    return plain;
}

static bool waits_for_disk(const benchmark::BenchmarkReporter::Run& run)
{
    return !run.run_name.time_type.empty();
}

// What waits for the disk is measured by the clock, the rest by the processor's time.
static double seconds_of(const benchmark::BenchmarkReporter::Run& run)
{
    return (waits_for_disk(run) ? run.real_accumulated_time : run.cpu_accumulated_time) /
           static_cast<double>(run.iterations);
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
        if (waits_for_disk(run)) in_turns_.insert(operation);
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

std::optional<double> results::of_baseline(const std::string& operation, int64_t records, const times& all) const
{
    const by_subject& subjects = measured_.at(operation);
    const auto baseline = subjects.find(BASELINE);
    if (baseline == subjects.end() || !baseline->second.contains(records)) return std::nullopt;
    const times& others = baseline->second.at(records);
    if (&others == &all) return std::nullopt;
    if (!in_turns_.contains(operation) || others.size() != all.size()) return median(all) / median(others);

    // The disk may become faster or slower from one repetition to the next, for both sides.
    times ratios(all.size());
    std::ranges::transform(all, others, ratios.begin(), std::divides());
    return median(ratios);
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
                if (const auto ratio = of_baseline(operation, records, all))
                    std::fprintf(out, " %12.3f", *ratio);
                else
                    std::fprintf(out, " %12s", "");
                if (sizes.size() > 1 && records == sizes.rbegin()->first) std::fprintf(out, " %10.2f", exponent(sizes));
                std::fprintf(out, "\n");
            }
        }
    }
}

void results::add_context(const std::string& operation, const std::string& subject, const by_records& sizes) const
{
    const std::string name = operation + '/' + subject;
    if (sizes.size() > 1) benchmark::AddCustomContext("exponent " + name, std::to_string(exponent(sizes)));
    for (const auto& [records, all] : sizes)
        if (const auto ratio = of_baseline(operation, records, all))
            benchmark::AddCustomContext("of sqlite's " + name + '/' + std::to_string(records), std::to_string(*ratio));
}

void results::write_json(const std::string& file)
{
    for (const std::string& operation : operations_)
        for (const auto& [subject, sizes] : measured_.at(operation)) add_context(operation, subject, sizes);
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
