#include "pimlistimpl_limo_arm.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "contactrecord.h"
#include "listschema.h"
#include "organizerrecord.h"
#include "pimnativeutil.h"
#include "pimutil.h"

// ---- Index lists ----------------------------------------------------------------------------------------------------

// The first position of an index in a list; the list's size when it is not there. A walk does this at each step, so
// whole stretches are compared without stopping in them, which the compiler makes one comparison of many.
static size_t first_position(std::span<const int32_t> indices, int32_t index)
{
    constexpr size_t STRETCH = 64;
    size_t start = 0;
    for (; indices.size() - start >= STRETCH; start += STRETCH) {
        int32_t is_there = 0;
        for (const int32_t each : indices.subspan(start, STRETCH)) is_there |= each == index;
        if (is_there != 0) break;
    }
    const auto rest = indices.subspan(start);
    return start + static_cast<size_t>(std::ranges::find(rest, index) - rest.begin());
}

// The position in a list that follows `after`; the list's size at its end.
static size_t position_after(std::span<const int32_t> indices, int32_t after)
{
    if (indices.empty() || after == NO_RECORD) return 0;
    if (after == indices.back()) return indices.size();

    // Kept: an index no longer listed restarts the walk; a stale index never ends it.
    const size_t found = first_position(indices, after);
    return found == indices.size() ? 0 : found + 1;
}

int32_t index_after(std::span<const int32_t> indices, int32_t after)
{
    const size_t position = position_after(indices, after);
    return position < indices.size() ? indices[position] : NO_RECORD;
}

namespace {

// Record indexes as a store listed them.
struct index_list {
    heap_array<int32_t> block;
    int32_t count = 0;

    std::span<const int32_t> view() const { return {block.get(), static_cast<size_t>(std::max(count, 0))}; }
};

enum class listing { done, failed, no_memory };

} // namespace

// Room for `count` indexes, each -1 until the store has written it.
static heap_array<int32_t> allocate_indices(trace_site site, int32_t count)
{
    const size_t size = static_cast<size_t>(std::max(count, 1)) * sizeof(int32_t);
    heap_array<int32_t> block(static_cast<int32_t*>(std::malloc(size)));
    if (block == nullptr)
        PIM_TRACE_AT(site, TRACE_HARD, "memory allocation failed..\n");
    else
        std::memset(block.get(), -1, size);
    return block;
}

// Lists the contacts, of which there are `count`.
static listing list_contacts(trace_site site, int32_t count, index_list* list, int32_t* error)
{
    list->block = allocate_indices(site, count);
    if (list->block == nullptr) return listing::no_memory;

    list->count = count;
    if (contact_db_service_contact_get_all_indices(0, list->block.get(), &list->count, error)) {
        list->count = std::min(list->count, count);
        return listing::done;
    }
    if (*error == CONTACT_ERROR_NO_RECORDS)
        PIM_TRACE_AT(site, TRACE_STEP, "contact_db_service_contact_get_all_indices return no records.\n");
    else
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_contact_get_all_indices return error(%d) \n", *error);
    return listing::failed;
}

// Counts and lists the events or to-dos.
static listing list_organizer_records(trace_site site, int32_t type, index_list* list, int32_t* error)
{
    // A failed count only counts for what it leaves, which is 0 unless the store wrote one.
    if (!org_db_service_get_record_count(0, type, &list->count, error))
        PIM_TRACE_AT(site, TRACE_HARD, "org_db_service_get_record_count is fail.....(%d)\n", *error);

    list->block = allocate_indices(site, list->count);
    if (list->block == nullptr) return listing::no_memory;

    if (!org_db_service_get_records_id(0, type, list->count, 0, list->block.get(), error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "org_db_service_get_records_id fail(%d)\n", *error);
        return listing::failed;
    }
    return listing::done;
}

static int32_t organizer_type(int32_t listtype)
{
    return listtype == LIST_EVENT ? ORG_TYPE_EVENT : ORG_TYPE_TODO;
}

// ---- Walks ----------------------------------------------------------------------------------------------------------

