#include "showmenu/AgentOfDisplay.h"

#include "platform/ProductTexts.h"

#include <xcb/res.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace
{

struct Free {
    void operator()(void *block) const noexcept { std::free(block); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

xcb_window_t selectionOwner(xcb_connection_t *x, const std::string &selection)
{
    const auto atomCookie = xcb_intern_atom(x, 1, static_cast<std::uint16_t>(selection.size()), selection.c_str());
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(x, atomCookie, nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE) {
        return XCB_NONE;
    }
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, atom->atom), nullptr));
    return owner ? owner->owner : XCB_NONE;
}

std::optional<pid_t> processOf(xcb_connection_t *x, xcb_window_t window)
{
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(x, &xcb_res_id);
    if (window == XCB_NONE || !extension || !extension->present) {
        return std::nullopt;
    }
    const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(x, 1, &wanted);
    const Reply<xcb_res_query_client_ids_reply_t> ids(xcb_res_query_client_ids_reply(x, cookie, nullptr));
    if (ids) {
        for (auto it = xcb_res_query_client_ids_ids_iterator(ids.get()); it.rem > 0;
             xcb_res_client_id_value_next(&it)) {
            if (xcb_res_client_id_value_value_length(it.data) > 0) {
                return static_cast<pid_t>(*xcb_res_client_id_value_value(it.data));
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<pid_t> agentOfDisplay()
{
    int screen = 0;
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> x(xcb_connect(nullptr, &screen),
                                                                         &xcb_disconnect);
    if (xcb_connection_has_error(x.get()) != 0) {
        return std::nullopt;
    }
    return processOf(x.get(), selectionOwner(x.get(), ProductTexts::lockSelection + std::to_string(screen)));
}
