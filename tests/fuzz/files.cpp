// Files of the stand-alone stores with damaged bytes, a missing end, or values in their columns that no store writes.
// Every call answers or fails with a code; a record that is handed out is one; a store that does not open leaves its
// file alone.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <contact_db_service.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <org_db_service.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

void require(bool holds, const char* otherwise)
{
    if (holds) return;
    std::fprintf(stderr, "fuzz: %s\n", otherwise);
    std::abort();
}

// Makes a call, which must either succeed or say why not.
template <typename Call>
bool answered(Call&& call)
{
    int error = 0;
    const bool success = call(&error);
    require(success || error != 0, "a failure without a code");
    return success;
}

template <size_t size>
void put(char (&field)[size], const std::string& text)
{
    std::memset(field, 0, size);
    text.copy(field, size - 1);
}

template <typename Entry>
void require_entries(const Entry* entries, int32_t count, const char* otherwise)
{
    require(count >= 0 && (entries || count == 0), otherwise);
    for (int32_t i = 0; i < count * static_cast<int32_t>(sizeof(Entry)); ++i)
        static_cast<void>(reinterpret_cast<const volatile char*>(entries)[i]);
}

// The index of one of the records that a fresh store holds, or another.
int some_index(FuzzedDataProvider& input)
{
    return input.ConsumeBool() ? input.ConsumeIntegralInRange(1, 3) : input.ConsumeIntegralInRange(-1, 10001);
}

// ---- Contacts ----

bool fetch_contact(int index)
{
    contact_record contact = {};
    const bool fetched =
        answered([&](int* error) { return contact_db_service_contact_get(0, index, 0, &contact, error); });
    require_entries(contact.phone_info, contact.phone_count, "phones that are not there");
    require_entries(contact.email_info, contact.email_count, "e-mails that are not there");
    require_entries(contact.address_info, contact.postal_count, "addresses that are not there");
    require_entries(contact.note, contact.note_size, "a note that is not there");
    contact_db_service_contact_free(&contact);
    return fetched;
}

int add_contact(const std::string& text)
{
    contact_record contact = {};
    contact_phone phone = {};
    contact_address address = {};
    std::string note = text;
    put(contact.name_info.last_name, text);
    put(phone.number, text);
    put(address.street, text);
    contact.phone_info = &phone;
    contact.address_info = &address;
    contact.phone_count = contact.postal_count = 1;
    contact.note = note.data();
    contact.note_size = static_cast<int32_t>(note.size() + 1);
    contact.membership[0] = 1;
    return answered([&](int* error) { return contact_db_service_contact_add(&contact, error); }) ? contact.index : 0;
}

void add_group(const std::string& name)
{
    contact_group_record group = {};
    put(group.name, name);
    answered([&](int* error) { return contact_db_service_group_add(&group, error); });
}

void use_contacts(FuzzedDataProvider& input)
{
    int indices[CONTACT_RECORD_MAX], count = CONTACT_RECORD_MAX;
    if (answered([&](int* error) { return contact_db_service_contact_get_all_indices(0, indices, &count, error); })) {
        require(count > 0 && count <= CONTACT_RECORD_MAX, "a list of no length");
        for (int i = 0; i < std::min(count, 5); ++i) fetch_contact(indices[i]);
    }
    fetch_contact(some_index(input));

    contact_group_record groups[CONTACT_GROUP_MAX] = {};
    int found = CONTACT_GROUP_MAX;
    answered([&](int* error) {
        return contact_db_service_group_search(0, "id >= 0", CONTACT_GROUP_MAX, 0, groups, &found, error, 0);
    });
    count = CONTACT_RECORD_MAX;
    answered([&](int* error) {
        return contact_db_service_group_get_members(0, input.ConsumeIntegralInRange(-1, 71), indices, &count, error);
    });
    GList* without_group = nullptr;
    answered([&](int* error) {
        return contact_db_service_search_contacts_of_no_group(nullptr, 1024, "", 9, &without_group, error);
    });
    g_list_free_full(without_group, std::free);

    if (const int added = add_contact(input.ConsumeRandomLengthString(40))) {
        require(fetch_contact(added), "an added contact that is not there");
        answered([&](int* error) { return contact_db_service_contact_delete(0, added, 0, 0, error); });
    }
    add_group(input.ConsumeRandomLengthString(70));
    answered(
        [&](int* error) { return contact_db_service_group_delete(0, input.ConsumeIntegralInRange(-1, 30), error); });
}

// ---- Events and to-dos ----

class item : public org_full_record {
public:
    item() : org_full_record{}
    {
        for (const auto& [text, limit] : {std::pair(&org_full_record::summary, ORG_SUMMARY_MAX),
                                          std::pair(&org_full_record::description, ORG_DESCRIPTION_MAX),
                                          std::pair(&org_full_record::location, ORG_LOCATION_MAX)})
            this->*text = static_cast<char*>(std::calloc(1, static_cast<size_t>(limit) + 1));
    }
    item(const item&) = delete;
    item& operator=(const item&) = delete;
    ~item() { org_db_service_free_full_record(this, nullptr); }
};

bool fetch_item(int index)
{
    item fetched;
    return answered([&](int* error) { return org_db_service_get_record_full_field_by_index(index, &fetched, error); });
}

int add_item(int type, const std::string& text)
{
    item added;
    text.copy(added.summary, ORG_SUMMARY_MAX);
    text.copy(added.location, ORG_LOCATION_MAX);
    added.start_date_time.time = {1, 2, 3, 4, 5, 100, 0, 0, 0};
    int index = 0;
    return answered([&](int* error) { return org_db_service_add_record_full_field(type, &added, &index, error); })
               ? index
               : 0;
}

