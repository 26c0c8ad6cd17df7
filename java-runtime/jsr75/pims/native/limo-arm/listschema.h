// listschema.h: which fields, attributes and array elements each list has, how many values they hold and what they
// are called. Constant data; a field's facts stand in one row.
#ifndef JSR75_PIM_LISTSCHEMA_H
#define JSR75_PIM_LISTSCHEMA_H

#include <cstdint>
#include <span>

#include "contactrecord.h"
#include "pimcodes.h"

// A code and its label; the code is a field, an attribute or an array element.
struct labelled_code {
    int32_t code;
    const char* label;
};

// A supported field. Codes that no row holds are no fields of the list.
struct field_schema {
    int32_t field;
    const char* label;
    int32_t max_values = 1;
    std::span<const int32_t> attributes = {};
    std::span<const labelled_code> elements = {};
};

// A list: its fields in the order in which they are named to Java, and its extended fields, which have neither label
// nor data type.
struct list_schema {
    std::span<const field_schema> fields;
    std::span<const int32_t> extended_fields;
};

inline constexpr labelled_code ADDRESS_ELEMENTS[] = {
    {ADDR_POBOX, "Pobox"},    {ADDR_EXTRA, "extra"}, // Kept: the one label in lower case.
    {ADDR_STREET, "Street"},  {ADDR_LOCALITY, "City"},   {ADDR_REGION, "State"},
    {ADDR_POSTALCODE, "Zip"}, {ADDR_COUNTRY, "Country"},
};

// A contact's name is stored as family and given name only.
inline constexpr labelled_code CONTACT_NAME_ELEMENTS[] = {{NAME_FAMILY, "Last"}, {NAME_GIVEN, "First"}};

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

inline constexpr list_schema CONTACT_SCHEMA = {CONTACT_FIELDS, CONTACT_EXTENDED_FIELDS};
inline constexpr list_schema EVENT_SCHEMA = {EVENT_FIELDS, EVENT_EXTENDED_FIELDS};
inline constexpr list_schema TODO_SCHEMA = {TODO_FIELDS, TODO_EXTENDED_FIELDS};

// Matched as a whole value, not bit by bit. ATTR_AUTO, ATTR_MOBILE and ATTR_SMS have a label though no field offers
// them.
inline constexpr labelled_code ATTRIBUTE_LABELS[] = {
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
    if (list == nullptr) return nullptr;
    for (const field_schema& row : list->fields)
        if (row.field == field) return &row;
    return nullptr;
}

// The label of a code, or null.
constexpr const char* find_label(std::span<const labelled_code> labels, int32_t code)
{
    for (const labelled_code& row : labels)
        if (row.code == code) return row.label;
    return nullptr;
}

#endif
