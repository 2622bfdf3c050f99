// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/CSimpleNotifier.h"
#include "memory/MemController.h"
#include "memory/MemControllerFactory.h"
#include "memory/MemProxy.h"
#include "memory/MemoryHarness.h"

#include <QtTest/QtTest>

#include <memory>
#include <thread>

// Binding objects to addresses: controllers, the life of a proxy, walks over trees of objects, and
// updates from other threads.

namespace
{

// A bound object as a widget is one, without being one.
class Bound : public QObject, public MemProxy
{
public:
    explicit Bound(QObject *parent = nullptr)
        : QObject(parent)
    {
    }
    ~Bound() override { unbind(); }
    void updateMemAPI() override
    {
        ++updates;
        updatedOn = QThread::currentThread();
        if (log != nullptr) {
            log->append(objectName());
        }
    }
    int updates = 0;
    QThread *updatedOn = nullptr;
    QStringList *log = nullptr;
};

std::array<int, 4> numbersOf(const ParamAddress &address)
{
    return {address.getParamAddress(0), address.getParamAddress(1), address.getParamAddress(2),
            address.getParamAddress(3)};
}
using Numbers = std::array<int, 4>;

} // namespace

class TestMemProxy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // Controllers and their factory.
    void theFactoryMakesControllersWithTheGivenAddress();
    void theFactoryTakesNoOtherType();
    void theFactoryRemembersTheLastController();
    void aNewControllerOfAHelperTakesOverItsAddress();
    void aControllerReadsAndWritesAtItsAddress();
    void aControllerOwnsTheAddressItIsGiven();
    void movingARegisteredControllerRefreshesItsNewPlace();
    void aDeletedControllerIsHeardNoMore();
    void withoutAControllerTheHelperIsHarmless();

    // The life of a proxy.
    void aProxyThatWasNeverAssignedTouchesNoMemory();
    void givingAnAddressBeforeTheWalkOnlyStoresIt();
    void theWalkMakesABoundObjectLive();
    void namesResolveToTheirAddresses_data();
    void namesResolveToTheirAddresses();
    void aNumericAddressReachesItsParameter();
    void anEmptyNameSilencesTheProxyAtTheNextAssignment();
    void aSilencedProxyCanBeBoundAgain();
    void aSecondNameOnALiveProxyRegistersItASecondTime();
    void aNumericAddressOnALiveProxyReplacesItsName();
    void currentMinimumAndMaximumComeFromTheMemory();
    void writesReachTheMemory();
    void levelsMoveTheAddressAndUpdate_data();
    void levelsMoveTheAddressAndUpdate();
    void anotherLevelDoesNothing();
    void aListMovesAsFarAsItReaches();
    void levelsGivenBeforeTheWalkAreStored();

    // Walks.
    void walksGoDepthFirstFromTheRoot();
    void assignTemplateMovesTheWholeTree();
    void assignBankAndControllerMoveTheirNumber();
    void aGlobalBindingInsideAWalkStillReadsAndFallsSilent();
    void aNullRootDoesNothing();

    // The notifier.
    void theNotifierTurnsChangesIntoASignal();
    void theNotifierEmitsOnceWhenItIsAssigned();
    void aNotifierWithoutAnAddressStaysSilent();

    // Threads.
    void anUpdateFromAnotherThreadRunsWithTheEventLoop();
    void aQueuedUpdateDiesWithItsProxy();
    void proxiesComeAndGoWhileAnotherThreadWrites();

private:
    std::unique_ptr<RemoteMemAPI> m_api;
    std::unique_ptr<MemControllerFactory> m_factory;
    RemoteMemAPI *api() { return m_api.get(); }
    MemControllerFactory *factory() { return m_factory.get(); }
    void makeLive(Bound *bound, const char *name)
    {
        bound->setNamedAddress(latin(name));
        createMemProxyController(factory(), bound);
    }
};

