#include "fast_platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "contact_db_service.h"
#include "java_printf_handler.h"
#include "journal.h"
#include "org_db_service.h"
#include "stored_records.h"

// ---- The trace hook -------------------------------------------------------------------------------------------------

// NOLINTNEXTLINE(cert-dcl50-cpp): the hook's own shape.
__attribute__((format(printf, 6, 7))) static int discard(const char*, int, const char*, int, int, const char*, ...)
{
    return 0;
}

// NOLINTNEXTLINE(cert-dcl50-cpp): the hook's own shape.
__attribute__((format(printf, 6, 7))) static int note_trace(const char*, int, const char*, int component, int severity,
                                                            const char* format, ...)
{
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    NOTE("trace %x %x %s: %s", static_cast<unsigned>(component), static_cast<unsigned>(severity), format, text);
    return 0;
}

java_printf_function java_printf_handler = discard;

void trace_to_journal(bool wanted)
{
    java_printf_handler = wanted ? note_trace : discard;
}

// ---- Presets --------------------------------------------------------------------------------------------------------

// All texts are in lower case: a search folds them in place.
static contact_phone phones[] = {
    a_phone("+49 30 1234567", CONTACT_PHONE_MOBILE_PRIVATE), a_phone("+49 30 7654321", CONTACT_PHONE_WORK), {}};
static contact_email emails[] = {
    an_email("grace@example.org", CONTACT_ENTRY_PRIVATE), an_email("hopper@example.com", CONTACT_ENTRY_BUSINESS), {}};
static char note[] = "met at the conference";

static contact_address* preset_addresses()
{
    static contact_address addresses[2] = {an_address(CONTACT_ENTRY_PRIVATE)};
    put_into(addresses[0].pobox, "box 1");
    put_into(addresses[0].additional_info, "third floor");
    put_into(addresses[0].street, "main street 1");
    put_into(addresses[0].city, "arlington");
    put_into(addresses[0].state, "virginia");
    put_into(addresses[0].postal_code, "22201");
    put_into(addresses[0].country, "usa");
    return addresses;
}

static contact_record preset_contact(const char* last_name)
{
    contact_record contact = {};
    put_into(contact.name_info.first_name, "grace");
    put_into(contact.name_info.last_name, last_name);
    put_into(contact.nickname, "amazing");
    put_into(contact.company_name, "navy");
    put_into(contact.job_title, "admiral");
    put_into(contact.homepage_info[0].homepage, "www.example.org");
    contact.birthday = local_time(1906, 12, 9);
    contact.save_time = local_time(2020, 1, 2, 3, 4, 5);
    contact.membership[0] = contact.membership[2] = 1;
    contact.phone_info = phones;
    contact.phone_count = 2;
    contact.email_info = emails;
    contact.email_count = 2;
    contact.address_info = preset_addresses();
    contact.postal_count = 1;
    contact.note = note;
    contact.note_size = sizeof note;
    return contact;
}

static const contact_record ordinary_contact = preset_contact("hopper");
static const contact_record matching_contact = preset_contact("the needle");

static contact_group_record preset_group(int32_t key, const char* name)
{
    contact_group_record group = {};
    group.group_key.index = key;
    put_into(group.name, name);
    return group;
}

static const contact_group_record stored_groups[] = {preset_group(0, "Family"), preset_group(1, FAST_GROUP),
                                                     preset_group(2, "Sports club")};
static constexpr int32_t GROUPS = 3;

static constexpr int32_t MEMBERS[] = {FAST_CURRENT - 1, FAST_CURRENT, FAST_CURRENT + 1};

static constexpr char SUMMARY[] = "stand-up meeting";
static constexpr char MATCHING_SUMMARY[] = "find the needle";
static constexpr char DESCRIPTION[] = "what was done, what comes next";
static constexpr char LOCATION[] = "second floor";

