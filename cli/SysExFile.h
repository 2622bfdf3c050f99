// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

class RemoteMemAPI;

// The device's dumps in a file of system exclusive messages, each from 0xF0 to 0xF7. Thread: GUI.
namespace SysExFile
{

inline constexpr qint64 MaximumBytes = 16 * 1024 * 1024;

// The messages of a full send of banks 0 and 1, as they go over the wire.
QByteArray fullSend(RemoteMemAPI *api);

// What a file has for a document.
struct Import
{
    // Whole messages without their 0xF0, in order; all of them checked.
    QList<QByteArray> messages;
    QList<int> storedTemplates; // from 0, in the order in which the file has them
    QList<int> editTemplates;
    bool hasCurrentTemplate = false;
};

// Reads dumps of either model identifier. What belongs to another device, and messages of this one
// that are no dump and no current template number, are passed over. Any fault in a dump refuses the
// whole: a message cut off, a bad checksum, a missing block, a value out of its range. Safe for any
// bytes. On failure *error says what, and where in bytes from the file's start.
bool read(const QByteArray &bytes, Import *import, QString *error);

// Writes it into banks 0 and 1, by way of the hardware banks, as if the instrument had sent it. A
// template that is not in it keeps what it has.
void apply(const Import &import, RemoteMemAPI *api);

} // namespace SysExFile
