// reader_frame.h: what readers of one stored record share, tested in one place: what each answers when a step of its
// frame fails, what it traces then, and what it calls afterwards.
#ifndef JSR75_PIM_TESTS_READER_FRAME_H
#define JSR75_PIM_TESTS_READER_FRAME_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "unit_test.h"

// A reader of record 1 and its answers.
struct reader_row {
    std::string function; // The port function, as its assertions name it.
    std::function<int64_t()> read;
    int64_t opening;                  // The connection cannot be opened.
    std::optional<int64_t> preparing; // init_full_record fails; nothing where the reader does not call it.
    int64_t fetching;                 // The record cannot be fetched.
    int64_t closing;                  // The connection cannot be closed, after a record with a value was read.
    int64_t closing_unread;           // The same after a fetch that failed.
    std::string fetch_message = {};   // Format of what a failed fetch traces, when one is laid down.
};

class reader_frame : public unit_test {
protected:
    // `prepare` fills the store before each failure.
    void expect_contact_failures(const reader_row& row, const std::function<void()>& prepare);
    void expect_organizer_failures(const reader_row& row, int32_t listtype, const std::function<void()>& prepare);
};

#endif
