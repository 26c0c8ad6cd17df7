// java_printf_handler.cpp: the trace hook of a platform without a phone: lines on standard error.
//
// $JSR75_PIM_TRACE, read at the first message of the process, says which messages become lines:
//   all    every message; so it is, too, when the variable is not set or empty
//   warn   recoverable and hard failures
//   error  hard failures
//   off    none
// Anything else counts as `all`, and a line says so once.

#include <errno.h>
#include <java_printf_handler.h>
#include <limits.h>
#include <poll.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>

// ---- Lines ----------------------------------------------------------------------------------------------------------

// A line leaves in one write(2), so that the lines of several threads and processes do not mix: pipes guarantee that up
// to PIPE_BUF bytes, files up to any length. Only a signal, or a reader that cannot keep up, makes it two.
static void write_line(std::string_view line)
{
    while (!line.empty()) {
        const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
        if (written >= 0) {
            line.remove_prefix(static_cast<size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd writable = {.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
            poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return; // There is nowhere to report that to.
        }
    }
}

struct message_origin {
    const char* path;
    int line;
    const char* function;
};

// Writes as much of the line as `buffer` holds, as snprintf() does. Returns the length of the whole line, which ends
// with the message.
static size_t format_line(std::span<char> buffer, const message_origin& origin, const char* format, va_list arguments)
{
    const int head = snprintf(buffer.data(), buffer.size(), "%s:%d %s: ", origin.path, origin.line, origin.function);
    if (head < 0) return 0;
    const std::span<char> rest = buffer.subspan(std::min(static_cast<size_t>(head), buffer.size()));
    int message = vsnprintf(rest.data(), rest.size(), format, arguments);
    // What cannot be formatted, a wide character without a multibyte form for one, is shown as its format.
    if (message < 0) message = snprintf(rest.data(), rest.size(), "%s", format);
    return static_cast<size_t>(head) + static_cast<size_t>(std::max(message, 0));
}

static bool ends_line(char character)
{
    return character == '\n' || character == '\r';
}

// Messages carry texts from anywhere: none may break the line or steer a terminal.
static bool is_control(char character)
{
    return (static_cast<unsigned char>(character) < ' ' && character != '\t') || character == '\x7f';
}

// Writes the line, whose last byte is there for the newline: it ends with exactly one, whatever the message brought,
// and control characters inside it become blanks.
static void finish_line(std::span<char> line)
{
    while (line.size() > 1 && ends_line(line[line.size() - 2])) line = line.first(line.size() - 1);
    std::replace_if(line.begin(), line.end(), is_control, ' ');
    line.back() = '\n';
    write_line({line.data(), line.size()});
}

struct free_block {
    void operator()(void* block) const { free(block); }
};

static void trace_line(const message_origin& origin, const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    std::array<char, 1024> usual;
    const size_t length = format_line(usual, origin, format, arguments);
    if (length < usual.size()) {
        finish_line(std::span(usual).first(length + 1));
    } else {
        const std::unique_ptr<char, free_block> longer(static_cast<char*>(malloc(length + 1)));
        // Without memory the beginning is better than nothing.
        const std::span<char> whole = longer ? std::span(longer.get(), length + 1) : std::span(usual);
        if (longer) format_line(whole, origin, format, again);
        finish_line(whole);
    }
    va_end(again);
}

__attribute__((format(printf, 2, 3))) static void trace_plain_line(const message_origin& origin, const char* format,
                                                                   ...)
{
    va_list arguments;
    va_start(arguments, format);
    trace_line(origin, format, arguments);
    va_end(arguments);
}

// ---- Filter ---------------------------------------------------------------------------------------------------------

// Severity words rise as messages matter less. A filter is the highest word that becomes a line.
struct filter_name {
    std::string_view name;
    int highest;
};
static constexpr filter_name filters[] = {
    {"", INT_MAX - 1}, {"all", INT_MAX - 1}, {"warn", JAVA_PRINTF_RECOVERABLE}, {"error", JAVA_PRINTF_HARD_FAILURE},
    {"off", 0},
};

// Lets everything through to where it is read.
static constexpr int unread_filter = INT_MAX;
static std::atomic<int> highest_severity = unread_filter;

static int filter_from_environment()
{
    const char* variable = getenv("JSR75_PIM_TRACE");
    const std::string_view wanted = variable ? variable : "";
    const auto* known = std::ranges::find(filters, wanted, &filter_name::name);
    if (known != std::end(filters)) return known->highest;
    trace_plain_line({__FILE__, __LINE__, __func__},
                     "JSR75_PIM_TRACE is \"%s\", not all, warn, error or off; taken as all", variable);
    return filters[0].highest;
}

static int read_filter()
{
    static const int from_environment = filter_from_environment();
    highest_severity.store(from_environment, std::memory_order_relaxed);
    return from_environment;
}

// ---- Hook -----------------------------------------------------------------------------------------------------------

// The caller's errno stays as it is: a trace may stand between a call and the look at its error.
static int print_trace(const char* path, int line, const char* function, int, int severity, const char* format, ...)
{
    const int highest = highest_severity.load(std::memory_order_relaxed);
    if (severity > highest) return 0;

    const int caller_errno = errno;
    if (highest != unread_filter || severity <= read_filter()) {
        va_list arguments;
        va_start(arguments, format);
        trace_line({path, line, function}, format, arguments);
        va_end(arguments);
    }
    errno = caller_errno;
    return 0;
}

// A constant: it stands before the constructors of any library run.
constinit __attribute__((visibility("default"))) java_printf_function java_printf_handler = print_trace;
