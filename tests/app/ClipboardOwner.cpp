// SPDX-License-Identifier: GPL-3.0-or-later
// clipboard-owner TYPE MANNER FILE: another program of the desktop, which owns the X clipboard and
// offers the bytes of FILE under the MIME type TYPE. It says "owning" once it does, and ends when
// it is killed, when another takes the clipboard, or as its manner is:
//
//   serves           gives what it is asked for
//   refuses          says that it has nothing after all
//   hangs            answers nothing, and says "asked" each time
//   dies-at-targets  ends when it is asked what it has
//   dies-at-data     ends when it is asked for the bytes
//   dies-half-way    begins to send the bytes piece by piece, and ends after the first
//   pieces           sends the bytes piece by piece, as large ones are sent
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace
{

constexpr std::size_t PieceBytes = 64 * 1024;

xcb_connection_t *connection = nullptr;

xcb_atom_t atom(const std::string &name)
{
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr);
    const xcb_atom_t result = reply != nullptr ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return result;
}

void put(const xcb_selection_request_event_t &request, xcb_atom_t type, std::uint8_t format,
         const void *data, std::size_t count)
{
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        type, format, static_cast<std::uint32_t>(count), data);
}

void notify(const xcb_selection_request_event_t &request, bool isGiven)
{
    xcb_selection_notify_event_t event{};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = request.target;
    event.property = isGiven ? request.property : xcb_atom_t(XCB_ATOM_NONE);
    // An event has 32 bytes, whatever the structure has.
    char bytes[32] = {};
    std::memcpy(bytes, &event, std::min(sizeof event, sizeof bytes));
    xcb_send_event(connection, 0, request.requestor, 0, bytes);
    xcb_flush(connection);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        return 2;
    }
    const std::string type = argv[1];
    const std::string manner = argv[2];
    std::ifstream file(argv[3], std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};

    connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        return 1;
    }
    const xcb_atom_t clipboard = atom("CLIPBOARD");
    const xcb_atom_t targets = atom("TARGETS");
    const xcb_atom_t incremental = atom("INCR");
    const xcb_atom_t data = atom(type);
    const xcb_window_t window = xcb_generate_id(connection);
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    xcb_set_selection_owner(connection, window, clipboard, XCB_CURRENT_TIME);
    // The reply comes behind all of the above.
    std::free(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, clipboard), nullptr));
    std::puts("owning");
    std::fflush(stdout);

    xcb_selection_request_event_t sending{}; // that whose bytes go out piece by piece
    std::size_t sent = 0;
    bool isSending = false;
    while (xcb_generic_event_t *event = xcb_wait_for_event(connection)) {
        const int kind = event->response_type & 0x7F;
        if (kind == XCB_SELECTION_CLEAR) {
            return 0;
        }
        if (kind == XCB_SELECTION_REQUEST) {
            const auto &request = *reinterpret_cast<xcb_selection_request_event_t *>(event);
            if (request.target == targets && manner == "dies-at-targets") {
                return 0;
            }
            if (manner == "hangs") {
                std::puts("asked");
                std::fflush(stdout);
                std::free(event);
                continue;
            }
            if (request.target == data && manner == "dies-at-data") {
                return 0;
            }
            if (request.target == targets) {
                const xcb_atom_t offered[] = {targets, data};
                put(request, XCB_ATOM_ATOM, 32, offered, 2);
                notify(request, true);
            } else if (request.target != data || manner == "refuses") {
                notify(request, false);
            } else if (manner == "serves") {
                put(request, data, 8, bytes.data(), bytes.size());
                notify(request, true);
            } else {
                const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
                xcb_change_window_attributes(connection, request.requestor, XCB_CW_EVENT_MASK,
                                             &mask);
                const auto size = static_cast<std::uint32_t>(bytes.size());
                put(request, incremental, 32, &size, 1);
                notify(request, true);
                sending = request;
                sent = 0;
                isSending = true;
            }
        } else if (kind == XCB_PROPERTY_NOTIFY && isSending) {
            const auto &change = *reinterpret_cast<xcb_property_notify_event_t *>(event);
            // Taken away by who reads it: room for the next piece.
            if (change.state == XCB_PROPERTY_DELETE && change.atom == sending.property) {
                if (sent > 0 && manner == "dies-half-way") {
                    return 0;
                }
                const std::size_t count = std::min(PieceBytes, bytes.size() - sent);
                put(sending, data, 8, bytes.data() + sent, count);
                xcb_flush(connection);
                sent += count;
                isSending = count > 0; // an empty piece is the end
            }
        }
        std::free(event);
    }
    return 0;
}
