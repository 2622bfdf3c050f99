// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/SysExParamChangeAddressTransTable.h"

namespace
{

constexpr unsigned char CurrentTemplateNumberMid = 0x20;
constexpr unsigned char BankEditFlagMid = 0x23;
constexpr int FirstKnobMid = 0x10;

int keyComponent(unsigned char byte)
{
    return byte == 0xFF ? ParamAddress::None : byte;
}

} // namespace

SysExParamChangeAddressTransTable::SysExParamChangeAddressTransTable()
{
    enregister(ParamAddress::TemplateName, -1, 0x00, 0, 13);
    enregister(ParamAddress::VSTiName, -1, 0x00, 13, 12);
    enregister(ParamAddress::ControlType, -1, 0x00, 25, 1);
    enregister(ParamAddress::ReservedTemplateByte, -1, 0x00, 26, 1);
    struct KnobField
    {
        int parameter;
        int low;
        int length;
    };
    static constexpr KnobField KnobFields[] = {{ParamAddress::RemoteNumber, 0, 9},
                                               {ParamAddress::DisplayName, 9, 15},
                                               {ParamAddress::CCNumber, 24, 1},
                                               {ParamAddress::DisplayFormat, 25, 1}};
    for (const KnobField &field : KnobFields) {
        for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
            enregister(knob, field.parameter, FirstKnobMid + knob, field.low, field.length);
        }
    }
}

unsigned short SysExParamChangeAddressTransTable::Combine(int high, int low)
{
    return static_cast<unsigned short>(((high & 0xFF) << 8) | (low & 0xFF));
}

void SysExParamChangeAddressTransTable::Devide(unsigned short value, unsigned char *bytes)
{
    bytes[0] = static_cast<unsigned char>(value >> 8);
    bytes[1] = static_cast<unsigned char>(value & 0xFF);
}

void SysExParamChangeAddressTransTable::enregister(int memHigh, int memLow, int devMid, int devLow,
                                                   int length)
{
    // From the last byte to the first: a lookup in a multi-hash yields the entry made last, which
    // so is the field's first byte.
    for (int i = length - 1; i >= 0; --i) {
        m_table.insert(Combine(memHigh, memLow),
                       Entry(Combine(devMid, devLow + i), Combine(i, length)));
    }
}

bool SysExParamChangeAddressTransTable::getSysExParamAddress(const ParamAddress &address,
                                                             unsigned char *bytes) const
{
    if (bytes == nullptr) {
        return false;
    }
    if (address.isCurrentTemplateNumAdr() || address.isBankEditFlagAdr()) {
        bytes[0] = address.isCurrentTemplateNumAdr() ? CurrentTemplateNumberMid : BankEditFlagMid;
        bytes[1] = 0x00;
        bytes[2] = 0;
        bytes[3] = 1;
        return true;
    }
    const int controller = address.getParamAddress(2);
    const int parameter = address.getParamAddress(3);
    // Numbers that do not fit their byte of the key would be found under another's.
    if (controller < -1 || controller > 0xFE || parameter < -1 || parameter > 0xFE) {
        return false;
    }
    const auto found = m_table.constFind(Combine(controller, parameter));
    if (found == m_table.constEnd()) {
        return false;
    }
    Devide(found->first, bytes);
    Devide(found->second, bytes + 2);
    return true;
}

void SysExParamChangeAddressTransTable::getSysExAddressParamInfo(const unsigned char *deviceAddress,
                                                                 unsigned char *bytes) const
{
    const unsigned short wanted = Combine(deviceAddress[0], deviceAddress[1]);
    for (const Entry &entry : m_table) {
        if (entry.first == wanted) {
            Devide(entry.second, bytes);
            return;
        }
    }
}

ParamAddress
SysExParamChangeAddressTransTable::getMemoryParamAddress(const unsigned char *deviceAddress) const
{
    if (deviceAddress[0] == CurrentTemplateNumberMid && deviceAddress[1] == 0x00) {
        return ParamAddress(-1, ParamAddress::CurrentTemplateNumber, -1, -1);
    }
    const unsigned short wanted = Combine(deviceAddress[0], deviceAddress[1]);
    for (auto entry = m_table.constBegin(); entry != m_table.constEnd(); ++entry) {
        if (entry->first == wanted) {
            unsigned char key[2];
            Devide(entry.key(), key);
            return ParamAddress(-1, -1, keyComponent(key[0]), keyComponent(key[1]));
        }
    }
    return ParamAddress(-1, -1, -1, -1);
}