void TestMemProxy::init()
{
    m_api = std::make_unique<RemoteMemAPI>();
    makeNineBanks(api());
    m_factory = std::make_unique<MemControllerFactory>(api());
}

void TestMemProxy::cleanup()
{
    m_factory.reset();
    m_api.reset();
}

// --- Controllers ---------------------------------------------------------------------------------

void TestMemProxy::theFactoryMakesControllersWithTheGivenAddress()
{
    auto *address = new ParamAddress(0, 3, 4, 1);
    const std::unique_ptr<MemController> controller(
        m_factory->CreateController(ParameterController, address));
    QVERIFY(controller != nullptr);
    QCOMPARE(controller->getMemAPI(), api());
    QCOMPARE(controller->getParamAddress(), address);
    QVERIFY(address->getAddressTransTable() != nullptr);
    QVERIFY(address->getAddressTransTable() != m_api->getAddressTransTable());
    QCOMPARE(address->String2ParamAdr(latin("knobD3")), 11);

    const std::unique_ptr<MemController> empty(
        m_factory->CreateController(ParameterController, static_cast<ParamAddress *>(nullptr)));
    QCOMPARE(numbersOf(*empty->getParamAddress()), (Numbers{-1, -1, -1, -1}));
    m_factory->DeleteController(nullptr);
}

void TestMemProxy::theFactoryTakesNoOtherType()
{
    QVERIFY(m_factory->CreateController(static_cast<ControllerType>(1),
                                        static_cast<ParamAddress *>(nullptr)) == nullptr);
    Bound bound;
    QVERIFY(m_factory->CreateController(static_cast<ControllerType>(1), &bound) == nullptr);
    QVERIFY(bound.getController() == nullptr);
}

void TestMemProxy::theFactoryRemembersTheLastController()
{
    QVERIFY(m_factory->getLastController() != nullptr);
    MemController *made =
        m_factory->CreateController(ParameterController, static_cast<ParamAddress *>(nullptr));
    QCOMPARE(m_factory->getLastController(), made);
    m_factory->DeleteController(made);
}

void TestMemProxy::aNewControllerOfAHelperTakesOverItsAddress()
{
    Bound bound;
    MemController *first = m_factory->CreateController(&bound);
    QCOMPARE(bound.getController(), first);
    bound.setParamAddressNumeric(0, 3, 4, 1);
    MemController *second = m_factory->CreateController(&bound);
    QCOMPARE(bound.getController(), second);
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{0, 3, 4, 1}));
    bound.setController(nullptr);
    QCOMPARE(bound.getController(), second);
    QCOMPARE(bound.getMemapiOfController(), api());
}

void TestMemProxy::aControllerReadsAndWritesAtItsAddress()
{
    const std::unique_ptr<MemController> controller(
        m_factory->CreateController(ParameterController, new ParamAddress(0, 3, 4, 1)));
    QVERIFY(controller->setParam(74L));
    QVERIFY(!controller->setParam(74L));
    QCOMPARE(controller->getParam().getCurrentValue(), 74);
    controller->setParamAddressNumeric(-1, -1, -1, 0);
    QVERIFY(controller->setParam(latin("Cutoff")));
    QCOMPARE(controller->getParamQString(), latin("Cutoff"));
    controller->setParamAddress(2, 9, "knobB2/remoteNumber");
    QCOMPARE(numbersOf(*controller->getParamAddress()), (Numbers{2, 9, 5, 3}));
    controller->setParamAddress(-1, -1, -1, "isOnline");
    QCOMPARE(numbersOf(*controller->getParamAddress()), (Numbers{-2, -1, -1, -1}));
}

