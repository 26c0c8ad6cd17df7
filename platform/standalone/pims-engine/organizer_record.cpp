#include "pims-engine/organizer_record.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "common/store_error.h"

namespace pim_store {

// ---- Texts ----------------------------------------------------------------------------------------------------------

struct text_field {
    char* org_full_record::*pointer;
    size_t limit;
};

// clang-format off
static constexpr std::array<text_field, text_count> text_fields = {{
    {&org_full_record::summary,     ORG_SUMMARY_MAX},
    {&org_full_record::description, ORG_DESCRIPTION_MAX},
    {&org_full_record::location,    ORG_LOCATION_MAX},
    {&org_full_record::text_172,    ORG_TEXT_172_MAX},
    {&org_full_record::text_340,    ORG_TEXT_340_MAX},
    {&org_full_record::text_344,    ORG_TEXT_344_MAX},
    {&org_full_record::text_348,    ORG_TEXT_348_MAX},
}};
// clang-format on

record_texts texts_of(const org_full_record& record)
{
    record_texts texts;
    for (size_t i = 0; i < text_count; ++i) {
        const auto [pointer, limit] = text_fields[i];
        const char* text = record.*pointer;
        if (!text) continue;
        texts[i] = {text, strnlen(text, limit + 1)};
        require(texts[i].size() <= limit);
    }
    return texts;
}

void release_texts(org_full_record& record)
{
    for (const auto& [pointer, limit] : text_fields) {
        free(record.*pointer);
        record.*pointer = nullptr;
    }
}

// ---- Image ----------------------------------------------------------------------------------------------------------

// The four stretches of the record that lie before, between and behind its pointers.
struct stretch {
    size_t start;
    size_t size;
};
static constexpr stretch stretches[] = {
    {0, offsetof(org_full_record, opaque_8) + sizeof org_full_record::opaque_8},
    {offsetof(org_full_record, opaque_24),
     offsetof(org_full_record, opaque_164) + sizeof org_full_record::opaque_164 - offsetof(org_full_record, opaque_24)},
    {offsetof(org_full_record, opaque_176), offsetof(org_full_record, opaque_312) + sizeof org_full_record::opaque_312 -
                                                offsetof(org_full_record, opaque_176)},
    {offsetof(org_full_record, opaque_352), sizeof org_full_record::opaque_352},
};
static_assert(stretches[0].size + stretches[1].size + stretches[2].size + stretches[3].size == record_image_size,
              "no padding inside a stretch on any machine");

static void copy_image(std::byte* to, const org_full_record& record)
{
    for (const auto& [start, size] : stretches) {
        memcpy(to, reinterpret_cast<const std::byte*>(&record) + start, size);
        to += size;
    }
}

static void copy_image(org_full_record& record, const std::byte* from)
{
    for (const auto& [start, size] : stretches) {
        memcpy(reinterpret_cast<std::byte*>(&record) + start, from, size);
        from += size;
    }
}

record_image image_of(const org_full_record& record)
{
    record_image image;
    copy_image(image.data(), record);
    return image;
}

void set_image(org_full_record& record, const record_image& image)
{
    copy_image(record, image.data());
}

// ---- Record in memory -----------------------------------------------------------------------------------------------

// A block is this head, the image and then, one behind the other, the texts.
using text_sizes = std::array<uint16_t, text_count>;
static constexpr size_t texts_start = sizeof(text_sizes) + record_image_size;

kept_record::kept_record(const org_full_record& record, const record_texts& texts)
{
    text_sizes sizes;
    size_t size = texts_start;
    for (size_t i = 0; i < text_count; ++i) {
        sizes[i] =
            static_cast<uint16_t>(std::min(texts[i].find('\0'), std::min(texts[i].size(), text_fields[i].limit)));
        size += sizes[i];
    }
    block_ = std::make_unique_for_overwrite<std::byte[]>(size);
    memcpy(block_.get(), &sizes, sizeof sizes);
    copy_image(block_.get() + sizeof sizes, record);
    char* at = reinterpret_cast<char*>(block_.get() + texts_start);
    for (size_t i = 0; i < text_count; ++i) at = std::copy_n(texts[i].begin(), sizes[i], at);
}

void kept_record::copy_to(org_full_record& record) const
{
    text_sizes sizes;
    memcpy(&sizes, block_.get(), sizeof sizes);
    copy_image(record, block_.get() + sizeof sizes);
    const char* text = reinterpret_cast<const char*>(block_.get() + texts_start);
    for (size_t i = 0; i < text_count; ++i) {
        if (char* buffer = record.*text_fields[i].pointer) {
            if (sizes[i] != 0) memcpy(buffer, text, sizes[i]); // Most are empty.
            buffer[sizes[i]] = '\0';
        }
        text += sizes[i];
    }
}

} // namespace pim_store
