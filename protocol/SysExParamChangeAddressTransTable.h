// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ParamAddress.h"

#include <QtCore/QMultiHash>
#include <QtCore/QPair>

// The one table between a ParamAddress and the device's address. A device address has three bytes
// (high, mid, low); every entry here lies at high byte 0x01, so only mid and low are held. It names
// a place in the instrument's current template, so bank and template take no part.
//
//   mid       low            field          controller, parameter
//   00        00 to 0C       templateName   13, -1
//   00        0D to 18       vstiName       15, -1
//   00        19             controlType    14, -1
//   00        1A             reserved       16, -1
//   10 + k    00 to 08       remoteNumber   k, 3      k: knob 0 to 11
//   10 + k    09 to 17       displayName    k, 0
//   10 + k    18             ccNumber       k, 1
//   10 + k    19             displayFormat  k, 2
//
// Outside the table: 20 00 currentTemplateNumber, 23 00 bankEditFlag, 22 00 the store trigger.
//
// Owner: RemoteMemAPI. Constant after construction, so any thread may read.
class SysExParamChangeAddressTransTable
{
public:
    SysExParamChangeAddressTransTable();

    // high as the high byte, low as the low byte; each cut to eight bits, so that -1 is 0xFF. A
    // high of -1 gives 0xFF00 or-ed with low.
    static unsigned short Combine(int high, int low);
    // The high byte, then the low one. Historical spelling.
    static void Devide(unsigned short value, unsigned char *bytes);

    // Enters one field, an entry for each of its bytes.
    void enregister(int memHigh, int memLow, int devMid, int devLow, int length);

    // Four bytes: device mid, device low, position in the field, field length. False if the pointer
    // is null or the address has no entry; the bytes then stay as they were.
    bool getSysExParamAddress(const ParamAddress &address, unsigned char *bytes) const;
    // Two bytes for the device address of two bytes: position in the field, field length. Unknown
    // addresses leave them as they were.
    void getSysExAddressParamInfo(const unsigned char *deviceAddress, unsigned char *bytes) const;
    // Controller and parameter for the device address of two bytes, or the template for 20 00; all
    // -1 if it is unknown. Linear, since it runs once per received change and not per byte.
    ParamAddress getMemoryParamAddress(const unsigned char *deviceAddress) const;

private:
    // (device mid, low), (position, length); several under one key, the first byte's entered last.
    using Entry = QPair<unsigned short, unsigned short>;
    QMultiHash<unsigned short, Entry> m_table;
};
