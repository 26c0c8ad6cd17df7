#include "common/snapshot_store.h"

#include <thread>

#include "store_test.h"

using namespace pim_store;
using namespace store_test;

// Numbers under keys; remembers how often it was loaded.
struct number_contents {
    static inline std::atomic<int> loads = 0, fetches = 0;

    void load(connection& file)
    {
        ++loads;
        statement keys = file.prepare("SELECT key FROM entry ORDER BY key");
        while (keys.step()) numbers[keys.integer(0)] = std::nullopt;
    }
    std::pair<int32_t, int32_t> fetch(connection& file, int32_t key) const
    {
        ++fetches;
        statement query = file.prepare("SELECT number FROM entry WHERE key = ?1");
        query.bind(key);
        if (!query.step()) throw store_failure(store_error::corrupt);
        return {key, query.integer(0)};
    }
    void adopt(std::pair<int32_t, int32_t>&& entry) { numbers[entry.first] = entry.second; }

    std::map<int32_t, std::optional<int32_t>> numbers;
};

static const database_layout number_layout = {
    "numbers.db3", 1, "CREATE TABLE entry (key INTEGER PRIMARY KEY, number INTEGER)", {}};

using number_store = snapshot_store<number_contents>;

static int32_t read(number_store& store, int32_t key)
{
    int32_t number = 0;
    store.read([&](const number_contents& contents) {
        const auto found = contents.numbers.find(key);
        if (found == contents.numbers.end()) throw store_failure(store_error::full);
        if (!found->second) return key;
        number = *found->second;
        return answered;
    });
    return number;
}

static void write(number_store& store, int32_t key, int32_t number)
{
    store.write([&](connection& file) {
        file.prepare("INSERT INTO entry VALUES (?1, ?2) ON CONFLICT DO UPDATE SET number = ?2").bind(key, number).run();
        return [=](number_contents& contents) { contents.numbers[key] = number; };
    });
}

class SnapshotStore : public StoreTest {
protected:
    void write_from_elsewhere(const std::string& sql) const
    {
        SQLite::Database(room() / number_layout.file_name, SQLite::OPEN_READWRITE, 5000).exec(sql);
    }
};

TEST_F(SnapshotStore, AnswersFromMemoryUntilTheFileChanges)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(read(store, 1), 10);
    EXPECT_EQ(number_contents::loads, 1);
    EXPECT_EQ(number_contents::fetches, 1);
    write_from_elsewhere("UPDATE entry SET number = 11");
    EXPECT_EQ(read(store, 1), 11);
    EXPECT_EQ(number_contents::loads, 2);
}

TEST_F(SnapshotStore, FollowsItsOwnCommitsWithoutLoading)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    EXPECT_EQ(read(store, 1), 10);
    for (int number = 11; number < 20; ++number) {
        write(store, 1, number);
        EXPECT_EQ(read(store, 1), number);
    }
    EXPECT_EQ(number_contents::loads, 1);
}

TEST_F(SnapshotStore, LoadsAfreshWhenAnOwnCommitFollowsAForeignOne)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    EXPECT_EQ(read(store, 1), 10);
    write_from_elsewhere("INSERT INTO entry VALUES (2, 20)");
    write(store, 1, 11);
    EXPECT_EQ(read(store, 2), 20);
    EXPECT_EQ(read(store, 1), 11);
}

TEST_F(SnapshotStore, SeesEveryCommitWithoutTheHeaderToo)
{
    number_store store(room(), number_layout, change_watch::method::data_version);
    write(store, 1, 10);
    EXPECT_EQ(read(store, 1), 10);
    write_from_elsewhere("UPDATE entry SET number = 11");
    EXPECT_EQ(read(store, 1), 11);
    write(store, 1, 12);
    EXPECT_EQ(read(store, 1), 12);
    const int loads = number_contents::loads;
    EXPECT_EQ(read(store, 1), 12);
    EXPECT_EQ(number_contents::loads, loads);
}

TEST_F(SnapshotStore, UndoesAChangeThatFails)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    const auto failing = [&] {
        store.write([](connection& file) {
            file.prepare("DELETE FROM entry").run();
            throw store_failure(store_error::full);
            return [](number_contents&) {};
        });
    };
    EXPECT_THROW(failing(), store_failure);
    EXPECT_EQ(read(store, 1), 10);
}