void TestMemProxy::aControllerOwnsTheAddressItIsGiven()
{
    const std::unique_ptr<MemController> controller(
        m_factory->CreateController(ParameterController, new ParamAddress(0, 3, 4, 1)));
    LoggingObserver observer(api(), ParamAddress(7, 7, 7, 3));
    controller->assign(&observer);
    auto *given = new ParamAddress(0, 5, 6, 1);
    controller->setParamAddress(given);
    QCOMPARE(controller->getParamAddress(), given);
    // The move itself refreshes; then the observer hears the new address and not the old.
    QCOMPARE(observer.count, 1);
    m_api->setParam(ParamAddress(0, 3, 4, 1), 9);
    QCOMPARE(observer.count, 1);
    m_api->setParam(ParamAddress(0, 5, 6, 1), 9);
    QCOMPARE(observer.count, 2);
    controller->setParamAddress(nullptr);
    QCOMPARE(controller->getParamAddress(), given);
    controller->setParamAddress(given);
    QCOMPARE(controller->getParamAddress(), given);
}

void TestMemProxy::movingARegisteredControllerRefreshesItsNewPlace()
{
    LoggingObserver resident(api(), ParamAddress(0, 9, 0, 1));
    LoggingObserver mover(api(), ParamAddress(7, 7, 7, 3));
    const std::unique_ptr<MemController> controller(
        m_factory->CreateController(ParameterController, new ParamAddress(0, 0, 0, 1)));
    controller->setParamAddressNumeric(0, 8, 0, 1);
    QCOMPARE(mover.count, 0);
    controller->assign(&mover);
    QCOMPARE(mover.count, 0);
    controller->setParamAddressNumeric(0, 9, 0, 1);
    QCOMPARE(mover.count, 1);
    QCOMPARE(resident.count, 1);
    controller->setParamAddress(-1, -1, "knobA1/ccNumber");
    controller->setParamAddress(-1, -1, -1, "ccNumber");
    QCOMPARE(mover.count, 3);
    QCOMPARE(resident.count, 3);
}

void TestMemProxy::aDeletedControllerIsHeardNoMore()
{
    LoggingObserver observer(api(), ParamAddress(7, 7, 7, 3));
    MemController *controller =
        m_factory->CreateController(ParameterController, new ParamAddress(0, 0, 0, 1));
    controller->assign(&observer);
    m_factory->DeleteController(controller);
    m_api->setParam(ParamAddress(0, 0, 0, 1), 9);
    QCOMPARE(observer.count, 0);
}

void TestMemProxy::withoutAControllerTheHelperIsHarmless()
{
    Bound bound;
    bound.setBankAdr(3);
    bound.setTemplateAdr(3);
    bound.setKnobAdr(3);
    bound.setParamAddress(0, 0, "knobA1/ccNumber");
    bound.setParamAddress(0, 0, 0, "isOnline");
    bound.setParamAddressNumeric(0, 0, 0, 0);
    QVERIFY(bound.getParamAddress() == nullptr);
    QVERIFY(bound.getMemapiOfController() == nullptr);
    QVERIFY(!bound.setParam(3L));
    QCOMPARE(bound.getParam(), 0);
    QVERIFY(bound.getParamQString().isNull());
    bound.postInitialize();
}

// --- The life of a proxy -------------------------------------------------------------------------

void TestMemProxy::aProxyThatWasNeverAssignedTouchesNoMemory()
{
    Bound bound;
    QVERIFY(!bound.isAssigned());
    QCOMPARE(bound.getMemAPICurrentValue(), 0);
    QCOMPARE(bound.getMemAPIMinimumValue(), 0);
    QCOMPARE(bound.getMemAPIMaximumValue(), 0);
    QCOMPARE(bound.getMemAPIString(), latin("204143dff"));
    bound.setMemAPICurrentValue(5);
    bound.setMemAPIString(latin("x"));
    bound.paramUpdate();
    bound.assignMemAPI();
    bound.assignClassMemAPI(5, 0);
    QCOMPARE(bound.updates, 0);
}

