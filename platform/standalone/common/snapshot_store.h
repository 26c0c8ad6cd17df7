// snapshot_store.h: a store file and what the process keeps of it in memory.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <shared_mutex>
#include <utility>
#include <vector>

#include "common/change_watch.h"
#include "common/connection.h"
#include "common/database_file.h"
#include "common/store_error.h"
#include "common/store_folder.h"

namespace pim_store {

// A reader-writer lock that lets no stream of readers keep a writer out, as std::shared_mutex may.
class snapshot_lock {
public:
    snapshot_lock()
    {
        pthread_rwlockattr_t attributes;
        pthread_rwlockattr_init(&attributes);
        pthread_rwlockattr_setkind_np(&attributes, PTHREAD_RWLOCK_PREFER_WRITER_NONRECURSIVE_NP);
        pthread_rwlock_init(&lock_, &attributes);
        pthread_rwlockattr_destroy(&attributes);
    }
    snapshot_lock(const snapshot_lock&) = delete;
    snapshot_lock& operator=(const snapshot_lock&) = delete;
    ~snapshot_lock() { pthread_rwlock_destroy(&lock_); }

    void lock() { pthread_rwlock_wrlock(&lock_); }
    bool try_lock() { return pthread_rwlock_trywrlock(&lock_) == 0; }
    void unlock() { pthread_rwlock_unlock(&lock_); }
    void lock_shared() { pthread_rwlock_rdlock(&lock_); }
    void unlock_shared() { pthread_rwlock_unlock(&lock_); }

private:
    pthread_rwlock_t lock_;
};

// What a look into the contents answers with: nothing more is needed, or the number of a record that is not loaded yet.
inline constexpr int32_t answered = 0;

// The store of a process: every thread's calls end here.
//
// `Contents` is what the process keeps in memory. The store is its only user, never two threads at once while it
// changes. It has
//   Contents()                                       nothing loaded
//   void load(connection&)                           lists and groups, everything but the records
//   Batch fetch(connection&, int32_t record) const   the packed record and some neighbours, as any type of its choice
//   void adopt(Batch&&)                              takes in what fetch() brought; the record is loaded from then on
//
// The snapshot bears the mark of the file that it was read under and is good as long as the file bears the same. How
// it stays true:
//   A reader looks at the mark under the shared lock; when it is unchanged, the answer comes from memory.
//   Loading takes `loading_`. The mark is read before and again after the read transaction has begun: equal means that
//   this transaction sees exactly that state. What is missing is read in it and published under the exclusive lock.
//   A writer does its work in SQLite's write lock and takes `loading_` from before its commit until the snapshot has
//   followed: a reader that meets the new mark queues there and finds the snapshot current again. When the file was in
//   the snapshot's state before, and no other connection has committed up to after the mark was read, then that mark
//   is the one of this commit, and the change alone is carried over. In every other case the snapshot is dropped.
template <typename Contents>
class snapshot_store {
public:
    snapshot_store(std::filesystem::path folder, const database_layout& layout,
                   change_watch::method method = change_watch::method::header)
        : folder_(std::move(folder)), file_(folder_ / layout.file_name), layout_(layout), method_(method)
    {}

    snapshot_store(const snapshot_store&) = delete;
    snapshot_store& operator=(const snapshot_store&) = delete;
    ~snapshot_store()
    {
        while (!connections_.empty()) leave(*connections_.back());
    }

    // Opens the calling thread's connection, which stays open until the thread ends.
    void connect()
    {
        if (own().store == this && own().is_open.load(std::memory_order_relaxed)) return;
        const std::lock_guard loading(loading_);
        own_connection();
    }

    // Answers from memory: `look(const Contents&)` returns `answered` when it has copied out what it wants, or the
    // number of the record that it misses, having changed nothing. It may throw, and may run several times.
    template <typename Look>
    void read(Look&& look)
    {
        {
            const std::shared_lock reading(contents_lock_);
            if (is_current() && look(std::as_const(contents_)) == answered) return;
        }
        read_loading(look);
    }