void use_items(FuzzedDataProvider& input)
{
    const int type = input.ConsumeBool() ? ORG_TYPE_EVENT : ORG_TYPE_TODO;
    int indices[ORG_RECORD_MAX] = {}, count = 0;
    if (answered([&](int* error) { return org_db_service_get_record_count(0, type, &count, error); }) &&
        answered([&](int* error) { return org_db_service_get_records_id(0, type, ORG_RECORD_MAX, 0, indices, error); }))
        for (int i = 0; i < std::min(count, 5); ++i) fetch_item(indices[i]);
    fetch_item(some_index(input));

    if (const int added = add_item(type, input.ConsumeRandomLengthString(40))) {
        require(fetch_item(added), "an added item that is not there");
        answered([&](int* error) { return org_db_service_delete_record(added, error); });
    }
}

// ---- Their files ----

struct column {
    std::string table, name;
};

struct store {
    const char* file_name;
    std::function<void()> fill;
    int (*connect)(int* error);
    void (*use)(FuzzedDataProvider& input);
    fs::path file = {};
    std::string whole = {}; // The file as a store wrote it.
    std::vector<column> columns = {};
};

store stores[] = {
    {"address.db3",
     [] {
         add_group("Work");
         for (const char* name : {"One", "Two", "Three"}) add_contact(name);
     },
     contact_db_service_connect, use_contacts},
    {"organizer.db3",
     [] {
         add_item(ORG_TYPE_EVENT, "Event");
         add_item(ORG_TYPE_TODO, "To-do");
         add_item(ORG_TYPE_TODO, "Another");
     },
     org_db_service_connect_database, use_items},
};

std::string content_of(const fs::path& file)
{
    std::ifstream from(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(from), {}};
}

// A store has nothing open across a fork, and nothing in memory.
void make_stores_forget()
{
    const pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
}

std::vector<column> columns_of(const fs::path& file)
{
    std::vector<column> columns;
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    const auto take = [](void* into, int, char** values, char**) {
        static_cast<std::vector<column>*>(into)->push_back({values[0], values[1]});
        return 0;
    };
    sqlite3_exec(database,
                 "SELECT t.name, c.name FROM sqlite_schema t, pragma_table_info(t.name) c WHERE t.type = 'table'", take,
                 &columns, nullptr);
    sqlite3_close(database);
    return columns;
}

void damage(FuzzedDataProvider& input, std::string& content)
{
    for (int i = input.ConsumeIntegralInRange(0, 8); i > 0; --i)
        content[input.ConsumeIntegralInRange<size_t>(0, content.size() - 1)] = input.ConsumeIntegral<char>();
    if (input.ConsumeIntegralInRange(0, 7) == 7)
        content.resize(input.ConsumeIntegralInRange<size_t>(0, content.size()));
}

void bind_some_value(FuzzedDataProvider& input, sqlite3_stmt* statement)
{
    const std::string bytes = input.ConsumeRandomLengthString(300);
    switch (input.ConsumeIntegralInRange(0, 4)) {
    case 0: sqlite3_bind_null(statement, 1); break;
    case 1: sqlite3_bind_int64(statement, 1, input.ConsumeIntegral<int64_t>()); break;
    case 2: sqlite3_bind_double(statement, 1, input.ConsumeFloatingPoint<double>()); break;
    case 3: sqlite3_bind_text(statement, 1, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT); break;
    default: sqlite3_bind_blob(statement, 1, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT); break;
    }
}

// Whether a column takes a value is left to SQLite.
void put_strange_values(FuzzedDataProvider& input, const store& store)
{
    sqlite3* database = nullptr;
    sqlite3_open(store.file.c_str(), &database);
    sqlite3_exec(database, "PRAGMA ignore_check_constraints = ON; PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    for (int i = input.ConsumeIntegralInRange(0, 4); i > 0; --i) {
        const column& where = store.columns[input.ConsumeIntegralInRange<size_t>(0, store.columns.size() - 1)];
        const std::string sql = "UPDATE OR IGNORE " + where.table + " SET " + where.name + " = ?1";
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) continue;
        bind_some_value(input, statement);
        sqlite3_step(statement);
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
}

} // namespace

// A fork copies the tables of all memory, and what was freed lately is part of it.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() // NOLINT(bugprone-reserved-identifier): the sanitizer's name.
{
    return "quarantine_size_mb=1";
}

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    std::string folder = fs::temp_directory_path() / "jsr75-fuzz-XXXXXX";
    require(mkdtemp(folder.data()) != nullptr, "no temporary folder");
    static const struct folder_of_this_process {
        fs::path path;
        ~folder_of_this_process() { fs::remove_all(path); }
    } home = {folder};
    setenv("JSR75_PIM_HOME", home.path.c_str(), 1);
    setenv("JSR75_PIM_TRACE", "off", 1);
    for (store& each : stores) {
        each.fill();
        each.file = home.path / each.file_name;
        make_stores_forget();
        each.whole = content_of(each.file);
        each.columns = columns_of(each.file);
        require(!each.whole.empty() && !each.columns.empty(), "no store to begin with");
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const store& store = stores[input.ConsumeBool()];
    std::string content = store.whole;
    const bool damaged = input.ConsumeBool();
    if (damaged) damage(input, content);
    for (const char* suffix : {"", "-wal", "-shm"}) fs::remove(store.file.string() + suffix);
    std::ofstream(store.file, std::ios::binary) << content;
    if (!damaged) put_strange_values(input, store);

    if (answered(store.connect))
        store.use(input);
    else
        require(!damaged || content_of(store.file) == content, "a file that was refused and changed");
    make_stores_forget();
    return 0;
}
