// Groups and who belongs to them.

#include <string.h>

#include "contact_fixture.h"

using namespace store_test;
using testing::ElementsAre;
using testing::IsEmpty;

class ContactGroups : public ContactStore {
protected:
    static int add_member(int key_index)
    {
        contact stored("member");
        stored.membership[key_index] = 1;
        return add(stored);
    }

    static void delete_group(int key_index)
    {
        int error = 0;
        EXPECT_TRUE(contact_db_service_group_delete(0, key_index, &error)) << error;
    }

    static int id_of(const char* name)
    {
        int key_index = -1, error = 0;
        EXPECT_TRUE(contact_db_service_group_get_id_by_name(0, name, &key_index, &error)) << name << ": " << error;
        return key_index;
    }

    static bool name_exists(const char* name)
    {
        unsigned char flag = 77;
        int error = 0;
        EXPECT_TRUE(contact_db_service_group_exist_same_name(0, name, &flag, &error)) << error;
        EXPECT_LE(flag, 1);
        return flag;
    }

    static void rename(int key_index, std::string_view name)
    {
        contact_group_record group = {};
        set_text(group.name, name);
        int error = 0;
        EXPECT_TRUE(contact_db_service_group_update(0, key_index, &group, &error)) << error;
    }

    // The key indexes that a search finds, with room for `room` groups.
    static std::vector<int> search(const char* query, int mode, int room = CONTACT_GROUP_MAX)
    {
        std::vector<contact_group_record> groups(CONTACT_GROUP_MAX);
        int error = 0;
        EXPECT_TRUE(contact_db_service_group_search(0, query, 20, 0, groups.data(), &room, &error, mode)) << error;
        std::vector<int> found;
        for (int i = 0; i < room; ++i) found.push_back(groups[static_cast<size_t>(i)].group_key.index);
        return found;
    }
};

TEST_F(ContactGroups, GetTheLowestFreeKeyIndex)
{
    EXPECT_EQ(add_group("a"), 0);
    EXPECT_EQ(add_group("b"), 1);
    EXPECT_EQ(add_group("c"), 2);
    delete_group(1);
    EXPECT_EQ(add_group("d"), 1);
    EXPECT_THAT(group_names(), ElementsAre("a", "d", "c"));
}

TEST_F(ContactGroups, AreAtMostThirty)
{
    for (int i = 0; i < CONTACT_GROUP_MAX; ++i) EXPECT_EQ(add_group("group"), i);
    contact_group_record one_too_many = {};
    one_too_many.group_key.index = 42;
    int error = 0;
    EXPECT_FALSE(contact_db_service_group_add(&one_too_many, &error));
    EXPECT_EQ(error, CONTACT_ERROR_FULL);
    EXPECT_EQ(one_too_many.group_key.index, 42);
    EXPECT_EQ(group_names().size(), static_cast<size_t>(CONTACT_GROUP_MAX));
    delete_group(17);
    EXPECT_EQ(add_group("group"), 17);
}

TEST_F(ContactGroups, ComeBackByteForByte)
{
    std::mt19937 random(7);
    for (int round = 0; round < 10; ++round) {
        contact_group_record stored;
        auto* bytes = reinterpret_cast<unsigned char*>(&stored);
        for (size_t i = 0; i < sizeof stored; ++i) bytes[i] = static_cast<unsigned char>(random());
        int error = 0;
        ASSERT_TRUE(contact_db_service_group_add(&stored, &error)) << error;
        contact_group_record fetched = {};
        ASSERT_TRUE(contact_db_service_group_get(0, round, &fetched, &error)) << error;
        EXPECT_EQ(memcmp(&fetched, &stored, sizeof stored), 0) << round;

        for (size_t i = 4; i < sizeof stored; ++i) bytes[i] = static_cast<unsigned char>(random());
        ASSERT_TRUE(contact_db_service_group_update(0, round, &stored, &error)) << error;
        const auto is_the_same_there = [&] {
            contact_group_record read = {};
            return contact_db_service_group_get(0, round, &read, &error) && memcmp(&read, &stored, sizeof read) == 0;
        };
        EXPECT_TRUE(is_the_same_there()) << round;
        EXPECT_EQ(child_process([&] { return is_the_same_there() ? 0 : 1; }).wait(), 0) << round;
    }
}

