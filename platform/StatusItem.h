#pragma once

#include "platform/Geometry.h"

#include <QIcon>
#include <QObject>
#include <QString>
#include <QtGui/qwindowdefs.h>

#include <memory>
#include <optional>

class QMenu;
class QScreen;

/// One item of the desktop's status bar: an image that can be pressed.
///
/// The item exists from construction to destruction. Where it is drawn is this class's business: in the desktop's tray,
/// or, where there is none, by itself at the top of the main screen, where the user can drag it along the edge. It
/// moves by itself when a tray comes, goes or is replaced. Main thread only.
class StatusItem final : public QObject
{
    Q_OBJECT

public:
    explicit StatusItem(QObject *parent = nullptr);
    ~StatusItem() override;

    /// A disabled item is drawn faded and does not answer presses. Enabled at first.
    void setEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const;

    void setToolTip(const QString &text);
    [[nodiscard]] QString toolTip() const;

    /// The text for assistive technology and hosts that list items by name; never drawn.
    void setTitle(const QString &title);
    [[nodiscard]] QString title() const;

    /// What the item stands for at present, for assistive technology; never drawn. Nothing comes of it on macOS.
    void setStateText(const QString &text);
    [[nodiscard]] QString stateText() const;

    void setImage(const QIcon &image);
    [[nodiscard]] QIcon image() const;

    /// The menu that a press opens, for hosts that draw it themselves: they show it as it is, and what is chosen there
    /// is triggered in it, though not while the item is disabled. Before they show it its aboutToShow() is sent. No
    /// such menu at first. It must outlive the item; null takes it back. Nothing comes of it on macOS.
    void setMenu(QMenu *menu);

    /// Where the item is on screen, in points; nothing while it is not (yet) embedded or is on no monitor, and where
    /// the host tells nobody.
    [[nodiscard]] std::optional<NSRect> frame() const;

    /// The window in which the item is drawn, by the window system's own number; 0 while frame() is nothing, and on
    /// macOS, which shows its windows to nobody.
    [[nodiscard]] WId getWindow() const;
    /// The screen on which the middle of that window lies; null without a window, or while that is on no screen.
    [[nodiscard]] QScreen *getScreen() const;

Q_SIGNALS:
    /// The primary or the right button went down on the enabled item, or its host says so: at `place`, in points, where
    /// that is known better than by the mouse's position. Or it was chosen by the keyboard, or another program asks for
    /// its menu. Sent from the event loop, never from inside a host's call.
    void pressed(std::optional<NSPoint> place);

    /// The user has put it elsewhere. From the event loop. Not on macOS, where the system tells nobody.
    void moved();

private:
    class Private;
    std::unique_ptr<Private> d;
};
