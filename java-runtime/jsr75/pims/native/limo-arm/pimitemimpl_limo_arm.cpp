#include "pimitemimpl_limo_arm.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "contactrecord.h"
#include "organizerrecord.h"
#include "pimnativeutil.h"
#include "pimutil.h"

// ---- Any list -------------------------------------------------------------------------------------------------------

static int32_t is_contact_deleted(trace_site site, int32_t recindex)
{
    unsigned char exists = 0;
    int32_t error = 0;

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT_AT(site, "initialize", error);
        return 1;
    }
    contact_db_service_contact_is_exist(0, recindex, &exists, &error); // The flag is what counts.
    return close_connection(site, LIST_CONTACT, nullptr, error, exists == 0 ? 1 : 0, 1);
}

static int32_t is_organizer_record_deleted(trace_site site, int32_t listtype, int32_t recindex)
{
    org_full_record record = {};
    int32_t error = 0;
    int32_t deleted = 0;

    if (native_function_initialize(listtype, &record, &error) != 1) {
        PIM_TRACE_ASSERT_AT(site, "initialize", error);
        return 1;
    }
    // Only a record that is not found is deleted; any other failure says nothing about the record.
    if (!org_db_service_get_record_full_field_by_index(recindex, &record, &error) &&
        error == ORG_ERR_RECORD_NOT_FOUND) {
        PIM_TRACE_AT(site, TRACE_STEP,
                     "ORG_ERR_RECORD_NOT_FOUND ret_val set to true  ***, "
                     "org_db_service_get_record_full_field_by_index is failed (error_code = %d)\n",
                     error);
        deleted = 1;
    }
    return close_connection(site, listtype, &record, error, deleted, 1);
}

int32_t pimItemImpl_isRecordDeletedN(int32_t listtype, int32_t recindex)
{
    int32_t deleted = 0;
    PIM_TRACE(TRACE_STEP, "%s listtype:%d, recindex:%d\n", __func__, listtype, recindex);

    switch (listtype) {
    case LIST_CONTACT: deleted = is_contact_deleted(trace_here(), recindex); break;
    case LIST_EVENT:
    case LIST_TODO: deleted = is_organizer_record_deleted(trace_here(), listtype, recindex); break;
    default: break;
    }
    PIM_TRACE(TRACE_STEP, "ret_val:%d\n", deleted);
    return deleted;
}

// The attribute of the entry at `index`, or `out_of_range` where the record has no such entry.
template <typename Entry>
static int32_t entry_attribute(std::span<Entry> all, int32_t index, std::span<const int32_t> attributes,
                               int32_t out_of_range)
{
    const Entry* entry = all.empty() ? nullptr : entry_at(all, index);
    return entry != nullptr ? attribute_of(attributes, entry->type) : out_of_range;
}

static int32_t contact_attribute_at(const contact_record& contact, int32_t field, int32_t index)
{
    switch (field) {
    case CONTACT_ADDR: return entry_attribute(addresses(contact), index, ADDRESS_ATTRIBUTES, ATTR_NONE);
    case CONTACT_TEL: return entry_attribute(phones(contact), index, PHONE_ATTRIBUTES, ATTR_NONE);
    // Kept: an e-mail address that is not there counts as a private one.
    case CONTACT_EMAIL: return entry_attribute(emails(contact), index, EMAIL_ATTRIBUTES, ATTR_EMAIL_PRIVATE);
    case CONTACT_URL: {
        const contact_homepage* slot = homepage_at(contact, index);
        return slot != nullptr ? attribute_of(URL_ATTRIBUTES, slot->type) : ATTR_NONE;
    }
    default: return ATTR_NONE;
    }
}

int32_t pimItemImpl_getAttributesN(int32_t listtype, int32_t, int32_t recindex, int32_t field, int32_t index)
{
    PIM_TRACE(TRACE_STEP, "pimItemImpl_getAttributesN recindex = %d, field = %d, attrindex = %d\n", recindex, field,
              index);
    if (listtype != LIST_CONTACT) return ATTR_NONE;

    return read_contact<int32_t>(
        trace_here(), recindex, {.opening = -1, .fetching = ATTR_NONE, .closing = -1},
        [&](const contact_record& contact) { return contact_attribute_at(contact, field, index); });
}

// Appends the names of the groups that the contact is a member of. Returns their number, or -1 when a name is
// too long to be handed back.
static int32_t category_names(const contact_record& contact, std::span<category_name, LIST_CATEGORIES_MAX> names)
{
    int32_t group_count = 0;
    int32_t found = 0;
    int32_t error = 0;

    contact_db_service_group_get_count(0, &group_count, &error); // A failure leaves the count at 0.
    for (int32_t key = 0; group_count > 0 && key < CONTACT_GROUP_MAX; ++key) {
        if (contact.membership[key] == 0) continue;

        contact_group_record group = {};
        if (!contact_db_service_group_get(0, key, &group, &error)) {
            PIM_TRACE(TRACE_HARD, "contact_db_service_group_get is failed (error code :%d)\n", error);
        } else if (const std::string_view name = text_of(group.name); !name.empty()) {
            // Kept: a name may have 64 bytes in the list's categories and only 63 here.
            if (name.size() >= CONTACT_GROUP_NAME_MAX) {
                PIM_TRACE(TRACE_HARD, "contact_group_record.name overflow..\n");
                return -1;
            }
            copy_text(names[static_cast<size_t>(found)].text, name);
            PIM_TRACE(TRACE_STEP, "contact_group_record.name : %s\n", names[static_cast<size_t>(found)].text);
            ++found;
        }
        if (found == group_count) break;
    }
    return found;
}

int32_t pimItemImpl_getCategoriesN(int32_t, int32_t, int32_t recindex,
                                   std::span<category_name, LIST_CATEGORIES_MAX> names)
{
    PIM_TRACE(TRACE_STEP, "pimItemImpl_getCategoriesN\n");
    return read_contact<int32_t>(
        trace_here(), recindex, {.opening = -1, .fetching = 0, .closing = -1},
        [&](const contact_record& contact) { return category_names(contact, names); },
        "contact_db_service_contact_get is failed (error code :%d)\n");
}