TEST_F(ContactGroups, AreFoundByName)
{
    const std::string longest(CONTACT_GROUP_NAME_MAX, 'n');
    add_group("Friends");
    add_group("friends");
    add_group(longest);
    EXPECT_EQ(id_of("Friends"), 0);
    EXPECT_EQ(id_of("friends"), 1);
    EXPECT_EQ(id_of(longest.c_str()), 2);
    EXPECT_TRUE(name_exists("friends"));
    EXPECT_TRUE(name_exists(longest.c_str()));
    for (const char* name : {"", "Friend", "Friends ", "FRIENDS"}) {
        int key_index = -5, error = 0;
        EXPECT_FALSE(name_exists(name)) << name;
        EXPECT_FALSE(contact_db_service_group_get_id_by_name(0, name, &key_index, &error)) << name;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << name;
        EXPECT_EQ(key_index, -5) << name;
    }
}

TEST_F(ContactGroups, MayComeToBearTheSameName)
{
    add_group("a");
    add_group("b");
    add_group("c");
    rename(2, "b");
    EXPECT_EQ(id_of("b"), 1);
    EXPECT_THAT(search("b", 1), ElementsAre(1, 2));
    EXPECT_THAT(group_names(), ElementsAre("a", "b", "b"));
}

TEST_F(ContactGroups, KeepTheirMembersWhenRenamed)
{
    add_group("a");
    const int member = add_member(0);
    rename(0, "b");
    EXPECT_THAT(members(0), ElementsAre(member));
    EXPECT_FALSE(name_exists("a"));
}

