#pragma once

#include "platform/linux/item/StatusItemLook.h"
#include "platform/linux/screen/ScreenChanges.h"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>
#include <QTimer>

#include <xcb/xcb.h>

#include <memory>
#include <optional>

class NotifierRegistration;
class QMenu;
class StatusNotifierItem;
class Strip;
class TrayIconWindow;

/// The status item in the form that it has at present: in a tray, at a notifier host or by itself. What it is made in
/// comes after end() at first: it is never seen twice. Needs X; main thread only.
class PresentItem final : public QObject
{
    Q_OBJECT

public:
    PresentItem();
    ~PresentItem() override;

    /// In no form, as at first.
    void end();
    /// In that tray. Until the tray takes the item in, which it may never do, the item stands by itself from the fifth
    /// second on.
    void dockIn(xcb_window_t tray);
    /// At the hosts of that watcher, on a connection of the item's own. `menu` as StatusItem::setMenu() has it.
    void registerWith(const QDBusConnection &connection, const QString &watcher, QMenu *menu);
    /// By itself, as soon as there is a screen to stand on.
    void standAlone();

    /// For this form and the next.
    void setLook(const StatusItemLook &look);

    /// The window that the user sees, or shall see; null when there is none.
    [[nodiscard]] TrayIconWindow *window() const;

Q_SIGNALS:
    /// At that place, in device pixels, if it is known better than by the mouse's position.
    void pressed(std::optional<QPoint> place);
    void chosenByKey();
    void focusChanged(bool focused);
    /// The tray has gone, or has put the icon out while it rebuilds itself, or another program has destroyed the
    /// window.
    void lost();
    /// The user has put it elsewhere.
    void moved();
    /// The item has another window.
    void remade();

private:
    void makeStrip();
    void standIn();
    void listenTo(TrayIconWindow &window);
    void followScreens();

    StatusItemLook m_look;
    std::unique_ptr<TrayIconWindow> m_docked; ///< In a tray.
    int m_askedSide = 0;                      ///< Of that tray, in device pixels.
    std::unique_ptr<Strip> m_strip;           ///< By itself, or while the tray does nothing.
    bool m_isAlone = false;                   ///< It is to stand by itself,
    bool m_standsIn = false;                  ///< or waits for a tray, be there a strip or no screen for one.
    std::unique_ptr<StatusNotifierItem> m_notifierItem;
    std::unique_ptr<NotifierRegistration> m_registration;
    ScreenChanges m_screens;
    QTimer m_dockTimeout;
};
