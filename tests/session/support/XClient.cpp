#include "tests/session/support/XClient.h"

#include <QFile>

#include <gtest/gtest.h>
#include <xcb/res.h>

XClient::XClient(const PrivateXServer &server)
{
    // The authority file has one entry, and its last field is the cookie of 16 bytes.
    QFile authority(server.authority());
    EXPECT_TRUE(authority.open(QIODevice::ReadOnly));
    QByteArray cookie = authority.readAll().right(16);
    QByteArray name("MIT-MAGIC-COOKIE-1");
    xcb_auth_info_t info{static_cast<int>(name.size()), name.data(), static_cast<int>(cookie.size()), cookie.data()};
    m_connection = xcb_connect_to_display_with_auth_info(server.display().toLatin1().constData(), &info, nullptr);
    EXPECT_TRUE(isConnected()) << "cannot connect to " << qPrintable(server.display());
    if (isConnected()) {
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    }
}

XClient::~XClient()
{
    xcb_disconnect(m_connection);
}

bool XClient::isConnected() const
{
    return xcb_connection_has_error(m_connection) == 0;
}

xcb_atom_t XClient::atom(const QByteArray &name) const
{
    const auto cookie = xcb_intern_atom(m_connection, false, static_cast<std::uint16_t>(name.size()), name.constData());
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

qint64 XClient::pidOf(xcb_window_t window) const
{
    // A window's own _NET_WM_PID is what its program says; this is what the server knows.
    const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const XReply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(connection(), xcb_res_query_client_ids(connection(), 1, &spec), nullptr));
    if (!reply) {
        return 0;
    }
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem; xcb_res_client_id_value_next(&it)) {
        if (it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
            xcb_res_client_id_value_value_length(it.data)) {
            return *xcb_res_client_id_value_value(it.data);
        }
    }
    return 0;
}
