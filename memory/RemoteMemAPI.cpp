// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/RemoteMemAPI.h"

#include "memory/MemChangeObserver.h"
#include "midi/ComuController.h"
#include "midi/ConnectionWatcher.h"
#include "protocol/MessageDecoder.h"
#include "protocol/MessageEncoder.h"
#include "protocol/SysExParamChangeAddressTransTable.h"

#include <algorithm>

namespace
{

// Filter type of the communication input; carried along, it holds back nothing.
constexpr int CommunicationFilterType = 6;

const ParamAddress OnlineAddress(ParamAddress::IsOnline, -1, -1, -1);
const ParamAddress FileEditFlagAddress(ParamAddress::FileEditFlag, -1, -1, -1);
const ParamAddress LibraryEditFlagAddress(ParamAddress::LibraryEditFlag, -1, -1, -1);

ParamAddress currentTemplateNumberOf(int bank)
{
    return ParamAddress(bank, ParamAddress::CurrentTemplateNumber, -1, -1);
}

} // namespace

RemoteMemAPI::RemoteMemAPI()
    : memory(std::make_unique<RemoteMemory>())
    , sysExTable(std::make_unique<SysExParamChangeAddressTransTable>())
    , comuController(std::make_unique<ComuController>(sysExTable.get()))
{
}

RemoteMemAPI::~RemoteMemAPI()
{
    // The route goes first: until then its threads may come here.
    deleteMIDIComunicationRoute();
    {
        const RecursiveMutexLocker lock(memoryMutex);
        observers.clear();
        memory.reset();
    }
    comuController.reset();
}

// --- Values by address ---------------------------------------------------------------------------

bool RemoteMemAPI::setParam(const ParamAddress &address, long value)
{
    const RecursiveMutexLocker lock(memoryMutex);
    const bool changed = memory->setParam(address, value);
    if (address.isCurrentTemplateNumAdr() && currentTemplateHold) {
        currentTemplateHold = false;
        // Forced is a number that stays the same, not one that was refused.
        if (memory->getParam(address).getCurrentValue() != value) {
            return false;
        }
    } else if (!changed) {
        return false;
    }
    notifyObserver(address);
    if (address.isFileEditFlagAdr() || address.isBankAvailFlagAdr()) {
        return true;
    }
    raiseFileEditFlag(address.isBankParam() && address.isEditBufferOrStoredBankParam());
    if (address.isStoredBankParamAdr() && isAllowToSendSysEx() && isSendingOnline()) {
        if (address.isCurrentTemplateNumAdr()) {
            const MutexLocker sentLock(sentTemplateNumbersMutex);
            sentTemplateNumbers.append(static_cast<int>(value));
        }
        messageEncoder->enqueueParamChange(address, static_cast<int>(value));
        messageEncoder->sendMessage(nullptr);
    }
    return true;
}

bool RemoteMemAPI::setParam(const ParamAddress &address, const QString &text)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (!memory->setParam(address, text)) {
        return false;
    }
    notifyObserver(address);
    if (!address.isBankEditFlagAdr() && !address.isFileEditFlagAdr() && !address.isFileNameAdr()) {
        raiseFileEditFlag(address.isBankParam() && address.isEditBufferOrStoredBankParam());
    }
    if (address.isStoredBankParamAdr() && isAllowToSendSysEx() && isSendingOnline() &&
        !address.isParamUsedInOnlyEditor()) {
        messageEncoder->enqueueParamChange(address, text);
        messageEncoder->sendMessage(nullptr);
    }
    return true;
}

NumericParameter RemoteMemAPI::getParam(const ParamAddress &address) const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->getParam(address);
}

QString RemoteMemAPI::getParamQString(const ParamAddress &address) const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->getParamQString(address);
}

// --- Observers -----------------------------------------------------------------------------------

void RemoteMemAPI::registObserver(const PairAdrObs &pair)
{
    const RecursiveMutexLocker lock(memoryMutex);
    observers.push_back(pair);
}

void RemoteMemAPI::registObserver(ParamAddress *address, MemChangeObserver *observer)
{
    registObserver(PairAdrObs(address, observer));
}

