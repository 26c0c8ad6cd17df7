// Which record indexes contacts get, and in which order they are listed.

#include "contact_fixture.h"

using namespace store_test;
using testing::ElementsAre;
using testing::IsEmpty;

class ContactIndexes : public ContactStore {
protected:
    // Fills the store through the file, faster than by commits.
    void insert_contacts(int first, int last) const
    {
        shell().exec("WITH RECURSIVE i(n) AS (SELECT " + std::to_string(first) +
                     " UNION ALL SELECT n + 1 FROM i WHERE n < " + std::to_string(last) +
                     ") INSERT INTO contact (record_index) SELECT n FROM i");
    }
};

TEST_F(ContactIndexes, BeginAtOne)
{
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(add("Ada"), 1);
    EXPECT_EQ(add("Grace"), 2);
    EXPECT_THAT(indices(), ElementsAre(1, 2));
}

TEST_F(ContactIndexes, OfDeletedContactsAreNotGivenAgain)
{
    for (int i = 1; i <= 3; ++i) EXPECT_EQ(add("x"), i);
    remove_contact(2);
    EXPECT_EQ(add("x"), 4);
    remove_contact(4);
    EXPECT_EQ(add("x"), 5);
    EXPECT_THAT(indices(), ElementsAre(1, 3, 5));
}

TEST_F(ContactIndexes, OfDeletedContactsAreNotGivenAgainByTheNextProcess)
{
    const auto fill = [] {
        for (int i = 1; i <= 3; ++i) add("x");
        remove_contact(3);
        return 0;
    };
    ASSERT_EQ(in_tidy_child(fill), 0);
    EXPECT_EQ(add("x"), 4);
}

TEST_F(ContactIndexes, OfContactsDeletedInTheFileAreNotGivenAgainEither)
{
    add("x");
    add("x");
    shell().exec("DELETE FROM contact WHERE record_index = 2");
    EXPECT_EQ(add("x"), 3);
}

TEST_F(ContactIndexes, GoOnFromTheLowestFreeOneWhenTheHighestHasBeenUsed)
{
    add("first");
    insert_contacts(2, CONTACT_RECORD_MAX);
    remove_contact(CONTACT_RECORD_MAX);
    remove_contact(77);
    remove_contact(5000);
    EXPECT_EQ(add("x"), 77);
    EXPECT_EQ(add("x"), 5000);
    EXPECT_EQ(add("x"), CONTACT_RECORD_MAX);
    EXPECT_EQ(count(), CONTACT_RECORD_MAX);
}

TEST_F(ContactIndexes, AreTheSameToWhomTheListIsKnown)
{
    add("first");
    insert_contacts(2, CONTACT_RECORD_MAX);
    EXPECT_EQ(indices().size(), CONTACT_RECORD_MAX);
    for (const int gone : {int{CONTACT_RECORD_MAX}, 1, 5000}) remove_contact(gone);
    EXPECT_EQ(add("x"), 1);
    shell().exec("DELETE FROM contact WHERE record_index IN (50, 60)");
    for (const int free : {50, 60, 5000}) EXPECT_EQ(add("x"), free) << "what others remove is free as well";
    EXPECT_EQ(indices().size(), CONTACT_RECORD_MAX - 1);
    EXPECT_EQ(add("x"), CONTACT_RECORD_MAX);
    contact one_too_many("x");
    int error = 0;
    EXPECT_FALSE(contact_db_service_contact_add(&one_too_many, &error));
    EXPECT_EQ(error, CONTACT_ERROR_FULL);
}

TEST_F(ContactIndexes, EndAtTheLimit)
{
    add("first");
    insert_contacts(2, CONTACT_RECORD_MAX);
    contact one_too_many("x");
    one_too_many.index = 42;
    int error = 0;
    EXPECT_FALSE(contact_db_service_contact_add(&one_too_many, &error));
    EXPECT_EQ(error, CONTACT_ERROR_FULL);
    EXPECT_EQ(one_too_many.index, 42);
    EXPECT_EQ(count(), CONTACT_RECORD_MAX);
    EXPECT_EQ(indices().back(), CONTACT_RECORD_MAX);
    remove_contact(1);
    EXPECT_EQ(add("x"), 1);
}

