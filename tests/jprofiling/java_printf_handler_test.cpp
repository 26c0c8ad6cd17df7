#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <java_printf_handler.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

static constexpr int component = 0x1d000022;

// A trace as the PIM library makes it.
#define TRACE(severity, ...) \
    java_printf_handler("limo-arm/pimutil.cpp", 42, "native_function_initialize", component, severity, __VA_ARGS__)

// What each write(2) to standard error brought, made by `work` in a process of its own, which reads its filter afresh.
// A null filter means a variable that is not set.
static std::vector<std::string> writes_of(const char* filter, const std::function<void()>& work)
{
    int ends[2]; // Keeps writes apart, as a pipe would not.
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
    std::fflush(nullptr); // What is left in the buffers would leave twice.
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        filter ? setenv("JSR75_PIM_TRACE", filter, 1) : unsetenv("JSR75_PIM_TRACE");
        work();
        std::exit(testing::Test::HasFailure() ? 1 : 0); // Not _exit: that would drop the counts of coverage.
    }
    close(ends[1]);
    std::vector<std::string> writes;
    std::string packet(1 << 20, ' ');
    for (ssize_t size; (size = read(ends[0], packet.data(), packet.size())) > 0;)
        writes.emplace_back(packet.data(), static_cast<size_t>(size));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return writes;
}

static const std::string head = "limo-arm/pimutil.cpp:42 native_function_initialize: ";

TEST(TraceHook, IsSetBeforeAnythingRuns)
{
    EXPECT_NE(java_printf_handler, nullptr);
}

TEST(TraceHook, WritesPathLineFunctionAndTheFormattedMessage)
{
    EXPECT_THAT(writes_of(nullptr, [] { TRACE(JAVA_PRINTF_ORDINARY, "%s *** %d 0x%X\n", "text", -5, 0x2fu); }),
                ElementsAre(head + "text *** -5 0x2F\n"));
}

TEST(TraceHook, EndsAMessageWithExactlyOneNewline)
{
    struct {
        const char* message;
        const char* line;
    } const rows[] = {
        {"final fail(3)\n\n", "final fail(3)\n"},
        {"no newline", "no newline\n"},
        {"dos\r\n", "dos\n"},
        {"", "\n"},
        {"\n\n\n", "\n"},
        {"blank \n", "blank \n"},
    };
    for (const auto& row : rows)
        EXPECT_THAT(writes_of("all", [&] { TRACE(JAVA_PRINTF_ORDINARY, "%s", row.message); }),
                    ElementsAre(head + row.line))
            << row.message;
}

TEST(TraceHook, TurnsControlCharactersInsideAMessageIntoBlanks)
{
    EXPECT_THAT(writes_of("all", [] { TRACE(JAVA_PRINTF_ORDINARY, "two\nlines\r\x1b[2J\x7f\ttab \xc3\xa9\n"); }),
                ElementsAre(head + "two lines  [2J \ttab \xc3\xa9\n"));
}

TEST(TraceHook, WritesLongMessagesWholeAndAtOnce)
{
    for (const size_t size : {900u, 960u, 970u, 971u, 972u, 973u, 1000u, 1024u, 5000u, 100000u}) {
        std::string message(size, 'x');
        message[size / 2] = '\n';
        std::string line = message + "\n";
        line[size / 2] = ' ';
        EXPECT_THAT(writes_of("all", [&] { TRACE(JAVA_PRINTF_ORDINARY, "%s\n\n", message.c_str()); }),
                    ElementsAre(head + line))
            << size;
    }
}

TEST(TraceHook, ShowsTheFormatOfAMessageThatCannotBeFormatted)
{
    const wchar_t no_character[] = {static_cast<wchar_t>(0xdc00), 0};
    EXPECT_THAT(writes_of("all", [&] { TRACE(JAVA_PRINTF_ORDINARY, "name = %ls\n", no_character); }),
                ElementsAre(head + "name = %ls\n"));
}

// The messages of the three severities that get through a filter.
static std::vector<std::string> let_through(const char* filter)
{
    return writes_of(filter, [] {
        for (int time = 0; time < 2; ++time) {
            TRACE(JAVA_PRINTF_ORDINARY, "ordinary\n");
            TRACE(JAVA_PRINTF_RECOVERABLE, "recoverable\n");
            TRACE(JAVA_PRINTF_HARD_FAILURE, "hard\n");
        }
    });
}

