// listschema.h: which fields, attributes and array elements each list has, how many values they hold and what they
// are called. Constant data; a field's facts stand in one row.
#ifndef JSR75_PIM_LISTSCHEMA_H
#define JSR75_PIM_LISTSCHEMA_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <span>

#include "contactrecord.h"
#include "pimcodes.h"

// A label, in as many bytes as the longest takes: a copy of a known size is the quickest.
using label_text = char[18];

// A supported field. Codes that no row holds are no fields of the list.
struct field_schema {
    int32_t field;
    label_text label;
    int32_t max_values = 1;
    std::span<const int32_t> attributes = {};
    std::span<const label_text> elements = {}; // By element code.
};

// The codes that are fields in some list.
inline constexpr int32_t FIRST_FIELD = 100;
inline constexpr int32_t LAST_FIELD = 118;
inline constexpr int8_t NO_ROW = -1;

// A list: its fields in the order in which they are named to Java, and its extended fields, which have neither label
// nor data type.
struct list_schema {
    std::span<const field_schema> fields;
    std::span<const int32_t> field_codes;
    std::array<int8_t, LAST_FIELD - FIRST_FIELD + 1> rows; // By field code: its place in `fields`.
    std::span<const int32_t> extended_fields;
};

inline constexpr label_text ADDRESS_ELEMENTS[] = {
    "Pobox",  "extra", // Kept: the one label in lower case.
    "Street", "City",  "State", "Zip", "Country",
};
static_assert(std::size(ADDRESS_ELEMENTS) == ADDR_ELEMENTS && ADDR_EXTRA == 1 && ADDR_STREET == 2 &&
              ADDR_LOCALITY == 3 && ADDR_REGION == 4 && ADDR_POSTALCODE == 5);

// A contact's name is stored as family and given name only.
inline constexpr label_text CONTACT_NAME_ELEMENTS[] = {"Last", "First"};
static_assert(NAME_FAMILY == 0 && NAME_GIVEN == 1);

// CLASS, UID, formatted names and addresses, photos and public keys are left out on purpose.
inline constexpr field_schema CONTACT_FIELDS[] = {
    {CONTACT_ADDR, "Address", 5, ADDRESS_ATTRIBUTES, ADDRESS_ELEMENTS},
    {CONTACT_BIRTHDAY, "Birthday"},
    {CONTACT_EMAIL, "E-mail", 15, EMAIL_ATTRIBUTES},
    {CONTACT_NAME, "Name", 1, {}, CONTACT_NAME_ELEMENTS},
    {CONTACT_NICKNAME, "Nick name"},
    {CONTACT_NOTE, "Note"},
    {CONTACT_ORG, "Company"},
    {CONTACT_REVISION, "Version"},
    {CONTACT_TEL, "Tel", 15, PHONE_ATTRIBUTES},
    {CONTACT_TITLE, "Job title"},
    {CONTACT_URL, "Homepage", CONTACT_HOMEPAGE_MAX, URL_ATTRIBUTES},
};

inline constexpr field_schema EVENT_FIELDS[] = {
    {EVENT_ALARM, "Alarm"},      {EVENT_END, "End"},     {EVENT_LOCATION, "Location"}, {EVENT_NOTE, "Note"},
    {EVENT_REVISION, "Version"}, {EVENT_START, "Start"}, {EVENT_SUMMARY, "Subject"},
};

inline constexpr field_schema TODO_FIELDS[] = {
    {TODO_COMPLETED, "Status"},  {TODO_COMPLETION_DATE, "Completed on"},
    {TODO_DUE, "Due"},           {TODO_NOTE, "Note"},
    {TODO_PRIORITY, "Priority"}, {TODO_REVISION, "Version"},
    {TODO_SUMMARY, "Subject"},
};

// Kept: the last extended field of contacts is named twice.
inline constexpr int32_t CONTACT_EXTENDED_FIELDS[] = {0x1000000, 0x1000001, 0x1000002, 0x1000003, 0x1000004, 0x1000004};
inline constexpr int32_t EVENT_EXTENDED_FIELDS[] = {EXTENDED_FIELD_0};
inline constexpr int32_t TODO_EXTENDED_FIELDS[] = {EXTENDED_FIELD_0, EXTENDED_FIELD_1};

