// How calls fail: arguments, folders, files, locks.

#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

#include "contact_fixture.h"

using namespace store_test;
using testing::Each;
using testing::Eq;
using testing::IsEmpty;

class ContactErrors : public ContactStore {
protected:
    // The code that a call fails with, 0 when it succeeds.
    template <typename Call>
    static int code_of(Call&& call)
    {
        int error = 0;
        return call(&error) ? 0 : error;
    }

    static int code_of_connect() { return code_of(contact_db_service_connect); }
    static int code_of_count()
    {
        int number = 0;
        return code_of([&](int* error) { return contact_db_service_contact_get_count(0, &number, error); });
    }
    static int code_of_add()
    {
        contact stored("x");
        return code_of([&](int* error) { return contact_db_service_contact_add(&stored, error); });
    }

    // What every kind of call fails with.
    static std::vector<int> codes() { return {code_of_connect(), code_of_count(), code_of_add()}; }

    // A store with some contacts, closed again.
    void make_store(int contacts = 3) const
    {
        const auto fill = [contacts] {
            for (int i = 0; i < contacts; ++i) add(std::string(100, 'x'));
            return testing::Test::HasFailure() ? 1 : 0;
        };
        ASSERT_EQ(in_tidy_child(fill), 0);
        ASSERT_FALSE(fs::exists(file().string() + "-wal"));
    }

    // Every call fails with `code` and the file stays as it is.
    void expect_refusal_without_a_trace(int code) const
    {
        const std::string before = content_of(file());
        EXPECT_THAT(codes(), Each(Eq(code)));
        EXPECT_TRUE(content_of(file()) == before);
    }
};

