/* A replacement of libpims-engine: an event and a to-do in memory, and a report of what is written. */
#include "raw_record.h"

enum { RECORDS = 20, EVENT = 8, TODO = 9 };

#define RECORD_SIZE AT(396, 440)

static const struct field RECORD[] = {
    {"index", 0, 0, INT, 0},
    {"kind", 4, 4, INT, 0},
    {"opaque", 8, 8, OPAQUE, 4},
    {"summary", 12, 16, TEXT_BEHIND_POINTER, 0},
    {"description", 16, 24, TEXT_BEHIND_POINTER, 0},
    {"location", 20, 32, TEXT_BEHIND_POINTER, 0},
    {"opaque", 24, 40, OPAQUE, 8},
    {"start", 32, 48, TIME, 0},
    {"start, offset and zone", 68, 84, OPAQUE, 8},
    {"end", 76, 92, TIME, 0},
    {"end, offset and zone", 112, 128, OPAQUE, 8},
    {"alarm", 120, 136, TIME, 0},
    {"alarm, offset and zone", 156, 172, OPAQUE, 8},
    {"opaque", 164, 180, OPAQUE, 8},
    {"text", 172, 192, TEXT_BEHIND_POINTER, 0},
    {"opaque", 176, 200, OPAQUE, 4},
    {"repeat term", 180, 204, INT, 0},
    {"repeat interval", 184, 208, INT, 0},
    {"opaque", 188, 212, OPAQUE, 4},
    {"repeat end or due", 192, 216, TIME, 0},
    {"repeat end or due, offset and zone", 228, 252, OPAQUE, 8},
    {"opaque", 236, 260, OPAQUE, 20},
    {"last modified", 256, 280, TIME, 0},
    {"last modified, offset and zone", 292, 316, OPAQUE, 8},
    {"opaque", 300, 324, OPAQUE, 4},
    {"completed", 304, 328, INT, 0},
    {"priority", 308, 332, INT, 0},
    {"opaque", 312, 336, OPAQUE, 28},
    {"text", 340, 368, TEXT_BEHIND_POINTER, 0},
    {"text", 344, 376, TEXT_BEHIND_POINTER, 0},
    {"text", 348, 384, TEXT_BEHIND_POINTER, 0},
    {"opaque", 352, 392, OPAQUE, 44},
};

static char* records[RECORDS]; /* by index; the texts are of the store's own */
static int types[RECORDS];

static char* new_record(int type, int index)
{
    char* record = calloc(1, (size_t)RECORD_SIZE);
    if (record == NULL) abort();
    for (size_t i = 0; i < COUNT(RECORD); ++i)
        if (RECORD[i].kind == OPAQUE) fill_opaque(record, &RECORD[i]);
    put_int(record, index);
    put_int(record + 4, type == EVENT ? 1 : 2);
    types[index] = type;
    return records[index] = record;
}

static void put_text(char* record, int device, int wide, const char* text)
{
    put_pointer(record + AT(device, wide), copy_of(text, strlen(text) + 1));
}

__attribute__((constructor)) static void fill_store(void)
{
    char* event = new_record(EVENT, 5);
    put_text(event, 12, 16, "Concert");
    put_text(event, 16, 24, "Bring the notes");
    put_text(event, 20, 32, "Town hall");
    put_time(event + AT(32, 48), 2026, 5, 6, 7, 8, 9);
    put_time(event + AT(76, 92), 2026, 5, 6, 10, 11, 12);
    put_time(event + AT(120, 136), 2010, 1, 1, 0, 0, 0);
    put_int(event + AT(180, 204), 3);
    put_int(event + AT(184, 208), 4);
    put_time(event + AT(192, 216), 2027, 8, 9, 1, 2, 3);
    put_time(event + AT(256, 280), 2025, 2, 3, 4, 5, 6);

    char* todo = new_record(TODO, 9);
    put_text(todo, 12, 16, "Rehearse");
    put_text(todo, 16, 24, "Twice");
    put_time(todo + AT(76, 92), 2026, 5, 5, 20, 30, 40);
    put_time(todo + AT(192, 216), 2026, 5, 5, 21, 22, 23);
    put_time(todo + AT(256, 280), 2025, 2, 3, 5, 6, 7);
    put_int(todo + AT(304, 328), 1);
    put_int(todo + AT(308, 332), 2);
}

