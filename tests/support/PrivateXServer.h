#pragma once

#include "tests/support/ChildProcess.h"

#include <QSize>
#include <QTemporaryDir>

/// A remote-desktop X server of the test's own, on a free display, closed to every other user and to the network.
/// Viewers may connect to the unix socket rfbSocket().
class PrivateXServer final
{
public:
    /// Starts Xtigervnc and returns once it takes clients. False, with a test failure, when it does not. `arguments`
    /// are more of its own.
    bool start(QSize size = {1280, 800}, const QStringList &arguments = {});
    /// The same for an X server that has no viewers but lists one size at several refresh rates, as a screen does: Xorg
    /// with its driver for no hardware at all.
    bool startWithSeveralRates();
    void stop();

    /// ":7", for DISPLAY.
    [[nodiscard]] QString display() const;
    /// For XAUTHORITY.
    [[nodiscard]] QString authority() const;
    [[nodiscard]] QString rfbSocket() const;

    [[nodiscard]] qint64 pid() const { return m_server.pid(); }

    /// Points DISPLAY and XAUTHORITY of `environment` here.
    void addTo(QProcessEnvironment &environment) const;

private:
    bool startProgram(const QString &program, const QStringList &arguments);

    QTemporaryDir m_directory;
    ChildProcess m_server;
    QString m_display;
};
