#pragma once

#include <QPoint>

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

/// A tray of the test's own, on an X connection of its own: it owns the tray selection, takes in every icon that asks
/// and puts it at a fixed place. To end it is to lose its connection, as when a panel is killed.
class FakeTray final
{
public:
    enum class Visual { OfTheRoot, Translucent };

    explicit FakeTray(QPoint place, Visual visual = Visual::OfTheRoot);
    ~FakeTray();
    FakeTray(const FakeTray &) = delete;
    FakeTray &operator=(const FakeTray &) = delete;

    /// Works off the requests that have come in. To be called until what is waited for has happened.
    void serve();
    [[nodiscard]] const std::vector<xcb_window_t> &icons() const { return m_icons; }
    /// Puts its icons back on the root window and goes on owning the selection.
    void putOut();

    /// What XEmbed has an embedder say to its window.
    enum class Word { FocusIn = 4, FocusOut = 5 };
    void tell(xcb_window_t icon, Word word);
    /// Hands a key on that was pressed in its own window.
    void passKey(xcb_window_t icon, std::uint8_t key, std::uint16_t modifiers = 0);
    /// Hands the release of a key on as GNOME's shell does: by a press and a release of the same moment.
    void passRelease(xcb_window_t icon, std::uint8_t key);
    /// Presses the primary button on it, as a proxy does that has been pressed there.
    void passPress(xcb_window_t icon, QPoint place);
    /// The numbers of the XEmbed messages that its icons have sent.
    [[nodiscard]] const std::vector<std::uint32_t> &words() const { return m_words; }

    static constexpr int side = 24; ///< Of an icon, in pixels.

private:
    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen;
    xcb_window_t m_owner;
    xcb_window_t m_socket;
    std::vector<xcb_window_t> m_icons;
    std::vector<std::uint32_t> m_words;
};
