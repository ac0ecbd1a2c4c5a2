#pragma once

#include "platform/ProductTexts.h"
#include "platform/linux/bus/AdaptorInTurns.h"
#include "platform/linux/item/NotifierPixmap.h"
#include "platform/linux/item/StatusItemLook.h"
#include "platform/linux/item/menu/BusMenu.h"

#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>

#include <memory>
#include <optional>

class QMenu;

/// The status item as a StatusNotifierItem host sees it: the properties, methods and signals of the contract
/// resources/dbus/org.kde.StatusNotifierItem.xml. NotifierRegistration makes it known to the host. Main thread only.
class StatusNotifierItem final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title NOTIFY NewTitle)
    Q_PROPERTY(QString Status READ status NOTIFY NewStatus)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(QString IconThemePath READ noName CONSTANT)
    Q_PROPERTY(QString IconName READ noName CONSTANT)
    Q_PROPERTY(NotifierPixmaps IconPixmap READ iconPixmap NOTIFY NewIcon)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT)
    Q_PROPERTY(NotifierPixmaps OverlayIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT)
    Q_PROPERTY(NotifierPixmaps AttentionIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionMovieName READ noName CONSTANT)
    Q_PROPERTY(NotifierToolTip ToolTip READ toolTip NOTIFY NewToolTip)
    Q_PROPERTY(bool ItemIsMenu READ isMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)

public:
    /// `menu` is what hosts may draw themselves; null for none.
    explicit StatusNotifierItem(QMenu *menu = nullptr);

    /// Tells the host what has changed, if anything has.
    void setLook(const StatusItemLook &look);

    [[nodiscard]] QString category() const { return QStringLiteral("SystemServices"); }
    [[nodiscard]] QString id() const { return ProductTexts::itemName; }
    /// What hosts call the item in their lists. Not empty when there is a tool tip.
    [[nodiscard]] QString title() const;
    /// "Passive" without an image, for which hosts would draw one of their own.
    [[nodiscard]] QString status() const;
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] QString noName() const { return QStringLiteral(""); }
    [[nodiscard]] NotifierPixmaps iconPixmap() const { return notifierPixmaps(m_look.image, m_look.iconLook()); }
    [[nodiscard]] NotifierPixmaps noPixmap() const { return {}; }
    [[nodiscard]] NotifierToolTip toolTip() const { return {noName(), {}, m_look.toolTip, noName()}; }
    [[nodiscard]] bool isMenu() const { return false; }
    [[nodiscard]] QDBusObjectPath menu() const;

    /// From now on on this connection, with its menu at the path of that property.
    void serve(const QDBusConnection &connection);
    void stopServing();

public Q_SLOTS:
    void Activate(int x, int y);
    void ContextMenu(int x, int y);
    void SecondaryActivate(int x, int y);
    void Scroll(int, const QString &) {}

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewToolTip();
    void NewStatus(const QString &status);

    /// The host says that the item was chosen, at this place of the root window, in device pixels; nothing where it
    /// does not know. From the event loop: the host's call has been answered.
    void pressed(std::optional<QPoint> place);

private:
    AdaptorInTurns m_object;
    StatusItemLook m_look;
    const std::unique_ptr<BusMenu> m_busMenu;
};
