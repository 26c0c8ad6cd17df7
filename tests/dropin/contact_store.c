/* A replacement of libcontact-db-service: a few contacts and groups in memory, and a report of what is written. */
#include "raw_record.h"

struct _GList { /* GLib's doubly linked list */
    void* data;
    struct _GList* next;
    struct _GList* prev;
};

enum { CONTACTS = 20, GROUPS = 30, GROUP_SIZE = 1352, MEMBERSHIP_SIZE = 71 };

#define RECORD_SIZE AT(4736, 4752)
#define MEMBERSHIP  AT(3985, 4001)

/* Without the lists behind pointers. */
static const struct field CONTACT[] = {
    {"index", 0, 0, INT, 0},
    {"opaque", 4, 4, OPAQUE, 4},
    {"last name", 8, 8, TEXT, 0},
    {"first name", 138, 138, TEXT, 0},
    {"nickname", 399, 399, TEXT, 0},
    {"job title", 596, 596, TEXT, 0},
    {"opaque", 661, 661, OPAQUE, 65},
    {"company name", 726, 726, TEXT, 0},
    {"homepage 0 type", 800, 808, INT, 0},
    {"opaque", 804, 812, OPAQUE, 33},
    {"homepage 0", 837, 845, TEXT, 0},
    {"homepage 1 type", 1096, 1104, INT, 0},
    {"opaque", 1100, 1108, OPAQUE, 33},
    {"homepage 1", 1133, 1141, TEXT, 0},
    {"homepage 2 type", 1392, 1400, INT, 0},
    {"opaque", 1396, 1404, OPAQUE, 33},
    {"homepage 2", 1429, 1437, TEXT, 0},
    {"homepage 3 type", 1688, 1696, INT, 0},
    {"opaque", 1692, 1700, OPAQUE, 33},
    {"homepage 3", 1725, 1733, TEXT, 0},
    {"homepage 4 type", 1984, 1992, INT, 0},
    {"opaque", 1988, 1996, OPAQUE, 33},
    {"homepage 4", 2021, 2029, TEXT, 0},
    {"note", 2284, 2296, TEXT_BEHIND_POINTER, 0},
    {"opaque", 2288, 2304, OPAQUE, 200},
    {"birthday", 2488, 2504, TIME, 0},
    {"opaque", 2524, 2540, OPAQUE, 1461},
    {"save time", 4056, 4072, TIME, 0},
    {"opaque", 4092, 4108, OPAQUE, 496},
    {"phones", 4588, 4604, INT, 0},
    {"e-mails", 4592, 4608, INT, 0},
    {"note size", 4596, 4612, INT, 0},
    {"addresses", 4600, 4616, INT, 0},
    {"opaque", 4604, 4620, OPAQUE, 132},
};
static const struct field PHONE[] = {
    {"number", 0, 0, TEXT, 0},
    {"type", 44, 44, INT, 0},
    {"opaque", 48, 48, OPAQUE, 4},
    {"position", 52, 52, INT, 0},
};
static const struct field EMAIL[] = {
    {"type", 0, 0, INT, 0},
    {"e-mail", 4, 4, TEXT, 0},
    {"position", 136, 136, INT, 0},
};
static const struct field ADDRESS[] = {
    {"type", 0, 0, INT, 0},         {"full text", 4, 4, TEXT, 0},
    {"street", 517, 517, TEXT, 0},  {"additional info", 646, 646, TEXT, 0},
    {"city", 775, 775, TEXT, 0},    {"postal code", 904, 904, TEXT, 0},
    {"state", 945, 945, TEXT, 0},   {"country", 1074, 1074, TEXT, 0},
    {"pobox", 1139, 1139, TEXT, 0}, {"position", 1204, 1204, INT, 0},
};

/* An array of entries that the record leads to. */
static const struct list {
    const char* name;
    int device_pointer, wide_pointer;
    int device_count, wide_count;
    size_t stride;
    const struct field* fields;
    size_t field_count;
} LISTS[] = {
    {"phone", 792, 792, 4588, 4604, 56, PHONE, COUNT(PHONE)},
    {"e-mail", 796, 800, 4592, 4608, 140, EMAIL, COUNT(EMAIL)},
    {"address", 2280, 2288, 4600, 4616, 1208, ADDRESS, COUNT(ADDRESS)},
};

#define NOTE      AT(2284, 2296)
#define NOTE_SIZE AT(4596, 4612)

static char* contacts[CONTACTS]; /* by index */
static char* groups[GROUPS];     /* by key index */

static int32_t count_in(const char* record, const struct list* list)
{
    return get_int(record + AT(list->device_count, list->wide_count));
}

