#include "journal.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

bool journal_is_open = false;

static std::vector<std::string>& entries()
{
    static std::vector<std::string> all;
    return all;
}

void open_journal()
{
    entries().clear();
    journal_is_open = true;
}

std::vector<std::string> close_journal()
{
    journal_is_open = false;
    return std::exchange(entries(), {});
}

// NOLINTNEXTLINE(cert-dcl50-cpp): printf's own shape.
void write_to_journal(const char* format, ...)
{
    char entry[4096];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(entry, sizeof entry, format, arguments);
    va_end(arguments);
    entries().emplace_back(entry);
}

unsigned long digest(const void* bytes, size_t size, unsigned long before)
{
    unsigned long value = before ^ 0xcbf29ce484222325;
    for (size_t i = 0; i < size; ++i) value = (value ^ static_cast<const unsigned char*>(bytes)[i]) * 0x100000001b3;
    return value;
}
