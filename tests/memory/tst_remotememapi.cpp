// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/ForcedCurrentTemplate.h"
#include "memory/MemoryHarness.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

#include <atomic>
#include <memory>
#include <thread>

// The one door to the memory: what follows a write (who hears, which flag rises, what goes out),
// the bulk operations and their table, the flags, and the door under several threads.

namespace
{

QString ccMessage(int knob, int value)
{
    return QStringLiteral("F0 43 10 7F 14 01 %1 18 %2 F7")
        .arg(0x10 + knob, 2, 16, QLatin1Char('0'))
        .arg(value, 2, 16, QLatin1Char('0'))
        .toUpper();
}

QString templateMessage(int number)
{
    return QStringLiteral("F0 43 10 7F 14 01 20 00 %1 F7")
        .arg(number, 2, 16, QLatin1Char('0'))
        .toUpper();
}

// The fifteen messages of a display name.
QStringList displayNameMessages(int knob, const QByteArray &name)
{
    QStringList messages;
    const QByteArray padded = name.leftJustified(15, ' ');
    for (int i = 0; i < 15; ++i) {
        messages.append(QStringLiteral("F0 43 10 7F 14 01 %1 %2 %3 F7")
                            .arg(0x10 + knob, 2, 16, QLatin1Char('0'))
                            .arg(0x09 + i, 2, 16, QLatin1Char('0'))
                            .arg(static_cast<unsigned char>(padded[i]), 2, 16, QLatin1Char('0'))
                            .toUpper());
    }
    return messages;
}

// One knob as it is replayed: name, number, format, identifier.
QStringList knobMessages(int knob, const QByteArray &name, int cc, int format,
                         const QByteArray &identifier)
{
    QStringList messages = displayNameMessages(knob, name);
    messages.append(ccMessage(knob, cc));
    messages.append(QStringLiteral("F0 43 10 7F 14 01 %1 19 %2 F7")
                        .arg(0x10 + knob, 2, 16, QLatin1Char('0'))
                        .arg(format, 2, 16, QLatin1Char('0'))
                        .toUpper());
    messages.append(QStringLiteral("F0 43 10 7F 14 01 %1 00 %2 F7")
                        .arg(0x10 + knob, 2, 16, QLatin1Char('0'))
                        .arg(QString::fromLatin1(identifier.toHex(' ')))
                        .toUpper());
    return messages;
}

// The template numbers of the dumps among the messages, by their headers.
QList<int> dumpedTemplates(const QStringList &messages)
{
    QList<int> numbers;
    for (const QString &message : messages) {
        const QStringList bytes = message.split(QLatin1Char(' '));
        if (bytes.size() == 12 && bytes.at(7) == latin("0E")) {
            numbers.append(bytes.at(9).toInt(nullptr, 16));
        }
    }
    return numbers;
}

enum class Operation {
    CopyBank,
    CopyTemplate,
    ExchangeTemplate,
    CopyController,
    ExchangeController
};

} // namespace
Q_DECLARE_METATYPE(Operation)

class TestRemoteMemAPI : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // One write.
    void anEqualValueNotifiesNobodyRaisesNothingAndSendsNothing();
    void aRefusedValueIsAsIfNothingHadHappened();
    void aWriteRaisesTheFileEditFlagForBanksZeroAndOneAlone_data();
    void aWriteRaisesTheFileEditFlagForBanksZeroAndOneAlone();
    void theAvailableFlagNotifiesAndRaisesAndSendsNothing();
    void theFileEditFlagRaisesAndSendsNothing();
    void theCurrentTemplateNumberRaisesTheFileEditFlag();
    void globalWritesRaiseNoFileEditFlag();
    void theFileNameNotifiesAlsoWhenItIsTheSame();
    void memoryAndFlagAreSetBeforeAndAfterTheObserversHear();

    // Sending.
    void aWriteToBankZeroGoesOutAndOneToBankOneDoesNot();
    void aTextOfBankZeroGoesOutCharacterByCharacter();
    void theFileNameNeverGoesOut();
    void whileOfflineNothingGoesOut();
    void whileTheGateIsClosedNothingGoesOut();
    void withoutARouteEveryCallThatNeedsItIsFalse();
    void theBankEditFlagIsNotForwarded();
    void aCurrentTemplateNumberGoesOutAndWaitsForItsEcho();
    void anEchoIsTakenOnlyIfItIsTheFirst();
    void sentNumbersAreForgottenWithTheRoute();
    void aForcedCurrentTemplateIsHeardAndSentAlsoWhenEqual();
    void aForcedNumberThatIsRefusedIsNoChange();
    void aForceEndsWithItsFirstWrite();
    void aForceEndsWithItsScope();
    void aForceIsNotUsedUpByOtherAddresses();
    void aForceHoldsOtherThreadsBack();
    void aSecondRouteReplacesTheFirst();
    void aRouteToAPortThatIsNotThereFails();

    // Bulk operations.
    void theBulkTableHolds_data();
    void theBulkTableHolds();
    void withBadIndicesNothingFollows_data();
    void withBadIndicesNothingFollows();
    void raisingIsDeniedToEveryBulkOperation_data();
    void raisingIsDeniedToEveryBulkOperation();
    void copyBankNotifiesTheWholeTargetAlways();
    void copyTemplateWithoutAChangeStillRaisesTheFlag();
    void exchangeTemplateNotifiesTheSecondPlaceFirst();
    void exchangeTemplateSendsTheSecondSideFirst();
    void exchangeTemplateSendsOnlyTheSidesInBankZero();
    void copyControllerSendsTheKnobIfTheTargetIsBankZero();
    void exchangeControllerNotifiesTheSecondKnobAlone();
    void exchangeControllerSendsTheFirstSideFirst();
    void bulkOperationsWithoutAChangeSendNothing();
    void copyBankSendsNothing();

    void setupLibraryBankCopiesWithoutAnyFlag();
    void activateLibraryEditRaisesNothing();
    void copyToAnArbitraryBankNotifiesWithoutAFlag();
    void copyToTheBackupBankMakesItAvailable();
    void evacuationAndRestoreBringBothBanksBack();
    void initializeTemplateNotifiesAndRaisesNothing();
    void theEditBufferIsEditedIfItsCurrentTemplateDiffers();
    void storeBankCopiesAndRaisesTheFlagWhateverTheDenyCount();
    void storeBankOfABlankBankRaisesNothing();
    void storeBankSendsTheStoreMessageIfAsked();
    void sendingAllRunsTheStoreAndFlashOnce();
    void setBankAvailableFlagNotifiesNobody();

    // Flags.
    void denyNestsAndOneAllowTooManyIsHarmless();
    void onlineStateNotifiesOnlyOnAChangeAndRaisesNothing();
    void plainFlagsHaveTheirStartValues();
    void takingAWaitFlagTellsItOnce();
    void bulkReceptionIsRevokedAndWantedAgain();
    void everySignalHasItsEmitter();
    void getParamGivesACopy();

    // Threads.
    void writersReadersAndRegistrationsOnSeveralThreadsAgree();
    void messageOrderIsWriteOrderAlsoWithTwoWriters();
    void aRouteGoesWhileAnotherThreadWrites();

