// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>

// The names of the address space: 28 words, each with the number that stands for it in one field of
// a ParamAddress (see there). Built once by each owner and never changed, so any thread may read.
class AddressTransTable
{
public:
    AddressTransTable();
    virtual ~AddressTransTable() = default;

    // A shared copy.
    QHash<QString, int> getTable() const { return m_table; }

private:
    QHash<QString, int> m_table;
};