template <typename Leaves>
void RemoteMemAPI::removeObservers(Leaves leaves)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (notifyDepth == 0) {
        observers.remove_if(leaves);
        return;
    }
    for (PairAdrObs &pair : observers) {
        if (leaves(pair)) {
            pair.setObserver(nullptr);
            observersHaveGaps = true;
        }
    }
}

void RemoteMemAPI::unregistObserver(MemChangeObserver *observer)
{
    removeObservers([observer](const PairAdrObs &pair) { return pair.getObserver() == observer; });
}

void RemoteMemAPI::unregistAddress(const ParamAddress *address)
{
    removeObservers([address](const PairAdrObs &pair) { return &pair.address() == address; });
}

void RemoteMemAPI::replaceAddress(const ParamAddress *from, ParamAddress *to)
{
    const RecursiveMutexLocker lock(memoryMutex);
    for (PairAdrObs &pair : observers) {
        if (&pair.address() == from) {
            pair = PairAdrObs(to, pair.getObserver());
        }
    }
}

template <typename Matches>
void RemoteMemAPI::notifyMatching(Matches matches)
{
    const RecursiveMutexLocker lock(memoryMutex);
    ++notifyDepth;
    for (PairAdrObs &pair : observers) {
        // A gap's address may be gone with its observer, so the observer is looked at first.
        if (pair.getObserver() != nullptr && matches(pair.address())) {
            pair.getObserver()->paramUpdate();
        }
    }
    if (--notifyDepth == 0 && observersHaveGaps) {
        observersHaveGaps = false;
        observers.remove_if([](const PairAdrObs &pair) { return pair.getObserver() == nullptr; });
    }
}

void RemoteMemAPI::notifyObserver(const ParamAddress &address)
{
    // A copy: the caller's address may be the very object that an observer moves.
    notifyMatching(
        [wanted = address](const ParamAddress &registered) { return registered == wanted; });
}

void RemoteMemAPI::notifyObserverOfBankAllParam(int bank)
{
    notifyMatching([bank](const ParamAddress &address) { return address.isThisBank(bank); });
}

void RemoteMemAPI::notifyObserverOfTemplateAllParam(int bank, int template_)
{
    notifyMatching([bank, template_](const ParamAddress &address) {
        return address.isThisBank(bank) && address.isThisTemplate(template_);
    });
}

void RemoteMemAPI::notifyObserverOfControllerAllParam(int bank, int template_, int controller)
{
    notifyMatching([bank, template_, controller](const ParamAddress &address) {
        return address.isThisBank(bank) && address.isThisTemplate(template_) &&
               address.isThisController(controller);
    });
}

// --- Banks, templates and knobs ------------------------------------------------------------------

BankData RemoteMemAPI::getBank(int bank) const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->getBank(bank);
}

int RemoteMemAPI::createBank()
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->createBank();
}

int RemoteMemAPI::getQuantityOfBank() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->getQuantityOfBank();
}

NumericParameter RemoteMemAPI::getBankAvailableFlag(int bank) const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->getBankAvailableFlag(bank);
}

void RemoteMemAPI::setBankAvailableFlag(int value, int bank)
{
    const RecursiveMutexLocker lock(memoryMutex);
    memory->setBankAvailableFlag(value, bank);
}

ControlTemplateData RemoteMemAPI::getTemplateData(int bank, int template_) const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->getTemplateData(bank, template_);
}

const ControlTemplateData *RemoteMemAPI::AccessTemplate(int bank, int template_) const
{
    return memory->AccessTemplate(bank, template_);
}

void RemoteMemAPI::raiseFileEditFlag(bool concerned)
{
    if (concerned && isAllowToRaiseFileEditFlag()) {
        setParam(FileEditFlagAddress, 1);
    }
}

void RemoteMemAPI::raiseLibraryEditFlag(bool concerned)
{
    if (concerned) {
        setParam(LibraryEditFlagAddress, 1);
    }
}

bool RemoteMemAPI::isSendingOnline() const
{
    return memory->isONLINE() && messageEncoder != nullptr;
}