static char* pointer_place(char* record, const struct list* list)
{
    return record + AT(list->device_pointer, list->wide_pointer);
}

/* Copies a record with everything it leads to; each array gets one zeroed entry past its count. */
static void copy_contact(char* target, const char* source)
{
    memcpy(target, source, (size_t)RECORD_SIZE);
    for (size_t i = 0; i < COUNT(LISTS); ++i) {
        const struct list* list = &LISTS[i];
        const size_t count = (size_t)count_in(source, list);
        char* entries = calloc(count + 1, list->stride);
        if (entries == NULL) abort();
        if (count > 0) memcpy(entries, get_pointer(pointer_place(target, list)), count * list->stride);
        put_pointer(pointer_place(target, list), entries);
    }
    const int32_t note_size = get_int(source + NOTE_SIZE);
    put_pointer(target + NOTE, note_size > 0 ? copy_of(get_pointer(source + NOTE), (size_t)note_size) : NULL);
}

static void report_contact(const char* what, char* record)
{
    report("store: contact %s\n", what);
    report_fields("record", record, CONTACT, COUNT(CONTACT));
    for (size_t i = 0; i < COUNT(LISTS); ++i)
        for (int32_t entry = 0; entry < count_in(record, &LISTS[i]); ++entry) {
            report("  %s %d\n", LISTS[i].name, entry);
            report_fields("entry", get_pointer(pointer_place(record, &LISTS[i])) + (size_t)entry * LISTS[i].stride,
                          LISTS[i].fields, LISTS[i].field_count);
        }
    for (int key = 0; key < MEMBERSHIP_SIZE; ++key)
        if (record[MEMBERSHIP + key] != 0)
            report("  record+%d member %d = %d\n", 3985 + key, key, record[MEMBERSHIP + key]);
}

static char* new_group(int key, const char* name)
{
    char* group = calloc(1, GROUP_SIZE);
    if (group == NULL) abort();
    put_int(group, key);
    put_int(group + 4, 0x5eed);
    strcpy(group + 8, name);
    memset(group + 73, 'g', 1279);
    return groups[key] = group;
}

/* The contact with every field that the tests read; what it stands for is in the table of the record above. */
__attribute__((constructor)) static void fill_store(void)
{
    char* record = calloc(1, (size_t)RECORD_SIZE);
    char* phones = calloc(3, 56);
    char* emails = calloc(2, 140);
    char* addresses = calloc(2, 1208);
    if (record == NULL || phones == NULL || emails == NULL || addresses == NULL) abort();

    for (size_t i = 0; i < COUNT(CONTACT); ++i)
        if (CONTACT[i].kind == OPAQUE) fill_opaque(record, &CONTACT[i]);
    put_int(record, 7);
    strcpy(record + 8, "Lovelace");
    strcpy(record + 138, "Ada");
    strcpy(record + 399, "Countess");
    strcpy(record + 596, "Analyst");
    strcpy(record + 726, "Engines");
    for (int slot = 0; slot < 5; ++slot) {
        char* homepage = record + AT(800, 808) + slot * 296;
        put_int(homepage, slot % 3 - 1);
        snprintf(homepage + 37, 259, "https://example.org/%d", slot);
    }
    put_time(record + AT(2488, 2504), 1985, 12, 10, 13, 14, 15);
    put_time(record + AT(4056, 4072), 2026, 3, 4, 5, 6, 7);
    put_int(record + AT(4588, 4604), 3);
    put_int(record + AT(4592, 4608), 2);
    put_int(record + AT(4600, 4616), 2);
    put_pointer(record + NOTE, copy_of("A note", 7));
    put_int(record + NOTE_SIZE, 7);
    record[MEMBERSHIP + 2] = 1;

    for (int i = 0; i < 3; ++i) {
        char* phone = phones + i * 56;
        snprintf(phone, 44, "+44 20 %d", i);
        put_int(phone + 44, 5 - i * 5);
        fill_opaque(phone, &PHONE[2]);
        put_int(phone + 52, i);
    }
    put_pointer(record + 792, phones);
    for (int i = 0; i < 2; ++i) {
        char* email = emails + i * 140;
        put_int(email, 1 - i);
        snprintf(email + 4, 132, "ada%d@example.org", i);
        put_int(email + 136, i);
    }
    put_pointer(record + AT(796, 800), emails);
    for (int i = 0; i < 2; ++i) {
        static const struct {
            int offset;
            const char* text;
        } parts[] = {{517, "street"}, {646, "extra"}, {775, "city"},  {904, "code"},
                     {945, "state"},  {1074, "land"}, {1139, "pobox"}};
        char* address = addresses + i * 1208;
        put_int(address, 1 - i);
        for (size_t part = 0; part < COUNT(parts); ++part)
            snprintf(address + parts[part].offset, 41, "%s %d", parts[part].text, i);
        put_int(address + 1204, i);
    }
    put_pointer(record + AT(2280, 2288), addresses);

    contacts[7] = record;
    new_group(0, "Band");
    new_group(2, "Club");
}

