// store_test.h: a fresh folder for a store, and helpers around its files.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace store_test {

namespace fs = std::filesystem;

// Gives the process a temporary folder and names one inside it, which does not exist yet, as the store's.
class StoreTest : public testing::Test {
protected:
    StoreTest();
    ~StoreTest() override;

    const fs::path& room() const { return room_; }          // The temporary folder.
    fs::path store_home() const { return room_ / "store"; } // $JSR75_PIM_HOME

private:
    fs::path room_;
};

std::string content_of(const fs::path& file);
void write_file(const fs::path& file, const std::string& content);

// Permission bits, as in 0600.
unsigned mode_of(const fs::path& path);

// The statements that made a database's tables and triggers, in order of their names.
std::vector<std::string> schema_of(SQLite::Database& database);

// A child process running `work`, whose result, 0..255, is its exit status. It shares no store with this process
// and leaves by _exit, as if killed: without any tidying up.
class child_process {
public:
    explicit child_process(const std::function<int()>& work);
    child_process(const child_process&) = delete;
    child_process& operator=(const child_process&) = delete;
    ~child_process();

    // Waits for its end. -1 when a signal ended it.
    int wait();
    void kill();

private:
    pid_t id_;
};

// Runs `work` in a child that leaves by exit(), with everything closed that a process closes at its end.
int in_tidy_child(const std::function<int()>& work);

// One way through which a process tells another of single numbers.
class number_pipe {
public:
    number_pipe();
    number_pipe(const number_pipe&) = delete;
    number_pipe& operator=(const number_pipe&) = delete;
    ~number_pipe();

    void send(int number) const;

    // False when all senders are gone; each side closes the end that it does not use.
    bool receive(int& number) const;
    void close_sender();
    void close_receiver();

private:
    int ends_[2];
};

} // namespace store_test
