// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <algorithm>
#include <array>
#include <cstddef>

// What the instrument holds, as the instrument holds it: fields of fixed width in seven-bit
// characters, filled with blanks on the right, and numbers of one byte. Plain values, copied
// freely; whoever shares one between threads guards it.

inline constexpr int InstrumentKnobCount = 12;
inline constexpr int InstrumentTemplateCount = 50;

// A text field of fixed width. Every byte is below 0x80.
template <std::size_t Width>
struct InstrumentText
{
    std::array<char, Width> bytes;

    InstrumentText() { bytes.fill(' '); }
    explicit InstrumentText(const QByteArray &text) { set(text); }

    // Cut at the width, filled with blanks; a byte above 0x7F becomes '?'.
    void set(const QByteArray &text)
    {
        bytes.fill(' ');
        const auto count = std::min<std::size_t>(Width, static_cast<std::size_t>(text.size()));
        for (std::size_t i = 0; i < count; ++i) {
            const char c = text.at(static_cast<qsizetype>(i));
            bytes[i] = static_cast<unsigned char>(c) < 0x80 ? c : '?';
        }
    }
    // All of the field, blanks included.
    [[nodiscard]] QByteArray padded() const
    {
        return QByteArray(bytes.data(), static_cast<qsizetype>(Width));
    }
    // Without the blanks on the right.
    [[nodiscard]] QByteArray trimmed() const
    {
        std::size_t end = Width;
        while (end > 0 && bytes[end - 1] == ' ') {
            --end;
        }
        return QByteArray(bytes.data(), static_cast<qsizetype>(end));
    }
    static constexpr int width() { return static_cast<int>(Width); }

    bool operator==(const InstrumentText &) const = default;
};

struct InstrumentKnob
{
    InstrumentText<9> remoteId{QByteArrayLiteral("204143dff")}; // the identifier of "No Assign"
    InstrumentText<15> displayName;
    quint8 ccNumber = 0;      // 0 to 127
    quint8 displayFormat = 0; // 0 or 1

    bool operator==(const InstrumentKnob &) const = default;
};

struct InstrumentTemplate
{
    InstrumentText<13> templateName;
    InstrumentText<12> vstiName;
    quint8 controlType = 0; // 0 or 1
    quint8 reserved = 0;    // 0 to 127; carried, and without a meaning or a place in files
    std::array<InstrumentKnob, InstrumentKnobCount> knobs; // A1, B1, C1, D1, A2 to D3

    bool operator==(const InstrumentTemplate &) const = default;
};

using InstrumentBank = std::array<InstrumentTemplate, InstrumentTemplateCount>;

struct InstrumentMemory
{
    InstrumentBank stored;
    InstrumentBank editBuffer;
    int currentTemplate = 0; // 0 to 49
    bool editFlag = false;   // the edit buffer holds what was not stored

    bool operator==(const InstrumentMemory &) const = default;
};
