#include "tests/session/support/Viewer.h"

#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{

constexpr qint32 rawEncoding = 0;
constexpr qint32 desktopSizeEncoding = -223;
constexpr qint32 extendedDesktopSizeEncoding = -308;

/// What the server sends.
enum ServerMessage : quint8 { FramebufferUpdate = 0, Bell = 2, ServerCutText = 3 };

/// What a viewer sends.
enum ClientMessage : quint8 { SetEncodings = 2, FramebufferUpdateRequest = 3, SetDesktopSize = 251 };

/// Waits until `read` finds all that it wants, and takes that off the stream.
bool receive(QDataStream &stream, const std::function<void()> &read)
{
    return waitUntil([&] {
        stream.startTransaction();
        read();
        return stream.commitTransaction();
    });
}

} // namespace

bool Viewer::connectTo(const QString &socket)
{
    m_socket.connectToServer(socket);
    if (!m_socket.waitForConnected()) {
        ADD_FAILURE() << "no viewer can connect: " << qPrintable(m_socket.errorString());
        return false;
    }
    constexpr char version[] = "RFB 003.008\n";
    constexpr int versionLength = sizeof version - 1;
    constexpr quint8 noAuthentication = 1;
    constexpr quint8 shared = 1;
    constexpr int pixelFormatLength = 16;

    bool ready = receive(m_stream, [&] { m_stream.skipRawData(versionLength); });
    m_stream.writeRawData(version, versionLength);
    ready = ready && receive(m_stream, [&] {
                quint8 securityTypes = 0;
                m_stream >> securityTypes;
                m_stream.skipRawData(securityTypes);
            });
    m_stream << noAuthentication;
    quint32 refusal = 1;
    ready = ready && receive(m_stream, [&] { m_stream >> refusal; }) && refusal == 0;
    m_stream << shared;
    quint16 width = 0;
    quint16 height = 0;
    ready = ready && receive(m_stream, [&] {
                quint32 nameLength = 0;
                m_stream >> width >> height;
                m_stream.skipRawData(pixelFormatLength);
                m_stream >> nameLength;
                m_stream.skipRawData(static_cast<int>(nameLength));
            });
    EXPECT_TRUE(ready) << "the server does not welcome a viewer";
    if (!ready) {
        return false;
    }
    m_size = {width, height};
    QObject::connect(&m_socket, &QLocalSocket::readyRead, &m_socket, [this] {
        while (readMessage()) {
        }
    });
    m_stream << SetEncodings << quint8{} << quint16{3} << rawEncoding << extendedDesktopSizeEncoding
             << desktopSizeEncoding;
    requestUpdate(false);
    return true;
}

void Viewer::ask(const QList<QRect> &monitors)
{
    QRect all;
    for (const QRect &monitor : monitors) {
        all |= monitor;
    }
    const auto number = [](int length) { return static_cast<quint16>(length); };
    m_stream << SetDesktopSize << quint8{} << number(all.width()) << number(all.height())
             << static_cast<quint8>(monitors.size()) << quint8{};
    quint32 id = 0;
    for (const QRect &monitor : monitors) {
        m_stream << id++ << number(monitor.x()) << number(monitor.y()) << number(monitor.width())
                 << number(monitor.height()) << quint32{};
    }
    m_socket.flush();
}

void Viewer::requestUpdate(bool incremental)
{
    // One pixel will do: a change of the size is told whatever part was asked for.
    m_stream << FramebufferUpdateRequest << quint8{incremental} << quint16{0} << quint16{0} << quint16{1} << quint16{1};
}

bool Viewer::readMessage()
{
    m_stream.startTransaction();
    quint8 type = 0;
    m_stream >> type;
    QSize told;
    switch (type) {
    case FramebufferUpdate:
        told = readUpdate();
        break;
    case ServerCutText: {
        quint32 length = 0;
        m_stream.skipRawData(3);
        m_stream >> length;
        m_stream.skipRawData(static_cast<int>(length));
        break;
    }
    default:
        EXPECT_EQ(type, Bell) << "the server says what this viewer does not know";
    }
    if (!m_stream.commitTransaction()) {
        return false;
    }
    if (told.isValid()) {
        m_size = told;
    }
    if (type == FramebufferUpdate) {
        requestUpdate(true);
    }
    return true;
}

QSize Viewer::readUpdate()
{
    QSize told;
    quint16 rectangles = 0;
    m_stream.skipRawData(1);
    m_stream >> rectangles;
    for (int i = 0; i < rectangles && m_stream.status() == QDataStream::Ok; ++i) {
        quint16 x = 0;
        quint16 y = 0;
        quint16 width = 0;
        quint16 height = 0;
        qint32 encoding = 0;
        m_stream >> x >> y >> width >> height >> encoding;
        if (encoding == rawEncoding) {
            constexpr int bytesPerPixel = 4;
            m_stream.skipRawData(width * height * bytesPerPixel);
            continue;
        }
        told = {width, height};
        if (encoding == extendedDesktopSizeEncoding) {
            constexpr int bytesPerScreen = 16;
            quint8 screens = 0;
            m_stream >> screens;
            m_stream.skipRawData(3 + screens * bytesPerScreen);
        }
    }
    return told;
}
