// organizer_record.h: an organizer record's texts, and its fields apart from them.
#pragma once

#include <org_db_service.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

namespace pim_store {

inline constexpr size_t text_count = 7;

// What stands behind the record's text pointers, in their order; empty where there is nothing.
using record_texts = std::array<std::string_view, text_count>;

// The texts attached to a record. Fails with INVALID_ARGUMENT when one is longer than its limit.
record_texts texts_of(const org_full_record& record);

// Releases the attached buffers and sets their pointers to null.
void release_texts(org_full_record& record);

// The record without its pointers, the same on machines of any pointer size: the form that files know.
inline constexpr size_t record_image_size = 396 - text_count * sizeof(uint32_t);
using record_image = std::array<std::byte, record_image_size>;

record_image image_of(const org_full_record& record);

// Overwrites all of the record but the pointers.
void set_image(org_full_record& record, const record_image& image);

// A record as it waits in memory, ready to be copied out: its image and its texts in one block.
class kept_record {
public:
    kept_record() = default;

    // Texts are kept up to their limit; a file may hold longer ones that no caller's buffer has room for.
    kept_record(const org_full_record& record, const record_texts& texts);

    explicit operator bool() const { return block_ != nullptr; }

    // Fills the record and the buffers attached to it. A text without a buffer is left out.
    void copy_to(org_full_record& record) const;

private:
    std::unique_ptr<std::byte[]> block_;
};

} // namespace pim_store
