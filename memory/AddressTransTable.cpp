// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/AddressTransTable.h"

#include "app/Constants.h"
#include "memory/ParamAddress.h"

#include <iterator>

AddressTransTable::AddressTransTable()
{
    for (int knob = 0; knob < static_cast<int>(std::size(LCDSelectAddressUpper)); ++knob) {
        m_table.insert(QLatin1String(LCDSelectAddressUpper[knob]), knob);
    }
    m_table.insert(QStringLiteral("templateName"), ParamAddress::TemplateName);
    m_table.insert(QStringLiteral("controlType"), ParamAddress::ControlType);
    m_table.insert(QStringLiteral("vstiName"), ParamAddress::VSTiName);
    m_table.insert(QStringLiteral("displayName"), ParamAddress::DisplayName);
    m_table.insert(QStringLiteral("ccNumber"), ParamAddress::CCNumber);
    m_table.insert(QStringLiteral("displayFormat"), ParamAddress::DisplayFormat);
    m_table.insert(QStringLiteral("remoteNumber"), ParamAddress::RemoteNumber);
    m_table.insert(QStringLiteral("bankName"), ParamAddress::BankName);
    m_table.insert(QStringLiteral("bankAvailableFlag"), ParamAddress::BankAvailableFlag);
    m_table.insert(QStringLiteral("currentTemplateNumber"), ParamAddress::CurrentTemplateNumber);
    m_table.insert(QStringLiteral("none"), ParamAddress::None);
    m_table.insert(QStringLiteral("isOnline"), ParamAddress::IsOnline);
    m_table.insert(QStringLiteral("fileEditFlag"), ParamAddress::FileEditFlag);
    m_table.insert(QStringLiteral("fileName"), ParamAddress::FileName);
    m_table.insert(QStringLiteral("libraryEditFlag"), ParamAddress::LibraryEditFlag);
    m_table.insert(QStringLiteral("bankEditFlag"), ParamAddress::BankEditFlag);
}
