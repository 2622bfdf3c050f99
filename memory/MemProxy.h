// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "memory/MemChangeObserver.h"
#include "memory/MemControllerHelper.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <atomic>
#include <memory>
#include <mutex>

class MemControllerFactory;
class MemProxy;

// Carries an update from another thread to the GUI thread: the signal is connected to the slot as a
// queued connection. Owner: MemProxy. Lives on the thread of its proxy.
class MemProxyEventObject : public QObject
{
    Q_OBJECT

public:
    explicit MemProxyEventObject(MemProxy *proxy);

Q_SIGNALS:
    void paramUpdateSignal();

private Q_SLOTS:
    void paramUpdateSlot();

private:
    MemProxy *m_proxy;
};

// Mixin that binds a widget or a notifier to one address of the memory, by name ("knobA1/ccNumber",
// "bankEditFlag") or by number. An object is given its address any time, becomes live when
// createMemProxyController() walks over it, and then reads, writes and hears that parameter.
//
// Thread: GUI, but for paramUpdate(), which may come on any. A class that derives from this and is
// live calls unbind() first in its destructor, so that no other thread notifies a half-gone object.
class MemProxy : public MemControllerHelper, public MemChangeObserver
{
public:
    MemProxy();
    ~MemProxy() override;

    void assign() override;
    void postInitialize() override {}
    // Makes or deletes the controller according to whether there is an address. Overriders call it
    // first, then take range and value.
    virtual void assignMemAPI();
    // Shows the current value. Runs on the GUI thread; inside memoryMutex when the write came
    // there.
    virtual void updateMemAPI() = 0;
    void paramUpdate() override;

    // factory: a MemControllerFactory, not owned.
    void initializeMemAPI(void *factory);
    // An empty name takes the address away: the next assignMemAPI() deletes the controller. A
    // second name on a live proxy registers it a second time, and it then hears each change twice.
    void setNamedAddress(const QString &name);
    void setNumericAddress(int controllerNumber, int parameter);
    QString getNamedAddress() const { return namedAddress; }
    // kind: 0 the bank, 1 the template, 2 the knob; another does nothing.
    void assignClassMemAPI(int value, int kind);
    // Bank, template, knob, as far as the list reaches.
    void assignClassMemAPI(const QList<int> &values);

    bool isAssigned() const { return assigned; }
    // 0 when not live.
    int getMemAPICurrentValue() const;
    int getMemAPIMinimumValue() const;
    int getMemAPIMaximumValue() const;
    // "204143dff" when not live, so that an unbound knob reads as not assigned.
    QString getMemAPIString() const;
    // Nothing when not live.
    void setMemAPICurrentValue(int value);
    void setMemAPIString(const QString &text);

protected:
    // Holds memoryMutex (nothing, without a memory). A bound object that shows what it reads, and
    // writes what it shows, holds it over both: otherwise it may write the value back over one that
    // another thread has written in between.
    using MemoryLock = std::unique_lock<RecursiveMutex>;
    [[nodiscard]] MemoryLock lockMemory() const;
    // Leaves the list of observers and falls silent for good.
    void unbind();

private:
    void applyAddress();
    void becomeAssigned();

    std::atomic<bool> assigned{false};
    int bankNumber = 0;
    int templateNumber = 0;
    int knobNumber = 0;
    bool hasAddress = false;
    QString namedAddress;
    int numericController = 0;
    int numericParameter = 0;
    std::unique_ptr<MemProxyEventObject> eventObject;
    MemControllerFactory *controllerFactory = nullptr; // not owned
    bool controllerCreated = false;
};

// Each walks a tree of objects, the root first, then its children in order, depth first, and acts
// on those that are a MemProxy. A null root does nothing. Thread: GUI.
void createMemProxyController(MemControllerFactory *factory, QObject *root);
void assignBank(QObject *root, int bank);
void assignTemplate(QObject *root, int template_);
void assignController(QObject *root, int knob);