static org_full_record preset_item()
{
    org_full_record item = {};
    for (org_date_time* date : {&item.start_date_time, &item.end_date_time, &item.alarm_time, &item.repeat_end_or_due,
                                &item.last_modified_time})
        date->time = local_time(2020, 1, 2, 3, 4, 5);
    item.repeat_term = ORG_REPEAT_WEEKLY;
    item.repeat_interval = 2;
    item.completed = 1;
    item.priority = ORG_PRIORITY_MIDDLE;
    return item;
}

static const org_full_record ordinary_item = preset_item();

static void list_records(int* indices, int count)
{
    for (int i = 0; i < count; ++i) indices[i] = i + 1;
}

// ---- Contacts -------------------------------------------------------------------------------------------------------

template <typename Entry>
static unsigned long digest_of_entries(const Entry* all, int32_t count, unsigned long before)
{
    return all != nullptr ? digest(all, static_cast<size_t>(count) * sizeof *all, before) : before;
}

// Stands for all that a record says; where its blocks lie is left out.
static unsigned long digest_of(const contact_record& contact)
{
    unsigned long value = digest(bytes_of(contact).data(), bytes_of(contact).size());
    value = digest_of_entries(contact.phone_info, contact.phone_count, value);
    value = digest_of_entries(contact.email_info, contact.email_count, value);
    value = digest_of_entries(contact.address_info, contact.postal_count, value);
    return digest_of_entries(contact.note, contact.note_size, value);
}

template <typename Entry>
static Entry* own_block(const Entry* preset, size_t count)
{
    auto* block = static_cast<Entry*>(std::malloc(count * sizeof(Entry)));
    if (block == nullptr) std::abort();
    std::memcpy(block, preset, count * sizeof(Entry));
    return block;
}

static void hand_out(int recindex, contact_record* contact)
{
    *contact = recindex == FAST_MATCHING ? matching_contact : ordinary_contact;
    if (recindex != FAST_UPDATED) return;
    contact->phone_info = own_block(contact->phone_info, 3);
    contact->email_info = own_block(contact->email_info, 3);
    contact->address_info = own_block(contact->address_info, 2);
    contact->note = own_block(contact->note, sizeof note);
}

template <typename Entry>
static void release(Entry*& block, const Entry* preset)
{
    if (block != preset) std::free(block);
    block = nullptr;
}