static int32_t next_contact(trace_site site, int32_t recindex)
{
    index_list contacts;
    int32_t count = 0;
    int32_t error = 0;

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT_AT(site, "initialize", error);
        return NO_RECORD;
    }
    if (!contact_db_service_contact_get_count(0, &count, &error)) {
        PIM_TRACE_ASSERT_AT(site, "contact_db_service_contact_get_count", error);
        return NO_RECORD; // Kept: the connection stays open.
    }

    int32_t next = NO_RECORD;
    if (count < 1)
        PIM_TRACE_AT(site, TRACE_STEP, "contact_count is 0 or under 0\n");
    else if (list_contacts(site, count, &contacts, &error) == listing::done)
        next = index_after(contacts.view(), recindex);
    return close_connection(site, LIST_CONTACT, nullptr, error, next, NO_RECORD);
}

// `choose` picks the result from the listed indexes; it may fetch into the connection's record.
template <typename Choice>
static int32_t next_organizer_record(trace_site site, int32_t listtype, Choice choose)
{
    org_full_record record = {};
    index_list records;
    int32_t error = 0;

    if (native_function_initialize(listtype, &record, &error) != 1) {
        PIM_TRACE_ASSERT_AT(site, "initialize", error);
        return NO_RECORD;
    }

    const listing listed = list_organizer_records(site, organizer_type(listtype), &records, &error);
    // Kept: without memory it is the contact connection that is closed, and the record stays with its buffers.
    if (listed == listing::no_memory) return close_connection(site, LIST_CONTACT, nullptr, error, NO_RECORD, NO_RECORD);

    const int32_t next = listed == listing::done ? choose(records.view(), record) : NO_RECORD;
    return close_connection(site, listtype, &record, error, next, NO_RECORD);
}

int32_t pimlistimpl_nextRecordN(int32_t listtype, int32_t, int32_t recindex)
{
    int32_t next = NO_RECORD;
    PIM_TRACE(TRACE_STEP, "%s, recindex = %d\n", __func__, recindex);

    switch (listtype) {
    case LIST_CONTACT: next = next_contact(trace_here(), recindex); break;
    case LIST_EVENT:
    case LIST_TODO:
        next = next_organizer_record(trace_here(), listtype, [&](std::span<const int32_t> indices, org_full_record&) {
            return index_after(indices, recindex);
        });
        break;
    default: PIM_TRACE(TRACE_HARD, "qm4ruv : list type is wrong, must be(Contact, Event, Todo)\n"); return NO_RECORD;
    }
    PIM_TRACE(TRACE_STEP, "index: %d \n", next);
    return next;
}

// The contact listed after `after` among those of no category. Unlike the other walks this one ends at an index
// that is no longer listed.
static int32_t contact_after(const GList* contacts, int32_t after)
{
    const auto index_of = [](const GList* node) { return *static_cast<const int32_t*>(node->data); };

    if (contacts == nullptr) return NO_RECORD;
    if (after == NO_RECORD) return index_of(contacts);
    for (const GList* node = contacts; node->next != nullptr; node = node->next)
        if (index_of(node) == after) return index_of(node->next);
    return NO_RECORD;
}

static int32_t next_without_category(trace_site site, int32_t recindex, int32_t* error)
{
    // Kept: a block that nothing is written to; without it the walk ends.
    constexpr size_t WORK_BLOCK_SIZE = 1496;
    const heap_array<char> work_block = allocate_zeroed<char>(WORK_BLOCK_SIZE);
    if (work_block == nullptr) {
        PIM_TRACE_AT(site, TRACE_HARD, "memory allocation failed..\n");
        return NO_RECORD;
    }

    GList* contacts = nullptr;
    if (!contact_db_service_search_contacts_of_no_group(nullptr, 1024, "", 9, &contacts, error)) {
        PIM_TRACE_AT(site, TRACE_HARD, ">>[ASSERT][%s][%d]contact_db_service_search_contacts_of_no_group FAIL(%d)\n\n",
                     site.function, site.line, *error);
        return NO_RECORD;
    }
    const int32_t next = contact_after(contacts, recindex);
    g_list_free_full(contacts, std::free);
    return next;
}

