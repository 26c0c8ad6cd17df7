// durable_commits.h: two ways to the same durable commit, in turns on one disk.
#ifndef JSR75_PIM_BENCHMARKS_DURABLE_COMMITS_H
#define JSR75_PIM_BENCHMARKS_DURABLE_COMMITS_H

#include <array>
#include <deque>
#include <functional>

struct commit_cost {
    double seconds;     // Until the commit is durable.
    double cpu_seconds; // Of these, what the processor worked.
    int syncs;          // How often the commit waited for the disk.
};

// What the disk is asked for meanwhile, by this program or another, costs whoever waits for it just then. So the two
// commit in the order store, SQLite, SQLite, store, which makes them equal under any steady trend, and each takes its
// costs from there.
class durable_commits {
public:
    enum side { store, sqlite };

    struct way {
        std::function<void()> prepare; // Not measured.
        std::function<void()> commit;
    };

    durable_commits(way of_store, way of_sqlite);

    commit_cost next(side whose);

private:
    void four_commits();

    std::array<way, 2> ways_;
    std::array<std::deque<commit_cost>, 2> costs_;
};

#endif
