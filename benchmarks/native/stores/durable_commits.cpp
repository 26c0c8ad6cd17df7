#include "durable_commits.h"

#include <atomic>
#include <chrono>
#include <ctime>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

// ---- Waiting for the disk -------------------------------------------------------------------------------------------

// SQLite's calls of fsync() and fdatasync(), whoever uses it, end here. That both sides wait equally often shows in the
// results.
static std::atomic<int> sync_count = 0;

extern "C" int counted_fsync(int file) __asm__("fsync");
extern "C" int counted_fdatasync(int file) __asm__("fdatasync");

int counted_fsync(int file)
{
    ++sync_count;
    return static_cast<int>(syscall(SYS_fsync, file));
}

int counted_fdatasync(int file)
{
    ++sync_count;
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

// ---------------------------------------------------------------------------------------------------------------------

static double cpu_seconds()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

static commit_cost cost_of(const durable_commits::way& way)
{
    using clock = std::chrono::steady_clock;
    way.prepare();
    const int syncs = sync_count;
    const double cpu = cpu_seconds();
    const auto start = clock::now();
    way.commit();
    const std::chrono::duration<double> passed = clock::now() - start;
    return {passed.count(), cpu_seconds() - cpu, sync_count - syncs};
}

durable_commits::durable_commits(way of_store, way of_sqlite) : ways_{std::move(of_store), std::move(of_sqlite)}
{
    // The first commits of a process do more: they look the file through and prepare their statements.
    four_commits();
    for (auto& costs : costs_) costs.clear();
}

void durable_commits::four_commits()
{
    for (const side turn : {store, sqlite, sqlite, store}) costs_[turn].push_back(cost_of(ways_[turn]));
}

commit_cost durable_commits::next(side whose)
{
    if (costs_[whose].empty()) four_commits();
    const commit_cost cost = costs_[whose].front();
    costs_[whose].pop_front();
    return cost;
}