private:
    std::unique_ptr<CableEnd> m_cable;
    std::unique_ptr<RemoteMemAPI> m_api;

    void goOnline()
    {
        QVERIFY(m_cable->connectTo(m_api.get()));
        m_api->setONLINEstate(1);
        m_cable->take();
    }
    bool fileEdited() const { return valueAt(*m_api, FileEdit) == 1; }
    bool libraryEdited() const { return valueAt(*m_api, LibraryEdit) == 1; }
    void runOperation(Operation operation, int bankA, int bankB, bool good = true);
};

void TestRemoteMemAPI::init()
{
    m_cable = std::make_unique<CableEnd>();
    m_api = std::make_unique<RemoteMemAPI>();
    makeNineBanks(m_api.get());
}

void TestRemoteMemAPI::cleanup()
{
    m_api.reset();
    m_cable.reset();
}

// --- One write -----------------------------------------------------------------------------------

void TestRemoteMemAPI::anEqualValueNotifiesNobodyRaisesNothingAndSendsNothing()
{
    goOnline();
    const ParamAddress number(0, 0, 0, 1);
    const ParamAddress name(0, 0, 0, 0);
    LoggingObserver onNumber(m_api.get(), number);
    LoggingObserver onName(m_api.get(), name);
    LoggingObserver onFlag(m_api.get(), FileEdit);
    QVERIFY(!m_api->setParam(number, 0));
    QVERIFY(!m_api->setParam(name, QString()));
    QVERIFY(!m_api->setParam(ParamAddress(0, 52, -1, -1), 0));
    QCOMPARE(onNumber.count + onName.count + onFlag.count, 0);
    QVERIFY(!fileEdited());
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::aRefusedValueIsAsIfNothingHadHappened()
{
    goOnline();
    LoggingObserver observer(m_api.get(), ParamAddress(0, 0, 0, 1));
    QVERIFY(!m_api->setParam(ParamAddress(0, 0, 0, 1), 128));
    QVERIFY(!m_api->setParam(ParamAddress(0, 0, 0, 0), latin("1234567890123456")));
    QVERIFY(!m_api->setParam(ParamAddress(0, 50, -1, -1), 1));
    QVERIFY(!m_api->setParam(ParamAddress(12, 0, 0, 1), 1));
    QCOMPARE(observer.count, 0);
    QVERIFY(!fileEdited());
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::aWriteRaisesTheFileEditFlagForBanksZeroAndOneAlone_data()
{
    QTest::addColumn<int>("bank");
    for (int bank = 0; bank < 9; ++bank) {
        QTest::addRow("bank %d", bank) << bank;
    }
}

void TestRemoteMemAPI::aWriteRaisesTheFileEditFlagForBanksZeroAndOneAlone()
{
    QFETCH(int, bank);
    const QList<ParamAddress> numbers{ParamAddress(bank, 3, 4, 1), ParamAddress(bank, 3, 4, 2),
                                      ParamAddress(bank, 3, 14, -1)};
    const QList<ParamAddress> texts{ParamAddress(bank, 3, 4, 0), ParamAddress(bank, 3, 4, 3),
                                    ParamAddress(bank, 3, 13, -1), ParamAddress(bank, 3, 15, -1)};
    const bool raises = bank == 0 || bank == 1;
    LoggingObserver onFlag(m_api.get(), FileEdit);
    int raised = 0;
    const auto check = [&](const ParamAddress &address, const auto &value) {
        m_api->setParam(FileEdit, 0);
        onFlag.count = 0;
        LoggingObserver observer(m_api.get(), address);
        QVERIFY(m_api->setParam(address, value));
        QCOMPARE(observer.count, 1);
        QCOMPARE(fileEdited(), raises);
        QCOMPARE(onFlag.count, raises ? 1 : 0);
        raised += onFlag.count;
        QVERIFY(!libraryEdited());
    };
    for (const ParamAddress &address : numbers) {
        check(address, 1);
    }
    for (const ParamAddress &address : texts) {
        check(address, latin("abc"));
    }
    QCOMPARE(raised, raises ? 7 : 0);
}

void TestRemoteMemAPI::theAvailableFlagNotifiesAndRaisesAndSendsNothing()
{
    goOnline();
    const ParamAddress address(0, 51, -1, -1);
    LoggingObserver observer(m_api.get(), address);
    QVERIFY(m_api->setParam(address, 0));
    QCOMPARE(observer.count, 1);
    QVERIFY(!fileEdited());
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::theFileEditFlagRaisesAndSendsNothing()
{
    goOnline();
    LoggingObserver observer(m_api.get(), FileEdit);
    QVERIFY(m_api->setParam(FileEdit, 1));
    QVERIFY(!m_api->setParam(FileEdit, 1));
    QVERIFY(m_api->setParam(FileEdit, 0));
    QCOMPARE(observer.count, 2);
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::theCurrentTemplateNumberRaisesTheFileEditFlag()
{
    QVERIFY(m_api->setParam(ParamAddress(0, 52, -1, -1), 9));
    QVERIFY(fileEdited());
    m_api->setParam(FileEdit, 0);
    QVERIFY(m_api->setParam(ParamAddress(5, 52, -1, -1), 9));
    QVERIFY(!fileEdited());
}

void TestRemoteMemAPI::globalWritesRaiseNoFileEditFlag()
{
    for (const ParamAddress &address : {Online, LibraryEdit, BankEdit}) {
        LoggingObserver observer(m_api.get(), address);
        QVERIFY(m_api->setParam(address, 1));
        QCOMPARE(observer.count, 1);
        QVERIFY(!fileEdited());
    }
    QVERIFY(m_api->setParam(FilePath, latin("/a.Q7V")));
    QVERIFY(!fileEdited());
}

void TestRemoteMemAPI::theFileNameNotifiesAlsoWhenItIsTheSame()
{
    LoggingObserver observer(m_api.get(), FilePath);
    QVERIFY(m_api->setParam(FilePath, latin("/a.Q7V")));
    QVERIFY(m_api->setParam(FilePath, latin("/a.Q7V")));
    QCOMPARE(observer.count, 2);
    QCOMPARE(m_api->getParamQString(FilePath), latin("/a.Q7V"));
}

void TestRemoteMemAPI::memoryAndFlagAreSetBeforeAndAfterTheObserversHear()
{
    goOnline();
    const ParamAddress address(0, 0, 0, 1);
    LoggingObserver observer(m_api.get(), address);
    observer.then = [&] {
        QCOMPARE(valueAt(*m_api, address), 74);
        QVERIFY(!fileEdited());
        QCOMPARE(m_cable->take(), QStringList());
    };
    QVERIFY(m_api->setParam(address, 74));
    QCOMPARE(observer.count, 1);
    QVERIFY(fileEdited());
    QCOMPARE(m_cable->take(), QStringList{ccMessage(0, 74)});
}

// --- Sending -------------------------------------------------------------------------------------

void TestRemoteMemAPI::aWriteToBankZeroGoesOutAndOneToBankOneDoesNot()
{
    goOnline();
    QVERIFY(m_api->setParam(ParamAddress(0, 3, 11, 1), 127));
    QCOMPARE(m_cable->take(), QStringList{ccMessage(11, 127)});
    QVERIFY(fileEdited());
    for (int bank = 1; bank < 9; ++bank) {
        QVERIFY(m_api->setParam(ParamAddress(bank, 3, 11, 1), 127));
        QVERIFY(m_api->setParam(ParamAddress(bank, 3, 11, 0), latin("x")));
        QVERIFY(m_api->setParam(ParamAddress(bank, 52, -1, -1), 7));
    }
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::aTextOfBankZeroGoesOutCharacterByCharacter()
{
    goOnline();
    QVERIFY(m_api->setParam(ParamAddress(0, 3, 2, 0), latin("Cutoff")));
    QCOMPARE(m_cable->take(), displayNameMessages(2, "Cutoff"));
}

void TestRemoteMemAPI::theFileNameNeverGoesOut()
{
    goOnline();
    QVERIFY(m_api->setParam(FilePath, latin("/a.Q7V")));
    QVERIFY(m_api->setParam(FilePath, latin("/b.Q7V")));
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::whileOfflineNothingGoesOut()
{
    QVERIFY(m_cable->connectTo(m_api.get()));
    m_cable->take();
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 5));
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 0), latin("x")));
    QVERIFY(m_api->setParam(ParamAddress(0, 52, -1, -1), 5));
    QVERIFY(m_api->exchangeTemplate(0, 0, 0, 1));
    QVERIFY(m_api->copyController(0, 1, 0, 0, 0, 3));
    QVERIFY(m_api->exchangeController(0, 0, 3, 0, 0, 4));
    QCOMPARE(m_cable->take(), QStringList());
    QVERIFY(!m_api->takeSentTemplateNumber(5));
}

void TestRemoteMemAPI::whileTheGateIsClosedNothingGoesOut()
{
    goOnline();
    m_api->setAllowToSendSysExFlag(false);
    QVERIFY(!m_api->isAllowToSendSysEx());
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 5));
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 0), latin("x")));
    QVERIFY(m_api->setParam(ParamAddress(0, 52, -1, -1), 5));
    QCOMPARE(m_cable->take(), QStringList());
    QVERIFY(!m_api->takeSentTemplateNumber(5));
    m_api->setAllowToSendSysExFlag(true);
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 6));
    QCOMPARE(m_cable->take(), QStringList{ccMessage(0, 6)});
}

