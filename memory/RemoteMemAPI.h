// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "memory/AddressTransTable.h"
#include "memory/BankData.h"
#include "memory/PairAdrObs.h"
#include "memory/RemoteMemory.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <array>
#include <atomic>
#include <list>
#include <memory>
#include <utility>

class ComuController;
class ConnectionWatcher;
class MemChangeObserver;
class MessageDecoder;
class MessageEncoder;
class SysExParamChangeAddressTransTable;
struct BulkReceipt;

// The one door to the memory, and the owner of the MIDI route. Every write, by the user, by a file
// and by the instrument, passes through setParam(), which decides what follows a change: who hears
// of it, which edit flag rises, whether a message goes to the instrument.
//
// Threads: writing, reading, notifying and sending may come on any thread and take memoryMutex.
// Creating and deleting a route belongs to the GUI thread and must be called without memoryMutex,
// since it waits for the input threads, which may be waiting for that lock.
//
// Failure: no call reports in words. Bad indices and calls that need a missing route give false, a
// default object, or nothing.
class RemoteMemAPI : public QObject
{
    Q_OBJECT

public:
    RemoteMemAPI();
    ~RemoteMemAPI() override;

    // Recursive; held across a write, its notifications and its queueing, so that memory,
    // observers, flag and message keep one order for all threads. Released only by the thread that
    // took it.
    mutable RecursiveMutex memoryMutex;

    AddressTransTable *getAddressTransTable() { return &addressTable; }

    // --- Values by address. True when a value changed.
    bool setParam(const ParamAddress &address, long value);
    bool setParam(const ParamAddress &address, int value)
    {
        return setParam(address, static_cast<long>(value));
    }
    bool setParam(const ParamAddress &address, const QString &text);
    NumericParameter getParam(const ParamAddress &address) const;
    QString getParamQString(const ParamAddress &address) const;

    // --- Observers. Neither the address nor the observer is owned; both must live until the
    // observer is unregistered. An observer may be registered many times, and then hears as often.
    void registObserver(const PairAdrObs &pair); // historical spelling
    void registObserver(ParamAddress *address, MemChangeObserver *observer);
    // Returns when no notification of it is under way on another thread.
    void unregistObserver(MemChangeObserver *observer); // historical spelling
    // Removes every pair with this address object, for an owner about to delete it.
    void unregistAddress(const ParamAddress *address);
    // Lets every pair with the first address object point to the second, in its place in the order.
    void replaceAddress(const ParamAddress *from, ParamAddress *to);
    // In the order of registration.
    void notifyObserver(const ParamAddress &address);
    void notifyObserverOfBankAllParam(int bank);
    void notifyObserverOfTemplateAllParam(int bank, int template_);
    void notifyObserverOfControllerAllParam(int bank, int template_, int controller);

    // --- Banks, templates and knobs.
    BankData getBank(int bank) const; // a copy
    int createBank();
    int getQuantityOfBank() const;
    NumericParameter getBankAvailableFlag(int bank) const;
    // On the bank directly: no notification, no edit flag.
    void setBankAvailableFlag(int value, int bank);
    ControlTemplateData getTemplateData(int bank, int template_) const; // a copy
    // The template in its place; null for a bad index. For whoever reads much of it at once and
    // holds memoryMutex, for as long as the result is used.
    const ControlTemplateData *AccessTemplate(int bank, int template_) const;

    // What follows each, the condition in brackets:
    //
    // clang-format off
    //   call                notified                    file edit flag       library flag  sent
    //   copyBank            target bank, always         target 0 or 1        target 5      -
    //   copyTemplate        target, if changed          target 0 or 1        target 5      -
    //   exchangeTemplate *  second place, then first    both 0 or 1          either 5      dumps of bank 0
    //   copyController *    target                      target 0 or 1        -             knob of bank 0
    //   exchangeController* second knob                 both 0 or 1          -             knobs of bank 0
    //   * only if changed
    // clang-format on
    //
    // The file edit flag rises only while raising is allowed. Bad indices: nothing follows.
    void copyBank(int from, int to);
    bool copyTemplate(int fromBank, int fromTemplate, int toBank, int toTemplate);
    bool exchangeTemplate(int bankA, int templateA, int bankB, int templateB);
    bool copyController(int fromBank, int fromTemplate, int fromController, int toBank,
                        int toTemplate, int toController);
    // The first knob's observers hear nothing of this call.
    bool exchangeController(int bankA, int templateA, int controllerA, int bankB, int templateB,
                            int controllerB);

