// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

class QFileDevice;

// The file that a name leads to through links, which stay as they are; it need not be there yet.
// Empty if the links lead in a ring, or to something that is no file: replacing would remove the
// ring, the pipe or the device. Thread: any.
QString placeToWrite(const QString &name);

// Gives an open file, which is to replace the one at the place, that one's owner, group and mode,
// as far as the user may; nothing if there is none. Otherwise a file would become the
// administrator's as soon as he changes something in it. Thread: any.
void keepOwnerAndMode(const QString &place, QFileDevice *replacement);
