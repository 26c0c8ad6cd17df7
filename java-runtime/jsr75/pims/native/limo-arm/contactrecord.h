// contactrecord.h: what the contact record means: its texts, its entries, and how stored types and JSR 75 attributes
// name each other. Pure functions of a record; nothing here touches the store or traces.
#ifndef JSR75_PIM_CONTACTRECORD_H
#define JSR75_PIM_CONTACTRECORD_H

#include <cstdint>
#include <span>
#include <string_view>

#include "contact_db_service.h"
#include "pimcodes.h"

// ---- Stored types and attributes ------------------------------------------------------------------------------------
//
// The attributes that the values of a field may carry; an attribute's place in its table is the type that the
// store keeps for it.

inline constexpr int32_t PHONE_ATTRIBUTES[] = {
    ATTR_MOBILE_PRIVATE, ATTR_MOBILE_BUSINESS, ATTR_LINE_PRIVATE, ATTR_LINE_BUSINESS, ATTR_HOME,
    ATTR_WORK,           ATTR_VIDEO_CALL,      ATTR_FAX,          ATTR_VOICE_MAIL,    ATTR_SIM,
    ATTR_ASST,           ATTR_PAGER,           ATTR_OTHER,
};
inline constexpr int32_t EMAIL_ATTRIBUTES[] = {ATTR_EMAIL_PRIVATE, ATTR_EMAIL_BUSINESS};
inline constexpr int32_t URL_ATTRIBUTES[] = {ATTR_URL_PRIVATE, ATTR_URL_BUSINESS};
inline constexpr int32_t ADDRESS_ATTRIBUTES[] = {ATTR_HOME, ATTR_WORK};

static_assert(PHONE_ATTRIBUTES[CONTACT_PHONE_OTHER] == ATTR_OTHER);
static_assert(EMAIL_ATTRIBUTES[CONTACT_ENTRY_BUSINESS] == ATTR_EMAIL_BUSINESS);

// The stored type that stands for `attribute`, -1 for any attribute the table does not hold.
int32_t stored_type(std::span<const int32_t> attributes, int32_t attribute);

// The attribute that a stored type stands for, ATTR_NONE for an unknown type.
int32_t attribute_of(std::span<const int32_t> attributes, int32_t type);

// ---- Entries --------------------------------------------------------------------------------------------------------

// A record comes from a store that this library does not control: a negative count and a count without its array
// mean no entries. A count larger than the array behind it cannot be told.
template <typename Entry>
std::span<Entry> entries(Entry* array, int32_t count)
{
    if (array == nullptr || count < 0) return {};
    return {array, static_cast<size_t>(count)};
}

inline std::span<contact_phone> phones(const contact_record& contact)
{
    return entries(contact.phone_info, contact.phone_count);
}

inline std::span<contact_email> emails(const contact_record& contact)
{
    return entries(contact.email_info, contact.email_count);
}

inline std::span<contact_address> addresses(const contact_record& contact)
{
    return entries(contact.address_info, contact.postal_count);
}

inline std::span<const contact_homepage> homepages(const contact_record& contact)
{
    return contact.homepage_info;
}

// The entry at `index`, or null when there is none.
// Kept: an index equal to the count passes and names the entry one past the last, which stores hand out zeroed.
template <typename Entry>
const Entry* entry_at(std::span<Entry> all, int32_t index)
{
    if (all.data() == nullptr || index < 0 || static_cast<size_t>(index) > all.size()) return nullptr;
    return all.data() + index;
}

// The homepage slot at `index`, or null past the slots of a record.
const contact_homepage* homepage_at(const contact_record& contact, int32_t index);

// ---- Texts ----------------------------------------------------------------------------------------------------------

std::string_view note_of(const contact_record& contact);

// The text of a string field's value, empty when the record has none there.
std::string_view contact_text(const contact_record& contact, int32_t field, int32_t index);

// The field that holds one element (enum address_element) of an address. It is as large as the longest text it takes,
// whose terminator then lies behind it.
std::span<char> address_part(contact_address& address, int32_t element);
std::string_view address_text(const contact_address& address, int32_t element);

#endif
