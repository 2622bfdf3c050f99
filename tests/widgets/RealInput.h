// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QPoint>

struct xcb_connection_t;

// Mouse and keys as the X server itself makes them: the pointer really moves, and a program that
// places it is seen to. Every call returns when the server has done it; the program under test
// hears of it through its event loop.
class RealInput
{
public:
    RealInput();
    ~RealInput();
    RealInput(const RealInput &) = delete;
    RealInput &operator=(const RealInput &) = delete;

    // In pixels of the screen.
    void moveTo(const QPoint &position);
    void moveBy(int dx, int dy);
    QPoint position() const;

    void pressLeft();
    void releaseLeft();
    void press(int button);
    void release(int button);
    // Above 0 away from the user.
    void turnWheel(int notches);
    void holdShift();
    void releaseShift();
    void holdControl();
    void releaseControl();

private:
    void fake(unsigned char type, unsigned char detail, const QPoint &position = {});
    unsigned char keycodeOf(unsigned int symbol) const;

    xcb_connection_t *m_connection;
    unsigned int m_root;
    unsigned char m_shift;
    unsigned char m_control;
};