// Lists the members of the category `name`.
static listing list_members(trace_site site, const char* name, index_list* members, int32_t* error)
{
    contact_group_record group = {};
    int32_t group_id = 0;

    if (!contact_db_service_group_get_id_by_name(0, name, &group_id, error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_get_id_by_name FAIL(%d)\n", *error);
        return listing::failed;
    }
    if (!contact_db_service_group_get(0, group_id, &group, error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_get FAIL(%d)\n", *error);
        return listing::failed;
    }

    // The group record names no member count, so there is room for every contact of a store.
    members->block = allocate_indices(site, CONTACT_RECORD_MAX);
    if (members->block == nullptr) return listing::no_memory;

    members->count = CONTACT_RECORD_MAX;
    if (!contact_db_service_group_get_members(0, group_id, members->block.get(), &members->count, error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_get_members FAIL\n");
        return listing::failed;
    }
    members->count = std::min(members->count, static_cast<int32_t>(CONTACT_RECORD_MAX));
    return listing::done;
}

int32_t pimlistimpl_nextRecordInCategoryN(int32_t listtype, int32_t, int32_t recindex, const char* name)
{
    index_list members;
    int32_t error = 0;
    int32_t next = NO_RECORD;
    PIM_TRACE(TRACE_STEP, "%s, recindex = %d\n", __func__, recindex);

    // Kept: a list without categories closes a contact connection that it never opened.
    if (listtype != LIST_CONTACT)
        return close_connection(trace_here(), LIST_CONTACT, nullptr, error, NO_RECORD, NO_RECORD);

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return NO_RECORD;
    }

    if (name == nullptr) {
        next = next_without_category(trace_here(), recindex, &error);
    } else {
        const listing listed = list_members(trace_here(), name, &members, &error);
        if (listed == listing::no_memory)
            return close_connection(trace_here(), LIST_CONTACT, nullptr, error, NO_RECORD, NO_RECORD);

        // Kept: any error, one that opening the connection left included, ends the walk and leaves the connection open.
        if (error != 0) {
            PIM_TRACE(TRACE_HARD, "Error occured!\n");
            return NO_RECORD;
        }
        if (listed == listing::done) next = index_after(members.view(), recindex);
    }

    next = close_connection(trace_here(), LIST_CONTACT, nullptr, error, next, NO_RECORD);
    PIM_TRACE(TRACE_STEP, "index: %d \n", next);
    return next;
}

// ---- Text search ----------------------------------------------------------------------------------------------------

// Whether one text of a contact contains `match`. Both are lower-cased in place.
static bool matches(trace_site site, const char* field, std::span<char> text, char* match)
{
    PIM_TRACE_AT(site, TRACE_STEP, "contact_record->%s ------%.*s\tmatching str:%s\n", field,
                 static_cast<int>(text.size()), text.data(), match);
    return contains(match, text.data(), text.size()) == 1;
}

static bool address_matches(trace_site site, contact_address& address, char* match)
{
    struct named_part {
        int32_t element;
        const char* name;
    };
    constexpr named_part PARTS[] = {
        {ADDR_STREET, "address_info[i].street"}, {ADDR_EXTRA, "address_info[i].additional_info"},
        {ADDR_LOCALITY, "address_info[i].city"}, {ADDR_POSTALCODE, "address_info[i].postal_code"},
        {ADDR_REGION, "address_info[i].state"},  {ADDR_COUNTRY, "address_info[i].country"},
        {ADDR_POBOX, "address_info[i].pobox"},
    };
    return std::ranges::any_of(PARTS, [&](const named_part& part) {
        return matches(site, part.name, address_part(address, part.element), match);
    });
}

int32_t matchingContact(char* match, contact_record* contact)
{
    const trace_site site = trace_here();

    if (matches(site, "name_info.first_name", contact->name_info.first_name, match)) return 1;
    if (matches(site, "name_info.last_name", contact->name_info.last_name, match)) return 1;
    for (contact_address& address : addresses(*contact))
        if (address_matches(site, address, match)) return 1;
    for (contact_email& email : emails(*contact))
        if (matches(site, "email_info[i].email", email.email, match)) return 1;
    if (contact->note != nullptr && contact->note_size > 0 &&
        matches(site, "note", {contact->note, static_cast<size_t>(contact->note_size)}, match))
        return 1;
    if (matches(site, "company_name", contact->company_name, match)) return 1;
    for (contact_phone& phone : phones(*contact))
        if (matches(site, "phone_info[i].number", phone.number, match)) return 1;
    if (matches(site, "job_title", contact->job_title, match)) return 1;

    // Kept: the homepage is traced as if it came next, but not tested.
    PIM_TRACE(TRACE_STEP, "contact_record->homepage_info[0].homepage------%.*s\tmatching str:%s\n",
              static_cast<int>(sizeof contact->homepage_info[0].homepage), contact->homepage_info[0].homepage, match);
    return 0;
}

// Whether one text of an event or to-do contains `match`. A text without a buffer is an empty one.
static bool matches(trace_site site, const char* field, char* text, size_t limit, char* match)
{
    char empty[] = "";
    if (text == nullptr) text = empty;
    PIM_TRACE_AT(site, TRACE_STEP, "org_sch_record.%s ------%s\tmatching str:%s\n", field, text, match);
    return contains(match, text, limit) == 1;
}

int32_t matchingEvent(char* match, org_full_record* record)
{
    const trace_site site = trace_here();
    return matches(site, "location", record->location, ORG_LOCATION_MAX, match) ||
                   matches(site, "description", record->description, ORG_DESCRIPTION_MAX, match) ||
                   matches(site, "summary", record->summary, ORG_SUMMARY_MAX, match)
               ? 1
               : 0;
}

int32_t matchingTodo(char* match, org_full_record* record)
{
    const trace_site site = trace_here();
    return matches(site, "description", record->description, ORG_DESCRIPTION_MAX, match) ||
                   matches(site, "summary", record->summary, ORG_SUMMARY_MAX, match)
               ? 1
               : 0;
}

// The first record listed after `after` for which `record_matches` holds. Never wraps around.
template <typename Test>
static int32_t first_match(std::span<const int32_t> indices, int32_t after, Test record_matches)
{
    const auto rest = indices.subspan(position_after(indices, after));
    const auto found = std::find_if(rest.begin(), rest.end(), record_matches);
    return found == rest.end() ? NO_RECORD : *found;
}

static bool contact_matches(int32_t recindex, char* match)
{
    contact_record contact = {};
    int32_t error = 0;
    const bool found = contact_db_service_contact_get_by_index(0, recindex, 0, &contact, &error) &&
                       matchingContact(match, &contact) == 1;
    contact_db_service_contact_free(&contact);
    return found;
}

static int32_t next_matching_contact(trace_site site, int32_t recindex, char* match)
{
    index_list contacts;
    int32_t count = 0;
    int32_t error = 0;
    int32_t next = NO_RECORD;

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT_AT(site, "initialize", error);
        return NO_RECORD;
    }
    contact_db_service_contact_get_count(0, &count, &error); // Only the count that it leaves is looked at.
    if (count < 1)
        PIM_TRACE_AT(site, TRACE_STEP, "contact_count is 0 or under 0\n");
    else if (list_contacts(site, count, &contacts, &error) == listing::done)
        next = first_match(contacts.view(), recindex, [&](int32_t index) { return contact_matches(index, match); });
    return close_connection(site, LIST_CONTACT, nullptr, error, next, NO_RECORD);
}

static int32_t next_matching_organizer_record(trace_site site, int32_t listtype, int32_t recindex, char* match)
{
    return next_organizer_record(site, listtype, [&](std::span<const int32_t> indices, org_full_record& record) {
        const auto record_matches = listtype == LIST_EVENT ? matchingEvent : matchingTodo;
        return first_match(indices, recindex, [&](int32_t index) {
            int32_t error = 0;
            return org_db_service_get_record_full_field_by_index(index, &record, &error) &&
                   record_matches(match, &record) == 1;
        });
    });
}

int32_t pimlistimpl_nextRecordWithMatchStrN(int32_t listtype, int32_t, int32_t recindex, char* match)
{
    PIM_TRACE(TRACE_STEP, "%s, recindex = %d, matching str:%s\n", __func__, recindex, match);

    switch (listtype) {
    case LIST_CONTACT: return next_matching_contact(trace_here(), recindex, match);
    case LIST_EVENT:
    case LIST_TODO: return next_matching_organizer_record(trace_here(), listtype, recindex, match);
    default: return NO_RECORD;
    }
}

// ---- Removal --------------------------------------------------------------------------------------------------------

// Kept: 1 reports the connection, not the deletion, whose failure is only traced.
int32_t pimlistimpl_removeItemN(int32_t listtype, int32_t handle, int32_t recindex)
{
    org_full_record record; // Of events and to-dos only.
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "pimlistimpl_removeItemN handle : %d recindex :%d\n", handle, recindex);

    if (find_list(listtype) == nullptr) return 0;
    org_full_record* organizer_record = listtype == LIST_CONTACT ? nullptr : &record;
    if (organizer_record != nullptr) record = {};

    if (native_function_initialize(listtype, organizer_record, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return 0;
    }
    PIM_TRACE(TRACE_STEP, "###########################\n");
    if (listtype == LIST_CONTACT) {
        if (contact_db_service_contact_delete(0, recindex, 0, 0, &error))
            PIM_TRACE(TRACE_STEP, "contact_db_service_contact_delete %d is succeed\n", recindex);
        else
            PIM_TRACE(TRACE_HARD, "contact_db_service_contact_delete fail(%d)\n", error);
    } else {
        if (org_db_service_delete_record(recindex, &error))
            PIM_TRACE(TRACE_STEP, "org_db_service_delete_record %d is succeed\n", recindex);
        else
            PIM_TRACE(TRACE_HARD, "org_db_service_delete_record fail(%d)\n", error);
    }
    return close_connection(trace_here(), listtype, organizer_record, error, 1, 0);
}

// ---- Schema and labels ----------------------------------------------------------------------------------------------

static int32_t copy_codes(std::span<const int32_t> codes, std::span<int32_t> target)
{
    std::ranges::copy(codes, target.begin());
    return static_cast<int32_t>(codes.size());
}

int32_t pimlistimpl_getSupportedFieldsN(int32_t listtype, int32_t, std::span<int32_t, SUPPORTED_FIELDS_MAX> fields)
{
    const list_schema* list = find_list(listtype);
    if (list == nullptr) return 0;
    copy_codes(list->field_codes, fields);
    return 1;
}

int32_t pimlistimpl_maxValuesN(int32_t listtype, int32_t, int32_t field)
{
    if (find_list(listtype) == nullptr) return -1;
    const field_schema* row = find_field(listtype, field);
    return row != nullptr ? row->max_values : 1;
}

int32_t pimlistimpl_getSupportedAttributesN(int32_t listtype, int32_t, int32_t field,
                                            std::span<int32_t, FIELD_ATTRIBUTES_MAX> attributes)
{
    const field_schema* row = find_field(listtype, field);
    return row != nullptr ? copy_codes(row->attributes, attributes) : 0;
}

int32_t pimlistimpl_getAllSupportedAttributesN(int32_t listtype, int32_t,
                                               std::span<int32_t, ALL_ATTRIBUTES_MAX> attributes)
{
    if (listtype != LIST_CONTACT) return 0;

    // The attributes of addresses are among those of phones.
    int32_t written = 0;
    for (const std::span<const int32_t> field :
         {std::span<const int32_t>(PHONE_ATTRIBUTES), std::span<const int32_t>(EMAIL_ATTRIBUTES),
          std::span<const int32_t>(URL_ATTRIBUTES)})
        written += copy_codes(field, attributes.subspan(static_cast<size_t>(written)));
    return written;
}

int32_t pimlistimpl_getSupportedArrayElementsN(int32_t listtype, int32_t, int32_t field,
                                               std::span<int32_t, ARRAY_ELEMENTS_MAX> elements)
{
    // Kept: an unknown list type reports success too.
    if (find_list(listtype) == nullptr) return 1;
    const field_schema* row = find_field(listtype, field);
    if (row == nullptr || row->elements.empty()) return 0;
    std::iota(elements.begin(), elements.begin() + static_cast<std::ptrdiff_t>(row->elements.size()), 0);
    return 1;
}

int32_t pimlistimpl_getExtendedFieldsN(int32_t listtype, int32_t, std::span<int32_t, EXTENDED_FIELDS_MAX> fields)
{
    const list_schema* list = find_list(listtype);
    if (list == nullptr) return 0;
    copy_codes(list->extended_fields, fields);
    return 1;
}

int32_t pimlistimpl_getExtendedFieldDataTypeN()
{
    return -1; // No extended field declares a data type.
}

int32_t pimlistimpl_extendedStringArraySizeN()
{
    return 0; // No extended field is a string array.
}

// Copies a label that is there.
static int32_t copy_label(const label_text* from, std::span<char> label)
{
    if (from == nullptr) return 0;
    std::memcpy(label.data(), *from, sizeof *from);
    return 1;
}
static_assert(sizeof(label_text) <= LABEL_SIZE && sizeof(label_text) <= ELEMENT_LABEL_SIZE);

int32_t pimlistimpl_getFieldLabelN(int32_t listtype, int32_t, int32_t field, std::span<char, LABEL_SIZE> label)
{
    const field_schema* row = find_field(listtype, field);
    return copy_label(row != nullptr ? &row->label : nullptr, label);
}

int32_t pimlistimpl_getAttributeLabelN(int32_t listtype, int32_t, int32_t attribute, std::span<char, LABEL_SIZE> label)
{
    if (listtype == LIST_CONTACT) copy_label(find_attribute_label(attribute), label);
    return 1;
}

int32_t pimlistimpl_getArrayElementLabelN(int32_t listtype, int32_t, int32_t field, int32_t element,
                                          std::span<char, ELEMENT_LABEL_SIZE> label)
{
    PIM_TRACE(TRACE_STEP, "%s is called\n", __func__);
    const field_schema* row = find_field(listtype, field);
    if (row != nullptr) copy_label(element_label(*row, element), label);
    return 1;
}

// ---- Categories -----------------------------------------------------------------------------------------------------

// The names of `count` groups; -1 when one is longer than a name may be.
static int32_t copy_group_names(trace_site site, int32_t count, std::span<category_name, LIST_CATEGORIES_MAX> names,
                                int32_t* error)
{
    const auto groups = allocate_zeroed<contact_group_record>(static_cast<size_t>(std::max(count, 1)));
    if (groups == nullptr) {
        PIM_TRACE_AT(site, TRACE_RECOVERABLE, "memory allocation failed..\n");
        return -1;
    }
    if (count > 0 && !contact_db_service_group_get_all_records(0, groups.get(), count, error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_get_all_records fail(%d)\n", *error);
        return -1;
    }
    PIM_TRACE_AT(site, TRACE_STEP, "contact_db_service_group_get_all_records:group_count = %d\n", count);

    const auto listed = static_cast<size_t>(std::clamp<int32_t>(count, 0, LIST_CATEGORIES_MAX));
    for (size_t i = 0; i < listed; ++i) {
        const std::string_view name = text_of(groups[i].name);
        if (name.size() > CONTACT_GROUP_NAME_MAX) return -1;
        copy_text(names[i].text, name);
    }
    return static_cast<int32_t>(listed);
}

int32_t pimlistImpl_getCategoriesN(int32_t, int32_t, std::span<category_name, LIST_CATEGORIES_MAX> names)
{
    int32_t count = 0;
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "%s\n", __func__);

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return -1;
    }

    int32_t listed = -1;
    if (contact_db_service_group_get_count(0, &count, &error)) {
        PIM_TRACE(TRACE_STEP, "contact_db_service_group_get_count = %d\n", count);
        listed = copy_group_names(trace_here(), count, names, &error);
    } else {
        PIM_TRACE(TRACE_HARD, "contact_db_service_group_get_all_records:group_count = %d\n", count);
    }

    listed = close_connection(trace_here(), LIST_CONTACT, nullptr, error, listed, -1);
    PIM_TRACE(TRACE_STEP, "return group count is %d\n", listed);
    return listed;
}

