/* contact_db_service.h: contacts and contact groups, one whole record per call (libcontact-db-service).
 *
 * (1) Success and failure. A function returns non-zero for success and 0 for failure. Only a failing function writes
 *     its *error, one of enum contact_db_error or a code of the platform's own.
 * (2) Ownership. The caller owns a record; the record owns the blocks behind its pointers, all from libc's
 *     allocator, so that the caller may grow them with realloc(). contact_db_service_contact_free() releases them.
 * (3) Texts are NUL-terminated bytes, passed through unchanged. Limits exclude the terminator. A text may fill its
 *     field whole: its terminator then lies on the first byte of the field that follows.
 * (4) Times are broken-down local time.
 * (5) Contacts are named by their record index, 1..CONTACT_RECORD_MAX; groups (PIM categories) by their key index,
 *     0..CONTACT_GROUP_MAX - 1.
 * (6) `*count` of a call that fills an array is the array's capacity on entry and the number written on return.
 * (7) Parameters named reserved are 0.
 * (8) Calls may come from any thread, side by side. A connection is opened and closed around a row of calls; how
 *     much that means is the platform's own affair.
 */
#ifndef JSR75_PIM_CONTACT_DB_SERVICE_H
#define JSR75_PIM_CONTACT_DB_SERVICE_H

#include <assert.h>
#include <glib.h>
#include <stddef.h>
#include <stdint.h>

#include "broken_down_time.h"

