// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

class AddressTransTable;

// Names every value that the editor holds by four integers; -1 in any of them means "none".
//
//   kind                 bank       template   controller  parameter
//   knob parameter       0 to 8     0 to 49    0 to 11     0 to 3
//   template parameter   0 to 8     0 to 49    13 to 15    -1
//   bank parameter       0 to 8     51, 52     -1          -1
//   global parameter     -2 to -6   -1         -1          -1
//
// A plain value, copied freely; the name table is not owned and may be null. Nothing here reports
// an error: an unknown name gives -1 in its field, and such an address names nothing.
class ParamAddress
{
public:
    static constexpr int None = -1;
    // Global selectors (bank field).
    static constexpr int IsOnline = -2;
    static constexpr int FileEditFlag = -3;
    static constexpr int FileName = -4;
    static constexpr int LibraryEditFlag = -5;
    static constexpr int BankEditFlag = -6;
    // Bank-level selectors (template field). 50 is reserved: the memory holds no bank name.
    static constexpr int BankName = 50;
    static constexpr int BankAvailableFlag = 51;
    static constexpr int CurrentTemplateNumber = 52;
    // Template-level selectors (controller field). 12 is free; 16 is the device's reserved byte.
    static constexpr int TemplateName = 13;
    static constexpr int ControlType = 14;
    static constexpr int VSTiName = 15;
    static constexpr int ReservedTemplateByte = 16;
    // Knob parameters (parameter field).
    static constexpr int DisplayName = 0;
    static constexpr int CCNumber = 1;
    static constexpr int DisplayFormat = 2;
    static constexpr int RemoteNumber = 3;

    static constexpr int TemplateCount = 50;
    static constexpr int KnobCount = 12;

    explicit ParamAddress(AddressTransTable *table);
    // As setParamAddress() on an address of four times -1.
    ParamAddress(int bank, int template_, int controller, int parameter);

    // All four numbers back to -1; the table stays.
    void initParamAddress();
    void setAddressTransTable(AddressTransTable *table) { addressTransTable = table; }
    AddressTransTable *getAddressTransTable() const { return addressTransTable; }

    // Each argument that is not -1 replaces its field; -1 never clears one.
    void setParamAddress(int newBank, int newTemplate, int newController, int newParameter);
    // The two-part form, for "knobA1/ccNumber": the first part names the controller, the last the
    // parameter. A null name leaves both.
    void setParamAddress(int newBank, int newTemplate, const char *name, int newParameter);
    // The one-word form: the name's number goes to the field that it belongs in, and the fields
    // below that become -1. A null name changes nothing more.
    void setParamAddress(int newBank, int newTemplate, int newController, const char *name);

    // 0 bank, 1 template, 2 controller, 3 parameter; any other index gives -1.
    int getParamAddress(int index) const;

    // The tables take no part.
    bool operator==(const ParamAddress &other) const;

    void PrintParamAddress() const; // debug line

    // Parts between "/", empty ones skipped. Local 8-bit encoding.
    static QStringList splitNamedAdr(const char *name);
    // -1 for a name that is not in the table, and without a table.
    int String2ParamAdr(const QString &name) const;
    int String2ParamAdr(const char *name) const;

    bool isThisBank(int n) const { return bank == n; }
    bool isThisTemplate(int n) const { return template_ == n; }
    bool isThisController(int n) const { return controller == n; }
    // In a bank, and not in the global part.
    bool isBankParam() const { return bank >= 0; }
    // In a template of a bank. Another test than isBankParam in spite of its name.
    bool isBankParamAdr() const { return isBelow(template_, TemplateCount); }
    bool isControllerAdr() const { return isBelow(controller, KnobCount); }
    // Historical name: bank 0 is the one in step with the instrument's edit buffer.
    bool isStoredBankParamAdr() const { return bank == 0; }
    bool isEditBufferOrStoredBankParam() const { return isEditBufferOrStoredBankParam(bank); }
    static bool isEditBufferOrStoredBankParam(int n) { return isBelow(n, 2); }
    bool isTemplateNameAdr() const { return controller == TemplateName; }
    bool isControlTypeAdr() const { return controller == ControlType; }
    bool isVSTiNameAdr() const { return controller == VSTiName; }
    bool isDisplayNameAdr() const { return parameter == DisplayName; }
    bool isCCNumAdr() const { return parameter == CCNumber; }
    bool isDispFormAdr() const { return parameter == DisplayFormat; }
    bool isRemoteTagIDAdr() const { return parameter == RemoteNumber; }
    bool isBankAvailFlagAdr() const { return template_ == BankAvailableFlag; }
    bool isCurrentTemplateNumAdr() const { return template_ == CurrentTemplateNumber; }
    bool isOnlineStateAdr() const { return bank == IsOnline; }
    bool isFileEditFlagAdr() const { return bank == FileEditFlag; }
    bool isFileNameAdr() const { return bank == FileName; }
    bool isLibraryEditFlagAdr() const { return bank == LibraryEditFlag; }
    bool isBankEditFlagAdr() const { return bank == BankEditFlag; }
    // The three that follow are asymmetric on purpose: the file name is no string by them, the
    // library edit flag is neither numeric nor the editor's own, and the current template number is
    // not the editor's own because it reaches the instrument.
    bool isStringParamAdr() const;
    bool isNumericParamAdr() const;
    bool isParamUsedInOnlyEditor() const;

private:
    static bool isBelow(int n, int limit) { return n >= 0 && n < limit; }

    int bank = None;
    int template_ = None;
    int controller = None;
    int parameter = None;
    AddressTransTable *addressTransTable = nullptr;
};
