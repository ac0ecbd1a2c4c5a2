#include "platform/linux/item/menu/MenuRequests.h"

#include "platform/linux/bus/Contracts.h"
#include "platform/linux/include/MenuObjectPath.h"
#include "platform/linux/item/menu/KeyboardGrab.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QApplication>
#include <QMetaMethod>

#include <utility>

std::shared_ptr<MenuRequests> MenuRequests::shared()
{
    static std::weak_ptr<MenuRequests> present;
    std::shared_ptr<MenuRequests> object = present.lock();
    if (!object) {
        object = std::make_shared<MenuRequests>(SessionBus::instance());
        present = object;
    }
    return object;
}

MenuRequests::MenuRequests(SessionBus &bus)
    : ObjectInTurns(menuInterface(), menuContract)
    , m_bus(bus)
{
    connect(&m_bus, &SessionBus::connected, this, &MenuRequests::serve);
    serve();
}

MenuRequests::~MenuRequests()
{
    m_bus.connection().unregisterObject(menuObjectPath());
}

void MenuRequests::serve()
{
    if (m_bus.isConnected()) {
        m_bus.connection().registerVirtualObject(menuObjectPath(), this);
    }
}

bool MenuRequests::hasMenu() const
{
    return isSignalConnected(QMetaMethod::fromSignal(&MenuRequests::requested));
}

/// Empty when it can be opened; so with the next one.
QString MenuRequests::whyNoMenu() const
{
    if (!hasMenu()) {
        return QStringLiteral("There is no status item");
    }
    return m_isMenuReady && !m_isMenuReady() ? QStringLiteral("A panel has to be answered first") : QString();
}

QString MenuRequests::whyNoMessage() const
{
    return m_isMessageThere && m_isMessageThere() ? QString()
                                                  : QStringLiteral("There is no message that could be answered");
}

void MenuRequests::setMenuQuestion(std::function<bool()> isMenuReady)
{
    m_isMenuReady = std::move(isMenuReady);
}

void MenuRequests::setMessageQuestion(std::function<bool()> isMessageThere)
{
    m_isMessageThere = std::move(isMessageThere);
}

WorkInTurns::Work MenuRequests::workFor(const QDBusMessage &call, const QDBusConnection &connection)
{
    const bool isForMenu = call.member() == QLatin1String("ShowMenu");
    if (!isForMenu && call.member() != QLatin1String("ShowMessage")) {
        return {};
    }
    return [this, isForMenu, call, connection] {
        if (!call.signature().isEmpty()) {
            refuse(call, connection, QDBusError::InvalidArgs, call.member() + QStringLiteral(" has no arguments"));
            return;
        }
        if (const QString obstacle = isForMenu ? whyNoMenu() : whyNoMessage(); !obstacle.isEmpty()) {
            refuse(call, connection, QDBusError::Failed, obstacle);
            return;
        }
        if (call.isReplyRequired()) {
            connection.send(call.createReply());
        }
        if (isForMenu) {
            showMenu();
        } else {
            showMessage();
        }
    };
}

void MenuRequests::showMenu()
{
    whenKeyboardCanBeHad([this] {
        RootProperties::catchUpAndShow(this, [this] {
            if (!QApplication::activePopupWidget()) {
                Q_EMIT requested();
            }
        });
    });
}

void MenuRequests::showMessage()
{
    whenKeyboardCanBeHad([this] {
        if (QApplication::activePopupWidget() == nullptr) {
            Q_EMIT messageRequested();
        }
    });
}

void MenuRequests::whenKeyboardCanBeHad(const std::function<void()> &proceed)
{
    if (m_isPending) {
        return; // A key that is held down asks again and again.
    }
    m_isPending = true;
    whenKeyboardIsFree(this, [this, proceed] {
        m_isPending = false;
        proceed();
    });
}
