// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/MemoryHarness.h"
#include "memory/PairAdrObs.h"

#include <QtTest/QtTest>

#include <atomic>
#include <memory>
#include <thread>

// Who hears of a change, in which order, and what an observer may do while it hears.

class TestObservers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theOrderIsThatOfRegistration();
    void anObserverRegisteredTwiceHearsTwice();
    void oneObserverMayHearSeveralAddresses();
    void unregisteringRemovesEveryPairOfTheObserver();
    void unregisteringAStrangerIsHarmless();
    void allFourNumbersMustBeEqual();
    void bankNotificationsReachWhatLiesInTheBank();
    void templateNotificationsReachWhatLiesInTheTemplate();
    void controllerNotificationsReachWhatLiesInTheKnob();
    void aMovedAddressIsHeardAtItsNewPlace();
    void aReplacedAddressKeepsItsPlaceInTheOrder();
    void anAddressTakenOutIsHeardNoMore();
    void thePairGivesAndTakesItsParts();
    void aDyingObserverLeavesTheList();

    void anObserverMayUnregisterItselfWhileItHears();
    void anObserverMayUnregisterALaterOneWhichThenHearsNothing();
    void anObserverMayUnregisterAnEarlierOne();
    void anObserverMayDieWhileItIsNotified();
    void anObserverMayRegisterAnotherWhichHearsInTheSameWalk();
    void anObserverMayMoveTheAddressThatIsBeingNotified();
    void anObserverThatWritesBackIsHeardAndEnds();
    void theWritersThreadRunsTheObserver();
    void unregisteringWaitsForANotificationOnAnotherThread();

private:
    std::unique_ptr<RemoteMemAPI> m_api;
    RemoteMemAPI *api() { return m_api.get(); }
    QStringList m_log;
};

void TestObservers::init()
{
    m_api = std::make_unique<RemoteMemAPI>();
    makeNineBanks(api());
    m_log.clear();
}

namespace
{
const ParamAddress Knob(0, 0, 0, 1);
}

void TestObservers::theOrderIsThatOfRegistration()
{
    std::vector<std::unique_ptr<LoggingObserver>> observers;
    QStringList expected;
    for (int i = 0; i < 20; ++i) {
        observers.push_back(
            std::make_unique<LoggingObserver>(api(), Knob, &m_log, QString::number(i)));
        expected.append(QString::number(i));
    }
    m_api->setParam(Knob, 5);
    QCOMPARE(m_log, expected);
    // One that leaves and comes again stands at the end.
    m_api->unregistObserver(observers[3].get());
    m_api->registObserver(observers[3]->address(), observers[3].get());
    expected.removeAt(3);
    expected.append(latin("3"));
    m_log.clear();
    m_api->setParam(Knob, 6);
    QCOMPARE(m_log, expected);
}

void TestObservers::anObserverRegisteredTwiceHearsTwice()
{
    LoggingObserver observer(api(), Knob);
    m_api->registObserver(PairAdrObs(observer.address(), &observer));
    m_api->setParam(Knob, 5);
    QCOMPARE(observer.count, 2);
}

void TestObservers::oneObserverMayHearSeveralAddresses()
{
    LoggingObserver observer(api(), Knob);
    ParamAddress name(0, 0, 0, 0);
    m_api->registObserver(&name, &observer);
    m_api->setParam(Knob, 5);
    m_api->setParam(name, latin("x"));
    QCOMPARE(observer.count, 2);
    m_api->unregistObserver(&observer);
}

void TestObservers::unregisteringRemovesEveryPairOfTheObserver()
{
    LoggingObserver observer(api(), Knob);
    LoggingObserver other(api(), Knob);
    ParamAddress name(0, 0, 0, 0);
    m_api->registObserver(observer.address(), &observer);
    m_api->registObserver(&name, &observer);
    m_api->unregistObserver(&observer);
    m_api->setParam(Knob, 5);
    m_api->setParam(name, latin("x"));
    QCOMPARE(observer.count, 0);
    QCOMPARE(other.count, 1);
}

void TestObservers::unregisteringAStrangerIsHarmless()
{
    LoggingObserver observer(api(), Knob);
    m_api->unregistObserver(nullptr);
    m_api->unregistAddress(nullptr);
    m_api->setParam(Knob, 5);
    QCOMPARE(observer.count, 1);
}

void TestObservers::allFourNumbersMustBeEqual()
{
    LoggingObserver exact(api(), Knob);
    LoggingObserver otherBank(api(), ParamAddress(1, 0, 0, 1));
    LoggingObserver otherTemplate(api(), ParamAddress(0, 1, 0, 1));
    LoggingObserver otherKnob(api(), ParamAddress(0, 0, 1, 1));
    LoggingObserver otherParameter(api(), ParamAddress(0, 0, 0, 2));
    // A global binding whose template number was moved falls silent.
    LoggingObserver movedGlobal(api(), ParamAddress(-2, 7, -1, -1));
    m_api->setParam(Knob, 5);
    m_api->setONLINEstate(1);
    QCOMPARE(exact.count, 1);
    QCOMPARE(otherBank.count + otherTemplate.count + otherKnob.count + otherParameter.count, 0);
    QCOMPARE(movedGlobal.count, 0);
}