extern "C" {

int contact_db_service_connect(int*)
{
    NOTE("contact_db_service_connect");
    return 1;
}

int contact_db_service_disconnect(int*)
{
    NOTE("contact_db_service_disconnect");
    return 1;
}

int contact_db_service_contact_get_count(int, int* count, int*)
{
    NOTE("contact_db_service_contact_get_count");
    *count = FAST_RECORDS;
    return 1;
}

int contact_db_service_contact_get_all_indices(int, int* indices, int* count, int*)
{
    NOTE("contact_db_service_contact_get_all_indices(%d, %lx)", *count,
         digest(indices, static_cast<size_t>(*count) * sizeof *indices));
    list_records(indices, FAST_RECORDS);
    *count = FAST_RECORDS;
    return 1;
}

int contact_db_service_contact_get(int, int recindex, int, contact_record* contact, int*)
{
    NOTE("contact_db_service_contact_get(%d, %lx)", recindex, digest(contact, sizeof *contact));
    hand_out(recindex, contact);
    return 1;
}

int contact_db_service_contact_get_by_index(int, int recindex, int, contact_record* contact, int*)
{
    NOTE("contact_db_service_contact_get_by_index(%d, %lx)", recindex, digest(contact, sizeof *contact));
    hand_out(recindex, contact);
    return 1;
}

int contact_db_service_contact_is_exist(int, int recindex, unsigned char* exists, int*)
{
    NOTE("contact_db_service_contact_is_exist(%d)", recindex);
    *exists = 1;
    return 1;
}

int contact_db_service_contact_add(contact_record* contact, int*)
{
    NOTE("contact_db_service_contact_add(%lx)", digest_of(*contact));
    contact->index = FAST_RECORDS + 1;
    return 1;
}

int contact_db_service_contact_update(int, int recindex, contact_record* contact, int*)
{
    NOTE("contact_db_service_contact_update(%d, %lx)", recindex, digest_of(*contact));
    return 1;
}

int contact_db_service_contact_delete(int, int recindex, int, int, int*)
{
    NOTE("contact_db_service_contact_delete(%d)", recindex);
    return 1;
}

int contact_db_service_contact_free(contact_record* contact)
{
    NOTE("contact_db_service_contact_free(%lx)", digest_of(*contact));
    release(contact->phone_info, ordinary_contact.phone_info);
    release(contact->email_info, ordinary_contact.email_info);
    release(contact->address_info, ordinary_contact.address_info);
    release(contact->note, ordinary_contact.note);
    return 1;
}

int contact_db_service_search_contacts_of_no_group(void*, int limit, const char* text, int mode, GList** list, int*)
{
    NOTE("contact_db_service_search_contacts_of_no_group(%d, %s, %d)", limit, text, mode);
    static constexpr int32_t LISTED = FAST_CURRENT;
    *list = g_list_append(nullptr, own_block(&LISTED, 1));
    return 1;
}

// ---- Groups ---------------------------------------------------------------------------------------------------------

int contact_db_service_group_get_count(int, int* count, int*)
{
    NOTE("contact_db_service_group_get_count");
    *count = GROUPS;
    return 1;
}

int contact_db_service_group_get_all_records(int, contact_group_record* groups, int count, int*)
{
    NOTE("contact_db_service_group_get_all_records(%d, %lx)", count,
         digest(groups, static_cast<size_t>(count) * sizeof *groups));
    std::memcpy(groups, stored_groups, sizeof stored_groups);
    return 1;
}

int contact_db_service_group_get(int, int key_index, contact_group_record* group, int*)
{
    NOTE("contact_db_service_group_get(%d, %lx)", key_index, digest(group, sizeof *group));
    *group = stored_groups[key_index];
    return 1;
}

int contact_db_service_group_get_id_by_name(int, const char* name, int* key_index, int*)
{
    NOTE("contact_db_service_group_get_id_by_name(%s)", name);
    *key_index = 1;
    return 1;
}

int contact_db_service_group_exist_same_name(int, const char* name, unsigned char* exists, int*)
{
    NOTE("contact_db_service_group_exist_same_name(%s)", name);
    *exists = 0;
    return 1;
}

int contact_db_service_group_add(contact_group_record* group, int*)
{
    NOTE("contact_db_service_group_add(%lx)", digest(group, sizeof *group));
    return 1;
}

int contact_db_service_group_update(int, int key_index, contact_group_record* group, int*)
{
    NOTE("contact_db_service_group_update(%d, %lx)", key_index, digest(group, sizeof *group));
    return 1;
}

int contact_db_service_group_delete(int, int key_index, int*)
{
    NOTE("contact_db_service_group_delete(%d)", key_index);
    return 1;
}

int contact_db_service_group_get_members(int, int key_index, int* indices, int* count, int*)
{
    NOTE("contact_db_service_group_get_members(%d, %d, %lx)", key_index, *count,
         digest(indices, static_cast<size_t>(*count) * sizeof *indices));
    std::memcpy(indices, MEMBERS, sizeof MEMBERS);
    *count = std::size(MEMBERS);
    return 1;
}

int contact_db_service_group_search(int, const char* query, int limit, int, contact_group_record* groups, int* count,
                                    int*, int mode)
{
    NOTE("contact_db_service_group_search(%s, %d, %d, %lx, %d)", query, limit, *count,
         digest(groups, static_cast<size_t>(*count) * sizeof *groups), mode);
    const bool all = mode == 0;
    std::memcpy(groups, all ? stored_groups : stored_groups + 1, all ? sizeof stored_groups : sizeof *groups);
    *count = all ? GROUPS : 1;
    return 1;
}

} // extern "C"

// ---- Organizer ------------------------------------------------------------------------------------------------------

static unsigned long digest_of_text(const char* text, size_t limit, unsigned long before)
{
    return text != nullptr ? digest(text, limit + 1, before) : before + 1;
}