TEST_F(ContactIndexes, AreListedInOrder)
{
    for (int i = 0; i < 5; ++i) add("x");
    insert_contacts(300, 302);
    insert_contacts(100, 100);
    EXPECT_THAT(indices(), ElementsAre(1, 2, 3, 4, 5, 100, 300, 301, 302));
    for (const int index : indices()) EXPECT_EQ(get(index).index, index);
    EXPECT_EQ(add("x"), 303);
}

TEST_F(ContactIndexes, AreListedAsFarAsThereIsRoom)
{
    for (int i = 0; i < 5; ++i) add("x");
    int room[5] = {-1, -1, -1, -1, -1};
    int number = 3, error = 0;
    EXPECT_TRUE(contact_db_service_contact_get_all_indices(0, room, &number, &error));
    EXPECT_EQ(number, 3);
    EXPECT_THAT(room, ElementsAre(1, 2, 3, -1, -1));
    number = 0;
    EXPECT_TRUE(contact_db_service_contact_get_all_indices(0, nullptr, &number, &error));
    EXPECT_EQ(number, 0);
}

TEST_F(ContactIndexes, OfAnEmptyStoreAreReportedAsNoRecords)
{
    int room[1] = {-1};
    int number = 1, error = 0;
    EXPECT_FALSE(contact_db_service_contact_get_all_indices(0, room, &number, &error));
    EXPECT_EQ(error, CONTACT_ERROR_NO_RECORDS);
    EXPECT_EQ(room[0], -1);
}

TEST_F(ContactIndexes, ThatNoContactHasAreNotFound)
{
    add("x");
    for (const int index : {-1, 0, 2, int{CONTACT_RECORD_MAX}, CONTACT_RECORD_MAX + 1, INT32_MAX, INT32_MIN}) {
        contact fetched;
        int error = 0;
        EXPECT_FALSE(contact_db_service_contact_get(0, index, 0, &fetched, &error)) << index;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << index;
        EXPECT_THAT(difference(fetched, contact()), IsEmpty()) << index;
        error = 0;
        EXPECT_FALSE(contact_db_service_contact_update(0, index, &fetched, &error)) << index;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << index;
        error = 0;
        EXPECT_FALSE(contact_db_service_contact_delete(0, index, 0, 0, &error)) << index;
        EXPECT_EQ(error, CONTACT_ERROR_NOT_FOUND) << index;
        EXPECT_FALSE(exists(index)) << index;
    }
    EXPECT_THAT(indices(), ElementsAre(1));
}

TEST_F(ContactIndexes, NameTheUpdatedContactWhateverItsRecordSays)
{
    add("x");
    add("y");
    contact changed("z");
    changed.index = 2;
    update(1, changed);
    EXPECT_STREQ(get(1).name_info.last_name, "z");
    EXPECT_EQ(get(1).index, 1);
    EXPECT_STREQ(get(2).name_info.last_name, "y");
}

TEST_F(ContactIndexes, OfDeletedContactsAreGoneWithAllTheirRows)
{
    contact stored = uniform_contact(2);
    stored.membership[add_group("Friends")] = 1;
    const int index = add(stored);
    EXPECT_TRUE(exists(index));
    remove_contact(index);
    EXPECT_FALSE(exists(index));
    EXPECT_THAT(members(0), IsEmpty());
    for (const char* table : {"contact", "phone", "email", "homepage", "address", "membership"})
        EXPECT_EQ(shell().execAndGet("SELECT count(*) FROM " + std::string(table)).getInt(), 0) << table;
}
