// Makes every call to the file system fail that the stores make in all they do, and holds them to this: what was
// reported as failed has changed nothing, what was not is done, and the store is none the worse for it, for this
// process and for others. Prints how many failures that were.
#include <errno.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "failing_vfs.h"
#include "store_operations.h"
#include "store_test.h"

using namespace store_test;

namespace {

// What lies on the disk, and what the process has in memory of it, when the operation begins.
enum class disk { closed_store, log_of_a_killed_process, nothing };
enum class memory { none, current, outdated };

struct scenario {
    const char* name;
    disk on_disk;
    memory in_memory;
};
const scenario SCENARIOS[] = {
    {"a closed store", disk::closed_store, memory::none},
    {"a store left by a killed process", disk::log_of_a_killed_process, memory::none},
    {"no store", disk::nothing, memory::none},
    {"a store in memory", disk::closed_store, memory::current},
    {"a store in memory that another connection has changed", disk::closed_store, memory::outdated},
};

bool takes_part(const store_operation& operation, const scenario& where)
{
    return where.on_disk == disk::closed_store || operation.also_opens;
}

struct kind_of_fault {
    const char* name;
    file_call call;
    int result;
    int system_error;
    int code; // What the stores make of it, CONTACT_ERROR_... or ORG_ERR_..., which agree.
};
constexpr int IO = 112, DISK_FULL = 107;
const kind_of_fault FAULTS[] = {
    {"open", file_call::open, SQLITE_CANTOPEN, EIO, IO},
    {"access", file_call::access, SQLITE_IOERR_ACCESS, EIO, IO},
    {"delete", file_call::remove, SQLITE_IOERR_DELETE, EIO, IO},
    {"read", file_call::read, SQLITE_IOERR_READ, EIO, IO},
    {"write", file_call::write, SQLITE_IOERR_WRITE, EIO, IO},
    {"write to a full disk", file_call::write, SQLITE_FULL, ENOSPC, DISK_FULL},
    {"truncate", file_call::truncate, SQLITE_IOERR_TRUNCATE, EIO, IO},
    {"sync", file_call::sync, SQLITE_IOERR_FSYNC, EIO, IO},
    {"size", file_call::size, SQLITE_IOERR_FSTAT, EIO, IO},
    {"lock", file_call::lock, SQLITE_IOERR_LOCK, ENOLCK, IO},
    {"map the index", file_call::map_index, SQLITE_IOERR_SHMMAP, EIO, IO},
    {"lock the index", file_call::lock_index, SQLITE_IOERR_SHMLOCK, ENOLCK, IO},
};

// How long the disk fails, and what becomes of the process.
enum class course { fails_once, fails_for_a_while, fails_until_the_process_dies };
const struct {
    const char* name;
    course how;
} COURSES[] = {
    {"once", course::fails_once},
    {"for a while", course::fails_for_a_while},
    {"until the process dies", course::fails_until_the_process_dies},
};

// What an undisturbed operation finds, says and leaves.
struct undisturbed {
    std::string before;
    answer got;
    std::string after;
    std::map<file_call, int> calls; // To the file system.

    bool changes_something() const { return before != after; }
};

int injected_in_all = 0;

// Emulated and instrumented programs take only every so many-th failure.
bool is_taken()
{
    static const char* const every = getenv("FAIL_EVERY");
    static int failure = 0;
    return failure++ % (every ? std::max(1, atoi(every)) : 1) == 0;
}

class FailingFileSystem : public testing::Test {
protected:
    FailingFileSystem()
    {
        std::string name = fs::temp_directory_path() / "jsr75-faults-XXXXXX";
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
        room_ = name;
        setenv("JSR75_PIM_HOME", home().c_str(), 1);
        failing_vfs::install();
    }
    ~FailingFileSystem() override { fs::remove_all(room_); }

    static void TearDownTestSuite()
    {
        std::printf("failing file system: %d failures, %s\n", injected_in_all,
                    testing::UnitTest::GetInstance()->Failed() ? "NOT every store intact" : "every store intact");
    }