#ifdef __cplusplus
extern "C" {
#endif

enum {
    CONTACT_RECORD_MAX = 10000,  /* contacts in a store, and the highest record index */
    CONTACT_GROUP_MAX = 30,      /* groups in a store */
    CONTACT_GROUP_NAME_MAX = 64, /* bytes of a group name */
    CONTACT_HOMEPAGE_MAX = 5,    /* homepage slots of a contact */
    CONTACT_MEMBERSHIP_SIZE = 71 /* membership bytes of a contact; the first CONTACT_GROUP_MAX are in use */
};

/* The platform fixes CONTACT_ERROR_NO_RECORDS; the others are the stand-alone store's. */
enum contact_db_error {
    CONTACT_ERROR_NO_RECORDS = 16,        /* contact_get_all_indices: the store holds no contact */
    CONTACT_ERROR_NOT_FOUND = 101,        /* no such contact or group */
    CONTACT_ERROR_FULL = 102,             /* CONTACT_RECORD_MAX contacts or CONTACT_GROUP_MAX groups are there */
    CONTACT_ERROR_INVALID_ARGUMENT = 103, /* a null pointer, a negative count, a count without its array */
    CONTACT_ERROR_NO_MEMORY = 104,
    CONTACT_ERROR_FOLDER = 105,    /* the store's folder is missing and cannot be made */
    CONTACT_ERROR_READ_ONLY = 106, /* the folder or the file cannot be written */
    CONTACT_ERROR_DISK_FULL = 107,
    CONTACT_ERROR_LOCKED = 108,       /* another process kept the store locked for too long */
    CONTACT_ERROR_CORRUPT = 109,      /* the file is damaged; it is left untouched */
    CONTACT_ERROR_FOREIGN = 110,      /* the file is not a contact store; it is left untouched */
    CONTACT_ERROR_NEWER_SCHEMA = 111, /* a newer version wrote the file; it is left untouched */
    CONTACT_ERROR_IO = 112            /* reading or writing failed otherwise */
};

/* Stored types. JSR 75 attributes never stand in a record. */
enum contact_phone_type {
    CONTACT_PHONE_OTHER_TYPE = -1,
    CONTACT_PHONE_MOBILE_PRIVATE = 0,
    CONTACT_PHONE_MOBILE_BUSINESS = 1,
    CONTACT_PHONE_LINE_PRIVATE = 2,
    CONTACT_PHONE_LINE_BUSINESS = 3,
    CONTACT_PHONE_HOME = 4,
    CONTACT_PHONE_WORK = 5,
    CONTACT_PHONE_VIDEO_CALL = 6,
    CONTACT_PHONE_FAX = 7,
    CONTACT_PHONE_VOICE_MAIL = 8,
    CONTACT_PHONE_SIM = 9,
    CONTACT_PHONE_ASSISTANT = 10,
    CONTACT_PHONE_PAGER = 11,
    CONTACT_PHONE_OTHER = 12
};

/* E-mails and homepages are private or business, addresses home or work. */
enum contact_entry_type { CONTACT_ENTRY_OTHER = -1, CONTACT_ENTRY_PRIVATE = 0, CONTACT_ENTRY_BUSINESS = 1 };

struct contact_phone { /* 56 bytes */
    char number[44];   /*  0: at most 41 bytes */
    int32_t type;      /* 44: enum contact_phone_type */
    int32_t opaque_48; /* 48: carried unchanged, zero on a new record */
    int32_t position;  /* 52: this entry's own index in phone_info */
};

struct contact_email { /* 140 bytes */
    int32_t type;      /*   0: enum contact_entry_type */
    char email[132];   /*   4: at most 129 bytes */
    int32_t position;  /* 136: this entry's own index in email_info */
};

struct contact_homepage { /* 296 bytes */
    int32_t type;         /*  0: enum contact_entry_type */
    char opaque_4[33];    /*  4: carried unchanged, zero on a new record */
    char homepage[259];   /* 37: at most 257 bytes */
};

struct contact_address {       /* 1208 bytes */
    int32_t type;              /*    0: enum contact_entry_type */
    char full_text[513];       /*    4: the parts below in one text, at most 512 bytes */
    char street[129];          /*  517: at most 129 bytes, as are the next two */
    char additional_info[129]; /*  646 */
    char city[129];            /*  775 */
    char postal_code[41];      /*  904: at most 41 bytes */
    char state[129];           /*  945: at most 129 bytes */
    char country[65];          /* 1074: at most 65 bytes */
    char pobox[65];            /* 1139: at most 65 bytes */
    int32_t position;          /* 1204: this entry's own index in address_info */
};

struct contact_name {     /* 391 bytes */
    char last_name[130];  /*   0: family name, at most 65 bytes */
    char first_name[261]; /* 130: given name, at most 65 bytes */
};

/* Opaque stretches are carried unchanged and are zero on a new record. Offsets are the device's, where a pointer has
 * 4 bytes; elsewhere the same fields follow each other in the same order. */
struct contact_record {                                          /* 4736 bytes */
    int32_t index;                                               /*    0: record index, written by the store on add */
    int32_t opaque_4;                                            /*    4 */
    struct contact_name name_info;                               /*    8 */
    char nickname[197];                                          /*  399: at most 196 bytes */
    char job_title[65];                                          /*  596: at most 65 bytes */
    char opaque_661[65];                                         /*  661 */
    char company_name[66];                                       /*  726: at most 65 bytes */
    struct contact_phone* phone_info;                            /*  792: phone_count entries */
    struct contact_email* email_info;                            /*  796: email_count entries */
    struct contact_homepage homepage_info[CONTACT_HOMEPAGE_MAX]; /* 800: an empty text is an empty slot */
    struct contact_address* address_info;                        /* 2280: postal_count entries */
    char* note;                                        /* 2284: a text of any length in a block of note_size bytes */
    char opaque_2288[200];                             /* 2288 */
    struct broken_down_time birthday;                  /* 2488 */
    char opaque_2524[1461];                            /* 2524 */
    unsigned char membership[CONTACT_MEMBERSHIP_SIZE]; /* 3985: by key index of the group, 1 is member */
    struct broken_down_time save_time;                 /* 4056: time of the last save, see contact_add */
    char opaque_4092[496];                             /* 4092 */
    int32_t phone_count;                               /* 4588 */
    int32_t email_count;                               /* 4592 */
    int32_t note_size;                                 /* 4596: text length + 1, 0 when there is no note */
    int32_t postal_count;                              /* 4600: number of addresses */
    char opaque_4604[132];                             /* 4604 */
};

struct contact_group_key { /* 8 bytes */
    int32_t index;         /* 0: key index */
    int32_t opaque_4;      /* 4: carried unchanged, zero on a new record */
};

struct contact_group_record {              /* 1352 bytes */
    struct contact_group_key group_key;    /*  0 */
    char name[CONTACT_GROUP_NAME_MAX + 1]; /*  8: at most 64 bytes */
    char opaque_73[1279];                  /* 73: carried unchanged, zero on a new record */
};

/* CONTACT_LAYOUT pins an offset that all machines share, CONTACT_DEVICE_LAYOUT one that holds where pointers have
 * 4 bytes. */
#define CONTACT_LAYOUT(record, field, offset) static_assert(offsetof(struct record, field) == (offset), "store layout")
#define CONTACT_DEVICE_LAYOUT(record, field, offset) \
    static_assert(sizeof(void*) != 4 || offsetof(struct record, field) == (offset), "store layout")

static_assert(sizeof(struct contact_phone) == 56, "array stride");
CONTACT_LAYOUT(contact_phone, type, 44);
CONTACT_LAYOUT(contact_phone, opaque_48, 48);
CONTACT_LAYOUT(contact_phone, position, 52);

static_assert(sizeof(struct contact_email) == 140, "array stride");
CONTACT_LAYOUT(contact_email, email, 4);
CONTACT_LAYOUT(contact_email, position, 136);

static_assert(sizeof(struct contact_homepage) == 296, "array stride");
CONTACT_LAYOUT(contact_homepage, opaque_4, 4);
CONTACT_LAYOUT(contact_homepage, homepage, 37);

static_assert(sizeof(struct contact_address) == 1208, "array stride");
CONTACT_LAYOUT(contact_address, full_text, 4);
CONTACT_LAYOUT(contact_address, street, 517);
CONTACT_LAYOUT(contact_address, additional_info, 646);
CONTACT_LAYOUT(contact_address, city, 775);
CONTACT_LAYOUT(contact_address, postal_code, 904);
CONTACT_LAYOUT(contact_address, state, 945);
CONTACT_LAYOUT(contact_address, country, 1074);
CONTACT_LAYOUT(contact_address, pobox, 1139);
CONTACT_LAYOUT(contact_address, position, 1204);

static_assert(sizeof(void*) != 4 || sizeof(struct contact_record) == 4736, "store layout");
CONTACT_LAYOUT(contact_record, index, 0);
CONTACT_LAYOUT(contact_record, opaque_4, 4);
CONTACT_LAYOUT(contact_record, name_info.last_name, 8);
CONTACT_LAYOUT(contact_record, name_info.first_name, 138);
CONTACT_LAYOUT(contact_record, nickname, 399);
CONTACT_LAYOUT(contact_record, job_title, 596);
CONTACT_LAYOUT(contact_record, opaque_661, 661);
CONTACT_LAYOUT(contact_record, company_name, 726);
CONTACT_DEVICE_LAYOUT(contact_record, phone_info, 792);
CONTACT_DEVICE_LAYOUT(contact_record, email_info, 796);
CONTACT_DEVICE_LAYOUT(contact_record, homepage_info, 800);
CONTACT_DEVICE_LAYOUT(contact_record, address_info, 2280);
CONTACT_DEVICE_LAYOUT(contact_record, note, 2284);
CONTACT_DEVICE_LAYOUT(contact_record, opaque_2288, 2288);
CONTACT_DEVICE_LAYOUT(contact_record, birthday, 2488);
CONTACT_DEVICE_LAYOUT(contact_record, opaque_2524, 2524);
CONTACT_DEVICE_LAYOUT(contact_record, membership, 3985);
CONTACT_DEVICE_LAYOUT(contact_record, save_time, 4056);
CONTACT_DEVICE_LAYOUT(contact_record, opaque_4092, 4092);
CONTACT_DEVICE_LAYOUT(contact_record, phone_count, 4588);
CONTACT_DEVICE_LAYOUT(contact_record, email_count, 4592);
CONTACT_DEVICE_LAYOUT(contact_record, note_size, 4596);
CONTACT_DEVICE_LAYOUT(contact_record, postal_count, 4600);
CONTACT_DEVICE_LAYOUT(contact_record, opaque_4604, 4604);

static_assert(sizeof(struct contact_group_record) == 1352, "array stride");
CONTACT_LAYOUT(contact_group_record, group_key.index, 0);
CONTACT_LAYOUT(contact_group_record, group_key.opaque_4, 4);
CONTACT_LAYOUT(contact_group_record, name, 8);
CONTACT_LAYOUT(contact_group_record, opaque_73, 73);

#undef CONTACT_LAYOUT
#undef CONTACT_DEVICE_LAYOUT

/* ---- Connection ------------------------------------------------------------------------------------------------ */

/* Opens the calling thread's connection. Connections may nest; every other call also works without one. */
int contact_db_service_connect(int* error);

/* Closes the calling thread's connection. Succeeds when none is open. */
int contact_db_service_disconnect(int* error);

/* ---- Contacts -------------------------------------------------------------------------------------------------- */

/* Writes the number of contacts to *count. */
int contact_db_service_contact_get_count(int reserved, int* count, int* error);

/* Writes the record indexes of at most *count contacts, in the store's order, and sets *count to their number.
 * Fails with CONTACT_ERROR_NO_RECORDS when there is no contact. */
int contact_db_service_contact_get_all_indices(int reserved, int* indices, int* count, int* error);

/* Fills *contact, which the caller has zeroed, with the stored contact `recindex`. An array without entries is null;
 * any other holds one zeroed entry past its count. Fails with CONTACT_ERROR_NOT_FOUND among others; *contact then stays
 * zeroed. Release with contact_db_service_contact_free(), also after a failure. */
int contact_db_service_contact_get(int reserved, int recindex, int reserved2, struct contact_record* contact,
                                   int* error);

/* The same under a second name; enumerations fetch with it. */
int contact_db_service_contact_get_by_index(int reserved, int recindex, int reserved2, struct contact_record* contact,
                                            int* error);

/* Sets *exists to 1 when there is a contact `recindex`, otherwise to 0. */
int contact_db_service_contact_is_exist(int reserved, int recindex, unsigned char* exists, int* error);

/* Stores *contact as a new contact and writes its record index to contact->index. The caller keeps the blocks behind
 * the record's pointers.
 *
 * save_time: a first word above 60 is no second of a minute but the moment of the save in seconds since the
 * epoch, and is kept as local time; with any other first word the store stamps the time of this call.
 *
 * Fails with CONTACT_ERROR_FULL among others; nothing is stored then. */
int contact_db_service_contact_add(struct contact_record* contact, int* error);

/* Replaces the stored contact `recindex` by *contact, whose index the caller has set; otherwise as contact_add.
 * Fails with CONTACT_ERROR_NOT_FOUND among others; the stored contact is unchanged then. */
int contact_db_service_contact_update(int reserved, int recindex, struct contact_record* contact, int* error);

/* Deletes the contact `recindex` and its memberships. Fails with CONTACT_ERROR_NOT_FOUND among others. */
int contact_db_service_contact_delete(int reserved, int recindex, int reserved2, int reserved3, int* error);

/* Releases what the pointers of *contact own and sets them to null with their counts, never the record itself.
 * Accepts a zeroed record and one already freed. Returns non-zero. */
int contact_db_service_contact_free(struct contact_record* contact);

/* Hands over a new list of the contacts that belong to no group, in the store's order: each element points to
 * an int32_t record index in a malloc() block of its own. The list and its elements belong to the caller; no contact
 * gives the null list. Callers pass a null filter, a limit of 1024, an empty text and mode 9; the stand-alone store
 * reads none of the four and returns every such contact. */
int contact_db_service_search_contacts_of_no_group(void* filter, int limit, const char* text, int mode, GList** list,
                                                   int* error);

/* ---- Groups ---------------------------------------------------------------------------------------------------- */

/* Writes the number of groups to *count. */
int contact_db_service_group_get_count(int reserved, int* count, int* error);

/* Fills `count` zeroed records with the first `count` groups in key order; records past the last group stay
 * zeroed. */
int contact_db_service_group_get_all_records(int reserved, struct contact_group_record* groups, int count, int* error);

/* Fills *group, which the caller has zeroed, with the group of that key index. */
int contact_db_service_group_get(int reserved, int key_index, struct contact_group_record* group, int* error);

/* Writes the key index of the group `name` to *key_index: the lowest when several bear the name. */
int contact_db_service_group_get_id_by_name(int reserved, const char* name, int* key_index, int* error);

/* Sets *exists to 1 when a group bears exactly this name, otherwise to 0. */
int contact_db_service_group_exist_same_name(int reserved, const char* name, unsigned char* exists, int* error);

/* Stores *group as a new group under the lowest free key index, which it writes to group->group_key.index.
 * Fails with CONTACT_ERROR_FULL when all key indexes are taken. */
int contact_db_service_group_add(struct contact_group_record* group, int* error);

/* Replaces the group of that key index; its members stay. The new name may be one that another group bears. */
int contact_db_service_group_update(int reserved, int key_index, struct contact_group_record* group, int* error);

/* Deletes the group of that key index and every membership in it; the member contacts stay. */
int contact_db_service_group_delete(int reserved, int key_index, int* error);

/* Writes the record indexes of at most *count members, in the store's order, and sets *count to their number. A
 * group without members gives 0. Callers offer room for 3000 or for CONTACT_RECORD_MAX. */
int contact_db_service_group_get_members(int reserved, int key_index, int* indices, int* count, int* error);

/* Finds groups in key order; fills at most *count zeroed records and sets *count to their number. Mode 0 takes a
 * condition, of which "id >= 0", every group, is the only one in use; mode 1 takes a name and finds the groups that
 * bear exactly it. Callers pass 20 or 30 as `limit`, a page size that does not cut the result. Finding none is a
 * success. */
int contact_db_service_group_search(int reserved, const char* query, int limit, int reserved2,
                                    struct contact_group_record* groups, int* count, int* error, int mode);

#ifdef __cplusplus
}
#endif

#endif
