// stored_records.h: what tests put into the records of the stores.
#ifndef JSR75_PIM_TESTS_STORED_RECORDS_H
#define JSR75_PIM_TESTS_STORED_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

#include "contact_db_service.h"
#include "org_db_service.h"

// Fills a text field. A text as large as the field leaves no room for its terminator, which a store keeps behind it.
template <size_t size>
void put_into(char (&field)[size], std::string_view text)
{
    std::memset(field, 0, size);
    text.copy(field, size);
}

inline contact_phone a_phone(std::string_view number, int32_t type = CONTACT_PHONE_OTHER_TYPE)
{
    contact_phone phone = {};
    put_into(phone.number, number);
    phone.type = type;
    return phone;
}

inline contact_email an_email(std::string_view text, int32_t type = CONTACT_ENTRY_OTHER)
{
    contact_email email = {};
    put_into(email.email, text);
    email.type = type;
    return email;
}

inline contact_address an_address(int32_t type = CONTACT_ENTRY_OTHER)
{
    contact_address address = {};
    address.type = type;
    return address;
}

// A local time. Years and months as people write them; day of week and day of year are of no interest.
inline broken_down_time local_time(int32_t year, int32_t month, int32_t day, int32_t hour = 0, int32_t min = 0,
                                   int32_t sec = 0, int32_t isdst = 0)
{
    return {sec, min, hour, day, month - 1, year - 1900, 0, 0, isdst};
}

// A time that mktime() refuses, as a 32-bit count of seconds cannot express it.
inline broken_down_time refused_time()
{
    return local_time(2100, 1, 1);
}

// The bytes of fields, one after the other.
template <typename... Fields>
std::string joined_bytes(const Fields&... fields)
{
    return (std::string(reinterpret_cast<const char*>(&fields), sizeof fields) + ...);
}

// Everything in a record but its pointers and what a machine may put between the fields.
inline std::string bytes_of(const contact_record& contact)
{
    return joined_bytes(contact.index, contact.opaque_4, contact.name_info, contact.nickname, contact.job_title,
                        contact.opaque_661, contact.company_name, contact.homepage_info, contact.opaque_2288,
                        contact.birthday, contact.opaque_2524, contact.membership, contact.save_time,
                        contact.opaque_4092, contact.phone_count, contact.email_count, contact.note_size,
                        contact.postal_count, contact.opaque_4604);
}

inline std::string bytes_of(const org_full_record& item)
{
    return joined_bytes(item.index, item.kind, item.opaque_8, item.opaque_24, item.start_date_time, item.end_date_time,
                        item.alarm_time, item.opaque_164, item.opaque_176, item.repeat_term, item.repeat_interval,
                        item.opaque_188, item.repeat_end_or_due, item.opaque_236, item.last_modified_time,
                        item.opaque_300, item.completed, item.priority, item.opaque_312, item.opaque_352);
}

inline bool operator==(const broken_down_time& left, const broken_down_time& right)
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

inline void PrintTo(const broken_down_time& time, std::ostream* out)
{
    *out << time.year + 1900 << '-' << time.mon + 1 << '-' << time.mday << ' ' << time.hour << ':' << time.min << ':'
         << time.sec << " (weekday " << time.wday << ", day " << time.yday << ", dst " << time.isdst << ')';
}

#endif