void TestMemProxy::givingAnAddressBeforeTheWalkOnlyStoresIt()
{
    Bound bound;
    bound.setNamedAddress(latin("knobA1/ccNumber"));
    QCOMPARE(bound.getNamedAddress(), latin("knobA1/ccNumber"));
    QVERIFY(!bound.isAssigned());
    QVERIFY(bound.getController() == nullptr);
    m_api->setParam(ParamAddress(0, 0, 0, 1), 5);
    QCOMPARE(bound.updates, 0);
    QCOMPARE(bound.getMemAPICurrentValue(), 0);
}

void TestMemProxy::theWalkMakesABoundObjectLive()
{
    Bound bound;
    makeLive(&bound, "knobA1/ccNumber");
    QVERIFY(bound.isAssigned());
    const int before = bound.updates;
    m_api->setParam(ParamAddress(0, 0, 0, 1), 5);
    QCOMPARE(bound.updates, before + 1);
    QCOMPARE(bound.updatedOn, QThread::currentThread());
    QCOMPARE(bound.getMemAPICurrentValue(), 5);
}

void TestMemProxy::namesResolveToTheirAddresses_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QList<int>>("numbers");
    QTest::newRow("currentTemplateNumber")
        << QByteArray("currentTemplateNumber") << QList<int>{5, 52, -1, -1};
    QTest::newRow("templateName") << QByteArray("templateName") << QList<int>{5, 6, 13, -1};
    QTest::newRow("knobA1/displayFormat")
        << QByteArray("knobA1/displayFormat") << QList<int>{5, 6, 0, 2};
    QTest::newRow("isOnline") << QByteArray("isOnline") << QList<int>{-2, -1, -1, -1};
    QTest::newRow("bankEditFlag") << QByteArray("bankEditFlag") << QList<int>{-6, -1, -1, -1};
    QTest::newRow("ccNumber of the given knob") << QByteArray("ccNumber") << QList<int>{5, 6, 7, 1};
}

void TestMemProxy::namesResolveToTheirAddresses()
{
    QFETCH(QByteArray, name);
    QFETCH(QList<int>, numbers);
    Bound bound;
    bound.assignClassMemAPI(QList<int>{5, 6, 7});
    makeLive(&bound, name.constData());
    QCOMPARE(numbersOf(*bound.getParamAddress()),
             (Numbers{numbers[0], numbers[1], numbers[2], numbers[3]}));
}

void TestMemProxy::aNumericAddressReachesItsParameter()
{
    Bound bound;
    bound.assignClassMemAPI(QList<int>{5, 6});
    bound.setNumericAddress(3, 1);
    createMemProxyController(factory(), &bound);
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{5, 6, 3, 1}));
    m_api->setParam(ParamAddress(5, 6, 3, 1), 5);
    QCOMPARE(bound.getMemAPICurrentValue(), 5);
}

void TestMemProxy::anEmptyNameSilencesTheProxyAtTheNextAssignment()
{
    Bound bound;
    makeLive(&bound, "knobA1/ccNumber");
    bound.setNamedAddress(QString());
    QVERIFY(bound.isAssigned());
    bound.assignMemAPI();
    QVERIFY(!bound.isAssigned());
    QVERIFY(bound.getController() == nullptr);
    const int before = bound.updates;
    m_api->setParam(ParamAddress(0, 0, 0, 1), 5);
    QCOMPARE(bound.updates, before);
    QCOMPARE(bound.getMemAPICurrentValue(), 0);
}

void TestMemProxy::aSilencedProxyCanBeBoundAgain()
{
    Bound bound;
    makeLive(&bound, "knobA1/ccNumber");
    bound.setNamedAddress(QString());
    bound.assignMemAPI();
    makeLive(&bound, "knobB1/ccNumber");
    const int before = bound.updates;
    m_api->setParam(ParamAddress(0, 0, 0, 1), 5);
    QCOMPARE(bound.updates, before);
    m_api->setParam(ParamAddress(0, 0, 1, 1), 5);
    QCOMPARE(bound.updates, before + 1);
}