// ---- Field lists ----------------------------------------------------------------------------------------------------

// In the order in which fields are listed.
static constexpr int32_t CONTACT_CANDIDATES[] = {
    CONTACT_ADDR, CONTACT_NAME,  CONTACT_EMAIL, CONTACT_NICKNAME, CONTACT_NOTE,     CONTACT_ORG,
    CONTACT_TEL,  CONTACT_TITLE, CONTACT_URL,   CONTACT_BIRTHDAY, CONTACT_REVISION,
};
static constexpr int32_t EVENT_CANDIDATES[] = {
    EVENT_LOCATION, EVENT_NOTE, EVENT_SUMMARY, EVENT_ALARM, EVENT_END, EVENT_REVISION, EVENT_START,
};
static constexpr int32_t TODO_CANDIDATES[] = {
    TODO_NOTE, TODO_SUMMARY, TODO_COMPLETED, TODO_COMPLETION_DATE, TODO_DUE, TODO_REVISION, TODO_PRIORITY,
};

// Appends the candidates that `count_values` counts a value of. Kept: a count that failed is not 0, so
// its field is listed.
template <typename Counter>
static int32_t list_fields(trace_site site, std::span<const int32_t> candidates, int32_t recindex,
                           std::span<int32_t, LISTED_FIELDS_MAX> fields, Counter count_values)
{
    size_t listed = 0;
    PIM_TRACE_AT(site, TRACE_STEP, "%s\n", site.function);
    for (const int32_t field : candidates) {
        const int32_t count = count_values(recindex, field);
        PIM_TRACE_AT(site, TRACE_STEP, "%s return count :%d\n", site.function, count);
        if (count != 0) fields[listed++] = field;
    }
    PIM_TRACE_AT(site, TRACE_STEP, "%s return %d\n", site.function, static_cast<int>(listed));
    return static_cast<int32_t>(listed);
}

int32_t getField_contact(int32_t recindex, std::span<int32_t, LISTED_FIELDS_MAX> fields)
{
    return list_fields(trace_here(), CONTACT_CANDIDATES, recindex, fields, count_values_contact);
}

int32_t getField_event(int32_t recindex, std::span<int32_t, LISTED_FIELDS_MAX> fields)
{
    return list_fields(trace_here(), EVENT_CANDIDATES, recindex, fields, count_values_event);
}

int32_t getField_todo(int32_t recindex, std::span<int32_t, LISTED_FIELDS_MAX> fields)
{
    return list_fields(trace_here(), TODO_CANDIDATES, recindex, fields, count_values_todo);
}

// ---- Contact readers ------------------------------------------------------------------------------------------------

// Kept: a postal code alone does not make an address count.
static bool counts_as_address(const contact_address& address)
{
    return std::ranges::any_of(
        std::array{ADDR_POBOX, ADDR_EXTRA, ADDR_STREET, ADDR_LOCALITY, ADDR_REGION, ADDR_COUNTRY},
        [&](int32_t element) { return !address_text(address, element).empty(); });
}

static int32_t count_contact_values(const contact_record& contact, int32_t field)
{
    const auto count_if = [](auto all, auto holds_value) {
        return static_cast<int32_t>(std::count_if(all.begin(), all.end(), holds_value));
    };
    switch (field) {
    case CONTACT_ADDR: return count_if(addresses(contact), counts_as_address);
    case CONTACT_EMAIL:
        return count_if(emails(contact), [](const contact_email& email) { return email.email[0] != '\0'; });
    case CONTACT_TEL:
        return count_if(phones(contact), [](const contact_phone& phone) { return phone.number[0] != '\0'; });
    case CONTACT_URL:
        return count_if(homepages(contact), [](const contact_homepage& slot) { return slot.homepage[0] != '\0'; });
    case CONTACT_NAME: return contact.name_info.last_name[0] != '\0' || contact.name_info.first_name[0] != '\0' ? 1 : 0;
    case CONTACT_NICKNAME:
    case CONTACT_NOTE:
    case CONTACT_ORG:
    case CONTACT_TITLE: return contact_text(contact, field, 0).empty() ? 0 : 1;
    case CONTACT_BIRTHDAY: return is_set(contact.birthday) ? 1 : 0;
    case CONTACT_REVISION: return contact.save_time.sec != -1 ? 1 : 0;
    default: return 0;
    }
}

int32_t count_values_contact(int32_t recindex, int32_t field)
{
    PIM_TRACE(TRACE_STEP, "count_values_contact (field : %d, recindex : %d)\n", field, recindex);
    const int32_t count =
        read_contact<int32_t>(trace_here(), recindex, {.opening = -1, .fetching = 0, .closing = -1},
                              [&](const contact_record& contact) { return count_contact_values(contact, field); });
    PIM_TRACE(TRACE_STEP, "return count = %d\n", count);
    return count;
}

int8_t getContactString(int32_t recindex, int32_t field, int32_t index, item_text text)
{
    PIM_TRACE(TRACE_STEP, "getContactString\n");
    const int8_t went_through =
        read_contact<int8_t>(trace_here(), recindex, {.opening = 1, .fetching = 0, .closing = std::nullopt},
                             [&](const contact_record& contact) -> int8_t {
                                 if (const auto value = contact_text(contact, field, index); !value.empty())
                                     copy_text(text, value);
                                 return 1;
                             });
    PIM_TRACE(TRACE_STEP, "field : %d strData = %s\n", field, text.data());
    return went_through;
}

// Copies a text that is shorter than `limit` bytes; a longer one leaves its element empty.
static void copy_element(item_element& element, std::string_view text, size_t limit)
{
    if (!text.empty() && text.size() < limit) copy_text(element.text, text);
}

static void copy_name(const contact_record& contact, std::span<item_element, ADDR_ELEMENTS> elements)
{
    // Kept: a commit takes names of 65 bytes, this reader only shorter ones.
    constexpr size_t NAME_LIMIT = 65;
    copy_element(elements[NAME_FAMILY], text_of(contact.name_info.last_name), NAME_LIMIT);
    copy_element(elements[NAME_GIVEN], text_of(contact.name_info.first_name), NAME_LIMIT);
    copy_element(elements[NAME_OTHER], text_of(contact.nickname), ITEM_ELEMENT_SIZE);
}

