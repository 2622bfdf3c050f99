// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>

// A copy that shares nothing with the list, for a list that another thread goes on appending to. A
// shared one is safe, too; but the append asks for its number of owners without a barrier, behind
// which the thread sanitizer misses the end of the other owner's reading.
template <typename T>
QList<T> ownCopy(const QList<T> &list)
{
    return QList<T>(list.cbegin(), list.cend());
}
