// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/DevicePortList.h"

#include <QtTest/QtTest>

namespace
{

const QString instrument = QStringLiteral("CORVAN TARN/TERN61");

// "first;NAME Port1", "first+1;NAME Port2" and so on.
QStringList family(const QString &name, int first, int count = 5)
{
    QStringList ports;
    for (int i = 0; i < count; ++i) {
        ports.append(QStringLiteral("%1;%2 Port%3").arg(first + i).arg(name).arg(i + 1));
    }
    return ports;
}

QStringList without(QStringList ports, int index)
{
    ports.removeAt(index);
    return ports;
}

QStringList with(QStringList ports, const QString &port)
{
    return ports << port;
}

} // namespace

namespace QTest
{
template <>
char *toString(const PortInfo &info)
{
    return qstrdup(qPrintable(QStringLiteral("%1/%2/%3/%4")
                                  .arg(info.name)
                                  .arg(info.activeSensePort)
                                  .arg(info.communicationInPort)
                                  .arg(info.communicationOutPort)));
}
} // namespace QTest

class TestDevicePortList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recognition_data()
    {
        QTest::addColumn<QStringList>("inputs");
        QTest::addColumn<QStringList>("outputs");
        QTest::addColumn<QList<PortInfo>>("devices");
        using Devices = QList<PortInfo>;
        const QStringList in = family(instrument, 3);
        const QStringList out = family(instrument, 11);
        const Devices one{{instrument, 3, 7, 15}};

        QTest::newRow("Port1 to Port5 give one device with the ports at 1 and 5")
            << in << out << one;
        QTest::newRow("in any order of the ports")
            << QStringList{in.at(4), in.at(0), in.at(2), in.at(1), in.at(3)}
            << QStringList{out.at(1), out.at(4), out.at(3), out.at(0), out.at(2)} << one;
        QTest::newRow("no ports") << QStringList() << QStringList() << Devices{};
        QTest::newRow("a family of four ports") << without(in, 2) << out << Devices{};
        QTest::newRow("a family of four outputs") << in << without(out, 4) << Devices{};
        QTest::newRow("a family of six ports")
            << with(in, QStringLiteral("8;%1 Port6").arg(instrument)) << out << Devices{};
        QTest::newRow("five ports with a wrong number")
            << with(without(in, 2), QStringLiteral("8;%1 Port6").arg(instrument)) << out
            << Devices{};
        QTest::newRow("numbers from 0")
            << with(without(in, 4), QStringLiteral("8;%1 Port0").arg(instrument)) << out
            << Devices{};
        QTest::newRow("inputs only") << in << QStringList() << Devices{};
        QTest::newRow("outputs only") << QStringList() << out << Devices{};
        QTest::newRow("another maker's family")
            << family(QStringLiteral("Other Synth"), 1) << family(QStringLiteral("Other Synth"), 1)
            << Devices{};
        QTest::newRow("the maker's name in small letters")
            << family(QStringLiteral("Corvan TARN/TERN"), 1)
            << family(QStringLiteral("Corvan TARN/TERN"), 1)
            << Devices{{QStringLiteral("Corvan TARN/TERN"), 1, 5, 5}};
        QTest::newRow("the model's name in small letters")
            << family(QStringLiteral("CORVAN Tarn/Tern"), 1)
            << family(QStringLiteral("CORVAN Tarn/Tern"), 1) << Devices{};
        QTest::newRow("the maker's first letter small")
            << family(QStringLiteral("corvan TARN/TERN"), 1)
            << family(QStringLiteral("corvan TARN/TERN"), 1) << Devices{};
        QTest::newRow("the model's name alone")
            << family(QStringLiteral("TARN/TERN"), 1) << family(QStringLiteral("TARN/TERN"), 1)
            << Devices{};
        QTest::newRow("text around the name")
            << family(QStringLiteral("USB Corvan TARN/TERN 88 (2)"), 1)
            << family(QStringLiteral("USB Corvan TARN/TERN 88 (2)"), 1)
            << Devices{{QStringLiteral("USB Corvan TARN/TERN 88 (2)"), 1, 5, 5}};
        QTest::newRow("other ports between them")
            << with(in, QStringLiteral("1;Midi Through Port-0"))
            << with(out, QStringLiteral("2;Other Port1")) << one;
        QTest::newRow("a name with no number after Port is passed over")
            << with(in, QStringLiteral("8;%1 Port").arg(instrument)) << out << one;
        QTest::newRow("a name that is only Port and a number is passed over")
            << with(in, QStringLiteral("8;Port1")) << with(out, QStringLiteral("8; Port2")) << one;
        QTest::newRow("a number with text behind it is passed over")
            << with(in, QStringLiteral("8;%1 Port6 in").arg(instrument)) << out << one;
        QTest::newRow("a number that no int holds is passed over")
            << with(in, QStringLiteral("8;%1 Port99999999999").arg(instrument)) << out << one;
        QTest::newRow("a name without its port's number is passed over")
            << with(with(in, QStringLiteral(";%1 Port6").arg(instrument)),
                    QStringLiteral("%1 Port6").arg(instrument))
            << out << one;
        QTest::newRow("a port's number that is none is passed over")
            << with(in, QStringLiteral("8x;%1 Port6").arg(instrument)) << out << one;
        QTest::newRow("an empty name is passed over")
            << with(in, QStringLiteral("8;")) << out << one;
        QTest::newRow("an empty text is passed over") << with(in, QString()) << out << one;
        QTest::newRow("no blank before Port, and several")
            << QStringList{QStringLiteral("1;%1Port1").arg(instrument), in.at(1), in.at(2),
                           in.at(3), QStringLiteral("5;%1    Port5").arg(instrument)}
            << out << Devices{{instrument, 1, 5, 15}};
        QTest::newRow("a hyphen in the base name")
            << family(QStringLiteral("Corvan TARN/TERN-88"), 1)
            << family(QStringLiteral("Corvan TARN/TERN-88"), 1)
            << Devices{{QStringLiteral("Corvan TARN/TERN-88"), 1, 5, 5}};
        QTest::newRow("two of the same name join, with the later ports' numbers")
            << in + family(instrument, 21) << out + family(instrument, 31)
            << Devices{{instrument, 21, 25, 35}};
        QTest::newRow("two of the same name join in pieces")
            << in + QStringList{QStringLiteral("21;%1 Port5").arg(instrument)} << out
            << Devices{{instrument, 3, 21, 15}};
        QTest::newRow("in the order of the communication input number")
            << family(QStringLiteral("Corvan TARN/TERN B"), 1) +
                   family(QStringLiteral("Corvan TARN/TERN C"), 11) +
                   family(QStringLiteral("Corvan TARN/TERN A"), 6)
            << family(QStringLiteral("Corvan TARN/TERN A"), 1) +
                   family(QStringLiteral("Corvan TARN/TERN B"), 6) +
                   family(QStringLiteral("Corvan TARN/TERN C"), 11)
            << Devices{{QStringLiteral("Corvan TARN/TERN B"), 1, 5, 10},
                       {QStringLiteral("Corvan TARN/TERN A"), 6, 10, 5},
                       {QStringLiteral("Corvan TARN/TERN C"), 11, 15, 15}};
    }
    void recognition()
    {
        QFETCH(QStringList, inputs);
        QFETCH(QStringList, outputs);
        QTEST(recognizeDevicePorts(inputs, outputs), "devices");
    }
    void joinedNames()
    {
        const QStringList in = family(instrument, 1);
        const QStringList out = family(instrument, 11);
        QCOMPARE(joinedDeviceNames(in, out), QStringList());
        QCOMPARE(joinedDeviceNames(in + family(instrument, 6), out), QStringList{instrument});
        QCOMPARE(
            joinedDeviceNames(in, out + QStringList{QStringLiteral("9;%1 Port3").arg(instrument)}),
            QStringList{instrument});
        const QString second = QStringLiteral("Another Corvan TARN/TERN");
        QCOMPARE(joinedDeviceNames(in + in + family(second, 6) + family(second, 21), out),
                 QStringList({second, instrument}));
        // Of others there may be as many as there are.
        const QString stranger = QStringLiteral("Other Synth");
        QCOMPARE(joinedDeviceNames(in + family(stranger, 6) + family(stranger, 21), out),
                 QStringList());
    }
};

QTEST_GUILESS_MAIN(TestDevicePortList)
#include "tst_deviceportlist.moc"