    void setupLibraryBank();
    void activateLibraryEdit();
    void copyStoredBankToArbitraryBank(int to);
    void copyStoredBankToEditorBackupBank();
    void evacuateSpecificBankAndEditBuff(int bank);
    void restoreSpecificBankAndEditBuff(int bank);
    void initializeInitialTemplate();
    // Notifies the template; the caller raises the flag.
    void initializeTemplate(int bank, int template_);
    // Whether the current template of the edit buffer differs from its stored one.
    bool isEditBufferEdited() const;
    // Edit buffer to stored. send: also tells the instrument to store; the result is that send's.
    bool storeBank(bool send);

    // --- Flags.
    void denyToRaiseFileEditFlag(); // nests
    void allowToRaiseFileEditFlag();
    bool isAllowToRaiseFileEditFlag() const;
    bool isONLINE() const;
    void setONLINEstate(long state);
    // The gate that keeps received and loaded values from going to the instrument.
    void setAllowToSendSysExFlag(bool allowed);
    bool isAllowToSendSysEx() const;
    void setWatchPortActivate(bool watch);
    bool isWatchPortActivate() const;
    void setNeedToWaitAutoSyncDoneFlag(bool wait);
    bool needToWaitAutoSyncDone() const;
    void setFileOpenRequestFlag(bool request);
    bool isFileOpenRequestExist() const;
    void setStoreFlag(bool store) { storeFlag = store; }
    void setStoreToFlashSendingFlag(bool send) { storeToFlashSending = send; }
    void lockSendParamChange() { sendParamChangeLocked = true; }
    void unlockSendParamChange() { sendParamChangeLocked = false; }
    bool getBulkRecieveEnableFlag() const { return bulkReceiveEnable; } // historical spelling
    void revokeReceivedBulk();
    // While a receive runs, its last dumps may still be on their way when a message that empties
    // the queue has revoked them: what is revoked until the end is so from the end on.
    void setReceiveRunning(bool isRunning);
    void setWaitBulkTransmitDone(bool wait) { waitBulkTransmitDone = wait; }
    bool isWaitBulkTransmitDone() const { return waitBulkTransmitDone; }
    void setWaitBulkReceiveDone(bool wait) { waitBulkReceiveDone = wait; }
    // Clears the flag and says whether it was up, so that of two threads one alone completes a run.
    bool takeWaitBulkTransmitDone() { return waitBulkTransmitDone.exchange(false); }
    bool takeWaitBulkReceiveDone() { return waitBulkReceiveDone.exchange(false); }

    // Takes the first entry of the sent and not yet echoed current template numbers if it is
    // number.
    bool takeSentTemplateNumber(int number);
    // Ends a forced write that its own thread has not come to; see ForcedCurrentTemplate.
    void endCurrentTemplateHold();

    // --- MIDI route. GUI thread.
    // Port numbers as the catalogue's; any old route goes first. False leaves no route.
    bool createMIDIComunicationRoute(int watchPort, int inPort, int outPort); // historical spelling
    bool createMIDIInput(int watchPort, int inPort);
    bool createMIDIOutput(int outPort);
    void deleteMIDIComunicationRoute(); // historical spelling
    QStringList getInputPortList();
    QStringList getOutputPortList();
    ComuController *getComuController() const { return comuController.get(); }

