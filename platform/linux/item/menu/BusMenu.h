#pragma once

#include "platform/linux/bus/AdaptorInTurns.h"
#include "platform/linux/item/menu/BusMenuTypes.h"
#include "platform/linux/item/menu/MenuTree.h"

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>

/// A menu for hosts that draw it themselves: the properties, methods and signals of the contract
/// resources/dbus/com.canonical.dbusmenu.xml. What is chosen there is chosen in the menu, and what changes in the menu
/// is told there. Whoever is on the user's bus may choose, as whoever is on his display may click. Main thread only.
class BusMenu final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    /// Once `menu` has gone, this one is empty.
    explicit BusMenu(QMenu &menu);

    /// Whether anything can be chosen at all; so at first.
    void setChoice(Choice choice);

    [[nodiscard]] uint version() const { return 3; }
    [[nodiscard]] QString textDirection() const;
    [[nodiscard]] QString status() const { return QStringLiteral("normal"); }
    [[nodiscard]] QStringList iconThemePath() const { return {}; }

    /// From now on there. False when something else is there.
    bool serve(const QDBusConnection &connection, const QString &path) { return m_object.serve(connection, path); }
    void stopServing() { m_object.stopServing(); }

public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames, BusMenuLayout &layout);
    BusMenuEntries GetGroupProperties(const QList<int> &ids, const QStringList &propertyNames);
    QDBusVariant GetProperty(int id, const QString &name);
    void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    QList<int> EventGroup(const BusMenuEvents &events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const BusMenuEntries &updatedProps, const BusMenuRemovals &removedProps);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void watch(QMenu &menu);
    /// Has the tree agree with the menu, and tells what has changed. Whether anything has.
    bool catchUp();
    bool prepareToShow();
    /// False when there is no such entry.
    bool handleEvent(int id, const QString &event);
    [[nodiscard]] QAction *actionOf(int id) const;
    /// The present call is to be answered with an error.
    void refuse(int id);
    /// As dbusmenu has it of a call about several entries: it fails when there is none of them.
    void refuseIfAll(const QList<int> &unknown, qsizetype asked);

    AdaptorInTurns m_object;
    const QPointer<QMenu> m_menu;
    Choice m_choice = Choice::Possible;
    MenuTree m_tree;
    QString m_refusal; ///< Why the call that is carried out is refused.
    int m_lastId = 0;
    uint m_revision = 0;
    bool m_isBehind = false;   ///< catchUp() is to follow.
    bool m_isChoosing = false; ///< What has been chosen is about to be carried out.
};
