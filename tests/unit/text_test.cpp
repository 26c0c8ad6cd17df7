// The text helpers that both layers share.
#include "pimnativeutil.h"

#include <cstring>
#include <vector>

#include "unit_test.h"

namespace text_test {

using ::contains;

namespace {

using IsAsciiUpper = unit_test;
using FoldToLowerCase = unit_test;
using Contains = unit_test;
using WholeCharacters = unit_test;
using CopyText = unit_test;
using TextOf = unit_test;

// A writable copy with its terminator.
std::vector<char> writable(std::string_view text)
{
    std::vector<char> copy(text.begin(), text.end());
    copy.push_back('\0');
    return copy;
}

std::string folded(std::string_view text)
{
    std::vector<char> copy = writable(text);
    fold_to_lower_case(copy.data());
    return copy.data();
}

int32_t contains(std::string_view match, std::string_view text)
{
    std::vector<char> match_copy = writable(match);
    std::vector<char> text_copy = writable(text);
    return ::contains(match_copy.data(), text_copy.data());
}

} // namespace

// ---- Folding --------------------------------------------------------------------------------------------------------

TEST_F(IsAsciiUpper, CountsTheTwentySixLettersOnly)
{
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(is_ascii_upper(static_cast<char>(byte)), byte >= 65 && byte <= 90) << byte;
}

TEST_F(FoldToLowerCase, ChangesAsciiCapitalsAndNoOtherByte)
{
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const std::string expected(1, static_cast<char>(byte >= 65 && byte <= 90 ? byte + 32 : byte));
        EXPECT_EQ(folded(text), expected) << byte;
    }
}

TEST_F(FoldToLowerCase, WalksTheWholeText)
{
    EXPECT_EQ(folded("Ada LOVELACE @[`{ 1815"), "ada lovelace @[`{ 1815");
    EXPECT_EQ(folded(""), "");
}

TEST_F(FoldToLowerCase, LeavesTheBytesOfLongerCharactersAlone)
{
    EXPECT_EQ(folded("\xc3\x84GYPTEN"), "\xc3\x84gypten");
}

TEST_F(FoldToLowerCase, StopsAtTheEndOfAFieldWithoutTerminator)
{
    char field[] = {'A', 'B', 'C', 'D'};
    fold_to_lower_case(field, 2);
    EXPECT_EQ(std::string(field, sizeof field), "abCD");
}

// ---- Containing -----------------------------------------------------------------------------------------------------

TEST_F(Contains, FindsASubstringWithoutRegardToAsciiCase)
{
    struct {
        const char* when;
        const char* match;
        const char* text;
        int32_t expected;
    } const rows[] = {
        {"equal", "smith", "smith", 1},
        {"case in the text", "smith", "SMITH", 1},
        {"case in the match", "SMITH", "smith", 1},
        {"at the start", "ab", "abxy", 1},
        {"in the middle", "AB", "xABy", 1},
        {"at the end", "ab", "xyAB", 1},
        {"absent", "abc", "abd", 0},
        {"match longer than the text", "smithson", "smith", 0},
        {"empty text", "abc", "", 1},
        {"empty match", "", "anything", 1},
        {"both empty", "", "", 1},
        {"letters above ASCII do not fold", "\xc3\x84", "\xc3\xa4", 0},
        {"letters above ASCII compare exactly", "\xc3\x84", "x\xc3\x84y", 1},
        {"neighbours of the letters do not fold", "[", "{", 0},
    };
    for (const auto& row : rows) EXPECT_EQ(contains(row.match, row.text), row.expected) << row.when;
}

TEST_F(Contains, LowerCasesBothBuffersInPlace)
{
    std::vector<char> match = writable("AB");
    std::vector<char> text = writable("xABy");
    EXPECT_EQ(contains(match.data(), text.data()), 1);
    EXPECT_STREQ(match.data(), "ab");
    EXPECT_STREQ(text.data(), "xaby");
}

TEST_F(Contains, LowerCasesBothBuffersAlsoWithoutAHit)
{
    std::vector<char> match = writable("AB");
    std::vector<char> text = writable("XYZ");
    EXPECT_EQ(contains(match.data(), text.data()), 0);
    EXPECT_STREQ(match.data(), "ab");
    EXPECT_STREQ(text.data(), "xyz");
}

TEST_F(Contains, FoldsNothingForAnEmptyText)
{
    std::vector<char> match = writable("AB");
    std::vector<char> text = writable("");
    EXPECT_EQ(contains(match.data(), text.data()), 1);
    EXPECT_STREQ(match.data(), "AB");
}

TEST_F(Contains, LooksAtNoMoreOfTheTextThanItsSize)
{
    struct {
        const char* when;
        const char* match;
        size_t size;
        int32_t expected;
    } const rows[] = {
        {"within the size", "bc", 3, 1}, {"the whole of it", "abc", 3, 1}, {"across the end", "cd", 3, 0},
        {"behind the end", "d", 3, 0},   {"an empty match", "", 3, 1},     {"behind a terminator", "e", 6, 0},
    };
    for (const auto& row : rows) {
        char text[] = {'A', 'B', 'C', 'D', '\0', 'E'};
        std::vector<char> match = writable(row.match);
        EXPECT_EQ(contains(match.data(), text, row.size), row.expected) << row.when;
        EXPECT_EQ(text[5], 'E') << row.when;
    }
}

