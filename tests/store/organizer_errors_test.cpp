// How calls fail: arguments, folders, files, locks, memory.

#include <signal.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>

#include "organizer_fixture.h"

using namespace store_test;
using testing::Each;
using testing::Eq;

class OrganizerErrors : public OrganizerStore {
protected:
    static int code_of_connect() { return code_of(org_db_service_connect_database); }
    static int code_of_count()
    {
        int number = 0;
        return code_of([&](int* error) { return org_db_service_get_record_count(0, 8, &number, error); });
    }

    // What every kind of call that reaches the file fails with.
    static std::vector<int> codes()
    {
        entry record("x");
        int room[1];
        return {code_of_connect(),
                code_of_count(),
                code_of([&](int* error) { return org_db_service_get_records_id(0, 9, 1, 0, room, error); }),
                code_of_get(1),
                code_of_add(),
                code_of([&](int* error) { return org_db_service_update_record_full_field(1, &record, error); }),
                code_of([&](int* error) { return org_db_service_delete_record(1, error); })};
    }

    void expect_refusal_of_an_untouched_file(int code) const
    {
        const std::string before = content_of(file());
        EXPECT_THAT(codes(), Each(Eq(code)));
        EXPECT_EQ(content_of(file()), before);
    }
};

TEST_F(OrganizerErrors, NullPointersAreInvalidArguments)
{
    org_full_record record = {};
    int number = 0;
    const auto invalid = [](auto&& call) { return code_of(call) == ORG_ERR_INVALID_ARGUMENT; };
    EXPECT_TRUE(invalid([](int* e) { return org_db_service_init_full_record(nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return org_db_service_free_full_record(nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return org_db_service_get_record_count(0, 8, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return org_db_service_get_records_id(0, 8, 1, 0, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return org_db_service_get_record_full_field_by_index(1, nullptr, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return org_db_service_add_record_full_field(8, nullptr, &number, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return org_db_service_add_record_full_field(8, &record, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return org_db_service_update_record_full_field(1, nullptr, e); }));
    EXPECT_FALSE(org_db_service_add_record_full_field(8, nullptr, nullptr, nullptr));
    EXPECT_EQ(count(ORG_TYPE_EVENT), 0);
}

TEST_F(OrganizerErrors, NegativeCountsAndOtherTypesAreInvalidArguments)
{
    entry record("x");
    int room[1] = {-1}, number = 4711;
    const auto invalid = [](auto&& call) { return code_of(call) == ORG_ERR_INVALID_ARGUMENT; };
    EXPECT_TRUE(invalid([&](int* e) { return org_db_service_get_records_id(0, 8, -1, 0, room, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return org_db_service_get_records_id(0, 8, INT32_MIN, 0, room, e); }));
    for (const int type : {0, 1, 2, 7, 10, -8}) {
        EXPECT_TRUE(invalid([&](int* e) { return org_db_service_get_record_count(0, type, &number, e); }));
        EXPECT_TRUE(invalid([&](int* e) { return org_db_service_get_records_id(0, type, 1, 0, room, e); }));
        EXPECT_TRUE(invalid([&](int* e) { return org_db_service_add_record_full_field(type, &record, &number, e); }));
    }
    EXPECT_EQ(number, 4711);
    EXPECT_EQ(room[0], -1);
}

TEST_F(OrganizerErrors, AreWrittenOnlyByAFailure)
{
    int error = 4711, number = 0, room[1];
    entry record("x");
    EXPECT_TRUE(org_db_service_connect_database(&error));
    EXPECT_TRUE(org_db_service_add_record_full_field(8, &record, &number, &error));
    EXPECT_TRUE(org_db_service_update_record_full_field(1, &record, &error));
    EXPECT_TRUE(org_db_service_get_record_count(0, 8, &number, &error));
    EXPECT_TRUE(org_db_service_get_records_id(0, 8, 1, 0, room, &error));
    EXPECT_TRUE(org_db_service_get_record_full_field_by_index(1, &record, &error));
    EXPECT_TRUE(org_db_service_init_full_record(&record, &error));
    EXPECT_TRUE(org_db_service_delete_record(1, &error));
    EXPECT_TRUE(org_db_service_disconnect_database(&error));
    EXPECT_EQ(error, 4711);
}

TEST_F(OrganizerErrors, UnbalancedConnectsAreHarmless)
{
    for (int i = 0; i < 3; ++i) disconnect();
    EXPECT_EQ(add(ORG_TYPE_EVENT, "x"), 1);
    for (int i = 0; i < 3; ++i) connect();
    EXPECT_EQ(add(ORG_TYPE_EVENT, "x"), 2);
    disconnect();
    EXPECT_EQ(add(ORG_TYPE_EVENT, "x"), 3);
    for (int i = 0; i < 5; ++i) disconnect();
    EXPECT_EQ(count(ORG_TYPE_EVENT), 3);
}

TEST_F(OrganizerErrors, AFolderThatCannotBeMade)
{
    write_file(store_home(), "a file");
    EXPECT_THAT(codes(), Each(Eq(ORG_ERR_FOLDER)));
    EXPECT_EQ(content_of(store_home()), "a file");
    EXPECT_EQ(code_of(org_db_service_disconnect_database), 0);
    fs::remove(store_home());
    EXPECT_EQ(code_of_add(), 0) << "tried again";
}

// Runs `work` in a child without the rights of the superuser, who may write anywhere.
static int as_ordinary_user(const std::function<int()>& work)
{
    constexpr uid_t nobody = 65534;
    return child_process([&] { return geteuid() == 0 && setresuid(nobody, nobody, nobody) != 0 ? 98 : work(); }).wait();
}

TEST_F(OrganizerErrors, AFolderThatCannotBeWritten)
{
    fs::permissions(room(), fs::perms(0755));
    fs::create_directory(store_home());
    fs::permissions(store_home(), fs::perms(0555));
    EXPECT_EQ(as_ordinary_user([] { return code_of_connect(); }), ORG_ERR_READ_ONLY);
    EXPECT_EQ(as_ordinary_user([] { return code_of_add(); }), ORG_ERR_READ_ONLY);
    EXPECT_TRUE(fs::is_empty(store_home()));
}

TEST_F(OrganizerErrors, AFileThatCannotBeWritten)
{
    fs::permissions(room(), fs::perms(0755));
    make_closed_store(3);
    fs::permissions(store_home(), fs::perms(0777));
    fs::permissions(file(), fs::perms(0444));
    const std::string before = content_of(file());
    EXPECT_EQ(as_ordinary_user([] { return code_of_count(); }), ORG_ERR_READ_ONLY);
    EXPECT_EQ(as_ordinary_user([] { return code_of_add(); }), ORG_ERR_READ_ONLY);
    EXPECT_EQ(content_of(file()), before);
}

// Lets no file of this process grow past `size` bytes, which is what a full disk looks like.
static void limit_files(rlim_t size)
{
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size == RLIM_INFINITY ? limit.rlim_max : size;
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(OrganizerErrors, AFullDiskWhileTheStoreIsMade)
{
    for (const rlim_t size : {0u, 3000u, 9000u}) {
        const auto code_behind_the_limit = [size] {
            limit_files(size);
            return code_of_add();
        };
        EXPECT_EQ(child_process(code_behind_the_limit).wait(), ORG_ERR_DISK_FULL) << size;
        EXPECT_FALSE(fs::exists(file())) << size;
    }
    EXPECT_EQ(code_of_add(), 0);
}

TEST_F(OrganizerErrors, AFullDiskLosesNothing)
{
    EXPECT_EQ(add(ORG_TYPE_TODO, "first"), 1);
    limit_files(200000);
    int stored = 0, code;
    while ((code = code_of_add()) == 0) ++stored;
    EXPECT_EQ(code, ORG_ERR_DISK_FULL);
    EXPECT_EQ(code_of_add(), ORG_ERR_DISK_FULL);
    EXPECT_EQ(count(ORG_TYPE_EVENT), stored);
    EXPECT_EQ(child_process([&] { return count(ORG_TYPE_EVENT) == stored ? 0 : 1; }).wait(), 0);

    limit_files(RLIM_INFINITY);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), stored + 2);
    connect();
    EXPECT_STREQ(get(1).summary, "first");
    EXPECT_EQ(shell().execAndGet("PRAGMA integrity_check").getString(), "ok");
}

TEST_F(OrganizerErrors, AFileThatIsNoDatabase)
{
    fs::create_directory(store_home());
    for (const std::string& content : {std::string(), std::string("BEGIN:VCALENDAR\n"), std::string(100000, 'x')}) {
        write_file(file(), content);
        expect_refusal_of_an_untouched_file(ORG_ERR_FOREIGN);
    }
}

TEST_F(OrganizerErrors, AFolderInPlaceOfTheFile)
{
    fs::create_directories(file());
    EXPECT_THAT(codes(), Each(Eq(ORG_ERR_FOREIGN)));
    EXPECT_TRUE(fs::is_empty(file()));
}

TEST_F(OrganizerErrors, ADatabaseOfSomethingElse)
{
    fs::create_directory(store_home());
    {
        SQLite::Database other(file(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        other.exec("CREATE TABLE record (record_index INTEGER PRIMARY KEY, type INTEGER)");
        other.exec("PRAGMA application_id = 0x50494d43"); // The contact store's.
    }
    expect_refusal_of_an_untouched_file(ORG_ERR_FOREIGN);
}

TEST_F(OrganizerErrors, AStoreOfANewerVersion)
{
    make_closed_store(3);
    shell().exec("PRAGMA user_version = 99");
    expect_refusal_of_an_untouched_file(ORG_ERR_NEWER_SCHEMA);
}

TEST_F(OrganizerErrors, ATruncatedStore)
{
    make_closed_store(100);
    const std::string whole = content_of(file());
    for (const size_t kept : {whole.size() / 2, whole.size() - 4096, size_t{4096}}) {
        write_file(file(), whole.substr(0, kept));
        EXPECT_EQ(child_process([] { return code_of_add(); }).wait(), ORG_ERR_CORRUPT) << kept;
        EXPECT_EQ(content_of(file()), whole.substr(0, kept)) << kept;
    }
}

TEST_F(OrganizerErrors, DamageThatReadersAndWritersMeet)
{
    make_closed_store(300);
    std::string damaged = content_of(file());
    std::fill(damaged.begin() + 4096, damaged.end(), '\xff');
    write_file(file(), damaged);
    EXPECT_EQ(code_of_count(), ORG_ERR_CORRUPT);
    EXPECT_EQ(code_of_get(1), ORG_ERR_CORRUPT);
    EXPECT_EQ(code_of_add(), ORG_ERR_CORRUPT);
    EXPECT_EQ(code_of([](int* error) { return org_db_service_delete_record(1, error); }), ORG_ERR_CORRUPT);
    EXPECT_EQ(content_of(file()), damaged);
}

TEST_F(OrganizerErrors, ARestThatDoesNotFitItsRecord)
{
    add(ORG_TYPE_EVENT, "x");
    for (const char* rest : {"x'ffff0100'", "x'00'", "x'0000ffff00'", "x'70010100ff'", "zeroblob(100001)"}) {
        shell().exec("UPDATE record SET rest = " + std::string(rest));
        EXPECT_EQ(code_of_get(1), ORG_ERR_CORRUPT) << rest;
    }
}

TEST_F(OrganizerErrors, IndexesAndTypesThatNoRecordHas)
{
    add(ORG_TYPE_EVENT, "x");
    for (const char* change : {"record_index = 10001", "record_index = 0", "record_index = -1", "type = 7"}) {
        {
            SQLite::Database other = shell();
            other.exec("PRAGMA ignore_check_constraints = ON");
            other.exec("UPDATE record SET record_index = 1, type = 8");
            EXPECT_EQ(code_of_get(1), 0);
            other.exec("UPDATE record SET " + std::string(change));
        }
        EXPECT_EQ(code_of_count(), ORG_ERR_CORRUPT) << change;
    }
}

TEST_F(OrganizerErrors, TablesThatAreNotThere)
{
    add(ORG_TYPE_EVENT, "x");
    shell().exec("DROP TABLE record");
    EXPECT_EQ(code_of_get(1), ORG_ERR_CORRUPT);
    EXPECT_EQ(code_of_add(), ORG_ERR_CORRUPT);
}

TEST_F(OrganizerErrors, AWriterThatAnotherProcessKeepsWaiting)
{
    add(ORG_TYPE_EVENT, "x");
    number_pipe locked;
    child_process holder([&] {
        SQLite::Database database = shell();
        database.exec("BEGIN IMMEDIATE");
        locked.send(1);
        pause();
        return 0;
    });
    int number;
    ASSERT_TRUE(locked.receive(number));

    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(code_of_add(), ORG_ERR_LOCKED);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
    EXPECT_EQ(count(ORG_TYPE_EVENT), 1) << "readers do not wait";
    holder.kill();
    holder.wait();
    EXPECT_EQ(add(ORG_TYPE_EVENT, "y"), 2);
}

TEST_F(OrganizerErrors, AStoreThatAnotherProcessHasToItself)
{
    make_closed_store(3);
    const std::string before = content_of(file());
    number_pipe locked;
    child_process holder([&] {
        SQLite::Database database = shell();
        database.exec("PRAGMA locking_mode = EXCLUSIVE");
        database.exec("BEGIN EXCLUSIVE");
        locked.send(1);
        pause();
        return 0;
    });
    int number;
    ASSERT_TRUE(locked.receive(number));
    EXPECT_EQ(child_process([] { return code_of_count(); }).wait(), ORG_ERR_LOCKED);
    EXPECT_EQ(content_of(file()), before);
    holder.kill();
    holder.wait();
    EXPECT_EQ(code_of_add(), 0);
}

TEST_F(OrganizerErrors, MemoryThatRunsOut)
{
    add(ORG_TYPE_EVENT, "x");
    sqlite3_hard_heap_limit64(1);
    EXPECT_EQ(code_of_add(), ORG_ERR_NO_MEMORY);
    EXPECT_EQ(code_of([](int* error) { return org_db_service_delete_record(1, error); }), ORG_ERR_NO_MEMORY);
    sqlite3_hard_heap_limit64(0);
    EXPECT_EQ(count(ORG_TYPE_EVENT), 1);
    EXPECT_EQ(add(ORG_TYPE_EVENT, "x"), 2);
}

// Stands before the file system and fails to open anything, as a broken disk does.
static void break_the_disk()
{
    static sqlite3_vfs broken = *sqlite3_vfs_find(nullptr);
    broken.zName = "broken";
    broken.pNext = nullptr;
    broken.xOpen = [](sqlite3_vfs*, const char*, sqlite3_file* opened, int, int*) {
        opened->pMethods = nullptr;
        errno = EIO;
        return SQLITE_IOERR;
    };
    sqlite3_vfs_register(&broken, 1);
}

TEST_F(OrganizerErrors, ADiskThatIsBroken)
{
    make_closed_store(3);
    break_the_disk();
    expect_refusal_of_an_untouched_file(ORG_ERR_IO);
}
