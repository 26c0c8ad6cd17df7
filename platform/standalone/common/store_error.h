// store_error.h: how a store fails inside, and how that leaves through the C functions.
#pragma once

#include <SQLiteCpp/Exception.h>

#include <exception>

namespace pim_store {

// The codes that both stores share; contact_db_service.h and org_db_service.h document them under their own names.
enum class store_error : int {
    full = 102,
    invalid_argument = 103,
    no_memory = 104,
    folder = 105,
    read_only = 106,
    disk_full = 107,
    locked = 108,
    corrupt = 109,
    foreign = 110,
    newer_schema = 111,
    io = 112
};

// What every part of a store throws. The code is a store_error or one of the codes that a single store has.
class store_failure : public std::exception {
public:
    explicit store_failure(int code) : code_(code) {}
    explicit store_failure(store_error error) : store_failure(static_cast<int>(error)) {}

    int code() const { return code_; }
    const char* what() const noexcept override { return "store failure"; }

private:
    int code_;
};

// The failure that an SQLite result stands for. `system_error` is the errno of the system call behind it, 0 when none
// is known: SQLite itself tells a file that may not grow any further from a broken disk only by that.
store_failure failure_of(int sqlite_result, int system_error);

// Throws INVALID_ARGUMENT unless the condition holds.
inline void require(bool condition)
{
    if (!condition) throw store_failure(store_error::invalid_argument);
}

// The code for the exception being handled.
int code_of_current_exception() noexcept;

// Runs the body of a C function: 1 when it returns, 0 with *error written when it throws. Nothing passes through.
template <typename Work>
int guarded(int* error, Work&& work) noexcept
{
    try {
        work();
        return 1;
    } catch (...) {
        const int code = code_of_current_exception();
        if (error) *error = code;
        return 0;
    }
}

} // namespace pim_store
