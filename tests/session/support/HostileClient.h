#pragma once

#include "tests/session/support/XClient.h"

#include <QList>

/// A program of the session that takes from others what is theirs. Each call returns once the server has done it.
class HostileClient final : public XClient
{
public:
    explicit HostileClient(const PrivateXServer &server);

    /// The windows of a process that lie on the root window and that nobody sees.
    [[nodiscard]] QList<xcb_window_t> hiddenWindowsOf(qint64 pid) const;
    void destroy(xcb_window_t window);
    /// Becomes the owner of a selection, and does nothing with it.
    void takeSelection(const QByteArray &selection);
    void giveUpSelection(const QByteArray &selection);
    /// Of the selections that it has taken, which nobody has any more.
    void destroyItsWindow() { destroy(m_window); }

private:
    void setOwner(const QByteArray &selection, xcb_window_t owner);
    void waitForServer();

    xcb_window_t m_window;
};
