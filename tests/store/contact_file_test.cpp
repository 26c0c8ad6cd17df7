// The file, its connections and its versions.

#include <thread>

#include "contact_fixture.h"

using namespace store_test;
using testing::ElementsAre;

class ContactFile : public ContactStore {};

TEST_F(ContactFile, IsForItsUserAlone)
{
    add("x");
    EXPECT_EQ(mode_of(store_home()), 0700u);
    EXPECT_EQ(mode_of(file()), 0600u);
    EXPECT_EQ(mode_of(file().string() + "-wal"), 0600u);
    EXPECT_EQ(mode_of(file().string() + "-shm"), 0600u);
}

TEST_F(ContactFile, SaysWhatItIs)
{
    add("x");
    EXPECT_EQ(shell().execAndGet("PRAGMA application_id").getInt(), 0x50494d43);
    EXPECT_EQ(shell().execAndGet("PRAGMA user_version").getInt(), 1);
    EXPECT_EQ(shell().execAndGet("PRAGMA journal_mode").getString(), "wal");
    EXPECT_EQ(shell().execAndGet("SELECT count(*) FROM pragma_foreign_key_check").getInt(), 0);
}

TEST_F(ContactFile, IsAloneAfterTheLastProcess)
{
    EXPECT_EQ(in_tidy_child([] { return add("x") == 1 ? 0 : 1; }), 0);
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(store_home())) names.push_back(entry.path().filename());
    EXPECT_THAT(names, ElementsAre("address.db3"));
}

TEST_F(ContactFile, KeepsWhatWasStored)
{
    contact stored = uniform_contact(3);
    stored.membership[0] = 1;
    const auto fill = [&] { return add_group("Friends") == 0 && add(stored) == 1 ? 0 : 1; };
    ASSERT_EQ(in_tidy_child(fill), 0);
    EXPECT_EQ(number_of(get(1)), -1) << "the membership differs";
    EXPECT_EQ(difference(get(1), stored), "");
    EXPECT_THAT(members(0), ElementsAre(1));
    EXPECT_THAT(group_names(), ElementsAre("Friends"));
}

// The tables of each version that was ever released, as they were: a store of that version must still open, and come
// to look like a new one.
TEST_F(ContactFile, OfEveryVersionBecomesOneOfToday)
{
    ASSERT_EQ(in_tidy_child([] { return add("x") == 1 ? 0 : 1; }), 0);
    SQLite::Database fresh = shell();
    const int newest = fresh.execAndGet("PRAGMA user_version").getInt();
    const auto expected = schema_of(fresh);
    ASSERT_FALSE(expected.empty());

    for (int version = 1; version <= newest; ++version) {
        const fs::path frozen = fs::path(STORE_TEST_DATA) / ("contact_schema_" + std::to_string(version) + ".sql");
        const fs::path home = room() / std::to_string(version);
        fs::create_directory(home);
        {
            SQLite::Database old(home / "address.db3", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            old.exec(content_of(frozen));
            old.exec("PRAGMA application_id = 0x50494d43; PRAGMA user_version = " + std::to_string(version));
            old.exec("INSERT INTO contact (record_index, last_name) VALUES (5, 'Lovelace')");
        }
        setenv("JSR75_PIM_HOME", home.c_str(), 1);
        const auto is_kept = [] { return get(5).name_info.last_name == std::string("Lovelace") ? 0 : 1; };
        EXPECT_EQ(in_tidy_child(is_kept), 0) << version;
        SQLite::Database upgraded(home / "address.db3");
        EXPECT_EQ(upgraded.execAndGet("PRAGMA user_version").getInt(), newest) << version;
        EXPECT_EQ(schema_of(upgraded), expected) << version;
    }
}

TEST_F(ContactFile, IsMadeByManyAtOnce)
{
    std::vector<std::unique_ptr<child_process>> children;
    for (int i = 0; i < 8; ++i)
        children.push_back(std::make_unique<child_process>([] { return add("x") > 0 && !HasFailure() ? 0 : 1; }));
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
    EXPECT_THAT(indices(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
}

// ---- Connections

TEST_F(ContactFile, TakesConnectsAndDisconnectsInAnyNumberAndOrder)
{
    int error = 0;
    EXPECT_TRUE(contact_db_service_disconnect(&error));
    EXPECT_TRUE(contact_db_service_disconnect(nullptr));
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(contact_db_service_connect(&error));
    EXPECT_EQ(add("x"), 1);
    for (int i = 0; i < 7; ++i) EXPECT_TRUE(contact_db_service_disconnect(&error));
    EXPECT_EQ(add("x"), 2);
    EXPECT_TRUE(contact_db_service_connect(&error));
    EXPECT_EQ(count(), 2);
}

TEST_F(ContactFile, DoesNotRunOutOfConnections)
{
    add("x");
    int error = 0;
    for (int i = 0; i < 100000; ++i) ASSERT_TRUE(contact_db_service_connect(&error)) << i;
    for (int i = 0; i < 300; ++i) {
        std::thread([i] {
            int code = 0;
            ASSERT_TRUE(contact_db_service_connect(&code)) << i << ": " << code;
            ASSERT_EQ(count(), 1);
        }).join();
    }
    const auto descriptors = std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    EXPECT_LT(descriptors, 20);
}
