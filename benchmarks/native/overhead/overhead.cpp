// Measures what the library adds to the calls that it makes: every native beside the least code that makes the same
// calls. Before that it checks that they are the same. Takes Google Benchmark's options; with --instructions each call
// runs once, for callgrind to count.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <alloca.h>
#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include "cases.h"
#include "fast_jni.h"
#include "fast_platform.h"
#include "journal.h"

static constexpr double HIGHEST_RATIO = 1.25;

// ---- The console of the natives -------------------------------------------------------------------------------------

// Some natives write to standard output. That becomes a file in memory; the report goes to what it was before.
static int console_file = -1;

static FILE* divert_console()
{
    FILE* report = fdopen(dup(STDOUT_FILENO), "w");
    console_file = memfd_create("console", 0);
    if (report == nullptr || console_file < 0 || dup2(console_file, STDOUT_FILENO) < 0) std::abort();
    return report;
}

static std::string take_console()
{
    char text[4096];
    std::fflush(stdout);
    const ssize_t size = pread(console_file, text, sizeof text, 0);
    if (ftruncate(console_file, 0) != 0 || lseek(console_file, 0, SEEK_SET) != 0) std::abort();
    return {text, static_cast<size_t>(std::max<ssize_t>(size, 0))};
}

static void discard_console()
{
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
}

// ---- The check ------------------------------------------------------------------------------------------------------

// Everything that the platform, the hook, the virtual machine, the console and the caller see of a call.
static std::vector<std::string> seen_of(measured_call call)
{
    open_journal();
    const jlong result = call(fast_env());
    std::vector<std::string> seen = close_journal();
    seen.push_back("console " + take_console());
    seen.push_back("result " + std::to_string(result));
    return seen;
}

static void print_difference(const overhead_case& one, const std::vector<std::string>& library,
                             const std::vector<std::string>& minimum)
{
    const auto [left, right] = std::mismatch(library.begin(), library.end(), minimum.begin(), minimum.end());
    std::fprintf(stderr, "%s: after %d calls in common\n  library: %s\n  minimum: %s\n", one.name().c_str(),
                 static_cast<int>(left - library.begin()), left == library.end() ? "nothing" : left->c_str(),
                 right == minimum.end() ? "nothing" : right->c_str());
}

static bool does_the_same(const overhead_case& one)
{
    const auto library = seen_of(one.of_library);
    const auto minimum = seen_of(one.of_minimum);
    if (library == minimum) return true;
    // A commit traces the second of the day, which may have passed in between.
    if (library == seen_of(one.of_minimum)) return true;
    print_difference(one, library, minimum);
    return false;
}

static bool all_do_the_same()
{
    trace_to_journal(true);
    const bool same =
        std::ranges::count_if(overhead_cases(), does_the_same) == static_cast<std::ptrdiff_t>(overhead_cases().size());
    trace_to_journal(false);
    return same;
}

// ---- Times ----------------------------------------------------------------------------------------------------------

// How long a record takes to be copied to the stack depends on how far apart the two lie within their pages. So every
// repetition finds the stack at another place of a page.
static size_t next_stack_offset()
{
    constexpr size_t LINE = 64;
    constexpr size_t LINES = 64;
    constexpr size_t STEP = 37; // Reaches all of them.
    static size_t repetition = 0;
    return ++repetition * STEP % LINES * LINE;
}

static void measure(benchmark::State& state, measured_call call)
{
    benchmark::DoNotOptimize(alloca(next_stack_offset() + 1));
    JNIEnv* env = fast_env();
    for (auto _ : state) benchmark::DoNotOptimize(call(env));
}

// The times of one call in ns, a repetition each.
struct measured_times {
    std::vector<double> all;

    double quantile(double share)
    {
        std::ranges::sort(all);
        return all.empty() ? 0 : all[static_cast<size_t>(share * static_cast<double>(all.size() - 1))];
    }
    double median() { return quantile(0.5); }
    // Half of the repetitions lie within so many percent of the median.
    double spread() { return median() > 0 ? (quantile(0.75) - quantile(0.25)) / median() * 100 : 0; }
};

static const char LIBRARY_SUFFIX[] = "/library";
static const char MINIMUM_SUFFIX[] = "/minimum";

class table_reporter : public benchmark::BenchmarkReporter {
public:
    explicit table_reporter(FILE* report) : report_(report) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times_[run.run_name.function_name].all.push_back(run.GetAdjustedCPUTime());
    }

    void Finalize() override
    {
        int above = 0;
        std::fprintf(report_, "%-52s %10s %10s %7s %14s\n", "", "library", "minimum", "ratio", "spread");
        for (const overhead_case& one : overhead_cases()) {
            measured_times& library = times_[one.name() + LIBRARY_SUFFIX];
            measured_times& minimum = times_[one.name() + MINIMUM_SUFFIX];
            if (library.all.empty() || minimum.all.empty()) continue;
            const double ratio = library.median() / minimum.median();
            if (ratio > HIGHEST_RATIO) ++above;
            std::fprintf(report_, "%-52s %7.1f ns %7.1f ns %7.2f %5.1f%% / %4.1f%%%s\n", one.name().c_str(),
                         library.median(), minimum.median(), ratio, library.spread(), minimum.spread(),
                         ratio > HIGHEST_RATIO ? "  <<" : "");
        }
        std::fprintf(report_, "%d above %.2f\n", above, HIGHEST_RATIO);
        std::fflush(report_);
    }

private:
    FILE* report_;
    std::map<std::string, measured_times> times_;
};

static void register_all()
{
    for (const overhead_case& one : overhead_cases()) {
        benchmark::RegisterBenchmark((one.name() + LIBRARY_SUFFIX).c_str(), measure, one.of_library);
        benchmark::RegisterBenchmark((one.name() + MINIMUM_SUFFIX).c_str(), measure, one.of_minimum);
    }
}

// What holds unless the command line says otherwise.
static std::vector<char*> with_defaults(int argc, char** argv)
{
    static char repetitions[] = "--benchmark_repetitions=21";
    static char min_time[] = "--benchmark_min_time=0.01";
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments = {argv[0], repetitions, min_time, interleaving};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    return arguments;
}

// ---- Instructions ---------------------------------------------------------------------------------------------------

// Runs a call once for callgrind, under `name`; the second time, when everything is loaded and linked.
static void count_instructions(measured_call call, const std::string& name)
{
    JNIEnv* env = fast_env();
    call(env);
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    call(env);
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

static void count_all_instructions()
{
    count_instructions([](JNIEnv*) -> jlong { return 0; }, "nothing");
    for (const overhead_case& one : overhead_cases()) {
        count_instructions(one.of_library, one.name() + LIBRARY_SUFFIX);
        count_instructions(one.of_minimum, one.name() + MINIMUM_SUFFIX);
    }
}

// ---------------------------------------------------------------------------------------------------------------------

int main(int argc, char** argv)
{
    setenv("TZ", "UTC", 1); // Unset, each date conversion asks the file system for the zone.
    FILE* report = divert_console();
    if (!all_do_the_same()) {
        std::fprintf(stderr, "overhead: the natives above and their minimums do not do the same\n");
        return 1;
    }
    discard_console();

    if (argc == 2 && std::strcmp(argv[1], "--instructions") == 0) {
        count_all_instructions();
        return 0;
    }
    std::vector<char*> arguments = with_defaults(argc, argv);
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    register_all();
    table_reporter reporter(report);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
