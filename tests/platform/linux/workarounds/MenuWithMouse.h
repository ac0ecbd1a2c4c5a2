#pragma once

#include "tests/session/support/XInput.h"
#include "tests/support/TestXServer.h"
#include "tests/support/WaitUntil.h"

#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QWindow>

#include <gtest/gtest.h>

#include <X11/keysym.h>

/// A menu as a click on the status item opens it, and a user with a mouse.
class MenuWithMouse : public testing::Test
{
protected:
    MenuWithMouse()
    {
        submenu = menu.addMenu(QStringLiteral("An entry with a submenu"));
        choice = submenu->addAction(QStringLiteral("An entry of the submenu"));
        disabled = menu.addAction(QStringLiteral("A disabled entry"));
        disabled->setEnabled(false);
        enabled = menu.addAction(QStringLiteral("An entry"));
        QObject::connect(&menu, &QMenu::triggered, &menu, [this](const QAction *entry) { chosen = entry; });
    }

    void SetUp() override { user.move(faraway); }
    void TearDown() override
    {
        user.release();
        menu.close();
        EXPECT_TRUE(waitUntil([this] { return user.isFree(); }));
    }

    /// A window that knows where the mouse has moved to in it.
    class Witness final : public QWindow
    {
    public:
        QPoint mouse; ///< Where it was then.

    protected:
        void mouseMoveEvent(QMouseEvent *event) override { mouse = event->globalPosition().toPoint(); }
    };

    static constexpr QPoint faraway{600, 600};
    static constexpr QPoint corner{100, 100};

    /// Opens the menu as a click on a window that is not Qt's does.
    void open()
    {
        menu.popup(corner);
        ASSERT_TRUE(waitUntil([this] { return isOpen(menu) && !user.isFree(); }));
    }

    void openSubmenuByKey()
    {
        user.key(XK_Down);
        user.key(XK_Right);
        ASSERT_TRUE(waitUntil([this] { return isOpen(*submenu); }));
    }

    /// Where an entry is whenever the menu is open.
    [[nodiscard]] QPoint placeOf(QAction *entry)
    {
        open();
        if (entry == choice) {
            openSubmenuByKey();
        }
        const QMenu &holder = entry == choice ? *submenu : menu;
        const QPoint place = holder.mapToGlobal(holder.actionGeometry(entry).center());
        menu.close();
        EXPECT_TRUE(waitUntil([this] { return user.isFree(); }));
        return place;
    }

    /// Moves the mouse there and away again, the latter unseen by Qt.
    void letQtBelieveInTheMouseAt(QPoint place)
    {
        Witness window;
        window.setFlags(Qt::BypassWindowManagerHint);
        window.setGeometry(QRect(place - QPoint(50, 50), QSize(100, 100)));
        window.show();
        ASSERT_TRUE(waitUntil([&] { return window.isExposed(); }));
        // Qt keeps a move to where it saw the mouse last to itself.
        for (const QPoint point : {place - QPoint(1, 1), place}) {
            user.move(point);
            ASSERT_TRUE(waitUntil([&] { return window.mouse == point; }));
        }
        window.hide();
        ASSERT_TRUE(waitUntil([&] { return !window.isExposed(); }));
        user.move(faraway);
    }

    /// Presses the mouse, and returns when Qt has done what it does then.
    void press()
    {
        user.press();
        ASSERT_TRUE(waitUntil([] { return QGuiApplication::mouseButtons() != Qt::NoButton; }));
    }

    /// Opens the menu and closes it again, as often.
    void openAndClose(int times)
    {
        for (int i = 0; i < times; ++i) {
            open();
            ASSERT_TRUE(waitUntil([this] { return QGuiApplication::focusWindow() == menu.windowHandle(); }));
            menu.close();
            ASSERT_TRUE(waitUntil([this] { return user.isFree() && !QGuiApplication::focusWindow(); }));
        }
    }

    /// To how many the menu's window tells where its focus is.
    [[nodiscard]] int listenersToItsFocus() const
    {
        struct Opened : QObject {
            using QObject::receivers;
        };
        return (menu.windowHandle()->*&Opened::receivers)(SIGNAL(focusObjectChanged(QObject *)));
    }

    [[nodiscard]] static bool isOpen(const QMenu &menu)
    {
        return menu.isVisible() && menu.windowHandle() && menu.windowHandle()->isExposed();
    }

    XInput user{testXServer()};
    QMenu menu;
    QMenu *submenu = nullptr;
    QAction *choice = nullptr;
    QAction *disabled = nullptr;
    QAction *enabled = nullptr;
    const QAction *chosen = nullptr;
};
