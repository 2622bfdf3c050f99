// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/RealInput.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <memory>

namespace
{

constexpr unsigned char Left = XCB_BUTTON_INDEX_1;
constexpr unsigned char WheelUp = XCB_BUTTON_INDEX_4;
constexpr unsigned char WheelDown = XCB_BUTTON_INDEX_5;
constexpr unsigned int ShiftSymbol = 0xFFE1; // the left one
constexpr unsigned int ControlSymbol = 0xFFE3;

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPtr = std::unique_ptr<Reply, Free>;

} // namespace

RealInput::RealInput()
    : m_connection(xcb_connect(nullptr, nullptr))
    , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root)
    , m_shift(keycodeOf(ShiftSymbol))
    , m_control(keycodeOf(ControlSymbol))
{
}

RealInput::~RealInput()
{
    xcb_disconnect(m_connection);
}

unsigned char RealInput::keycodeOf(unsigned int symbol) const
{
    const xcb_setup_t *setup = xcb_get_setup(m_connection);
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const ReplyPtr<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, setup->min_keycode, count), nullptr));
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    for (int key = 0; key < count; ++key) {
        if (symbols[key * mapping->keysyms_per_keycode] == symbol) {
            return static_cast<unsigned char>(setup->min_keycode + key);
        }
    }
    return 0;
}

void RealInput::fake(unsigned char type, unsigned char detail, const QPoint &position)
{
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_root,
                        static_cast<int16_t>(position.x()), static_cast<int16_t>(position.y()), 0);
    this->position();
}

void RealInput::moveTo(const QPoint &position)
{
    fake(XCB_MOTION_NOTIFY, 0, position);
}

void RealInput::moveBy(int dx, int dy)
{
    fake(XCB_MOTION_NOTIFY, 1, QPoint(dx, dy));
}

QPoint RealInput::position() const
{
    const ReplyPtr<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_root), nullptr));
    return {reply->root_x, reply->root_y};
}

void RealInput::pressLeft()
{
    press(Left);
}

void RealInput::releaseLeft()
{
    release(Left);
}

void RealInput::press(int button)
{
    fake(XCB_BUTTON_PRESS, static_cast<unsigned char>(button));
}

void RealInput::release(int button)
{
    fake(XCB_BUTTON_RELEASE, static_cast<unsigned char>(button));
}

void RealInput::turnWheel(int notches)
{
    const int button = notches > 0 ? WheelUp : WheelDown;
    for (int i = 0; i < std::abs(notches); ++i) {
        press(button);
        release(button);
    }
}

void RealInput::holdShift()
{
    fake(XCB_KEY_PRESS, m_shift);
}

void RealInput::releaseShift()
{
    fake(XCB_KEY_RELEASE, m_shift);
}

void RealInput::holdControl()
{
    fake(XCB_KEY_PRESS, m_control);
}

void RealInput::releaseControl()
{
    fake(XCB_KEY_RELEASE, m_control);
}
