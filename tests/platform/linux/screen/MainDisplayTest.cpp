#include "platform/linux/include/MainDisplay.h"

#include "tests/support/PrivateXServer.h"
#include "tests/support/ScopedVariable.h"

#include <gtest/gtest.h>

namespace
{

TEST(MainDisplay, IsNoneOnceTheServerHasGone)
{
    PrivateXServer server;
    ASSERT_TRUE(server.start());
    const ScopedVariable authority("XAUTHORITY", server.authority().toLocal8Bit());
    xcb_connection_t *x = xcb_connect(server.display().toLocal8Bit().constData(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(x), 0);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    EXPECT_TRUE(mainDisplay(x, root));

    xcb_connection_t *unasked = xcb_connect(server.display().toLocal8Bit().constData(), nullptr);
    server.stop();
    EXPECT_FALSE(mainDisplay(x, root));
    EXPECT_FALSE(mainDisplay(unasked, root)) << "it never told of its extensions";
    xcb_disconnect(unasked);
    xcb_disconnect(x);
}

} // namespace
