#pragma once

#include "tests/session/support/Desktop.h"
#include "tests/support/ChildProcess.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QRect>
#include <QStringList>

#include <optional>

/// An accessible object of some program, by its bus name and its path there.
struct Accessible {
    QString program;
    QString path;

    bool operator==(const Accessible &) const = default;
};

/// A screen reader: AT-SPI's own bus and registry in a desktop of the test's own, and a client there that looks at
/// programs, presses things and hears events, as the interfaces of org.a11y.atspi describe it.
class ScreenReader final : public QObject
{
    Q_OBJECT

public:
    /// The roles and states of objects that tests ask for, by AT-SPI's numbers (atspi-constants.h).
    enum Role : uint {
        Alert = 2,
        Label = 29,
        MenuItem = 35,
        PopupMenu = 41,
        PushButton = 43,
        Heading = 83,
        Link = 88,
        Notification = 101
    };
    enum State { Checked = 4, Enabled = 8, Focused = 12, Modal = 16, Sensitive = 24, Showing = 25 };

    struct Event {
        QString kind; ///< As "state-changed:showing".
        int detail;
        Accessible source;
        uint role; ///< The source's, and its name, when it came.
        QString name;
    };

    explicit ScreenReader(Desktop &desktop);
    ~ScreenReader() override;

    /// Starts AT-SPI's bus without a reader. False, with a test failure, when it does not come.
    bool startBus();
    /// Listens to all events there.
    bool listen();
    /// Has the desktop say that a reader is there, or that there is none any more.
    bool announce(bool isThere);
    /// Whether there is an accessibility bus in the desktop, whoever has started it.
    [[nodiscard]] bool hasBus();
    /// Stops the bus where it is: connections stand, and nothing is answered; or lets it go on.
    void suspendBus(bool suspend);

    /// The root of that process, once the registry knows it; none when it does not get to know it.
    std::optional<Accessible> application(qint64 pid);

    [[nodiscard]] QList<Accessible> children(const Accessible &object) const;
    /// The first one with that role, and that name unless that is null, below `root`.
    [[nodiscard]] std::optional<Accessible> find(const Accessible &root, Role role, const QString &name = {}) const;
    [[nodiscard]] QString name(const Accessible &object) const;
    [[nodiscard]] QString description(const Accessible &object) const;
    [[nodiscard]] uint role(const Accessible &object) const;
    [[nodiscard]] bool has(State state, const Accessible &object) const;
    /// On the screen.
    [[nodiscard]] QRect place(const Accessible &object) const;
    [[nodiscard]] QStringList actions(const Accessible &object) const;
    /// Does what that action does; false when there is none such, or it cannot be done.
    bool perform(const QString &action, const Accessible &object);
    /// What is read out of an object that announces itself: its name, and the labels that show below it.
    [[nodiscard]] QStringList announcement(const Accessible &object) const;

    /// What has been heard so far, in order.
    [[nodiscard]] const QList<Event> &events() const noexcept { return m_events; }
    [[nodiscard]] QList<Event> events(const QString &kind, Role role) const;

private Q_SLOTS:
    void hear(const QDBusMessage &message);

private:
    bool connectToBus();
    [[nodiscard]] QDBusMessage ask(const Accessible &object, const QString &interface, const QString &member,
                                   const QVariantList &arguments = {}) const;
    [[nodiscard]] QString property(const Accessible &object, const QString &name) const;

    Desktop &m_desktop;
    ChildProcess m_launcher;
    ChildProcess m_registry;
    QString m_session; ///< The names of the connections to the desktop's bus and to AT-SPI's.
    QString m_a11y;
    QList<Event> m_events;
};