// ---- Cutting --------------------------------------------------------------------------------------------------------

TEST_F(WholeCharacters, CutsAtACharacterBoundary)
{
    struct {
        const char* when;
        std::string text;
        size_t limit;
        size_t expected;
    } const rows[] = {
        {"shorter than the limit", "abc", 5, 3},
        {"exactly the limit", "abcde", 5, 5},
        {"plain letters", "abcdef", 5, 5},
        {"empty", "", 5, 0},
        {"no room at all", "abc", 0, 0},
        {"two bytes that fit", "abc\xc3\xa4z", 5, 5},
        {"two bytes that do not", "abcd\xc3\xa4z", 5, 4},
        {"three bytes that fit", "ab\xe2\x82\xacz", 5, 5},
        {"three bytes, one too many", "abc\xe2\x82\xacz", 5, 3},
        {"three bytes, two too many", "abcd\xe2\x82\xacz", 5, 4},
        {"a surrogate pair that fits", "\xed\xa0\xbd\xed\xb8\x80z", 6, 6},
        {"a surrogate pair cut between its halves", "ab\xed\xa0\xbd\xed\xb8\x80z", 5, 2},
        {"a surrogate pair cut in its high half", "abc\xed\xa0\xbd\xed\xb8\x80z", 5, 3},
        {"a surrogate pair cut in its low half", "a\xed\xa0\xbd\xed\xb8\x80z", 5, 1},
        {"a surrogate pair cut before its last byte", "\xed\xa0\xbd\xed\xb8\x80z", 5, 0},
        {"between two pairs", "\xed\xa0\xbd\xed\xb8\x80\xed\xa0\xbd\xed\xb8\x80", 6, 6},
        {"in the middle of the second pair", "\xed\xa0\xbd\xed\xb8\x80\xed\xa0\xbd\xed\xb8\x80", 9, 6},
        {"a pair whose halves' second bytes are odd", "ab\xed\xa1\x80\xed\xb1\x80z", 5, 2},
        {"a pair that ends in the middle of its low half", "ab\xed\xa0\xbd\xed\xb8", 5, 2},
        {"a low half without its high half", "abc\xed\xb8\x80z", 4, 3},
        {"the character NUL in two bytes", "abcd\xc0\x80z", 5, 4},
    };
    for (const auto& row : rows) EXPECT_EQ(whole_characters(row.text, row.limit), row.expected) << row.when;
}

TEST_F(WholeCharacters, LooksAtNoByteAroundTheText)
{
    const std::string_view pair = "\xed\xa0\xbd\xed\xb8\x80";
    EXPECT_EQ(whole_characters(pair.substr(0, 4), 3), 3u);
    EXPECT_EQ(whole_characters(pair.substr(1), 2), 2u);
    const std::string_view continued = "ab\x80";
    EXPECT_EQ(whole_characters(continued.substr(0, 2), 2), 2u);
    const std::string_view without_a_start = "a\x80\x80\x80";
    EXPECT_EQ(whole_characters(without_a_start.substr(1), 2), 0u);
}

TEST_F(WholeCharacters, LeavesWellFormedTextWhereverTheCutFalls)
{
    // Characters of one, two, three and six bytes in turn.
    const std::string text = "a\xc3\xa4\xe2\x82\xac\xed\xa0\xbd\xed\xb8\x80z\xc0\x80y";
    ASSERT_TRUE(is_modified_utf8(text.c_str()));
    for (size_t limit = 0; limit <= text.size() + 1; ++limit) {
        const size_t kept = whole_characters(text, limit);
        EXPECT_LE(kept, limit);
        EXPECT_TRUE(is_modified_utf8(text.substr(0, kept).c_str())) << limit;
    }
}

TEST_F(CopyText, CopiesWhatFitsAndTerminatesIt)
{
    struct {
        const char* when;
        std::string text;
        std::string expected; // In a target of 6 bytes.
    } const rows[] = {
        {"shorter", "abc", "abc"},
        {"exactly", "abcde", "abcde"},
        {"longer", "abcdef", "abcde"},
        {"empty", "", ""},
        {"cut before a character of two bytes", "abcd\xc3\xa4", "abcd"},
        {"cut before a surrogate pair", "ab\xed\xa0\xbd\xed\xb8\x80", "ab"},
    };
    for (const auto& row : rows) {
        char target[8];
        std::memset(target, '#', sizeof target);
        copy_text(std::span(target, 6), row.text);
        EXPECT_EQ(std::string(target), row.expected) << row.when;
        EXPECT_EQ(std::string(target + 6, 2), "##") << row.when;
    }
}

TEST_F(CopyText, LooksAtNoMoreOfTheSourceThanItsSize)
{
    const char unterminated[] = {'a', 'b', 'c', 'd'};
    char target[16] = {};
    copy_text(target, {unterminated, sizeof unterminated});
    EXPECT_STREQ(target, "abcd");
}

TEST_F(TextOf, EndsAtTheTerminatorOrWithTheField)
{
    const char terminated[6] = {'a', 'b', '\0', 'c', '\0', '\0'};
    const char full[3] = {'a', 'b', 'c'};
    const char empty[3] = {};
    EXPECT_EQ(text_of(terminated), "ab");
    EXPECT_EQ(text_of(full), "abc");
    EXPECT_EQ(text_of(empty), "");
}

} // namespace text_test
