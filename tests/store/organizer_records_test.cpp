// What a record brings to the store and takes back from it.

#include <stdlib.h>

#include <cstring>

#include "organizer_fixture.h"

using namespace store_test;
using testing::IsEmpty;

class OrganizerRecords : public OrganizerStore {};

TEST_F(OrganizerRecords, ComeBackByteForByte)
{
    constexpr int records = 60;
    std::mt19937 random(1);
    std::vector<entry> stored;
    for (int i = 0; i < records; ++i) {
        stored.push_back(random_entry(random));
        ASSERT_EQ(add(both_types[i % 2], stored.back()), i + 1);
    }
    const auto compare = [&] {
        for (int i = 0; i < records; ++i)
            EXPECT_THAT(difference(get(i + 1), stored[static_cast<size_t>(i)]), IsEmpty()) << i;
        return HasFailure() ? 1 : 0;
    };
    EXPECT_EQ(compare(), 0) << "from memory";
    EXPECT_EQ(child_process(compare).wait(), 0) << "from the file";

    for (int i = 0; i < records; ++i) {
        entry other = random_entry(random);
        update(i + 1, other);
        EXPECT_THAT(difference(get(i + 1), other), IsEmpty()) << i;
    }
}

TEST_F(OrganizerRecords, ComeBackUnderTheirIndex)
{
    entry record("x");
    record.index = 4711;
    EXPECT_EQ(add(ORG_TYPE_EVENT, record), 1);
    EXPECT_EQ(get(1).index, 1);
    record.index = 4711;
    EXPECT_EQ(code_of([&](int* error) { return org_db_service_update_record_full_field(1, &record, error); }), 0);
    EXPECT_EQ(get(1).index, 1);
}

TEST_F(OrganizerRecords, DatesComeBackWithAllTheirWords)
{
    struct {
        const char* when;
        broken_down_time time;
    } const rows[] = {
        {"never set", {}},
        {"an ordinary date", {50, 20, 23, 12, 3, 85, 5, 101, 0}},
        {"daylight saving", {0, 0, 12, 1, 6, 124, 1, 182, 1}},
        {"daylight saving by another word", {0, 0, 12, 1, 6, 124, 1, 182, 7}},
        {"daylight saving unknown", {0, 0, 12, 1, 6, 124, 1, 182, -1}},
        {"a leap second", {60, 59, 23, 30, 5, 115, 2, 180, 0}},
        {"the day of another year", {0, 0, 12, 1, 6, 0, 1, 182, 0}},
        {"30 February", {0, 0, 12, 30, 1, 124, 5, 60, 0}},
        {"before 1900", {0, 0, 12, 1, 6, -1, 1, 182, 0}},
        {"month 13", {0, 0, 12, 1, 13, 124, 1, 182, 0}},
        {"extremes", {INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX, -2}},
    };
    for (const auto& row : rows) {
        entry record;
        for (const auto date :
             {&org_full_record::start_date_time, &org_full_record::end_date_time, &org_full_record::alarm_time,
              &org_full_record::repeat_end_or_due, &org_full_record::last_modified_time})
            record.*date = {row.time, -32400, 0xdeadbeef};
        const int index = add(ORG_TYPE_TODO, record);
        EXPECT_THAT(difference(get(index), record), IsEmpty()) << row.when;
        const auto compare = [&] { return difference(get(index), record).empty() ? 0 : 1; };
        EXPECT_EQ(child_process(compare).wait(), 0) << row.when;
    }
}

TEST_F(OrganizerRecords, TextsOfExactlyTheirLimitComeBack)
{
    for (const organizer_text& text : organizer_texts) {
        entry record;
        record.set_text(text, std::string(text.limit, '\xe9'));
        const int index = add(ORG_TYPE_EVENT, record);
        EXPECT_THAT(difference(get(index), record), IsEmpty()) << text.name;
        update(index, record);
        const auto compare = [&] { return difference(get(index), record).empty() ? 0 : 1; };
        EXPECT_EQ(child_process(compare).wait(), 0) << text.name;
    }
}

