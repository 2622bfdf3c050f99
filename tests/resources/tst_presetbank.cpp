// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "file/EditorFile.h"
#include "file/EditorFileHarness.h"
#include "fonts/ApplicationFonts.h"
#include "memory/RemoteMemory.h"
#include "vsti/VSTiInfo.h"
#include "widgets/CText.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

// The preset bank that comes with the program, through the engine that reads it at start.

namespace
{

constexpr int TemplateCount = 50;
constexpr int KnobCount = 12;
constexpr int NeutralTemplate = 49;
constexpr int Remote = 0;
constexpr int ControlChange = 1;
// A cell of the template view's display.
constexpr int CellWidth = 71;

// Bank select, data entry, portamento and velocity of the next note, parameter numbers and channel
// mode: turned by a knob, they would do harm.
bool isForKnobs(int number)
{
    return number != 0 && number != 6 && number != 32 && number != 38 && number != 84 &&
           number != 88 && (number < 96 || number > 101) && number < 120;
}

} // namespace

class TestPresetBank : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyValueIsTakenSoThatSavingGivesTheSameBytes();
    void theEditBufferEqualsTheStoredTemplates();
    void allTemplatesButTheLastHaveNamesOfTheirOwn();
    void namesFitTheInstrumentsFields();
    void namesHaveOnlyCharactersThatTheEditorTakes();
    void noTemplateTurnsOneControlChangeTwice();
    void noKnobHasANumberThatSaysMoreThanAValue();
    void noKnobNameIsCutOnTheDisplay();
    void controlChangeTemplatesNameNoRemoteParameter();
    void remoteTemplatesTurnParametersThatHaveNames();
    void theLastTemplateIsWhatInitializingWrites();

private:
    QString text(int number, int knob, int parameter) const
    {
        return m_api.getParamQString(ParamAddress(Bank::Preset, number, knob, parameter));
    }
    QString name(int number) const { return text(number, 13, -1); }
    QString instrument(int number) const { return text(number, 15, -1); }
    int value(int number, int knob, int parameter) const
    {
        return valueAt(m_api, ParamAddress(Bank::Preset, number, knob, parameter));
    }
    bool isRemote(int number) const { return value(number, 14, -1) == Remote; }

    RemoteMemAPI m_api;
    QString m_path = QStringLiteral(TRN_SOURCE_DIR "/resources/BankPreset1.Q7V");
};

void TestPresetBank::initTestCase()
{
    QVERIFY(loadApplicationFonts());
    makeNineBanks(&m_api);
    QFile file(m_path);
    QString error;
    QVERIFY2(EditorFile::load(&m_api, Bank::Preset, &file, false, &error), qPrintable(error));
}

// A value that the memory refuses would leave the one before, and the saved file would differ.
void TestPresetBank::everyValueIsTakenSoThatSavingGivesTheSameBytes()
{
    RemoteMemAPI api;
    makeNineBanks(&api);
    QFile file(m_path);
    QString error;
    QVERIFY2(EditorFile::load(&api, Bank::Stored, &file, true, &error), qPrintable(error));
    const QTemporaryDir folder;
    QFile saved(folder.filePath(QStringLiteral("Saved.Q7V")));
    QVERIFY2(EditorFile::save(&api, Bank::Stored, &saved, &error), qPrintable(error));
    QCOMPARE(bytesOf(saved.fileName()), bytesOf(m_path));
}

void TestPresetBank::theEditBufferEqualsTheStoredTemplates()
{
    RemoteMemAPI api;
    makeNineBanks(&api);
    QFile file(m_path);
    QVERIFY(EditorFile::load(&api, Bank::Stored, &file, true, nullptr));
    QCOMPARE(contentOf(api, Bank::EditBuffer, false), contentOf(api, Bank::Stored, false));
}

void TestPresetBank::allTemplatesButTheLastHaveNamesOfTheirOwn()
{
    QStringList names;
    for (int number = 0; number < NeutralTemplate; ++number) {
        QVERIFY2(!name(number).trimmed().isEmpty(), qPrintable(QString::number(number + 1)));
        QCOMPARE(name(number), name(number).trimmed());
        QVERIFY2(!names.contains(name(number)), qPrintable(name(number)));
        names.append(name(number));
    }
    QCOMPARE(name(NeutralTemplate), QString());
}

void TestPresetBank::namesFitTheInstrumentsFields()
{
    for (int number = 0; number < TemplateCount; ++number) {
        QVERIFY2(name(number).size() <= 13, qPrintable(name(number)));
        QVERIFY2(instrument(number).size() <= 12, qPrintable(instrument(number)));
        for (int knob = 0; knob < KnobCount; ++knob) {
            const QString shown = text(number, knob, 0);
            QVERIFY2(!shown.isEmpty() && shown.size() <= 15, qPrintable(shown));
            QCOMPARE(text(number, knob, 3).size(), 9);
        }
    }
}

