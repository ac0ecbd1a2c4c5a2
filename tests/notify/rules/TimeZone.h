#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <ctime>

/// The local time zone of this process while the object lives, as a POSIX TZ rule, so that no database is needed.
class TimeZone final
{
public:
    explicit TimeZone(const char *rule)
        : m_previous(qgetenv("TZ"))
    {
        use(rule);
    }
    ~TimeZone() { use(m_previous); }
    TimeZone(const TimeZone &) = delete;
    TimeZone &operator=(const TimeZone &) = delete;

    static constexpr const char *utc = "UTC0";
    static constexpr const char *berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
    static constexpr const char *newYork = "EST5EDT,M3.2.0,M11.1.0";
    /// The clocks go forward at midnight: the day begins at 01:00.
    static constexpr const char *skipsMidnight = "<-03>3<-02>,M10.3.0/0,M2.3.0/0";
    static constexpr const char *firstOfAll = "<+14>-14";
    static constexpr const char *lastOfAll = "<-12>12";
    static constexpr const char *kolkata = "IST-5:30";

private:
    static void use(const QByteArray &rule)
    {
        qputenv("TZ", rule);
        ::tzset();
    }

    QByteArray m_previous;
};
