/* java_printf_handler.h: the trace hook of the platform's Java runtime, exported by libjprofiling.
 *
 * (1) The hook is a variable that holds a function. libjprofiling owns it and sets it before any library that
 *     traces can run; it is never null. Callers read it afresh for each message, so it may be exchanged at any time.
 * (2) A message is a printf format and its arguments, nothing is formatted by the caller. The hook keeps none of the
 *     pointers it is given.
 * (3) Filtering by component or severity is the hook's business; callers trace unconditionally.
 * (4) Calls come from any thread, side by side.
 */
#ifndef JSR75_PIM_JAVA_PRINTF_HANDLER_H
#define JSR75_PIM_JAVA_PRINTF_HANDLER_H

#ifdef __cplusplus
extern "C" {
#endif

/* The three severity words that occur. */
enum java_printf_severity {
    JAVA_PRINTF_HARD_FAILURE = 0x1000000, /* a store call, an allocation or a connection failed */
    JAVA_PRINTF_RECOVERABLE = 0x2000000,  /* a failure the caller's protocol goes on after */
    JAVA_PRINTF_ORDINARY = 0x4000000      /* entry marks, progress, values read */
};

/* path      the calling source file, relative to its project's root
 * line      the line of the call
 * function  the calling function
 * component the caller's component word, 0x1d000022 for the PIM library
 * severity  one of enum java_printf_severity
 * format    a printf format for the arguments after it
 * The result says nothing; callers ignore it. */
typedef int (*java_printf_function)(const char* path, int line, const char* function, int component, int severity,
                                    const char* format, ...) __attribute__((format(printf, 6, 7)));

extern java_printf_function java_printf_handler;

#ifdef __cplusplus
}
#endif

#endif
