#pragma once

#include "tests/support/ChildProcess.h"

#include <QTemporaryDir>

/// The panel of a private desktop, with a tray, on the X server of these tests: a bar of 30 pixels along the top edge.
class PrivatePanel final
{
public:
    /// False when it cannot be started. It has a tray a moment later.
    [[nodiscard]] bool start();
    void stop() { m_program.kill(); }
    [[nodiscard]] qint64 pid() const { return m_program.pid(); }

private:
    QTemporaryDir m_folder;
    ChildProcess m_program;
};