void TestPresetBank::namesHaveOnlyCharactersThatTheEditorTakes()
{
    const auto isTaken = [](const QString &name) {
        return std::all_of(name.cbegin(), name.cend(),
                           [](QChar c) { return c >= QLatin1Char(' ') && c <= QLatin1Char('}'); });
    };
    for (int number = 0; number < TemplateCount; ++number) {
        QVERIFY2(isTaken(name(number)), qPrintable(name(number)));
        for (int knob = 0; knob < KnobCount; ++knob) {
            QVERIFY2(isTaken(text(number, knob, 0)), qPrintable(text(number, knob, 0)));
        }
    }
}

void TestPresetBank::noTemplateTurnsOneControlChangeTwice()
{
    for (int number = 0; number < TemplateCount; ++number) {
        QSet<int> numbers;
        QSet<QString> names;
        for (int knob = 0; knob < KnobCount; ++knob) {
            numbers.insert(value(number, knob, 1));
            names.insert(text(number, knob, 0));
        }
        QVERIFY2(numbers.size() == KnobCount, qPrintable(name(number)));
        QVERIFY2(names.size() == KnobCount, qPrintable(name(number)));
    }
}

void TestPresetBank::noKnobHasANumberThatSaysMoreThanAValue()
{
    for (int number = 0; number < TemplateCount; ++number) {
        for (int knob = 0; knob < KnobCount; ++knob) {
            QVERIFY2(isForKnobs(value(number, knob, 1)), qPrintable(text(number, knob, 0)));
        }
    }
}

void TestPresetBank::noKnobNameIsCutOnTheDisplay()
{
    QWidget view;
    view.setFont(QFont(FontFamilyQRL8));
    CText cell(&view);
    cell.resize(CellWidth, 21);
    adjustFont(&view);
    QCOMPARE(QFontInfo(cell.font()).family(), QString(FontFamilyQRL8));
    for (int number = 0; number < TemplateCount; ++number) {
        for (int knob = 0; knob < KnobCount; ++knob) {
            const QString shown = text(number, knob, 0);
            QCOMPARE(trimText(&cell, shown, CellWidth), shown);
        }
    }
    QVERIFY(trimText(&cell, QStringLiteral("MMMMMMMMMMMMMMM"), CellWidth) !=
            QStringLiteral("MMMMMMMMMMMMMMM"));
}

void TestPresetBank::controlChangeTemplatesNameNoRemoteParameter()
{
    int templates = 0;
    for (int number = 0; number < TemplateCount; ++number) {
        if (value(number, 14, -1) == ControlChange) {
            ++templates;
            QCOMPARE(instrument(number), QString());
            for (int knob = 0; knob < KnobCount; ++knob) {
                QCOMPARE(text(number, knob, 3), TrackControlNoAssignID);
            }
        }
    }
    QCOMPARE(templates, 42);
}

void TestPresetBank::remoteTemplatesTurnParametersThatHaveNames()
{
    const QTemporaryDir data;
    const QDir resources(QStringLiteral(TRN_SOURCE_DIR "/resources"));
    const VSTiInfo plugIns(resources, resources, QDir(data.path()));
    QStringList instruments;
    for (int number = 0; number < NeutralTemplate; ++number) {
        if (!isRemote(number)) {
            continue;
        }
        const QString stored = instrument(number);
        const QString full = plugIns.getVSTiNameFromVSTiExtensionName(stored);
        QVERIFY2(!full.isEmpty(), qPrintable(stored));
        QCOMPARE(plugIns.getVSTiExtensionNameFromVSTiName(full), stored);
        instruments.append(full);
        QSet<QString> assigned;
        for (int knob = 0; knob < KnobCount; ++knob) {
            const QString id = text(number, knob, 3);
            const QStringList path = plugIns.getParameterName(full, id);
            QVERIFY2(!path.isEmpty(), qPrintable(text(number, knob, 0)));
            QVERIFY2(id == TrackControlNoAssignID || !assigned.contains(id), qPrintable(id));
            assigned.insert(id);
        }
    }
    QCOMPARE(instruments, QStringList({QStringLiteral("Audio Track"), QStringLiteral("MIDI Track"),
                                       QStringLiteral("Generic"), QStringLiteral("TARN/TERN VST"),
                                       QStringLiteral("TARN/TERN VST"), QStringLiteral("Orskvale"),
                                       QStringLiteral("Tamberline")}));
}

void TestPresetBank::theLastTemplateIsWhatInitializingWrites()
{
    RemoteMemAPI api;
    makeNineBanks(&api);
    QFile file(m_path);
    QVERIFY(EditorFile::load(&api, Bank::Preset, &file, false, nullptr));
    api.initializeInitialTemplate();
    api.initializeTemplate(Bank::EditBuffer, 7);
    QCOMPARE(printedTemplate(api, Bank::EditBuffer, 7, "template", ""),
             printedTemplate(api, Bank::Preset, NeutralTemplate, "template", ""));
    for (int knob = 0; knob < KnobCount; ++knob) {
        QCOMPARE(text(NeutralTemplate, knob, 3), TrackControlNoAssignID);
    }
}

QTEST_MAIN(TestPresetBank)
#include "tst_presetbank.moc"