/* ---- What the library calls -------------------------------------------------------------------------------------- */

#define NOT_FOUND 101

static int fails(int* error, int code)
{
    *error = code;
    return 0;
}

int contact_db_service_connect(int* error)
{
    (void)error;
    return 1;
}

int contact_db_service_disconnect(int* error)
{
    (void)error;
    return 1;
}

static int indices_where(int (*takes)(const char*, int), int key, int* indices)
{
    int found = 0;
    for (int index = 0; index < CONTACTS; ++index)
        if (contacts[index] != NULL && takes(contacts[index], key)) {
            if (indices != NULL) indices[found] = index;
            ++found;
        }
    return found;
}

static int any(const char* record, int key)
{
    (void)record;
    (void)key;
    return 1;
}

static int member(const char* record, int key)
{
    return record[MEMBERSHIP + key] == 1;
}

static int no_member(const char* record, int key)
{
    (void)key;
    for (int i = 0; i < GROUPS; ++i)
        if (record[MEMBERSHIP + i] == 1) return 0;
    return 1;
}

int contact_db_service_contact_get_count(int reserved, int* count, int* error)
{
    (void)reserved;
    (void)error;
    *count = indices_where(any, 0, NULL);
    return 1;
}

int contact_db_service_contact_get_all_indices(int reserved, int* indices, int* count, int* error)
{
    (void)reserved;
    *count = indices_where(any, 0, indices);
    return *count > 0 ? 1 : fails(error, 16);
}

int contact_db_service_contact_get(int reserved, int index, int reserved2, char* record, int* error)
{
    (void)reserved;
    (void)reserved2;
    if (index < 0 || index >= CONTACTS || contacts[index] == NULL) return fails(error, NOT_FOUND);
    copy_contact(record, contacts[index]);
    return 1;
}

int contact_db_service_contact_get_by_index(int reserved, int index, int reserved2, char* record, int* error)
{
    return contact_db_service_contact_get(reserved, index, reserved2, record, error);
}

int contact_db_service_contact_is_exist(int reserved, int index, unsigned char* exists, int* error)
{
    (void)reserved;
    (void)error;
    *exists = index >= 0 && index < CONTACTS && contacts[index] != NULL;
    return 1;
}

static void keep(int index, char* record)
{
    contacts[index] = calloc(1, (size_t)RECORD_SIZE);
    if (contacts[index] == NULL) abort();
    copy_contact(contacts[index], record);
}

int contact_db_service_contact_add(char* record, int* error)
{
    for (int index = 1; index < CONTACTS; ++index)
        if (contacts[index] == NULL) {
            report_contact("added", record);
            put_int(record, index);
            keep(index, record);
            return 1;
        }
    return fails(error, 102);
}

int contact_db_service_contact_free(char* record)
{
    for (size_t i = 0; i < COUNT(LISTS); ++i) {
        free(get_pointer(pointer_place(record, &LISTS[i])));
        put_pointer(pointer_place(record, &LISTS[i]), NULL);
    }
    free(get_pointer(record + NOTE));
    put_pointer(record + NOTE, NULL);
    return 1;
}

static void drop(int index)
{
    contact_db_service_contact_free(contacts[index]);
    free(contacts[index]);
    contacts[index] = NULL;
}

int contact_db_service_contact_update(int reserved, int index, char* record, int* error)
{
    (void)reserved;
    if (index < 0 || index >= CONTACTS || contacts[index] == NULL) return fails(error, NOT_FOUND);
    report_contact("updated", record);
    drop(index);
    keep(index, record);
    return 1;
}

int contact_db_service_contact_delete(int reserved, int index, int reserved2, int reserved3, int* error)
{
    (void)reserved;
    (void)reserved2;
    (void)reserved3;
    if (index < 0 || index >= CONTACTS || contacts[index] == NULL) return fails(error, NOT_FOUND);
    report("store: contact %d deleted\n", index);
    drop(index);
    return 1;
}

