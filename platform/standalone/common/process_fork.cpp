#include "common/process_fork.h"

#include <pthread.h>

#include <atomic>

namespace pim_store {

static std::atomic<unsigned> generation = 0;

[[maybe_unused]] static const int registered =
    pthread_atfork(nullptr, nullptr, [] { generation.fetch_add(1, std::memory_order_relaxed); });

unsigned fork_generation()
{
    return generation.load(std::memory_order_relaxed);
}

} // namespace pim_store