void TestMemProxy::aSecondNameOnALiveProxyRegistersItASecondTime()
{
    Bound bound;
    makeLive(&bound, "knobA1/ccNumber");
    bound.setNamedAddress(latin("knobB1/ccNumber"));
    QVERIFY(bound.isAssigned());
    const int before = bound.updates;
    m_api->setParam(ParamAddress(0, 0, 0, 1), 5);
    QCOMPARE(bound.updates, before);
    m_api->setParam(ParamAddress(0, 0, 1, 1), 5);
    QCOMPARE(bound.updates, before + 2);
}

void TestMemProxy::aNumericAddressOnALiveProxyReplacesItsName()
{
    Bound bound;
    makeLive(&bound, "knobA1/ccNumber");
    bound.setNumericAddress(2, 2);
    QVERIFY(bound.getNamedAddress().isEmpty());
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{0, 0, 2, 2}));
    m_api->setParam(ParamAddress(0, 0, 2, 2), 1);
    QCOMPARE(bound.getMemAPICurrentValue(), 1);
}

void TestMemProxy::currentMinimumAndMaximumComeFromTheMemory()
{
    Bound number;
    makeLive(&number, "knobA1/ccNumber");
    QCOMPARE(number.getMemAPIMinimumValue(), 0);
    QCOMPARE(number.getMemAPIMaximumValue(), 127);
    Bound current;
    makeLive(&current, "currentTemplateNumber");
    QCOMPARE(current.getMemAPIMaximumValue(), 49);
    Bound remote;
    makeLive(&remote, "knobA1/remoteNumber");
    m_api->setParam(ParamAddress(0, 0, 0, 3), latin("00098a6ea"));
    QCOMPARE(remote.getMemAPIString(), latin("00098a6ea"));
}

void TestMemProxy::writesReachTheMemory()
{
    Bound number;
    makeLive(&number, "knobC3/ccNumber");
    number.setMemAPICurrentValue(77);
    QCOMPARE(valueAt(*m_api, ParamAddress(0, 0, 10, 1)), 77);
    number.setMemAPICurrentValue(128);
    QCOMPARE(valueAt(*m_api, ParamAddress(0, 0, 10, 1)), 77);
    Bound name;
    makeLive(&name, "vstiName");
    name.setMemAPIString(latin("Synth"));
    QCOMPARE(m_api->getParamQString(ParamAddress(0, 0, 15, -1)), latin("Synth"));
}

void TestMemProxy::levelsMoveTheAddressAndUpdate_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QList<int>>("numbers");
    QTest::newRow("bank") << 0 << QList<int>{5, 0, 0, 1};
    QTest::newRow("template") << 1 << QList<int>{0, 5, 0, 1};
    QTest::newRow("knob") << 2 << QList<int>{0, 0, 5, 1};
}

void TestMemProxy::levelsMoveTheAddressAndUpdate()
{
    QFETCH(int, kind);
    QFETCH(QList<int>, numbers);
    Bound bound;
    makeLive(&bound, "ccNumber");
    m_api->setParam(ParamAddress(numbers[0], numbers[1], numbers[2], 1), 33);
    const int before = bound.updates;
    bound.assignClassMemAPI(5, kind);
    QVERIFY(bound.updates > before);
    QCOMPARE(numbersOf(*bound.getParamAddress()),
             (Numbers{numbers[0], numbers[1], numbers[2], numbers[3]}));
    QCOMPARE(bound.getMemAPICurrentValue(), 33);
}

void TestMemProxy::anotherLevelDoesNothing()
{
    Bound bound;
    makeLive(&bound, "ccNumber");
    const int before = bound.updates;
    for (const int kind : {-1, 3, 100}) {
        bound.assignClassMemAPI(5, kind);
    }
    bound.assignClassMemAPI(QList<int>());
    QCOMPARE(bound.updates, before);
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{0, 0, 0, 1}));
}

