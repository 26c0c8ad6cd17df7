// fast_platform.h: a platform that does the least it can, so that what is measured on it is the library. It stands in
// front of the stand-alone one: a library that is loaded behind it finds these stores and this hook.
//
// Every list names the records 1 to FAST_RECORDS, each fetch copies out a preset record, a write stores nothing.
#ifndef JSR75_PIM_BENCHMARKS_FAST_PLATFORM_H
#define JSR75_PIM_BENCHMARKS_FAST_PLATFORM_H

#include <cstdint>

inline constexpr int32_t FAST_RECORDS = 100;

// Walks go on behind this record, in the middle of the list.
inline constexpr int32_t FAST_CURRENT = 50;

// The first record after it that contains FAST_MATCH.
inline constexpr int32_t FAST_MATCHING = 53;
inline constexpr char FAST_MATCH[] = "Needle";

// The contact whose entries are blocks of their own, which its holder may let grow.
inline constexpr int32_t FAST_UPDATED = 2;

// The groups have the keys 0 to 2. This is the one in the middle; the contacts are members of the other two.
inline constexpr char FAST_GROUP[] = "Work";

// Silences the hook, or lets it write to the journal as long as that is open.
void trace_to_journal(bool wanted);

#endif
