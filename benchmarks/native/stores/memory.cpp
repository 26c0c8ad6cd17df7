// What 10,000 contacts cost in memory once they have been read, and what 100,000 calls after that leave behind.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <span>
#include <string>
#include <vector>

#include <malloc.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench_folder.h"
#include "commit_values.h"
#include "fake_jni.h"
#include "natives.h"
#include "pimcodes.h"
#include "samples.h"

static constexpr int RECORDS = 10000;
static constexpr int CALLS = 100000;
static constexpr int WARM_UP_CALLS = 20000;
static constexpr int LINES = 10; // Of the report on the calls.

// Records that commits change. All of them are changed before the calls that count, so that no record has another size
// after those than before.
static constexpr int CHANGED_RECORDS = 200;
static constexpr int VERSIONS = 100;

// Some natives write to standard output, which is not where the report goes.
static FILE* report = nullptr;

static void divert_console()
{
    report = fdopen(dup(STDOUT_FILENO), "w");
    demand(report != nullptr && std::freopen("/dev/null", "w", stdout) != nullptr, "standard output");
}

// ---- Looking --------------------------------------------------------------------------------------------------------

struct memory_use {
    long resident;  // Bytes, as the system counts.
    long allocated; // Bytes in blocks that malloc() has handed out.
    long of_sqlite; // Of these, what SQLite has.
};

static memory_use memory_now()
{
    FILE* file = std::fopen("/proc/self/statm", "r");
    demand(file != nullptr, "/proc/self/statm");
    std::array<char, 64> line = {};
    demand(std::fgets(line.data(), line.size(), file) != nullptr, "/proc/self/statm");
    std::fclose(file);
    char* rest = nullptr;
    std::strtol(line.data(), &rest, 10); // Pages of address space; those resident are next.
    const struct mallinfo2 blocks = mallinfo2();
    return {std::strtol(rest, nullptr, 10) * sysconf(_SC_PAGESIZE), static_cast<long>(blocks.uordblks + blocks.hblkhd),
            static_cast<long>(sqlite3_memory_used())};
}

static void print(const char* when, const memory_use& now, const memory_use& since)
{
    const auto in_kib = [](long bytes) { return static_cast<double>(bytes) / 1024; };
    std::fprintf(report, "%-32s %+10.0f KiB resident %+10.1f KiB allocated, of these %+8.1f KiB SQLite's\n", when,
                 in_kib(now.resident - since.resident), in_kib(now.allocated - since.allocated),
                 in_kib(now.of_sqlite - since.of_sqlite));
    std::fflush(report);
}

// ---- Calls ----------------------------------------------------------------------------------------------------------

static void fetch_from_store(int32_t recindex)
{
    owned_contact contact;
    int error = 0;
    demand(contact_db_service_contact_get(0, recindex, 0, &contact, &error) != 0, "contact_get");
}

static void list_of_store()
{
    static std::array<int32_t, CONTACT_RECORD_MAX> indices;
    int count = CONTACT_RECORD_MAX, error = 0;
    demand(contact_db_service_contact_get_all_indices(0, indices.data(), &count, &error) != 0 && count == RECORDS,
           "get_all_indices");
    count = CONTACT_RECORD_MAX;
    demand(contact_db_service_group_get_members(0, 0, indices.data(), &count, &error) != 0 && count > 0, "members");
}

static void commit_to_store(int32_t recindex, int version)
{
    owned_contact contact = sample_contact(recindex, version);
    int error = 0;
    demand(contact_db_service_contact_update(0, recindex, &contact, &error) != 0, "contact_update");
}

static void fetch_from_product(fake_jni& jni, int32_t recindex)
{
    auto* const email =
        Java_com_qvr_zek_pim_PIMItemImpl_getStringN(jni.env(), nullptr, LIST_CONTACT, 0, recindex, CONTACT_EMAIL, 0);
    demand(email != nullptr && !jni.text(email).empty(), "getStringN");
}

static void walk_product(fake_jni& jni, int32_t recindex)
{
    const jint next = Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, LIST_CONTACT, 0, recindex);
    demand(next == (recindex == RECORDS ? NO_RECORD : recindex + 1), "nextRecordN");
}