TEST_F(ContactGroups, AreSearchedInKeyOrder)
{
    for (const char* name : {"x", "y", "x", "z"}) add_group(name);
    EXPECT_THAT(search("id >= 0", 0), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(search("x", 1), ElementsAre(0, 2));
    EXPECT_THAT(search("w", 1), IsEmpty());
    EXPECT_THAT(search("id >= 0", 0, 2), ElementsAre(0, 1));
    EXPECT_THAT(search("x", 1, 1), ElementsAre(0));
    EXPECT_THAT(search("x", 1, 0), IsEmpty());
}

TEST_F(ContactGroups, AreListedAsFarAsThereIsRoom)
{
    add_group("a");
    add_group("b");
    contact_group_record groups[4] = {};
    int error = 0;
    ASSERT_TRUE(contact_db_service_group_get_all_records(0, groups, 1, &error));
    EXPECT_STREQ(groups[0].name, "a");
    EXPECT_STREQ(groups[1].name, "");
    ASSERT_TRUE(contact_db_service_group_get_all_records(0, groups, 4, &error));
    EXPECT_STREQ(groups[1].name, "b");
    EXPECT_EQ(groups[1].group_key.index, 1);
    EXPECT_STREQ(groups[2].name, "");
    EXPECT_TRUE(contact_db_service_group_get_all_records(0, nullptr, 0, &error));
}

TEST_F(ContactGroups, ThatAreNotThereAreNotFound)
{
    add_group("a");
    for (const int key_index : {-1, 1, 29, 30, 70, INT32_MAX, INT32_MIN}) {
        contact_group_record group = {};
        int room[1], number = 1, error = 0;
        EXPECT_FALSE(contact_db_service_group_get(0, key_index, &group, &error)) << key_index;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << key_index;
        error = 0;
        EXPECT_FALSE(contact_db_service_group_update(0, key_index, &group, &error)) << key_index;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << key_index;
        error = 0;
        EXPECT_FALSE(contact_db_service_group_delete(0, key_index, &error)) << key_index;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << key_index;
        error = 0;
        EXPECT_FALSE(contact_db_service_group_get_members(0, key_index, room, &number, &error)) << key_index;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << key_index;
    }
}

TEST_F(ContactGroups, HaveTheMembersWhoseBytesSaySo)
{
    add_group("a");
    add_group("b");
    const int in_a = add_member(0), in_b = add_member(1), in_none = add("x");
    contact both("both");
    both.membership[0] = both.membership[1] = 200;
    const int in_both = add(both);
    EXPECT_THAT(members(0), ElementsAre(in_a, in_both));
    EXPECT_THAT(members(1), ElementsAre(in_b, in_both));
    EXPECT_THAT(contacts_of_no_group(), ElementsAre(in_none));

    contact moved("moved");
    moved.membership[1] = 1;
    update(in_a, moved);
    EXPECT_THAT(members(0), ElementsAre(in_both));
    EXPECT_THAT(members(1), ElementsAre(in_a, in_b, in_both));
    EXPECT_EQ(get(in_both).membership[0], 200);
    const auto is_the_same_there = [&] {
        return members(0) == std::vector{in_both} && members(1) == std::vector{in_a, in_b, in_both} &&
               contacts_of_no_group() == std::vector{in_none};
    };
    EXPECT_EQ(child_process([&] { return is_the_same_there() ? 0 : 1; }).wait(), 0);
}

TEST_F(ContactGroups, ListTheirMembersAsFarAsThereIsRoom)
{
    add_group("a");
    for (int i = 0; i < 3; ++i) add_member(0);
    int room[3] = {-1, -1, -1}, number = 2, error = 0;
    EXPECT_TRUE(contact_db_service_group_get_members(0, 0, room, &number, &error));
    EXPECT_EQ(number, 2);
    EXPECT_THAT(room, ElementsAre(1, 2, -1));
}

TEST_F(ContactGroups, TakeTheirMembershipsWithThemWhenDeleted)
{
    add_group("a");
    add_group("b");
    contact both("both");
    both.membership[0] = both.membership[1] = 1;
    const int in_both = add(both), in_a = add_member(0);
    get(in_both);
    delete_group(0);
    EXPECT_EQ(get(in_both).membership[0], 0);
    EXPECT_EQ(get(in_both).membership[1], 1);
    EXPECT_EQ(get(in_a).membership[0], 0);
    EXPECT_THAT(contacts_of_no_group(), ElementsAre(in_a));
    EXPECT_THAT(members(1), ElementsAre(in_both));
    EXPECT_TRUE(exists(in_a));
    EXPECT_EQ(child_process([&] { return get(in_both).membership[0]; }).wait(), 0);
}

TEST_F(ContactGroups, BeginWithoutMembers)
{
    // The record was saved by someone who did not know yet that the group is gone.
    const int late = add_member(3);
    EXPECT_EQ(get(late).membership[3], 1);
    EXPECT_THAT(contacts_of_no_group(), ElementsAre(late));
    for (const char* name : {"0", "1", "2", "3"}) add_group(name);
    EXPECT_THAT(members(3), IsEmpty());
    EXPECT_EQ(get(late).membership[3], 0);
    EXPECT_THAT(contacts_of_no_group(), ElementsAre(late));
}

TEST_F(ContactGroups, HaveNothingToDoWithMembershipBytesBeyondTheirKeyIndexes)
{
    contact stored("x");
    stored.membership[30] = 1;
    stored.membership[70] = 9;
    const int index = add(stored);
    EXPECT_THAT(difference(get(index), stored), IsEmpty());
    EXPECT_THAT(contacts_of_no_group(), ElementsAre(index));
}

TEST_F(ContactGroups, GiveTheNullListWhenEveryContactHasOne)
{
    GList* list = reinterpret_cast<GList*>(&list);
    int error = 0;
    EXPECT_TRUE(contact_db_service_search_contacts_of_no_group(nullptr, 1024, "", 9, &list, &error));
    EXPECT_EQ(list, nullptr);
    add_group("a");
    add_member(0);
    list = reinterpret_cast<GList*>(&list);
    EXPECT_TRUE(contact_db_service_search_contacts_of_no_group(nullptr, 1024, "", 9, &list, &error));
    EXPECT_EQ(list, nullptr);
}

TEST_F(ContactGroups, LeaveOutNoContactOfALongList)
{
    for (int i = 0; i < 3; ++i) add("x");
    shell().exec(
        "WITH RECURSIVE i(n) AS (SELECT 4 UNION ALL SELECT n + 1 FROM i WHERE n < 1500) "
        "INSERT INTO contact (record_index) SELECT n FROM i");
    EXPECT_EQ(contacts_of_no_group().size(), 1500u);
}