void TestObservers::bankNotificationsReachWhatLiesInTheBank()
{
    LoggingObserver current(api(), ParamAddress(5, 52, -1, -1));
    LoggingObserver knob(api(), ParamAddress(5, 49, 11, 3));
    LoggingObserver otherBank(api(), ParamAddress(4, 52, -1, -1));
    LoggingObserver global(api(), FileEdit);
    m_api->notifyObserverOfBankAllParam(5);
    QCOMPARE(current.count, 1);
    QCOMPARE(knob.count, 1);
    QCOMPARE(otherBank.count, 0);
    QCOMPARE(global.count, 0);
}

void TestObservers::templateNotificationsReachWhatLiesInTheTemplate()
{
    LoggingObserver name(api(), ParamAddress(5, 3, 13, -1));
    LoggingObserver knob(api(), ParamAddress(5, 3, 11, 3));
    LoggingObserver otherTemplate(api(), ParamAddress(5, 4, 13, -1));
    LoggingObserver otherBank(api(), ParamAddress(4, 3, 13, -1));
    LoggingObserver current(api(), ParamAddress(5, 52, -1, -1));
    m_api->notifyObserverOfTemplateAllParam(5, 3);
    QCOMPARE(name.count, 1);
    QCOMPARE(knob.count, 1);
    QCOMPARE(otherTemplate.count + otherBank.count + current.count, 0);
}

void TestObservers::controllerNotificationsReachWhatLiesInTheKnob()
{
    LoggingObserver name(api(), ParamAddress(5, 3, 11, 0));
    LoggingObserver remote(api(), ParamAddress(5, 3, 11, 3));
    LoggingObserver otherKnob(api(), ParamAddress(5, 3, 10, 0));
    LoggingObserver templateName(api(), ParamAddress(5, 3, 13, -1));
    m_api->notifyObserverOfControllerAllParam(5, 3, 11);
    QCOMPARE(name.count, 1);
    QCOMPARE(remote.count, 1);
    QCOMPARE(otherKnob.count + templateName.count, 0);
}

void TestObservers::aMovedAddressIsHeardAtItsNewPlace()
{
    LoggingObserver observer(api(), Knob);
    observer.address()->setParamAddress(-1, 7, -1, -1);
    m_api->setParam(Knob, 5);
    QCOMPARE(observer.count, 0);
    m_api->setParam(ParamAddress(0, 7, 0, 1), 5);
    QCOMPARE(observer.count, 1);
}

void TestObservers::aReplacedAddressKeepsItsPlaceInTheOrder()
{
    LoggingObserver first(api(), Knob, &m_log, latin("first"));
    LoggingObserver second(api(), Knob, &m_log, latin("second"));
    ParamAddress same = Knob;
    m_api->replaceAddress(first.address(), &same);
    first.address()->setParamAddress(3, 3, 3, 3);
    m_api->setParam(Knob, 5);
    QCOMPARE(m_log, (QStringList{latin("first"), latin("second")}));
    m_api->unregistObserver(&first);
}

void TestObservers::anAddressTakenOutIsHeardNoMore()
{
    LoggingObserver observer(api(), Knob);
    ParamAddress name(0, 0, 0, 0);
    m_api->registObserver(&name, &observer);
    m_api->unregistAddress(&name);
    m_api->setParam(name, latin("x"));
    QCOMPARE(observer.count, 0);
    m_api->setParam(Knob, 5);
    QCOMPARE(observer.count, 1);
}

void TestObservers::thePairGivesAndTakesItsParts()
{
    LoggingObserver observer(api(), Knob);
    LoggingObserver other(api(), Knob);
    ParamAddress address(1, 2, 3, 0);
    PairAdrObs pair(&address, &observer);
    QVERIFY(pair.getParamAddress() == address);
    QCOMPARE(pair.getObserver(), &observer);
    pair.setParamAddress(ParamAddress(4, 5, 6, 1));
    QVERIFY(address == ParamAddress(4, 5, 6, 1));
    pair.setObserver(&other);
    QCOMPARE(pair.getObserver(), &other);
}

void TestObservers::aDyingObserverLeavesTheList()
{
    // By the base's destructor alone.
    struct Plain : MemChangeObserver
    {
        void paramUpdate() override { QFAIL("a dead observer was called"); }
    };
    ParamAddress address = Knob;
    {
        Plain plain;
        plain.setMemAPI(api());
        m_api->registObserver(&address, &plain);
    }
    m_api->setParam(Knob, 5);
}

