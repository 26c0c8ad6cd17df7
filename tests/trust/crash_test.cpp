// Kills processes in the middle of commits and holds the stores to what commitN had promised them:
//
//   crash_test [kills [seed]]      100 kills and a random seed unless named
//
// Several writers at a time add, change and remove contacts, events and to-dos through the natives, and tell of each
// commit once it has returned. After they are killed, a process that starts afresh must find every record as promised;
// of each writer one operation more may have been done, the one that it did not live to tell of.
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>

#include "commit_values.h"
#include "natives.h"
#include "pimcodes.h"

namespace {

namespace fs = std::filesystem;

constexpr int WRITERS = 3;
constexpr int LISTS[] = {LIST_CONTACT, LIST_EVENT, LIST_TODO};

// What a record holds: a number that every one of its values repeats.
constexpr int GONE = -1;
constexpr int TORN = -2;

struct promise {
    int listtype;
    int index;
    int number; // Or GONE.
};

// Records by list type and index.
using contents = std::map<std::pair<int, int>, int>;

[[noreturn]] void fail(const std::string& what)
{
    std::printf("crash test: %s\n", what.c_str());
    std::exit(1);
}

// ---- Records through the natives ----

int commit(fake_jni& jni, int listtype, int index, int number)
{
    const std::string text = std::to_string(number);
    commit_values values;
    switch (listtype) {
    case LIST_CONTACT:
        values.texts(CONTACT_NAME, {text, text}).text(CONTACT_TEL, text).text(CONTACT_NOTE, text);
        values.text(CONTACT_ORG, text).number(CONTACT_BIRTHDAY, int64_t{1000} * number);
        break;
    case LIST_EVENT:
        values.text(EVENT_SUMMARY, text).text(EVENT_NOTE, text).text(EVENT_LOCATION, text);
        values.number(EVENT_START, int64_t{1000} * number).number(EVENT_END, int64_t{1000} * number);
        break;
    default: values.text(TODO_SUMMARY, text).text(TODO_NOTE, text).number(TODO_DUE, int64_t{1000} * number); break;
    }
    const int committed = values.commit(jni, listtype, index);
    jni.leave_native();
    return committed;
}

int number_in(fake_jni& jni, int listtype, int index)
{
    struct {
        int listtype;
        std::vector<int> texts;
        int date;
    } const rows[] = {
        {LIST_CONTACT, {CONTACT_NOTE, CONTACT_ORG}, CONTACT_BIRTHDAY},
        {LIST_EVENT, {EVENT_SUMMARY, EVENT_NOTE, EVENT_LOCATION}, EVENT_START},
        {LIST_TODO, {TODO_SUMMARY, TODO_NOTE}, TODO_DUE},
    };
    std::set<std::string> seen;
    for (const auto& row : rows) {
        if (row.listtype != listtype) continue;
        for (const int field : row.texts) {
            jstring text =
                Java_com_qvr_zek_pim_PIMItemImpl_getStringN(jni.env(), nullptr, listtype, 0, index, field, 0);
            if (text == nullptr) return GONE;
            seen.insert(jni.text(text));
        }
        const jlong date =
            Java_com_qvr_zek_pim_PIMItemImpl_getDateN(jni.env(), nullptr, listtype, 0, index, row.date, 0);
        seen.insert(std::to_string(date / 1000));
    }
    if (listtype == LIST_CONTACT) {
        // A changed contact keeps its telephone numbers and gets one more, the last is the newest.
        const int numbers =
            Java_com_qvr_zek_pim_PIMItemImpl_countValuesN(jni.env(), nullptr, listtype, 0, index, CONTACT_TEL);
        if (numbers < 15) { // A full record takes no more.
            jstring last = Java_com_qvr_zek_pim_PIMItemImpl_getStringN(jni.env(), nullptr, listtype, 0, index,
                                                                       CONTACT_TEL, numbers - 1);
            seen.insert(last == nullptr ? "" : jni.text(last));
        }
    }
    jni.leave_native();
    return seen.size() == 1 ? std::stoi(*seen.begin()) : TORN;
}

contents everything(fake_jni& jni)
{
    contents found;
    for (const int listtype : LISTS)
        for (int index = -1;;) {
            index = Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, listtype, 0, index);
            if (index == -1) break;
            found[{listtype, index}] = number_in(jni, listtype, index);
        }
    return found;
}

// ---- Processes ----

template <typename Message>
void send(int pipe, const Message& message)
{
    if (write(pipe, &message, sizeof message) != sizeof message) _exit(3);
}

template <typename Message>
bool receive(int pipe, Message& message)
{
    return read(pipe, &message, sizeof message) == static_cast<ssize_t>(sizeof message);
}

struct process {
    pid_t id;
    int answers;
};

process start(const std::function<void(int answers)>& work)
{
    int ends[2];
    if (pipe(ends) != 0) fail("no pipe");
    std::fflush(nullptr);
    const pid_t id = fork();
    if (id < 0) fail("no process");
    if (id == 0) {
        close(ends[0]);
        work(ends[1]);
        _exit(0);
    }
    close(ends[1]);
    return {id, ends[0]};
}

