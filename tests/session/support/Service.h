#pragma once

#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"
#include "tests/support/ChildProcess.h"

#include <QByteArrayList>

/// The service's end of the link: the reference service tool, attached to one agent.
class Service final
{
public:
    explicit Service(Desktop &desktop);

    QProcessEnvironment environment;

    /// Claims the agent once that is linked. False, with a test failure, when that fails.
    bool attach(const Agent &agent);
    /// Sends one line of the tool's own command language.
    void send(const QByteArray &line);
    /// Switches the agent, which must be off, on and allows these commands; returns once the agent has taken that in.
    bool allow(const Agent &agent, const QByteArray &codes);

    /// The lines it has printed.
    [[nodiscard]] QByteArrayList lines();
    /// Those of them that tell what the agent has asked for: one for each event.
    [[nodiscard]] QByteArrayList events();
    [[nodiscard]] ChildProcess &process() { return m_process; }

private:
    ChildProcess m_process;
};