    void sweep(const store_operations& stores);

private:
    fs::path home() const { return room_ / "store"; }
    fs::path kept(disk on_disk) const { return room_ / std::to_string(static_cast<int>(on_disk)); }

    void keep_disks() const;
    void restore(disk on_disk) const;
    void bring_into(memory in_memory) const;

    undisturbed run_undisturbed(const store_operation& operation, const scenario& where) const;
    void run_with(const file_fault& fault, course how, const store_operation& operation, const scenario& where,
                  const undisturbed& expected, int code) const;
    void expect_intact_files() const;
    std::string state_for_a_new_process() const;

    fs::path room_;
    const store_operations* stores_ = nullptr;
};

// ---- Disks ----------------------------------------------------------------------------------------------------------

// The stores of this process are never opened: each child begins with nothing in memory.
void FailingFileSystem::keep_disks() const
{
    const auto fill = [this] {
        stores_->fill();
        return 0;
    };
    ASSERT_EQ(in_tidy_child(fill), 0);
    fs::copy(home(), kept(disk::closed_store));
    fs::remove_all(home());
    ASSERT_EQ(child_process(fill).wait(), 0);
    for (const std::string& file : stores_->files) ASSERT_GT(fs::file_size(home() / (file + "-wal")), 0u);
    fs::copy(home(), kept(disk::log_of_a_killed_process));
}

void FailingFileSystem::restore(disk on_disk) const
{
    fs::remove_all(home());
    if (on_disk != disk::nothing) fs::copy(kept(on_disk), home());
}

void FailingFileSystem::bring_into(memory in_memory) const
{
    if (in_memory == memory::none) return;
    stores_->works();
    stores_->state();
    if (in_memory == memory::current) return;
    for (const std::string& file : stores_->files)
        SQLite::Database(home() / file, SQLite::OPEN_READWRITE, 5000)
            .exec("UPDATE retired_index SET highest = highest + 1");
}

// ---- Runs -----------------------------------------------------------------------------------------------------------

std::string FailingFileSystem::state_for_a_new_process() const
{
    const fs::path told = room_ / "state";
    write_file(told, "");
    const auto tell = [&] {
        write_file(told, stores_->state());
        return 0;
    };
    EXPECT_EQ(in_tidy_child(tell), 0);
    return content_of(told);
}

undisturbed FailingFileSystem::run_undisturbed(const store_operation& operation, const scenario& where) const
{
    undisturbed seen;
    const fs::path told = room_ / "result";
    restore(where.on_disk);
    const auto prepare = [&] {
        bring_into(where.in_memory);
        return 0;
    };
    EXPECT_EQ(in_tidy_child(prepare), 0);
    seen.before = state_for_a_new_process();

    restore(where.on_disk);
    number_pipe counted;
    child_process process([&] {
        bring_into(where.in_memory);
        failing_vfs::start_counting();
        const answer got = operation.run();
        for (const kind_of_fault& kind : FAULTS) counted.send(failing_vfs::calls_of(kind.call));
        write_file(told, got.result);
        return got.error == 0 ? 0 : 1;
    });
    counted.close_sender();
    for (const kind_of_fault& kind : FAULTS) counted.receive(seen.calls[kind.call]);
    seen.got.error = process.wait();
    seen.got.result = content_of(told);
    seen.after = state_for_a_new_process();
    return seen;
}

void FailingFileSystem::expect_intact_files() const
{
    for (const std::string& file : stores_->files) {
        if (!fs::exists(home() / file)) continue;
        SQLite::Database database(home() / file, SQLite::OPEN_READWRITE, 5000);
        EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
        EXPECT_EQ(database.execAndGet("SELECT count(*) FROM pragma_foreign_key_check").getInt(), 0);
    }
}

enum class found { before, after, something_else };

void FailingFileSystem::run_with(const file_fault& fault, course how, const store_operation& operation,
                                 const scenario& where, const undisturbed& expected, int code) const
{
    const auto found_in = [&](const std::string& state) {
        if (state == expected.after) return found::after;
        return state == expected.before ? found::before : found::something_else;
    };
    restore(where.on_disk);
    number_pipe told, go_on;
    child_process process([&] {
        bring_into(where.in_memory);
        failing_vfs::arm(fault);
        const answer got = operation.run();
        told.send(failing_vfs::injected());
        told.send(got.error);
        told.send(got.result == expected.got.result);
        if (how == course::fails_until_the_process_dies) return 0;

        failing_vfs::disarm();
        const std::string state = stores_->state();
        told.send(static_cast<int>(found_in(state)));
        int number = 0;
        go_on.receive(number);
        exit(stores_->works() && stores_->state() == state ? 0 : 1);
    });
    told.close_sender();

    int injected = 0, error = 0, result_is_right = 0, in_process = 0;
    if (!told.receive(injected) || !told.receive(error) || !told.receive(result_is_right)) {
        ADD_FAILURE() << "the process has come to its end: " << process.wait();
        return;
    }
    EXPECT_GT(injected, 0);
    ++injected_in_all;
    if (error != 0 && stores_->told_by == report::code) {
        EXPECT_EQ(error, code);
    }
    EXPECT_TRUE(error != 0 || result_is_right) << "a failure that was not reported";

    // A native goes on after some of the failures that it traces.
    const bool may_be_done = error == 0 || stores_->told_by == report::trace || !expected.changes_something();
    const auto expect_state = [&](found state, const char* whose) {
        EXPECT_TRUE((state == found::before && error != 0) || (state == found::after && may_be_done))
            << whose << ": state " << static_cast<int>(state) << ", error " << error;
    };
    if (how == course::fails_until_the_process_dies) {
        EXPECT_EQ(process.wait(), 0);
        expect_intact_files();
        const found state = found_in(state_for_a_new_process());
        // What a failed sync has left on the disk nobody can tell, and nobody was there to write over it.
        if (fault.call != file_call::sync || state == found::something_else)
            expect_state(state, "found by the next process");
        return;
    }
    told.receive(in_process);
    expect_state(static_cast<found>(in_process), "found by the process");
    expect_intact_files();
    expect_state(found_in(state_for_a_new_process()), "found by another process");
    go_on.send(1);
    EXPECT_EQ(process.wait(), 0) << "the disk is well and the store does not work";
    expect_intact_files();
}

void FailingFileSystem::sweep(const store_operations& stores)
{
    stores_ = &stores;
    keep_disks();
    if (HasFatalFailure()) return;
    for (const scenario& where : SCENARIOS)
        for (const store_operation& operation : stores.operations) {
            if (!takes_part(operation, where)) continue;
            const undisturbed expected = run_undisturbed(operation, where);
            ASSERT_EQ(expected.got.error, 0) << operation.name << " on " << where.name;
            for (const kind_of_fault& kind : FAULTS)
                for (const auto& [name, how] : COURSES) {
                    if (how == course::fails_until_the_process_dies && !expected.changes_something()) continue;
                    // The natives add the traces, the stores beneath are the same.
                    if (how != course::fails_once && stores.told_by == report::trace) continue;
                    file_fault fault = {kind.call, kind.result, kind.system_error, 1, how != course::fails_once};
                    for (; fault.nth <= expected.calls.at(kind.call); ++fault.nth) {
                        if (!is_taken()) continue;
                        SCOPED_TRACE(operation.name + " on " + where.name + ": " + kind.name + " fails " + name +
                                     ", from call " + std::to_string(fault.nth));
                        run_with(fault, how, operation, where, expected, kind.code);
                    }
                }
        }
}

} // namespace

TEST_F(FailingFileSystem, LeavesTheContactStoreIntact)
{
    sweep(contact_operations());
}

TEST_F(FailingFileSystem, LeavesTheOrganizerStoreIntact)
{
    sweep(organizer_operations());
}

TEST_F(FailingFileSystem, IsTracedByTheNatives)
{
    sweep(native_operations());
}