static void copy_address(const contact_record& contact, int32_t index, std::span<item_element, ADDR_ELEMENTS> elements)
{
    const contact_address* address = entry_at(addresses(contact), index);
    if (address == nullptr) return;
    for (int32_t element = 0; element < ADDR_ELEMENTS; ++element)
        copy_element(elements[static_cast<size_t>(element)], address_text(*address, element), ITEM_ELEMENT_SIZE);
}

int8_t getContactStringArray(int32_t recindex, int32_t field, int32_t index,
                             std::span<item_element, ADDR_ELEMENTS> elements)
{
    PIM_TRACE(TRACE_STEP, "getContactStringArray\n");
    const int8_t went_through =
        read_contact<int8_t>(trace_here(), recindex, {.opening = 1, .fetching = 0, .closing = std::nullopt},
                             [&](const contact_record& contact) -> int8_t {
                                 if (field == CONTACT_NAME) copy_name(contact, elements);
                                 if (field == CONTACT_ADDR) copy_address(contact, index, elements);
                                 return 1;
                             });
    if (field == CONTACT_NAME) {
        PIM_TRACE(TRACE_STEP, "C_NAME, stringvaluess[currStringArrayIndex + C_NAME_FAMILY] = %s\n",
                  elements[NAME_FAMILY].text);
        PIM_TRACE(TRACE_STEP, "C_NAME, stringvaluess[currStringArrayIndex + C_NAME_GIVEN] = %s\n",
                  elements[NAME_GIVEN].text);
    }
    if (field == CONTACT_ADDR)
        for (size_t i = 0; i < elements.size(); ++i)
            PIM_TRACE(TRACE_STEP, "strData[%d] = %s", static_cast<int>(i), elements[i].text);
    return went_through;
}

static int64_t birthday_date(trace_site site, const broken_down_time& birthday)
{
    const int64_t date = to_java_date(birthday);
    PIM_TRACE_AT(site, TRACE_STEP, "birthday year:%d mon:%d mday:%d hour:%d min:%d sec:%d toUTCtime = %lld\n",
                 birthday.year, birthday.mon, birthday.mday, birthday.hour, birthday.min, birthday.sec,
                 static_cast<long long>(date / 1000));
    return date;
}

int64_t getContactDate(int32_t recindex, int32_t field, int32_t index)
{
    const trace_site site = trace_here();
    PIM_TRACE(TRACE_STEP, "getContactDate recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_contact<int64_t>(site, recindex, {.opening = -1, .fetching = 0, .closing = -1},
                                 [&](const contact_record& contact) -> int64_t {
                                     if (field == CONTACT_BIRTHDAY) return birthday_date(site, contact.birthday);
                                     if (field == CONTACT_REVISION) return to_java_date(contact.save_time);
                                     return 0;
                                 });
}

int32_t getContactInt(int32_t recindex, int32_t field, int32_t index)
{
    PIM_TRACE(TRACE_STEP, "getContactInt recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_contact<int32_t>(trace_here(), recindex, {.opening = -1, .fetching = 0, .closing = -1},
                                 [](const contact_record&) { return 0; }); // Contacts have no integer fields.
}

int8_t getContactBool(int32_t, int32_t, int32_t)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return 0; // Contacts have no boolean fields.
}

// ---- Event readers --------------------------------------------------------------------------------------------------

// Copies the text of a field that the record holds; one it does not hold leaves the buffer as it was.
template <size_t size>
static void copy_field_text(const org_full_record& record, const organizer_text (&rows)[size], int32_t field,
                            item_text text)
{
    const organizer_text* row = find_field(rows, field);
    if (row == nullptr) return;
    if (const std::string_view value = organizer_text_of(record, *row); !value.empty()) copy_text(text, value);
}

// 1 when the text or date `field` holds a value, else 0.
template <size_t texts, size_t dates>
static int32_t count_organizer_value(const org_full_record& record, const organizer_text (&text_rows)[texts],
                                     const organizer_date (&date_rows)[dates], int32_t field)
{
    if (const organizer_text* row = find_field(text_rows, field))
        return organizer_text_of(record, *row).empty() ? 0 : 1;
    if (const organizer_date* row = find_field(date_rows, field))
        return is_set(organizer_time_of(record, *row)) ? 1 : 0;
    return 0;
}

int8_t getEventString(int32_t recindex, int32_t field, int32_t index, item_text text)
{
    PIM_TRACE(TRACE_STEP, "getEventString recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_organizer<int8_t>(trace_here(), LIST_EVENT, recindex,
                                  {.opening = 1, .preparing = std::nullopt, .fetching = 0, .closing = 1},
                                  [&](const org_full_record& record) -> int8_t {
                                      copy_field_text(record, EVENT_TEXTS, field, text);
                                      return 1;
                                  });
}

// Kept: milliseconds in 32-bit arithmetic; the value wraps.
static int32_t wrapped_java_date(const broken_down_time& time)
{
    return static_cast<int32_t>(static_cast<uint32_t>(to_java_date(time)));
}

int32_t getEventInt(int32_t recindex, int32_t field, int32_t index)
{
    PIM_TRACE(TRACE_STEP, "getEventInt recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_organizer<int32_t>(trace_here(), LIST_EVENT, recindex,
                                   {.opening = -1, .preparing = std::nullopt, .fetching = 0, .closing = -1},
                                   [&](const org_full_record& record) {
                                       return field == EVENT_ALARM ? wrapped_java_date(record.alarm_time.time) : 0;
                                   });
}

int8_t getEventBool(int32_t, int32_t, int32_t)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return 0; // Events have no boolean fields.
}