void TestMemProxy::aListMovesAsFarAsItReaches()
{
    Bound bound;
    makeLive(&bound, "ccNumber");
    bound.assignClassMemAPI(QList<int>{3});
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{3, 0, 0, 1}));
    bound.assignClassMemAPI(QList<int>{4, 5});
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{4, 5, 0, 1}));
    bound.assignClassMemAPI(QList<int>{5, 6, 7, 8});
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{5, 6, 7, 1}));
}

void TestMemProxy::levelsGivenBeforeTheWalkAreStored()
{
    Bound bound;
    bound.setNamedAddress(latin("ccNumber"));
    bound.assignClassMemAPI(5, 0);
    bound.assignClassMemAPI(6, 1);
    bound.assignClassMemAPI(7, 2);
    QCOMPARE(bound.updates, 0);
    createMemProxyController(factory(), &bound);
    QCOMPARE(numbersOf(*bound.getParamAddress()), (Numbers{5, 6, 7, 1}));
}

// --- Walks ---------------------------------------------------------------------------------------

void TestMemProxy::walksGoDepthFirstFromTheRoot()
{
    QStringList log;
    const auto add = [&](QObject *parent, const char *name) {
        auto *bound = new Bound(parent);
        bound->setObjectName(latin(name));
        bound->log = &log;
        bound->setNamedAddress(latin("knobA1/ccNumber"));
        return bound;
    };
    const std::unique_ptr<Bound> root(add(nullptr, "root"));
    auto *first = add(root.get(), "first");
    add(first, "first.first");
    auto *plain = new QObject(root.get());
    add(plain, "plain.first");
    add(root.get(), "last");
    createMemProxyController(factory(), root.get());
    log.clear();
    // Each at another template before, so that the walk alone makes them update.
    m_api->setParam(ParamAddress(0, 0, 0, 1), 5);
    const QStringList order{latin("root"), latin("first"), latin("first.first"),
                            latin("plain.first"), latin("last")};
    QCOMPARE(log, order);
    log.clear();
    assignTemplate(root.get(), 7);
    log.removeDuplicates();
    QCOMPARE(log, order);
}

void TestMemProxy::assignTemplateMovesTheWholeTree()
{
    QObject root;
    auto *bound = new Bound(&root);
    bound->setNamedAddress(latin("knobA1/ccNumber"));
    bound->assignClassMemAPI(3, 1);
    createMemProxyController(factory(), &root);
    m_api->setParam(ParamAddress(0, 3, 0, 1), 30);
    m_api->setParam(ParamAddress(0, 7, 0, 1), 70);
    QCOMPARE(bound->getMemAPICurrentValue(), 30);
    assignTemplate(&root, 7);
    QCOMPARE(bound->getMemAPICurrentValue(), 70);
    const int before = bound->updates;
    m_api->setParam(ParamAddress(0, 3, 0, 1), 31);
    QCOMPARE(bound->updates, before);
    m_api->setParam(ParamAddress(0, 7, 0, 1), 71);
    QCOMPARE(bound->updates, before + 1);
}

void TestMemProxy::assignBankAndControllerMoveTheirNumber()
{
    QObject root;
    auto *bound = new Bound(&root);
    bound->setNamedAddress(latin("ccNumber"));
    createMemProxyController(factory(), &root);
    assignBank(&root, 5);
    assignController(&root, 11);
    QCOMPARE(numbersOf(*bound->getParamAddress()), (Numbers{5, 0, 11, 1}));
}

void TestMemProxy::aGlobalBindingInsideAWalkStillReadsAndFallsSilent()
{
    QObject root;
    auto *bound = new Bound(&root);
    bound->setNamedAddress(latin("isOnline"));
    createMemProxyController(factory(), &root);
    assignTemplate(&root, 7);
    QCOMPARE(numbersOf(*bound->getParamAddress()), (Numbers{-2, 7, -1, -1}));
    const int before = bound->updates;
    m_api->setONLINEstate(1);
    QCOMPARE(bound->updates, before);
    QCOMPARE(bound->getMemAPICurrentValue(), 1);
}