void TestRemoteMemAPI::withoutARouteEveryCallThatNeedsItIsFalse()
{
    m_api->setONLINEstate(1);
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 5));
    bool wasEmpty = true;
    QVERIFY(!m_api->sendMessage(&wasEmpty));
    QVERIFY(!m_api->sendHardWareDataReq(true));
    QVERIFY(!m_api->sendEditorAllData(false));
    QVERIFY(!m_api->sendStoreToFlash());
    QVERIFY(!m_api->sendAllTemplatesStoreMessage());
    QVERIFY(!m_api->send1TemplateDataParamChange(0, 0));
    QVERIFY(!m_api->storeBank(true));
    QVERIFY(m_api->storeBank(false));
    m_api->clearTransmitQueue();
    m_api->incrementTransmitedBulkCounter();
    m_api->incrementTransmitedBulkReqCounter();
    QCOMPARE(m_api->transmitedBulkCount(), 0);
    QCOMPARE(m_api->transmitedBulkReqCount(), 0);
    m_api->clearTransmitedBulkCounter();
    m_api->clearTransmitedBulkReqCounter();
    m_api->deleteMIDIComunicationRoute();
}

void TestRemoteMemAPI::theBankEditFlagIsNotForwarded()
{
    goOnline();
    QVERIFY(m_api->setParam(BankEdit, 1));
    QVERIFY(m_api->setParam(LibraryEdit, 1));
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::aCurrentTemplateNumberGoesOutAndWaitsForItsEcho()
{
    goOnline();
    QVERIFY(m_api->setParam(ParamAddress(0, 52, -1, -1), 49));
    QCOMPARE(m_cable->take(), QStringList{templateMessage(49)});
    QVERIFY(m_api->takeSentTemplateNumber(49));
    QVERIFY(!m_api->takeSentTemplateNumber(49));
}

void TestRemoteMemAPI::anEchoIsTakenOnlyIfItIsTheFirst()
{
    goOnline();
    m_api->setParam(ParamAddress(0, 52, -1, -1), 3);
    m_api->setParam(ParamAddress(0, 52, -1, -1), 4);
    QVERIFY(!m_api->takeSentTemplateNumber(4));
    QVERIFY(m_api->takeSentTemplateNumber(3));
    QVERIFY(m_api->takeSentTemplateNumber(4));
}

void TestRemoteMemAPI::sentNumbersAreForgottenWithTheRoute()
{
    goOnline();
    m_api->setParam(ParamAddress(0, 52, -1, -1), 3);
    m_api->deleteMIDIComunicationRoute();
    QVERIFY(!m_api->takeSentTemplateNumber(3));
}

void TestRemoteMemAPI::aForcedCurrentTemplateIsHeardAndSentAlsoWhenEqual()
{
    goOnline();
    const ParamAddress address(0, 52, -1, -1);
    m_api->setParam(address, 7);
    m_api->setParam(FileEdit, 0);
    m_cable->take();
    LoggingObserver observer(m_api.get(), address);
    {
        const ForcedCurrentTemplate force(m_api.get());
        QVERIFY(m_api->setParam(address, 7));
    }
    QCOMPARE(observer.count, 1);
    QVERIFY(fileEdited());
    QCOMPARE(m_cable->take(), QStringList{templateMessage(7)});
    QVERIFY(m_api->takeSentTemplateNumber(7));
    QVERIFY(m_api->takeSentTemplateNumber(7));
}

void TestRemoteMemAPI::aForcedNumberThatIsRefusedIsNoChange()
{
    goOnline();
    m_cable->take();
    const ParamAddress address(0, 52, -1, -1);
    const ForcedCurrentTemplate force(m_api.get());
    QVERIFY(!m_api->setParam(address, 50));
    QCOMPARE(m_api->getParam(address).getCurrentValue(), 0);
    QCOMPARE(m_cable->take(), QStringList());
    QVERIFY(!m_api->takeSentTemplateNumber(50));
}

void TestRemoteMemAPI::aForceEndsWithItsFirstWrite()
{
    const ParamAddress address(0, 52, -1, -1);
    const ForcedCurrentTemplate force(m_api.get());
    QVERIFY(m_api->setParam(address, 0));
    QVERIFY(!m_api->setParam(address, 0));
}

void TestRemoteMemAPI::aForceEndsWithItsScope()
{
    {
        const ForcedCurrentTemplate force(m_api.get());
    }
    QVERIFY(!m_api->setParam(ParamAddress(0, 52, -1, -1), 0));
}

void TestRemoteMemAPI::aForceIsNotUsedUpByOtherAddresses()
{
    const ForcedCurrentTemplate force(m_api.get());
    QVERIFY(!m_api->setParam(ParamAddress(0, 0, 0, 1), 0));
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 3));
    QVERIFY(m_api->setParam(ParamAddress(0, 52, -1, -1), 0));
}