int64_t getEventDate(int32_t recindex, int32_t field, int32_t index)
{
    PIM_TRACE(TRACE_STEP, "getEventDate recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_organizer<int64_t>(
        trace_here(), LIST_EVENT, recindex, {.opening = -1, .preparing = -1, .fetching = 0, .closing = -1},
        [&](const org_full_record& record) -> int64_t {
            // The alarm is a date too, but only getEventInt hands it out.
            const organizer_date* row = field != EVENT_ALARM ? find_field(EVENT_DATES, field) : nullptr;
            return row != nullptr ? to_java_date(organizer_time_of(record, *row)) : 0;
        });
}

int32_t count_values_event(int32_t recindex, int32_t field)
{
    PIM_TRACE(TRACE_STEP, "count_values_event, recindex=%d, field = %d\n", recindex, field);
    return read_organizer<int32_t>(
        trace_here(), LIST_EVENT, recindex, {.opening = -1, .preparing = std::nullopt, .fetching = 0, .closing = -1},
        [&](const org_full_record& record) { return count_organizer_value(record, EVENT_TEXTS, EVENT_DATES, field); },
        "org_db_service_get_record_full_field_by_index Fail..\n");
}

// ---- To-do readers --------------------------------------------------------------------------------------------------

int8_t getTodoString(int32_t recindex, int32_t field, int32_t index, item_text text)
{
    PIM_TRACE(TRACE_STEP, "getTodoString recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_organizer<int8_t>(
        trace_here(), LIST_TODO, recindex, {.opening = 1, .preparing = std::nullopt, .fetching = 0, .closing = 1},
        [&](const org_full_record& record) -> int8_t {
            copy_field_text(record, TODO_TEXTS, field, text);
            return 1;
        },
        "org_db_service_get_record_full_field_by_index() failed...\n");
}

int32_t getTodoInt(int32_t recindex, int32_t field, int32_t index)
{
    PIM_TRACE(TRACE_STEP, "getTodoInt ORG_PRIORITY_LOW %d and ORG_PRIORITY_HIGH %d ", ORG_PRIORITY_LOW,
              ORG_PRIORITY_HIGH);
    PIM_TRACE(TRACE_STEP, "getTodoInt recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_organizer<int32_t>(
        trace_here(), LIST_TODO, recindex, {.opening = -1, .preparing = -1, .fetching = 0, .closing = -1},
        [&](const org_full_record& record) {
            // The store's level as it is: nothing maps it to JSR 75's scale of 1 to 9.
            return field == TODO_PRIORITY && is_known_priority(record.priority) ? record.priority : 0;
        });
}

int8_t getTodoBool(int32_t recindex, int32_t field, int32_t index)
{
    PIM_TRACE(TRACE_STEP, "getTodoBool recindex = %d field = %d index = %d\n", recindex, field, index);
    // Kept: a store that cannot be reached reads as completed.
    return read_organizer<int8_t>(trace_here(), LIST_TODO, recindex,
                                  {.opening = 1, .preparing = 1, .fetching = 0, .closing = 1},
                                  [&](const org_full_record& record) -> int8_t {
                                      return field == TODO_COMPLETED && record.completed != 0 ? 1 : 0;
                                  });
}

int64_t getTodoDate(int32_t recindex, int32_t field, int32_t index)
{
    PIM_TRACE(TRACE_STEP, "getTodoDate recindex = %d field = %d index = %d\n", recindex, field, index);
    return read_organizer<int64_t>(trace_here(), LIST_TODO, recindex,
                                   {.opening = -1, .preparing = -1, .fetching = 0, .closing = -1},
                                   [&](const org_full_record& record) -> int64_t {
                                       const organizer_date* row = find_field(TODO_DATES, field);
                                       return row != nullptr ? to_java_date(organizer_time_of(record, *row)) : 0;
                                   });
}

int32_t count_values_todo(int32_t recindex, int32_t field)
{
    PIM_TRACE(TRACE_STEP, "count_values_todo recindex = %d field = %d\n", recindex, field);
    return read_organizer<int32_t>(trace_here(), LIST_TODO, recindex,
                                   {.opening = -1, .preparing = std::nullopt, .fetching = 0, .closing = -1},
                                   [&](const org_full_record& record) {
                                       if (field == TODO_COMPLETED) return 1; // Every to-do is completed or not.
                                       if (field == TODO_PRIORITY) return is_known_priority(record.priority) ? 1 : 0;
                                       return count_organizer_value(record, TODO_TEXTS, TODO_DATES, field);
                                   });
}

// ---- Commit requests ------------------------------------------------------------------------------------------------

namespace {

// One triple of `stringids`.
struct string_entry {
    int32_t field;
    int32_t index;
    int32_t attribute;
};

// One quadruple of `longvalue`.
struct long_entry {
    int32_t field;
    int32_t index;
    int32_t attribute;
    int64_t value;
};

} // namespace

static int32_t string_entry_count(const CommitRequest& request)
{
    return request.stringids[0];
}

static string_entry string_entry_at(const CommitRequest& request, int32_t position)
{
    const int32_t* triple = request.stringids + 1 + 3 * static_cast<ptrdiff_t>(position);
    return {triple[0], triple[1], triple[2]};
}

static int64_t long_entry_count(const CommitRequest& request)
{
    return request.longvalue[0];
}

static long_entry long_entry_at(const CommitRequest& request, int64_t position)
{
    const int64_t* quadruple = request.longvalue + 1 + 4 * static_cast<ptrdiff_t>(position);
    return {static_cast<int32_t>(quadruple[0]), static_cast<int32_t>(quadruple[1]), static_cast<int32_t>(quadruple[2]),
            quadruple[3]};
}

// ---- Contact commit -------------------------------------------------------------------------------------------------

namespace {

// A contact while a request is worked into it.
struct contact_draft {
    contact_record contact;
    int32_t current_address_count; // The next address to fill in, and likewise for the other two.
    int32_t current_email_count;
    int32_t current_phone_count;
    int32_t error; // 0, or COMMIT_VALUE_REFUSED once a value does not fit.
};

} // namespace

static constexpr int32_t ADDRESS_MAX = 5;
static constexpr int32_t EMAIL_MAX = 15;
static constexpr int32_t PHONE_MAX = 15;

