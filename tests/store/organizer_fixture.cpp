#include "organizer_fixture.h"

#include <stdlib.h>
#include <string.h>

namespace store_test {
inline namespace organizer {

const std::vector<organizer_text> organizer_texts = {
    {"summary", &org_full_record::summary, 256},   {"description", &org_full_record::description, 1024},
    {"location", &org_full_record::location, 160}, {"text_172", &org_full_record::text_172, 355},
    {"text_340", &org_full_record::text_340, 256}, {"text_344", &org_full_record::text_344, 256},
    {"text_348", &org_full_record::text_348, 256},
};

// From the first byte of one field to the last byte of another, with no pointer between.
#define RANGE(first, last)                                                                                    \
    {                                                                                                         \
        offsetof(org_full_record, first),                                                                     \
            offsetof(org_full_record, last) + sizeof org_full_record::last - offsetof(org_full_record, first) \
    }
const std::vector<byte_range> ranges_outside_pointers = {RANGE(index, opaque_8), RANGE(opaque_24, opaque_164),
                                                         RANGE(opaque_176, opaque_312), RANGE(opaque_352, opaque_352)};
#undef RANGE

entry::entry() : org_full_record{}
{
    for (const auto& [name, pointer, limit] : organizer_texts)
        this->*pointer = static_cast<char*>(calloc(1, limit + 1));
}

entry::entry(std::string_view summary_text) : entry()
{
    set_text(organizer_texts[0], summary_text);
}

entry::entry(const entry& other) : entry()
{
    for (const auto& [start, size] : ranges_outside_pointers)
        memcpy(reinterpret_cast<char*>(this) + start, reinterpret_cast<const char*>(&other) + start, size);
    for (const organizer_text& text : organizer_texts) set_text(text, other.*text.pointer);
}

void entry::set_text(const organizer_text& text, std::string_view value)
{
    ASSERT_LE(value.size(), text.limit);
    memset(this->*text.pointer, 0, text.limit + 1);
    value.copy(this->*text.pointer, value.size());
}

entry random_entry(std::mt19937& random)
{
    entry made;
    for (const auto& [start, size] : ranges_outside_pointers)
        for (size_t i = start; i < start + size; ++i)
            reinterpret_cast<unsigned char*>(&made)[i] = static_cast<unsigned char>(random());
    for (const organizer_text& text : organizer_texts) {
        std::string value(random() % (text.limit + 1), ' ');
        for (char& byte : value) byte = static_cast<char>(1 + random() % 255);
        made.set_text(text, value);
    }
    return made;
}

// A moment that shows a number in all its parts.
static org_date_time uniform_date(int number)
{
    const broken_down_time time = {number % 60, number % 60, number % 24, 1 + number % 28, number % 12, 100, 0, 0, 0};
    return {time, number, static_cast<uint32_t>(number)};
}

static constexpr org_date_time org_full_record::*dates[] = {
    &org_full_record::start_date_time, &org_full_record::end_date_time, &org_full_record::alarm_time,
    &org_full_record::repeat_end_or_due, &org_full_record::last_modified_time};

entry uniform_entry(int number)
{
    entry made;
    const std::string text = std::to_string(number);
    for (const organizer_text& field : organizer_texts) made.set_text(field, text);
    for (const auto date : dates) made.*date = uniform_date(number);
    for (int32_t org_full_record::*const word :
         {&org_full_record::kind, &org_full_record::opaque_8, &org_full_record::repeat_term,
          &org_full_record::repeat_interval, &org_full_record::completed, &org_full_record::priority})
        made.*word = number;
    for (int32_t& word : made.opaque_352) word = number;
    return made;
}

int number_of(const org_full_record& uniform)
{
    const int number = uniform.kind;
    return difference(uniform, uniform_entry(number)).empty() ? number : -1;
}

std::string difference(const org_full_record& one, const org_full_record& other)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(&one);
    const auto* other_bytes = reinterpret_cast<const unsigned char*>(&other);
    for (const auto& [start, size] : ranges_outside_pointers)
        for (size_t i = start; i < start + size; ++i)
            if (i >= sizeof one.index && bytes[i] != other_bytes[i]) return "byte " + std::to_string(i);
    for (const auto& [name, pointer, limit] : organizer_texts)
        if (strcmp(one.*pointer, other.*pointer) != 0) return name;
    return "";
}

int add(int type, org_full_record& record)
{
    int index = 0, error = 0;
    EXPECT_TRUE(org_db_service_add_record_full_field(type, &record, &index, &error)) << error;
    return index;
}

int add(int type, std::string_view summary)
{
    entry record(summary);
    return add(type, record);
}

entry get(int index)
{
    entry record;
    int error = 0;
    EXPECT_TRUE(org_db_service_get_record_full_field_by_index(index, &record, &error)) << index << ": " << error;
    return record;
}

void update(int index, org_full_record& record)
{
    int error = 0;
    record.index = index;
    EXPECT_TRUE(org_db_service_update_record_full_field(index, &record, &error)) << index << ": " << error;
}

void remove_record(int index)
{
    int error = 0;
    EXPECT_TRUE(org_db_service_delete_record(index, &error)) << index << ": " << error;
}

int count(int type)
{
    int number = -1, error = 0;
    EXPECT_TRUE(org_db_service_get_record_count(0, type, &number, &error)) << error;
    return number;
}

std::vector<int> indices(int type)
{
    std::vector<int> list(static_cast<size_t>(count(type)), -1);
    int error = 0;
    EXPECT_TRUE(org_db_service_get_records_id(0, type, static_cast<int>(list.size()), 0, list.data(), &error)) << error;
    return list;
}

void connect()
{
    int error = 0;
    EXPECT_TRUE(org_db_service_connect_database(&error)) << error;
}

void disconnect()
{
    int error = 0;
    EXPECT_TRUE(org_db_service_disconnect_database(&error)) << error;
}

int code_of_get(int index)
{
    entry record;
    return code_of([&](int* error) { return org_db_service_get_record_full_field_by_index(index, &record, error); });
}

int code_of_add(int type)
{
    entry record("x");
    int index = 0;
    return code_of([&](int* error) { return org_db_service_add_record_full_field(type, &record, &index, error); });
}

void OrganizerStore::make_closed_store(int events) const
{
    const auto fill = [events] {
        for (int i = 0; i < events; ++i) add(ORG_TYPE_EVENT, std::string(100, 'x'));
        return testing::Test::HasFailure() ? 1 : 0;
    };
    ASSERT_EQ(in_tidy_child(fill), 0);
    ASSERT_FALSE(fs::exists(file().string() + "-wal"));
}

} // namespace organizer
} // namespace store_test
