/* org_db_service.h: the organizer store, events (schedule records) and to-dos (libpims-engine).
 *
 * (1) Success and failure. A function returns non-zero for success and 0 for failure. Only a failing function writes
 *     its *error, one of enum org_db_error or a code of the platform's own.
 * (2) Ownership. The caller owns a record and attaches the text buffers: malloc() blocks that
 *     org_db_service_free_full_record() releases. Where a buffer's pointer is null its text is left out.
 * (3) Texts are NUL-terminated bytes, passed through unchanged. Limits exclude the terminator.
 * (4) Times are broken-down local time; a date field that was never set is all zeros.
 * (5) Records are named by their index, from 1 up to ORG_RECORD_MAX and unique over events and to-dos together.
 * (6) Parameters named reserved are 0.
 * (7) Typed scope. A count or id-list call names a record type; until the next connect, disconnect or typed call on the
 *     same thread, fetches by index see records of that type only. With no typed call since the connect they see every
 *     record.
 * (8) Calls may come from any thread, side by side.
 */
#ifndef JSR75_PIM_ORG_DB_SERVICE_H
#define JSR75_PIM_ORG_DB_SERVICE_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#include "broken_down_time.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The record types, also the table codes of an add. */
enum org_record_type { ORG_TYPE_EVENT = 8, ORG_TYPE_TODO = 9 };

/* What stands in a record's own `kind`. */
enum org_record_kind { ORG_KIND_EVENT = 1, ORG_KIND_TODO = 2 };

/* Bytes of the texts the record's pointers lead to. */
enum {
    ORG_SUMMARY_MAX = 256,
    ORG_DESCRIPTION_MAX = 1024,
    ORG_LOCATION_MAX = 160,
    ORG_TEXT_172_MAX = 355, /* Four texts that the PIM library attaches buffers for and never fills. */
    ORG_TEXT_340_MAX = 256,
    ORG_TEXT_344_MAX = 256,
    ORG_TEXT_348_MAX = 256,
    ORG_RECORD_MAX = 10000 /* events and to-dos in a store, and the highest index */
};

/* Stored levels and frequencies. JSR 75 codes never stand in a record. */
enum org_priority { ORG_PRIORITY_LOW = 0, ORG_PRIORITY_MIDDLE = 1, ORG_PRIORITY_HIGH = 2 };
enum org_repeat_term {
    ORG_REPEAT_NONE = 0,
    ORG_REPEAT_DAILY = 1,
    ORG_REPEAT_WEEKLY = 2,
    ORG_REPEAT_MONTHLY = 3,
    ORG_REPEAT_YEARLY = 4
};

/* The platform fixes ORG_ERR_RECORD_NOT_FOUND; the others are the stand-alone store's. */
enum org_db_error {
    ORG_ERR_RECORD_NOT_FOUND = 6,
    ORG_ERR_FULL = 102,             /* ORG_RECORD_MAX records are there */
    ORG_ERR_INVALID_ARGUMENT = 103, /* a null pointer, a negative count, another record type, an over-long text */
    ORG_ERR_NO_MEMORY = 104,
    ORG_ERR_FOLDER = 105,    /* the store's folder is missing and cannot be made */
    ORG_ERR_READ_ONLY = 106, /* the folder or the file cannot be written */
    ORG_ERR_DISK_FULL = 107,
    ORG_ERR_LOCKED = 108,       /* another process kept the store locked for too long */
    ORG_ERR_CORRUPT = 109,      /* the file is damaged; it is left untouched */
    ORG_ERR_FOREIGN = 110,      /* the file is not an organizer store; it is left untouched */
    ORG_ERR_NEWER_SCHEMA = 111, /* a newer version wrote the file; it is left untouched */
    ORG_ERR_IO = 112            /* reading or writing failed otherwise */
};

struct org_date_time {            /* 44 bytes */
    struct broken_down_time time; /*  0 */
    int32_t gmtoff;               /* 36: offset from UTC in seconds; carried unchanged */
    uint32_t zone;                /* 40: a zone name's address on the device; carried unchanged, never followed */
};

/* Opaque stretches are carried unchanged and are zero on a new record. Offsets are the device's, where a pointer has
 * 4 bytes; elsewhere the same fields follow each other in the same order. */
struct org_full_record {                     /* 396 bytes */
    int32_t index;                           /*   0: record index */
    int32_t kind;                            /*   4: enum org_record_kind */
    int32_t opaque_8;                        /*   8 */
    char* summary;                           /*  12: ORG_SUMMARY_MAX bytes */
    char* description;                       /*  16: the note, ORG_DESCRIPTION_MAX bytes */
    char* location;                          /*  20: events only, ORG_LOCATION_MAX bytes */
    int32_t opaque_24[2];                    /*  24 */
    struct org_date_time start_date_time;    /*  32: event start */
    struct org_date_time end_date_time;      /*  76: event end, or completion date of a to-do */
    struct org_date_time alarm_time;         /* 120: event alarm, an absolute time */
    int32_t opaque_164[2];                   /* 164 */
    char* text_172;                          /* 172: ORG_TEXT_172_MAX bytes */
    int32_t opaque_176;                      /* 176 */
    int32_t repeat_term;                     /* 180: enum org_repeat_term */
    int32_t repeat_interval;                 /* 184: frequency units between occurrences */
    int32_t opaque_188;                      /* 188 */
    struct org_date_time repeat_end_or_due;  /* 192: end of an event's repetition, or due date of a to-do */
    int32_t opaque_236[5];                   /* 236 */
    struct org_date_time last_modified_time; /* 256: time of the last change */
    int32_t opaque_300;                      /* 300 */
    int32_t completed;                       /* 304: to-do completion flag, non-zero is completed */
    int32_t priority;                        /* 308: to-do priority, enum org_priority */
    int32_t opaque_312[7];                   /* 312 */
    char* text_340;                          /* 340: ORG_TEXT_340_MAX bytes */
    char* text_344;                          /* 344: ORG_TEXT_344_MAX bytes */
    char* text_348;                          /* 348: ORG_TEXT_348_MAX bytes */
    int32_t opaque_352[11];                  /* 352 */
};