static bool has_comma(const char* name)
{
    return std::strchr(name, ',') != nullptr;
}

// Adds a group called `name` unless there is one. 0 when the name or the store refuses, else 1.
static int32_t add_group(trace_site site, const char* name, int32_t* error)
{
    contact_group_record group = {};
    unsigned char exists = 0;
    int32_t group_count = 0;

    if (!contact_db_service_group_exist_same_name(0, name, &exists, error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_exist_same_name false - same name exist\n");
        return 1;
    }
    if (exists != 0) {
        PIM_TRACE_AT(site, TRACE_STEP, "contact group exist same name..\n");
        return 1;
    }
    if (std::strlen(name) > CONTACT_GROUP_NAME_MAX) return 0;

    copy_text(group.name, name);
    if (!contact_db_service_group_add(&group, error)) {
        PIM_TRACE_AT(site, TRACE_RECOVERABLE, "contact_db_service_group_add fail..(%d)\n", *error);
        return 0;
    }
    PIM_TRACE_AT(site, TRACE_STEP, "contact_db_service_group_add succeed\n");
    contact_db_service_group_get_count(0, &group_count, error);
    PIM_TRACE_AT(site, TRACE_STEP, "group total count : %d\n", group_count);
    return 1;
}

int32_t pimlistImpl_addCategoryN(int32_t listtype, int32_t, const char* name)
{
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "%s, addCategoryName = %s\n", __func__, name != nullptr ? name : "(null)");
    if (listtype != LIST_CONTACT) return 0;
    if (name == nullptr) {
        PIM_TRACE(TRACE_STEP, "addCategoryName  is NULL\n");
        return 0;
    }
    if (has_comma(name)) {
        PIM_TRACE(TRACE_STEP, "strstr(addCategoryName, \",\")  is false \n");
        return 0;
    }

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return 1;
    }
    const int32_t added = add_group(trace_here(), name, &error);
    if (native_function_finalize(LIST_CONTACT, nullptr) != 1) {
        PIM_TRACE_ASSERT("final", error);
        return 1;
    }
    if (added == 1) PIM_TRACE(TRACE_STEP, "%s return TRUE\n", __func__);
    return added;
}

