#include "platform/StatusItem.h"
#include "platform/linux/include/XConnection.h"
#include "tests/platform/linux/item/FakeTray.h"
#include "tests/support/WaitUntil.h"

#include <QPixmap>

#include <gtest/gtest.h>

namespace
{

QByteArray textOf(xcb_window_t window, xcb_atom_t property)
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_get_property(x, false, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 64);
    const XcbReply<xcb_get_property_reply_t> text(xcb_get_property_reply(x, cookie, nullptr));
    return text ? QByteArray(static_cast<const char *>(xcb_get_property_value(text.get())),
                             xcb_get_property_value_length(text.get()))
                : QByteArray();
}

TEST(StatusItemName, OfTheWindowIsTheTitleOrElseTheToolTipAndItsClassStays)
{
    FakeTray tray({100, 50});
    StatusItem item;
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::red);
    item.setImage(pixmap);
    ASSERT_TRUE(waitUntil([&] { return tray.serve(), item.frame().has_value(); }));
    const auto names = [window = static_cast<xcb_window_t>(item.getWindow())] {
        const QByteArray name = textOf(window, XConnection::atom("_NET_WM_NAME"));
        EXPECT_EQ(textOf(window, XCB_ATOM_WM_NAME), name);
        EXPECT_EQ(textOf(window, XCB_ATOM_WM_CLASS), QByteArray("kivmenua\0kivmenua\0", 18));
        return name;
    };
    EXPECT_EQ(names(), "kivmenua");
    item.setToolTip(QStringLiteral("Kivune Menu"));
    EXPECT_EQ(names(), "Kivune Menu");
    item.setTitle(QStringLiteral("Title"));
    EXPECT_EQ(names(), "Title");
}

} // namespace
