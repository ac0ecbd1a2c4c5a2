#pragma once

#include <QDataStream>
#include <QList>
#include <QLocalSocket>
#include <QRect>
#include <QSize>

/// Somebody who looks at a desktop from afar: the least client of the Remote Framebuffer Protocol (RFC 6143) that
/// understands when the desktop changes its size.
class Viewer final
{
public:
    /// Connects to the X server's socket for viewers; returns once the server has said how large its desktop is. False,
    /// with a test failure, when it does not.
    bool connectTo(const QString &socket);

    /// Asks for monitors, with the upper left corner of all at (0, 0), in place of those that there are.
    void ask(const QList<QRect> &monitors);

    [[nodiscard]] bool isConnected() const { return m_socket.state() == QLocalSocket::ConnectedState; }
    /// The desktop's size as the server has told it last.
    [[nodiscard]] QSize size() const { return m_size; }

private:
    /// Reads one server message. False while it has not come whole.
    bool readMessage();
    /// Reads the rectangles of an update; the size that it tells, or an invalid one.
    [[nodiscard]] QSize readUpdate();
    void requestUpdate(bool incremental);

    QLocalSocket m_socket;
    QDataStream m_stream{&m_socket};
    QSize m_size;
};
