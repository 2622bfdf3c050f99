// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/MemProxy.h"

#include "app/Constants.h"
#include "memory/MemController.h"
#include "memory/MemControllerFactory.h"
#include "memory/RemoteMemAPI.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

namespace
{

// What an unbound knob reads as.
const QString NoAssignID = TrackControlNoAssignID;

enum class AddressLevel { Bank = 0, Template = 1, Knob = 2 };

template <typename Action>
void walkProxies(QObject *root, const Action &action)
{
    if (root == nullptr) {
        return;
    }
    if (auto *proxy = dynamic_cast<MemProxy *>(root)) {
        action(proxy);
    }
    const QObjectList children = root->children();
    for (QObject *child : children) {
        walkProxies(child, action);
    }
}

void assignLevel(QObject *root, int value, AddressLevel level)
{
    walkProxies(root, [value, level](MemProxy *proxy) {
        proxy->assignClassMemAPI(value, static_cast<int>(level));
    });
}

} // namespace

MemProxyEventObject::MemProxyEventObject(MemProxy *proxy)
    : m_proxy(proxy)
{
    connect(this, &MemProxyEventObject::paramUpdateSignal, this,
            &MemProxyEventObject::paramUpdateSlot, Qt::QueuedConnection);
}

void MemProxyEventObject::paramUpdateSlot()
{
    m_proxy->paramUpdate();
}

MemProxy::MemProxy()
    : eventObject(std::make_unique<MemProxyEventObject>(this))
{
}

MemProxy::~MemProxy()
{
    unbind();
}

void MemProxy::unbind()
{
    assigned = false;
    if (memAPI != nullptr) {
        memAPI->unregistObserver(this);
        setMemAPI(nullptr);
    }
}

MemProxy::MemoryLock MemProxy::lockMemory() const
{
    return memAPI != nullptr ? MemoryLock(memAPI->memoryMutex) : MemoryLock();
}

void MemProxy::assign()
{
    if (MemController *own = getController()) {
        own->assign(this);
    }
}

void MemProxy::assignMemAPI()
{
    if (!hasAddress) {
        if (getController() != nullptr) {
            unbind();
            dropController();
            controllerCreated = false;
        }
        assigned = false;
        return;
    }
    if (getController() == nullptr) {
        if (controllerFactory == nullptr) {
            return;
        }
        controllerFactory->CreateController(this);
        setMemAPI(controllerFactory->getMemAPI());
        controllerCreated = true;
        applyAddress();
    }
    becomeAssigned();
}

void MemProxy::becomeAssigned()
{
    assign();
    assigned = true;
}

void MemProxy::applyAddress()
{
    if (namedAddress.isEmpty()) {
        setParamAddressNumeric(bankNumber, templateNumber, numericController, numericParameter);
        return;
    }
    const QByteArray name = namedAddress.toLocal8Bit();
    if (namedAddress.contains(QLatin1Char('/'))) {
        setParamAddress(bankNumber, templateNumber, name.constData());
    } else {
        setParamAddress(bankNumber, templateNumber, knobNumber, name.constData());
    }
}

void MemProxy::paramUpdate()
{
    if (!assigned) {
        return;
    }
    const QCoreApplication *application = QCoreApplication::instance();
    if (application == nullptr || QThread::currentThread() == application->thread()) {
        updateMemAPI();
    } else {
        Q_EMIT eventObject->paramUpdateSignal();
    }
}

void MemProxy::initializeMemAPI(void *factory)
{
    controllerFactory = static_cast<MemControllerFactory *>(factory);
}

void MemProxy::setNamedAddress(const QString &name)
{
    namedAddress = name;
    hasAddress = !name.isEmpty();
    if (hasAddress && getController() != nullptr) {
        applyAddress();
        becomeAssigned();
    }
}

void MemProxy::setNumericAddress(int controllerNumber, int parameter)
{
    hasAddress = true;
    namedAddress.clear();
    numericController = controllerNumber;
    numericParameter = parameter;
    if (getController() != nullptr) {
        applyAddress();
        becomeAssigned();
    }
}

void MemProxy::assignClassMemAPI(int value, int kind)
{
    switch (static_cast<AddressLevel>(kind)) {
    case AddressLevel::Bank:
        bankNumber = value;
        if (assigned) {
            setBankAdr(value);
        }
        break;
    case AddressLevel::Template:
        templateNumber = value;
        if (assigned) {
            setTemplateAdr(value);
        }
        break;
    case AddressLevel::Knob:
        knobNumber = value;
        if (assigned) {
            setKnobAdr(value);
        }
        break;
    default:
        return;
    }
    if (assigned) {
        paramUpdate();
    }
}

void MemProxy::assignClassMemAPI(const QList<int> &values)
{
    if (values.isEmpty()) {
        return;
    }
    bankNumber = values.at(0);
    if (assigned) {
        setBankAdr(bankNumber);
    }
    if (values.size() > 1) {
        templateNumber = values.at(1);
        if (assigned) {
            setTemplateAdr(templateNumber);
        }
    }
    if (values.size() > 2) {
        knobNumber = values.at(2);
        if (assigned) {
            setKnobAdr(knobNumber);
        }
    }
    if (assigned) {
        paramUpdate();
    }
}

int MemProxy::getMemAPICurrentValue() const
{
    return assigned ? getParam() : 0;
}

int MemProxy::getMemAPIMinimumValue() const
{
    return assigned ? getParamMinValue() : 0;
}

int MemProxy::getMemAPIMaximumValue() const
{
    return assigned ? getParamMaxValue() : 0;
}

QString MemProxy::getMemAPIString() const
{
    return assigned ? getParamQString() : NoAssignID;
}

void MemProxy::setMemAPICurrentValue(int value)
{
    if (assigned) {
        setParam(static_cast<long>(value));
    }
}

void MemProxy::setMemAPIString(const QString &text)
{
    if (assigned) {
        setParam(text);
    }
}

void createMemProxyController(MemControllerFactory *factory, QObject *root)
{
    walkProxies(root, [factory](MemProxy *proxy) {
        proxy->initializeMemAPI(factory);
        proxy->assignMemAPI();
    });
}

void assignBank(QObject *root, int bank)
{
    assignLevel(root, bank, AddressLevel::Bank);
}

void assignTemplate(QObject *root, int template_)
{
    assignLevel(root, template_, AddressLevel::Template);
}

void assignController(QObject *root, int knob)
{
    assignLevel(root, knob, AddressLevel::Knob);
}