TEST_F(SnapshotStore, LoadsAfreshWhenTheMemoryCannotFollowACommit)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    EXPECT_EQ(read(store, 1), 10);
    store.write([](connection& file) {
        file.prepare("UPDATE entry SET number = 11").run();
        return [](number_contents&) { throw std::bad_alloc(); };
    });
    EXPECT_EQ(read(store, 1), 11);
}

TEST_F(SnapshotStore, SurvivesACheckpointAndARestartOfTheLog)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    for (int number = 11; number < 20; ++number) {
        EXPECT_EQ(read(store, 1), number - 1);
        write_from_elsewhere("PRAGMA wal_checkpoint(TRUNCATE)");
        EXPECT_EQ(read(store, 1), number - 1);
        write(store, 1, number);
    }
    write_from_elsewhere("VACUUM");
    EXPECT_EQ(read(store, 1), 19);
}

TEST_F(SnapshotStore, StopsWhenANewerVersionHasUpgradedTheFile)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    EXPECT_EQ(read(store, 1), 10);
    write_from_elsewhere("PRAGMA user_version = 2");
    int code = 0;
    EXPECT_FALSE(guarded(&code, [&] { read(store, 1); }));
    EXPECT_EQ(code, static_cast<int>(store_error::newer_schema));
    EXPECT_FALSE(guarded(&code, [&] { write(store, 1, 11); }));
    EXPECT_EQ(code, static_cast<int>(store_error::newer_schema));
}

TEST_F(SnapshotStore, OpensAgainAfterItWasClosed)
{
    number_store store(room(), number_layout);
    write(store, 1, 10);
    store.close();
    EXPECT_EQ(read(store, 1), 10);
    store.close();
    write(store, 1, 11);
    EXPECT_EQ(read(store, 1), 11);
}

TEST_F(SnapshotStore, WorksOnBothSidesOfAFork)
{
    auto& store = process_store<number_contents>(number_layout);
    write(store, 1, 10);
    EXPECT_EQ(read(store, 1), 10);
    child_process child([&store] {
        auto& own = process_store<number_contents>(number_layout);
        if (&own != &store) return 1;
        if (read(own, 1) != 10) return 2;
        write(own, 1, 11);
        return read(own, 1) == 11 ? 0 : 3;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(read(store, 1), 11);
    write(store, 1, 12);
    EXPECT_EQ(SQLite::Database(store_home() / number_layout.file_name).execAndGet("SELECT number FROM entry").getInt(),
              12);
}

TEST_F(SnapshotStore, IsWholeInAChildForkedWhileAThreadWrites)
{
    auto& store = process_store<number_contents>(number_layout);
    write(store, 1, 0);
    std::atomic<bool> done = false;
    std::thread writer([&] {
        for (int number = 1; !done; ++number) write(store, 1, number);
    });
    for (int round = 0; round < 20; ++round) {
        child_process child([round] {
            write(process_store<number_contents>(number_layout), 100 + round, round);
            return 0;
        });
        EXPECT_EQ(child.wait(), 0);
        EXPECT_EQ(read(store, 100 + round), round);
    }
    done = true;
    writer.join();
}

TEST_F(SnapshotStore, ReadersNeverSeeATimeBeforeOneTheySaw)
{
    auto& store = process_store<number_contents>(number_layout);
    constexpr int last = 300;
    write(store, 1, 0);
    child_process foreign([] {
        for (int number = 1; number <= last; ++number) write(process_store<number_contents>(number_layout), 2, number);
        return 0;
    });
    std::atomic<int> steps_back = 0;
    const auto watch = [&](int32_t key) {
        for (int seen = 0; seen < last;) {
            const int number = key == 2 && seen == 0 ? 1 : read(store, key);
            if (number < seen) ++steps_back;
            seen = number;
        }
    };
    // The foreign key appears with the first commit of the other process.
    while (!guarded(nullptr, [&] { read(store, 2); })) std::this_thread::yield();
    std::thread readers[] = {std::thread(watch, 1), std::thread(watch, 1), std::thread(watch, 2),
                             std::thread(watch, 2)};
    for (int number = 1; number <= last; ++number) write(store, 1, number);
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(foreign.wait(), 0);
    EXPECT_EQ(steps_back, 0);
}
