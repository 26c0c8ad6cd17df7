// pimtrace.h: how the library traces, through the platform's hook `java_printf_handler`.
#ifndef JSR75_PIM_PIMTRACE_H
#define JSR75_PIM_PIMTRACE_H

#include "java_printf_handler.h"

// The library's component word towards the hook, the same in every call.
inline constexpr int TRACE_COMPONENT = 0x1d000022;

inline constexpr int TRACE_STEP = JAVA_PRINTF_ORDINARY;
inline constexpr int TRACE_RECOVERABLE = JAVA_PRINTF_RECOVERABLE;
inline constexpr int TRACE_HARD = JAVA_PRINTF_HARD_FAILURE;

// The place in the source that a message names.
struct trace_site {
    const char* path;
    int line;
    const char* function;
};

// The place of the call itself. A frame that several port functions share takes it as its first argument and traces
// in the port function's name.
// GCOV_EXCL_START: runs in the compiler only.
consteval trace_site trace_here(const char* path = __builtin_FILE(), int line = __builtin_LINE(),
                                const char* function = __builtin_FUNCTION())
{
    return {path, line, function};
}
// GCOV_EXCL_STOP

// Hands a message to the hook, whose pointer is read afresh each time; the compiler checks the format.
#define PIM_TRACE(severity, ...) \
    java_printf_handler(__FILE__, __LINE__, __func__, TRACE_COMPONENT, (severity), __VA_ARGS__)

#define PIM_TRACE_AT(site, severity, ...) \
    java_printf_handler((site).path, (site).line, (site).function, TRACE_COMPONENT, (severity), __VA_ARGS__)

// A failed check of the connection protocol: `what` is the failed step, `error` the caller's error word.
#define PIM_TRACE_ASSERT_AT(site, what, error) \
    PIM_TRACE_AT(site, TRACE_HARD, ">>[ASSERT][%s][%d]" what " fail(%d)\n\n", (site).function, (site).line, (error))

#define PIM_TRACE_ASSERT(what, error) PIM_TRACE_ASSERT_AT(trace_here(), what, error)

#endif
