#include "platform/linux/desktop/XSettingsWatch.h"

#include "platform/linux/include/XConnection.h"

#include <QCoreApplication>

#include <utility>

namespace
{

constexpr char settingsProperty[] = "_XSETTINGS_SETTINGS";

xcb_intern_atom_cookie_t askForAtom(xcb_connection_t *x, const QByteArray &name)
{
    return xcb_intern_atom(x, false, static_cast<std::uint16_t>(name.size()), name.constData());
}

xcb_atom_t answeredAtom(xcb_connection_t *x, xcb_intern_atom_cookie_t cookie)
{
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

QByteArray xSettingsSelection(int screen)
{
    return "_XSETTINGS_S" + QByteArray::number(screen);
}

XSettings askForXSettings(xcb_connection_t *x, int screen)
{
    const auto selectionCookie = askForAtom(x, xSettingsSelection(screen));
    const auto propertyCookie = askForAtom(x, settingsProperty);
    const xcb_atom_t selection = answeredAtom(x, selectionCookie);
    const xcb_atom_t property = answeredAtom(x, propertyCookie);
    const auto ownerCookie = xcb_get_selection_owner(x, selection);
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(x, ownerCookie, nullptr));
    if (!owner || owner->owner == XCB_NONE) {
        return {};
    }
    // The daemon may have gone by now: there is no answer then, and no word of it in Qt's log.
    const auto cookie = xcb_get_property(x, false, owner->owner, property, property, 0, maxXSettingsBytes / 4);
    xcb_generic_error_t *error = nullptr;
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, &error));
    const XcbReply<xcb_generic_error_t> refusal(error);
    if (!reply || reply->format != 8 || reply->bytes_after != 0) {
        return {};
    }
    const QByteArray bytes(static_cast<const char *>(xcb_get_property_value(reply.get())),
                           xcb_get_property_value_length(reply.get()));
    return readXSettings(bytes).value_or(XSettings());
}

XSettingsWatch::XSettingsWatch(QObject *parent)
    : QObject(parent)
    , m_selection(xSettingsSelection(XConnection::screenNumber()), [this](xcb_window_t manager) { follow(manager); })
{
    if (XConnection::get()) {
        QCoreApplication::instance()->installNativeEventFilter(this);
        follow(m_selection.firstOwner());
    }
}

XSettings XSettingsWatch::settings()
{
    xcb_connection_t *const x = XConnection::get();
    return x ? askForXSettings(x, XConnection::screenNumber()) : XSettings();
}

void XSettingsWatch::follow(xcb_window_t manager)
{
    m_manager = manager;
    if (manager != XCB_NONE) {
        // Qt may have asked for the same on this connection, for which there is but one mask.
        constexpr std::uint32_t changes = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_connection_t *const x = XConnection::get();
        const auto cookie = xcb_change_window_attributes_checked(x, manager, XCB_CW_EVENT_MASK, &changes);
        xcb_discard_reply(x, cookie.sequence);
        xcb_flush(x);
    }
    tellOfChange();
}

bool XSettingsWatch::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (m_manager != XCB_NONE && XConnection::eventType(*event) == XCB_PROPERTY_NOTIFY) {
        const auto *notify = reinterpret_cast<const xcb_property_notify_event_t *>(event);
        if (notify->window == m_manager && notify->atom == XConnection::atom(settingsProperty)) {
            tellOfChange();
        }
    }
    return false;
}

void XSettingsWatch::tellOfChange()
{
    // Not from inside Qt's event filters; and several changes at once are told as one.
    if (!std::exchange(m_isToTell, true)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_isToTell = false;
                Q_EMIT changed();
            },
            Qt::QueuedConnection);
    }
}
