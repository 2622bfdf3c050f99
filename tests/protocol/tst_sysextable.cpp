// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/SysExParamChangeAddressTransTable.h"

#include "app/Constants.h"
#include "memory/AddressTransTable.h"

#include <QtTest/QtTest>

#include <set>

namespace
{

using Table = SysExParamChangeAddressTransTable;

QByteArray lookUp(const Table &table, const ParamAddress &address, bool *found)
{
    unsigned char bytes[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    *found = table.getSysExParamAddress(address, bytes);
    return QByteArray(reinterpret_cast<const char *>(bytes), 4);
}

// What stands at a device address, told by arithmetic alone: the template page is 13 + 12 + 1 + 1
// bytes, each knob page 9 + 15 + 1 + 1.
struct Place
{
    bool exists = false;
    int controller = -1;
    int parameter = -1;
    int position = 0;
    int length = 0;
};

Place placeAt(int mid, int low)
{
    Place place;
    if (mid == 0x00 && low <= 26) {
        place.exists = true;
        if (low < 13) {
            place = {true, 13, -1, low, 13};
        } else if (low < 25) {
            place = {true, 15, -1, low - 13, 12};
        } else {
            place = {true, low == 25 ? 14 : 16, -1, 0, 1};
        }
    } else if (mid >= 0x10 && mid <= 0x1B && low <= 25) {
        if (low < 9) {
            place = {true, mid - 0x10, 3, low, 9};
        } else if (low < 24) {
            place = {true, mid - 0x10, 0, low - 9, 15};
        } else {
            place = {true, mid - 0x10, low == 24 ? 1 : 2, 0, 1};
        }
    }
    return place;
}

} // namespace

class TestSysExTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void memoryToDevice_data()
    {
        QTest::addColumn<ParamAddress>("address");
        QTest::addColumn<QByteArray>("expected"); // empty: no entry
        const auto row = [](const char *name, const ParamAddress &address, const char *bytes) {
            QTest::newRow(name) << address << QByteArray::fromHex(bytes);
        };
        row("templateName of bank 0, template 0", ParamAddress(0, 0, 13, -1), "00 00 00 0D");
        row("templateName of bank 8, template 49", ParamAddress(8, 49, 13, -1), "00 00 00 0D");
        row("templateName of no bank and template", ParamAddress(-1, -1, 13, -1), "00 00 00 0D");
        row("vstiName", ParamAddress(0, 0, 15, -1), "00 0D 00 0C");
        row("controlType", ParamAddress(0, 0, 14, -1), "00 19 00 01");
        row("reserved template byte", ParamAddress(0, 0, 16, -1), "00 1A 00 01");
        row("remoteNumber of knobA1", ParamAddress(0, 0, 0, 3), "10 00 00 09");
        row("displayName of knobA1", ParamAddress(0, 0, 0, 0), "10 09 00 0F");
        row("ccNumber of knobA1", ParamAddress(0, 0, 0, 1), "10 18 00 01");
        row("displayFormat of knobA1", ParamAddress(0, 0, 0, 2), "10 19 00 01");
        row("displayName of knobD3", ParamAddress(0, 0, 11, 0), "1B 09 00 0F");
        row("remoteNumber of knobD3", ParamAddress(1, 7, 11, 3), "1B 00 00 09");
        row("current template number", ParamAddress(0, 52, -1, -1), "20 00 00 01");
        row("template component 52 with others", ParamAddress(3, 52, 13, 2), "20 00 00 01");
        row("template component 52 before bank -6", ParamAddress(-6, 52, -1, -1), "20 00 00 01");
        row("bank edit flag", ParamAddress(-6, -1, -1, -1), "23 00 00 01");
        row("bank -6 with others", ParamAddress(-6, 1, 13, 2), "23 00 00 01");
        row("controller 12", ParamAddress(0, 0, 12, 0), "");
        row("controller 12 without parameter", ParamAddress(0, 0, 12, -1), "");
        row("controller 17", ParamAddress(0, 0, 17, -1), "");
        row("parameter 4", ParamAddress(0, 0, 0, 4), "");
        row("knob without parameter", ParamAddress(0, 0, 0, -1), "");
        row("template selector with parameter", ParamAddress(0, 0, 13, 0), "");
        row("parameter without knob", ParamAddress(0, 0, -1, 1), "");
        row("nothing at all", ParamAddress(-1, -1, -1, -1), "");
        row("available flag", ParamAddress(0, 51, -1, -1), "");
        row("online state", ParamAddress(-2, -1, -1, -1), "");
        row("controller that agrees in its low byte", ParamAddress(0, 0, 0x100, 0), "");
        row("parameter that agrees in its low byte", ParamAddress(0, 0, 0, 0x101), "");
        row("controller 255 is not none", ParamAddress(0, 0, 0xFF, 0), "");
        row("parameter 255 is not none", ParamAddress(0, 0, 13, 0xFF), "");
    }
    void memoryToDevice()
    {
        QFETCH(ParamAddress, address);
        QFETCH(QByteArray, expected);
        const Table table;
        bool found = false;
        const QByteArray bytes = lookUp(table, address, &found);
        QCOMPARE(found, !expected.isEmpty());
        QCOMPARE(bytes, found ? expected : QByteArray(4, '\xEE'));
    }