// The longest texts, in bytes, where that is not what the field's size leaves beside the terminator.
static constexpr size_t NAME_TEXT_MAX = 65;
static constexpr size_t TITLE_TEXT_MAX = 65;
static constexpr size_t EMAIL_TEXT_MAX = 129;
static constexpr size_t PHONE_TEXT_MAX = 41;
static constexpr size_t HOMEPAGE_TEXT_MAX = 257;

// Copies `text` and its terminator to `field`, or refuses it when it is longer than `limit`.
// Kept: the terminator of a text that fills its field whole goes to the first byte of the field behind it.
static bool put_text(contact_draft& draft, char* field, const char* text, size_t limit)
{
    const size_t length = std::strlen(text);
    if (length > limit) {
        draft.error = COMMIT_VALUE_REFUSED;
        return false;
    }
    std::memcpy(field, text, length + 1);
    return true;
}

// Without room for another entry nothing of the contact can be saved, and the process ends.
// GCOV_EXCL_START: tested as a death, which counts nothing.
[[noreturn]] static void abort_growth(trace_site site, const char* assertion)
{
    std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", site.path, site.line, site.function, assertion);
    std::abort();
}
// GCOV_EXCL_STOP

// Makes room for the entry at `position`, zeroed, at the end of an array of the record.
template <typename Entry>
static Entry& entry_to_fill(trace_site site, Entry*& array, int32_t& count, int32_t position, const char* assertion)
{
    if (position >= count) {
        const auto size = static_cast<size_t>(position) + 1;
        auto* grown = static_cast<Entry*>(std::realloc(array, size * sizeof(Entry)));
        if (grown == nullptr) abort_growth(site, assertion); // GCOV_EXCL_BR_LINE: as there.
        array = grown;
        array[position] = {};
        count = position + 1;
    }
    return array[position];
}

// Appends to an address's full text, of which whole characters are kept as far as they fit.
static void append_full_text(contact_address& address, std::string_view text)
{
    const size_t length = text_of(address.full_text).size();
    const size_t kept = whole_characters(text, sizeof address.full_text - 1 - length);
    std::memcpy(address.full_text + length, text.data(), kept);
    address.full_text[length + kept] = '\0';
}

// The number of texts that a value consumed.
static constexpr int32_t ONE_TEXT = 1;

// `texts` are the seven elements, each of which may be null.
static int32_t put_address(contact_draft& draft, const char* const* texts, int32_t attribute)
{
    // The order of the parts matters: a part that fills its field whole empties the one behind it in the record.
    constexpr int32_t ORDER[] = {ADDR_POBOX,  ADDR_EXTRA,      ADDR_STREET, ADDR_LOCALITY,
                                 ADDR_REGION, ADDR_POSTALCODE, ADDR_COUNTRY};
    contact_record& contact = draft.contact;

    if (std::all_of(texts, texts + ADDR_ELEMENTS, [](const char* text) { return text == nullptr || *text == '\0'; })) {
        PIM_TRACE(TRACE_STEP, "address is null\n");
        return ADDR_ELEMENTS;
    }
    if (draft.current_address_count >= ADDRESS_MAX) {
        PIM_TRACE(TRACE_STEP, "address full\n");
        return ADDR_ELEMENTS;
    }

    contact_address& address = entry_to_fill(trace_here(), contact.address_info, contact.postal_count,
                                             draft.current_address_count, "contact_record.address_info != ((void *)0)");
    PIM_TRACE(TRACE_STEP, "current_address_count : %d contact_record.postal_count : %d\n", draft.current_address_count,
              contact.postal_count);
    for (const int32_t element : ORDER) {
        const char* text = texts[element];
        if (text == nullptr) continue;
        const std::span<char> part = address_part(address, element);
        if (!put_text(draft, part.data(), text, part.size())) return ONE_TEXT;
        append_full_text(address, text);
        if (element != ADDR_POBOX) append_full_text(address, " ");
    }
    address.type = stored_type(ADDRESS_ATTRIBUTES, attribute);
    address.position = draft.current_address_count++;
    return ADDR_ELEMENTS;
}

static int32_t put_email(contact_draft& draft, const char* text, int32_t attribute)
{
    contact_record& contact = draft.contact;

    if (text == nullptr) return ONE_TEXT;
    if (draft.current_email_count >= EMAIL_MAX) {
        PIM_TRACE(TRACE_STEP, "e-mail is full\n");
        return ONE_TEXT;
    }

    contact_email& email = entry_to_fill(trace_here(), contact.email_info, contact.email_count,
                                         draft.current_email_count, "contact_record.email_info != ((void *)0)");
    PIM_TRACE(TRACE_STEP, "current_email_count = %d contact_record.email_count = %d\n", draft.current_email_count,
              contact.email_count);
    if (!put_text(draft, email.email, text, EMAIL_TEXT_MAX)) return ONE_TEXT;
    email.type = stored_type(EMAIL_ATTRIBUTES, attribute);
    email.position = draft.current_email_count++;
    return ONE_TEXT;
}

static int32_t put_phone(contact_draft& draft, const char* text, int32_t attribute)
{
    contact_record& contact = draft.contact;

    if (text == nullptr) return ONE_TEXT;
    if (draft.current_phone_count >= PHONE_MAX) {
        PIM_TRACE(TRACE_STEP, "phone number is full\n");
        return ONE_TEXT;
    }

    contact_phone& phone = entry_to_fill(trace_here(), contact.phone_info, contact.phone_count,
                                         draft.current_phone_count, "contact_record.phone_info != ((void *)0)");
    PIM_TRACE(TRACE_STEP, "current_phone_count : %d contact_record.phone_count = %d\n", draft.current_phone_count,
              contact.phone_count);
    if (!put_text(draft, phone.number, text, PHONE_TEXT_MAX)) return ONE_TEXT;
    phone.type = stored_type(PHONE_ATTRIBUTES, attribute);
    phone.position = draft.current_phone_count++;
    return ONE_TEXT;
}

