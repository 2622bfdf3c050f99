// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/MidiPortName.h"
#include "midi/jack/JackPortName.h"

#include <QtTest/QTest>

class TestJackNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFullNameBecomesDeviceAndEndpoint_data();
    void aFullNameBecomesDeviceAndEndpoint();
};

void TestJackNames::aFullNameBecomesDeviceAndEndpoint_data()
{
    QTest::addColumn<QString>("fullName");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("endpoint");
    QTest::addColumn<QString>("shownName");

    const auto row = [](const char *title, const char *fullName, const char *device,
                        const char *endpoint, const char *shownName) {
        QTest::newRow(title) << QString::fromUtf8(fullName) << QString::fromUtf8(device)
                             << QString::fromUtf8(endpoint) << QString::fromUtf8(shownName);
    };
    row("a2j capture with a number", "a2j:CORVAN TARN/TERN [20] (capture): CORVAN TARN/TERN Port1",
        "CORVAN TARN/TERN", "CORVAN TARN/TERN Port1", "CORVAN TARN/TERN Port1");
    row("a2j playback with a number",
        "a2j:CORVAN TARN/TERN [20] (playback): CORVAN TARN/TERN Port5", "CORVAN TARN/TERN",
        "CORVAN TARN/TERN Port5", "CORVAN TARN/TERN Port5");
    row("a2j capture without a number", "a2j:CORVAN TARN/TERN (capture): Port2", "CORVAN TARN/TERN",
        "Port2", "CORVAN TARN/TERN Port2");
    row("a2j playback without a number", "a2j:CORVAN TARN/TERN (playback): Port2",
        "CORVAN TARN/TERN", "Port2", "CORVAN TARN/TERN Port2");
    row("second a2j client of the name", "a2j-01:CORVAN TARN/TERN [128] (capture): Port3",
        "CORVAN TARN/TERN", "Port3", "CORVAN TARN/TERN Port3");
    row("second a2j client without a number", "a2j-12:CORVAN TARN/TERN (playback): Port3",
        "CORVAN TARN/TERN", "Port3", "CORVAN TARN/TERN Port3");
    row("a2j with the kernel's jack names",
        "a2j:CORVAN TARN/TERN [24] (capture): CORVAN TARN/TERN MIDI 4", "CORVAN TARN/TERN",
        "CORVAN TARN/TERN MIDI 4", "CORVAN TARN/TERN Port4");
    row("a2j device with brackets of its own", "a2j:Box [x] [20] (capture): One", "Box [x]", "One",
        "Box [x] One");
    row("a2j endpoint with a colon", "a2j:Box [20] (capture): One: Two", "Box", "One: Two",
        "Box One: Two");
    row("a2j without an endpoint", "a2j:Box [20] (capture): ", "Box", "", "Box Port #8");
    row("a2j in neither form", "a2j:Box [20]", "a2j", "Box [20]", "a2j Box [20]");
    row("a client that only begins like a2j", "a2jx:Box [20] (capture): One", "a2jx",
        "Box [20] (capture): One", "a2jx Box [20] (capture): One");
    row("Midi-Bridge capture", "Midi-Bridge:CORVAN TARN/TERN:(capture_0) CORVAN TARN/TERN Port1",
        "CORVAN TARN/TERN", "CORVAN TARN/TERN Port1", "CORVAN TARN/TERN Port1");
    row("Midi-Bridge playback", "Midi-Bridge:CORVAN TARN/TERN:(playback_4) CORVAN TARN/TERN MIDI 5",
        "CORVAN TARN/TERN", "CORVAN TARN/TERN MIDI 5", "CORVAN TARN/TERN Port5");
    row("Midi-Bridge device with a colon", "Midi-Bridge:Box: 2:(capture_10) One", "Box: 2", "One",
        "Box: 2 One");
    row("Midi-Bridge in no such form", "Midi-Bridge:Box One", "Midi-Bridge", "Box One",
        "Midi-Bridge Box One");
    row("any client", "system:midi_capture_1", "system", "midi_capture_1", "system midi_capture_1");
    row("port with colons", "client:a:b", "client", "a:b", "client a:b");
    row("no colon", "nonsense", "", "nonsense", "Unknown Device nonsense");
    row("nothing", "", "", "", "Unknown Device Port #8");
    row("beyond ASCII", "a2j:Gerät [7] (capture): Gerät Anschluß", "Gerät", "Gerät Anschluß",
        "Gerät Anschluß");
}

void TestJackNames::aFullNameBecomesDeviceAndEndpoint()
{
    QFETCH(QString, fullName);
    QFETCH(QString, device);
    QFETCH(QString, endpoint);
    QFETCH(QString, shownName);
    const JackPortName name = splitJackPortName(fullName);
    QCOMPARE(name.device, device);
    QCOMPARE(name.endpoint, endpoint);
    QCOMPARE(linuxMidiPortName(name.device, name.endpoint, 7), shownName);
}

QTEST_GUILESS_MAIN(TestJackNames)
#include "tst_jacknames.moc"
