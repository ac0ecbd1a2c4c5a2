#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>

#include <cstdint>
#include <functional>

/// What the agent asks the service to do with the session, as far as a TigerVNC server can do it: it can put its
/// viewers out, and knows nothing of the window in which a viewer shows the session. The session is the one of
/// $DISPLAY.
class VncSession final : public QObject
{
    Q_OBJECT

public:
    /// Gets one line, without its end, on how each command went.
    using Reporter = std::function<void(const QByteArray &line)>;

    explicit VncSession(Reporter report);
    ~VncSession() override;

    /// Carries a command (MenuCode) out, without waiting for its end.
    void carryOut(std::uint32_t code);

private:
    void dropViewers();

    Reporter m_report;
    QProcess m_vncconfig;
};
