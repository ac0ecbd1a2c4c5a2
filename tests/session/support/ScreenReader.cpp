#include "tests/session/support/ScreenReader.h"

#include "tests/support/WaitUntil.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <iterator>

namespace
{

constexpr char launcher[] = "/usr/libexec/at-spi-bus-launcher";
constexpr char registry[] = "/usr/libexec/at-spi2-registryd";
constexpr int answerTimeout = 5000; // milliseconds

QString busName()
{
    return QStringLiteral("org.a11y.Bus");
}

QString interfaceOf(const char *name)
{
    return QStringLiteral("org.a11y.atspi.") + QLatin1String(name);
}

Accessible registryRoot()
{
    return {QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("/org/a11y/atspi/accessible/root")};
}

QList<Accessible> readReferences(const QDBusArgument &argument)
{
    QList<Accessible> references;
    argument.beginArray();
    while (!argument.atEnd()) {
        Accessible object;
        QDBusObjectPath path;
        argument.beginStructure();
        argument >> object.program >> path;
        argument.endStructure();
        object.path = path.path();
        references.append(object);
    }
    argument.endArray();
    return references;
}

/// The program that has that name on a bus; 0 when none does.
qint64 processOf(const QDBusConnection &connection, const QString &name)
{
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    QDBusMessage question = QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus,
                                                           QStringLiteral("GetConnectionUnixProcessID"));
    question.setArguments({name});
    return connection.call(question, QDBus::Block, answerTimeout).arguments().value(0).toUInt();
}

QDBusMessage questionToLauncher(const QString &interface, const QString &member, const QVariantList &arguments)
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(busName(), QStringLiteral("/org/a11y/bus"), interface, member);
    question.setArguments(arguments);
    return question;
}

} // namespace

ScreenReader::ScreenReader(Desktop &desktop)
    : m_desktop(desktop)
{
    static int count = 0;
    ++count;
    m_session = QStringLiteral("reader-session-%1").arg(count);
    m_a11y = QStringLiteral("reader-a11y-%1").arg(count);
}

ScreenReader::~ScreenReader()
{
    QDBusConnection::disconnectFromBus(m_a11y);
    QDBusConnection::disconnectFromBus(m_session);
    if (m_launcher.isRunning()) {
        suspendBus(false);
        m_registry.kill();
        // It takes its bus with it.
        m_launcher.terminate();
        EXPECT_TRUE(waitUntil([this] { return !m_launcher.isRunning(); })) << "AT-SPI's bus does not end";
    }
}

bool ScreenReader::startBus()
{
    const QDBusConnection session = QDBusConnection::connectToBus(m_desktop.bus().address(), m_session);
    m_launcher.environment = m_desktop.environment();
    // What it sets is to stay in this desktop.
    m_launcher.environment.insert(QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("memory"));
    m_launcher.process().setStandardErrorFile(QProcess::nullDevice());
    m_launcher.process().setProcessChannelMode(QProcess::SeparateChannels);
    // Its bus would start it as well, and nobody would wait for its end.
    m_registry.environment = m_launcher.environment;
    const bool started =
        session.isConnected() &&
        m_launcher.start(QString::fromLatin1(launcher), {QStringLiteral("--launch-immediately")}) &&
        waitUntil([&] { return processOf(session, busName()) == m_launcher.pid(); }) && connectToBus() &&
        m_registry.start(QString::fromLatin1(registry), {}) &&
        waitUntil([&] { return processOf(QDBusConnection(m_a11y), registryRoot().program) == m_registry.pid(); });
    EXPECT_TRUE(started) << "AT-SPI's bus did not start";
    return started;
}

bool ScreenReader::connectToBus()
{
    const QDBusMessage answer = QDBusConnection(m_session).call(
        questionToLauncher(busName(), QStringLiteral("GetAddress"), {}), QDBus::Block, answerTimeout);
    return QDBusConnection::connectToBus(answer.arguments().value(0).toString(), m_a11y).isConnected();
}