// Gives every group called `old_name` the new name. 0 when the store refuses one, else 1.
static int32_t rename_groups(trace_site site, const char* old_name, const char* new_name, int32_t* error)
{
    int32_t group_count = 0;
    int32_t seen = 0;

    contact_db_service_group_get_count(0, &group_count, error);
    for (int32_t key = 0; seen < group_count && key < CONTACT_GROUP_MAX; ++key) {
        contact_group_record group = {};
        if (!contact_db_service_group_get(0, key, &group, error)) {
            PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_get is fail..\n");
            continue;
        }
        ++seen;

        PIM_TRACE_AT(site, TRACE_STEP, "pimlistImpl_renameCategoryN.oldCategory=%s\n", old_name);
        if (text_of(group.name) != old_name) continue;
        if (std::strlen(new_name) > CONTACT_GROUP_NAME_MAX) {
            PIM_TRACE_AT(site, TRACE_STEP, "newCategory length is out of bound\n");
            continue;
        }

        copy_text(group.name, new_name);
        PIM_TRACE_AT(site, TRACE_STEP, "pimlistImpl_renameCategoryN.contact_group_record.name=%s\n", group.name);
        if (!contact_db_service_group_update(0, key, &group, error)) {
            PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_update is failed error_code = %d\n", *error);
            return 0;
        }
    }
    return 1;
}