static void search_product(fake_jni& jni)
{
    demand(Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(jni.env(), nullptr, LIST_CONTACT, 0, NO_RECORD,
                                                                    jni.string("no contact says this")) == NO_RECORD,
           "nextRecordWithMatchStrN");
}

static void commit_to_product(fake_jni& jni, int32_t recindex, int version)
{
    const owned_contact contact = sample_contact(recindex, version);
    commit_values values;
    values.texts(CONTACT_NAME, {contact.name_info.last_name, contact.name_info.first_name})
        .text(CONTACT_TEL, contact.phone_info[0].number, ATTR_HOME, 0)
        .text(CONTACT_TEL, contact.phone_info[1].number, ATTR_WORK, 1)
        .text(CONTACT_EMAIL, contact.email_info[0].email, ATTR_EMAIL_PRIVATE)
        .text(CONTACT_ORG, contact.company_name)
        .text(CONTACT_TITLE, contact.job_title)
        .text(CONTACT_NOTE, contact.note);
    demand(values.commit(jni, LIST_CONTACT, recindex) == recindex, "commitN");
}

// As many of each as make a minute or two: commits wait for the disk, searches look at every contact.
static void mixed_call(std::minstd_rand& random)
{
    const auto recindex = static_cast<int32_t>(1 + random() % RECORDS);
    const auto changed = static_cast<int32_t>(1 + random() % CHANGED_RECORDS);
    const auto version = static_cast<int>(random() % VERSIONS);
    const auto kind = random() % 1000;
    fake_jni jni; // Goes with the call, so that what it keeps does.
    if (kind < 5) return search_product(jni);
    if (kind < 25) return commit_to_product(jni, changed, version);
    if (kind < 45) return commit_to_store(changed, version);
    if (kind < 145) return list_of_store();
    if (kind < 345) return walk_product(jni, recindex);
    if (kind < 645) return fetch_from_product(jni, recindex);
    fetch_from_store(recindex);
}

// ---- Reports --------------------------------------------------------------------------------------------------------

// In a process of its own, which takes its memory along.
static void fill(const bench_folder& folder)
{
    const pid_t child = fork();
    demand(child >= 0, "fork");
    if (child == 0) {
        folder.fill(RECORDS);
        std::_Exit(0);
    }
    int status = 0;
    demand(waitpid(child, &status, 0) == child && status == 0, "filling the store");
}

static void report_snapshot()
{
    const memory_use before = memory_now();
    int error = 0;
    demand(contact_db_service_connect(&error) != 0, "connect");
    print("connected", memory_now(), before);
    for (int32_t recindex = 1; recindex <= RECORDS; ++recindex) fetch_from_store(recindex);
    print("all contacts loaded", memory_now(), before);
}

static void report_calls()
{
    std::minstd_rand random; // NOLINT(cert-msc32-c,cert-msc51-cpp): the same calls each time.
    for (int call = 0; call < WARM_UP_CALLS; ++call) mixed_call(random);
    const memory_use before = memory_now();
    for (int call = 1; call <= CALLS; ++call) {
        mixed_call(random);
        if (call % (CALLS / LINES) == 0) print((std::to_string(call) + " calls").c_str(), memory_now(), before);
    }
}

// What malloc() keeps back for a thread's next calls would count as handed out, and grow for a long while.
static void run_without_thread_cache(char** arguments)
{
    static constexpr char TUNABLES[] = "GLIBC_TUNABLES";
    if (getenv(TUNABLES) != nullptr) return;
    setenv(TUNABLES, "glibc.malloc.tcache_count=0", 1);
    execv("/proc/self/exe", arguments);
    give_up("execv");
}

int main(int, char** argv)
{
    run_without_thread_cache(argv);
    const bench_folder folder;
    divert_console();
    fill(folder);
    std::fprintf(report, "%d contacts, beside a process that has not read yet:\n", RECORDS);
    report_snapshot();
    std::fprintf(report, "mixed calls, beside the process after %d of them:\n", WARM_UP_CALLS);
    report_calls();
    return 0;
}