bool ScreenReader::announce(bool isThere)
{
    const QDBusMessage question = questionToLauncher(
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"),
        {QStringLiteral("org.a11y.Status"), QStringLiteral("IsEnabled"), QVariant::fromValue(QDBusVariant(isThere))});
    const QDBusMessage answer = QDBusConnection(m_session).call(question, QDBus::Block, answerTimeout);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << qPrintable(answer.errorMessage());
    return answer.type() == QDBusMessage::ReplyMessage;
}

bool ScreenReader::listen()
{
    QDBusConnection a11y(m_a11y);
    const QList<std::pair<const char *, const char *>> signalsHeard = {{"Event.Object", "StateChanged"},
                                                                       {"Event.Object", "ChildrenChanged"},
                                                                       {"Event.Object", "PropertyChange"},
                                                                       {"Event.Object", "Announcement"},
                                                                       {"Event.Window", "Activate"}};
    for (const auto &[interface, member] : signalsHeard) {
        // QtDBus knows no other way to name a slot than by a string.
        a11y.connect(QString(), QString(), interfaceOf(interface), QLatin1String(member), this,
                     SLOT(hear(QDBusMessage)));
    }
    for (const char *kind : {"object:", "window:"}) {
        QDBusMessage wish =
            QDBusMessage::createMethodCall(registryRoot().program, QStringLiteral("/org/a11y/atspi/registry"),
                                           interfaceOf("Registry"), QStringLiteral("RegisterEvent"));
        wish.setArguments({QLatin1String(kind), QStringList(), QString()});
        const QDBusMessage taken = a11y.call(wish, QDBus::Block, answerTimeout);
        EXPECT_EQ(taken.type(), QDBusMessage::ReplyMessage) << qPrintable(taken.errorMessage());
    }
    return a11y.isConnected();
}

bool ScreenReader::hasBus()
{
    const QDBusConnection session = QDBusConnection::connectToBus(m_desktop.bus().address(), m_session);
    EXPECT_TRUE(session.isConnected());
    return processOf(session, busName()) != 0;
}

void ScreenReader::suspendBus(bool suspend)
{
    // Its bus is its child.
    const QString children = QStringLiteral("/proc/%1/task/%1/children").arg(m_launcher.pid());
    QFile file(children);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    for (const QByteArray &pid : file.readAll().simplified().split(' ')) {
        if (pid.toInt() > 0) {
            EXPECT_EQ(::kill(pid.toInt(), suspend ? SIGSTOP : SIGCONT), 0);
        }
    }
}

std::optional<Accessible> ScreenReader::application(qint64 pid)
{
    std::optional<Accessible> found;
    const bool known = waitUntil([&] {
        for (const Accessible &program : children(registryRoot())) {
            if (processOf(QDBusConnection(m_a11y), program.program) == pid) {
                found = program;
            }
        }
        return found.has_value();
    });
    EXPECT_TRUE(known) << "the reader does not see the program";
    return found;
}

QList<Accessible> ScreenReader::children(const Accessible &object) const
{
    const QDBusMessage answer = ask(object, interfaceOf("Accessible"), QStringLiteral("GetChildren"));
    return answer.type() == QDBusMessage::ReplyMessage
               ? readReferences(answer.arguments().value(0).value<QDBusArgument>())
               : QList<Accessible>();
}

std::optional<Accessible> ScreenReader::find(const Accessible &root, Role role, const QString &name) const
{
    for (const Accessible &child : children(root)) {
        if (this->role(child) == role && (name.isNull() || this->name(child) == name)) {
            return child;
        }
        if (const std::optional<Accessible> found = find(child, role, name)) {
            return found;
        }
    }
    return std::nullopt;
}

QString ScreenReader::name(const Accessible &object) const
{
    return property(object, QStringLiteral("Name"));
}

