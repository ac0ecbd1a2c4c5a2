#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>

/// The object of org.kde.StatusNotifierWatcher, as panels have it.
class NotifierWatcherObject final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)

public:
    [[nodiscard]] bool isHostRegistered() const { return m_isHostRegistered; }
    /// Tells on the bus whether there is a host; there is one at first.
    void setHostRegistered(bool isRegistered);
    void refuseItems() { m_refusesItems = true; }
    /// What each item has registered as.
    [[nodiscard]] QStringList items() const { return m_items; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service);

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();
    void StatusNotifierItemRegistered(const QString &service);

private:
    QStringList m_items;
    bool m_isHostRegistered = true;
    bool m_refusesItems = false;
};