void TestMemProxy::aNullRootDoesNothing()
{
    createMemProxyController(factory(), nullptr);
    assignBank(nullptr, 1);
    assignTemplate(nullptr, 1);
    assignController(nullptr, 1);
}

// --- The notifier --------------------------------------------------------------------------------

void TestMemProxy::theNotifierTurnsChangesIntoASignal()
{
    QObject root;
    auto *named = new CSimpleNotifier(latin("fileEditFlag"), &root);
    auto *numeric = new CSimpleNotifier(4, 1, &root);
    createMemProxyController(factory(), &root);
    QSignalSpy onFlag(named, &CSimpleNotifier::update);
    QSignalSpy onKnob(numeric, &CSimpleNotifier::update);
    m_api->setParam(ParamAddress(0, 0, 4, 1), 5);
    QCOMPARE(onFlag.count(), 1);
    QCOMPARE(onKnob.count(), 1);
    m_api->setParam(ParamAddress(0, 0, 4, 1), 5);
    QCOMPARE(onKnob.count(), 1);
}

void TestMemProxy::theNotifierEmitsOnceWhenItIsAssigned()
{
    CSimpleNotifier notifier(latin("isOnline"), nullptr);
    QSignalSpy spy(&notifier, &CSimpleNotifier::update);
    createMemProxyController(factory(), &notifier);
    QCOMPARE(spy.count(), 1);
}

void TestMemProxy::aNotifierWithoutAnAddressStaysSilent()
{
    CSimpleNotifier notifier(nullptr);
    QSignalSpy spy(&notifier, &CSimpleNotifier::update);
    createMemProxyController(factory(), &notifier);
    notifier.updateMemAPI();
    m_api->setParam(ParamAddress(0, 0, 0, 1), 5);
    QCOMPARE(spy.count(), 0);
}

// --- Threads -------------------------------------------------------------------------------------

void TestMemProxy::anUpdateFromAnotherThreadRunsWithTheEventLoop()
{
    Bound bound;
    makeLive(&bound, "knobA1/ccNumber");
    CSimpleNotifier notifier(latin("knobA1/ccNumber"), nullptr);
    createMemProxyController(factory(), &notifier);
    QSignalSpy spy(&notifier, &CSimpleNotifier::update);
    const int before = bound.updates;
    bound.updatedOn = nullptr;
    std::thread writer([&] { m_api->setParam(ParamAddress(0, 0, 0, 1), 5); });
    writer.join();
    QCOMPARE(bound.updates, before);
    QCOMPARE(spy.count(), 0);
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(bound.updates, before + 1);
    QCOMPARE(bound.updatedOn, QThread::currentThread());
}

void TestMemProxy::aQueuedUpdateDiesWithItsProxy()
{
    auto bound = std::make_unique<Bound>();
    makeLive(bound.get(), "knobA1/ccNumber");
    std::thread writer([&] { m_api->setParam(ParamAddress(0, 0, 0, 1), 5); });
    writer.join();
    bound.reset();
    QCoreApplication::processEvents();
}

void TestMemProxy::proxiesComeAndGoWhileAnotherThreadWrites()
{
    std::atomic<bool> stop{false};
    const auto write = [&](int offset) {
        for (int i = offset; !stop; i += 2) {
            m_api->setParam(ParamAddress(0, i % 3, 0, 1), i % 128);
        }
    };
    std::thread even(write, 0);
    std::thread odd(write, 1);
    for (int round = 0; round < 200; ++round) {
        QObject root;
        for (int i = 0; i < 3; ++i) {
            auto *bound = new Bound(&root);
            bound->setNamedAddress(latin("knobA1/ccNumber"));
        }
        createMemProxyController(factory(), &root);
        assignTemplate(&root, round % 3);
        QCoreApplication::processEvents();
        assignTemplate(&root, (round + 1) % 3);
    }
    stop = true;
    even.join();
    odd.join();
}

QTEST_GUILESS_MAIN(TestMemProxy)
#include "tst_memproxy.moc"