int32_t pimlistImpl_renameCategoryN(int32_t, int32_t, const char* old_name, const char* new_name)
{
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "%s\n", __func__);

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return 1;
    }
    const int32_t renamed = rename_groups(trace_here(), old_name, new_name, &error);
    return close_connection(trace_here(), LIST_CONTACT, nullptr, error, renamed, 1);
}

// Deletes every contact in the group, those that belong to other groups too. False without memory to list them.
static bool delete_members(trace_site site, int32_t group_key, int32_t* error)
{
    int32_t count = CONTACT_RECORD_MAX;
    const auto members = allocate_zeroed<int32_t>(CONTACT_RECORD_MAX);
    if (members == nullptr) {
        PIM_TRACE_AT(site, TRACE_RECOVERABLE, "memory allocation failed..\n");
        return false;
    }
    if (!contact_db_service_group_get_members(0, group_key, members.get(), &count, error)) return true;

    PIM_TRACE_AT(site, TRACE_STEP, "contact_get_group_members OK\n");
    for (int32_t i = 0; i < std::min<int32_t>(count, CONTACT_RECORD_MAX); ++i) {
        PIM_TRACE_AT(site, TRACE_STEP, "contact_db_service_contact_delete index = %d\n",
                     members[static_cast<size_t>(i)]);
        contact_db_service_contact_delete(0, members[static_cast<size_t>(i)], 0, 0, error);
    }
    return true;
}

