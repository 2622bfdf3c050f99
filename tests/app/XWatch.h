// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QPoint>
#include <QtCore/QString>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

// Looks at a window from outside, as the X server and the window manager know it, on a connection
// of its own.
class XWatch
{
public:
    explicit XWatch(quint64 window)
        : m_connection(xcb_connect(nullptr, nullptr))
        , m_window(static_cast<xcb_window_t>(window))
    {
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, m_window, XCB_CW_EVENT_MASK, &mask);
        isMapped();
    }
    ~XWatch() { xcb_disconnect(m_connection); }
    XWatch(const XWatch &) = delete;
    XWatch &operator=(const XWatch &) = delete;

    // By the window manager's word, such as "_NET_WM_STATE_ABOVE".
    bool hasState(const char *state) const
    {
        const Reply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(m_connection,
                                   xcb_get_property(m_connection, 0, m_window,
                                                    atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, 64),
                                   nullptr));
        if (!reply) {
            return false;
        }
        const auto *atoms = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
        const auto count = static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) /
                           sizeof(xcb_atom_t);
        const xcb_atom_t wanted = atom(state);
        for (std::size_t i = 0; i < count; ++i) {
            if (atoms[i] == wanted) {
                return true;
            }
        }
        return false;
    }
    bool isAbove() const { return hasState("_NET_WM_STATE_ABOVE"); }
    bool isMapped() const
    {
        const Reply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, m_window), nullptr));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    // Of its upper left corner on the screen. A program believes that it is where it has asked to
    // be until it is told otherwise; this is where it is.
    QPoint position() const
    {
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const Reply<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(
            m_connection, xcb_translate_coordinates(m_connection, m_window, root, 0, 0), nullptr));
        return reply ? QPoint(reply->dst_x, reply->dst_y) : QPoint();
    }
    // How often the window was hidden or shown since the last call, however shortly.
    int takeMappings() const
    {
        isMapped(); // everything that happened until now has been sent
        int count = 0;
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            const int type = event->response_type & 0x7F;
            count += type == XCB_UNMAP_NOTIFY || type == XCB_MAP_NOTIFY ? 1 : 0;
        }
        return count;
    }

private:
    struct Free
    {
        void operator()(void *reply) const { std::free(reply); }
    };
    template <typename T>
    using Reply = std::unique_ptr<T, Free>;

    xcb_atom_t atom(const char *name) const
    {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            m_connection,
            xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
            nullptr));
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_window;
};
