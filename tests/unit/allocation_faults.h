// allocation_faults.h: the heap as the tests see it, through the linker's --wrap: every block that the library or the
// doubles take is tracked until it is freed, and an allocation of the library's can be made to fail. Likewise the
// opening of connections, which refuses in cases that no platform can bring about.
#ifndef JSR75_PIM_TESTS_ALLOCATION_FAULTS_H
#define JSR75_PIM_TESTS_ALLOCATION_FAULTS_H

#include <cstddef>
#include <cstdint>
#include <vector>

// Forgets tracked blocks, lets every allocation succeed.
void reset_allocations();

// The `nth` allocation from now on fails, counted from 1; malloc, calloc, realloc and strdup count alike.
void fail_allocation(int nth);
// Every allocation of exactly `size` bytes fails from now on.
void fail_allocations_of(size_t size);
// Whether a scripted failure has happened since the reset.
bool allocation_failed();
// The sizes that were asked for since the reset, in order.
std::vector<size_t> allocation_sizes();

// Blocks taken since the reset and not freed yet.
size_t unreleased_blocks();
// Frees them, when a test keeps them on purpose.
void release_all_blocks();

// Blocks of the platform doubles, zeroed: tracked, never failed.
void* platform_allocate(size_t size);
void platform_free(void* block);

// native_function_initialize answers 0 with `error` for this list type from now on.
void refuse_connections(int32_t listtype, int32_t error);
void accept_connections();

#endif