void TestObservers::anObserverMayUnregisterItselfWhileItHears()
{
    LoggingObserver first(api(), Knob, &m_log, latin("first"));
    LoggingObserver second(api(), Knob, &m_log, latin("second"));
    LoggingObserver third(api(), Knob, &m_log, latin("third"));
    second.then = [&] { m_api->unregistObserver(&second); };
    m_api->setParam(Knob, 5);
    m_api->setParam(Knob, 6);
    QCOMPARE(m_log, (QStringList{latin("first"), latin("second"), latin("third"), latin("first"),
                                 latin("third")}));
}

void TestObservers::anObserverMayUnregisterALaterOneWhichThenHearsNothing()
{
    LoggingObserver first(api(), Knob);
    LoggingObserver second(api(), Knob);
    LoggingObserver third(api(), Knob);
    first.then = [&] { m_api->unregistObserver(&second); };
    m_api->setParam(Knob, 5);
    QCOMPARE(first.count, 1);
    QCOMPARE(second.count, 0);
    QCOMPARE(third.count, 1);
}

void TestObservers::anObserverMayUnregisterAnEarlierOne()
{
    LoggingObserver first(api(), Knob);
    LoggingObserver second(api(), Knob);
    LoggingObserver third(api(), Knob);
    second.then = [&] { m_api->unregistObserver(&first); };
    m_api->setParam(Knob, 5);
    m_api->setParam(Knob, 6);
    QCOMPARE(first.count, 1);
    QCOMPARE(second.count, 2);
    QCOMPARE(third.count, 2);
}

void TestObservers::anObserverMayDieWhileItIsNotified()
{
    auto dying = std::make_unique<LoggingObserver>(api(), Knob);
    auto later = std::make_unique<LoggingObserver>(api(), Knob);
    LoggingObserver last(api(), Knob);
    dying->then = [&] {
        later.reset();
        // Not the function that runs: it must outlive its own call.
        m_api->unregistObserver(dying.get());
    };
    m_api->setParam(Knob, 5);
    dying.reset();
    QCOMPARE(last.count, 1);
    m_api->setParam(Knob, 6);
    QCOMPARE(last.count, 2);
}

void TestObservers::anObserverMayRegisterAnotherWhichHearsInTheSameWalk()
{
    LoggingObserver first(api(), Knob);
    std::unique_ptr<LoggingObserver> added;
    first.then = [&] {
        if (added == nullptr) {
            added = std::make_unique<LoggingObserver>(api(), Knob);
        }
    };
    m_api->setParam(Knob, 5);
    QCOMPARE(first.count, 1);
    QVERIFY(added != nullptr);
    QCOMPARE(added->count, 1);
}

void TestObservers::anObserverMayMoveTheAddressThatIsBeingNotified()
{
    LoggingObserver first(api(), Knob);
    LoggingObserver second(api(), Knob);
    first.then = [&] { first.address()->setParamAddress(-1, 9, -1, -1); };
    m_api->notifyObserver(*first.address());
    QCOMPARE(first.count, 1);
    QCOMPARE(second.count, 1);
    m_api->setParam(ParamAddress(0, 9, 0, 1), 3);
    QCOMPARE(first.count, 2);
}

void TestObservers::anObserverThatWritesBackIsHeardAndEnds()
{
    LoggingObserver observer(api(), Knob);
    LoggingObserver second(api(), Knob);
    observer.then = [&] {
        m_api->setParam(Knob, 10);
        m_api->setParam(ParamAddress(0, 0, 1, 1), 3);
    };
    QVERIFY(m_api->setParam(Knob, 5));
    QCOMPARE(observer.count, 2);
    QCOMPARE(second.count, 2);
    QCOMPARE(valueAt(*m_api, Knob), 10);
    QCOMPARE(valueAt(*m_api, ParamAddress(0, 0, 1, 1)), 3);
}

void TestObservers::theWritersThreadRunsTheObserver()
{
    LoggingObserver observer(api(), Knob);
    std::thread::id heardOn;
    observer.then = [&] { heardOn = std::this_thread::get_id(); };
    std::thread writer([&] { m_api->setParam(Knob, 5); });
    const std::thread::id expected = writer.get_id();
    writer.join();
    QVERIFY(heardOn == expected);
}

void TestObservers::unregisteringWaitsForANotificationOnAnotherThread()
{
    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    std::atomic<bool> mayLeave{false};
    LoggingObserver observer(api(), Knob);
    observer.then = [&] {
        entered = true;
        while (!mayLeave) {
            std::this_thread::yield();
        }
        left = true;
    };
    std::thread writer([&] { m_api->setParam(Knob, 5); });
    while (!entered) {
        std::this_thread::yield();
    }
    std::thread releaser([&] { mayLeave = true; });
    m_api->unregistObserver(&observer);
    const bool hadLeft = left;
    writer.join();
    releaser.join();
    QVERIFY(hadLeft);
}

QTEST_GUILESS_MAIN(TestObservers)
#include "tst_observers.moc"
