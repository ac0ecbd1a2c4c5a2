#include "tests/support/TestXServer.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
PrivateXServer *theServer = nullptr;
}

PrivateXServer &testXServer()
{
    return *theServer;
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    // Before the application object, which connects to the display, and ended after it.
    PrivateXServer server;
    theServer = &server;
    if (!server.start()) {
        return EXIT_FAILURE;
    }
    qputenv("DISPLAY", server.display().toLocal8Bit());
    qputenv("XAUTHORITY", server.authority().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "xcb");

    QApplication::setDesktopSettingsAware(false);
    // Where there is no bus Qt would wait for the desktop portal for ever, which leaks.
    qputenv("QT_NO_XDG_DESKTOP_PORTAL", "1");
    QApplication application(argc, argv);
    qunsetenv("QT_NO_XDG_DESKTOP_PORTAL");
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
