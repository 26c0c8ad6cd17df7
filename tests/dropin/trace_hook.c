/* A replacement of libjprofiling: reports the messages that belong to one function, and that all name the component. */
#include "raw_record.h"

static int hook(const char* path, int line, const char* function, int component, int severity, const char* format, ...)
{
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    (void)line;
    if (component != 0x1d000022) report("a message of component %x\n", (unsigned)component);
    if (severity == 0x1000000) report("trace %s %s: %s", path, function, text);
    if (strcmp(function, "Java_com_qvr_zek_pim_PIMListImpl_closePIMListN") == 0)
        report("trace %s %s severity %x: %s", path, function, (unsigned)severity, text);
    return 0;
}

int (*java_printf_handler)(const char*, int, const char*, int, int, const char*, ...) = hook;
