// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/NumericParameter.h"

#include <QtCore/QString>

// One knob: its display name (at most 15 characters), its remote identifier (at most 9, lower case,
// one type digit and eight hexadecimal digits), its control change number (0 to 127) and its
// display format (0 or 1). A text over its limit is refused whole. Setters return true only on a
// change.
class ControllerData
{
public:
    static constexpr int MaximumDisplayNameLength = 15;
    static constexpr int MaximumRemoteTagIDLength = 9;

    ControllerData();

    bool setDisplayName(const QString &name);
    // Turned to lower case first.
    bool setRemoteTagID(const QString &id);
    bool setCCNum(int value) { return ccNum.setCurrentValue(value); }
    bool setDispFormat(int value) { return dispFormat.setCurrentValue(value); }

    // Of a knob that lives on, a reference; of a temporary one, the text itself.
    const QString &getDisplayName() const & { return displayName; }
    QString getDisplayName() && { return displayName; }
    const QString &getRemoteTagID() const & { return remoteTagID; }
    QString getRemoteTagID() && { return remoteTagID; }
    const NumericParameter &getCCNum() const { return ccNum; }
    const NumericParameter &getDispFormat() const { return dispFormat; }

    bool operator==(const ControllerData &other) const = default;

private:
    QString displayName;
    QString remoteTagID;
    NumericParameter ccNum{0, 127, 0};
    NumericParameter dispFormat{0, 1, 0};
};
