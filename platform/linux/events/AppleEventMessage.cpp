#include "platform/linux/events/AppleEventMessage.h"

#include "platform/linux/include/EventBusName.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QScopeGuard>

namespace
{

/// Of one event: many more than any has. To unpack a message of a million tiny ones takes seconds.
constexpr int maxParameters = 64;

struct WireParameter {
    QString keyword;
    QString type;
    QByteArray bytes;
};

QDBusArgument &operator<<(QDBusArgument &argument, const WireParameter &parameter)
{
    argument.beginStructure();
    argument << parameter.keyword << parameter.type << parameter.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, WireParameter &parameter)
{
    argument.beginStructure();
    argument >> parameter.keyword >> parameter.type >> parameter.bytes;
    argument.endStructure();
    return argument;
}

void registerTypes()
{
    static const bool once = [] {
        qDBusRegisterMetaType<WireParameter>();
        qDBusRegisterMetaType<QList<WireParameter>>();
        return true;
    }();
    Q_UNUSED(once)
}

/// One character for each byte, whatever its value; null when a byte is zero.
QString textOf(FourCharCode code)
{
    QString text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<char16_t>(code >> shift & 0xff);
        if (byte == 0) {
            return {};
        }
        text.append(QChar(byte));
    }
    return text;
}

std::optional<FourCharCode> codeOf(const QString &text)
{
    if (text.size() != 4) {
        return {};
    }
    FourCharCode code = 0;
    for (const QChar character : text) {
        if (character.unicode() == 0 || character.unicode() > 0xff) {
            return {};
        }
        code = code << 8 | character.unicode();
    }
    return code;
}

} // namespace

std::optional<QDBusMessage> messageOf(const AppleEventContents &event, const QString &busName)
{
    registerTypes();
    const QString eventClass = textOf(event.eventClass());
    const QString eventID = textOf(event.eventID());
    if (!event.target || eventClass.isNull() || eventID.isNull()) {
        return {};
    }
    QList<WireParameter> parameters;
    for (const auto &[keyword, parameter] : event.parameters()) {
        parameters.append({textOf(keyword), textOf(parameter.type), parameter.bytes});
        if (parameters.last().keyword.isNull() || parameters.last().type.isNull()) {
            return {};
        }
    }
    QDBusMessage message = QDBusMessage::createMethodCall(busName.isEmpty() ? eventBusName(*event.target) : busName,
                                                          eventObjectPath(), eventInterface(), QStringLiteral("Send"));
    message.setAutoStartService(false);
    message << eventClass << eventID << QVariant::fromValue(parameters);
    return message;
}

std::optional<AppleEventContents> eventOf(const QDBusMessage &message)
{
    registerTypes();
    if (message.signature() != QStringLiteral("ssa(ssay)")) {
        return {};
    }
    const QVariantList arguments = message.arguments();
    const auto eventClass = codeOf(arguments.at(0).toString());
    const auto eventID = codeOf(arguments.at(1).toString());
    if (!eventClass || !eventID) {
        return {};
    }
    AppleEventContents event(*eventClass, *eventID);
    const auto list = qvariant_cast<QDBusArgument>(arguments.at(2));
    list.beginArray();
    const auto end = qScopeGuard([&list] { list.endArray(); }); // An array left open would never be freed.
    for (int count = 0; !list.atEnd(); ++count) {
        if (count == maxParameters) {
            return {};
        }
        WireParameter parameter;
        list >> parameter;
        const auto keyword = codeOf(parameter.keyword);
        const auto type = codeOf(parameter.type);
        if (!keyword || !type ||
            event.setParameter(*keyword, *type, parameter.bytes.constData(), parameter.bytes.size()) != noErr) {
            return {};
        }
    }
    return event;
}
