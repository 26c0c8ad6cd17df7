// Which type a thread's fetches are limited to.

#include <thread>

#include "organizer_fixture.h"

using namespace store_test;
using testing::ElementsAre;

class OrganizerScope : public OrganizerStore {
protected:
    void SetUp() override
    {
        ASSERT_EQ(add(ORG_TYPE_EVENT, "event"), 1);
        ASSERT_EQ(add(ORG_TYPE_TODO, "to-do"), 2);
        ASSERT_EQ(add(ORG_TYPE_EVENT, "event"), 3);
        connect();
    }

    // The positions that a fetch finds a record at.
    static std::vector<int> seen()
    {
        std::vector<int> positions;
        for (int position = 0; position < 10; ++position) {
            const int code = code_of_get(position);
            if (code == 0)
                positions.push_back(position);
            else
                EXPECT_EQ(code, ORG_ERR_RECORD_NOT_FOUND);
        }
        return positions;
    }

    static void list(int type)
    {
        int room[1];
        EXPECT_TRUE(org_db_service_get_records_id(0, type, 1, 0, room, nullptr));
    }
};

TEST_F(OrganizerScope, AFreshConnectionSeesEveryRecord)
{
    EXPECT_THAT(seen(), ElementsAre(1, 2, 3));
}

TEST_F(OrganizerScope, ACountBeginsTheScopeOfItsType)
{
    count(ORG_TYPE_EVENT);
    EXPECT_THAT(seen(), ElementsAre(1, 3));
    count(ORG_TYPE_TODO);
    EXPECT_THAT(seen(), ElementsAre(2));
}

TEST_F(OrganizerScope, AListBeginsTheScopeOfItsType)
{
    list(ORG_TYPE_TODO);
    EXPECT_THAT(seen(), ElementsAre(2));
    list(ORG_TYPE_EVENT);
    EXPECT_THAT(seen(), ElementsAre(1, 3));
}

TEST_F(OrganizerScope, EndsWithTheNextConnect)
{
    count(ORG_TYPE_TODO);
    connect();
    EXPECT_THAT(seen(), ElementsAre(1, 2, 3));
}

TEST_F(OrganizerScope, EndsWithTheNextDisconnect)
{
    count(ORG_TYPE_TODO);
    disconnect();
    EXPECT_THAT(seen(), ElementsAre(1, 2, 3));
}

TEST_F(OrganizerScope, BeginsWithoutAConnectionToo)
{
    disconnect();
    disconnect();
    count(ORG_TYPE_TODO);
    EXPECT_THAT(seen(), ElementsAre(2));
}

TEST_F(OrganizerScope, StaysWhenATypedCallFails)
{
    count(ORG_TYPE_TODO);
    for (const int wrong : {0, 1, 7, 10, -1}) {
        int number = 0, error = 0;
        EXPECT_FALSE(org_db_service_get_record_count(0, wrong, &number, &error));
        EXPECT_EQ(error, ORG_ERR_INVALID_ARGUMENT);
        EXPECT_FALSE(org_db_service_get_records_id(0, wrong, 1, 0, &number, &error));
    }
    EXPECT_FALSE(org_db_service_get_record_count(0, ORG_TYPE_EVENT, nullptr, nullptr));
    EXPECT_THAT(seen(), ElementsAre(2));
}

TEST_F(OrganizerScope, StaysOverAddsUpdatesAndDeletesWhichDoNotHeedIt)
{
    count(ORG_TYPE_TODO);
    EXPECT_EQ(add(ORG_TYPE_EVENT, "x"), 4);
    entry changed("changed");
    update(3, changed);
    remove_record(1);
    EXPECT_EQ(add(ORG_TYPE_TODO, "y"), 5);
    EXPECT_THAT(seen(), ElementsAre(2, 5));
    connect();
    EXPECT_THAT(seen(), ElementsAre(2, 3, 4, 5));
    EXPECT_STREQ(get(3).summary, "changed");
}

TEST_F(OrganizerScope, IsEachThreadsOwn)
{
    count(ORG_TYPE_TODO);
    std::thread([] {
        EXPECT_THAT(seen(), ElementsAre(1, 2, 3));
        count(ORG_TYPE_EVENT);
        EXPECT_THAT(seen(), ElementsAre(1, 3));
        connect();
    }).join();
    EXPECT_THAT(seen(), ElementsAre(2));
}

TEST_F(OrganizerScope, OutlivesAForeignCommit)
{
    count(ORG_TYPE_TODO);
    shell().exec("INSERT INTO record (record_index, type) VALUES (4, 8), (5, 9)");
    EXPECT_THAT(seen(), ElementsAre(2, 5));
}
