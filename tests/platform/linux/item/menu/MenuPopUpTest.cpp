#include "platform/screen/MenuPopUp.h"

#include "tests/platform/linux/screen/windows/NamedWindowManager.h"

#include <QMenu>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <vector>

namespace
{

/// What the menu's window says that it is, while the menu is open.
std::vector<xcb_atom_t> typesWhileOpen(QMenu &menu)
{
    std::vector<xcb_atom_t> types;
    QTimer::singleShot(0, &menu, [&] {
        xcb_connection_t *x = XConnection::get();
        const auto cookie = xcb_get_property(x, false, static_cast<xcb_window_t>(menu.winId()),
                                             XConnection::atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 0, 100);
        const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
        const std::span found(static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get())), reply->value_len);
        types.assign(found.begin(), found.end());
        menu.close();
    });
    popUpMenu(menu, QPoint(100, 100));
    return types;
}

/// Qt 6.4 never has the window say it.
bool isToSayThatItIsAMenu(const QMenu &menu)
{
    return menu.testAttribute(Qt::WA_X11NetWmWindowTypePopupMenu);
}

TEST(MenuPopUp, SaysThatItIsAMenuButToWlrootsWhichGivesAMenuNoKeyboard)
{
    QMenu menu;
    menu.addAction(QStringLiteral("One"));
    const std::vector<xcb_atom_t> usual = typesWhileOpen(menu);
    EXPECT_TRUE(isToSayThatItIsAMenu(menu));
    {
        const NamedWindowManager wlroots("wlroots wm");
        EXPECT_EQ(typesWhileOpen(menu), usual) << "it is not our session's";
        EXPECT_TRUE(isToSayThatItIsAMenu(menu));
        qputenv("WAYLAND_DISPLAY", "wayland-1");
        EXPECT_EQ(typesWhileOpen(menu), std::vector{XConnection::atom("_NET_WM_WINDOW_TYPE_NORMAL")});
        EXPECT_FALSE(isToSayThatItIsAMenu(menu));
    }
    EXPECT_EQ(typesWhileOpen(menu), usual);
    EXPECT_TRUE(isToSayThatItIsAMenu(menu));
    qunsetenv("WAYLAND_DISPLAY");
}

} // namespace
