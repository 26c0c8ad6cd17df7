// journal.h: what the platform and the virtual machine were asked, in order, with every argument that counts. Closed
// while times are taken.
#ifndef JSR75_PIM_BENCHMARKS_JOURNAL_H
#define JSR75_PIM_BENCHMARKS_JOURNAL_H

#include <cstddef>
#include <string>
#include <vector>

// Begins an empty journal.
void open_journal();

// Ends it and hands it over.
std::vector<std::string> close_journal();

// ---- For the platform and the virtual machine -----------------------------------------------------------------------

extern bool journal_is_open __attribute__((visibility("hidden")));

void write_to_journal(const char* format, ...) __attribute__((format(printf, 1, 2), visibility("hidden")));

#define NOTE(...)                                                                    \
    do {                                                                             \
        if (__builtin_expect(journal_is_open, false)) write_to_journal(__VA_ARGS__); \
    } while (false)

// A number that stands for the bytes.
unsigned long digest(const void* bytes, size_t size, unsigned long before = 0) __attribute__((visibility("hidden")));

#endif
