#include "fuzz/Check.h"
#include "fuzz/NeedsApplication.h"
#include "platform/linux/events/AppleEventMessage.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusServer>
#include <QDBusVirtualObject>
#include <QEventLoop>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

struct FuzzParameter {
    QString keyword;
    QString type;
    QByteArray bytes;
};
Q_DECLARE_METATYPE(FuzzParameter)

QDBusArgument &operator<<(QDBusArgument &argument, const FuzzParameter &parameter)
{
    argument.beginStructure();
    argument << parameter.keyword << parameter.type << parameter.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, FuzzParameter &parameter)
{
    argument.beginStructure();
    argument >> parameter.keyword >> parameter.type >> parameter.bytes;
    argument.endStructure();
    return argument;
}

namespace
{

/// Cuts values off the input's front; zeros and empty when it is used up.
class Input final
{
public:
    Input(const std::uint8_t *data, std::size_t size)
        : m_rest(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))
    {
    }

    bool isUsedUp() const { return m_rest.isEmpty(); }

    int byte()
    {
        const QByteArray one = bytes(1);
        return one.isEmpty() ? 0 : static_cast<unsigned char>(one.front());
    }

    QByteArray bytes(qsizetype count)
    {
        const QByteArray front = m_rest.left(count);
        m_rest.remove(0, count);
        return front;
    }

    /// Mostly four characters; the bus carries no zero ones.
    QString code()
    {
        const int shape = byte();
        const QByteArray characters = bytes(shape < 240 ? 4 : shape - 240).replace('\0', '0');
        return shape % 16 == 15 ? QString::fromUtf8(characters) : QString::fromLatin1(characters);
    }

private:
    QByteArray m_rest;
};

void readParameters(const AppleEventContents &contents)
{
    AppleEvent event{typeAppleEvent, new OpaqueAEDataStorage{contents}};
    for (const auto &[keyword, parameter] : contents.parameters()) {
        const Size full = static_cast<Size>(parameter.bytes.size());
        for (const Size room : {Size(0), full / 2, full, full + 1}) {
            const auto buffer = std::make_unique<char[]>(static_cast<std::size_t>(room));
            Size actual = -1;
            DescType type = typeNull;
            check(AEGetParamPtr(&event, keyword, parameter.type, &type, buffer.get(), room, &actual) == noErr);
            check(actual == full && type == parameter.type);
            check(std::memcmp(buffer.get(), parameter.bytes.constData(),
                              static_cast<std::size_t>(std::min(room, full))) == 0);
            const OSErr otherType =
                AEGetParamPtr(&event, keyword, parameter.type ^ 1, nullptr, buffer.get(), room, nullptr);
            check(otherType == errAECoercionFail);
        }
    }
    AEDisposeDesc(&event);
}

/// The receiving end of a bus of two.
class Receiver final : public QDBusVirtualObject
{
public:
    using QDBusVirtualObject::QDBusVirtualObject;

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        if (std::optional<AppleEventContents> event = eventOf(message)) {
            readParameters(*event);
            event->target = 1;
            check(messageOf(*event).has_value());
        }
        loop.quit();
        return true;
    }

    QEventLoop loop;
};

class Bus final
{
public:
    Bus()
    {
        QObject::connect(&m_server, &QDBusServer::newConnection, &m_receiver, [this](QDBusConnection connection) {
            check(connection.registerVirtualObject(QStringLiteral("/"), &m_receiver, QDBusConnection::SubPath));
            m_serverEnd.emplace(connection);
            m_receiver.loop.quit();
        });
        qDBusRegisterMetaType<FuzzParameter>();
        qDBusRegisterMetaType<QList<FuzzParameter>>();
        m_clientEnd.emplace(QDBusConnection::connectToPeer(m_server.address(), QStringLiteral("fuzz")));
        check(m_clientEnd->isConnected());
        m_receiver.loop.exec();
    }

    void deliver(const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(QString(), QStringLiteral("/events"),
                                                              QStringLiteral("a.b"), QStringLiteral("Send"));
        message.setArguments(arguments);
        if (m_clientEnd->send(message)) {
            m_receiver.loop.exec();
        }
    }

private:
    QDBusServer m_server{QStringLiteral("unix:tmpdir=/tmp")};
    Receiver m_receiver;
    std::optional<QDBusConnection> m_serverEnd;
    std::optional<QDBusConnection> m_clientEnd;
};

Bus &bus()
{
    needApplication<QCoreApplication>();
    static Bus only;
    return only;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const int shape = input.byte();
    QVariantList arguments{input.code(), input.code()};
    QList<FuzzParameter> parameters;
    while (!input.isUsedUp() && parameters.size() < 64) {
        FuzzParameter parameter{input.code(), input.code(), {}};
        parameter.bytes = input.bytes(input.byte());
        parameters.append(parameter);
    }
    arguments.append(QVariant::fromValue(parameters));
    // Signatures that break the contract.
    if (shape == 1) {
        arguments.removeLast();
    } else if (shape == 2) {
        arguments[1] = 7;
    } else if (shape == 3) {
        arguments.append(QStringLiteral("more"));
    } else if (shape == 4) {
        arguments[2] = QVariant::fromValue(QStringList{QStringLiteral("other")});
    }
    bus().deliver(arguments);
    return 0;
}