template <size_t size>
constexpr std::array<int32_t, size> codes_of(const field_schema (&fields)[size])
{
    std::array<int32_t, size> codes = {};
    std::ranges::transform(fields, codes.begin(), &field_schema::field);
    return codes;
}

template <const auto& fields>
inline constexpr auto FIELD_CODES = codes_of(fields);

template <const auto& fields>
constexpr list_schema schema_of(std::span<const int32_t> extended_fields)
{
    list_schema list = {fields, FIELD_CODES<fields>, {}, extended_fields};
    list.rows.fill(NO_ROW);
    for (size_t row = 0; row < std::size(fields); ++row)
        list.rows[static_cast<size_t>(fields[row].field - FIRST_FIELD)] = static_cast<int8_t>(row);
    return list;
}

inline constexpr list_schema CONTACT_SCHEMA = schema_of<CONTACT_FIELDS>(CONTACT_EXTENDED_FIELDS);
inline constexpr list_schema EVENT_SCHEMA = schema_of<EVENT_FIELDS>(EVENT_EXTENDED_FIELDS);
inline constexpr list_schema TODO_SCHEMA = schema_of<TODO_FIELDS>(TODO_EXTENDED_FIELDS);

// The schema of a list, or null for an unknown list type.
constexpr const list_schema* find_list(int32_t listtype)
{
    switch (listtype) {
    case LIST_CONTACT: return &CONTACT_SCHEMA;
    case LIST_EVENT: return &EVENT_SCHEMA;
    case LIST_TODO: return &TODO_SCHEMA;
    default: return nullptr;
    }
}

// The row of a field, or null for a code that is no field of the list.
constexpr const field_schema* find_field(int32_t listtype, int32_t field)
{
    const list_schema* list = find_list(listtype);
    if (list == nullptr || field < FIRST_FIELD || field > LAST_FIELD) return nullptr;
    const int8_t row = list->rows[static_cast<size_t>(field - FIRST_FIELD)];
    return row != NO_ROW ? &list->fields[static_cast<size_t>(row)] : nullptr;
}

// The label of an element of a field, or null.
constexpr const label_text* element_label(const field_schema& row, int32_t element)
{
    return element >= 0 && static_cast<size_t>(element) < row.elements.size()
               ? &row.elements[static_cast<size_t>(element)]
               : nullptr;
}

struct attribute_label {
    int32_t attribute;
    label_text label;
};

// By ascending attribute. ATTR_AUTO, ATTR_MOBILE and ATTR_SMS have a label though no field offers them.
inline constexpr attribute_label ATTRIBUTE_LABELS[] = {
    {ATTR_ASST, "Assistant"},
    {ATTR_AUTO, "Car"},
    {ATTR_FAX, "Fax"},
    {ATTR_HOME, "Home"},
    {ATTR_HOME | ATTR_FAX, "Home fax"},
    {ATTR_MOBILE, "Mobile"},
    {ATTR_OTHER, "Other"},
    {ATTR_PAGER, "Pager"},
    {ATTR_SMS, "SMS"},
    {ATTR_WORK, "Work"},
    {ATTR_WORK | ATTR_FAX, "Work fax"},
    {ATTR_MOBILE_PRIVATE, "Mobile private"},
    {ATTR_MOBILE_BUSINESS, "Mobile business"},
    {ATTR_LINE_PRIVATE, "Line private"},
    {ATTR_LINE_BUSINESS, "Line business"},
    {ATTR_VIDEO_CALL, "Video call"},
    {ATTR_VOICE_MAIL, "Voice mail"},
    {ATTR_SIM, "Sim"},
    {ATTR_EMAIL_PRIVATE, "Email Private"},
    {ATTR_EMAIL_BUSINESS, "Email Business"},
    {ATTR_URL_PRIVATE, "Homepage Private"},
    {ATTR_URL_BUSINESS, "Homepage Business"},
};
static_assert(std::ranges::is_sorted(ATTRIBUTE_LABELS, {}, &attribute_label::attribute));

// The label of an attribute, or null. It is matched as a whole value, not bit by bit.
constexpr const label_text* find_attribute_label(int32_t attribute)
{
    const auto* row = std::ranges::lower_bound(ATTRIBUTE_LABELS, attribute, {}, &attribute_label::attribute);
    return row != std::end(ATTRIBUTE_LABELS) && row->attribute == attribute ? &row->label : nullptr;
}

#endif