void TestRemoteMemAPI::aForceHoldsOtherThreadsBack()
{
    std::atomic<bool> started{false};
    std::atomic<bool> wrote{false};
    std::thread other;
    {
        const ForcedCurrentTemplate force(m_api.get());
        other = std::thread([&] {
            started = true;
            m_api->setParam(ParamAddress(0, 52, -1, -1), 30);
            wrote = true;
        });
        while (!started) {
            std::this_thread::yield();
        }
        QVERIFY(m_api->setParam(ParamAddress(0, 52, -1, -1), 0));
        QVERIFY(!wrote);
        QCOMPARE(valueAt(*m_api, ParamAddress(0, 52, -1, -1)), 0);
    }
    other.join();
    QCOMPARE(valueAt(*m_api, ParamAddress(0, 52, -1, -1)), 30);
}

void TestRemoteMemAPI::aSecondRouteReplacesTheFirst()
{
    goOnline();
    QVERIFY(!m_api->createMIDIInput(1, 5));
    QVERIFY(!m_api->createMIDIOutput(5));
    QVERIFY(m_cable->connectTo(m_api.get()));
    m_cable->take();
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 5));
    QCOMPARE(m_cable->take(), QStringList{ccMessage(0, 5)});
}

void TestRemoteMemAPI::aRouteToAPortThatIsNotThereFails()
{
    QVERIFY(!m_api->createMIDIComunicationRoute(1, 99, 5));
    QVERIFY(!m_api->createMIDIComunicationRoute(99, 5, 5));
    QVERIFY(!m_api->createMIDIComunicationRoute(1, 5, 99));
    // Nor is a half of it left, which would go on to report the instrument.
    QVERIFY(m_api->createMIDIInput(1, 5));
    m_api->setONLINEstate(1);
    QVERIFY(!m_api->sendMessage(nullptr));
    // And the failures leave nothing behind that stands in the way of a good one.
    QVERIFY(m_cable->connectTo(m_api.get()));
    QCOMPARE(m_api->getInputPortList().size(), m_api->getOutputPortList().size());
}

// --- Bulk operations -----------------------------------------------------------------------------

// Template 1, knob 2 of bank A against template 3, knob 4 of bank B; good: false takes a bad index.
void TestRemoteMemAPI::runOperation(Operation operation, int bankA, int bankB, bool good)
{
    const int lastTemplate = good ? 3 : 50;
    const int lastKnob = good ? 4 : 12;
    switch (operation) {
    case Operation::CopyBank:
        m_api->copyBank(bankA, good ? bankB : 9);
        break;
    case Operation::CopyTemplate:
        QCOMPARE(m_api->copyTemplate(bankA, 1, bankB, lastTemplate), good);
        break;
    case Operation::ExchangeTemplate:
        QCOMPARE(m_api->exchangeTemplate(bankA, 1, bankB, lastTemplate), good);
        break;
    case Operation::CopyController:
        QCOMPARE(m_api->copyController(bankA, 1, 2, bankB, 3, lastKnob), good);
        break;
    case Operation::ExchangeController:
        QCOMPARE(m_api->exchangeController(bankA, 1, 2, bankB, 3, lastKnob), good);
        break;
    }
}

void TestRemoteMemAPI::theBulkTableHolds_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("bankA");
    QTest::addColumn<int>("bankB");
    QTest::addColumn<bool>("raisesFile");
    QTest::addColumn<bool>("raisesLibrary");
    QTest::addColumn<int>("messages");
    const auto mirrored = [](int bank) { return bank == 0 || bank == 1; };
    for (int a = 0; a < 9; ++a) {
        for (int b = 0; b < 9; ++b) {
            const auto row = [&](const char *name, Operation operation, bool file, bool library,
                                 int messages) {
                QTest::addRow("%s from %d to %d", name, a, b)
                    << operation << a << b << file << library << messages;
            };
            const int zeros = (a == 0 ? 1 : 0) + (b == 0 ? 1 : 0);
            row("copyBank", Operation::CopyBank, mirrored(b), b == 5, 0);
            row("copyTemplate", Operation::CopyTemplate, mirrored(b), b == 5, 0);
            row("exchangeTemplate", Operation::ExchangeTemplate, mirrored(a) && mirrored(b),
                a == 5 || b == 5, 15 * zeros);
            row("copyController", Operation::CopyController, mirrored(b), false, b == 0 ? 18 : 0);
            row("exchangeController", Operation::ExchangeController, mirrored(a) && mirrored(b),
                false, 18 * zeros);
        }
    }
}