static_assert(sizeof(struct org_date_time) == 44, "store layout");
static_assert(offsetof(struct org_date_time, gmtoff) == 36, "store layout");
static_assert(offsetof(struct org_date_time, zone) == 40, "store layout");

/* Pins an offset where pointers have 4 bytes. */
#define ORG_DEVICE_LAYOUT(field, offset) \
    static_assert(sizeof(void*) != 4 || offsetof(struct org_full_record, field) == (offset), "store layout")

static_assert(sizeof(void*) != 4 || sizeof(struct org_full_record) == 396, "store layout");
ORG_DEVICE_LAYOUT(index, 0);
ORG_DEVICE_LAYOUT(kind, 4);
ORG_DEVICE_LAYOUT(opaque_8, 8);
ORG_DEVICE_LAYOUT(summary, 12);
ORG_DEVICE_LAYOUT(description, 16);
ORG_DEVICE_LAYOUT(location, 20);
ORG_DEVICE_LAYOUT(opaque_24, 24);
ORG_DEVICE_LAYOUT(start_date_time, 32);
ORG_DEVICE_LAYOUT(end_date_time, 76);
ORG_DEVICE_LAYOUT(alarm_time, 120);
ORG_DEVICE_LAYOUT(opaque_164, 164);
ORG_DEVICE_LAYOUT(text_172, 172);
ORG_DEVICE_LAYOUT(opaque_176, 176);
ORG_DEVICE_LAYOUT(repeat_term, 180);
ORG_DEVICE_LAYOUT(repeat_interval, 184);
ORG_DEVICE_LAYOUT(opaque_188, 188);
ORG_DEVICE_LAYOUT(repeat_end_or_due, 192);
ORG_DEVICE_LAYOUT(opaque_236, 236);
ORG_DEVICE_LAYOUT(last_modified_time, 256);
ORG_DEVICE_LAYOUT(opaque_300, 300);
ORG_DEVICE_LAYOUT(completed, 304);
ORG_DEVICE_LAYOUT(priority, 308);
ORG_DEVICE_LAYOUT(opaque_312, 312);
ORG_DEVICE_LAYOUT(text_340, 340);
ORG_DEVICE_LAYOUT(text_344, 344);
ORG_DEVICE_LAYOUT(text_348, 348);
ORG_DEVICE_LAYOUT(opaque_352, 352);

#undef ORG_DEVICE_LAYOUT

/* Opens the calling thread's connection and ends its typed scope. Connections may nest; every other call also
 * works without one. */
int org_db_service_connect_database(int* error);

/* Closes the calling thread's connection and ends its typed scope. Succeeds when none is open. */
int org_db_service_disconnect_database(int* error);

/* Clears everything in *record but the text pointers, which stay as they are: null or attached buffers. */
int org_db_service_init_full_record(struct org_full_record* record, int* error);

/* Releases the seven text buffers with free() and sets their pointers to null. Accepts a zeroed record and one already
 * freed. */
int org_db_service_free_full_record(struct org_full_record* record, int* error);

/* Writes the number of records of `type`, an enum org_record_type, to *count, and begins the scope of that type. */
int org_db_service_get_record_count(int reserved, int type, int* count, int* error);

/* Writes the indexes of at most `count` records of `type`, in the store's order, to `indices`; entries past the last
 * record are left as they are. Begins the scope of that type. */
int org_db_service_get_records_id(int reserved, int type, int count, int reserved2, int* indices, int* error);

/* Fills *record with the stored record `index` and copies its texts into the attached buffers, each of which must hold
 * its limit and a terminator. Fails with ORG_ERR_RECORD_NOT_FOUND when there is none, or none in the thread's
 * scope; *record then stays as it was. */
int org_db_service_get_record_full_field_by_index(int index, struct org_full_record* record, int* error);

/* Stores *record as a new record of `type`, an enum org_record_type, and writes its index to *index. The
 * caller keeps the text buffers. Fails with ORG_ERR_FULL among others; nothing is stored then. */
int org_db_service_add_record_full_field(int type, struct org_full_record* record, int* index, int* error);

/* Replaces the stored record `index`, which keeps its type, by *record, whose own index the caller has set.
 * Fails with ORG_ERR_RECORD_NOT_FOUND among others; the stored record is unchanged then. */
int org_db_service_update_record_full_field(int index, struct org_full_record* record, int* error);

/* Deletes the record `index`, whatever its type. */
int org_db_service_delete_record(int index, int* error);

#ifdef __cplusplus
}
#endif

#endif
