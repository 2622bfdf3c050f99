// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"

#include <QtTest/QtTest>

class TestConstants : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void derivedStrings_data()
    {
        QTest::addColumn<QString>("constant");
        QTest::addColumn<QString>("value");
        QTest::newRow("EditorFileExtension") << EditorFileExtension << ".Q7V";
        QTest::newRow("EditorFileFilter") << EditorFileFilter << "Q7V Files (*.Q7V)";
        QTest::newRow("EditorOpenFileFilter") << EditorOpenFileFilter << "Q7V Files (*.Q7V)";
        QTest::newRow("VST2xSettingFileName") << VST2xSettingFileName << "Vst2xPlugins.xml";
        QTest::newRow("VST2xSettingFileNameForTrevia9orLater")
            << VST2xSettingFileNameForTrevia9orLater << "Vst2xPlugin SearchPaths.xml";
        QTest::newRow("preset bank")
            << PresetBankFile.arg(1) + EditorFileExtension << "BankPreset1.Q7V";
        QTest::newRow("BankNameValidator")
            << BankNameValidator << "[ !;#$%&'()+,-.0-9=@A-Z[\\]^_`a-z{}]*";
    }
    void derivedStrings()
    {
        QFETCH(QString, constant);
        QTEST(constant, "value");
    }

    void identifiersAreOneTypeDigitAndEightHexadecimalDigits_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::newRow("VDBypassID") << VDBypassID;
        QTest::newRow("BypassID") << BypassID;
        QTest::newRow("VDTrackControlVolumeID") << VDTrackControlVolumeID;
        QTest::newRow("TrackControlVolumeID") << TrackControlVolumeID;
        QTest::newRow("TrackControlPanID") << TrackControlPanID;
        QTest::newRow("VDTrackControlPanID") << VDTrackControlPanID;
        QTest::newRow("TrackControlNoAssignID") << TrackControlNoAssignID;
        QTest::newRow("VDTrackControlNoAssignID") << VDTrackControlNoAssignID;
        QTest::newRow("TrackControlQuickControlID") << TrackControlQuickControlID;
    }
    void identifiersAreOneTypeDigitAndEightHexadecimalDigits()
    {
        QFETCH(QString, identifier);
        static const QRegularExpression form(QStringLiteral("^[0-9][0-9a-f]{8}$"));
        QVERIFY(form.match(identifier).hasMatch());
    }

    void portNameNumberReplaceFindsTheFamilyNumber_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isFound");
        QTest::addColumn<QString>("replaced");
        QTest::newRow("usual") << "Synth Port5" << true << "Synth-5";
        QTest::newRow("several blanks") << "Synth   Port5" << true << "Synth-5";
        QTest::newRow("no blank") << "SynthPort5" << true << "Synth-5";
        QTest::newRow("two digits") << "Synth Port12" << true << "Synth-12";
        QTest::newRow("no number") << "Synth Port" << true << "Synth-";
        QTest::newRow("alone") << "Port5" << true << "-5";
        QTest::newRow("text behind") << "Synth Port5 in" << false << "Synth Port5 in";
        QTest::newRow("small letters") << "Synth port5" << false << "Synth port5";
        QTest::newRow("the last of two") << "Port1 Port2" << true << "Port1-2";
        QTest::newRow("empty") << "" << false << "";
    }
    void portNameNumberReplaceFindsTheFamilyNumber()
    {
        QFETCH(QString, name);
        QFETCH(bool, isFound);
        QVERIFY(PortNameNumberReplace.isValid());
        QCOMPARE(name.contains(PortNameNumberReplace), isFound);
        name.replace(PortNameNumberReplace, PortNameNumberDelimiter + QStringLiteral("\\1"));
        QTEST(name, "replaced");
    }

    void portNameFilterKnowsTheInstrument_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isFound");
        QTest::newRow("capitals") << "CORVAN TARN/TERN" << true;
        QTest::newRow("first capital") << "Corvan TARN/TERN" << true;
        QTest::newRow("mixed") << "CoRvAn TARN/TERN" << true;
        QTest::newRow("text around") << "USB Corvan TARN/TERN61 (2)" << true;
        QTest::newRow("small first letter") << "corvan TARN/TERN" << false;
        QTest::newRow("small model") << "Corvan tarn/tern" << false;
        QTest::newRow("no blank") << "CorvanTARN/TERN" << false;
        QTest::newRow("no slash") << "Corvan TARN TERN" << false;
        QTest::newRow("empty") << "" << false;
    }
    void portNameFilterKnowsTheInstrument()
    {
        QFETCH(QString, name);
        QVERIFY(PortNameFilter.isValid());
        QTEST(name.contains(PortNameFilter), "isFound");
    }

    void familyMembersAndKnobNames()
    {
        QCOMPARE(ActiveSensePort, 1);
        QCOMPARE(CommunicationPort, 5);
        QStringList names;
        for (const char *knob : LCDSelectAddressUpper) {
            names.append(QString::fromLatin1(knob));
        }
        QStringList expected;
        for (int row = 1; row <= 3; ++row) {
            for (const char column : {'A', 'B', 'C', 'D'}) {
                expected.append(QStringLiteral("knob%1%2").arg(QLatin1Char(column)).arg(row));
            }
        }
        QCOMPARE(names, expected);
    }
};

QTEST_GUILESS_MAIN(TestConstants)
#include "tst_constants.moc"