void TestRemoteMemAPI::theBulkTableHolds()
{
    QFETCH(Operation, operation);
    QFETCH(int, bankA);
    QFETCH(int, bankB);
    QFETCH(bool, raisesFile);
    QFETCH(bool, raisesLibrary);
    QFETCH(int, messages);
    m_api->denyToRaiseFileEditFlag();
    m_api->setParam(ParamAddress(bankA, 1, 2, 1), 21);
    m_api->setParam(ParamAddress(bankB, 3, 4, 1), 43);
    m_api->allowToRaiseFileEditFlag();
    goOnline();
    // In the target knob, elsewhere in its template, elsewhere in its bank; and the first place's.
    LoggingObserver knob(m_api.get(), ParamAddress(bankB, 3, 4, 0));
    LoggingObserver sameTemplate(m_api.get(), ParamAddress(bankB, 3, 13, -1));
    LoggingObserver sameBank(m_api.get(), ParamAddress(bankB, 52, -1, -1));
    LoggingObserver firstKnob(m_api.get(), ParamAddress(bankA, 1, 2, 0));
    LoggingObserver firstTemplate(m_api.get(), ParamAddress(bankA, 1, 15, -1));
    LoggingObserver global(m_api.get(), Online);

    runOperation(operation, bankA, bankB);

    const bool wholeBank = operation == Operation::CopyBank;
    const bool wholeTemplate =
        operation == Operation::CopyTemplate || operation == Operation::ExchangeTemplate;
    const bool firstToo = operation == Operation::ExchangeTemplate;
    QCOMPARE(knob.count, 1);
    QCOMPARE(sameTemplate.count, wholeBank || wholeTemplate ? 1 : 0);
    QCOMPARE(sameBank.count, wholeBank ? 1 : 0);
    QCOMPARE(firstKnob.count, firstToo || (wholeBank && bankA == bankB) ? 1 : 0);
    QCOMPARE(firstTemplate.count, firstToo || (wholeBank && bankA == bankB) ? 1 : 0);
    QCOMPARE(global.count, 0);
    QCOMPARE(fileEdited(), raisesFile);
    QCOMPARE(libraryEdited(), raisesLibrary);
    QCOMPARE(m_cable->take().size(), messages);

    const bool exchanged =
        operation == Operation::ExchangeTemplate || operation == Operation::ExchangeController;
    const bool wholeBankOnto = operation == Operation::CopyBank;
    const int sourceKnob = wholeTemplate || wholeBankOnto ? 2 : 4;
    const int sourceTemplate = wholeBankOnto ? 1 : 3;
    QCOMPARE(valueAt(*m_api, ParamAddress(bankB, sourceTemplate, sourceKnob, 1)), 21);
    if (exchanged) {
        QCOMPARE(valueAt(*m_api, ParamAddress(bankA, 1, wholeTemplate ? 4 : 2, 1)), 43);
    }
}

void TestRemoteMemAPI::withBadIndicesNothingFollows_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::newRow("copyBank") << Operation::CopyBank;
    QTest::newRow("copyTemplate") << Operation::CopyTemplate;
    QTest::newRow("exchangeTemplate") << Operation::ExchangeTemplate;
    QTest::newRow("copyController") << Operation::CopyController;
    QTest::newRow("exchangeController") << Operation::ExchangeController;
}

