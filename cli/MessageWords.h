// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

struct tagMPEVENT;

// MIDI traffic in words for a person. Safe for any bytes. Thread: any.
namespace MessageWords
{

// A system exclusive message from its manufacturer byte to its 0xF7.
QString ofSysEx(const QByteArray &message);
QString ofEvent(const tagMPEVENT &event);

} // namespace MessageWords
