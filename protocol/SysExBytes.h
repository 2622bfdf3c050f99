// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <cstring>

// Bytes that encoder and decoder must agree on. All positions count from the manufacturer byte,
// since a message is held from 0x43 through 0xF7; the leading 0xF0 exists on the wire only.
//
//   form                  bytes (m0 m1: model identifier)                         length
//   parameter change      43 10 m0 m1 01 aM aL dd F7                              9
//   parameter change, 9   43 10 m0 m1 01 aM aL d0 .. d8 F7                        17
//   parameter request     43 30 m0 m1 01 aM aL F7                                 8
//   bulk request          43 20 m0 m1 0E tt nn F7                                 8
//   bulk header, footer   43 00 m0 m1 00 00 0E|0F tt nn cs F7                     11
//   template block        43 00 m0 m1 00 1B 01 00 00 (27 bytes) cs F7             38
//   knob block            43 00 m0 m1 00 1A 01 (10+k) 00 (26 bytes) cs F7         37
//   store                 43 10 m0 m1 01 22 00 F7                                 8
//   store to flash        43 00 m0 m1 00 00 11 00 00 6F F7                        11
//   bulk acknowledge      43 6x 02 .. F7                                          from the device
//
// Byte 1 is the class in its high nibble, the device number in its low one. tt: bulk type. nn:
// template number. k: knob index. cs: makes the sum from position 4 to cs zero modulo 128.
namespace SysEx
{

inline constexpr unsigned char Manufacturer = 0x43;
inline constexpr unsigned char End = 0xF7;

// The template block's.
inline constexpr int LongestMessage = 38;

// Class, in the high nibble of byte 1.
inline constexpr unsigned char ClassBulk = 0x00;
inline constexpr unsigned char ClassParameterChange = 0x10;
inline constexpr unsigned char ClassBulkRequest = 0x20;
inline constexpr unsigned char ClassParameterRequest = 0x30;
inline constexpr unsigned char ClassAcknowledge = 0x60;
inline constexpr unsigned char AcknowledgeByte = 0x02; // byte 2

// High address bytes.
inline constexpr unsigned char AddressTemplateData = 0x01;
inline constexpr unsigned char AddressBulkHeader = 0x0E;
inline constexpr unsigned char AddressBulkFooter = 0x0F;
inline constexpr unsigned char AddressStoreToFlash = 0x11;

// Mid address bytes below AddressTemplateData.
inline constexpr unsigned char MidTemplate = 0x00;
inline constexpr unsigned char MidFirstKnob = 0x10;
inline constexpr unsigned char MidCurrentTemplateNumber = 0x20;
inline constexpr unsigned char MidStore = 0x22;
inline constexpr unsigned char MidBankEditFlag = 0x23;

// Bulk type byte.
inline constexpr unsigned char TypeStored = 0x60;
inline constexpr unsigned char TypeEditBuffer = 0x6F;

// Positions.
inline constexpr int PositionClass = 1;
inline constexpr int PositionModel = 2;
inline constexpr int PositionCount = 4; // of a bulk block; two bytes, high seven bits first
inline constexpr int PositionBulkAddress = 6;
inline constexpr int PositionBulkData = 9; // the byte at device low address n stands at 9 + n
// Data bytes of the contents blocks; checksum and end follow.
inline constexpr int TemplateDataLength = 0x1B;
inline constexpr int KnobDataLength = 0x1A;
inline constexpr int PositionChangeAddress = 4;
inline constexpr int PositionChangeData = 7;

// Both look at eight bytes at a time: every message of a dump passes here, whole.

// The sum of the bytes' low seven bits, modulo 128.
inline unsigned sum7(const unsigned char *bytes, std::size_t count)
{
    constexpr std::uint64_t LowSeven = 0x7F7F7F7F7F7F7F7F;
    constexpr std::uint64_t EvenBytes = 0x00FF00FF00FF00FF;
    // Eight sums beside each other; two numbers below 128 never carry into the next.
    std::uint64_t sums = 0;
    for (; count >= sizeof(sums); count -= sizeof(sums), bytes += sizeof(sums)) {
        std::uint64_t next = 0;
        std::memcpy(&next, bytes, sizeof(next));
        sums = (sums & LowSeven) + (next & LowSeven);
    }
    sums = (sums & EvenBytes) + ((sums >> 8) & EvenBytes);
    auto sum = static_cast<unsigned>((sums * 0x0001000100010001) >> 48);
    for (; count > 0; --count, ++bytes) {
        sum += *bytes;
    }
    return sum & 0x7F;
}

// Whether no byte has bit 7 set.
inline bool areDataBytes(const unsigned char *bytes, std::size_t count)
{
    std::uint64_t all = 0;
    for (; count >= sizeof(all); count -= sizeof(all), bytes += sizeof(all)) {
        std::uint64_t next = 0;
        std::memcpy(&next, bytes, sizeof(next));
        all |= next;
    }
    for (; count > 0; --count, ++bytes) {
        all |= *bytes;
    }
    return (all & 0x8080808080808080) == 0;
}

// A text's character as a data byte, which must stay below 0x80.
inline unsigned char dataByte(QChar character)
{
    const char16_t unit = character.unicode();
    return unit < 0x80 ? static_cast<unsigned char>(unit) : static_cast<unsigned char>('?');
}

} // namespace SysEx