    // --- Sending, through the encoder; false without one.
    bool sendMessage(bool *queueWasEmpty);
    // editBufferToo: after the stored templates also the edit buffer's.
    bool sendHardWareDataReq(bool editBufferToo);
    bool sendEditorAllData(bool editBufferOnly);
    bool sendStoreToFlash();
    bool sendAllTemplatesStoreMessage();
    bool send1TemplateDataParamChange(int bank, int template_);
    void clearTransmitQueue();

    // --- Bookkeeping of running bulk transfers, in the decoder; nothing without one.
    void incrementTransmitedBulkCounter(); // historical spelling, here and below
    void incrementTransmitedBulkReqCounter();
    void clearTransmitedBulkCounter();
    void clearTransmitedBulkReqCounter();
    int transmitedBulkCount() const;    // dumps not yet acknowledged; 0 without a decoder
    int transmitedBulkReqCount() const; // requests not yet answered
    // What of each dump has arrived since the last sendHardWareDataReq().
    BulkReceipt bulkReceipt() const;

    void emitCompleteBulkReceiveSignal() { Q_EMIT completeBulkReceive(); }
    void emitCompleteBulkTransmitSignal() { Q_EMIT completeBulkTransmit(); }
    void emitNotifiedCurrentTemplateNumberSignal() { Q_EMIT notifiedCurrentTemplateNumber(); }
    void emitPortActivatedSignal() { Q_EMIT portActivated(); }

Q_SIGNALS:
    // Emitted on whichever thread came to it, usually an input thread.
    void completeBulkReceive();
    void completeBulkTransmit();
    void notifiedCurrentTemplateNumber();
    void portActivated();

private:
    friend class ForcedCurrentTemplate;

    template <typename Matches>
    void notifyMatching(Matches matches);
    template <typename Leaves>
    void removeObservers(Leaves leaves);
    void raiseFileEditFlag(bool concerned);
    void raiseLibraryEditFlag(bool concerned);
    bool isSendingOnline() const;

    QList<int> sentTemplateNumbers; // guarded by sentTemplateNumbersMutex
    Mutex sentTemplateNumbersMutex;
    std::unique_ptr<RemoteMemory> memory; // guarded by memoryMutex
    // Guarded by memoryMutex. While a notification runs, an entry that is unregistered keeps its
    // place with a null observer, so that the walk stays valid.
    std::list<PairAdrObs> observers;
    int notifyDepth = 0; // guarded by memoryMutex
    bool observersHaveGaps = false;
    std::unique_ptr<SysExParamChangeAddressTransTable> sysExTable; // constant after construction
    AddressTransTable addressTable;
    std::unique_ptr<ComuController> comuController;
    // Changed under memoryMutex on the GUI thread.
    std::unique_ptr<MessageEncoder> messageEncoder;
    std::pair<std::unique_ptr<MessageDecoder>, std::unique_ptr<ConnectionWatcher>>
        messageProcessors;
    // The model identifier that is sent, then the one that is accepted.
    const std::array<unsigned char, 4> deviceBytes{0x7F, 0x14, 0x7F, 0x15};
    Mutex bulkReceiveMutex;
    std::atomic<bool> bulkReceiveEnable{true};
    bool receiveRunning = false;        // by bulkReceiveMutex
    bool bulkReceiveRevocation = false; // the same; put off to the end of the run
    bool watchPortActivate = true;      // guarded by memoryMutex
    bool needToWaitAutoSync = false;    // guarded by memoryMutex
    bool fileOpenRequest = false;       // guarded by memoryMutex
    bool currentTemplateHold = false;   // guarded by memoryMutex
    std::atomic<bool> sendParamChangeLocked{false};
    std::atomic<bool> waitBulkTransmitDone{false};
    std::atomic<bool> waitBulkReceiveDone{false};
    int raiseFileEditFlagDenyCount = 0; // guarded by raiseFileEditFlagMutex
    mutable Mutex raiseFileEditFlagMutex;
    std::atomic<bool> storeToFlashSending{false};
    std::atomic<bool> storeFlag{false};
};
