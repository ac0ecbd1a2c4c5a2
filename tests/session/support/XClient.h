#pragma once

#include "tests/support/PrivateXServer.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

/// A reply of xcb, which is released by free().
struct FreeReply {
    void operator()(void *block) const noexcept { std::free(block); }
};
template <typename T>
using XReply = std::unique_ptr<T, FreeReply>;

/// The test's own connection to a private X server, made without a look at DISPLAY and XAUTHORITY.
class XClient
{
public:
    explicit XClient(const PrivateXServer &server);
    ~XClient();
    XClient(const XClient &) = delete;
    XClient &operator=(const XClient &) = delete;

    [[nodiscard]] bool isConnected() const;

protected:
    [[nodiscard]] xcb_connection_t *connection() const { return m_connection; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] xcb_atom_t atom(const QByteArray &name) const;
    /// The process behind a window, or any other resource; 0 when there is none.
    [[nodiscard]] qint64 pidOf(xcb_window_t window) const;

private:
    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen = nullptr;
};
