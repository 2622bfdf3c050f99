// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/BankData.h"
#include "memory/ControlTemplateData.h"
#include "memory/NumericParameter.h"
#include "memory/ParamAddress.h"

#include <QtCore/QString>

#include <memory>
#include <vector>

// The banks of the memory by their role.
namespace Bank
{
inline constexpr int EditBuffer = 0;     // in step with the instrument; the template view edits it
inline constexpr int Stored = 1;         // last stored state of bank 0
inline constexpr int HardwareStored = 2; // as a bulk dump delivered it
inline constexpr int HardwareEditBuffer = 3; // as a bulk dump delivered it
inline constexpr int Import = 4;             // a file to take templates from
inline constexpr int Library = 5;            // working copy of the library view
inline constexpr int EvacuatedBank = 6;      // safety copy of the bank that a load overwrites
inline constexpr int EvacuatedEditBuffer = 7;
inline constexpr int Preset = 8; // factory templates
// What the main window brings the memory to at start.
inline constexpr int Count = 9;
} // namespace Bank

// The storage under RemoteMemAPI: everything that the address space names. It takes no locks and
// calls no observers; RemoteMemAPI, its owner, does both. Bad indices are harmless everywhere: they
// give false, a default object, or nothing.
class RemoteMemory
{
public:
    // Six banks, of which only the edit buffer is available.
    RemoteMemory();
    ~RemoteMemory();
    RemoteMemory(const RemoteMemory &other); // deep
    RemoteMemory &operator=(const RemoteMemory &other);
    void setMemory(const RemoteMemory &other) { *this = other; }

    // True only when a value changed; the file name alone always counts as changed.
    bool setParam(const ParamAddress &address, long value);
    bool setParam(const ParamAddress &address, const QString &text);
    const NumericParameter &getParam(const ParamAddress &address) const;
    QString getParamQString(const ParamAddress &address) const;

    // Appends a bank with available flag 1 and returns its index.
    int createBank();
    // Null if the address names no bank.
    BankData *AccessBank(const ParamAddress &address);
    const BankData *AccessBank(const ParamAddress &address) const;
    const BankData &getBank(const int &index) const;
    // Raises the available flag of the target in any case, whatever the source's.
    void setBank(const BankData &source, int index);
    void copyBank(int from, int to);
    int getQuantityOfBank() const { return static_cast<int>(banks.size()); }
    bool isValidBankIndex(int index) const { return index >= 0 && index < getQuantityOfBank(); }
    static bool isValidTemplateIndex(int index) { return BankData::isValidTemplateIndex(index); }
    static bool isValidControllerIndex(int index)
    {
        return ControlTemplateData::isValidControllerIndex(index);
    }
    void setBankAvailableFlag(int value, int bank);
    const NumericParameter &getBankAvailableFlag(int bank) const;

    // Each true only when something changed.
    bool copyTemplate(int fromBank, int fromTemplate, int toBank, int toTemplate);
    bool exchangeTemplate(int bankA, int templateA, int bankB, int templateB);
    bool copyController(int fromBank, int fromTemplate, int fromController, int toBank,
                        int toTemplate, int toController);
    bool exchangeController(int bankA, int templateA, int controllerA, int bankB, int templateB,
                            int controllerB);

    ControlTemplateData getTemplateData(int bank, int template_) const;
    // Without a copy; null for a bad index.
    const ControlTemplateData *AccessTemplate(int bank, int template_) const;
    // The last preset without its names and with control type 0: what "initialize" writes.
    ControlTemplateData blankTemplate() const;
    void initializeInitialTemplate();
    bool initializeTemplate(int bank, int template_);

    // While false, both setParam refuse every write; copies between banks do not look at it.
    void setWriteEnable(bool enable) { writeEnable = enable; }
    bool getWriteEnable() const { return writeEnable; }
    bool setONLINEstate(long state);
    bool isONLINE() const { return onlineState.getCurrentValue() == 1; }
    void setFlagOfIsAllowedToSendSysEx(bool allowed) { allowedToSendSysEx = allowed; }
    bool isAllowedToSendSysEx() const { return allowedToSendSysEx; }

private:
    BankData *bankAt(int index);
    const BankData *bankAt(int index) const;

    bool writeEnable = true;
    NumericParameter fileEditFlag{0, 1, 0};
    NumericParameter libraryEditFlag{0, 1, 0};
    NumericParameter bankEditFlag{0, 1, 0};
    ControlTemplateData initialTemplate;
    std::vector<std::unique_ptr<BankData>> banks;
    QString fileName;
    NumericParameter onlineState{0, 1, 0};
    bool allowedToSendSysEx = true;
};