    // What `look(const Contents&)` makes of the snapshot when that is as the file is, nothing when it is not. For a
    // writer, whose transaction keeps others from changing the file meanwhile. `look` must not need a record.
    template <typename Look>
    auto recall(Look&& look) -> std::optional<decltype(look(std::declval<const Contents&>()))>
    {
        const std::shared_lock reading(contents_lock_);
        if (!is_current()) return std::nullopt;
        return look(std::as_const(contents_));
    }

    // Changes the file in one transaction: `change(connection&)` makes the changes and returns a callable that applies
    // the same to the Contents in memory. That one runs after the commit, at most once; when it throws the snapshot is
    // dropped. Any exception from `change` undoes the transaction.
    template <typename Change>
    void write(Change&& change)
    {
        const std::unique_lock writing(writing_, lock_patience);
        if (!writing) throw store_failure(store_error::locked);
        connection& mine = writers_connection();
        try {
            transaction work(mine, transaction::purpose::writing, layout_.version());
            require_whole_file(mine);
            auto carry = change(mine);
            commit(work, mine, carry);
        } catch (const SQLite::Exception& exception) {
            throw mine.failure(exception);
        }
    }

    // Lets SQLite tidy up behind the last connection. Calls that come later open the file again. Does nothing when
    // another thread is in the middle of a call.
    void close()
    {
        const std::unique_lock writing(writing_, std::try_to_lock);
        if (!writing) return;
        const std::unique_lock loading(loading_, std::try_to_lock);
        if (!loading) return;
        const std::unique_lock changing(contents_lock_, std::try_to_lock);
        if (changing) forget();
    }

    // SQLite's state of a file must not cross a fork, since locks do not. Around one, nobody is in the middle of
    // anything and nothing is open; parent and child open again at their next call.
    void before_fork()
    {
        writing_.lock();
        loading_.lock();
        for (thread_connection* each : connections_) each->close();
        const std::unique_lock changing(contents_lock_);
        forget();
    }
    void after_fork_in_parent()
    {
        loading_.unlock();
        writing_.unlock();
    }
    void after_fork_in_child()
    {
        connections_.clear(); // The other threads have stayed behind, and perhaps some with the shared lock.
        own().store = nullptr;
        new (&contents_lock_) snapshot_lock;
        after_fork_in_parent();
    }

private:
    // A thread's connection to the store that it last called.
    struct thread_connection {
        snapshot_store* store = nullptr;
        std::unique_ptr<connection> opened; // Guarded by loading_ or, for its own thread, writing_.
        std::atomic<bool> is_open = false;

        ~thread_connection()
        {
            if (store) store->leave(*this);
        }

        void open(const std::filesystem::path& file)
        {
            opened = std::make_unique<connection>(file);
            is_open = true;
        }

        void close()
        {
            is_open = false;
            opened.reset();
        }
    };

    static thread_connection& own()
    {
        static thread_local thread_connection own;
        return own;
    }

    void leave(thread_connection& leaving)
    {
        const std::lock_guard loading(loading_);
        leaving.close();
        leaving.store = nullptr;
        std::erase(connections_, &leaving);
    }

    // Needs `loading_`.
    connection& own_connection()
    {
        open_watch();
        thread_connection& mine = own();
        if (mine.store != this) {
            if (mine.store) mine.store->leave(mine);
            connections_.push_back(&mine);
            mine.store = this;
        }
        if (!mine.opened) mine.open(file_);
        return *mine.opened;
    }

    connection& writers_connection()
    {
        const std::lock_guard loading(loading_);
        return own_connection();
    }

    // Needs all locks.
    void forget()
    {
        contents_ = Contents();
        tag_.reset();
        watch_.reset();
    }

