// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/RemoteMemory.h"

#include <limits>

namespace
{

constexpr int BanksAtConstruction = 6;

bool fitsInt(long value)
{
    return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
}

} // namespace

RemoteMemory::RemoteMemory()
{
    for (int i = 0; i < BanksAtConstruction; ++i) {
        createBank();
    }
    for (int i = Bank::Stored; i < BanksAtConstruction; ++i) {
        setBankAvailableFlag(0, i);
    }
}

RemoteMemory::~RemoteMemory() = default;

RemoteMemory::RemoteMemory(const RemoteMemory &other)
{
    *this = other;
}

RemoteMemory &RemoteMemory::operator=(const RemoteMemory &other)
{
    if (this == &other) {
        return *this;
    }
    writeEnable = other.writeEnable;
    fileEditFlag = other.fileEditFlag;
    libraryEditFlag = other.libraryEditFlag;
    bankEditFlag = other.bankEditFlag;
    initialTemplate = other.initialTemplate;
    std::vector<std::unique_ptr<BankData>> copies;
    copies.reserve(other.banks.size());
    for (const std::unique_ptr<BankData> &bank : other.banks) {
        copies.push_back(std::make_unique<BankData>(*bank));
    }
    banks = std::move(copies);
    fileName = other.fileName;
    onlineState = other.onlineState;
    allowedToSendSysEx = other.allowedToSendSysEx;
    return *this;
}

bool RemoteMemory::setParam(const ParamAddress &address, long value)
{
    if (!writeEnable || !fitsInt(value)) {
        return false;
    }
    const int number = static_cast<int>(value);
    if (address.isBankParam()) {
        BankData *bank = AccessBank(address);
        return bank != nullptr && bank->setParam(address, number);
    }
    if (address.isOnlineStateAdr()) {
        return onlineState.setCurrentValue(number);
    }
    if (address.isFileEditFlagAdr()) {
        return fileEditFlag.setCurrentValue(number);
    }
    if (address.isLibraryEditFlagAdr()) {
        return libraryEditFlag.setCurrentValue(number);
    }
    if (address.isBankEditFlagAdr()) {
        return bankEditFlag.setCurrentValue(number);
    }
    return false;
}

bool RemoteMemory::setParam(const ParamAddress &address, const QString &text)
{
    if (!writeEnable) {
        return false;
    }
    if (address.isFileNameAdr()) {
        fileName = text;
        return true;
    }
    BankData *bank = AccessBank(address);
    return bank != nullptr && bank->setParam(address, text);
}

const NumericParameter &RemoteMemory::getParam(const ParamAddress &address) const
{
    static const NumericParameter noParameter;
    if (address.isOnlineStateAdr()) {
        return onlineState;
    }
    if (address.isFileEditFlagAdr()) {
        return fileEditFlag;
    }
    if (address.isLibraryEditFlagAdr()) {
        return libraryEditFlag;
    }
    if (address.isBankEditFlagAdr()) {
        return bankEditFlag;
    }
    const BankData *bank = AccessBank(address);
    return bank != nullptr ? bank->getParam(address) : noParameter;
}

QString RemoteMemory::getParamQString(const ParamAddress &address) const
{
    if (address.isFileNameAdr()) {
        return fileName;
    }
    const BankData *bank = AccessBank(address);
    return bank != nullptr ? bank->getParamQString(address) : QString();
}

int RemoteMemory::createBank()
{
    banks.push_back(std::make_unique<BankData>(1));
    return getQuantityOfBank() - 1;
}

BankData *RemoteMemory::bankAt(int index)
{
    return isValidBankIndex(index) ? banks[static_cast<std::size_t>(index)].get() : nullptr;
}

const BankData *RemoteMemory::bankAt(int index) const
{
    return isValidBankIndex(index) ? banks[static_cast<std::size_t>(index)].get() : nullptr;
}

BankData *RemoteMemory::AccessBank(const ParamAddress &address)
{
    return bankAt(address.getParamAddress(0));
}

const BankData *RemoteMemory::AccessBank(const ParamAddress &address) const
{
    return bankAt(address.getParamAddress(0));
}

const BankData &RemoteMemory::getBank(const int &index) const
{
    static const BankData noBank;
    const BankData *bank = bankAt(index);
    return bank != nullptr ? *bank : noBank;
}

void RemoteMemory::setBank(const BankData &source, int index)
{
    if (BankData *target = bankAt(index)) {
        *target = source;
        target->setBankAvailableFlag(1);
    }
}

void RemoteMemory::copyBank(int from, int to)
{
    const BankData *source = bankAt(from);
    if (source != nullptr) {
        setBank(*source, to);
    }
}

