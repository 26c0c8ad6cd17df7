#include "store_test.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace store_test {

StoreTest::StoreTest()
{
    static bool is_first = true;
    if (!is_first) throw std::logic_error("one test a process: run them through ctest");
    is_first = false;

    std::string name = fs::temp_directory_path() / "jsr75-store-XXXXXX";
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    room_ = name;
    setenv("JSR75_PIM_HOME", store_home().c_str(), 1);
}

StoreTest::~StoreTest()
{
    fs::remove_all(room_);
}

std::string content_of(const fs::path& file)
{
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

void write_file(const fs::path& file, const std::string& content)
{
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

unsigned mode_of(const fs::path& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::vector<std::string> schema_of(SQLite::Database& database)
{
    std::vector<std::string> statements;
    SQLite::Statement query(database, "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name");
    while (query.executeStep()) statements.push_back(query.getColumn(0).getString());
    return statements;
}

child_process::child_process(const std::function<int()>& work) : id_(fork())
{
    if (id_ < 0) throw std::runtime_error("fork");
    if (id_ == 0) _exit(work());
}

child_process::~child_process()
{
    if (id_ <= 0) return;
    kill();
    wait();
}

int child_process::wait()
{
    int status = 0;
    waitpid(std::exchange(id_, 0), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void child_process::kill()
{
    ::kill(id_, SIGKILL);
}

int in_tidy_child(const std::function<int()>& work)
{
    // exit() would also run what the test program has registered; a thread's end and the library's own exit handlers
    // are what matters here, and both run.
    return child_process([&work]() -> int { exit(work()); }).wait();
}

number_pipe::number_pipe()
{
    if (pipe(ends_) != 0) throw std::runtime_error("pipe");
}

number_pipe::~number_pipe()
{
    close_sender();
    close_receiver();
}

void number_pipe::send(int number) const
{
    if (write(ends_[1], &number, sizeof number) != sizeof number) _exit(99);
}

bool number_pipe::receive(int& number) const
{
    return read(ends_[0], &number, sizeof number) == sizeof number;
}

void number_pipe::close_sender()
{
    if (const int end = std::exchange(ends_[1], -1); end >= 0) close(end);
}

void number_pipe::close_receiver()
{
    if (const int end = std::exchange(ends_[0], -1); end >= 0) close(end);
}

} // namespace store_test