void RemoteMemAPI::copyBank(int from, int to)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (!memory->isValidBankIndex(from) || !memory->isValidBankIndex(to)) {
        return;
    }
    memory->copyBank(from, to);
    notifyObserverOfBankAllParam(to);
    raiseFileEditFlag(ParamAddress::isEditBufferOrStoredBankParam(to));
    raiseLibraryEditFlag(to == Bank::Library);
}

bool RemoteMemAPI::copyTemplate(int fromBank, int fromTemplate, int toBank, int toTemplate)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (!memory->isValidBankIndex(fromBank) || !memory->isValidBankIndex(toBank) ||
        !RemoteMemory::isValidTemplateIndex(fromTemplate) ||
        !RemoteMemory::isValidTemplateIndex(toTemplate)) {
        return false;
    }
    const bool changed = memory->copyTemplate(fromBank, fromTemplate, toBank, toTemplate);
    if (changed) {
        notifyObserverOfTemplateAllParam(toBank, toTemplate);
    }
    raiseFileEditFlag(ParamAddress::isEditBufferOrStoredBankParam(toBank));
    raiseLibraryEditFlag(toBank == Bank::Library);
    return changed;
}

bool RemoteMemAPI::exchangeTemplate(int bankA, int templateA, int bankB, int templateB)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (!memory->exchangeTemplate(bankA, templateA, bankB, templateB)) {
        return false;
    }
    notifyObserverOfTemplateAllParam(bankB, templateB);
    notifyObserverOfTemplateAllParam(bankA, templateA);
    raiseFileEditFlag(ParamAddress::isEditBufferOrStoredBankParam(bankA) &&
                      ParamAddress::isEditBufferOrStoredBankParam(bankB));
    raiseLibraryEditFlag(bankA == Bank::Library || bankB == Bank::Library);
    if (isSendingOnline()) {
        if (bankB == Bank::EditBuffer) {
            messageEncoder->sendBulk(Bank::EditBuffer, templateB);
        }
        if (bankA == Bank::EditBuffer) {
            messageEncoder->sendBulk(Bank::EditBuffer, templateA);
        }
    }
    return true;
}

bool RemoteMemAPI::copyController(int fromBank, int fromTemplate, int fromController, int toBank,
                                  int toTemplate, int toController)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (!memory->copyController(fromBank, fromTemplate, fromController, toBank, toTemplate,
                                toController)) {
        return false;
    }
    notifyObserverOfControllerAllParam(toBank, toTemplate, toController);
    raiseFileEditFlag(ParamAddress::isEditBufferOrStoredBankParam(toBank));
    if (isSendingOnline() && toBank == Bank::EditBuffer) {
        messageEncoder->sendParamChangeOfController(Bank::EditBuffer, toTemplate, toController);
    }
    return true;
}

bool RemoteMemAPI::exchangeController(int bankA, int templateA, int controllerA, int bankB,
                                      int templateB, int controllerB)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (!memory->exchangeController(bankA, templateA, controllerA, bankB, templateB, controllerB)) {
        return false;
    }
    notifyObserverOfControllerAllParam(bankB, templateB, controllerB);
    raiseFileEditFlag(ParamAddress::isEditBufferOrStoredBankParam(bankA) &&
                      ParamAddress::isEditBufferOrStoredBankParam(bankB));
    if (isSendingOnline()) {
        if (bankA == Bank::EditBuffer) {
            messageEncoder->sendParamChangeOfController(Bank::EditBuffer, templateA, controllerA);
        }
        if (bankB == Bank::EditBuffer) {
            messageEncoder->sendParamChangeOfController(Bank::EditBuffer, templateB, controllerB);
        }
    }
    return true;
}

void RemoteMemAPI::setupLibraryBank()
{
    copyStoredBankToArbitraryBank(Bank::Library);
}

void RemoteMemAPI::activateLibraryEdit()
{
    denyToRaiseFileEditFlag();
    copyBank(Bank::Library, Bank::EditBuffer);
    allowToRaiseFileEditFlag();
}