// Adds, changes and removes its own records until it is killed.
void write_on(int answers, std::vector<std::pair<int, int>> own, unsigned seed, int first_number)
{
    std::mt19937 random(seed);
    fake_jni jni;
    for (int number = first_number;; ++number) {
        const auto choice = own.size() < 20 ? 0 : random() % 10;
        if (choice < 5) {
            const int listtype = LISTS[random() % std::size(LISTS)];
            const int index = commit(jni, listtype, -1, number);
            if (index < 1) _exit(4);
            own.emplace_back(listtype, index);
            send(answers, promise{listtype, index, number});
            continue;
        }
        const size_t which = random() % own.size();
        const auto [listtype, index] = own[which];
        if (choice < 7) {
            if (commit(jni, listtype, index, number) != index) _exit(5);
            send(answers, promise{listtype, index, number});
        } else {
            if (Java_com_qvr_zek_pim_PIMListImpl_removeItemN(jni.env(), nullptr, listtype, 0, index) != 1) _exit(6);
            own.erase(own.begin() + static_cast<ptrdiff_t>(which));
            send(answers, promise{listtype, index, GONE});
        }
    }
}

// What a process finds that has seen nothing of the stores but their files.
contents what_a_new_process_finds()
{
    const process reader = start([](int answers) {
        fake_jni jni;
        for (const auto& [key, number] : everything(jni)) send(answers, promise{key.first, key.second, number});
        send(answers, promise{0, 0, 0});
    });
    contents found;
    bool whole = false;
    for (promise each = {}; !whole && receive(reader.answers, each);) {
        whole = each.listtype == 0;
        if (!whole) found[{each.listtype, each.index}] = each.number;
    }
    close(reader.answers);
    int status = 0;
    waitpid(reader.id, &status, 0);
    if (!whole || status != 0) fail("the reader did not get to its end");
    return found;
}

void require_intact_files(const fs::path& home)
{
    for (const char* name : {"address.db3", "organizer.db3"}) {
        if (!fs::exists(home / name)) continue;
        SQLite::Database file((home / name).string(), SQLite::OPEN_READWRITE);
        file.setBusyTimeout(5000);
        const std::string verdict = file.execAndGet("PRAGMA integrity_check").getString();
        if (verdict != "ok") fail(std::string(name) + ": " + verdict);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const int kills = argc > 1 ? std::atoi(argv[1]) : 100;
    const unsigned seed = argc > 2 ? static_cast<unsigned>(std::atol(argv[2])) : std::random_device()();
    std::printf("crash test: seed %u\n", seed);
    std::mt19937 random(seed);

    std::string home = fs::temp_directory_path() / "jsr75-crash-XXXXXX";
    if (mkdtemp(home.data()) == nullptr) fail("no folder");
    setenv("JSR75_PIM_HOME", home.c_str(), 1);

    contents promised;
    std::map<std::pair<int, int>, int> owners;
    int killed = 0, returned = 0, unreported = 0;
    for (int number = 0; killed < kills;) {
        std::array<process, WRITERS> writers = {};
        for (int writer = 0; writer < WRITERS; ++writer) {
            std::vector<std::pair<int, int>> own;
            for (const auto& [key, content] : promised)
                if (owners[key] == writer) own.push_back(key);
            const unsigned writers_seed = static_cast<unsigned>(random());
            writers[static_cast<size_t>(writer)] =
                start([=](int answers) { write_on(answers, own, writers_seed, number + writer * 100000); });
        }
        number += WRITERS * 100000;

        // Each is at work before the first one dies.
        std::array<std::vector<promise>, WRITERS> told;
        for (size_t writer = 0; writer < WRITERS; ++writer)
            if (promise first = {}; receive(writers[writer].answers, first)) told[writer].push_back(first);
        for (const process& writer : writers) {
            usleep(static_cast<useconds_t>(random() % 15000));
            kill(writer.id, SIGKILL);
        }
        for (size_t writer = 0; writer < WRITERS; ++writer) {
            for (promise next = {}; receive(writers[writer].answers, next);) told[writer].push_back(next);
            close(writers[writer].answers);
            int status = 0;
            waitpid(writers[writer].id, &status, 0);
            if (!WIFSIGNALED(status)) fail("a writer ended by itself: " + std::to_string(WEXITSTATUS(status)));
            ++killed;
            for (const promise& each : told[writer]) {
                ++returned;
                const std::pair key(each.listtype, each.index);
                const int owner = static_cast<int>(writer);
                if (each.number != GONE) {
                    owners[key] = owner;
                    promised[key] = each.number;
                } else if (owners[key] == owner) { // Otherwise the index has been given to another record since.
                    promised.erase(key);
                }
            }
        }

        const contents found = what_a_new_process_finds();
        int different = 0;
        for (const auto& [key, content] : promised) different += found.contains(key) ? found.at(key) != content : 1;
        for (const auto& [key, content] : found) {
            if (content == TORN) fail("a torn record, index " + std::to_string(key.second));
            different += !promised.contains(key);
            if (!promised.contains(key)) owners[key] = 0;
        }
        if (different > WRITERS)
            fail(std::to_string(different - WRITERS) + " records lost after " + std::to_string(killed) + " kills");
        unreported += different;
        promised = found;
        require_intact_files(home);
    }
    fs::remove_all(home);
    std::printf(
        "crash test: %d kills of %d writers at a time, %d commits and removals had returned, 0 lost, 0 torn, "
        "%d in flight were done\n",
        killed, WRITERS, returned, unreported);
    return 0;
}