static unsigned long digest_of(const org_full_record& record)
{
    unsigned long value = digest(bytes_of(record).data(), bytes_of(record).size());
    value = digest_of_text(record.summary, ORG_SUMMARY_MAX, value);
    value = digest_of_text(record.description, ORG_DESCRIPTION_MAX, value);
    value = digest_of_text(record.location, ORG_LOCATION_MAX, value);
    value = digest_of_text(record.text_172, ORG_TEXT_172_MAX, value);
    value = digest_of_text(record.text_340, ORG_TEXT_340_MAX, value);
    value = digest_of_text(record.text_344, ORG_TEXT_344_MAX, value);
    return digest_of_text(record.text_348, ORG_TEXT_348_MAX, value);
}

// Makes *record equal to the preset but for the text pointers.
static void copy_all_but_texts(const org_full_record& preset, org_full_record* record)
{
    const org_full_record texts = *record;
    *record = preset;
    record->summary = texts.summary;
    record->description = texts.description;
    record->location = texts.location;
    record->text_172 = texts.text_172;
    record->text_340 = texts.text_340;
    record->text_344 = texts.text_344;
    record->text_348 = texts.text_348;
}

template <size_t size>
static void copy_preset_text(char* buffer, const char (&text)[size])
{
    if (buffer != nullptr) std::memcpy(buffer, text, size);
}

extern "C" {

int org_db_service_connect_database(int*)
{
    NOTE("org_db_service_connect_database");
    return 1;
}

int org_db_service_disconnect_database(int*)
{
    NOTE("org_db_service_disconnect_database");
    return 1;
}

int org_db_service_init_full_record(org_full_record* record, int*)
{
    static constexpr org_full_record EMPTY = {};
    NOTE("org_db_service_init_full_record(%lx)", digest_of(*record));
    copy_all_but_texts(EMPTY, record);
    return 1;
}

int org_db_service_free_full_record(org_full_record* record, int*)
{
    NOTE("org_db_service_free_full_record(%lx)", digest_of(*record));
    for (char** text : {&record->summary, &record->description, &record->location, &record->text_172, &record->text_340,
                        &record->text_344, &record->text_348}) {
        std::free(*text);
        *text = nullptr;
    }
    return 1;
}

int org_db_service_get_record_count(int, int type, int* count, int*)
{
    NOTE("org_db_service_get_record_count(%d)", type);
    *count = FAST_RECORDS;
    return 1;
}

int org_db_service_get_records_id(int, int type, int count, int, int* indices, int*)
{
    NOTE("org_db_service_get_records_id(%d, %d, %lx)", type, count,
         digest(indices, static_cast<size_t>(count) * sizeof *indices));
    list_records(indices, count);
    return 1;
}

int org_db_service_get_record_full_field_by_index(int index, org_full_record* record, int*)
{
    NOTE("org_db_service_get_record_full_field_by_index(%d, %lx)", index, digest_of(*record));
    copy_all_but_texts(ordinary_item, record);
    // A few items share each date.
    constexpr int DAYS = 28;
    record->index = index;
    record->start_date_time.time.mday = record->repeat_end_or_due.time.mday = 1 + index % DAYS;
    if (index == FAST_MATCHING)
        copy_preset_text(record->summary, MATCHING_SUMMARY);
    else
        copy_preset_text(record->summary, SUMMARY);
    copy_preset_text(record->description, DESCRIPTION);
    copy_preset_text(record->location, LOCATION);
    return 1;
}

int org_db_service_add_record_full_field(int type, org_full_record* record, int* index, int*)
{
    NOTE("org_db_service_add_record_full_field(%d, %lx)", type, digest_of(*record));
    *index = FAST_RECORDS + 1;
    return 1;
}

int org_db_service_update_record_full_field(int index, org_full_record* record, int*)
{
    NOTE("org_db_service_update_record_full_field(%d, %lx)", index, digest_of(*record));
    return 1;
}

int org_db_service_delete_record(int index, int*)
{
    NOTE("org_db_service_delete_record(%d)", index);
    return 1;
}

} // extern "C"
