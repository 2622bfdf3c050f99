// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TUniMIDIPortAccessor.h"

#include <QtCore/QSettings>
#include <QtTest/QtTest>

#include <cstdlib>
#include <set>

namespace
{

const QString inputNames = QStringLiteral("/preferences/SystemPorts/Input/portNames");
const QString inputIds = QStringLiteral("/preferences/SystemPorts/Input/portIds");
const QString outputNames = QStringLiteral("/preferences/SystemPorts/Output/portNames");
const QString outputIds = QStringLiteral("/preferences/SystemPorts/Output/portIds");

// A platform whose ports the test plugs.
class FakeAccessor : public TUniMIDIPortAccessor
{
public:
    QStringList inputs;
    QStringList outputs;

    int getNumPorts(int direction) override { return static_cast<int>(list(direction).size()); }
    QString identifierForIndex(int direction, int index) override
    {
        return list(direction).value(index);
    }
    QList<QUuid> ids(int direction) const
    {
        QList<QUuid> result;
        qUuids(direction, result);
        return result;
    }

private:
    const QStringList &list(int direction) const { return direction == Input ? inputs : outputs; }
};

} // namespace

class TestPortCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("Corvan"));
        QCoreApplication::setApplicationName(QStringLiteral("TARN_TERNRemoteEditor"));
    }
    void init() { QSettings().clear(); }

    void isEmptyWithoutPorts()
    {
        FakeAccessor ports;
        ports.updatePortInfo();
        QCOMPARE(ports.getInputPortList(), QStringList());
        QCOMPARE(ports.getOutputPortList(), QStringList());
        QCOMPARE(ports.ids(0), QList<QUuid>());
    }

    void anUnknownIdGivesTheUnknownNameAndNumberZero_data()
    {
        QTest::addColumn<QUuid>("id");
        QTest::newRow("null") << QUuid();
        QTest::newRow("unknown") << QUuid::createUuid();
    }
    void anUnknownIdGivesTheUnknownNameAndNumberZero()
    {
        QFETCH(QUuid, id);
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("Synth Port1")};
        ports.updatePortInfo();
        QCOMPARE(ports.encodedName(id), QStringLiteral("0;<unknown port name>"));
        QCOMPARE(ports.friendlyName(id), QStringLiteral("<unknown port name>"));
        QCOMPARE(ports.portID(id), 0);
    }

    void namesNumbersAndIdsOfBothDirections()
    {
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A Port1"), QStringLiteral("A Port2")};
        ports.outputs = QStringList{QStringLiteral("B Port1")};
        ports.updatePortInfo();
        const QList<QUuid> in = ports.ids(0);
        const QList<QUuid> out = ports.ids(1);
        QCOMPARE(in.size(), 2);
        QCOMPARE(out.size(), 1);
        QCOMPARE(ports.ids(7), out); // any other direction is output
        QCOMPARE(ports.encodedName(in.at(1)), QStringLiteral("2;A Port2"));
        QCOMPARE(ports.friendlyName(in.at(1)), QStringLiteral("A Port2"));
        QCOMPARE(ports.portID(in.at(0)), 1);
        QCOMPARE(ports.portID(in.at(1)), 2);
        QCOMPARE(ports.encodedName(out.at(0)), QStringLiteral("1;B Port1"));
        QCOMPARE(sorted(ports.getInputPortList()),
                 (QStringList{QStringLiteral("1;A Port1"), QStringLiteral("2;A Port2")}));
        QCOMPARE(ports.getPortList(1), QStringList{QStringLiteral("1;B Port1")});
    }

    void listsAreInTheOrderOfTheIdsAndIdsInTheOrderOfTheNumbers()
    {
        FakeAccessor ports;
        for (int i = 1; i <= 20; ++i) {
            ports.inputs.append(QStringLiteral("A Port%1").arg(i));
        }
        ports.updatePortInfo();
        const QList<QUuid> ids = ports.ids(0);
        QStringList byId;
        QList<QUuid> ordered = ids;
        std::sort(ordered.begin(), ordered.end());
        for (const QUuid &id : std::as_const(ordered)) {
            byId.append(ports.encodedName(id));
        }
        QCOMPARE(ports.getInputPortList(), byId);
        for (int i = 0; i < 20; ++i) {
            QCOMPARE(ports.portID(ids.at(i)), i + 1);
        }
        QList<QUuid> appended{QUuid()};
        ports.qUuids(0, appended);
        QCOMPARE(appended.size(), 21);
    }

    void idsLastOverRunsAndRenumbering()
    {
        const QUuid id = firstIdOf({QStringLiteral("A Port1")});
        FakeAccessor later;
        later.inputs = QStringList{QStringLiteral("New Port1"), QStringLiteral("A Port1")};
        later.updatePortInfo();
        QCOMPARE(later.encodedName(id), QStringLiteral("2;A Port1"));
        // The settings keep the number it had when first seen.
        QCOMPARE(QSettings().value(inputNames).toStringList(),
                 (QStringList{QStringLiteral("1;A Port1<[Inp]>"),
                              QStringLiteral("1;New Port1<[Inp]>")}));
    }

    void absentPortsKeepTheirIdentity()
    {
        const QUuid id = firstIdOf({QStringLiteral("A Port1")});
        FakeAccessor without;
        without.updatePortInfo();
        QCOMPARE(without.portID(id), 0);
        QCOMPARE(QSettings().value(inputIds).toStringList(), QStringList{id.toString()});
        QCOMPARE(firstIdOf({QStringLiteral("A Port1")}), id);
    }

    void settingsHoldParallelListsForEachDirection()
    {
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A Port1")};
        ports.outputs = QStringList{QStringLiteral("A Port1"), QStringLiteral("A Port2")};
        ports.updatePortInfo();
        const QSettings settings;
        QCOMPARE(settings.value(inputNames).toStringList(),
                 QStringList{QStringLiteral("1;A Port1<[Inp]>")});
        QCOMPARE(settings.value(inputIds).toStringList(), texts(ports.ids(0)));
        QCOMPARE(
            settings.value(outputNames).toStringList(),
            (QStringList{QStringLiteral("1;A Port1<[Out]>"), QStringLiteral("2;A Port2<[Out]>")}));
        QCOMPARE(settings.value(outputIds).toStringList(), texts(ports.ids(1)));
        // The same name has an identity of its own in each direction.
        QVERIFY(ports.ids(0).at(0) != ports.ids(1).at(0));
    }

    void aListingThatFindsNothingNewLeavesTheDiskAlone()
    {
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A Port1")};
        ports.updatePortInfo();
        QSettings().sync();
        const QDateTime past = QDateTime::fromSecsSinceEpoch(1000000000);
        const auto written = [&past] {
            QFile file(QSettings().fileName());
            const bool isNew = QFileInfo(file).lastModified() != past;
            return file.open(QIODevice::ReadWrite) &&
                   file.setFileTime(past, QFileDevice::FileModificationTime) && isNew;
        };
        QVERIFY(written());
        ports.updatePortInfo();
        QVERIFY(!written());
        ports.inputs.append(QStringLiteral("A Port2"));
        ports.updatePortInfo();
        QVERIFY(written());
        ports.inputs.clear();
        ports.updatePortInfo();
        QVERIFY(!written());
        // Who has emptied the settings finds all four lists again.
        QSettings().clear();
        ports.updatePortInfo();
        QCOMPARE(QSettings().allKeys().size(), 4);
    }

    void aDamagedCatalogueIsDroppedWhole_data()
    {
        QTest::addColumn<QVariant>("names");
        QTest::addColumn<QVariant>("ids");
        const QString a = QStringLiteral("1;A Port1<[Inp]>");
        const QString b = QStringLiteral("2;B Port1<[Inp]>");
        const QString id = QStringLiteral("{11111111-1111-4111-8111-111111111111}");
        const QString other = QStringLiteral("{22222222-2222-4222-8222-222222222222}");
        QTest::newRow("more names than ids")
            << QVariant(QStringList{a, b}) << QVariant(QStringList{id});
        QTest::newRow("more ids than names")
            << QVariant(QStringList{a}) << QVariant(QStringList{id, other});
        QTest::newRow("no ids at all") << QVariant(QStringList{a}) << QVariant();
        QTest::newRow("a bad id") << QVariant(QStringList{a, b})
                                  << QVariant(QStringList{id, QStringLiteral("rubbish")});
        QTest::newRow("a null id")
            << QVariant(QStringList{a}) << QVariant(QStringList{QUuid().toString()});
        QTest::newRow("an entry without a delimiter")
            << QVariant(QStringList{a, QStringLiteral("B Port1<[Inp]>")})
            << QVariant(QStringList{id, other});
        QTest::newRow("not a list") << QVariant(42) << QVariant(QByteArray("\x01\x02"));
    }
    void aDamagedCatalogueIsDroppedWhole()
    {
        QFETCH(QVariant, names);
        QFETCH(QVariant, ids);
        {
            QSettings settings;
            settings.setValue(inputNames, names);
            if (ids.isValid()) {
                settings.setValue(inputIds, ids);
            }
            settings.setValue(outputNames, QStringList{QStringLiteral("1;A Port1<[Out]>")});
            settings.setValue(
                outputIds, QStringList{QStringLiteral("{33333333-3333-4333-8333-333333333333}")});
        }
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A Port1")};
        ports.outputs = ports.inputs;
        ports.updatePortInfo();
        // A new id on this same run, and nothing of the old ones left.
        QVERIFY(!ports.ids(0).at(0).isNull());
        QVERIFY(ports.ids(0).at(0) !=
                QUuid(QStringLiteral("{11111111-1111-4111-8111-111111111111}")));
        QCOMPARE(QSettings().value(inputNames).toStringList(),
                 QStringList{QStringLiteral("1;A Port1<[Inp]>")});
        QCOMPARE(QSettings().value(inputIds).toStringList(), texts(ports.ids(0)));
        // The other direction is not touched by it.
        QCOMPARE(ports.ids(1),
                 QList<QUuid>{QUuid(QStringLiteral("{33333333-3333-4333-8333-333333333333}"))});
    }

    void aSecondPortOfTheSameNameIsNewOnEveryRun()
    {
        std::set<QUuid> seconds;
        QUuid first;
        for (int run = 1; run <= 3; ++run) {
            FakeAccessor ports;
            ports.inputs = QStringList{QStringLiteral("A Port1"), QStringLiteral("A Port1")};
            ports.updatePortInfo();
            const QList<QUuid> ids = ports.ids(0);
            QCOMPARE(ids.size(), 2);
            QVERIFY(run == 1 || ids.at(0) == first);
            first = ids.at(0);
            seconds.insert(ids.at(1));
            QCOMPARE(QSettings().value(inputNames).toStringList().size(), run + 1);
            QCOMPARE(QSettings().value(inputIds).toStringList().size(), run + 1);
        }
        QCOMPARE(seconds.size(), std::size_t(3));
    }

    void equalStoredIdsNeverReachBehindTheList()
    {
        const QString id = QStringLiteral("{11111111-1111-4111-8111-111111111111}");
        {
            QSettings settings;
            settings.setValue(inputNames, QStringList{QStringLiteral("1;A<[Inp]>"),
                                                      QStringLiteral("2;B<[Inp]>")});
            settings.setValue(inputIds, QStringList{id, id});
        }
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A"), QStringLiteral("B")};
        ports.updatePortInfo();
        QCOMPARE(ports.ids(0).size(), 2);
        QCOMPARE(ports.encodedName(QUuid(id)), QStringLiteral("1;A"));
    }

    void aPortWithoutANameIsPassedOverAndKeepsItsNumberFree()
    {
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A"), QString(), QStringLiteral("C")};
        ports.updatePortInfo();
        QCOMPARE(sorted(ports.getInputPortList()),
                 (QStringList{QStringLiteral("1;A"), QStringLiteral("3;C")}));
    }

    void aNameIsNotReadAsAFormat()
    {
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("%1 %2 %3")};
        ports.updatePortInfo();
        QCOMPARE(ports.getInputPortList(), QStringList{QStringLiteral("1;%1 %2 %3")});
    }

    void aNameWithADelimiterEndsThereInItsFriendlyForm()
    {
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A;B")};
        ports.updatePortInfo();
        const QUuid id = ports.ids(0).value(0);
        QCOMPARE(ports.encodedName(id), QStringLiteral("1;A;B"));
        QCOMPARE(ports.friendlyName(id), QStringLiteral("A"));
        QCOMPARE(ports.portID(id), 1);
    }

    void aGonePortLeavesTheCatalogueWithTheNextUpdate()
    {
        FakeAccessor ports;
        ports.inputs = QStringList{QStringLiteral("A")};
        ports.updatePortInfo();
        const QUuid id = ports.ids(0).value(0);
        ports.inputs.clear();
        QCOMPARE(ports.portID(id), 1);
        ports.updatePortInfo();
        QCOMPARE(ports.portID(id), 0);
        QCOMPARE(ports.getInputPortList(), QStringList());
    }

    void copiesATextWithItsTerminatingZero_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("plain") << QStringLiteral("Port");
        QTest::newRow("outside the first plane") << QString::fromUtf8("\xF0\x9F\x8E\xB9");
    }
    void copiesATextWithItsTerminatingZero()
    {
        QFETCH(QString, text);
        char16_t *copy = PrivateCreateOLEString(text);
        QVERIFY(copy != nullptr);
        QCOMPARE(copy[text.size()], u'\0');
        QCOMPARE(QString::fromUtf16(copy), text);
        std::free(copy);
    }

private:
    static QUuid firstIdOf(const QStringList &inputs)
    {
        FakeAccessor ports;
        ports.inputs = inputs;
        ports.updatePortInfo();
        return ports.ids(0).value(0);
    }
    static QStringList texts(const QList<QUuid> &ids)
    {
        QStringList result;
        for (const QUuid &id : ids) {
            result.append(id.toString());
        }
        return result;
    }
    static QStringList sorted(QStringList list)
    {
        list.sort();
        return list;
    }
};

QTEST_GUILESS_MAIN(TestPortCatalogue)
#include "tst_portcatalogue.moc"