int contact_db_service_search_contacts_of_no_group(void* filter, int limit, const char* text, int mode,
                                                   struct _GList** list, int* error)
{
    int found[CONTACTS];
    const int count = indices_where(no_member, 0, found);
    (void)error;
    report("store: contacts without group, filter %s, limit %d, text \"%s\", mode %d\n", filter ? "given" : "null",
           limit, text, mode);
    *list = NULL;
    for (int i = count - 1; i >= 0; --i) {
        struct _GList* node = malloc(sizeof *node);
        if (node == NULL) abort();
        node->data = copy_of((const char*)&found[i], sizeof found[i]);
        node->next = *list;
        node->prev = NULL;
        if (*list != NULL) (*list)->prev = node;
        *list = node;
    }
    return 1;
}

int contact_db_service_group_get_count(int reserved, int* count, int* error)
{
    (void)reserved;
    (void)error;
    *count = 0;
    for (int key = 0; key < GROUPS; ++key) *count += groups[key] != NULL;
    return 1;
}

int contact_db_service_group_get_all_records(int reserved, char* records, int count, int* error)
{
    int filled = 0;
    (void)reserved;
    (void)error;
    for (int key = 0; key < GROUPS && filled < count; ++key)
        if (groups[key] != NULL) memcpy(records + (size_t)filled++ * GROUP_SIZE, groups[key], GROUP_SIZE);
    return 1;
}

int contact_db_service_group_get(int reserved, int key, char* record, int* error)
{
    (void)reserved;
    if (key < 0 || key >= GROUPS || groups[key] == NULL) return fails(error, NOT_FOUND);
    memcpy(record, groups[key], GROUP_SIZE);
    return 1;
}

static int key_of(const char* name)
{
    for (int key = 0; key < GROUPS; ++key)
        if (groups[key] != NULL && strcmp(groups[key] + 8, name) == 0) return key;
    return -1;
}

int contact_db_service_group_get_id_by_name(int reserved, const char* name, int* key, int* error)
{
    (void)reserved;
    *key = key_of(name);
    return *key >= 0 ? 1 : fails(error, NOT_FOUND);
}

int contact_db_service_group_exist_same_name(int reserved, const char* name, unsigned char* exists, int* error)
{
    (void)reserved;
    (void)error;
    *exists = key_of(name) >= 0;
    return 1;
}

/* The first and last byte of the stretch stand for all of it. */
static void report_group(const char* what, const char* record)
{
    report(
        "store: group %s\n  record+0 key = %d\n  record+4 opaque = %x\n  record+8 name = \"%s\"\n"
        "  record+73 and +1351 opaque = %d, %d\n",
        what, get_int(record), (unsigned)get_int(record + 4), record + 8, record[73], record[1351]);
}

int contact_db_service_group_add(char* record, int* error)
{
    for (int key = 0; key < GROUPS; ++key)
        if (groups[key] == NULL) {
            report_group("added", record);
            put_int(record, key);
            groups[key] = copy_of(record, GROUP_SIZE);
            return 1;
        }
    return fails(error, 102);
}

int contact_db_service_group_update(int reserved, int key, char* record, int* error)
{
    (void)reserved;
    if (key < 0 || key >= GROUPS || groups[key] == NULL) return fails(error, NOT_FOUND);
    report_group("updated", record);
    memcpy(groups[key], record, GROUP_SIZE);
    return 1;
}

int contact_db_service_group_delete(int reserved, int key, int* error)
{
    (void)reserved;
    if (key < 0 || key >= GROUPS || groups[key] == NULL) return fails(error, NOT_FOUND);
    report("store: group %d deleted\n", key);
    free(groups[key]);
    groups[key] = NULL;
    for (int index = 0; index < CONTACTS; ++index)
        if (contacts[index] != NULL) contacts[index][MEMBERSHIP + key] = 0;
    return 1;
}

int contact_db_service_group_get_members(int reserved, int key, int* indices, int* count, int* error)
{
    (void)reserved;
    (void)error;
    *count = indices_where(member, key, indices);
    return 1;
}

int contact_db_service_group_search(int reserved, const char* query, int limit, int reserved2, char* records,
                                    int* count, int* error, int mode)
{
    const int room = *count > 0 ? *count : GROUPS;
    int found = 0;
    (void)reserved;
    (void)reserved2;
    (void)error;
    report("store: groups searched for \"%s\", limit %d, mode %d\n", query, limit, mode);
    for (int key = 0; key < GROUPS && found < room; ++key)
        if (groups[key] != NULL && (mode == 0 || strcmp(groups[key] + 8, query) == 0))
            memcpy(records + (size_t)found++ * GROUP_SIZE, groups[key], GROUP_SIZE);
    *count = found;
    return 1;
}
