// todoimp_limo_arm.h: the port side of ToDoListImpl.
#ifndef JSR75_PIM_TODOIMP_LIMO_ARM_H
#define JSR75_PIM_TODOIMP_LIMO_ARM_H

#include <cstdint>
#include <span>

#include "dateorder.h"

// Writes the record indexes of the to-dos whose date `field` (a ToDo field code) is the earliest one after
// `current_date`, in ms since the epoch. Returns their number, or -1 on failure.
int32_t ToDoListImpl_nextSortedToDoN(int32_t handle, int32_t field, int64_t current_date,
                                     std::span<int32_t, ORG_RECORD_CNT_MAX> found);

#endif
