// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ParamAddress.h"

#include <QtCore/QList>

#include <array>
#include <cstdint>

// What has arrived of the device's dumps: for each template of the stored bank (type 0x60) and of
// the edit buffer (type 0x6F) the good blocks between its last header and now. A plain value.
struct BulkReceipt
{
    static constexpr int BlockCount = 1 + ParamAddress::KnobCount; // template block, knob blocks
    enum Kind { Stored = 0, EditBuffer = 1 };

    // Bit 0 the template block, bit 1 + k the block of knob k.
    std::array<std::array<std::uint16_t, ParamAddress::TemplateCount>, 2> blocks{};
    std::array<std::array<bool, ParamAddress::TemplateCount>, 2> finished{}; // footer seen

    // A footer has ended the dump and all thirteen blocks were good.
    bool isComplete(Kind kind, int template_) const
    {
        const auto number = static_cast<std::size_t>(template_);
        return finished[kind][number] && blocks[kind][number] == (1u << BlockCount) - 1;
    }

    // Template numbers from 0.
    QList<int> incomplete(Kind kind) const
    {
        QList<int> numbers;
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            if (!isComplete(kind, number)) {
                numbers.append(number);
            }
        }
        return numbers;
    }
};
