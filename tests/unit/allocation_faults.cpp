#include "allocation_faults.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <set>

#include "fake_platform.h"
#include "pimutil.h"

// The linker's --wrap makes these names.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
int32_t __real_native_function_initialize(int32_t listtype, org_full_record* record, int32_t* error);

void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* block, size_t size);
char* __wrap_strdup(const char* text);
void __wrap_free(void* block);
int32_t __wrap_native_function_initialize(int32_t listtype, org_full_record* record, int32_t* error);
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace {

// The containers take their memory through operator new, which the linker's --wrap does not reach.
struct heap_state {
    std::mutex mutex;
    std::set<void*> blocks;
    std::vector<size_t> sizes;
    std::set<size_t> failing_sizes;
    int until_failure = 0; // 0: none is going to fail.
    bool failed = false;
    std::map<int32_t, int32_t> refused_connections;
};

// Never destroyed: free() is called to the very end of the process.
heap_state& heap()
{
    static auto* state = new heap_state;
    return *state;
}

// A block of no bytes may be null, and here it always is.
bool should_fail(size_t size)
{
    if (size == 0) return true;
    heap_state& state = heap();
    const std::lock_guard lock(state.mutex);
    state.sizes.push_back(size);
    const bool counted_down = state.until_failure > 0 && --state.until_failure == 0;
    const bool fails = counted_down || state.failing_sizes.contains(size);
    state.failed = state.failed || fails;
    return fails;
}

void* tracked(void* block)
{
    heap_state& state = heap();
    const std::lock_guard lock(state.mutex);
    if (block != nullptr) state.blocks.insert(block);
    return block;
}

void forget(void* block)
{
    heap_state& state = heap();
    const std::lock_guard lock(state.mutex);
    state.blocks.erase(block);
}

} // namespace

void* __wrap_malloc(size_t size)
{
    return should_fail(size) ? nullptr : tracked(__real_malloc(size));
}

void* __wrap_calloc(size_t count, size_t size)
{
    return should_fail(count * size) ? nullptr : tracked(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, size_t size)
{
    if (should_fail(size)) return nullptr;
    forget(block);
    return tracked(__real_realloc(block, size));
}

// libc's own would take its block behind the seam.
char* __wrap_strdup(const char* text)
{
    const size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(__wrap_malloc(size));
    return copy != nullptr ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}

void __wrap_free(void* block)
{
    forget(block);
    __real_free(block);
}

void reset_allocations()
{
    heap_state& state = heap();
    const std::lock_guard lock(state.mutex);
    state.blocks.clear();
    state.sizes.clear();
    state.failing_sizes.clear();
    state.until_failure = 0;
    state.failed = false;
}

void fail_allocation(int nth)
{
    heap().until_failure = nth;
}

void fail_allocations_of(size_t size)
{
    heap().failing_sizes.insert(size);
}

bool allocation_failed()
{
    return heap().failed;
}

std::vector<size_t> allocation_sizes()
{
    heap_state& state = heap();
    const std::lock_guard lock(state.mutex);
    return state.sizes;
}

size_t unreleased_blocks()
{
    heap_state& state = heap();
    const std::lock_guard lock(state.mutex);
    return state.blocks.size();
}

void release_all_blocks()
{
    std::set<void*> blocks;
    {
        heap_state& state = heap();
        const std::lock_guard lock(state.mutex);
        blocks.swap(state.blocks);
    }
    for (void* block : blocks) __real_free(block);
}

void* platform_allocate(size_t size)
{
    return tracked(__real_calloc(1, size));
}

void platform_free(void* block)
{
    __wrap_free(block);
}

int32_t __wrap_native_function_initialize(int32_t listtype, org_full_record* record, int32_t* error)
{
    if (listtype == LIST_CONTACT && record != nullptr)
        fake_platform::instance().violations.emplace_back("a contact connection that is given an organizer record");
    const auto& refused = heap().refused_connections;
    if (const auto found = refused.find(listtype); found != refused.end()) {
        *error = found->second;
        return 0;
    }
    return __real_native_function_initialize(listtype, record, error);
}

void refuse_connections(int32_t listtype, int32_t error)
{
    heap().refused_connections[listtype] = error;
}

void accept_connections()
{
    heap().refused_connections.clear();
}
