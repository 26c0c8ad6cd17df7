/* broken_down_time.h: local wall-clock time as both stores exchange it.
 *
 * The nine words are libc's `struct tm` members in libc's order and with libc's bases (months from 0, years
 * from 1900), always 32 bits wide, whatever the machine's own `struct tm` looks like. All words zero, the
 * state of a field that was never set, is no date: mktime() refuses it on a 32-bit time_t.
 */
#ifndef JSR75_PIM_BROKEN_DOWN_TIME_H
#define JSR75_PIM_BROKEN_DOWN_TIME_H

#include <assert.h>
#include <stdint.h>

struct broken_down_time { /* 36 bytes */
    int32_t sec;          /*  0: seconds, 0..60 */
    int32_t min;          /*  4: minutes, 0..59 */
    int32_t hour;         /*  8: hours, 0..23 */
    int32_t mday;         /* 12: day of the month, 1..31 */
    int32_t mon;          /* 16: month, 0..11 */
    int32_t year;         /* 20: years since 1900 */
    int32_t wday;         /* 24: day of the week, 0 is Sunday */
    int32_t yday;         /* 28: day of the year, 0..365 */
    int32_t isdst;        /* 32: daylight saving: above 0 in force, 0 not, below 0 unknown */
};

static_assert(sizeof(struct broken_down_time) == 36, "exchanged with the stores");

#endif
