#include "common/byte_runs.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "common/store_error.h"

namespace pim_store {

static_assert(std::endian::native == std::endian::little, "words are stored as they lie in memory");

struct run_head {
    uint16_t skip;
    uint16_t length;
};

static constexpr size_t longest_run = UINT16_MAX;
// A gap shorter than a head is cheaper copied than skipped.
static constexpr size_t shortest_gap = sizeof(run_head) + 1;

// The first position from `at` on where the images differ, their size when there is none. Images are mostly equal, so
// words are compared before bytes.
static size_t next_difference(byte_view image, byte_view base, size_t at)
{
    using word = uint64_t;
    for (; at + sizeof(word) <= image.size(); at += sizeof(word))
        if (std::memcmp(&image[at], &base[at], sizeof(word)) != 0) break;
    while (at < image.size() && image[at] == base[at]) ++at;
    return at;
}

static void append_run(std::vector<std::byte>& runs, size_t skip, byte_view bytes)
{
    for (; skip > longest_run; skip -= longest_run) append_run(runs, longest_run, {});
    const size_t length = std::min(bytes.size(), longest_run);
    const run_head head = {static_cast<uint16_t>(skip), static_cast<uint16_t>(length)};
    const auto* head_bytes = reinterpret_cast<const std::byte*>(&head);
    runs.insert(runs.end(), head_bytes, head_bytes + sizeof head);
    runs.insert(runs.end(), bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(length));
    if (length < bytes.size()) append_run(runs, 0, bytes.subspan(length));
}

std::vector<std::byte> byte_runs(byte_view image, byte_view base)
{
    std::vector<std::byte> runs;
    size_t written = 0;
    for (size_t start = next_difference(image, base, 0); start < image.size();) {
        size_t end = start + 1;
        size_t next = next_difference(image, base, end);
        while (next < image.size() && next - end < shortest_gap) {
            end = next + 1;
            next = next_difference(image, base, end);
        }
        append_run(runs, start - written, image.subspan(start, end - start));
        written = end;
        start = next;
    }
    return runs;
}

std::vector<std::byte> byte_runs(byte_view image)
{
    return byte_runs(image, std::vector<std::byte>(image.size()));
}

// Copies the runs into place and hands what lies between them and behind them to `skip`.
template <typename Skip>
static void copy_runs(byte_view runs, std::span<std::byte> image, Skip&& skip)
{
    while (!runs.empty()) {
        run_head head;
        if (runs.size() < sizeof head) throw store_failure(store_error::corrupt);
        std::memcpy(&head, runs.data(), sizeof head);
        runs = runs.subspan(sizeof head);
        if (head.length > runs.size() || size_t{head.skip} + head.length > image.size())
            throw store_failure(store_error::corrupt);
        skip(image.first(head.skip));
        std::memcpy(image.data() + head.skip, runs.data(), head.length);
        image = image.subspan(size_t{head.skip} + head.length);
        runs = runs.subspan(head.length);
    }
    skip(image);
}

void apply_byte_runs(byte_view runs, std::span<std::byte> image)
{
    copy_runs(runs, image, [](std::span<std::byte>) {});
}

void expand_byte_runs(byte_view runs, std::span<std::byte> image)
{
    copy_runs(runs, image, [](std::span<std::byte> gap) { std::ranges::fill(gap, std::byte()); });
}

} // namespace pim_store