    void aNullPointerGivesFalse()
    {
        const Table table;
        QVERIFY(!table.getSysExParamAddress(ParamAddress(0, 0, 13, -1), nullptr));
        QVERIFY(!table.getSysExParamAddress(ParamAddress(0, 52, -1, -1), nullptr));
    }

    void deviceToMemory_data()
    {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<ParamAddress>("expected");
        QTest::addColumn<QByteArray>("info"); // EE EE: left as they were
        const auto row = [](const char *name, const char *device, const ParamAddress &expected,
                            const char *info) {
            QTest::newRow(name) << QByteArray::fromHex(device) << expected
                                << QByteArray::fromHex(info);
        };
        const ParamAddress none(-1, -1, -1, -1);
        row("00 05 lies in templateName", "00 05", ParamAddress(-1, -1, 13, -1), "05 0D");
        row("1B 19 is displayFormat of knobD3", "1B 19", ParamAddress(-1, -1, 11, 2), "00 01");
        row("00 1A is controller 16", "00 1A", ParamAddress(-1, -1, 16, -1), "00 01");
        row("00 18 is the end of vstiName", "00 18", ParamAddress(-1, -1, 15, -1), "0B 0C");
        row("20 00 is the current template number", "20 00", ParamAddress(-1, 52, -1, -1), "EE EE");
        row("20 01 is nothing", "20 01", none, "EE EE");
        row("22 00 is the store trigger", "22 00", none, "EE EE");
        row("23 00 is the bank edit flag", "23 00", none, "EE EE");
        row("00 1B is behind the template page", "00 1B", none, "EE EE");
        row("10 1A is behind a knob page", "10 1A", none, "EE EE");
        row("1C 00 is behind the knobs", "1C 00", none, "EE EE");
        row("7F 7F is nothing", "7F 7F", none, "EE EE");
        row("FF FF is nothing", "FF FF", none, "EE EE");
    }
    void deviceToMemory()
    {
        QFETCH(QByteArray, device);
        QFETCH(ParamAddress, expected);
        QFETCH(QByteArray, info);
        const Table table;
        const auto *bytes = reinterpret_cast<const unsigned char *>(device.constData());
        QVERIFY(table.getMemoryParamAddress(bytes) == expected);
        unsigned char place[2] = {0xEE, 0xEE};
        table.getSysExAddressParamInfo(bytes, place);
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(place), 2), info);
    }

    void controller16IsNeitherStringNorNumber()
    {
        const Table table;
        const unsigned char device[2] = {0x00, 0x1A};
        const ParamAddress address = table.getMemoryParamAddress(device);
        QVERIFY(!address.isStringParamAdr());
        QVERIFY(!address.isNumericParamAdr());
        QVERIFY(!AddressTransTable().getTable().values().contains(16));
    }

    void all339EntriesAndNothingElse()
    {
        const Table table;
        int entries = 0;
        for (int mid = 0; mid < 128; ++mid) {
            for (int low = 0; low < 128; ++low) {
                const Place expected = placeAt(mid, low);
                const unsigned char device[2] = {static_cast<unsigned char>(mid),
                                                 static_cast<unsigned char>(low)};
                const ParamAddress address = table.getMemoryParamAddress(device);
                unsigned char info[2] = {0xEE, 0xEE};
                table.getSysExAddressParamInfo(device, info);
                if (mid == 0x20 && low == 0) {
                    QVERIFY(address == ParamAddress(-1, 52, -1, -1));
                    continue;
                }
                QVERIFY(address == ParamAddress(-1, -1, expected.controller, expected.parameter));
                QCOMPARE(int(info[0]), expected.exists ? expected.position : 0xEE);
                QCOMPARE(int(info[1]), expected.exists ? expected.length : 0xEE);
                if (!expected.exists) {
                    continue;
                }
                ++entries;
                // Back again: the field's first byte, whichever of its bytes one came from.
                bool found = false;
                const QByteArray back = lookUp(table, address, &found);
                QVERIFY(found);
                const QByteArray wanted = QByteArray(1, static_cast<char>(mid)) +
                                          static_cast<char>(low - expected.position) + '\0' +
                                          static_cast<char>(expected.length);
                QCOMPARE(back, wanted);
            }
        }
        QCOMPARE(entries, 339);
    }

    void everyAddressOfTheMemoryHasItsField()
    {
        const Table table;
        std::set<int> firstBytes;
        for (int controller = -1; controller < 20; ++controller) {
            for (int parameter = -1; parameter < 6; ++parameter) {
                bool found = false;
                const QByteArray bytes =
                    lookUp(table, ParamAddress(2, 3, controller, parameter), &found);
                const bool isKnob = controller >= 0 && controller < 12;
                const bool exists = isKnob ? parameter >= 0 && parameter <= 3
                                           : controller >= 13 && controller <= 16 && parameter < 0;
                QCOMPARE(found, exists);
                if (found) {
                    firstBytes.insert(bytes.at(0) * 256 + bytes.at(1));
                }
            }
        }
        QCOMPARE(firstBytes.size(), std::size_t(4 + 12 * 4));
    }

    void combineAndDevide()
    {
        QCOMPARE(Table::Combine(0x12, 0x34), static_cast<unsigned short>(0x1234));
        QCOMPARE(Table::Combine(-1, 0), static_cast<unsigned short>(0xFF00));
        QCOMPARE(Table::Combine(0, -1), static_cast<unsigned short>(0x00FF));
        QCOMPARE(Table::Combine(1, 0x1FF), static_cast<unsigned short>(0x01FF));
        unsigned char bytes[2] = {};
        Table::Devide(0xABCD, bytes);
        QCOMPARE(int(bytes[0]), 0xAB);
        QCOMPARE(int(bytes[1]), 0xCD);
    }

    void aFieldEnteredYieldsItsFirstByte()
    {
        Table table;
        table.enregister(100, 7, 0x30, 5, 4);
        bool found = false;
        QCOMPARE(lookUp(table, ParamAddress(0, 0, 100, 7), &found),
                 QByteArray::fromHex("30 05 00 04"));
        for (int i = 0; i < 4; ++i) {
            const unsigned char device[2] = {0x30, static_cast<unsigned char>(5 + i)};
            QVERIFY(table.getMemoryParamAddress(device) == ParamAddress(-1, -1, 100, 7));
        }
    }

    void constantsOfTheProtocol()
    {
        QCOMPARE(ActiveSensePort, 1);
        QCOMPARE(CommunicationPort, 5);
        QCOMPARE(ModelName, QStringLiteral("TARN/TERN Remote Editor"));
        const AddressTransTable names;
        for (int knob = 0; knob < 12; ++knob) {
            QCOMPARE(names.getTable().value(QString::fromLatin1(LCDSelectAddressUpper[knob])),
                     knob);
        }
    }
};

QTEST_GUILESS_MAIN(TestSysExTable)

#include "tst_sysextable.moc"
