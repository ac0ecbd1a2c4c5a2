#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

// Loaded into the agent ahead of the C library, so that a test can read what the agent says to the system log also
// where there is no log daemon, and without adding to the log of the machine. Each call is one line "priority message"
// in the file KIV_SYSLOG_FILE.

namespace
{

void record(int priority, const char *format, va_list arguments)
{
    char line[1024];
    const int start = std::snprintf(line, sizeof line, "%d ", priority);
    const int length =
        std::vsnprintf(line + start, sizeof line - static_cast<std::size_t>(start) - 1, format, arguments);
    if (length < 0) {
        return;
    }
    const char *path = std::getenv("KIV_SYSLOG_FILE");
    const int file = path ? ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600) : -1;
    if (file >= 0) {
        ::dprintf(file, "%s\n", line);
        ::close(file);
    }
}

} // namespace

extern "C" {

// Declared here and not by <syslog.h>, whose fortified versions are macros or inline functions of the same names.
void syslog(int priority, const char *format, ...) __attribute__((format(printf, 2, 3)));
void vsyslog(int priority, const char *format, va_list arguments) __attribute__((format(printf, 2, 0)));
void __syslog_chk(int priority, int flag, const char *format, ...) __attribute__((format(printf, 3, 4)));
void __vsyslog_chk(int priority, int flag, const char *format, va_list arguments) __attribute__((format(printf, 3, 0)));

void syslog(int priority, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record(priority, format, arguments);
    va_end(arguments);
}

void vsyslog(int priority, const char *format, va_list arguments)
{
    record(priority, format, arguments);
}

void __syslog_chk(int priority, int, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record(priority, format, arguments);
    va_end(arguments);
}

void __vsyslog_chk(int priority, int, const char *format, va_list arguments)
{
    record(priority, format, arguments);
}
}