static int32_t put_name(contact_draft& draft, const char* family, const char* given)
{
    contact_name& name = draft.contact.name_info;

    if (family != nullptr) {
        PIM_TRACE(TRACE_STEP, "C_NAME, stringvaluess[currStringArrayIndex + C_NAME_FAMILY] = %s\n", family);
        if (!put_text(draft, name.last_name, family, NAME_TEXT_MAX)) return ONE_TEXT;
    }
    if (given != nullptr) {
        PIM_TRACE(TRACE_STEP, "C_NAME, stringvaluess[currStringArrayIndex + C_NAME_GIVEN] = %s\n", given);
        if (!put_text(draft, name.first_name, given, NAME_TEXT_MAX)) return ONE_TEXT;
    }
    // Kept: a null name is not consumed, so the next value starts at the given name's text when the family name is
    // null.
    return family != nullptr && given != nullptr ? 2 : ONE_TEXT;
}

static int32_t put_single_text(contact_draft& draft, char* field, const char* text, size_t limit)
{
    if (text != nullptr) put_text(draft, field, text, limit);
    return ONE_TEXT;
}

static int32_t put_title(contact_draft& draft, const char* text)
{
    // Kept: these go to the console.
    if (text == nullptr)
        std::puts("\n\n!!!!!!!!!!!!!!!!!!!!!!!!!!!");
    else
        std::printf("\n\nstrlen(stringvaluess[currStringArrayIndex]) = %dsizeof(contact_record.job_title) = %d\n",
                    static_cast<int>(std::strlen(text)), static_cast<int>(sizeof draft.contact.job_title));
    return put_single_text(draft, draft.contact.job_title, text, TITLE_TEXT_MAX);
}

static int32_t put_note(contact_draft& draft, const char* text)
{
    if (text == nullptr) return ONE_TEXT;

    const size_t size = std::strlen(text) + 1;
    auto* note = static_cast<char*>(std::malloc(size));
    if (note == nullptr) {
        PIM_TRACE(TRACE_HARD, "memory allocation failed..\n");
        draft.error = COMMIT_VALUE_REFUSED;
        return ONE_TEXT;
    }
    std::memcpy(note, text, size);
    std::free(draft.contact.note);
    draft.contact.note = note;
    draft.contact.note_size = static_cast<int32_t>(size);
    return ONE_TEXT;
}

static int32_t put_homepage(contact_draft& draft, const char* text, int32_t index, int32_t attribute)
{
    if (index >= CONTACT_HOMEPAGE_MAX) {
        draft.error = COMMIT_VALUE_REFUSED;
        return ONE_TEXT;
    }
    contact_homepage& slot = draft.contact.homepage_info[index];
    if (text != nullptr && !put_text(draft, slot.homepage, text, HOMEPAGE_TEXT_MAX)) return ONE_TEXT;
    slot.type = stored_type(URL_ATTRIBUTES, attribute);
    return ONE_TEXT;
}

// Works one value into the contact and returns the number of texts it consumed.
static int32_t put_string_value(contact_draft& draft, const string_entry& entry, const char* const* texts)
{
    contact_record& contact = draft.contact;

    if (entry.index < 0) {
        draft.error = COMMIT_VALUE_REFUSED;
        return ONE_TEXT;
    }
    switch (entry.field) {
    case CONTACT_ADDR: return put_address(draft, texts, entry.attribute);
    case CONTACT_EMAIL: return put_email(draft, *texts, entry.attribute);
    case CONTACT_NAME: return put_name(draft, texts[NAME_FAMILY], texts[NAME_GIVEN]);
    case CONTACT_NICKNAME: return put_single_text(draft, contact.nickname, *texts, sizeof contact.nickname - 1);
    case CONTACT_NOTE: return put_note(draft, *texts);
    case CONTACT_ORG: return put_single_text(draft, contact.company_name, *texts, sizeof contact.company_name - 1);
    case CONTACT_TEL: return put_phone(draft, *texts, entry.attribute);
    case CONTACT_TITLE: return put_title(draft, *texts);
    case CONTACT_URL: return put_homepage(draft, *texts, entry.index, entry.attribute);
    default: return ONE_TEXT;
    }
}

static void put_string_values(contact_draft& draft, const CommitRequest& request)
{
    ptrdiff_t currStringArrayIndex = 0;
    for (int32_t i = 0; i < string_entry_count(request); ++i) {
        const string_entry entry = string_entry_at(request, i);
        PIM_TRACE(TRACE_STEP, "curField : %d currStringArrayIndex : %d currAtrrib : %d\n", entry.field,
                  static_cast<int>(currStringArrayIndex), entry.attribute);
        currStringArrayIndex += put_string_value(draft, entry, request.stringvaluess + currStringArrayIndex);
    }
    for (const contact_phone& phone : phones(draft.contact))
        PIM_TRACE(TRACE_STEP,
                  "The valuse of contact_record.phone_info[%d].number %.*s and attri_value %d\n ---------->",
                  phone.position, static_cast<int>(sizeof phone.number), phone.number, phone.type);
}

static void put_long_values(contact_draft& draft, const CommitRequest& request)
{
    for (int64_t i = 0; i < long_entry_count(request); ++i) {
        const long_entry entry = long_entry_at(request, i);
        const int64_t seconds = java_date_seconds(entry.value);
        PIM_TRACE(TRACE_STEP, "value = %lld, time = %lld\n", static_cast<long long>(entry.value),
                  static_cast<long long>(seconds));
        PIM_TRACE(TRACE_STEP, "curField : %d currIndex : %d currAttrib : %d\n", entry.field, entry.index,
                  entry.attribute);
        if (entry.index < 0)
            draft.error = COMMIT_VALUE_REFUSED;
        else if (entry.field == CONTACT_BIRTHDAY)
            draft.contact.birthday = to_local_time(seconds);
        else if (entry.field == CONTACT_REVISION)
            draft.contact.save_time.sec = static_cast<int32_t>(seconds); // The store makes a time of it.
    }
}

