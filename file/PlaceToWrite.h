// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

// The file that a name leads to through links, which stay as they are; it need not be there yet.
// Empty if the links lead in a ring, or to something that is no file: replacing would remove the
// ring, the pipe or the device. Thread: any.
QString placeToWrite(const QString &name);
