#include "common/database_file.h"

#include <thread>

#include "common/store_error.h"
#include "store_test.h"

using namespace pim_store;
using namespace store_test;
using testing::ElementsAre;

static constexpr int32_t application_id = 4711;
static const char* const to_versions_2_and_3[] = {
    "ALTER TABLE pet ADD COLUMN kind TEXT",
    "CREATE TABLE owner (name TEXT); INSERT INTO owner SELECT name FROM pet",
};
static const database_layout version_1 = {"pets.db3", application_id, "CREATE TABLE pet (name TEXT)", {}};
static const database_layout version_3 = {"pets.db3", application_id,
                                          "CREATE TABLE pet (name TEXT, kind TEXT); CREATE TABLE owner (name TEXT)",
                                          to_versions_2_and_3};

class DatabaseFile : public StoreTest {
protected:
    DatabaseFile() : file(room() / "pets.db3") {}

    int code_of_preparing(const database_layout& layout) const
    {
        int code = 0;
        guarded(&code, [&] { prepare_database(file, layout); });
        return code;
    }

    const fs::path file;
};

TEST_F(DatabaseFile, AppearsWholeAndInWalMode)
{
    prepare_database(file, version_3);
    EXPECT_EQ(mode_of(file), 0600u);
    SQLite::Database database(file);
    EXPECT_EQ(database.execAndGet("PRAGMA application_id").getInt(), application_id);
    EXPECT_EQ(database.execAndGet("PRAGMA user_version").getInt(), 3);
    EXPECT_EQ(database.execAndGet("PRAGMA journal_mode").getString(), "wal");
    EXPECT_THAT(schema_of(database),
                ElementsAre("CREATE TABLE owner (name TEXT)", "CREATE TABLE pet (name TEXT, kind TEXT)"));
}

TEST_F(DatabaseFile, IsBuiltUnderANameThatDoesNotStay)
{
    prepare_database(file, version_1);
    for (const auto& entry : fs::directory_iterator(room()))
        EXPECT_THAT(entry.path().filename(), testing::AnyOf("pets.db3", "pets.db3-wal", "pets.db3-shm"));
}

TEST_F(DatabaseFile, IsUpgradedStepByStepAndKeepsItsRows)
{
    prepare_database(file, version_1);
    SQLite::Database(file, SQLite::OPEN_READWRITE).exec("INSERT INTO pet VALUES ('Rex')");
    prepare_database(file, version_3);
    SQLite::Database database(file);
    EXPECT_EQ(database.execAndGet("PRAGMA user_version").getInt(), 3);
    EXPECT_EQ(database.execAndGet("SELECT name FROM owner").getString(), "Rex");
    EXPECT_EQ(database.execAndGet("SELECT count(*) FROM pet WHERE kind IS NULL").getInt(), 1);
}

TEST_F(DatabaseFile, IsUntouchedByAFailingUpgrade)
{
    static const char* const failing[] = {"ALTER TABLE pet ADD COLUMN kind TEXT; SELECT no_such_function()"};
    const database_layout broken = {"pets.db3", application_id, "", failing};
    prepare_database(file, version_1);
    EXPECT_NE(code_of_preparing(broken), 0);
    SQLite::Database database(file);
    EXPECT_EQ(database.execAndGet("PRAGMA user_version").getInt(), 1);
    EXPECT_THAT(schema_of(database), ElementsAre("CREATE TABLE pet (name TEXT)"));
}

TEST_F(DatabaseFile, OfANewerVersionIsRefusedAndUntouched)
{
    prepare_database(file, version_3);
    const std::string before = content_of(file);
    EXPECT_EQ(code_of_preparing(version_1), static_cast<int>(store_error::newer_schema));
    EXPECT_TRUE(content_of(file) == before);
}

TEST_F(DatabaseFile, OfAnotherApplicationIsRefusedAndUntouched)
{
    SQLite::Database(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("CREATE TABLE pet (name TEXT)");
    const std::string before = content_of(file);
    EXPECT_EQ(code_of_preparing(version_1), static_cast<int>(store_error::foreign));
    EXPECT_TRUE(content_of(file) == before);
}

TEST_F(DatabaseFile, WithoutAVersionIsRefusedAndUntouched)
{
    prepare_database(file, version_1);
    SQLite::Database(file, SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 0");
    const std::string before = content_of(file);
    EXPECT_EQ(code_of_preparing(version_1), static_cast<int>(store_error::foreign));
    EXPECT_TRUE(content_of(file) == before);
}

TEST_F(DatabaseFile, IsMadeOnceByManyAtOnce)
{
    std::vector<std::unique_ptr<child_process>> children;
    for (int i = 0; i < 8; ++i)
        children.push_back(std::make_unique<child_process>([this] {
            const int code = code_of_preparing(version_1);
            if (code == 0) SQLite::Database(file, SQLite::OPEN_READWRITE, 5000).exec("INSERT INTO pet VALUES ('Rex')");
            return code;
        }));
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
    EXPECT_EQ(SQLite::Database(file).execAndGet("SELECT count(*) FROM pet").getInt(), 8);
}

TEST_F(DatabaseFile, IsUpgradedOnceByManyAtOnce)
{
    prepare_database(file, version_1);
    SQLite::Database(file, SQLite::OPEN_READWRITE).exec("INSERT INTO pet VALUES ('Rex')");
    std::vector<std::unique_ptr<child_process>> children;
    for (int i = 0; i < 8; ++i)
        children.push_back(std::make_unique<child_process>([this] { return code_of_preparing(version_3); }));
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
    EXPECT_EQ(SQLite::Database(file).execAndGet("SELECT count(*) FROM owner").getInt(), 1);
}
