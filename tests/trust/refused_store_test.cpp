// Stores that cannot be used: what keeps them from it is traced with its own code, and their files stay as they are.
#include <java_printf_handler.h>
#include <sqlite3.h>
#include <stdarg.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <regex>

#include "commit_values.h"
#include "failing_vfs.h"
#include "natives.h"
#include "pimcodes.h"
#include "store_test.h"

using namespace store_test;

namespace {

// ---- Stores, by the list that they serve ----------------------------------------------------------------------------

struct served_list {
    const char* name;
    int listtype;
    const char* file_name;
};
const served_list LISTS[] = {{"Contacts", LIST_CONTACT, "address.db3"}, {"ToDos", LIST_TODO, "organizer.db3"}};

int add_record(fake_jni& jni, int listtype)
{
    commit_values values;
    if (listtype == LIST_CONTACT)
        values.texts(CONTACT_NAME, {"a", "b"}).text(CONTACT_NOTE, std::string(200, 'x'));
    else
        values.text(TODO_SUMMARY, std::string(200, 'x'));
    return values.commit(jni, listtype, -1);
}

int first_record(fake_jni& jni, int listtype)
{
    return Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, listtype, 0, -1);
}

// ---- What keeps a store from being used -----------------------------------------------------------------------------

struct place {
    fs::path home;
    fs::path file;
};

constexpr size_t page_size = 4096;

void overwrite_after_the_first_page(const fs::path& file)
{
    std::string content = content_of(file);
    std::fill(content.begin() + page_size, content.end(), '\xff');
    write_file(file, content);
}

struct obstacle {
    const char* name;
    int code; // CONTACT_ERROR_... or ORG_ERR_..., which agree.
    bool stops_readers;
    void (*arrange)(const place&); // Before any process opens the store.
    void (*enter)();               // In the process that then does.
};

void nothing() {}

void become_an_ordinary_user()
{
    constexpr uid_t nobody = 65534;
    if (geteuid() == 0 && setresuid(nobody, nobody, nobody) != 0) _exit(98);
}

void fill_the_disk()
{
    failing_vfs::install();
    failing_vfs::arm({file_call::write, SQLITE_FULL, ENOSPC, 1, true});
}

const obstacle OBSTACLES[] = {
    {"AFullDisk", 107, false, [](const place&) {}, fill_the_disk},
    {"AFolderThatCannotBeWritten", 106, true, [](const place& at) { fs::permissions(at.home, fs::perms(0555)); },
     become_an_ordinary_user},
    {"AFolderThatCannotBeMade", 105, true,
     [](const place& at) {
         fs::remove_all(at.home);
         write_file(at.home, "a file");
     },
     nothing},
    {"ADamagedFile", 109, true, [](const place& at) { overwrite_after_the_first_page(at.file); }, nothing},
    {"ATruncatedFile", 109, true,
     [](const place& at) { write_file(at.file, content_of(at.file).substr(0, 2 * page_size)); }, nothing},
    {"AFileOfSomethingElse", 110, true, [](const place& at) { write_file(at.file, "BEGIN:VCARD\n"); }, nothing},
    {"ANewerVersion", 111, true,
     [](const place& at) { SQLite::Database(at.file, SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 99"); },
     nothing},
    {"ALockOfAnotherProcess", 108, false, [](const place&) {}, nothing},
};

// ---- Traces ---------------------------------------------------------------------------------------------------------

int awaited_code = 0;
bool code_was_traced = false;

int look_for_the_code(const char*, int, const char*, int, int severity, const char* format, ...)
{
    if (severity == JAVA_PRINTF_ORDINARY) return 0;
    char message[512];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    code_was_traced |= std::regex_search(message, std::regex("\\b" + std::to_string(awaited_code) + "\\b"));
    return 0;
}

// ---- Tests ----------------------------------------------------------------------------------------------------------

class RefusedStore : public StoreTest, public testing::WithParamInterface<std::tuple<served_list, obstacle>> {};

// How they show in a test's name.
void PrintTo(const served_list& list, std::ostream* out)
{
    *out << list.name;
}
void PrintTo(const obstacle& obstacle, std::ostream* out)
{
    *out << obstacle.name;
}

// Keeps all other processes from writing until this one is killed.
int keep_locked(const fs::path& file, const number_pipe& locked)
{
    SQLite::Database database(file, SQLite::OPEN_READWRITE, 5000);
    database.exec("BEGIN IMMEDIATE");
    locked.send(1);
    pause();
    return 0;
}

} // namespace

TEST_P(RefusedStore, IsTracedAndStaysAsItIs)
{
    const served_list& list = std::get<0>(GetParam());
    const obstacle& in_the_way = std::get<1>(GetParam());
    const place at = {store_home(), store_home() / list.file_name};
    const auto fill = [&] {
        fake_jni jni;
        for (int i = 0; i < 40; ++i)
            if (add_record(jni, list.listtype) < 1) return 1;
        return 0;
    };
    ASSERT_EQ(in_tidy_child(fill), 0);
    fs::permissions(room(), fs::perms(0755));
    fs::permissions(at.file, fs::perms(0666));
    in_the_way.arrange(at);
    const std::string before = content_of(at.file);

    number_pipe locked;
    std::unique_ptr<child_process> holder;
    if (in_the_way.code == 108) {
        holder = std::make_unique<child_process>([&] { return keep_locked(at.file, locked); });
        int number = 0;
        ASSERT_TRUE(locked.receive(number));
    }

    const auto is_refused = [&](auto&& call) {
        return child_process([&] {
                   in_the_way.enter();
                   java_printf_handler = look_for_the_code;
                   awaited_code = in_the_way.code;
                   fake_jni jni;
                   if (call(jni) > 0) return 1;
                   return code_was_traced ? 0 : 2;
               })
            .wait();
    };
    EXPECT_EQ(is_refused([&](fake_jni& jni) { return add_record(jni, list.listtype); }), 0);
    if (in_the_way.stops_readers) {
        EXPECT_EQ(is_refused([&](fake_jni& jni) { return first_record(jni, list.listtype); }), 0);
    }
    EXPECT_TRUE(content_of(at.file) == before);
}

INSTANTIATE_TEST_SUITE_P(, RefusedStore, testing::Combine(testing::ValuesIn(LISTS), testing::ValuesIn(OBSTACLES)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) + "Behind" + std::get<1>(row.param).name;
                         });