void RemoteMemAPI::copyStoredBankToArbitraryBank(int to)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (memory->isValidBankIndex(to)) {
        memory->copyBank(Bank::EditBuffer, to);
        notifyObserverOfBankAllParam(to);
    }
}

void RemoteMemAPI::copyStoredBankToEditorBackupBank()
{
    // A copy between banks raises the target's available flag by itself.
    copyStoredBankToArbitraryBank(Bank::Stored);
}

void RemoteMemAPI::evacuateSpecificBankAndEditBuff(int bank)
{
    const RecursiveMutexLocker lock(memoryMutex);
    copyBank(bank, Bank::EvacuatedBank);
    copyBank(Bank::EditBuffer, Bank::EvacuatedEditBuffer);
}

void RemoteMemAPI::restoreSpecificBankAndEditBuff(int bank)
{
    const RecursiveMutexLocker lock(memoryMutex);
    copyBank(Bank::EvacuatedBank, bank);
    copyBank(Bank::EvacuatedEditBuffer, Bank::EditBuffer);
}

void RemoteMemAPI::initializeInitialTemplate()
{
    const RecursiveMutexLocker lock(memoryMutex);
    memory->initializeInitialTemplate();
}

void RemoteMemAPI::initializeTemplate(int bank, int template_)
{
    const RecursiveMutexLocker lock(memoryMutex);
    memory->initializeTemplate(bank, template_);
    notifyObserverOfTemplateAllParam(bank, template_);
}

bool RemoteMemAPI::isEditBufferEdited() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    const int current =
        memory->getParam(currentTemplateNumberOf(Bank::EditBuffer)).getCurrentValue();
    return !(memory->getBank(Bank::EditBuffer).getTemplate(current) ==
             memory->getBank(Bank::Stored).getTemplate(current));
}

bool RemoteMemAPI::storeBank(bool send)
{
    const RecursiveMutexLocker lock(memoryMutex);
    denyToRaiseFileEditFlag();
    copyBank(Bank::EditBuffer, Bank::Stored);
    allowToRaiseFileEditFlag();

    const ControlTemplateData blank = memory->blankTemplate();
    const BankData &editBuffer = memory->getBank(Bank::EditBuffer);
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        if (!(editBuffer.getTemplate(number) == blank)) {
            // Content is at stake, whatever the deny count says.
            setParam(FileEditFlagAddress, 1);
            break;
        }
    }
    return !send || sendAllTemplatesStoreMessage();
}

// --- Flags ---------------------------------------------------------------------------------------

void RemoteMemAPI::denyToRaiseFileEditFlag()
{
    const MutexLocker lock(raiseFileEditFlagMutex);
    ++raiseFileEditFlagDenyCount;
}

void RemoteMemAPI::allowToRaiseFileEditFlag()
{
    const MutexLocker lock(raiseFileEditFlagMutex);
    raiseFileEditFlagDenyCount = std::max(0, raiseFileEditFlagDenyCount - 1);
}

bool RemoteMemAPI::isAllowToRaiseFileEditFlag() const
{
    const MutexLocker lock(raiseFileEditFlagMutex);
    return raiseFileEditFlagDenyCount == 0;
}

bool RemoteMemAPI::isONLINE() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->isONLINE();
}

void RemoteMemAPI::setONLINEstate(long state)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (memory->setONLINEstate(state)) {
        notifyObserver(OnlineAddress);
    }
}

void RemoteMemAPI::setAllowToSendSysExFlag(bool allowed)
{
    const RecursiveMutexLocker lock(memoryMutex);
    memory->setFlagOfIsAllowedToSendSysEx(allowed);
}

bool RemoteMemAPI::isAllowToSendSysEx() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return memory->isAllowedToSendSysEx();
}

void RemoteMemAPI::setWatchPortActivate(bool watch)
{
    const RecursiveMutexLocker lock(memoryMutex);
    watchPortActivate = watch;
}

bool RemoteMemAPI::isWatchPortActivate() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return watchPortActivate;
}

void RemoteMemAPI::setNeedToWaitAutoSyncDoneFlag(bool wait)
{
    const RecursiveMutexLocker lock(memoryMutex);
    needToWaitAutoSync = wait;
}

