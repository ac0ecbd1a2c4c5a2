#pragma once

#include "platform/linux/item/StatusItemLook.h"
#include "platform/linux/screen/ColourCells.h"
#include "platform/linux/screen/XVisual.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <memory>
#include <optional>
#include <utility>

/// The X window that is a status item: docked in a tray by the freedesktop.org System Tray protocol, or standing alone
/// on the screen. A docked window ends with its tray: the next tray may ask for another visual.
///
/// It is a plain window on Qt's connection and no QWidget: a tray names the visual, and a window without transparency
/// has to mix its icon with the panel's background itself. Needs X; main thread only.
class TrayIconWindow final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// A window that asks the owner of the tray selection to embed it. `side` is its size, in device pixels, until the
    /// tray decides. Null when the tray's visual cannot be painted.
    [[nodiscard]] static std::unique_ptr<TrayIconWindow> dockedIn(xcb_window_t tray, int side);
    /// A window that stands alone at `place` (device pixels of the root window), above the others.
    [[nodiscard]] static std::unique_ptr<TrayIconWindow> standingAt(const QRect &place);

    ~TrayIconWindow() override;

    void setLook(const StatusItemLook &look);
    /// Moves a window that stands alone; what covers it, a screen locker say, goes on covering it.
    void moveTo(const QRect &place);
    /// A press of a button on it. Only a docked one hears of them by itself.
    void takePress(const xcb_button_press_event_t &press);
    void hideToolTip();

    /// The window itself; it lives as long as this object, unless the server ends it.
    [[nodiscard]] xcb_window_t id() const { return m_window; }

    /// Where the window is on the root window, in device pixels, as the server has it now; nothing while it is not on
    /// screen or, for a docked one, not (or no longer) inside its tray, or in one that has it where no monitor is, as
    /// those do that show it elsewhere.
    [[nodiscard]] std::optional<QRect> place() const;

Q_SIGNALS:
    /// The primary or the right button went down on it, at `where`, in device pixels of the root window; nothing where
    /// its own place tells more, or the press does not say. From the event loop. Not for a press that only closes an
    /// open menu.
    void pressed(std::optional<QPoint> where);
    /// A key that opens the menu was pressed while it had the keyboard. From the event loop.
    void chosenByKey();
    /// It has the keyboard, or no longer.
    void focusChanged(bool focused);
    /// The tray has taken the window in. From the event loop.
    void docked();
    /// The tray no longer embeds the window, or has ended, and the window with it; or another program has destroyed it.
    /// From the event loop.
    void lost();

private:
    enum class Kind { Docked, Alone };
    using KeyMoment = std::pair<xcb_keycode_t, xcb_timestamp_t>;

    TrayIconWindow(Kind kind, const XVisual &visual, const QRect &place);

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void handleEvent(const xcb_generic_event_t *event);
    void handleReparent(xcb_window_t parent);
    void handleKey(const xcb_key_press_event_t &press);
    void setFocused(bool focused);
    void showToolTip();
    void tellOfLoss();
    void setNames();
    void paint();
    [[nodiscard]] QImage background(const QRect &area) const;

    const Kind m_kind;
    const XVisual m_visual;
    std::optional<ColourCells> m_cells; ///< Where the visual has no colours of its own.
    xcb_window_t m_window = XCB_NONE;
    xcb_colormap_t m_colormap = XCB_NONE;
    QRect m_geometry; ///< Within its parent.
    bool m_mapped = false;
    xcb_timestamp_t m_lastPress = 0;
    bool m_embedded = false;
    xcb_window_t m_embedder = XCB_NONE;     ///< What has taken it in.
    bool m_focused = false;                 ///< It has the keyboard, and shows it.
    std::optional<KeyMoment> m_releasedKey; ///< The last one of which the embedder has told.
    StatusItemLook m_look;
    QTimer m_toolTipDelay;
    bool m_toolTipShown = false;
};
