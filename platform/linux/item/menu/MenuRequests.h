#pragma once

#include "platform/linux/bus/ObjectInTurns.h"
#include "platform/linux/include/SessionBus.h"

#include <functional>
#include <memory>

/// The object by which other programs have the menu opened, or have the message on the screen given the keyboard, as
/// those do that a key is bound to: the contract resources/dbus/com.tamborel.kivune.Menu.xml. On the bus as long as it
/// lives, across the bus's own ends. Main thread only.
class MenuRequests final : public ObjectInTurns
{
    Q_OBJECT

public:
    /// The one on the session bus, which lives as long as somebody has it.
    [[nodiscard]] static std::shared_ptr<MenuRequests> shared();

    /// `bus` must outlive this object.
    explicit MenuRequests(SessionBus &bus);
    ~MenuRequests() override;

    /// As a call of ShowMenu.
    void showMenu();

    /// Tells whether a press of the item opens the menu at present: ShowMenu is refused when it does not.
    void setMenuQuestion(std::function<bool()> isMenuReady);

    /// Tells whether there is a message that could get the keyboard: ShowMessage is refused when there is none, and
    /// while there is no question to ask, as at first.
    void setMessageQuestion(std::function<bool()> isMessageThere);

Q_SIGNALS:
    /// The menu is to open, unless one is open already. From the event loop, when a menu would get the keyboard. Calls
    /// of ShowMenu are refused while nobody is connected.
    void requested();
    /// The message is to get the keyboard. From the event loop, when that is free; never while a menu is open.
    void messageRequested();

private:
    [[nodiscard]] WorkInTurns::Work workFor(const QDBusMessage &call, const QDBusConnection &connection) override;
    void serve();
    [[nodiscard]] bool hasMenu() const;
    [[nodiscard]] QString whyNoMenu() const;
    [[nodiscard]] QString whyNoMessage() const;
    void showMessage();
    void whenKeyboardCanBeHad(const std::function<void()> &proceed);

    SessionBus &m_bus;
    std::function<bool()> m_isMenuReady;
    std::function<bool()> m_isMessageThere;
    bool m_isPending = false; ///< Between a request and the moment at which the keyboard is free.
};
