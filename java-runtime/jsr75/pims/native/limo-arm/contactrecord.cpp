#include "contactrecord.h"

#include <algorithm>

#include "pimnativeutil.h"

int32_t stored_type(std::span<const int32_t> attributes, int32_t attribute)
{
    const auto found = std::find(attributes.begin(), attributes.end(), attribute);
    return found == attributes.end() ? -1 : static_cast<int32_t>(found - attributes.begin());
}

int32_t attribute_of(std::span<const int32_t> attributes, int32_t type)
{
    if (type < 0 || static_cast<size_t>(type) >= attributes.size()) return ATTR_NONE;
    return attributes[static_cast<size_t>(type)];
}

const contact_homepage* homepage_at(const contact_record& contact, int32_t index)
{
    if (index < 0 || index >= CONTACT_HOMEPAGE_MAX) return nullptr;
    return &contact.homepage_info[index];
}

std::string_view note_of(const contact_record& contact)
{
    if (contact.note == nullptr || contact.note_size < 1) return {};
    return {contact.note, strnlen(contact.note, static_cast<size_t>(contact.note_size))};
}

std::string_view contact_text(const contact_record& contact, int32_t field, int32_t index)
{
    switch (field) {
    case CONTACT_NICKNAME: return text_of(contact.nickname);
    case CONTACT_NOTE: return note_of(contact);
    case CONTACT_ORG: return text_of(contact.company_name);
    case CONTACT_TITLE: return text_of(contact.job_title);
    case CONTACT_EMAIL: {
        const contact_email* email = entry_at(emails(contact), index);
        return email != nullptr ? text_of(email->email) : std::string_view();
    }
    case CONTACT_TEL: {
        const contact_phone* phone = entry_at(phones(contact), index);
        return phone != nullptr ? text_of(phone->number) : std::string_view();
    }
    case CONTACT_URL: {
        const contact_homepage* slot = homepage_at(contact, index);
        return slot != nullptr ? text_of(slot->homepage) : std::string_view();
    }
    default: return {};
    }
}

std::span<char> address_part(contact_address& address, int32_t element)
{
    switch (element) { // GCOV_EXCL_BR_LINE: every caller names one of the seven.
    case ADDR_POBOX: return address.pobox;
    case ADDR_EXTRA: return address.additional_info;
    case ADDR_STREET: return address.street;
    case ADDR_LOCALITY: return address.city;
    case ADDR_REGION: return address.state;
    case ADDR_POSTALCODE: return address.postal_code;
    case ADDR_COUNTRY: return address.country;
    default: return {}; // GCOV_EXCL_LINE: as above.
    }
}

std::string_view address_text(const contact_address& address, int32_t element)
{
    const std::span<char> part = address_part(const_cast<contact_address&>(address), element);
    return {part.data(), strnlen(part.data(), part.size())};
}