TEST(TraceHook, FiltersBySeverity)
{
    const std::string ordinary = head + "ordinary\n", recoverable = head + "recoverable\n", hard = head + "hard\n";
    for (const char* all : {static_cast<const char*>(nullptr), "", "all"})
        EXPECT_THAT(let_through(all), ElementsAre(ordinary, recoverable, hard, ordinary, recoverable, hard));
    EXPECT_THAT(let_through("warn"), ElementsAre(recoverable, hard, recoverable, hard));
    EXPECT_THAT(let_through("error"), ElementsAre(hard, hard));
    EXPECT_THAT(let_through("off"), IsEmpty());
}

TEST(TraceHook, TakesAnUnknownFilterAsAllAndSaysSoOnce)
{
    for (const char* unknown : {"loud", "WARN", "warn ", "0"}) {
        const std::vector<std::string> lines = let_through(unknown);
        ASSERT_THAT(lines, SizeIs(7)) << unknown;
        EXPECT_THAT(lines[0], AllOf(HasSubstr("JSR75_PIM_TRACE"), HasSubstr("\"" + std::string(unknown) + "\""),
                                    HasSubstr("all"), EndsWith("\n")));
        EXPECT_EQ(lines[1], head + "ordinary\n");
    }
}

TEST(TraceHook, ReadsTheFilterOnceAProcess)
{
    EXPECT_THAT(writes_of("error",
                          [] {
                              TRACE(JAVA_PRINTF_HARD_FAILURE, "first\n");
                              setenv("JSR75_PIM_TRACE", "all", 1);
                              TRACE(JAVA_PRINTF_ORDINARY, "second\n");
                          }),
                ElementsAre(head + "first\n"));
}

TEST(TraceHook, FormatsNothingThatIsFilteredOut)
{
    EXPECT_THAT(writes_of("off",
                          [] {
                              int formatted = 0;
                              TRACE(JAVA_PRINTF_HARD_FAILURE, "%s%n", "not looked at", &formatted);
                              EXPECT_EQ(formatted, 0);
                          }),
                IsEmpty());
}

TEST(TraceHook, ReturnsZeroAndLeavesErrnoAlone)
{
    for (const char* filter : {"all", "off"})
        writes_of(filter, [] {
            close(STDERR_FILENO); // Makes the write itself fail.
            errno = ERANGE;
            EXPECT_EQ(TRACE(JAVA_PRINTF_ORDINARY, "x\n"), 0);
            EXPECT_EQ(errno, ERANGE);
        });
}

TEST(TraceHook, GivesEachMessageOfEightThreadsALineOfItsOwn)
{
    constexpr int threads = 8, each = 200;
    const auto line = [](int thread, int message) {
        return head + std::to_string(message) +
               std::string(static_cast<size_t>(200 + thread), static_cast<char>('a' + thread)) + "\n";
    };
    std::vector<std::string> expected;
    for (int thread = 0; thread < threads; ++thread)
        for (int message = 0; message < each; ++message) expected.push_back(line(thread, message));
    const auto work = [] {
        std::vector<std::thread> tracers;
        for (int thread = 0; thread < threads; ++thread)
            tracers.emplace_back([thread] {
                const std::string text(static_cast<size_t>(200 + thread), static_cast<char>('a' + thread));
                for (int message = 0; message < each; ++message)
                    TRACE(JAVA_PRINTF_ORDINARY, "%d%s\n", message, text.c_str());
            });
        for (std::thread& tracer : tracers) tracer.join();
    };
    EXPECT_THAT(writes_of("all", work), testing::UnorderedElementsAreArray(expected));
}

// A reader that is slower than the writer, on a descriptor that does not wait for it.
TEST(TraceHook, LosesNothingWhenTheReaderIsSlow)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string message(PIPE_BUF - head.size() - 1, 'x');
    constexpr size_t messages = 100;
    const pid_t child = fork();
    if (child == 0) {
        fcntl(ends[1], F_SETFL, O_NONBLOCK);
        dup2(ends[1], STDERR_FILENO);
        for (size_t i = 0; i < messages; ++i) TRACE(JAVA_PRINTF_ORDINARY, "%s\n", message.c_str());
        _exit(0);
    }
    close(ends[1]);
    std::string read_so_far, chunk(1000, ' ');
    for (ssize_t size; (size = read(ends[0], chunk.data(), chunk.size())) > 0;)
        read_so_far.append(chunk, 0, static_cast<size_t>(size));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    std::string expected;
    for (size_t i = 0; i < messages; ++i) expected += head + message + "\n";
    EXPECT_TRUE(read_so_far == expected) << read_so_far.size() << " of " << expected.size();
}