bool RemoteMemAPI::needToWaitAutoSyncDone() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return needToWaitAutoSync;
}

void RemoteMemAPI::setFileOpenRequestFlag(bool request)
{
    const RecursiveMutexLocker lock(memoryMutex);
    fileOpenRequest = request;
}

bool RemoteMemAPI::isFileOpenRequestExist() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return fileOpenRequest;
}

void RemoteMemAPI::revokeReceivedBulk()
{
    const MutexLocker lock(bulkReceiveMutex);
    if (receiveRunning) {
        bulkReceiveRevocation = true;
    } else {
        bulkReceiveEnable = false;
    }
}

void RemoteMemAPI::setReceiveRunning(bool isRunning)
{
    const MutexLocker lock(bulkReceiveMutex);
    if (bulkReceiveRevocation) {
        bulkReceiveEnable = false;
    }
    receiveRunning = isRunning;
    bulkReceiveRevocation = false;
}

bool RemoteMemAPI::takeSentTemplateNumber(int number)
{
    const MutexLocker lock(sentTemplateNumbersMutex);
    if (sentTemplateNumbers.isEmpty() || sentTemplateNumbers.first() != number) {
        return false;
    }
    sentTemplateNumbers.removeFirst();
    return true;
}

void RemoteMemAPI::endCurrentTemplateHold()
{
    // Only the flag: the lock level belongs to the thread that forced, and it gives it up itself.
    const RecursiveMutexLocker lock(memoryMutex);
    currentTemplateHold = false;
}

// --- MIDI route ----------------------------------------------------------------------------------

bool RemoteMemAPI::createMIDIComunicationRoute(int watchPort, int inPort, int outPort)
{
    deleteMIDIComunicationRoute();
    if (createMIDIInput(watchPort, inPort) && createMIDIOutput(outPort)) {
        return true;
    }
    // Half a route would go on to report an instrument that nobody can answer.
    deleteMIDIComunicationRoute();
    return false;
}

bool RemoteMemAPI::createMIDIInput(int watchPort, int inPort)
{
    {
        const RecursiveMutexLocker lock(memoryMutex);
        if (messageProcessors.first != nullptr) {
            return false;
        }
        messageProcessors.first =
            std::make_unique<MessageDecoder>(inPort, this, CommunicationFilterType, deviceBytes[2],
                                             deviceBytes[3], sysExTable.get(), &addressTable);
        messageProcessors.second = std::make_unique<ConnectionWatcher>(watchPort, this);
    }
    // Without the lock: as soon as a port is open, its thread may come here.
    if (comuController->setMessageProcessorAndOpenPort(messageProcessors.first.get()) &&
        comuController->setMessageProcessorAndOpenPort(messageProcessors.second.get())) {
        return true;
    }
    comuController->releasePort(0, inPort);
    comuController->releasePort(0, watchPort);
    const RecursiveMutexLocker lock(memoryMutex);
    messageProcessors.first.reset();
    messageProcessors.second.reset();
    return false;
}

bool RemoteMemAPI::createMIDIOutput(int outPort)
{
    {
        const RecursiveMutexLocker lock(memoryMutex);
        if (messageEncoder != nullptr) {
            return false;
        }
    }
    // Without the lock: a service may take seconds, and the input threads must not wait for it.
    if (!comuController->requestPort(1, outPort, 0, nullptr)) {
        return false;
    }
    const RecursiveMutexLocker lock(memoryMutex);
    messageEncoder =
        std::make_unique<MessageEncoder>(deviceBytes[0], deviceBytes[1], sysExTable.get(),
                                         comuController.get(), outPort, &addressTable, this);
    return true;
}

void RemoteMemAPI::deleteMIDIComunicationRoute()
{
    {
        // Whoever uses the encoder holds this lock, so after it nobody does.
        const RecursiveMutexLocker lock(memoryMutex);
        messageEncoder.reset();
    }
    // Without the lock: this waits for the input threads, and they may be waiting for it.
    comuController->CloseAllOpendPortAndDeleteAllTransporters();
    const RecursiveMutexLocker lock(memoryMutex);
    messageProcessors.first.reset();
    messageProcessors.second.reset();
    // No echo of what went over the old route can come any more; left in place, it would swallow a
    // selection made at the instrument later.
    const MutexLocker sentLock(sentTemplateNumbersMutex);
    sentTemplateNumbers.clear();
}