// Deletes the first group called `name`, if there is one. 0 when that could not be tried, else 1.
static int32_t delete_group(trace_site site, const char* name, bool with_members, int32_t* error)
{
    constexpr size_t QUERY_SIZE = 128;
    char query[QUERY_SIZE] = {};
    int32_t count = 0;

    if (!contact_db_service_group_get_count(0, &count, error)) return 1;
    PIM_TRACE_AT(site, TRACE_STEP, "contact_db_service_group_get_count = %d\n", count);
    const auto groups = allocate_zeroed<contact_group_record>(static_cast<size_t>(std::max(count, 1)));
    if (groups == nullptr) {
        PIM_TRACE_AT(site, TRACE_RECOVERABLE, "memory allocation failed..\n");
        return 0;
    }
    if (count < 1) return 1;

    copy_text(query, name);
    PIM_TRACE_AT(site, TRACE_STEP, "DB query [%s]\n", query);
    if (std::strlen(name) >= QUERY_SIZE) return 1; // The part that fits might name another group.
    if (!contact_db_service_group_search(0, query, 30, 0, groups.get(), &count, error, 1)) {
        PIM_TRACE_AT(site, TRACE_HARD, "contact_db_service_group_search fail..(%d)\n", *error);
        return 0;
    }
    PIM_TRACE_AT(site, TRACE_STEP, "search group_count is %d\n", count);
    if (count < 1) return 1;

    const contact_group_record& group = groups[0]; // Kept: of several groups of that name only the first.
    const int32_t group_key = group.group_key.index;
    PIM_TRACE_AT(site, TRACE_STEP, "MATCH!! deleteCategoryName & contact_group_array[i].name (%.*s)\n",
                 static_cast<int>(sizeof group.name), group.name);
    PIM_TRACE_AT(site, TRACE_STEP, "contact_db_service_group_get.contact_group_array[i].group_key.index = %d\n",
                 group_key);

    if (with_members) {
        PIM_TRACE_AT(site, TRACE_STEP, "deleteUnassignedItems TRUE, \n");
        if (!delete_members(site, group_key, error)) return 0;
    }
    PIM_TRACE_AT(site, TRACE_STEP, "deleting group name= %.*s\n", static_cast<int>(sizeof group.name), group.name);
    if (contact_db_service_group_delete(0, group_key, error))
        PIM_TRACE_AT(site, TRACE_STEP, "contact_db_service_group_delete succeed\n");
    else
        PIM_TRACE_AT(site, TRACE_RECOVERABLE, "contact_db_service_group_delete is failed(error_code :%d)\n", *error);
    return 1;
}

int32_t pimlistImpl_deleteCategoryN(int32_t listtype, int32_t, const char* name, int32_t delete_unassigned_items)
{
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "%s\n", __func__);
    if (listtype != LIST_CONTACT || name == nullptr || has_comma(name) || *name == '\0') return 0;

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return 1;
    }
    const int32_t deleted = delete_group(trace_here(), name, delete_unassigned_items != 0, &error);
    return close_connection(trace_here(), LIST_CONTACT, nullptr, error, deleted, 1);
}

int8_t pimlistImpl_isCategoryN(int32_t listtype, int32_t, const char* name)
{
    unsigned char exists = 0;
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "%s, CategoryName = %s\n", __func__, name != nullptr ? name : "(null)");
    if (listtype != LIST_CONTACT || name == nullptr || has_comma(name) || *name == '\0') return 0;

    // Kept: a store that cannot be reached reads as a present category.
    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return 1;
    }
    int8_t result = 0;
    if (contact_db_service_group_exist_same_name(0, name, &exists, &error)) result = static_cast<int8_t>(exists);
    return close_connection<int8_t>(trace_here(), LIST_CONTACT, nullptr, error, result, 1);
}
