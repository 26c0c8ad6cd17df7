#include <algorithm>
#include <span>

#include "contact_fixture.h"
#include "store_operations.h"

using namespace store_test;

namespace {

std::string bytes_of(const void* start, size_t size)
{
    return {static_cast<const char*>(start), size};
}

answer fetched(int recindex)
{
    return answer_of([&](std::string& result, int* error) {
        contact found;
        if (!contact_db_service_contact_get(0, recindex, 0, &found, error)) return 0;
        contact_record plain = found;
        plain.phone_info = nullptr;
        plain.email_info = nullptr;
        plain.address_info = nullptr;
        plain.note = nullptr;
        result = bytes_of(&plain, sizeof plain);
        result += bytes_of(found.phone_info, sizeof(contact_phone) * static_cast<size_t>(found.phone_count));
        result += bytes_of(found.email_info, sizeof(contact_email) * static_cast<size_t>(found.email_count));
        result += bytes_of(found.address_info, sizeof(contact_address) * static_cast<size_t>(found.postal_count));
        result += bytes_of(found.note, static_cast<size_t>(found.note_size));
        return 1;
    });
}

answer listed()
{
    return answer_of([](std::string& result, int* error) {
        int found[64], count = 64;
        if (contact_db_service_contact_get_all_indices(0, found, &count, error))
            std::for_each(found, found + count, [&](int index) { result += as_text(index); });
        else if (*error != CONTACT_ERROR_NO_RECORDS)
            return 0;
        return 1;
    });
}

answer groups_with_members()
{
    return answer_of([](std::string& result, int* error) {
        contact_group_record groups[CONTACT_GROUP_MAX] = {};
        int count = 0;
        if (!contact_db_service_group_get_count(0, &count, error)) return 0;
        if (!contact_db_service_group_get_all_records(0, groups, count, error)) return 0;
        result = bytes_of(groups, sizeof(contact_group_record) * static_cast<size_t>(count));
        for (const contact_group_record& group : std::span(groups, static_cast<size_t>(count))) {
            int found[64], number = 64;
            if (!contact_db_service_group_get_members(0, group.group_key.index, found, &number, error)) return 0;
            std::for_each(found, found + number, [&](int index) { result += as_text(index); });
        }
        return 1;
    });
}

// The time of a save is the store's, unless it is given.
contact saved_long_ago(contact made)
{
    made.save_time.sec = 86400;
    return made;
}

contact member_of_group_0(int number)
{
    contact made = saved_long_ago(uniform_contact(number));
    made.membership[0] = 1;
    return made;
}

answer added(contact stored)
{
    return answer_of([&](std::string& result, int* error) {
        if (!contact_db_service_contact_add(&stored, error)) return 0;
        result = as_text(stored.index);
        return 1;
    });
}

answer removed(int recindex)
{
    return answer_of(
        [&](std::string&, int* error) { return contact_db_service_contact_delete(0, recindex, 0, 0, error); });
}

contact_group_record group_named(std::string_view name)
{
    contact_group_record group = {};
    set_text(group.name, name);
    return group;
}

answer group_added(std::string_view name)
{
    return answer_of([&](std::string& result, int* error) {
        contact_group_record group = group_named(name);
        if (!contact_db_service_group_add(&group, error)) return 0;
        result = as_text(group.group_key.index);
        return 1;
    });
}

void fill()
{
    group_added("Friends");
    group_added("Work");
    for (int number = 1; number <= 5; ++number)
        added(number % 2 == 1 ? member_of_group_0(number) : saved_long_ago(uniform_contact(number)));
}

std::string state()
{
    const answer list = listed();
    std::string all = as_text(list) + as_text(groups_with_members());
    for (int recindex = 1; recindex <= 8; ++recindex) all += as_text(fetched(recindex));
    return all;
}

bool works()
{
    const answer index = added(uniform_contact(7));
    return index.error == 0 && fetched(std::stoi(index.result)).error == 0 &&
           removed(std::stoi(index.result)).error == 0;
}

} // namespace

store_operations contact_operations()
{
    return {
        .files = {"address.db3"},
        .fill = fill,
        .state = state,
        .works = works,
        .told_by = report::code,
        .operations =
            {
                {"connect",
                 [] { return answer_of([](auto&, int* error) { return contact_db_service_connect(error); }); }, true},
                {"list", listed},
                {"get", [] { return fetched(2); }},
                {"groups", groups_with_members},
                {"add", [] { return added(member_of_group_0(6)); }, true},
                {"update",
                 [] {
                     contact changed = member_of_group_0(9);
                     return answer_of(
                         [&](auto&, int* error) { return contact_db_service_contact_update(0, 2, &changed, error); });
                 }},
                {"delete", [] { return removed(3); }},
                {"add a group", [] { return group_added("Club"); }},
                {"update a group",
                 [] {
                     contact_group_record changed = group_named("Office");
                     return answer_of(
                         [&](auto&, int* error) { return contact_db_service_group_update(0, 1, &changed, error); });
                 }},
                {"delete a group",
                 [] {
                     return answer_of([](auto&, int* error) { return contact_db_service_group_delete(0, 0, error); });
                 }},
            },
    };
}