QStringList RemoteMemAPI::getInputPortList()
{
    return comuController->getInputPortList();
}

QStringList RemoteMemAPI::getOutputPortList()
{
    return comuController->getOutputPortList();
}

// --- Sending -------------------------------------------------------------------------------------

bool RemoteMemAPI::sendMessage(bool *queueWasEmpty)
{
    const RecursiveMutexLocker lock(memoryMutex);
    return messageEncoder != nullptr && messageEncoder->sendMessage(queueWasEmpty);
}

bool RemoteMemAPI::sendHardWareDataReq(bool editBufferToo)
{
    const RecursiveMutexLocker lock(memoryMutex);
    bulkReceiveEnable = true;
    if (messageProcessors.first != nullptr) {
        messageProcessors.first->clearBulkReceipt();
    }
    return messageEncoder != nullptr && messageEncoder->sendHardWareDataReq(editBufferToo);
}

bool RemoteMemAPI::sendEditorAllData(bool editBufferOnly)
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (messageEncoder == nullptr) {
        return false;
    }
    bool good = messageEncoder->sendEditorAllData(editBufferOnly);
    if (good && storeFlag) {
        good = storeBank(true);
        storeFlag = false;
    }
    if (good && storeToFlashSending) {
        good = sendStoreToFlash();
        storeToFlashSending = false;
    }
    return good;
}

bool RemoteMemAPI::sendStoreToFlash()
{
    const RecursiveMutexLocker lock(memoryMutex);
    return messageEncoder != nullptr && messageEncoder->enqueueStoreToFlash() &&
           messageEncoder->sendMessage(nullptr);
}

bool RemoteMemAPI::sendAllTemplatesStoreMessage()
{
    const RecursiveMutexLocker lock(memoryMutex);
    return messageEncoder != nullptr && messageEncoder->sendStoreMessage();
}

bool RemoteMemAPI::send1TemplateDataParamChange(int bank, int template_)
{
    const RecursiveMutexLocker lock(memoryMutex);
    return messageEncoder != nullptr &&
           messageEncoder->send1TemplateDataParamChange(bank, template_);
}

void RemoteMemAPI::clearTransmitQueue()
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (messageEncoder != nullptr) {
        messageEncoder->clearTransmitQueue(true);
    }
}

// --- Bookkeeping of bulk transfers ---------------------------------------------------------------

void RemoteMemAPI::incrementTransmitedBulkCounter()
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (messageProcessors.first != nullptr) {
        messageProcessors.first->incrementTransmitedBulkCounter();
    }
}

void RemoteMemAPI::incrementTransmitedBulkReqCounter()
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (messageProcessors.first != nullptr) {
        messageProcessors.first->incrementTransmitedBulkReqCounter();
    }
}

void RemoteMemAPI::clearTransmitedBulkCounter()
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (messageProcessors.first != nullptr) {
        messageProcessors.first->clearTransmitedBulkCounter();
    }
}

void RemoteMemAPI::clearTransmitedBulkReqCounter()
{
    const RecursiveMutexLocker lock(memoryMutex);
    if (messageProcessors.first != nullptr) {
        messageProcessors.first->clearTransmitedBulkReqCounter();
    }
}

int RemoteMemAPI::transmitedBulkCount() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return messageProcessors.first != nullptr ? messageProcessors.first->transmitedBulkCount() : 0;
}

int RemoteMemAPI::transmitedBulkReqCount() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return messageProcessors.first != nullptr ? messageProcessors.first->transmitedBulkReqCount()
                                              : 0;
}

BulkReceipt RemoteMemAPI::bulkReceipt() const
{
    const RecursiveMutexLocker lock(memoryMutex);
    return messageProcessors.first != nullptr ? messageProcessors.first->bulkReceipt()
                                              : BulkReceipt();
}
