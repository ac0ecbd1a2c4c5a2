#pragma once

#include "tests/support/ChildProcess.h"

#include <QSize>
#include <QTemporaryDir>

/// A remote-desktop X server of the test's own, on a free display, closed to every other user and to the network.
/// Viewers may connect to the unix socket rfbSocket().
class PrivateXServer final
{
public:
    /// Starts Xtigervnc and returns once it takes clients. False, with a test failure, when it does not.
    bool start(QSize size = {1280, 800});
    void stop();

    /// ":7", for DISPLAY.
    [[nodiscard]] QString display() const;
    /// For XAUTHORITY.
    [[nodiscard]] QString authority() const;
    [[nodiscard]] QString rfbSocket() const;

    /// Points DISPLAY and XAUTHORITY of `environment` here.
    void addTo(QProcessEnvironment &environment) const;

private:
    QTemporaryDir m_directory;
    ChildProcess m_server;
    QString m_display;
};
