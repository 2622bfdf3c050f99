// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/WindowLevel.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

#ifdef Q_OS_LINUX
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#endif

#ifdef Q_OS_LINUX
namespace
{

xcb_atom_t atom(xcb_connection_t *connection, const char *name)
{
    const xcb_intern_atom_cookie_t cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

xcb_window_t rootOf(xcb_connection_t *connection, xcb_window_t window)
{
    const std::unique_ptr<xcb_get_geometry_reply_t, decltype(&std::free)> reply(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr),
        &std::free);
    return reply ? reply->root : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

// The state message of the Extended Window Manager Hints, sent to the root window.
void sendStateMessage(xcb_connection_t *connection, xcb_window_t window, bool above)
{
    const xcb_window_t root = rootOf(connection, window);
    if (root == XCB_WINDOW_NONE) {
        return;
    }
    enum Action : std::uint32_t { Remove = 0, Add = 1 };
    constexpr std::uint32_t FromApplication = 1;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(connection, "_NET_WM_STATE");
    message.data.data32[0] = above ? Add : Remove;
    message.data.data32[1] = atom(connection, "_NET_WM_STATE_ABOVE");
    message.data.data32[3] = FromApplication;
    xcb_send_event(connection, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&message));
    xcb_flush(connection);
}

} // namespace
#endif

void setWindowLevel(QWidget *window, bool above)
{
#ifdef Q_OS_LINUX
    auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 != nullptr && window->testAttribute(Qt::WA_WState_Created)) {
        sendStateMessage(x11->connection(), static_cast<xcb_window_t>(window->winId()), above);
    }
#else
    if (QWindow *handle = window->windowHandle()) {
        handle->setFlag(Qt::WindowStaysOnTopHint, above);
    }
#endif
}
