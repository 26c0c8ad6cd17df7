// unit_test.h: what every unit test stands on: fresh doubles before it, and after it the proof that nothing is open,
// unreleased or pending.
#ifndef JSR75_PIM_TESTS_UNIT_TEST_H
#define JSR75_PIM_TESTS_UNIT_TEST_H

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "allocation_faults.h"
#include "fake_jni.h"
#include "fake_platform.h"
#include "natives.h"
#include "pimcodes.h"
#include "pimtrace.h"

class unit_test : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    fake_platform& platform = fake_platform::instance();
    fake_jni jni;

    // What this test leaves behind on purpose, each with the reason. What is declared must then be there.
    void keep_connection(std::string_view reason) { kept_connection_ = reason; }
    void keep_blocks(std::string_view reason) { kept_blocks_ = reason; }
    void keep_exception(std::string_view reason) { kept_exception_ = reason; }

    // Starts over inside a test, for the next row of a table or the next turn of a sweep: checks as at the end of
    // a test, then fresh doubles.
    void start_over();

private:
    void check_what_is_left();

    std::optional<std::string> kept_connection_, kept_blocks_, kept_exception_;
};

// What `work` prints to standard output.
std::string console_of(const std::function<void()>& work);

void PrintTo(const trace_message& message, std::ostream* out);
void PrintTo(const pending_exception& exception, std::ostream* out);

// One message with this severity, format and text.
MATCHER_P3(trace, severity, format, text, "")
{
    (void)result_listener;
    return arg.severity == severity && arg.format == format && arg.text == text;
}

// One message with this severity and text, however it is put together: for texts that a store may leave unterminated
// and that are therefore formatted with a precision.
MATCHER_P2(trace_text, severity, text, "")
{
    (void)result_listener;
    return arg.severity == severity && arg.text == text;
}

// The same as `trace`, whatever the severity: for messages that no rule gives one.
MATCHER_P2(traced, format, text, "")
{
    (void)result_listener;
    return arg.format == format && arg.text == text;
}

// One message with this severity and a text that holds no arguments: the format is the text.
inline auto trace_line(int severity, const std::string& text)
{
    return trace(severity, text, text);
}

// The failed check of the connection protocol that the port function `function` traces.
MATCHER_P3(assertion, function, what, error, "")
{
    (void)result_listener;
    const std::string name = function;
    const std::string step = what;
    return arg.severity == TRACE_HARD && arg.function == name &&
           arg.format == ">>[ASSERT][%s][%d]" + step + " fail(%d)\n\n" &&
           arg.text == ">>[ASSERT][" + name + "][" + std::to_string(arg.line) + "]" + step + " fail(" +
                           std::to_string(error) + ")\n\n";
}

// The failed close of the connection. Its error is the function's own word, which the closing does not write.
MATCHER_P(failed_close, function, "")
{
    (void)result_listener;
    const std::string name = function;
    const std::string start = ">>[ASSERT][" + name + "][" + std::to_string(arg.line) + "]final fail(";
    return arg.severity == TRACE_HARD && arg.function == name && arg.text.starts_with(start) &&
           arg.format == ">>[ASSERT][%s][%d]final fail(%d)\n\n";
}

MATCHER_P2(exception, class_name, message, "")
{
    (void)result_listener;
    return arg.class_name == class_name && arg.message == message;
}

#endif