QString ScreenReader::description(const Accessible &object) const
{
    return property(object, QStringLiteral("Description"));
}

uint ScreenReader::role(const Accessible &object) const
{
    return ask(object, interfaceOf("Accessible"), QStringLiteral("GetRole")).arguments().value(0).toUInt();
}

bool ScreenReader::has(State state, const Accessible &object) const
{
    const QDBusMessage answer = ask(object, interfaceOf("Accessible"), QStringLiteral("GetState"));
    const auto words = qdbus_cast<QList<uint>>(answer.arguments().value(0));
    return words.size() == 2 && ((words.at(state / 32) >> (state % 32)) & 1U) != 0;
}

QRect ScreenReader::place(const Accessible &object) const
{
    constexpr uint onTheScreen = 0;
    const QDBusMessage answer =
        ask(object, interfaceOf("Component"), QStringLiteral("GetExtents"), {QVariant(onTheScreen)});
    if (answer.type() != QDBusMessage::ReplyMessage) {
        return {};
    }
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    const auto extents = answer.arguments().value(0).value<QDBusArgument>();
    extents.beginStructure();
    extents >> x >> y >> width >> height;
    extents.endStructure();
    return {x, y, width, height};
}

QStringList ScreenReader::actions(const Accessible &object) const
{
    QStringList names;
    const int count = ask(object, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                          {interfaceOf("Action"), QStringLiteral("NActions")})
                          .arguments()
                          .value(0)
                          .value<QDBusVariant>()
                          .variant()
                          .toInt();
    for (int i = 0; i < count; ++i) {
        names.append(
            ask(object, interfaceOf("Action"), QStringLiteral("GetName"), {i}).arguments().value(0).toString());
    }
    return names;
}

bool ScreenReader::perform(const QString &action, const Accessible &object)
{
    const qsizetype index = actions(object).indexOf(action);
    return index >= 0 && ask(object, interfaceOf("Action"), QStringLiteral("DoAction"), {static_cast<int>(index)})
                             .arguments()
                             .value(0)
                             .toBool();
}

QStringList ScreenReader::announcement(const Accessible &object) const
{
    QStringList words;
    QList<Accessible> rest = {object};
    while (!rest.isEmpty()) {
        const Accessible next = rest.takeFirst();
        if (next == object || (role(next) == Label && has(Showing, next))) {
            words.append(name(next));
        }
        rest = children(next) + rest;
    }
    return words;
}

QList<ScreenReader::Event> ScreenReader::events(const QString &kind, Role role) const
{
    QList<Event> found;
    std::copy_if(m_events.cbegin(), m_events.cend(), std::back_inserter(found),
                 [&](const Event &event) { return event.kind == kind && event.role == role; });
    return found;
}

void ScreenReader::hear(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    const Accessible source{message.service(), message.path()};
    const QString word = message.member() == QLatin1String("StateChanged")      ? QStringLiteral("state-changed")
                         : message.member() == QLatin1String("ChildrenChanged") ? QStringLiteral("children-changed")
                         : message.member() == QLatin1String("PropertyChange")  ? QStringLiteral("property-change")
                                                                                : message.member().toLower();
    m_events.append({word + QLatin1Char(':') + arguments.value(0).toString(), arguments.value(1).toInt(), source,
                     role(source), name(source)});
}

QDBusMessage ScreenReader::ask(const Accessible &object, const QString &interface, const QString &member,
                               const QVariantList &arguments) const
{
    QDBusMessage question = QDBusMessage::createMethodCall(object.program, object.path, interface, member);
    question.setArguments(arguments);
    return QDBusConnection(m_a11y).call(question, QDBus::Block, answerTimeout);
}

QString ScreenReader::property(const Accessible &object, const QString &name) const
{
    return ask(object, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
               {interfaceOf("Accessible"), name})
        .arguments()
        .value(0)
        .value<QDBusVariant>()
        .variant()
        .toString();
}