void TestRemoteMemAPI::withBadIndicesNothingFollows()
{
    QFETCH(Operation, operation);
    goOnline();
    m_api->denyToRaiseFileEditFlag();
    m_api->setParam(ParamAddress(5, 1, 2, 1), 21);
    m_api->allowToRaiseFileEditFlag();
    const QStringList before = contentOf(*m_api, 0) + contentOf(*m_api, 5);
    runOperation(operation, 5, 0, false);
    QCOMPARE(contentOf(*m_api, 0) + contentOf(*m_api, 5), before);
    QVERIFY(!fileEdited());
    QVERIFY(!libraryEdited());
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::raisingIsDeniedToEveryBulkOperation_data()
{
    withBadIndicesNothingFollows_data();
}

void TestRemoteMemAPI::raisingIsDeniedToEveryBulkOperation()
{
    QFETCH(Operation, operation);
    m_api->denyToRaiseFileEditFlag();
    m_api->setParam(ParamAddress(1, 1, 2, 1), 21);
    runOperation(operation, 1, 0);
    QVERIFY(!fileEdited());
    m_api->allowToRaiseFileEditFlag();
    m_api->setParam(ParamAddress(5, 1, 2, 1), 99);
    m_api->denyToRaiseFileEditFlag();
    // The library's flag knows no denial.
    QVERIFY(m_api->copyTemplate(5, 1, 5, 2));
    QVERIFY(libraryEdited());
}

void TestRemoteMemAPI::copyBankNotifiesTheWholeTargetAlways()
{
    LoggingObserver bankLevel(m_api.get(), ParamAddress(5, 52, -1, -1));
    LoggingObserver knobLevel(m_api.get(), ParamAddress(5, 49, 11, 3));
    LoggingObserver elsewhere(m_api.get(), ParamAddress(4, 49, 11, 3));
    LoggingObserver global(m_api.get(), FileEdit);
    m_api->copyBank(0, 5);
    m_api->copyBank(0, 5);
    m_api->copyBank(5, 5);
    QCOMPARE(bankLevel.count, 3);
    QCOMPARE(knobLevel.count, 3);
    QCOMPARE(elsewhere.count, 0);
    QCOMPARE(global.count, 0);
}

void TestRemoteMemAPI::copyTemplateWithoutAChangeStillRaisesTheFlag()
{
    LoggingObserver observer(m_api.get(), ParamAddress(0, 1, 13, -1));
    QVERIFY(!m_api->copyTemplate(0, 0, 0, 1));
    QCOMPARE(observer.count, 0);
    QVERIFY(fileEdited());
    QVERIFY(!m_api->copyTemplate(0, 0, 5, 1));
    QVERIFY(libraryEdited());
}

void TestRemoteMemAPI::exchangeTemplateNotifiesTheSecondPlaceFirst()
{
    fillBank(m_api.get(), 0, "zero");
    QStringList log;
    LoggingObserver first(m_api.get(), ParamAddress(0, 1, 13, -1), &log, latin("first"));
    LoggingObserver second(m_api.get(), ParamAddress(0, 3, 13, -1), &log, latin("second"));
    QVERIFY(m_api->exchangeTemplate(0, 1, 0, 3));
    QCOMPARE(log, (QStringList{latin("second"), latin("first")}));
}

void TestRemoteMemAPI::exchangeTemplateSendsTheSecondSideFirst()
{
    fillBank(m_api.get(), 0, "zero");
    goOnline();
    QVERIFY(m_api->exchangeTemplate(0, 1, 0, 3));
    QCOMPARE(dumpedTemplates(m_cable->take()), (QList<int>{3, 1}));
}

void TestRemoteMemAPI::exchangeTemplateSendsOnlyTheSidesInBankZero()
{
    fillBank(m_api.get(), 0, "zero");
    fillBank(m_api.get(), 5, "five");
    goOnline();
    QVERIFY(m_api->exchangeTemplate(0, 1, 5, 3));
    QCOMPARE(dumpedTemplates(m_cable->take()), (QList<int>{1}));
    QVERIFY(m_api->exchangeTemplate(5, 7, 0, 9));
    QCOMPARE(dumpedTemplates(m_cable->take()), (QList<int>{9}));
    QVERIFY(m_api->exchangeTemplate(5, 7, 5, 9));
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::copyControllerSendsTheKnobIfTheTargetIsBankZero()
{
    m_api->setParam(ParamAddress(8, 0, 5, 0), latin("Reso"));
    m_api->setParam(ParamAddress(8, 0, 5, 1), 71);
    m_api->setParam(ParamAddress(8, 0, 5, 2), 1);
    m_api->setParam(ParamAddress(8, 0, 5, 3), latin("00098a6ea"));
    goOnline();
    QVERIFY(m_api->copyController(8, 0, 5, 0, 7, 9));
    QCOMPARE(m_cable->take(), knobMessages(9, "Reso", 71, 1, "00098a6ea"));
}

void TestRemoteMemAPI::exchangeControllerNotifiesTheSecondKnobAlone()
{
    m_api->setParam(ParamAddress(0, 1, 2, 1), 21);
    LoggingObserver first(m_api.get(), ParamAddress(0, 1, 2, 1));
    LoggingObserver second(m_api.get(), ParamAddress(0, 3, 4, 1));
    LoggingObserver secondElsewhere(m_api.get(), ParamAddress(0, 3, 5, 1));
    QVERIFY(m_api->exchangeController(0, 1, 2, 0, 3, 4));
    QCOMPARE(first.count, 0);
    QCOMPARE(second.count, 1);
    QCOMPARE(secondElsewhere.count, 0);
}

void TestRemoteMemAPI::exchangeControllerSendsTheFirstSideFirst()
{
    m_api->setParam(ParamAddress(0, 1, 2, 1), 21);
    goOnline();
    QVERIFY(m_api->exchangeController(0, 1, 2, 0, 1, 4));
    QCOMPARE(m_cable->take(),
             knobMessages(2, "", 0, 0, "204143dff") + knobMessages(4, "", 21, 0, "204143dff"));
}

void TestRemoteMemAPI::bulkOperationsWithoutAChangeSendNothing()
{
    goOnline();
    QVERIFY(!m_api->exchangeTemplate(0, 0, 0, 1));
    QVERIFY(!m_api->copyController(0, 0, 0, 0, 0, 1));
    QVERIFY(!m_api->exchangeController(0, 0, 0, 0, 0, 1));
    QVERIFY(!m_api->copyTemplate(0, 0, 0, 1));
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::copyBankSendsNothing()
{
    fillBank(m_api.get(), 5, "five");
    goOnline();
    m_api->copyBank(5, 0);
    QVERIFY(m_api->copyTemplate(5, 3, 0, 9));
    QCOMPARE(m_cable->take(), QStringList());
}

void TestRemoteMemAPI::setupLibraryBankCopiesWithoutAnyFlag()
{
    fillBank(m_api.get(), 0, "zero");
    LoggingObserver observer(m_api.get(), ParamAddress(5, 52, -1, -1));
    m_api->setupLibraryBank();
    QCOMPARE(contentOf(*m_api, 5, false), contentOf(*m_api, 0, false));
    QCOMPARE(observer.count, 1);
    QVERIFY(!fileEdited());
    QVERIFY(!libraryEdited());
    QCOMPARE(valueAt(*m_api, ParamAddress(5, 51, -1, -1)), 1);
}

void TestRemoteMemAPI::activateLibraryEditRaisesNothing()
{
    fillBank(m_api.get(), 5, "five");
    LoggingObserver observer(m_api.get(), ParamAddress(0, 52, -1, -1));
    m_api->activateLibraryEdit();
    QCOMPARE(contentOf(*m_api, 0, false), contentOf(*m_api, 5, false));
    QCOMPARE(observer.count, 1);
    QVERIFY(!fileEdited());
    QVERIFY(!libraryEdited());
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
}

void TestRemoteMemAPI::copyToAnArbitraryBankNotifiesWithoutAFlag()
{
    fillBank(m_api.get(), 0, "zero");
    for (int bank = 1; bank < 9; ++bank) {
        LoggingObserver observer(m_api.get(), ParamAddress(bank, 0, 0, 0));
        m_api->copyStoredBankToArbitraryBank(bank);
        QCOMPARE(observer.count, 1);
        QCOMPARE(contentOf(*m_api, bank), contentOf(*m_api, 0));
    }
    m_api->copyStoredBankToArbitraryBank(9);
    m_api->copyStoredBankToArbitraryBank(-1);
    QVERIFY(!fileEdited());
    QVERIFY(!libraryEdited());
}

void TestRemoteMemAPI::copyToTheBackupBankMakesItAvailable()
{
    fillBank(m_api.get(), 0, "zero");
    m_api->setBankAvailableFlag(0, 1);
    m_api->setBankAvailableFlag(0, 0);
    LoggingObserver observer(m_api.get(), ParamAddress(1, 0, 0, 0));
    m_api->copyStoredBankToEditorBackupBank();
    QCOMPARE(contentOf(*m_api, 1, false), contentOf(*m_api, 0, false));
    QCOMPARE(observer.count, 1);
    QCOMPARE(valueAt(*m_api, ParamAddress(1, 51, -1, -1)), 1);
    QVERIFY(!fileEdited());
}

void TestRemoteMemAPI::evacuationAndRestoreBringBothBanksBack()
{
    fillBank(m_api.get(), 0, "zero");
    fillBank(m_api.get(), 4, "four");
    const QStringList zero = contentOf(*m_api, 0);
    const QStringList four = contentOf(*m_api, 4, false);
    m_api->evacuateSpecificBankAndEditBuff(4);
    fillBank(m_api.get(), 0, "lost");
    fillBank(m_api.get(), 4, "lost");
    LoggingObserver onZero(m_api.get(), ParamAddress(0, 0, 0, 0));
    LoggingObserver onFour(m_api.get(), ParamAddress(4, 0, 0, 0));
    m_api->restoreSpecificBankAndEditBuff(4);
    QCOMPARE(contentOf(*m_api, 0), zero);
    QCOMPARE(contentOf(*m_api, 4, false), four);
    QCOMPARE(onZero.count, 1);
    QCOMPARE(onFour.count, 1);
    // The copy of bank 0 is not under denial, so it counts as an edit.
    QVERIFY(fileEdited());
}

void TestRemoteMemAPI::initializeTemplateNotifiesAndRaisesNothing()
{
    fillBank(m_api.get(), 0, "zero");
    fillBank(m_api.get(), 8, "preset");
    m_api->initializeInitialTemplate();
    LoggingObserver inside(m_api.get(), ParamAddress(0, 5, 3, 1));
    LoggingObserver outside(m_api.get(), ParamAddress(0, 6, 3, 1));
    m_api->initializeTemplate(0, 5);
    QCOMPARE(inside.count, 1);
    QCOMPARE(outside.count, 0);
    QVERIFY(!fileEdited());
    QVERIFY(m_api->getParamQString(ParamAddress(0, 5, 13, -1)).isNull());
    QCOMPARE(valueAt(*m_api, ParamAddress(0, 5, 3, 1)), valueAt(*m_api, ParamAddress(8, 49, 3, 1)));
    m_api->initializeTemplate(9, 0);
    m_api->initializeTemplate(0, 53);
}

void TestRemoteMemAPI::theEditBufferIsEditedIfItsCurrentTemplateDiffers()
{
    QVERIFY(!m_api->isEditBufferEdited());
    m_api->setParam(ParamAddress(0, 7, 0, 1), 5);
    QVERIFY(!m_api->isEditBufferEdited());
    m_api->setParam(ParamAddress(0, 52, -1, -1), 7);
    QVERIFY(m_api->isEditBufferEdited());
    m_api->setParam(ParamAddress(1, 7, 0, 1), 5);
    QVERIFY(!m_api->isEditBufferEdited());
    // The stored bank's own current number takes no part.
    m_api->setParam(ParamAddress(1, 52, -1, -1), 9);
    QVERIFY(!m_api->isEditBufferEdited());
}

void TestRemoteMemAPI::storeBankCopiesAndRaisesTheFlagWhateverTheDenyCount()
{
    fillBank(m_api.get(), 0, "zero");
    LoggingObserver observer(m_api.get(), ParamAddress(1, 0, 0, 0));
    LoggingObserver onFlag(m_api.get(), FileEdit);
    m_api->denyToRaiseFileEditFlag();
    QVERIFY(m_api->storeBank(false));
    QCOMPARE(contentOf(*m_api, 1), contentOf(*m_api, 0));
    QCOMPARE(observer.count, 1);
    QCOMPARE(onFlag.count, 1);
    QVERIFY(fileEdited());
    QVERIFY(!m_api->isAllowToRaiseFileEditFlag());
    m_api->allowToRaiseFileEditFlag();
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
}

void TestRemoteMemAPI::storeBankOfABlankBankRaisesNothing()
{
    // Blank means: the knobs of the last preset, whatever its names and type are.
    fillBank(m_api.get(), 8, "preset");
    m_api->setParam(ParamAddress(8, 49, 14, -1), 1);
    m_api->initializeInitialTemplate();
    for (int t = 0; t < 50; ++t) {
        m_api->initializeTemplate(0, t);
    }
    QVERIFY(m_api->storeBank(false));
    QVERIFY(!fileEdited());
    // The last one counts as well as the first.
    m_api->denyToRaiseFileEditFlag();
    m_api->setParam(ParamAddress(0, 49, 11, 2), 1);
    m_api->allowToRaiseFileEditFlag();
    QVERIFY(m_api->storeBank(false));
    QVERIFY(fileEdited());
}

void TestRemoteMemAPI::storeBankSendsTheStoreMessageIfAsked()
{
    goOnline();
    QVERIFY(m_api->storeBank(false));
    QCOMPARE(m_cable->take(), QStringList());
    QVERIFY(m_api->storeBank(true));
    QCOMPARE(m_cable->take(), QStringList{latin("F0 43 10 7F 14 01 22 00 F7")});
}

void TestRemoteMemAPI::sendingAllRunsTheStoreAndFlashOnce()
{
    goOnline();
    fillBank(m_api.get(), 0, "zero");
    m_api->clearTransmitQueue();
    m_cable->take();
    m_api->setStoreFlag(true);
    m_api->setStoreToFlashSendingFlag(true);
    QVERIFY(m_api->sendEditorAllData(true));
    QCOMPARE(contentOf(*m_api, 1), contentOf(*m_api, 0));
    // Release all groups, as acknowledges would.
    bool wasEmpty = false;
    while (!wasEmpty) {
        QVERIFY(m_api->sendMessage(&wasEmpty));
    }
    const QStringList all = m_cable->take();
    QCOMPARE(all.count(latin("F0 43 10 7F 14 01 22 00 F7")), 1);
    QCOMPARE(all.count(latin("F0 43 00 7F 14 00 00 11 00 00 6F F7")), 1);
    QVERIFY(all.indexOf(latin("F0 43 10 7F 14 01 22 00 F7")) <
            all.indexOf(latin("F0 43 00 7F 14 00 00 11 00 00 6F F7")));
    QVERIFY(m_api->sendEditorAllData(true));
    wasEmpty = false;
    while (!wasEmpty) {
        QVERIFY(m_api->sendMessage(&wasEmpty));
    }
    const QStringList again = m_cable->take();
    QCOMPARE(again.count(latin("F0 43 10 7F 14 01 22 00 F7")), 0);
    QCOMPARE(again.count(latin("F0 43 00 7F 14 00 00 11 00 00 6F F7")), 0);
}

void TestRemoteMemAPI::setBankAvailableFlagNotifiesNobody()
{
    LoggingObserver observer(m_api.get(), ParamAddress(4, 51, -1, -1));
    m_api->setBankAvailableFlag(1, 4);
    QCOMPARE(m_api->getBankAvailableFlag(4).getCurrentValue(), 1);
    m_api->setBankAvailableFlag(0, 4);
    m_api->setBankAvailableFlag(1, 9);
    m_api->setBankAvailableFlag(1, -1);
    QCOMPARE(observer.count, 0);
    QVERIFY(!fileEdited());
}

// --- Flags ---------------------------------------------------------------------------------------

void TestRemoteMemAPI::denyNestsAndOneAllowTooManyIsHarmless()
{
    m_api->denyToRaiseFileEditFlag();
    m_api->denyToRaiseFileEditFlag();
    m_api->allowToRaiseFileEditFlag();
    QVERIFY(!m_api->isAllowToRaiseFileEditFlag());
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 5));
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 0), latin("x")));
    QVERIFY(!fileEdited());
    m_api->allowToRaiseFileEditFlag();
    m_api->allowToRaiseFileEditFlag();
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
    m_api->denyToRaiseFileEditFlag();
    QVERIFY(!m_api->isAllowToRaiseFileEditFlag());
    m_api->allowToRaiseFileEditFlag();
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 6));
    QVERIFY(fileEdited());
}

