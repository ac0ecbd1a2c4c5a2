#include "platform/linux/item/StatusNotifierItem.h"

#include "StatusNotifierItemAdaptor.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QDBusMetaType>

StatusNotifierItem::StatusNotifierItem(QMenu *menu)
    : m_object(*new StatusNotifierItemAdaptor(this))
    , m_busMenu(menu ? std::make_unique<BusMenu>(*menu) : nullptr)
{
    qDBusRegisterMetaType<NotifierPixmap>();
    qDBusRegisterMetaType<NotifierPixmaps>();
    qDBusRegisterMetaType<NotifierToolTip>();
    connect(this, &StatusNotifierItem::NewTitle, this, [this] { m_object.send(QStringLiteral("NewTitle")); });
    connect(this, &StatusNotifierItem::NewIcon, this, [this] { m_object.send(QStringLiteral("NewIcon")); });
    connect(this, &StatusNotifierItem::NewToolTip, this, [this] { m_object.send(QStringLiteral("NewToolTip")); });
    connect(this, &StatusNotifierItem::NewStatus, this,
            [this](const QString &status) { m_object.send(QStringLiteral("NewStatus"), {status}); });
}

void StatusNotifierItem::serve(const QDBusConnection &connection)
{
    // The one that hosts take where they are told a name only.
    m_object.serve(connection, QStringLiteral("/StatusNotifierItem"));
    if (m_busMenu) {
        m_busMenu->serve(connection, menu().path());
    }
}

void StatusNotifierItem::stopServing()
{
    m_object.stopServing();
    if (m_busMenu) {
        m_busMenu->stopServing();
    }
}

void StatusNotifierItem::setLook(const StatusItemLook &look)
{
    const QString oldTitle = title();
    const QString oldStatus = status();
    const StatusItemLook old = std::exchange(m_look, look);
    if (m_busMenu) {
        m_busMenu->setChoice(m_look.enabled ? Choice::Possible : Choice::Barred);
    }
    if (title() != oldTitle) {
        Q_EMIT NewTitle();
    }
    if (m_look.toolTip != old.toolTip) {
        Q_EMIT NewToolTip();
    }
    if (m_look.image.cacheKey() != old.image.cacheKey() || m_look.enabled != old.enabled) {
        Q_EMIT NewIcon();
    }
    if (status() != oldStatus) {
        Q_EMIT NewStatus(status());
    }
}

QString StatusNotifierItem::title() const
{
    return m_look.title.isEmpty() ? m_look.toolTip : m_look.title;
}

QString StatusNotifierItem::status() const
{
    return m_look.image.isNull() ? QStringLiteral("Passive") : QStringLiteral("Active");
}

QDBusObjectPath StatusNotifierItem::menu() const
{
    // The second is what hosts know for "none".
    return QDBusObjectPath(m_busMenu ? QStringLiteral("/StatusNotifierItem/Menu") : QStringLiteral("/NO_DBUSMENU"));
}

void StatusNotifierItem::Activate(int x, int y)
{
    const QPoint place(x, y);
    RootProperties::catchUpAndShow(
        this, [this, place] { Q_EMIT pressed(place.isNull() ? std::nullopt : std::optional(place)); });
}

void StatusNotifierItem::ContextMenu(int x, int y)
{
    Activate(x, y);
}

void StatusNotifierItem::SecondaryActivate(int x, int y)
{
    Activate(x, y);
}
