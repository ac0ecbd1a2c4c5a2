#include "platform/StatusItem.h"

#include "platform/MainScreen.h"
#include "platform/images/IconDrawing.h"

#include <QSystemTrayIcon>

/// On this system QSystemTrayIcon is the system's own status item.
class StatusItem::Private final
{
public:
    void apply()
    {
        icon.setIcon(iconWithLook(image, enabled ? IconLook::Normal : IconLook::Faded));
        icon.setToolTip(toolTip);
        icon.show();
    }

    QSystemTrayIcon icon;
    QIcon image;
    QString toolTip;
    QString title;
    bool enabled = true;
};

StatusItem::StatusItem(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
    connect(
        &d->icon, &QSystemTrayIcon::activated, this,
        [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger && d->enabled) {
                Q_EMIT pressed(std::nullopt);
            }
        },
        Qt::QueuedConnection);
}

StatusItem::~StatusItem() = default;

void StatusItem::setEnabled(bool enabled)
{
    d->enabled = enabled;
    d->apply();
}

bool StatusItem::isEnabled() const
{
    return d->enabled;
}

void StatusItem::setToolTip(const QString &text)
{
    d->toolTip = text;
    d->apply();
}

QString StatusItem::toolTip() const
{
    return d->toolTip;
}

void StatusItem::setTitle(const QString &title)
{
    d->title = title;
}

QString StatusItem::title() const
{
    return d->title;
}

void StatusItem::setImage(const QIcon &image)
{
    d->image = image;
    d->apply();
}

QIcon StatusItem::image() const
{
    return d->image;
}

WId StatusItem::getWindow() const
{
    return 0;
}

QScreen *StatusItem::getScreen() const
{
    return nullptr;
}

std::optional<NSRect> StatusItem::frame() const
{
    const QRect place = d->icon.geometry();
    if (place.isEmpty()) {
        return std::nullopt;
    }
    return MainScreen::fromQt(place);
}
