#include "common/date_text.h"

#include <gmock/gmock.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <limits>
#include <random>

#include "common/store_error.h"

using namespace pim_store;
using testing::IsEmpty;

static bool same(const broken_down_time& one, const broken_down_time& other)
{
    return memcmp(&one, &other, sizeof one) == 0;
}

TEST(DateText, ReadsLikeADate)
{
    EXPECT_EQ(text_of_time({50, 20, 23, 12, 3, 85, 5, 101, 0}), "1985-04-12 23:20:50");
    EXPECT_EQ(text_of_time({0, 0, 12, 1, 6, 126, 3, 181, 1}), "2026-07-01 12:00:00 DST");
}

TEST(DateText, OfATimeThatWasNeverSetIsEmpty)
{
    EXPECT_THAT(text_of_time({}), IsEmpty());
    EXPECT_TRUE(same(time_of_text(""), {}));
}

TEST(DateText, IsOnlyGivenForWordsThatItGivesBack)
{
    const broken_down_time date = {50, 20, 23, 12, 3, 85, 5, 101, 0};
    for (size_t word = 0; word < 9; ++word) {
        for (const int32_t odd : {-1, 367, INT32_MAX, INT32_MIN}) {
            broken_down_time changed = date;
            memcpy(reinterpret_cast<char*>(&changed) + word * sizeof odd, &odd, sizeof odd);
            const std::string text = text_of_time(changed);
            EXPECT_TRUE(text.empty() || same(time_of_text(text), changed)) << "word " << word << ": " << odd;
        }
    }
}

TEST(DateText, GivesBackWhatTheCalendarOfLibcMakes)
{
    std::mt19937 random(1);
    for (int round = 0; round < 5000; ++round) {
        const broken_down_time time = local_time(static_cast<int32_t>(random()));
        ASSERT_TRUE(same(time_of_text(text_of_time(time)), time)) << text_of_time(time);
    }
}

TEST(DateText, MayLackTheTimeOfDay)
{
    EXPECT_TRUE(same(time_of_text("1985-04-12"), {0, 0, 0, 12, 3, 85, 5, 101, 0}));
}

TEST(DateText, ThatNamesNoDateReadsAsNeverSet)
{
    for (const char* text : {"x",
                             "1985-13-01",
                             "1985-02-29",
                             "1985-04-12 24:00:00",
                             "1985-04-12T10:00:00",
                             "-985-04-12",
                             "1985-04-12 10:00:00 dst",
                             "1985-04-12 1 :00:00",
                             "1985/04-12 10:00:00",
                             "1985-04/12 10:00:00",
                             "1985-04-12 10.00:00",
                             "1985-04-12 10:00.00",
                             "1985-+4-12",
                             "1985-04-+2",
                             "1985-04-12 10:+1:00",
                             "1985-04-12 10:00:+1",
                             "1985-04-12 10:60:00",
                             "1985-04-12 10:00:61",
                             "1985-04-00",
                             "198:-04-12",
                             "1985-00-12"})
        EXPECT_TRUE(same(time_of_text(text), {})) << text;
}

TEST(LocalTime, FailsWhereTheYearIsTooLarge)
{
    EXPECT_THROW(local_time(std::numeric_limits<int64_t>::max()), store_failure);
}

TEST(LocalTime, FollowsTheZoneOfTheProcess)
{
    setenv("TZ", "UTC0", 1);
    EXPECT_TRUE(same(local_time(0), {0, 0, 0, 1, 0, 70, 4, 0, 0}));
    setenv("TZ", "EST5", 1);
    EXPECT_TRUE(same(local_time(0), {0, 0, 19, 31, 11, 69, 3, 364, 0}));
}