void RemoteMemory::setBankAvailableFlag(int value, int bank)
{
    if (BankData *target = bankAt(bank)) {
        target->setBankAvailableFlag(value);
    }
}

const NumericParameter &RemoteMemory::getBankAvailableFlag(int bank) const
{
    static const NumericParameter noParameter;
    const BankData *target = bankAt(bank);
    return target != nullptr ? target->getBankAvailableFlag() : noParameter;
}

bool RemoteMemory::copyTemplate(int fromBank, int fromTemplate, int toBank, int toTemplate)
{
    const BankData *source = bankAt(fromBank);
    BankData *target = bankAt(toBank);
    if (source == nullptr || target == nullptr || !isValidTemplateIndex(fromTemplate) ||
        !isValidTemplateIndex(toTemplate)) {
        return false;
    }
    return target->setTemplate(source->getCopiedTemplate(fromTemplate), toTemplate);
}

bool RemoteMemory::exchangeTemplate(int bankA, int templateA, int bankB, int templateB)
{
    BankData *sideA = bankAt(bankA);
    BankData *sideB = bankAt(bankB);
    if (sideA == nullptr || sideB == nullptr || !isValidTemplateIndex(templateA) ||
        !isValidTemplateIndex(templateB)) {
        return false;
    }
    const ControlTemplateData contentA = sideA->getCopiedTemplate(templateA);
    const ControlTemplateData contentB = sideB->getCopiedTemplate(templateB);
    if (contentA == contentB) {
        return false;
    }
    sideA->setTemplate(contentB, templateA);
    sideB->setTemplate(contentA, templateB);
    return true;
}

bool RemoteMemory::copyController(int fromBank, int fromTemplate, int fromController, int toBank,
                                  int toTemplate, int toController)
{
    const BankData *source = bankAt(fromBank);
    BankData *target = bankAt(toBank);
    if (source == nullptr || target == nullptr || !isValidTemplateIndex(fromTemplate) ||
        !isValidTemplateIndex(toTemplate) || !isValidControllerIndex(fromController) ||
        !isValidControllerIndex(toController)) {
        return false;
    }
    const ControllerData knob = source->getTemplate(fromTemplate).getController(fromController);
    ControlTemplateData *place =
        target->AccessTemplate(ParamAddress(toBank, toTemplate, toController, -1));
    if (place->getController(toController) == knob) {
        return false;
    }
    return place->setController(knob, toController);
}

bool RemoteMemory::exchangeController(int bankA, int templateA, int controllerA, int bankB,
                                      int templateB, int controllerB)
{
    BankData *sideA = bankAt(bankA);
    BankData *sideB = bankAt(bankB);
    if (sideA == nullptr || sideB == nullptr || !isValidTemplateIndex(templateA) ||
        !isValidTemplateIndex(templateB) || !isValidControllerIndex(controllerA) ||
        !isValidControllerIndex(controllerB)) {
        return false;
    }
    ControlTemplateData *placeA = sideA->AccessTemplate(ParamAddress(bankA, templateA, -1, -1));
    ControlTemplateData *placeB = sideB->AccessTemplate(ParamAddress(bankB, templateB, -1, -1));
    const ControllerData knobA = placeA->getController(controllerA);
    const ControllerData knobB = placeB->getController(controllerB);
    if (knobA == knobB) {
        return false;
    }
    placeA->setController(knobB, controllerA);
    placeB->setController(knobA, controllerB);
    return true;
}

const ControlTemplateData *RemoteMemory::AccessTemplate(int bank, int template_) const
{
    const BankData *place = bankAt(bank);
    return place != nullptr && isValidTemplateIndex(template_) ? &place->getTemplate(template_)
                                                               : nullptr;
}

ControlTemplateData RemoteMemory::getTemplateData(int bank, int template_) const
{
    const BankData *source = bankAt(bank);
    return source != nullptr ? source->getCopiedTemplate(template_) : ControlTemplateData();
}

ControlTemplateData RemoteMemory::blankTemplate() const
{
    ControlTemplateData blank = getTemplateData(Bank::Preset, ParamAddress::TemplateCount - 1);
    blank.setTemplateName(QString());
    blank.setVSTiName(QString());
    blank.setCtrlType(NumericParameter(0, 1, 0));
    return blank;
}

void RemoteMemory::initializeInitialTemplate()
{
    initialTemplate = blankTemplate();
}

bool RemoteMemory::initializeTemplate(int bank, int template_)
{
    BankData *target = bankAt(bank);
    return target != nullptr && target->setTemplate(initialTemplate, template_);
}

bool RemoteMemory::setONLINEstate(long state)
{
    return fitsInt(state) && onlineState.setCurrentValue(static_cast<int>(state));
}
