// change_watch.h: has the file been changed since?
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>

#include "common/connection.h"

namespace pim_store {

// Names one state of a file: equal marks, equal contents. Only marks of one watch compare.
struct change_mark {
    std::array<uint32_t, 12> words{};

    friend bool operator==(const change_mark&, const change_mark&) = default;
};

// Keeps a connection of its own, which also keeps the shared memory in place.
//
// Every commit, whoever makes it, rewrites the header of the WAL index, the 48 bytes at the start of the shared memory:
// it holds the length of the log, a checksum over it and the salt of this log, so that the same header never names
// two states. Looking at it needs no system call and no lock. A header that is being written reads as a mixture, which
// is like no mark taken before or after: its checksums see to that.
class change_watch {
public:
    enum class method {
        header,      // Compare the header where there is one.
        data_version // Ask SQLite. Slower, and blind to which of two commits was whose.
    };

    explicit change_watch(const std::filesystem::path& file, method preferred = method::header);

    // The state of the file at this moment.
    change_mark now() const;

    // Whether a mark names a state that a commit of this process can be recognised by.
    bool names_states() const { return header_ != nullptr; }

private:
    mutable std::mutex lock_; // Guards connection_ after construction.
    mutable connection connection_;
    uint32_t* header_ = nullptr;
};

inline change_mark change_watch::now() const
{
    change_mark mark;
    if (header_) {
        for (size_t word = 0; word < mark.words.size(); ++word)
            mark.words[word] = std::atomic_ref<uint32_t>(header_[word]).load(std::memory_order_relaxed);
        return mark;
    }
    const std::lock_guard asking(lock_);
    mark.words[0] = static_cast<uint32_t>(connection_.number("PRAGMA data_version"));
    return mark;
}

} // namespace pim_store