TEST_F(OrganizerRecords, ATextOneByteOverItsLimitIsRefusedAndNothingStored)
{
    entry kept = uniform_entry(1);
    add(ORG_TYPE_EVENT, kept);
    for (const organizer_text& text : organizer_texts) {
        std::string too_long(text.limit + 1, 'x');
        org_full_record record = {};
        record.*text.pointer = too_long.data();
        int index = 4711;
        const auto adding = [&](int* e) { return org_db_service_add_record_full_field(8, &record, &index, e); };
        EXPECT_EQ(code_of(adding), ORG_ERR_INVALID_ARGUMENT) << text.name;
        EXPECT_EQ(index, 4711) << text.name;
        const auto updating = [&](int* e) { return org_db_service_update_record_full_field(1, &record, e); };
        EXPECT_EQ(code_of(updating), ORG_ERR_INVALID_ARGUMENT) << text.name;
    }
    EXPECT_EQ(count(ORG_TYPE_EVENT), 1);
    EXPECT_THAT(difference(get(1), kept), IsEmpty());
    EXPECT_EQ(add(ORG_TYPE_EVENT, "next"), 2);
}

TEST_F(OrganizerRecords, AddLeavesTheCallersRecordAsItIs)
{
    std::mt19937 random(2);
    entry record = random_entry(random);
    const entry before = record;
    const int32_t index_before = record.index;
    const org_full_record pointers_before = record;
    add(ORG_TYPE_EVENT, record);
    EXPECT_EQ(record.index, index_before);
    EXPECT_THAT(difference(record, before), IsEmpty());
    for (const organizer_text& text : organizer_texts)
        EXPECT_EQ(record.*text.pointer, pointers_before.*text.pointer) << text.name;
}

TEST_F(OrganizerRecords, WithoutBuffersHaveEmptyTexts)
{
    org_full_record record = {};
    const int index = add(ORG_TYPE_EVENT, record);
    EXPECT_THAT(difference(get(index), entry()), IsEmpty());
}

TEST_F(OrganizerRecords, AFetchCopiesIntoTheAttachedBuffersAndSkipsNullOnes)
{
    entry stored = uniform_entry(7);
    const int index = add(ORG_TYPE_EVENT, stored);
    for (const organizer_text& attached : organizer_texts) {
        org_full_record fetched = {};
        std::string buffer(attached.limit + 1, '#');
        fetched.*attached.pointer = buffer.data();
        int error = 0;
        ASSERT_TRUE(org_db_service_get_record_full_field_by_index(index, &fetched, &error));
        for (const organizer_text& text : organizer_texts)
            EXPECT_EQ(fetched.*text.pointer, text.pointer == attached.pointer ? buffer.data() : nullptr) << text.name;
        EXPECT_STREQ(buffer.c_str(), "7") << attached.name;
        EXPECT_EQ(buffer.substr(2), std::string(attached.limit - 1, '#')) << attached.name;
        EXPECT_EQ(fetched.start_date_time.time.mday, stored.start_date_time.time.mday);
    }
}

TEST_F(OrganizerRecords, AFetchReplacesAllThatAnEarlierOneBrought)
{
    entry full = uniform_entry(7), empty;
    const int first = add(ORG_TYPE_EVENT, full), second = add(ORG_TYPE_EVENT, empty);
    entry fetched = get(first);
    ASSERT_TRUE(org_db_service_get_record_full_field_by_index(second, &fetched, nullptr));
    EXPECT_THAT(difference(fetched, empty), IsEmpty());
}