/* ---- What the library calls -------------------------------------------------------------------------------------- */

static int fails(int* error, int code)
{
    *error = code;
    return 0;
}

int org_db_service_connect_database(int* error)
{
    (void)error;
    return 1;
}

int org_db_service_disconnect_database(int* error)
{
    (void)error;
    return 1;
}

int org_db_service_init_full_record(char* record, int* error)
{
    (void)error;
    for (size_t i = 0; i < COUNT(RECORD); ++i)
        if (RECORD[i].kind == INT) put_int(record + AT(RECORD[i].device, RECORD[i].wide), 0);
    return 1;
}

int org_db_service_free_full_record(char* record, int* error)
{
    (void)error;
    for (size_t i = 0; i < COUNT(RECORD); ++i)
        if (RECORD[i].kind == TEXT_BEHIND_POINTER) {
            char* place = record + AT(RECORD[i].device, RECORD[i].wide);
            free(get_pointer(place));
            put_pointer(place, NULL);
        }
    return 1;
}

int org_db_service_get_record_count(int reserved, int type, int* count, int* error)
{
    (void)reserved;
    (void)error;
    *count = 0;
    for (int index = 0; index < RECORDS; ++index) *count += records[index] != NULL && types[index] == type;
    return 1;
}

int org_db_service_get_records_id(int reserved, int type, int count, int reserved2, int* indices, int* error)
{
    (void)reserved;
    (void)reserved2;
    (void)error;
    for (int index = 0; index < RECORDS && count > 0; ++index)
        if (records[index] != NULL && types[index] == type) {
            *indices++ = index;
            --count;
        }
    return 1;
}

int org_db_service_get_record_full_field_by_index(int index, char* record, int* error)
{
    if (index < 0 || index >= RECORDS || records[index] == NULL) return fails(error, 6);
    const char* stored = records[index];
    char* texts[COUNT(RECORD)];
    for (size_t i = 0; i < COUNT(RECORD); ++i) texts[i] = get_pointer(record + AT(RECORD[i].device, RECORD[i].wide));
    memcpy(record, stored, (size_t)RECORD_SIZE);
    for (size_t i = 0; i < COUNT(RECORD); ++i)
        if (RECORD[i].kind == TEXT_BEHIND_POINTER) {
            const int at = AT(RECORD[i].device, RECORD[i].wide);
            put_pointer(record + at, texts[i]);
            if (texts[i] != NULL && get_pointer(stored + at) != NULL) strcpy(texts[i], get_pointer(stored + at));
        }
    return 1;
}

static void keep(int index, const char* what, const char* record)
{
    report("store: record %d, type %d, %s\n", index, types[index], what);
    report_fields("record", record, RECORD, COUNT(RECORD));
    records[index] = copy_of(record, (size_t)RECORD_SIZE);
    for (size_t i = 0; i < COUNT(RECORD); ++i)
        if (RECORD[i].kind == TEXT_BEHIND_POINTER) {
            const int at = AT(RECORD[i].device, RECORD[i].wide);
            const char* text = get_pointer(record + at);
            put_pointer(records[index] + at, text != NULL ? copy_of(text, strlen(text) + 1) : NULL);
        }
}

static void drop(int index)
{
    int error;
    org_db_service_free_full_record(records[index], &error);
    free(records[index]);
    records[index] = NULL;
}

int org_db_service_add_record_full_field(int type, char* record, int* index, int* error)
{
    for (int free_index = 1; free_index < RECORDS; ++free_index)
        if (records[free_index] == NULL) {
            types[free_index] = type;
            keep(free_index, "added", record);
            *index = free_index;
            return 1;
        }
    return fails(error, 102);
}

int org_db_service_update_record_full_field(int index, char* record, int* error)
{
    if (index < 0 || index >= RECORDS || records[index] == NULL) return fails(error, 6);
    drop(index);
    keep(index, "updated", record);
    return 1;
}

int org_db_service_delete_record(int index, int* error)
{
    if (index < 0 || index >= RECORDS || records[index] == NULL) return fails(error, 6);
    report("store: record %d deleted\n", index);
    drop(index);
    return 1;
}