// Makes the contact a member of each group that bears one of the request's category names. Returns 0, or what the
// commit is to return instead of saving. Memberships are only ever added.
static int32_t put_memberships(trace_site site, contact_draft& draft, const CommitRequest& request)
{
    static constexpr char ALL_GROUPS[] = "id >= 0";
    int32_t group_count = 0;
    int32_t error = 0;

    if (!contact_db_service_group_get_count(0, &group_count, &error))
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_get_count Fail..(%d)\n", error);
    PIM_TRACE_AT(site, TRACE_STEP, "SOON COMMIT!!  categorycount= %d recindex = %d\n", group_count, request.recindex);
    if (request.categories == nullptr || request.categorycount == 0) return 0;

    const auto capacity = static_cast<size_t>(std::max(group_count, 0));
    const auto groups = allocate_zeroed<contact_group_record>(std::max<size_t>(capacity, 1));
    if (groups == nullptr) {
        PIM_TRACE_AT(site, TRACE_RECOVERABLE, "memory allocation failed..\n");
        return -1;
    }
    PIM_TRACE_AT(site, TRACE_STEP, "DB query [%s]\n", ALL_GROUPS);
    int32_t found = static_cast<int32_t>(capacity);
    if (!contact_db_service_group_search(0, ALL_GROUPS, 20, 0, groups.get(), &found, &error, 0)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_get_all_records Fail..\n");
        return 0;
    }

    const auto names = std::span(request.categories, static_cast<size_t>(std::max(request.categorycount, 0)));
    const auto listed = std::min(capacity, static_cast<size_t>(std::max(found, 0)));
    for (const contact_group_record& group : std::span(groups.get(), listed)) {
        const std::string_view group_name = text_of(group.name);
        const int32_t key = group.group_key.index;
        if (group_name.empty()) return COMMIT_VALUE_REFUSED;
        const bool wanted =
            std::ranges::any_of(names, [&](const char* name) { return name != nullptr && group_name == name; });
        if (wanted && key >= 0 && key < CONTACT_MEMBERSHIP_SIZE) draft.contact.membership[key] = 1;
    }
    return 0;
}

// Adds or updates the contact. Returns its record index, or -1.
static int32_t save_contact(trace_site site, contact_record& contact, int32_t recindex, int32_t* error)
{
    if (recindex < 1) {
        PIM_TRACE_AT(site, TRACE_STEP, "---- contact_db_service_contact_add ----\n");
        if (contact_db_service_contact_add(&contact, error)) return contact.index;
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_contact_add is failed (error : %d)\n", *error);
        return -1;
    }
    contact.index = recindex;
    PIM_TRACE_AT(site, TRACE_STEP, "---- contact_db_service_contact_update ----\n");
    if (contact_db_service_contact_update(0, recindex, &contact, error)) return recindex;
    PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_contact_update is failed (error : %d)\n", *error);
    return -1;
}

// Begins with an empty contact, or for an update with the stored one, behind whose entries the request's are appended.
static bool begin_draft(trace_site site, contact_draft& draft, int32_t recindex, int32_t* error)
{
    contact_record& contact = draft.contact;
    if (recindex < 1) return true;

    PIM_TRACE_AT(site, TRACE_STEP, "It's update\n");
    if (!contact_db_service_contact_get(0, recindex, 0, &contact, error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_contact_get is failed error_code : %d\n", *error);
        return false;
    }
    // A count that promises entries which are not there counts as 0.
    draft.current_address_count = contact.postal_count = static_cast<int32_t>(addresses(contact).size());
    draft.current_email_count = contact.email_count = static_cast<int32_t>(emails(contact).size());
    draft.current_phone_count = contact.phone_count = static_cast<int32_t>(phones(contact).size());
    return true;
}

// Works the request into the draft and saves it. Every value is looked at, also behind one that is refused.
static int32_t fill_and_save(trace_site site, contact_draft& draft, const CommitRequest& request, int32_t* error)
{
    if (!begin_draft(site, draft, request.recindex, error)) return -1;
    put_string_values(draft, request);
    put_long_values(draft, request);
    if (draft.error != 0) return draft.error;

    const int32_t refused = put_memberships(site, draft, request);
    return refused != 0 ? refused : save_contact(site, draft.contact, request.recindex, error);
}

int32_t pimItemImpl_contact_commitN(const CommitRequest& request)
{
    contact_draft draft = {};
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "pimItemImpl_contact_commitN\n");
    PIM_TRACE(TRACE_STEP, "stringids[0] : %d, longvalue[0] : %lld\n", request.stringids[0],
              static_cast<long long>(request.longvalue[0]));

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return -1;
    }
    const int32_t result = fill_and_save(trace_here(), draft, request, &error);
    contact_db_service_contact_free(&draft.contact);
    return close_connection(trace_here(), LIST_CONTACT, nullptr, error, result, -1);
}

// ---- Organizer commits ----------------------------------------------------------------------------------------------

namespace {

// What became of a request's texts, row by row of the list's text fields.
template <size_t size>
struct taken_texts {
    int32_t status = 0;              // COMMIT_VALUE_REFUSED once a text was too long.
    const char* accepted[size] = {}; // The request's own text that was copied to the record last.
};

} // namespace

// Copies the request's texts to the record's buffers. A text longer than its limit is left out, and so is one
// whose buffer could not be allocated.
template <size_t size>
static taken_texts<size> put_texts(trace_site site, const organizer_text (&rows)[size], const CommitRequest& request,
                                   org_full_record& record)
{
    taken_texts<size> taken;
    for (int32_t i = 0; i < string_entry_count(request); ++i) {
        const int32_t field = string_entry_at(request, i).field;
        const char* text = request.stringvaluess[i];
        if (text == nullptr) continue;

        const organizer_text* row = find_field(rows, field);
        if (row == nullptr) {
            PIM_TRACE_AT(site, TRACE_STEP, "unknown field:%d\n", field);
            continue;
        }
        const size_t length = std::strlen(text);
        if (length > row->limit) {
            PIM_TRACE_AT(site, TRACE_STEP, "field:%d takes %d bytes\n", field, static_cast<int>(row->limit));
            taken.status = COMMIT_VALUE_REFUSED;
        } else if (char* buffer = record.*row->text) {
            std::memcpy(buffer, text, length + 1);
            taken.accepted[row - rows] = text;
        }
    }
    return taken;
}

// Writes the nine words of a date; what follows them stays.
static void put_date(org_date_time& date, int64_t milliseconds)
{
    date.time = to_local_time(java_date_seconds(milliseconds));
}

