#include "platform/linux/bus/AdaptorInTurns.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QMetaProperty>

#include <utility>
#include <vector>

namespace
{

/// What the tool that makes adaptors writes into them.
QByteArray noteIn(const QDBusAbstractAdaptor &adaptor, const char *name)
{
    const QMetaObject &type = *adaptor.metaObject();
    return type.classInfo(type.indexOfClassInfo(name)).value();
}

/// Only of the adaptor's own methods: those of QObject are nobody's business.
QMetaMethod slotOf(const QDBusAbstractAdaptor &adaptor, const QString &name)
{
    const QMetaObject &type = *adaptor.metaObject();
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        if (method.methodType() == QMetaMethod::Slot && QString::fromLatin1(method.name()) == name) {
            return method;
        }
    }
    return {};
}

/// What a method takes and gives. As QtDBus has it, its result comes first of what it gives, then come its parameters
/// that are references.
class Arguments final
{
public:
    explicit Arguments(const QMetaMethod &method)
    {
        if (method.returnMetaType().id() != QMetaType::Void) {
            m_result = QVariant(method.returnMetaType());
        }
        const QList<QByteArray> types = method.parameterTypes();
        for (int i = 0; i < method.parameterCount(); ++i) {
            const bool isGiven = types[i].endsWith('&');
            const QMetaType type = isGiven ? QMetaType::fromName(types[i].chopped(1)) : method.parameterMetaType(i);
            m_parameters.push_back({QVariant(type), isGiven});
        }
    }

    /// False when the call brings others.
    [[nodiscard]] bool take(const QDBusMessage &call)
    {
        QString signature;
        for (const Parameter &parameter : m_parameters) {
            if (!parameter.isGiven) {
                signature += QString::fromLatin1(QDBusMetaType::typeToSignature(parameter.value.metaType()));
            }
        }
        if (call.signature() != signature) {
            return false;
        }
        const QVariantList brought = call.arguments();
        auto next = brought.cbegin();
        for (Parameter &parameter : m_parameters) {
            if (!parameter.isGiven) {
                parameter.take(*next++);
            }
        }
        return true;
    }

    void handTo(const QMetaMethod &method, QObject &object)
    {
        std::vector<void *> places{m_result.data()};
        for (Parameter &parameter : m_parameters) {
            places.push_back(parameter.value.data());
        }
        QMetaObject::metacall(&object, QMetaObject::InvokeMetaMethod, method.methodIndex(), places.data());
    }

    [[nodiscard]] QVariantList given() const
    {
        QVariantList all;
        if (m_result.isValid()) {
            all.append(m_result);
        }
        for (const Parameter &parameter : m_parameters) {
            if (parameter.isGiven) {
                all.append(parameter.value);
            }
        }
        return all;
    }

private:
    struct Parameter {
        QVariant value;
        bool isGiven;

        void take(const QVariant &brought)
        {
            if (brought.metaType() == QMetaType::fromType<QDBusArgument>()) {
                QDBusMetaType::demarshall(brought.value<QDBusArgument>(), value.metaType(), value.data());
            } else {
                value = brought;
            }
        }
    };

    QVariant m_result; ///< Invalid for none.
    std::vector<Parameter> m_parameters;
};

void answer(const QDBusMessage &call, const QDBusConnection &connection, const QVariantList &with)
{
    if (call.isReplyRequired()) {
        connection.send(call.createReply(with));
    }
}

} // namespace

AdaptorInTurns::AdaptorInTurns(QDBusAbstractAdaptor &adaptor, Refusal takeRefusal)
    : ObjectInTurns(QString::fromLatin1(noteIn(adaptor, "D-Bus Interface")),
                    "<node>\n" + noteIn(adaptor, "D-Bus Introspection") + "</node>\n")
    , m_adaptor(adaptor)
    , m_takeRefusal(std::move(takeRefusal))
    , m_connection(QString())
{
}

AdaptorInTurns::~AdaptorInTurns()
{
    stopServing();
}

bool AdaptorInTurns::serve(const QDBusConnection &connection, const QString &path)
{
    stopServing();
    m_connection = connection;
    if (m_connection.registerVirtualObject(path, this)) {
        m_path = path;
    }
    return !m_path.isEmpty();
}

void AdaptorInTurns::stopServing()
{
    if (!m_path.isEmpty()) {
        m_connection.unregisterObject(m_path);
        m_path.clear();
    }
    m_connection = QDBusConnection(QString());
}

void AdaptorInTurns::send(const QString &signal, const QVariantList &arguments)
{
    if (!m_path.isEmpty()) {
        QDBusMessage message = QDBusMessage::createSignal(m_path, interface(), signal);
        message.setArguments(arguments);
        m_connection.send(message);
    }
}

WorkInTurns::Work AdaptorInTurns::workFor(const QDBusMessage &call, const QDBusConnection &connection)
{
    const QMetaMethod method = slotOf(m_adaptor, call.member());
    if (!method.isValid()) {
        return {};
    }
    return [this, method, call, connection] { carryOut(method, call, connection); };
}

void AdaptorInTurns::carryOut(const QMetaMethod &method, const QDBusMessage &call,
                              const QDBusConnection &connection) const
{
    Arguments arguments(method);
    if (!arguments.take(call)) {
        refuse(call, connection, QDBusError::InvalidArgs, call.member() + QStringLiteral(" has other arguments"));
        return;
    }
    arguments.handTo(method, m_adaptor);
    if (const QString refusal = m_takeRefusal ? m_takeRefusal() : QString(); !refusal.isEmpty()) {
        refuse(call, connection, QDBusError::InvalidArgs, refusal);
    } else {
        answer(call, connection, arguments.given());
    }
}

WorkInTurns::Work AdaptorInTurns::workForProperties(const QDBusMessage &call, const QDBusConnection &connection)
{
    if (call.member() == QLatin1String("Get") && call.signature() == QLatin1String("ss")) {
        return [this, call, connection] { tellProperty(call, connection); };
    }
    if (call.member() == QLatin1String("GetAll") && call.signature() == QLatin1String("s")) {
        return [this, call, connection] { tellProperties(call, connection); };
    }
    return {}; // None can be set.
}

void AdaptorInTurns::tellProperty(const QDBusMessage &call, const QDBusConnection &connection) const
{
    const QByteArray name = call.arguments().at(1).toString().toLatin1();
    const QMetaObject &type = *m_adaptor.metaObject();
    const int index = type.indexOfProperty(name);
    if (!isOwn(call.arguments().at(0).toString()) || index < type.propertyOffset()) {
        refuse(call, connection, QDBusError::UnknownProperty, QStringLiteral("No such property"));
        return;
    }
    answer(call, connection, {QVariant::fromValue(QDBusVariant(type.property(index).read(&m_adaptor)))});
}

void AdaptorInTurns::tellProperties(const QDBusMessage &call, const QDBusConnection &connection) const
{
    if (!isOwn(call.arguments().at(0).toString())) {
        refuse(call, connection, QDBusError::UnknownInterface, QStringLiteral("No such interface"));
        return;
    }
    QVariantMap all;
    const QMetaObject &type = *m_adaptor.metaObject();
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        all.insert(QString::fromLatin1(type.property(i).name()), type.property(i).read(&m_adaptor));
    }
    answer(call, connection, {all});
}
