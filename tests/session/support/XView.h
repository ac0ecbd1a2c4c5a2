#pragma once

#include "tests/session/support/XClient.h"

#include <QImage>
#include <QList>
#include <QRect>

/// A window as the X server has it.
struct XWindow {
    xcb_window_t id = XCB_NONE;
    qint64 pid = 0;       ///< The process whose window it is.
    qint64 parentPid = 0; ///< The process that owns the window it lies in; 0 for the root window.
    QRect geometry;       ///< On the screen, in pixels.
    bool overrideRedirect = false;

    bool operator==(const XWindow &) const = default;
};

/// The user's eyes: what a private X server shows, asked of the server itself and never of the program under test.
class XView final : public XClient
{
public:
    using XClient::XClient;

    /// The windows of the process that can be seen and do not lie in another window of the same process, bottom first.
    [[nodiscard]] QList<XWindow> windowsOf(qint64 pid) const;
    /// What the screen shows there.
    [[nodiscard]] QImage grab(const QRect &area) const;
    [[nodiscard]] QSize screenSize() const;
    /// The sizes of the main display's modes, in the server's order, each as often as there are modes of it.
    [[nodiscard]] QList<QSize> modeSizes() const;
    /// True when the one window, or the frame around it, lies in front of the other.
    [[nodiscard]] bool isInFront(xcb_window_t one, xcb_window_t other) const;
    /// True when a window manager has put a frame, be it an invisible one, around the window.
    [[nodiscard]] bool isFramed(xcb_window_t window) const { return topLevelOf(window) != window; }
    /// The least size that the window asks for; empty when it asks for none.
    [[nodiscard]] QSize leastSizeOf(xcb_window_t window) const;
    /// The process that has the keyboard; 0 when none has.
    [[nodiscard]] qint64 focusOwnerPid() const;
    [[nodiscard]] qint64 selectionOwnerPid(const QByteArray &selection) const;
    [[nodiscard]] bool hasWindowManager() const;

private:
    /// By the value of a pixel, on a screen that has 256 of them.
    [[nodiscard]] QList<QRgb> coloursOfCells() const;
    /// The window below the root window that is this one, or that it lies in.
    [[nodiscard]] xcb_window_t topLevelOf(xcb_window_t window) const;
    void collect(xcb_window_t window, qint64 windowPid, qint64 wanted, QList<XWindow> &found) const;
};
