// eventimpl_limo_arm.h: the port side of EventListImpl and EventImpl: date order and repeat rules.
#ifndef JSR75_PIM_EVENTIMPL_LIMO_ARM_H
#define JSR75_PIM_EVENTIMPL_LIMO_ARM_H

#include <cstdint>
#include <span>

// Repeat fields that an event's rule may hold at most.
inline constexpr int32_t REPEAT_FIELDS_MAX = 8;

// Counts the events whose start is the earliest one after `after`, in ms since the epoch. Returns that count or -1.
// When it is above 0, *found leads to a malloc() block of that many record indexes or zeros.
int32_t EventListImpl_nextSortedEventN(int64_t after, int32_t** found);

// One field (enum repeat_field) of an event's repeat rule:
//   store cannot be opened or closed  -1
//   record cannot be read              0
int32_t EventImpl_getRepeatIntN(int32_t recindex, int32_t field);

// The end of the repetition in seconds since the epoch, 0 for any other field; fails as getRepeatIntN does.
int64_t EventImpl_getRepeatDateN(int32_t recindex, int32_t field);

// Writes the repeat fields that an event's rule holds. Returns their number, or -1 for an event that does not repeat
// and on failure.
int32_t EventImpl_getRepeatFieldsN(int32_t recindex, std::span<int32_t, REPEAT_FIELDS_MAX> fields);

#endif
