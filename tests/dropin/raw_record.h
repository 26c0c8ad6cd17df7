/* raw_record.h: records as bytes at offsets, for platform libraries that share no header with the product.
 *
 * An offset is the device's, where a pointer has 4 bytes, with the one of machines whose pointers have 8 beside it: the
 * same fields in the same order, each at the next multiple of its size. */
#ifndef RAW_RECORD_H
#define RAW_RECORD_H

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define AT(device, wide) (sizeof(void*) == 4 ? (device) : (wide))

enum kind { INT, TEXT, TEXT_BEHIND_POINTER, TIME, OPAQUE };

struct field {
    const char* name;
    int device; /* offset where pointers have 4 bytes */
    int wide;   /* offset where pointers have 8 bytes */
    enum kind kind;
    int size; /* of an opaque stretch */
};

static inline int32_t get_int(const char* at)
{
    int32_t value;
    memcpy(&value, at, sizeof value);
    return value;
}

static inline void put_int(char* at, int32_t value)
{
    memcpy(at, &value, sizeof value);
}

static inline char* get_pointer(const char* at)
{
    char* value;
    memcpy(&value, at, sizeof value);
    return value;
}

static inline void put_pointer(char* at, char* value)
{
    memcpy(at, &value, sizeof value);
}

static inline char* copy_of(const char* block, size_t size)
{
    char* copy = malloc(size);
    if (copy == NULL) abort();
    return memcpy(copy, block, size);
}

/* Writes a line to the file that the test compares, as the library is told through the environment. */
static inline void report(const char* format, ...)
{
    const char* path = getenv("DROPIN_REPORT");
    FILE* file = path != NULL ? fopen(path, "a") : NULL;
    va_list arguments;
    if (file == NULL) abort();
    va_start(arguments, format);
    vfprintf(file, format, arguments);
    va_end(arguments);
    fclose(file);
}

/* Each byte of an opaque stretch of a stored record, so that none may change unseen. */
static inline char opaque_byte(int offset)
{
    return (char)(offset % 251 + 1);
}

static inline void fill_opaque(char* record, const struct field* field)
{
    const int start = AT(field->device, field->wide);
    for (int i = 0; i < field->size; ++i) record[start + i] = opaque_byte(field->device + i);
}

static inline const char* state_of_opaque(const char* record, const struct field* field)
{
    const int start = AT(field->device, field->wide);
    int zeros = 0, kept = 0;
    for (int i = 0; i < field->size; ++i) {
        zeros += record[start + i] == 0;
        kept += record[start + i] == opaque_byte(field->device + i);
    }
    return zeros == field->size ? "zero" : kept == field->size ? "as stored" : "CHANGED";
}

/* Reports every field of a record that is not zero. */
static inline void report_fields(const char* what, const char* record, const struct field* fields, size_t count)
{
    for (const struct field* field = fields; field != fields + count; ++field) {
        const char* at = record + AT(field->device, field->wide);
        switch (field->kind) {
        case INT:
            if (get_int(at) != 0) report("  %s+%d %s = %d\n", what, field->device, field->name, get_int(at));
            break;
        case TEXT:
            if (*at != 0) report("  %s+%d %s = \"%s\"\n", what, field->device, field->name, at);
            break;
        case TEXT_BEHIND_POINTER:
            if (get_pointer(at) != NULL && *get_pointer(at) != 0)
                report("  %s+%d %s = \"%s\"\n", what, field->device, field->name, get_pointer(at));
            break;
        case TIME:
            if (get_int(at + 12) != 0)
                report("  %s+%d %s = %04d-%02d-%02d %02d:%02d:%02d, day %d of the week, %d of the year, saving %d\n",
                       what, field->device, field->name, get_int(at + 20) + 1900, get_int(at + 16) + 1,
                       get_int(at + 12), get_int(at + 8), get_int(at + 4), get_int(at), get_int(at + 24),
                       get_int(at + 28), get_int(at + 32));
            else if (get_int(at) != 0)
                report("  %s+%d %s = %d\n", what, field->device, field->name, get_int(at));
            break;
        case OPAQUE:
            if (strcmp(state_of_opaque(record, field), "zero") != 0)
                report("  %s+%d %d bytes %s\n", what, field->device, field->size, state_of_opaque(record, field));
            break;
        }
    }
}

static inline void put_time(char* at, int year, int month, int day, int hour, int minute, int second)
{
    put_int(at, second);
    put_int(at + 4, minute);
    put_int(at + 8, hour);
    put_int(at + 12, day);
    put_int(at + 16, month - 1);
    put_int(at + 20, year - 1900);
}

#define COUNT(array) (sizeof(array) / sizeof((array)[0]))

#endif