TEST_F(ContactErrors, NullPointersAreInvalidArguments)
{
    contact_record contact = {};
    contact_group_record group = {};
    unsigned char flag = 0;
    int number = 1, key_index = 0;
    int indices[1] = {};
    GList* list = nullptr;
    const auto invalid = [](auto&& call) { return code_of(call) == CONTACT_ERROR_INVALID_ARGUMENT; };

    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_contact_get_count(0, nullptr, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return contact_db_service_contact_get_all_indices(0, nullptr, &number, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return contact_db_service_contact_get_all_indices(0, indices, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_contact_get(0, 1, 0, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_contact_get_by_index(0, 1, 0, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_contact_is_exist(0, 1, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_contact_add(nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_contact_update(0, 1, nullptr, e); }));
    EXPECT_TRUE(invalid(
        [](int* e) { return contact_db_service_search_contacts_of_no_group(nullptr, 1024, "", 9, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_group_get_count(0, nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_group_get_all_records(0, nullptr, 1, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_group_get(0, 0, nullptr, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return contact_db_service_group_get_id_by_name(0, nullptr, &key_index, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_group_get_id_by_name(0, "x", nullptr, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return contact_db_service_group_exist_same_name(0, nullptr, &flag, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_group_exist_same_name(0, "x", nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_group_add(nullptr, e); }));
    EXPECT_TRUE(invalid([](int* e) { return contact_db_service_group_update(0, 0, nullptr, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return contact_db_service_group_get_members(0, 0, nullptr, &number, e); }));
    EXPECT_TRUE(invalid([&](int* e) { return contact_db_service_group_get_members(0, 0, indices, nullptr, e); }));
    EXPECT_TRUE(
        invalid([&](int* e) { return contact_db_service_group_search(0, nullptr, 20, 0, &group, &number, e, 1); }));
    EXPECT_TRUE(
        invalid([&](int* e) { return contact_db_service_group_search(0, "x", 20, 0, nullptr, &number, e, 1); }));
    EXPECT_TRUE(invalid([&](int* e) { return contact_db_service_group_search(0, "x", 20, 0, &group, nullptr, e, 1); }));
    EXPECT_FALSE(contact_db_service_contact_add(nullptr, nullptr));
    EXPECT_THAT(difference(contact, contact_record{}), IsEmpty());
    EXPECT_EQ(list, nullptr);
}

TEST_F(ContactErrors, NegativeRoomIsAnInvalidArgument)
{
    int room[1] = {-1}, error = 0, number = -1;
    contact_group_record group = {};
    EXPECT_FALSE(contact_db_service_contact_get_all_indices(0, room, &number, &error));
    EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT);
    EXPECT_FALSE(contact_db_service_group_get_members(0, 0, room, &number, &error));
    EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT);
    EXPECT_FALSE(contact_db_service_group_get_all_records(0, &group, -1, &error));
    EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT);
    EXPECT_FALSE(contact_db_service_group_search(0, "x", 20, 0, &group, &number, &error, 1));
    EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(number, -1);
}

TEST_F(ContactErrors, OtherSearchesThanTheTwoAreInvalidArguments)
{
    contact_group_record group = {};
    int number = 1, error = 0;
    EXPECT_FALSE(contact_db_service_group_search(0, "id >= 1", 20, 0, &group, &number, &error, 0));
    EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT);
    EXPECT_FALSE(contact_db_service_group_search(0, "id >= 0", 20, 0, &group, &number, &error, 2));
    EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT);
}

TEST_F(ContactErrors, CountsThatNoArrayCanHaveStoreNothing)
{
    contact stored = uniform_contact(1);
    const int index = add(stored);
    for (int32_t contact_record::*const number : {&contact_record::phone_count, &contact_record::email_count,
                                                  &contact_record::postal_count, &contact_record::note_size}) {
        for (const int32_t wrong : {-1, INT32_MIN, 1, INT32_MAX}) {
            contact_record broken = {};
            broken.index = 42;
            broken.*number = wrong;
            int error = 0;
            EXPECT_FALSE(contact_db_service_contact_add(&broken, &error)) << wrong;
            EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT) << wrong;
            EXPECT_EQ(broken.index, 42);
            error = 0;
            EXPECT_FALSE(contact_db_service_contact_update(0, index, &broken, &error)) << wrong;
            EXPECT_EQ(error, CONTACT_ERROR_INVALID_ARGUMENT) << wrong;
        }
    }
    EXPECT_EQ(count(), 1);
    EXPECT_THAT(difference(get(index), stored), IsEmpty());
}

TEST_F(ContactErrors, AreWrittenOnlyByAFailure)
{
    int error = 4711, number = 0;
    contact stored("x");
    EXPECT_TRUE(contact_db_service_connect(&error));
    EXPECT_TRUE(contact_db_service_contact_add(&stored, &error));
    EXPECT_TRUE(contact_db_service_contact_get_count(0, &number, &error));
    EXPECT_TRUE(contact_db_service_disconnect(&error));
    EXPECT_EQ(error, 4711);
}

TEST_F(ContactErrors, AFolderThatCannotBeMade)
{
    write_file(store_home(), "a file");
    EXPECT_THAT(codes(), Each(Eq(CONTACT_ERROR_FOLDER)));
    setenv("JSR75_PIM_HOME", (store_home() / "below").c_str(), 1);
    EXPECT_EQ(child_process([] { return code_of_connect(); }).wait(), CONTACT_ERROR_FOLDER);
    EXPECT_EQ(content_of(store_home()), "a file");
}

TEST_F(ContactErrors, AConnectThatFailedIsTriedAgain)
{
    write_file(store_home(), "a file");
    EXPECT_EQ(code_of_connect(), CONTACT_ERROR_FOLDER);
    fs::remove(store_home());
    EXPECT_EQ(code_of_connect(), 0);
    EXPECT_EQ(code_of_add(), 0);
}

// Runs `work` in a child without the rights of the superuser, who may write anywhere.
static int as_ordinary_user(const std::function<int()>& work)
{
    constexpr uid_t nobody = 65534;
    return child_process([&] { return geteuid() == 0 && setresuid(nobody, nobody, nobody) != 0 ? 98 : work(); }).wait();
}

TEST_F(ContactErrors, AFolderThatCannotBeWritten)
{
    fs::permissions(room(), fs::perms(0755));
    fs::create_directory(store_home());
    fs::permissions(store_home(), fs::perms(0555));
    EXPECT_EQ(as_ordinary_user([] { return code_of_connect(); }), CONTACT_ERROR_READ_ONLY);
    EXPECT_EQ(as_ordinary_user([] { return code_of_add(); }), CONTACT_ERROR_READ_ONLY);
    EXPECT_TRUE(fs::is_empty(store_home()));
}

TEST_F(ContactErrors, AFileThatCannotBeWritten)
{
    fs::permissions(room(), fs::perms(0755));
    make_store();
    fs::permissions(store_home(), fs::perms(0777));
    fs::permissions(file(), fs::perms(0444));
    const std::string before = content_of(file());
    EXPECT_EQ(as_ordinary_user([] { return code_of_connect(); }), CONTACT_ERROR_READ_ONLY);
    EXPECT_EQ(as_ordinary_user([] { return code_of_add(); }), CONTACT_ERROR_READ_ONLY);
    EXPECT_TRUE(content_of(file()) == before);
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

TEST_F(ContactErrors, AFullDiskWhileTheStoreIsMade)
{
    for (const rlim_t size : {0u, 5000u, 20000u}) {
        EXPECT_EQ(child_process([size] {
                      limit_files(size);
                      return code_of_connect();
                  }).wait(),
                  CONTACT_ERROR_DISK_FULL)
            << size;
        EXPECT_FALSE(fs::exists(file())) << size;
    }
    EXPECT_EQ(code_of_add(), 0);
}

TEST_F(ContactErrors, AFullDiskLosesNothing)
{
    const int first = add("first");
    get(first);
    limit_files(200000);
    int stored = 1, code;
    while ((code = code_of_add()) == 0) ++stored;
    EXPECT_EQ(code, CONTACT_ERROR_DISK_FULL);
    EXPECT_EQ(code_of_add(), CONTACT_ERROR_DISK_FULL);
    EXPECT_EQ(count(), stored);
    EXPECT_STREQ(get(first).name_info.last_name, "first");
    EXPECT_EQ(child_process([] { return count() & 0xff; }).wait(), stored & 0xff);

    limit_files(RLIM_INFINITY);
    EXPECT_EQ(add("x"), stored + 1);
    EXPECT_EQ(shell().execAndGet("PRAGMA integrity_check").getString(), "ok");
}

TEST_F(ContactErrors, AFileThatIsNoDatabase)
{
    fs::create_directory(store_home());
    for (const std::string& content : {std::string(), std::string("BEGIN:VCARD\n"), std::string(100000, 'x')}) {
        write_file(file(), content);
        expect_refusal_without_a_trace(CONTACT_ERROR_FOREIGN);
    }
}

TEST_F(ContactErrors, AFolderInPlaceOfTheFile)
{
    fs::create_directories(file());
    EXPECT_THAT(codes(), Each(Eq(CONTACT_ERROR_FOREIGN)));
}

TEST_F(ContactErrors, ADatabaseOfSomethingElse)
{
    fs::create_directory(store_home());
    for (const char* mode : {"delete", "wal"}) {
        fs::remove(file());
        {
            SQLite::Database other(file(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            other.exec("PRAGMA journal_mode = " + std::string(mode));
            other.exec("CREATE TABLE contact (record_index INTEGER PRIMARY KEY)");
        }
        expect_refusal_without_a_trace(CONTACT_ERROR_FOREIGN);
    }
}

TEST_F(ContactErrors, AStoreOfANewerVersion)
{
    make_store();
    shell().exec("PRAGMA user_version = 99");
    expect_refusal_without_a_trace(CONTACT_ERROR_NEWER_SCHEMA);
}

TEST_F(ContactErrors, ATruncatedStore)
{
    make_store(50);
    const std::string whole = content_of(file());
    for (const size_t kept : {whole.size() / 2, whole.size() - 4096, size_t{4096}, size_t{1000}, size_t{50}}) {
        const std::string cut = whole.substr(0, kept);
        fs::remove_all(store_home());
        fs::create_directory(store_home());
        write_file(file(), cut);
        const int code = child_process([] { return code_of_add(); }).wait();
        // What is shorter than a header cannot be told from a file that never was a store.
        EXPECT_EQ(code, kept < 100 ? CONTACT_ERROR_FOREIGN : CONTACT_ERROR_CORRUPT) << kept;
        EXPECT_TRUE(content_of(file()) == cut) << kept;
    }
}

TEST_F(ContactErrors, ADamagedPageStopsWritersBeforeTheyWrite)
{
    make_store(300);
    const std::string whole = content_of(file());
    int refused = 0;
    for (size_t page = 1; page * 4096 < whole.size(); page += 3) {
        std::string damaged = whole;
        std::fill_n(damaged.begin() + static_cast<ptrdiff_t>(page * 4096), 4096, '\xff');
        write_file(file(), damaged);
        const int code = in_tidy_child([] { return code_of_add(); });
        // A page may lie free, and its bytes mean nothing then.
        if (code == 0) continue;
        EXPECT_EQ(code, CONTACT_ERROR_CORRUPT) << page;
        EXPECT_TRUE(content_of(file()) == damaged) << page;
        ++refused;
    }
    EXPECT_GT(refused, 5);
}

TEST_F(ContactErrors, DamageThatAReaderMeets)
{
    make_store(300);
    std::string damaged = content_of(file());
    std::fill(damaged.begin() + 4096, damaged.end(), '\xff');
    write_file(file(), damaged);
    EXPECT_EQ(code_of_count(), CONTACT_ERROR_CORRUPT);
    EXPECT_TRUE(content_of(file()) == damaged);
}

TEST_F(ContactErrors, ARestThatDoesNotFitItsRecord)
{
    const int index = add("x");
    for (const char* rest : {"x'ffff0100'", "x'00'", "x'0000ffff00'", "zeroblob(100001)"}) {
        shell().exec("UPDATE contact SET rest = " + std::string(rest));
        contact fetched;
        int error = 0;
        EXPECT_FALSE(contact_db_service_contact_get(0, index, 0, &fetched, &error)) << rest;
        EXPECT_EQ(error, CONTACT_ERROR_CORRUPT) << rest;
    }
}

TEST_F(ContactErrors, RowsThatNoRecordHasRoomFor)
{
    add("x");
    for (const char* row :
         {"contact (record_index) VALUES (0)", "contact (record_index) VALUES (10001)",
          "contact_group (key_index, name) VALUES (-1, 'x')", "contact_group (key_index, name) VALUES (30, 'x')",
          "homepage (record_index, slot) VALUES (1, 5)", "homepage (record_index, slot) VALUES (1, -1)",
          "membership (record_index, key_index) VALUES (1, 71)",
          "membership (record_index, key_index) VALUES (1, -1)"}) {
        SQLite::Database database = shell();
        database.exec("PRAGMA ignore_check_constraints = ON");
        database.exec(std::string("INSERT INTO ") + row);
        const int code = code_of([](int* error) {
            contact fetched;
            return contact_db_service_contact_get(0, 1, 0, &fetched, error);
        });
        EXPECT_EQ(code, CONTACT_ERROR_CORRUPT) << row;
        database.exec(
            "DELETE FROM contact WHERE record_index <> 1; DELETE FROM contact_group; DELETE FROM homepage; "
            "DELETE FROM membership");
    }
    get(1);
}

TEST_F(ContactErrors, RowsOfNobodyAreNobodys)
{
    for (const char* name : {"first", "second", "third"}) add(name);
    remove_contact(2);
    shell().exec("INSERT INTO phone (record_index, position, number) VALUES (0, 0, '0'), (2, 0, '2'), (4, 0, '4')");
    for (const int index : {1, 3}) EXPECT_EQ(get(index).phone_count, 0) << index;
}

TEST_F(ContactErrors, TablesThatAreNotThere)
{
    add("x");
    shell().exec("DROP TABLE phone");
    contact fetched;
    int error = 0;
    EXPECT_FALSE(contact_db_service_contact_get(0, 1, 0, &fetched, &error));
    EXPECT_EQ(error, CONTACT_ERROR_CORRUPT);
}

TEST_F(ContactErrors, AWriterThatAnotherProcessKeepsWaiting)
{
    add("x");
    number_pipe locked, release;
    child_process holder([&] {
        SQLite::Database database = shell();
        database.exec("BEGIN IMMEDIATE");
        locked.send(1);
        int number;
        release.close_sender();
        release.receive(number);
        return 0;
    });
    int number;
    ASSERT_TRUE(locked.receive(number));

    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(code_of_add(), CONTACT_ERROR_LOCKED);
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GT(waited, std::chrono::seconds(4));
    EXPECT_LT(waited, std::chrono::seconds(30));
    EXPECT_EQ(count(), 1);
    release.send(1);
    EXPECT_EQ(holder.wait(), 0);
    EXPECT_EQ(add("y"), 2);
}

TEST_F(ContactErrors, AStoreThatAnotherProcessHasToItself)
{
    make_store();
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
    EXPECT_EQ(code_of_connect(), CONTACT_ERROR_LOCKED);
    holder.kill();
    holder.wait();
    EXPECT_EQ(code_of_add(), 0);
}