void TestRemoteMemAPI::onlineStateNotifiesOnlyOnAChangeAndRaisesNothing()
{
    LoggingObserver observer(m_api.get(), Online);
    QVERIFY(!m_api->isONLINE());
    m_api->setONLINEstate(0);
    QCOMPARE(observer.count, 0);
    m_api->setONLINEstate(1);
    m_api->setONLINEstate(1);
    m_api->setONLINEstate(2);
    QCOMPARE(observer.count, 1);
    QVERIFY(m_api->isONLINE());
    QVERIFY(!fileEdited());
}

void TestRemoteMemAPI::plainFlagsHaveTheirStartValues()
{
    const RemoteMemAPI fresh;
    QVERIFY(fresh.isAllowToSendSysEx());
    QVERIFY(fresh.isWatchPortActivate());
    QVERIFY(!fresh.needToWaitAutoSyncDone());
    QVERIFY(!fresh.isFileOpenRequestExist());
    QVERIFY(fresh.isAllowToRaiseFileEditFlag());
    QVERIFY(fresh.getBulkRecieveEnableFlag());
    QVERIFY(!fresh.isWaitBulkTransmitDone());
    QVERIFY(!fresh.isONLINE());
    QCOMPARE(fresh.getQuantityOfBank(), 6);
    m_api->setWatchPortActivate(false);
    QVERIFY(!m_api->isWatchPortActivate());
    m_api->setNeedToWaitAutoSyncDoneFlag(true);
    QVERIFY(m_api->needToWaitAutoSyncDone());
    m_api->setFileOpenRequestFlag(true);
    QVERIFY(m_api->isFileOpenRequestExist());
    m_api->lockSendParamChange();
    m_api->unlockSendParamChange();
}

