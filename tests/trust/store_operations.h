// store_operations.h: what the stores are asked to do while their disk fails.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct answer {
    int error;          // 0 when the operation says that all went well.
    std::string result; // What it found or made.

    friend bool operator==(const answer&, const answer&) = default;
};

// Runs `call(result, &error)`, which has the result and error word of a store's function.
template <typename Call>
answer answer_of(Call&& call)
{
    int error = 0;
    std::string result;
    if (call(result, &error)) return {0, result};
    return {error == 0 ? -1 : error, ""};
}

inline std::string as_text(int number)
{
    return std::to_string(number) + ' ';
}

inline std::string as_text(const answer& got)
{
    return got.error == 0 ? got.result : "error " + as_text(got.error);
}

struct store_operation {
    std::string name;
    std::function<answer()> run;
    bool also_opens = false; // Also tried as the first thing that a process does on other disks than a closed store's.
};

// How an operation's failure is told.
enum class report { code, trace };

struct store_operations {
    std::vector<std::string> files;
    void (*fill)();         // Makes what the operations work on.
    std::string (*state)(); // Everything the stores hold, as their functions tell it.
    bool (*works)();        // Whether a record can be added, read and removed.
    report told_by;
    std::vector<store_operation> operations;
};

// Through the stores' own functions.
store_operations contact_operations();
store_operations organizer_operations();
// Through the native methods, on both stores.
store_operations native_operations();

// The error of an operation that traced one. The stores have no such code.
inline constexpr int TRACED = -1;
