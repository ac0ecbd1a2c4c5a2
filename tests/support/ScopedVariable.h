#pragma once

#include <QByteArray>
#include <QtGlobal>

/// An environment variable that has another value for a while: the old one, or none, comes back at destruction. A null
/// value takes the variable away.
class ScopedVariable final
{
public:
    ScopedVariable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_before(qEnvironmentVariableIsSet(name) ? qgetenv(name) : QByteArray())
    {
        set(value);
    }
    ~ScopedVariable() { set(m_before); }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

private:
    void set(const QByteArray &value)
    {
        if (value.isNull()) {
            qunsetenv(m_name);
        } else {
            qputenv(m_name, value);
        }
    }

    const char *m_name;
    QByteArray m_before;
};