void TestRemoteMemAPI::takingAWaitFlagTellsItOnce()
{
    m_api->setWaitBulkTransmitDone(true);
    QVERIFY(m_api->isWaitBulkTransmitDone());
    QVERIFY(m_api->takeWaitBulkTransmitDone());
    QVERIFY(!m_api->takeWaitBulkTransmitDone());
    m_api->setWaitBulkReceiveDone(true);
    QVERIFY(m_api->takeWaitBulkReceiveDone());
    QVERIFY(!m_api->takeWaitBulkReceiveDone());
}

void TestRemoteMemAPI::bulkReceptionIsRevokedAndWantedAgain()
{
    m_api->revokeReceivedBulk();
    QVERIFY(!m_api->getBulkRecieveEnableFlag());
    // Also without an encoder.
    QVERIFY(!m_api->sendHardWareDataReq(false));
    QVERIFY(m_api->getBulkRecieveEnableFlag());
}

void TestRemoteMemAPI::everySignalHasItsEmitter()
{
    QSignalSpy receive(m_api.get(), &RemoteMemAPI::completeBulkReceive);
    QSignalSpy transmit(m_api.get(), &RemoteMemAPI::completeBulkTransmit);
    QSignalSpy number(m_api.get(), &RemoteMemAPI::notifiedCurrentTemplateNumber);
    QSignalSpy port(m_api.get(), &RemoteMemAPI::portActivated);
    m_api->emitCompleteBulkReceiveSignal();
    m_api->emitCompleteBulkTransmitSignal();
    m_api->emitNotifiedCurrentTemplateNumberSignal();
    m_api->emitPortActivatedSignal();
    QCOMPARE(receive.count(), 1);
    QCOMPARE(transmit.count(), 1);
    QCOMPARE(number.count(), 1);
    QCOMPARE(port.count(), 1);
}

void TestRemoteMemAPI::getParamGivesACopy()
{
    NumericParameter copy = m_api->getParam(ParamAddress(0, 0, 0, 1));
    QVERIFY(copy.setCurrentValue(99));
    QCOMPARE(valueAt(*m_api, ParamAddress(0, 0, 0, 1)), 0);
    for (int b = -8; b < 12; ++b) {
        for (const int t : {-2, -1, 0, 49, 50, 51, 52, 53}) {
            (void)m_api->getParam(ParamAddress(b, t, 12, 5)).getCurrentValue();
            QVERIFY(b == -4 || m_api->getParamQString(ParamAddress(b, t, 12, 5)).isEmpty());
        }
    }
}

// --- Threads -------------------------------------------------------------------------------------

void TestRemoteMemAPI::writersReadersAndRegistrationsOnSeveralThreadsAgree()
{
    constexpr int Rounds = 400;
    goOnline();
    LoggingObserver first(m_api.get(), ParamAddress(0, 0, 0, 1));
    LoggingObserver second(m_api.get(), ParamAddress(0, 0, 1, 1));
    const auto write = [&](int knob) {
        for (int i = 1; i <= Rounds; ++i) {
            m_api->setParam(ParamAddress(0, 0, knob, 1), i % 127 + 1);
            m_api->setParam(ParamAddress(0, 1, knob, 0), QString::number(i));
        }
    };
    std::atomic<bool> stop{false};
    std::thread writerA(write, 0);
    std::thread writerB(write, 1);
    std::thread reader([&] {
        while (!stop) {
            (void)valueAt(*m_api, ParamAddress(0, 0, 0, 1));
            (void)m_api->getParamQString(ParamAddress(0, 1, 0, 0));
            (void)m_api->getBank(0);
            (void)m_api->isEditBufferEdited();
            (void)m_api->isAllowToRaiseFileEditFlag();
        }
    });
    std::thread registrar([&] {
        for (int i = 0; i < Rounds; ++i) {
            LoggingObserver passing(m_api.get(), ParamAddress(0, 0, i % 2, 1));
            m_api->denyToRaiseFileEditFlag();
            m_api->allowToRaiseFileEditFlag();
        }
    });
    writerA.join();
    writerB.join();
    registrar.join();
    stop = true;
    reader.join();
    QCOMPARE(first.count, Rounds);
    QCOMPARE(second.count, Rounds);
    QCOMPARE(m_cable->take().size(), 2 * Rounds * (1 + 15));
}

void TestRemoteMemAPI::messageOrderIsWriteOrderAlsoWithTwoWriters()
{
    constexpr int Rounds = 300;
    goOnline();
    const ParamAddress address(0, 0, 0, 1);
    QStringList heard;
    LoggingObserver observer(m_api.get(), address);
    observer.then = [&] { heard.append(ccMessage(0, valueAt(*m_api, address))); };
    const auto write = [&](int offset) {
        for (int i = 0; i < Rounds; ++i) {
            m_api->setParam(address, (2 * i + offset) % 128);
        }
    };
    std::thread even(write, 0);
    std::thread odd(write, 1);
    even.join();
    odd.join();
    QCOMPARE(m_cable->take(), heard);
}

void TestRemoteMemAPI::aRouteGoesWhileAnotherThreadWrites()
{
    std::atomic<bool> stop{false};
    m_api->setONLINEstate(1);
    std::thread writer([&] {
        for (int i = 0; !stop; ++i) {
            m_api->setParam(ParamAddress(0, 0, 0, 1), i % 128);
        }
    });
    // Active sensing and a change of the current template, as the device would send them.
    const QByteArray sensing("\xFE");
    const QByteArray change("\xF0\x43\x10\x7F\x15\x01\x20\x00\x05\xF7", 10);
    for (int i = 0; i < 20; ++i) {
        QVERIFY(m_cable->connectTo(m_api.get()));
        m_cable->send(CableEnd::WatchPort, sensing);
        m_cable->send(CableEnd::CommunicationPort, change);
        m_api->deleteMIDIComunicationRoute();
    }
    stop = true;
    writer.join();
    QVERIFY(!m_api->sendMessage(nullptr));
}

QTEST_GUILESS_MAIN(TestRemoteMemAPI)
#include "tst_remotememapi.moc"
