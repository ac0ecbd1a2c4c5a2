#include "platform/StatusItem.h"

#include "platform/MainScreen.h"
#include "platform/images/IconDrawing.h"

#include <QSystemTrayIcon>

namespace
{

/// The second press of two that come fast has another reason, and no third one follows it.
bool isPress(QSystemTrayIcon::ActivationReason reason)
{
    return reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick ||
           reason == QSystemTrayIcon::Context;
}

} // namespace

/// On this system QSystemTrayIcon is the system's own status item.
class StatusItem::Private final
{
public:
    explicit Private(QObject *item)
        : icon(item)
    {
    }

    void apply()
    {
        QIcon drawn = iconWithLook(image, enabled ? IconLook::Normal : IconLook::Faded);
        drawn.setIsMask(true); // The system draws its shape in the colour that goes with the menu bar.
        icon.setIcon(drawn);
        icon.setToolTip(toolTip);
        icon.setVisible(!image.isNull()); // Qt warns of an item without an image, as a new one is.
    }

    QSystemTrayIcon icon;
    QIcon image;
    QString toolTip;
    QString title;
    QString stateText;
    bool enabled = true;
};

StatusItem::StatusItem(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this))
{
    connect(
        &d->icon, &QSystemTrayIcon::activated, this,
        [this](QSystemTrayIcon::ActivationReason reason) {
            if (isPress(reason) && d->enabled) {
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

// Qt has no way to hand it to the system.
void StatusItem::setStateText(const QString &text)
{
    d->stateText = text;
}

QString StatusItem::stateText() const
{
    return d->stateText;
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

// The system would open it by itself, and nobody would hear of the press.
void StatusItem::setMenu(QMenu *) {}

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
