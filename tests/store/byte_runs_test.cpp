#include "common/byte_runs.h"

#include <gmock/gmock.h>

#include <random>

#include "common/store_error.h"

using namespace pim_store;
using testing::IsEmpty;
using testing::Lt;

static std::vector<std::byte> zeros(size_t size)
{
    return std::vector<std::byte>(size);
}

TEST(ByteRuns, OfEqualImagesAreNone)
{
    const std::vector<std::byte> image(100, std::byte{7});
    EXPECT_THAT(byte_runs(image, image), IsEmpty());
    EXPECT_THAT(byte_runs(zeros(100)), IsEmpty());
    EXPECT_THAT(byte_runs(byte_view()), IsEmpty());
}

TEST(ByteRuns, CarryZerosThatTheBaseDoesNotHave)
{
    std::vector<std::byte> base(9, std::byte{1});
    const std::vector<std::byte> image = zeros(9);
    apply_byte_runs(byte_runs(image, base), base);
    EXPECT_EQ(base, image);
}

TEST(ByteRuns, RestoreAnyImageFromAnyBase)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        const size_t size = random() % 300;
        std::vector<std::byte> base(size), image(size);
        for (size_t i = 0; i < size; ++i) {
            base[i] = static_cast<std::byte>(random() % 3);
            image[i] = random() % 4 ? base[i] : static_cast<std::byte>(random() % 256);
        }
        std::vector<std::byte> restored = base;
        apply_byte_runs(byte_runs(image, base), restored);
        ASSERT_EQ(restored, image) << "round " << round;
    }
}

TEST(ByteRuns, ExpandOverWhateverWasThere)
{
    std::mt19937 random(2);
    for (int round = 0; round < 2000; ++round) {
        const size_t size = random() % 300, behind = random() % 50;
        std::vector<std::byte> image(size), expanded(size + behind, std::byte{0xaa});
        for (std::byte& byte : image) byte = random() % 4 ? std::byte{0} : static_cast<std::byte>(random() % 256);
        expand_byte_runs(byte_runs(image), expanded);
        image.resize(size + behind);
        ASSERT_EQ(expanded, image) << "round " << round;
    }
}

TEST(ByteRuns, ReachPastWhatOneHeadCanSay)
{
    std::vector<std::byte> image = zeros(400000);
    std::fill(image.begin() + 150000, image.begin() + 350000, std::byte{5});
    std::vector<std::byte> restored = zeros(image.size());
    apply_byte_runs(byte_runs(image), restored);
    EXPECT_EQ(restored, image);
}

TEST(ByteRuns, TakeLittleMoreThanTheBytesThatDiffer)
{
    std::vector<std::byte> image = zeros(5000);
    std::fill_n(image.begin() + 100, 10, std::byte{1});
    std::fill_n(image.begin() + 4000, 20, std::byte{1});
    EXPECT_THAT(byte_runs(image).size(), Lt(40u));
}

TEST(ByteRuns, AreRefusedWhenTheyReachPastTheImage)
{
    const std::vector<std::byte> runs = byte_runs(std::vector<std::byte>(20, std::byte{1}));
    for (size_t size = 0; size < 20; ++size) {
        std::vector<std::byte> image = zeros(size);
        EXPECT_THROW(apply_byte_runs(runs, image), store_failure) << size;
        EXPECT_THROW(expand_byte_runs(runs, image), store_failure) << size;
    }
    for (size_t cut = 1; cut < runs.size(); ++cut) {
        std::vector<std::byte> image = zeros(20);
        EXPECT_THROW(apply_byte_runs(byte_view(runs).first(cut), image), store_failure) << cut;
    }
}
