// Which indexes records get, and in which order they are listed.

#include <numeric>

#include "organizer_fixture.h"

using namespace store_test;
using testing::ElementsAre;

class OrganizerIndexes : public OrganizerStore {
protected:
    // Puts in records from `first` to `last` from outside.
    void fill(int first, int last) const
    {
        SQLite::Statement insertion = {filler(),
                                       "WITH RECURSIVE free(i) AS (VALUES (?1) UNION ALL SELECT i + 1 FROM free "
                                       "WHERE i < ?2) INSERT INTO record (record_index, type) SELECT i, 8 FROM free"};
        insertion.bind(1, first);
        insertion.bind(2, last);
        insertion.exec();
    }

private:
    SQLite::Database& filler() const
    {
        if (!filler_) filler_ = std::make_unique<SQLite::Database>(shell());
        return *filler_;
    }
    mutable std::unique_ptr<SQLite::Database> filler_;
};

TEST_F(OrganizerIndexes, StartAtOneAndRiseOverBothTypesTogether)
{
    EXPECT_EQ(add(ORG_TYPE_EVENT, "a"), 1);
    EXPECT_EQ(add(ORG_TYPE_TODO, "b"), 2);
    EXPECT_EQ(add(ORG_TYPE_TODO, "c"), 3);
    EXPECT_EQ(add(ORG_TYPE_EVENT, "d"), 4);
    EXPECT_THAT(indices(ORG_TYPE_EVENT), ElementsAre(1, 4));
    EXPECT_THAT(indices(ORG_TYPE_TODO), ElementsAre(2, 3));
}

TEST_F(OrganizerIndexes, OfDeletedRecordsAreNotGivenAgain)
{
    for (int i = 1; i <= 3; ++i) add(ORG_TYPE_EVENT, "x");
    remove_record(3);
    remove_record(2);
    EXPECT_EQ(add(ORG_TYPE_TODO, "y"), 4);
    remove_record(4);
    EXPECT_EQ(in_tidy_child([] { return add(ORG_TYPE_EVENT, "z"); }), 5) << "after a restart";
    for (const int index : {1, 5}) remove_record(index);
    EXPECT_EQ(in_tidy_child([] { return add(ORG_TYPE_EVENT, "z"); }), 6) << "in a store emptied before a restart";
}

TEST_F(OrganizerIndexes, AreTheLowestFreeOnesOnceTheLastWalkedPositionWasUsed)
{
    add(ORG_TYPE_EVENT, "x");
    fill(2, 1998);
    for (const int gone : {5, 3, 1000}) remove_record(gone);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 1999);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 3);
    remove_record(1999);
    EXPECT_EQ(in_tidy_child([] { return add(ORG_TYPE_TODO, "x"); }), 5);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 1000);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 1999);
    EXPECT_THAT(indices(ORG_TYPE_TODO), ElementsAre(3, 5, 1000, 1999));
}

TEST_F(OrganizerIndexes, PassTheLastWalkedPositionOnlyWhenNoneBeforeItIsFree)
{
    add(ORG_TYPE_EVENT, "x");
    fill(2, 1999);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 2000);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 2001);
    remove_record(2001);
    remove_record(77);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 77);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 2002);
    EXPECT_THAT(indices(ORG_TYPE_TODO), ElementsAre(77, 2000, 2002));
}

TEST_F(OrganizerIndexes, AreTheSameToWhomTheListIsKnown)
{
    add(ORG_TYPE_EVENT, "x");
    fill(2, 2500);
    EXPECT_EQ(count(ORG_TYPE_EVENT), 2500);
    for (const int gone : {1, 1500}) remove_record(gone);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 1);
    shell().exec("DELETE FROM record WHERE record_index IN (50, 60)");
    for (const int free : {50, 60, 1500}) EXPECT_EQ(add(ORG_TYPE_TODO, "x"), free) << "what others remove is free too";
    EXPECT_EQ(count(ORG_TYPE_TODO), 4);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 2501);
}

TEST_F(OrganizerIndexes, EndWhereTheStoreIsFull)
{
    add(ORG_TYPE_EVENT, "x");
    fill(2, 9998);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 9999);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 10000);
    for (const int type : both_types) EXPECT_EQ(code_of_add(type), ORG_ERR_FULL);
    EXPECT_EQ(count(ORG_TYPE_EVENT), 9998);
    EXPECT_EQ(count(ORG_TYPE_TODO), 2);

    remove_record(5000);
    remove_record(4000);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 4000);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 5000);
    EXPECT_EQ(code_of_add(), ORG_ERR_FULL);
    EXPECT_EQ(shell().execAndGet("SELECT count(*) FROM record").getInt(), 10000);
}

TEST_F(OrganizerIndexes, AListFillsAsMuchRoomAsThereIs)
{
    for (int i = 1; i <= 3; ++i) add(ORG_TYPE_TODO, "x");
    int room[5] = {-1, -1, -1, -1, -1};
    EXPECT_TRUE(org_db_service_get_records_id(0, ORG_TYPE_TODO, 2, 0, room, nullptr));
    EXPECT_THAT(room, ElementsAre(1, 2, -1, -1, -1));
    EXPECT_TRUE(org_db_service_get_records_id(0, ORG_TYPE_TODO, 5, 0, room, nullptr));
    EXPECT_THAT(room, ElementsAre(1, 2, 3, -1, -1));
    EXPECT_TRUE(org_db_service_get_records_id(0, ORG_TYPE_EVENT, 5, 0, room, nullptr));
    EXPECT_THAT(room, ElementsAre(1, 2, 3, -1, -1));
    EXPECT_TRUE(org_db_service_get_records_id(0, ORG_TYPE_TODO, 0, 0, nullptr, nullptr));
}

TEST_F(OrganizerIndexes, OfFiveHundredEventsAndFiveHundredToDosStayApart)
{
    std::vector<int> of_type[2];
    for (int i = 0; i < 1000; ++i) {
        const int which = i * 7 % 3 == 0 ? (of_type[0].size() < 500 ? 0 : 1) : (of_type[1].size() < 500 ? 1 : 0);
        entry record = uniform_entry(i);
        of_type[which].push_back(add(both_types[which], record));
    }
    for (const int which : {0, 1}) EXPECT_EQ(indices(both_types[which]), of_type[which]);

    // Every third event goes and every second to-do changes: the others never show it.
    std::vector<int> kept;
    for (size_t i = 0; i < of_type[0].size(); ++i)
        i % 3 == 0 ? remove_record(of_type[0][i]) : kept.push_back(of_type[0][i]);
    for (size_t i = 0; i < of_type[1].size(); i += 2) {
        entry changed = uniform_entry(5000 + of_type[1][i]);
        update(of_type[1][i], changed);
    }
    const auto check = [&] {
        EXPECT_EQ(indices(ORG_TYPE_EVENT), kept);
        for (const int index : kept) EXPECT_EQ(number_of(get(index)), index - 1);
        for (const int index : of_type[1]) EXPECT_EQ(code_of_get(index), ORG_ERR_RECORD_NOT_FOUND);
        EXPECT_EQ(indices(ORG_TYPE_TODO), of_type[1]);
        for (size_t i = 0; i < of_type[1].size(); ++i)
            EXPECT_EQ(number_of(get(of_type[1][i])), i % 2 == 0 ? 5000 + of_type[1][i] : of_type[1][i] - 1);
        for (const int index : of_type[0]) EXPECT_EQ(code_of_get(index), ORG_ERR_RECORD_NOT_FOUND);
        return HasFailure() ? 1 : 0;
    };
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(in_tidy_child(check), 0);
}