static void put_event_long_value(trace_site site, org_full_record& record, const long_entry& entry)
{
    if (const organizer_date* row = find_field(EVENT_DATES, entry.field)) {
        org_date_time& date = record.*row->date;
        put_date(date, entry.value);
        if (entry.field == EVENT_REVISION) pim_mktime(&date.time);
        return;
    }
    switch (entry.field) {
    case REPEAT_END: put_date(record.repeat_end_or_due, entry.value); break;
    case REPEAT_FREQUENCY:
        if (entry.value >= FREQUENCY_DAILY && entry.value <= FREQUENCY_YEARLY)
            record.repeat_term = static_cast<int32_t>(entry.value) - FREQUENCY_DAILY + ORG_REPEAT_DAILY;
        // Kept: any frequency begins a new interval, so an interval counts only when it comes after it.
        record.repeat_interval = 1;
        break;
    case REPEAT_INTERVAL: record.repeat_interval = static_cast<int32_t>(entry.value); break;
    default: PIM_TRACE_AT(site, TRACE_STEP, "unknown long field:%d\n", entry.field); break;
    }
}

static void put_todo_long_value(org_full_record& record, const long_entry& entry)
{
    if (const organizer_date* row = find_field(TODO_DATES, entry.field)) {
        put_date(record.*row->date, entry.value);
        return;
    }
    if (entry.field == TODO_COMPLETED) record.completed = entry.value == 1 ? 1 : 0;
    if (entry.field == TODO_PRIORITY) record.priority = static_cast<int32_t>(entry.value); // Kept: not mapped.
}

int32_t pimItemImpl_event_commitN(const CommitRequest& request)
{
    org_full_record record = {};
    int32_t error = 0;
    int32_t result = request.recindex;
    bool stored = false;
    PIM_TRACE(TRACE_STEP, "pimItemImpl_event_commitN recindex = %d\n", request.recindex);

    if (native_function_initialize(LIST_EVENT, &record, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return -1;
    }

    const auto texts = put_texts(trace_here(), EVENT_TEXTS, request, record);
    for (int64_t i = 0; i < long_entry_count(request); ++i)
        put_event_long_value(trace_here(), record, long_entry_at(request, i));
    if (texts.status != 0) {
        PIM_TRACE(TRACE_HARD, "pim_error_code != 0 somewhere Fail..\n");
        return close_connection(trace_here(), LIST_EVENT, &record, error, texts.status, -1);
    }

    record.kind = ORG_KIND_EVENT;
    int32_t& start_year = record.start_date_time.time.year;
    const int32_t end_year = record.end_date_time.time.year;
    PIM_TRACE(TRACE_STEP, "Before add in event----->recindex %d\n", request.recindex);
    PIM_TRACE(TRACE_STEP, "start year %d, end year %d\n", start_year, end_year);
    // Kept: an event that ends in an earlier year than it starts is moved to start in 1900; years alone count.
    if (end_year < start_year) start_year = 0;

    if (request.recindex < 1) {
        result = 0;
        stored = org_db_service_add_record_full_field(ORG_TYPE_EVENT, &record, &result, &error) != 0;
        if (!stored)
            PIM_TRACE(TRACE_HARD, "org_db_service_add_record_full_field is failed (error : 0x%X)\n",
                      static_cast<unsigned>(error));
    } else {
        record.index = request.recindex;
        stored = org_db_service_update_record_full_field(request.recindex, &record, &error) != 0;
        if (!stored) PIM_TRACE(TRACE_HARD, "org_db_service_update_record_full_field is failed (error : %d)\n", error);
    }

    // Kept: a refused event is closed here and once more below, and the result is as if the store had taken it.
    if (!stored) {
        if (native_function_finalize(LIST_EVENT, &record) != 1) {
            PIM_TRACE_ASSERT("final", error);
            return -1;
        }
        detach_text_buffers(&record);
    }
    PIM_TRACE(TRACE_STEP, "org_sch_record.index=%d, index=%d\n", record.index, result);
    return close_connection(trace_here(), LIST_EVENT, &record, error, result, -1);
}

int32_t pimItemImpl_todo_commitN(const CommitRequest& request)
{
    org_full_record record = {};
    int32_t error = 0;
    int32_t result = request.recindex;
    PIM_TRACE(TRACE_STEP, "pimItemImpl_todo_commitN recindex = %d\n", request.recindex);

    if (native_function_initialize(LIST_TODO, &record, &error) <= 0) {
        PIM_TRACE_ASSERT("initialize", error);
        return -1;
    }

    const auto texts = put_texts(trace_here(), TODO_TEXTS, request, record);
    for (int64_t i = 0; i < long_entry_count(request); ++i) put_todo_long_value(record, long_entry_at(request, i));

    // Kept: a to-do with a text that is too long is stored without it, after a first close. That close released the
    // record's buffers, so the texts that were accepted come from the request itself.
    if (texts.status != 0) {
        if (native_function_finalize(LIST_TODO, &record) != 1) {
            PIM_TRACE_ASSERT("final", error);
            return -1;
        }
        detach_text_buffers(&record);
        for (size_t i = 0; i < std::size(TODO_TEXTS); ++i)
            record.*TODO_TEXTS[i].text = const_cast<char*>(texts.accepted[i]);
    }

    record.kind = ORG_KIND_TODO;
    if (request.recindex < 1) {
        result = 0;
        if (!org_db_service_add_record_full_field(ORG_TYPE_TODO, &record, &result, &error)) {
            PIM_TRACE(TRACE_HARD, "org_db_service_add_record_full_field is failed (error : %d)\n", error);
            result = -1;
        }
    } else {
        record.index = request.recindex;
        if (!org_db_service_update_record_full_field(request.recindex, &record, &error)) {
            PIM_TRACE(TRACE_HARD, "org_db_service_update_record_full_field is failed (error : %d)\n", error);
            result = -1;
        }
    }

    if (texts.status != 0) detach_text_buffers(&record);
    return close_connection(trace_here(), LIST_TODO, &record, error, result, -1);
}
