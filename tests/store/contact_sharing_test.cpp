// Threads and processes on one store.

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>

#include "contact_fixture.h"

using namespace store_test;

class ContactSharing : public ContactStore {};

TEST_F(ContactSharing, ACommitIsSeenAtOnceByAnotherProcess)
{
    constexpr int rounds = 100;
    number_pipe to_child, to_parent;
    child_process writer([&] {
        to_child.close_sender();
        for (int round; to_child.receive(round);) {
            contact stored = uniform_contact(round);
            if (round == 1)
                add(stored);
            else
                update(1, stored);
            to_parent.send(round);
        }
        return HasFailure() ? 1 : 0;
    });
    to_child.close_receiver();
    EXPECT_EQ(count(), 0);
    for (int round = 1; round <= rounds; ++round) {
        to_child.send(round);
        int done = 0;
        ASSERT_TRUE(to_parent.receive(done));
        ASSERT_EQ(number_of(get(1)), round);
    }
    to_child.close_sender();
    EXPECT_EQ(writer.wait(), 0);
}

TEST_F(ContactSharing, ACommitIsSeenAtOnceByAnotherThread)
{
    contact first = uniform_contact(0);
    add(first);
    std::atomic<int> committed = 0;
    std::atomic<int> stale = 0, torn = 0;
    constexpr int rounds = 200;
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i)
        readers.emplace_back([&] {
            for (int before = 0; before < rounds;) {
                before = committed;
                const int number = number_of(get(1));
                if (number < 0) ++torn;
                if (number < before) ++stale;
            }
        });
    for (int round = 1; round <= rounds; ++round) {
        contact next = uniform_contact(round);
        update(1, next);
        committed = round;
    }
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(stale, 0);
}

// Adds, rewrites and removes contacts of its own, reads everybody's, and counts what must not be. Sends the index of
// each add.
static int mixed_work(unsigned seed, int rounds, const number_pipe& added)
{
    std::mt19937 random(seed);
    std::vector<int> own;
    int wrong = 0;
    for (int round = 0; round < rounds; ++round) {
        int error = 0;
        if (own.size() < 5 || random() % 4 == 0) {
            contact stored = uniform_contact(static_cast<int>(random() % 1000000));
            if (!contact_db_service_contact_add(&stored, &error)) {
                ++wrong;
                continue;
            }
            own.push_back(stored.index);
            added.send(stored.index);
        } else {
            contact changed = uniform_contact(static_cast<int>(random() % 1000000));
            const int index = own[random() % own.size()];
            wrong += !contact_db_service_contact_update(0, index, &changed, &error);
            wrong += !difference(get(index), changed).empty();
        }
        if (random() % 8 == 0) {
            wrong += !contact_db_service_contact_delete(0, own.back(), 0, 0, &error);
            wrong += exists(own.back());
            own.pop_back();
        }
        for (const int index : indices()) {
            contact fetched;
            if (contact_db_service_contact_get(0, index, 0, &fetched, &error))
                wrong += number_of(fetched) < 0;
            else
                wrong += error != CONTACT_ERROR_NOT_FOUND;
        }
    }
    const std::vector<int> left = indices();
    for (const int index : own) wrong += !std::binary_search(left.begin(), left.end(), index);
    return wrong;
}

TEST_F(ContactSharing, ThreadsAndProcessesLoseNothingAndGetNoIndexTwice)
{
    constexpr int processes = 3, threads = 3, rounds = 40;
    number_pipe added;
    std::vector<std::unique_ptr<child_process>> children;
    for (unsigned seed = 0; seed < processes; ++seed)
        children.push_back(std::make_unique<child_process>([&added, seed] {
            std::atomic<int> wrong = 0;
            std::vector<std::thread> workers;
            for (unsigned worker = 0; worker < threads; ++worker)
                workers.emplace_back([&, worker] { wrong += mixed_work(seed * 100 + worker, rounds, added); });
            for (std::thread& worker : workers) worker.join();
            return wrong < 90 && !HasFailure() ? wrong.load() : 90;
        }));
    added.close_sender();
    std::set<int> given;
    int additions = 0;
    for (int index; added.receive(index); ++additions) given.insert(index);
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
    EXPECT_EQ(given.size(), static_cast<size_t>(additions));
    EXPECT_GE(additions, processes * threads * 5);
    EXPECT_EQ(shell().execAndGet("PRAGMA integrity_check").getString(), "ok");
    std::cout << additions << " contacts added by " << processes * threads << " threads\n";
}

TEST_F(ContactSharing, AKilledWriterLosesNothingThatHadReturned)
{
    constexpr int kills = 30;
    std::mt19937 random(3);
    std::vector<int> promised;
    int in_flight = 0;
    for (int kill = 0; kill < kills; ++kill) {
        number_pipe committed;
        child_process writer([&committed]() -> int {
            while (true) {
                contact stored = uniform_contact(count());
                committed.send(add(stored));
            }
        });
        committed.close_sender();
        int index = 0;
        ASSERT_TRUE(committed.receive(index));
        promised.push_back(index);
        usleep(static_cast<useconds_t>(random() % 20000));
        writer.kill();
        EXPECT_EQ(writer.wait(), -1);
        while (committed.receive(index)) promised.push_back(index);

        // Each time a new process, so that each time the file alone speaks.
        const auto is_all_there = [&] {
            const std::vector<int> there = indices();
            int lost = 0;
            for (const int wanted : promised)
                lost += !std::binary_search(there.begin(), there.end(), wanted) || number_of(get(wanted)) != wanted - 1;
            const auto more = there.size() - promised.size();
            if (more > static_cast<size_t>(kill) + 1) return 91;
            return lost > 0 || HasFailure() ? 92 : static_cast<int>(more);
        };
        in_flight = child_process(is_all_there).wait();
        ASSERT_LE(in_flight, kill + 1) << "kill " << kill;
        ASSERT_GE(in_flight, 0);
    }
    EXPECT_EQ(shell().execAndGet("PRAGMA integrity_check").getString(), "ok");
    EXPECT_EQ(count(), static_cast<int>(promised.size()) + in_flight);
    std::cout << promised.size() << " commits, " << kills << " kills, 0 lost, " << in_flight
              << " more than had returned\n";
}

TEST_F(ContactSharing, ProcessesThatEditGroupsAgreeOnTheirMembers)
{
    const int group = add_group("a");
    constexpr int rounds = 60;
    child_process editor([&] {
        for (int round = 0; round < rounds; ++round) {
            contact stored("x");
            stored.membership[group] = static_cast<unsigned char>(round % 2);
            if (round == 0)
                add(stored);
            else
                update(1, stored);
        }
        return HasFailure() ? 1 : 0;
    });
    int own = 0;
    for (int round = 0; round < rounds; ++round) {
        contact stored("y");
        stored.membership[group] = 1;
        own = add(stored);
        const std::vector<int> here = members(group);
        EXPECT_TRUE(std::binary_search(here.begin(), here.end(), own));
    }
    EXPECT_EQ(editor.wait(), 0);
    for (const int index : indices()) {
        const std::vector<int> here = members(group);
        EXPECT_EQ(std::binary_search(here.begin(), here.end(), index), get(index).membership[group] != 0) << index;
    }
}