TEST_F(OrganizerRecords, AFetchOfNothingLeavesTheRecordAsItWas)
{
    add(ORG_TYPE_EVENT, "x");
    entry record = uniform_entry(5);
    record.index = 99;
    for (const int missing : {2, 0, -1, 10000, 10001, INT32_MIN, INT32_MAX}) {
        int error = 0;
        EXPECT_FALSE(org_db_service_get_record_full_field_by_index(missing, &record, &error));
        EXPECT_EQ(error, ORG_ERR_RECORD_NOT_FOUND) << missing;
        EXPECT_FALSE(org_db_service_get_record_full_field_by_index(missing, &record, nullptr));
    }
    EXPECT_EQ(record.index, 99);
    EXPECT_EQ(number_of(record), 5);
}

TEST_F(OrganizerRecords, AnUpdateReplacesTheWholeRecordAndKeepsItsType)
{
    for (const int type : both_types) {
        entry full = uniform_entry(7), bare("bare");
        const int index = add(type, full);
        connect();
        bare.kind = type == ORG_TYPE_EVENT ? ORG_KIND_TODO : ORG_KIND_EVENT; // Carried, but not what decides.
        update(index, bare);
        EXPECT_THAT(difference(get(index), bare), IsEmpty());
        EXPECT_EQ(indices(type), std::vector<int>{index});
    }
}

TEST_F(OrganizerRecords, AnUpdateOfNothingStoresNothing)
{
    add(ORG_TYPE_EVENT, "x");
    for (const int missing : {2, 0, -1, 10001}) {
        entry record("y");
        EXPECT_EQ(code_of([&](int* e) { return org_db_service_update_record_full_field(missing, &record, e); }),
                  ORG_ERR_RECORD_NOT_FOUND);
    }
    EXPECT_EQ(count(ORG_TYPE_EVENT), 1);
    EXPECT_EQ(count(ORG_TYPE_TODO), 0);
    connect();
    EXPECT_STREQ(get(1).summary, "x");
}

TEST_F(OrganizerRecords, ADeleteNamesTheIndexAlone)
{
    const int event = add(ORG_TYPE_EVENT, "event"), todo = add(ORG_TYPE_TODO, "to-do");
    EXPECT_EQ(count(ORG_TYPE_EVENT), 1); // Begins the scope of events, which deletes do not heed.
    remove_record(todo);
    EXPECT_EQ(count(ORG_TYPE_TODO), 0);
    remove_record(event);
    EXPECT_EQ(count(ORG_TYPE_EVENT), 0);
    for (const int gone : {event, todo, 0, -1, 10001})
        EXPECT_EQ(code_of([&](int* e) { return org_db_service_delete_record(gone, e); }), ORG_ERR_RECORD_NOT_FOUND);
}

TEST_F(OrganizerRecords, PreparingOneClearsAllButTheTextPointers)
{
    std::mt19937 random(3);
    entry record = random_entry(random);
    const entry before = record;
    const org_full_record pointers_before = record;
    ASSERT_TRUE(org_db_service_init_full_record(&record, nullptr));
    for (const auto& [start, size] : ranges_outside_pointers)
        for (size_t i = start; i < start + size; ++i)
            EXPECT_EQ(reinterpret_cast<const unsigned char*>(&record)[i], 0) << i;
    for (const organizer_text& text : organizer_texts) {
        EXPECT_EQ(record.*text.pointer, pointers_before.*text.pointer) << text.name;
        EXPECT_STREQ(record.*text.pointer, before.*text.pointer) << text.name;
    }
}

TEST_F(OrganizerRecords, ReleasingOneFreesItsBuffersAndMayBeRepeated)
{
    entry record = uniform_entry(7);
    int error = 4711;
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(org_db_service_free_full_record(&record, &error));
        for (const organizer_text& text : organizer_texts) EXPECT_EQ(record.*text.pointer, nullptr) << text.name;
    }
    EXPECT_EQ(record.kind, 7);
    org_full_record zeroed = {};
    EXPECT_TRUE(org_db_service_free_full_record(&zeroed, &error));
    EXPECT_EQ(error, 4711);
}
