#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// A program that a test starts and that never outlives it: it is killed, and waited for, at destruction, and
/// on Linux the kernel ends it when the test itself dies.
class ChildProcess final
{
public:
    ChildProcess();
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// What the program gets as its environment; the test's own at first.
    QProcessEnvironment environment;

    /// Starts the program; false when that fails, or the one before still runs. Its standard error goes to the test's
    /// own.
    [[nodiscard]] bool start(const QString &program, const QStringList &arguments);

    [[nodiscard]] bool isRunning() const;
    [[nodiscard]] qint64 pid() const;
    /// The exit status once the program has ended by itself; -1 when it was killed or still runs.
    [[nodiscard]] int exitCode() const;

    void terminate();                    ///< SIGTERM.
    void kill();                         ///< SIGKILL, and waits for its end.
    void write(const QByteArray &bytes); ///< To its standard input.
    void closeInput();
    /// All that it has written to its standard output so far.
    [[nodiscard]] QByteArray output();

    [[nodiscard]] QProcess &process() { return m_process; }

private:
    QProcess m_process;
    QByteArray m_output;
};
