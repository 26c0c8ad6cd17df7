#include "samples.h"

#include <cstdlib>
#include <cstring>

#include "bench_folder.h"
#include "stored_records.h"

template <typename Element>
static Element* block_of(int32_t count)
{
    auto* block = static_cast<Element*>(std::calloc(static_cast<size_t>(count), sizeof(Element)));
    demand(block != nullptr, "memory");
    return block;
}

// As it is read back: day of week and day of year are right.
static broken_down_time date_of(int number)
{
    constexpr int SUNDAY = 0;
    broken_down_time date = local_time(1967, 1, 1 + number % 28, number % 24, number % 60);
    date.wday = (SUNDAY + number % 28) % 7;
    date.yday = number % 28;
    return date;
}

std::string only_in_contact(int number)
{
    return "<" + std::to_string(number) + ">";
}

// Of one length for all versions up to 999.
static std::string number_and_version(int number, int version)
{
    return std::to_string(number) + "." + std::to_string(1000 + version);
}

owned_contact sample_contact(int number, int version)
{
    const std::string n = number_and_version(number, version);
    owned_contact contact;
    put_into(contact.name_info.last_name, "Family" + n);
    put_into(contact.name_info.first_name, "Given" + n);
    put_into(contact.nickname, "Nick" + n);
    put_into(contact.company_name, "Company " + std::to_string(number % 100));
    put_into(contact.job_title, "Title " + std::to_string(number % 10));
    contact.birthday = date_of(number);

    contact.phone_count = 2;
    contact.phone_info = block_of<contact_phone>(2);
    contact.phone_info[0] = a_phone("+49 30 " + n, CONTACT_PHONE_HOME);
    contact.phone_info[1] = a_phone("+49 40 " + n, CONTACT_PHONE_WORK);
    contact.phone_info[1].position = 1;

    contact.email_count = 1;
    contact.email_info = block_of<contact_email>(1);
    contact.email_info[0] = an_email("contact" + n + "@example.org", CONTACT_ENTRY_PRIVATE);

    contact.postal_count = 1;
    contact.address_info = block_of<contact_address>(1);
    contact_address& address = contact.address_info[0];
    address.type = CONTACT_ENTRY_PRIVATE;
    put_into(address.street, "Long Street " + n);
    put_into(address.additional_info, "Back house");
    put_into(address.city, "City " + std::to_string(number % 50));
    put_into(address.postal_code, std::to_string(10000 + number));
    put_into(address.state, "State " + std::to_string(number % 16));
    put_into(address.country, "Country");
    put_into(address.pobox, "Box " + n);
    put_into(address.full_text, "Long Street " + n + ", Back house, City " + std::to_string(number % 50));

    contact.homepage_info[0].type = CONTACT_ENTRY_PRIVATE;
    put_into(contact.homepage_info[0].homepage, "https://example.org/" + n);

    const std::string note = "A note about contact " + n + ", " + only_in_contact(number) + ".";
    contact.note_size = static_cast<int32_t>(note.size() + 1);
    contact.note = block_of<char>(contact.note_size);
    note.copy(contact.note, note.size());

    contact.membership[number % SAMPLE_GROUPS] = 1;
    return contact;
}

owned_item::owned_item() : org_full_record{}
{
    summary = block_of<char>(ORG_SUMMARY_MAX + 1);
    description = block_of<char>(ORG_DESCRIPTION_MAX + 1);
    location = block_of<char>(ORG_LOCATION_MAX + 1);
    text_172 = block_of<char>(ORG_TEXT_172_MAX + 1);
    text_340 = block_of<char>(ORG_TEXT_340_MAX + 1);
    text_344 = block_of<char>(ORG_TEXT_344_MAX + 1);
    text_348 = block_of<char>(ORG_TEXT_348_MAX + 1);
}

owned_item::~owned_item()
{
    int error = 0;
    org_db_service_free_full_record(this, &error);
}

int32_t sample_item_type(int number)
{
    return number % 2 == 0 ? ORG_TYPE_EVENT : ORG_TYPE_TODO;
}

owned_item sample_item(int number, int version)
{
    const std::string n = number_and_version(number, version);
    owned_item item;
    const bool is_event = sample_item_type(number) == ORG_TYPE_EVENT;
    item.kind = is_event ? ORG_KIND_EVENT : ORG_KIND_TODO;
    ("Summary of item " + n).copy(item.summary, ORG_SUMMARY_MAX);
    ("A note about item " + n + ", long enough to say something.").copy(item.description, ORG_DESCRIPTION_MAX);
    if (is_event) {
        ("Room " + n).copy(item.location, ORG_LOCATION_MAX);
        item.start_date_time.time = date_of(number);
        item.alarm_time.time = date_of(number);
        item.repeat_term = ORG_REPEAT_WEEKLY;
        item.repeat_interval = 1;
    }
    item.end_date_time.time = date_of(number + 1);
    item.repeat_end_or_due.time = date_of(number + 2);
    item.last_modified_time.time = date_of(number + 3);
    item.priority = is_event ? 0 : ORG_PRIORITY_MIDDLE;
    return item;
}

template <typename Entry>
static bool same_entries(const Entry* one, const Entry* other, int32_t count)
{
    return count == 0 || std::memcmp(one, other, static_cast<size_t>(count) * sizeof(Entry)) == 0;
}

bool same_contact(const contact_record& one, const contact_record& other)
{
    return bytes_of(one) == bytes_of(other) && same_entries(one.phone_info, other.phone_info, one.phone_count) &&
           same_entries(one.email_info, other.email_info, one.email_count) &&
           same_entries(one.address_info, other.address_info, one.postal_count) &&
           same_entries(one.note, other.note, one.note_size);
}

bool same_item(const org_full_record& one, const org_full_record& other)
{
    if (bytes_of(one) != bytes_of(other)) return false;
    for (char* const org_full_record::*text :
         {&org_full_record::summary, &org_full_record::description, &org_full_record::location,
          &org_full_record::text_172, &org_full_record::text_340, &org_full_record::text_344,
          &org_full_record::text_348})
        if (std::strcmp(one.*text, other.*text) != 0) return false;
    return true;
}
