#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

struct XcbFree {
    void operator()(void *block) const noexcept { std::free(block); }
};
template <typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;

/// The present time of the clock that all measuring programs share, in nanoseconds.
[[nodiscard]] std::int64_t now();

/// Follows every window of a display from its making on, and says when it comes up. The server tells it; it asks for
/// nothing in between, so that it does not disturb what is measured.
class WindowWatch final
{
public:
    struct Window {
        int x = 0, y = 0, width = 0, height = 0; ///< Relative to its parent.
        bool isEmbedded = false;                 ///< Lies in a window of another program, as icons do in a tray.
        bool isMapped = false;
    };
    using Report = std::function<void(std::int64_t time, xcb_window_t window, const Window &state)>;

    /// Connects to the display of DISPLAY. `report` hears of each window that is mapped or unmapped.
    explicit WindowWatch(Report report);

    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] int fileDescriptor() const;
    /// Handles what the server has said so far. False when it has gone.
    bool handleEvents();

    /// Stands in for a window manager as far as it takes for a panel to start: some wait long for this property.
    void announceOneDesktop();
    /// Moves the pointer there and presses and releases that button. The time just before the press goes out.
    std::int64_t click(int x, int y, int button);
    /// Moves the pointer.
    void movePointer(int x, int y);
    /// Presses and releases a key.
    void pressKey(std::uint8_t keycode);
    /// Changes a property of the root window that no other program knows, and returns when the server has done so.
    void changeRootProperty();
    /// The window's place on the screen, as "X Y WIDTH HEIGHT"; empty when there is no such window.
    [[nodiscard]] std::string placeOf(xcb_window_t window);
    /// The window that takes status items on screen 0; XCB_NONE when there is none.
    [[nodiscard]] xcb_window_t tray();

private:
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const noexcept { xcb_disconnect(connection); }
    };

    void handle(const xcb_generic_event_t &event);
    [[nodiscard]] bool isMapped(xcb_window_t window);
    void setMapped(xcb_window_t window, bool mapped);
    void sync();
    [[nodiscard]] xcb_atom_t atom(const std::string &name);

    Report m_report;
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_root = XCB_NONE;
    std::unordered_map<xcb_window_t, Window> m_windows;
    std::uint32_t m_changes = 0;
};
