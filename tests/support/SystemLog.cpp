// The definitions below would clash with the inline ones of a fortified header.
#undef _FORTIFY_SOURCE

#include "tests/support/SystemLog.h"

#include <cstdarg>
#include <cstdio>
#include <syslog.h> // By which the function has another name on some systems.
#include <utility>

namespace
{

std::vector<SystemLog::Entry> entries;

void record(int priority, const char *format, va_list arguments)
{
    char text[4096];
    std::vsnprintf(text, sizeof text, format, arguments);
    entries.push_back({priority, text});
}

} // namespace

std::vector<SystemLog::Entry> SystemLog::take()
{
    return std::exchange(entries, {});
}

extern "C" void syslog(int priority, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record(priority, format, arguments);
    va_end(arguments);
}

// What syslog() becomes in a fortified build.
extern "C" void __syslog_chk(int priority, int /*flag*/, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record(priority, format, arguments);
    va_end(arguments);
}
