#include "platform/linux/include/ProcessOfWindow.h"

#include "platform/linux/include/XConnection.h"

#include <xcb/res.h>

pid_t processOfWindow(xcb_window_t window)
{
    xcb_connection_t *connection = XConnection::get();
    if (!XConnection::extension(connection, xcb_res_id)) {
        return 0;
    }
    const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(connection, 1, &wanted);
    const XcbReply<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(connection, cookie, nullptr));
    if (!reply) {
        return 0;
    }
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0; xcb_res_client_id_value_next(&it)) {
        if (it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
            xcb_res_client_id_value_value_length(it.data) > 0) {
            return static_cast<pid_t>(*xcb_res_client_id_value_value(it.data));
        }
    }
    return 0;
}
