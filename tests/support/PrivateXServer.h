#pragma once

#include "tests/support/ChildProcess.h"

#include <QTemporaryDir>

/// A remote-desktop X server of the test's own, on a free display, closed to every other user and to the network.
/// Viewers may connect to the unix socket rfbSocket().
class PrivateXServer final
{
public:
    /// Its files lie in `folder`, or else in one of its own.
    explicit PrivateXServer(const QString &folder = {});

    /// Starts Xtigervnc and returns once it takes clients. False, with a test failure, when it does not. `arguments`
    /// are more of its own.
    bool start(const QStringList &arguments = {});
    /// The same for an X server that has no viewers but lists one size at several refresh rates, as a screen does: Xorg
    /// with its driver for no hardware at all.
    bool startWithSeveralRates(const QStringList &arguments = {});
    void stop();

    /// ":7", for DISPLAY.
    [[nodiscard]] QString display() const;
    /// For XAUTHORITY.
    [[nodiscard]] QString authority() const;
    [[nodiscard]] QString rfbSocket() const;

    [[nodiscard]] qint64 pid() const { return m_server.pid(); }

private:
    bool startPart(const QString &part, const QStringList &arguments);

    QTemporaryDir m_directory;
    const QString m_folder;
    ChildProcess m_server;
    QString m_display;
};