    // Needs `loading_`. The first one of a process makes, recognises and upgrades the file.
    void open_watch()
    {
        if (watch_) return;
        make_folder(folder_);
        prepare_database(file_, layout_);
        auto watch = std::make_unique<change_watch>(file_, method_);
        const std::unique_lock changing(contents_lock_);
        watch_ = std::move(watch);
    }

    // Needs `loading_` or the shared lock.
    bool is_current() const { return tag_ && watch_ && watch_->now() == *tag_; }

    template <typename Look>
    void read_loading(Look& look)
    {
        const std::lock_guard loading(loading_);
        connection& mine = own_connection();
        if (is_current() && look(std::as_const(contents_)) == answered) return;
        try {
            while (!load_and_look(mine, look)) {}
        } catch (const SQLite::Exception& exception) {
            throw mine.failure(exception);
        }
    }

    // False when someone committed at the very moment the transaction began. Each time one commit got through, so that
    // a reader is not kept waiting by anything but progress.
    template <typename Look>
    bool load_and_look(connection& mine, Look& look)
    {
        const change_mark seen = watch_->now();
        const transaction at_one_time(mine, transaction::purpose::reading, layout_.version());
        if (watch_->now() != seen) return false;
        if (tag_ != seen) {
            Contents loaded;
            loaded.load(mine);
            const std::unique_lock changing(contents_lock_);
            contents_ = std::move(loaded);
            tag_ = seen;
        }
        for (int32_t missing; (missing = look(std::as_const(contents_))) != answered;) {
            auto batch = std::as_const(contents_).fetch(mine, missing);
            const std::unique_lock changing(contents_lock_);
            contents_.adopt(std::move(batch));
        }
        return true;
    }

    // Writing into a damaged file would damage more of it, so that the first writer of a process looks it through.
    void require_whole_file(connection& mine)
    {
        if (found_whole_) return;
        mine.require_whole_file();
        found_whole_ = true;
    }

    template <typename Carry>
    void commit(transaction& work, connection& mine, Carry& carry)
    {
        const std::lock_guard loading(loading_);
        const bool was_current = watch_ && watch_->names_states() && is_current();
        const int32_t version = mine.number("PRAGMA data_version");
        work.commit();
        try {
            const change_mark committed = watch_ ? watch_->now() : change_mark();
            const bool is_ours = was_current && mine.number("PRAGMA data_version") == version;
            const std::unique_lock changing(contents_lock_);
            tag_.reset();
            if (is_ours) {
                carry(contents_);
                tag_ = committed;
            }
        } catch (...) {
            // The commit stands. Without a tag the next reader loads afresh.
        }
    }

    const std::filesystem::path folder_;
    const std::filesystem::path file_;
    const database_layout& layout_;
    const change_watch::method method_;

    // One writer of this process at a time; the others queue here and not in SQLite's busy wait.
    std::timed_mutex writing_;
    bool found_whole_ = false;    // Guarded by writing_.
    std::mutex loading_;          // Taken after writing_.
    snapshot_lock contents_lock_; // Taken after loading_. Shared: look; exclusive, by holders of loading_: change.
    std::vector<thread_connection*> connections_; // Guarded by loading_, as long as their threads live.
    std::unique_ptr<change_watch> watch_;
    std::optional<change_mark> tag_; // None: nothing is loaded.
    Contents contents_;
};

// The one store of this library in this process. It is never destroyed, since threads may still call while the
// process exits; its files are closed then.
template <typename Contents>
snapshot_store<Contents>& process_store(const database_layout& layout)
{
    static snapshot_store<Contents>* made = nullptr;
    static auto& store = [&layout]() -> snapshot_store<Contents>& {
        made = new snapshot_store<Contents>(store_folder(), layout);
        pthread_atfork([] { made->before_fork(); }, [] { made->after_fork_in_parent(); },
                       [] { made->after_fork_in_child(); });
        static const struct closing_at_exit {
            ~closing_at_exit() { made->close(); }
        } closing;
        return *made;
    }();
    return store;
}

} // namespace pim_store
