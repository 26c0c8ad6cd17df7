#include <algorithm>

#include "organizer_fixture.h"
#include "store_operations.h"

using namespace store_test;

namespace {

answer fetched(int index)
{
    return answer_of([&](std::string& result, int* error) {
        entry found;
        if (!org_db_service_get_record_full_field_by_index(index, &found, error)) return 0;
        for (const auto& [start, size] : ranges_outside_pointers)
            result.append(reinterpret_cast<const char*>(&found) + start, size);
        for (const organizer_text& text : organizer_texts) (result += found.*text.pointer) += ' ';
        return 1;
    });
}

answer listed(int type)
{
    return answer_of([&](std::string& result, int* error) {
        int count = 0;
        if (!org_db_service_get_record_count(0, type, &count, error)) return 0;
        std::vector<int> found(static_cast<size_t>(count));
        if (!org_db_service_get_records_id(0, type, count, 0, found.data(), error)) return 0;
        for (const int index : found) result += as_text(index);
        return 1;
    });
}

answer added(int type, int number)
{
    return answer_of([&](std::string& result, int* error) {
        entry record = uniform_entry(number);
        int index = 0;
        if (!org_db_service_add_record_full_field(type, &record, &index, error)) return 0;
        result = as_text(index);
        return 1;
    });
}

answer removed(int index)
{
    return answer_of([&](std::string&, int* error) { return org_db_service_delete_record(index, error); });
}

void fill()
{
    for (int number = 1; number <= 6; ++number) added(number % 2 == 1 ? ORG_TYPE_EVENT : ORG_TYPE_TODO, number);
}

std::string state()
{
    std::string all;
    for (const int type : both_types) {
        all += as_text(listed(type));
        for (int index = 1; index <= 9; ++index) all += as_text(fetched(index));
    }
    return all;
}

bool works()
{
    const answer index = added(ORG_TYPE_EVENT, 7);
    return index.error == 0 && removed(std::stoi(index.result)).error == 0;
}

} // namespace

store_operations organizer_operations()
{
    return {
        .files = {"organizer.db3"},
        .fill = fill,
        .state = state,
        .works = works,
        .told_by = report::code,
        .operations =
            {
                {"connect",
                 [] { return answer_of([](auto&, int* error) { return org_db_service_connect_database(error); }); },
                 true},
                {"list", [] { return listed(ORG_TYPE_TODO); }},
                {"get", [] { return fetched(2); }},
                {"add an event", [] { return added(ORG_TYPE_EVENT, 8); }, true},
                {"add a to-do", [] { return added(ORG_TYPE_TODO, 8); }},
                {"update",
                 [] {
                     entry changed = uniform_entry(9);
                     return answer_of([&](auto&, int* error) {
                         return org_db_service_update_record_full_field(2, &changed, error);
                     });
                 }},
                {"delete", [] { return removed(3); }},
            },
    };
}
