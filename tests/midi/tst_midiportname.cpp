// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/MidiPortName.h"

#include <QtTest/QtTest>

class TestMidiPortName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("endpoint");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("name");
        QTest::newRow("device, a blank and the endpoint") << "Synth"
                                                          << "Port1" << 0 << "Synth Port1";
        QTest::newRow("a device's name in front of its port's does not show twice")
            << "Synth"
            << "Synth Port1" << 0 << "Synth Port1";
        QTest::newRow("every occurrence goes") << "Synth"
                                               << "Synth Synth Port1" << 0 << "Synth Port1";
        QTest::newRow("also one in the middle") << "a"
                                                << "Porta 1" << 0 << "a Port1";
        QTest::newRow("only with a blank behind it") << "Synth"
                                                     << "Synth" << 0 << "Synth Synth";
        QTest::newRow("case counts") << "Synth"
                                     << "SYNTH Port1" << 0 << "Synth SYNTH Port1";
        QTest::newRow("no pattern, only text") << "S.*"
                                               << "Sxx S.* Port1" << 0 << "S.* Sxx Port1";
        QTest::newRow("no device") << ""
                                   << "Port1" << 0 << "Unknown Device Port1";
        QTest::newRow("no device, and an endpoint that says so")
            << ""
            << "Unknown Device Port1" << 0 << "Unknown Device Port1";
        QTest::newRow("no endpoint") << "Synth"
                                     << "" << 2 << "Synth Port #3";
        QTest::newRow("neither") << ""
                                 << "" << 0 << "Unknown Device Port #1";
        QTest::newRow("a device named Port") << "Port"
                                             << "" << 0 << "Port #1";
        QTest::newRow("nothing left of the endpoint") << "Synth"
                                                      << "Synth " << 0 << "Synth ";
        QTest::newRow("a kernel's number stays") << "Synth"
                                                 << "Synth MIDI 1" << 0 << "Synth MIDI 1";
    }
    void names()
    {
        QFETCH(QString, device);
        QFETCH(QString, endpoint);
        QFETCH(int, index);
        QTEST(midiPortName(device, endpoint, index), "name");
    }

    void linuxNames_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("endpoint");
        QTest::addColumn<QString>("name");
        QTest::newRow("jack names known") << "Synth"
                                          << "Synth Port5"
                                          << "Synth Port5";
        QTest::newRow("a kernel that does not know them") << "Synth"
                                                          << "Synth MIDI 5"
                                                          << "Synth Port5";
        QTest::newRow("number alone") << "Synth"
                                      << "MIDI 1"
                                      << "Synth Port1";
        QTest::newRow("two digits") << "Synth"
                                    << "MIDI 12"
                                    << "Synth Port12";
        QTest::newRow("only at the end") << "Synth"
                                         << "MIDI 1 out"
                                         << "Synth MIDI 1 out";
        QTest::newRow("only with a number") << "Synth"
                                            << "Synth MIDI"
                                            << "Synth MIDI";
        QTest::newRow("only as a word") << "Synth"
                                        << "USBMIDI 1"
                                        << "Synth USBMIDI 1";
        QTest::newRow("a device whose name ends so") << "X MIDI 1"
                                                     << "X MIDI 1"
                                                     << "X MIDI 1 X Port1";
        QTest::newRow("no endpoint") << "Synth"
                                     << ""
                                     << "Synth Port #1";
    }
    void linuxNames()
    {
        QFETCH(QString, device);
        QFETCH(QString, endpoint);
        QTEST(linuxMidiPortName(device, endpoint, 0), "name");
    }
};

QTEST_GUILESS_MAIN(TestMidiPortName)
#include "tst_midiportname.moc"
