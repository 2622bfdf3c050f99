// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "tests/fonts/FontHarness.h"

#include <QtGui/QFontMetrics>
#include <QtTest/QtTest>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleFactory>

namespace
{

// The names of the control changes in the popup and on the LCD, where they have one.
struct ControlChange
{
    int number;
    const char *name;
    const char *displayName;
};
constexpr std::array controlChanges{
    ControlChange{0, "Bank Select MSB", "BankMSB"},
    ControlChange{1, "Modulation Depth", "ModDpth"},
    ControlChange{2, "CC#=002", "CC#=002"},
    ControlChange{5, "Portamento Time", "PrtmtTm"},
    ControlChange{6, "Data Entry MSB", "DataMSB"},
    ControlChange{7, "Channel Volume", "Volume"},
    ControlChange{10, "Pan", "Pan"},
    ControlChange{11, "Expression", "Exp"},
    ControlChange{32, "Bank Select LSB", "BankLSB"},
    ControlChange{38, "Data Entry LSB", "DataLSB"},
    ControlChange{64, "Hold1 (Damper)", "Hold1"},
    ControlChange{65, "Portamento ON/OFF", "PrtmtSw"},
    ControlChange{66, "Sostenuto", "Soste"},
    ControlChange{67, "Soft Pedal", "Soft"},
    ControlChange{71, "Filter Resonance", "FltReso"},
    ControlChange{72, "Release Time", "RelTim"},
    ControlChange{73, "Attack time", "AtkTim"},
    ControlChange{74, "Brightness", "Bright"},
    ControlChange{75, "Decay Time", "DcayTim"},
    ControlChange{76, "Vibrato Rate", "VibRate"},
    ControlChange{77, "Vibrato Depth", "VibDpth"},
    ControlChange{78, "Vibrato Delay", "VibDly"},
    ControlChange{91, "Reverb Send Level", "RevSend"},
    ControlChange{93, "Chorus Send Level", "ChoSend"},
    ControlChange{100, "RPN LSB", "RPN LSB"},
    ControlChange{101, "RPN MSB", "RPN MSB"},
    ControlChange{127, "CC#=127", "CC#=127"},
};

// Every character that a name can hold, at the length that its editor allows: fits whatever is
// typed.
QStringList namesOfOneCharacter(int length)
{
    QStringList result;
    for (char16_t c = u' '; c <= u'}'; ++c) {
        result.append(QString(length, QChar(c)));
    }
    return result;
}

QString padded(int number)
{
    const QString blanks(number < 10 ? 4 : number < 100 ? 2 : 0, QLatin1Char(' '));
    return blanks + QString::number(number) + QStringLiteral(" : ");
}

} // namespace

class TestFontTexts : public QObject
{
    Q_OBJECT

    std::unique_ptr<QStyle> m_style;

    // What an editor without a frame leaves for text: its margins of two pixels and the cursor.
    static constexpr int editorMargins = 5;

    static int width(QLatin1String family, const QString &text)
    {
        return QFontMetrics(widgetFont(family)).horizontalAdvance(text);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(loadApplicationFonts());
        m_style.reset(QStyleFactory::create(QStringLiteral("Windows")));
        QVERIFY(m_style);
    }

    void aTextFitsItsPlace_data()
    {
        QTest::addColumn<QLatin1String>("family");
        QTest::addColumn<QSize>("place");
        QTest::addColumn<QStringList>("texts");

        QTest::newRow("template number")
            << FontFamilyQRL10 << QSize(106, 14)
            << QStringList{QStringLiteral("Template No:50"), QStringLiteral("Template No:44")};
        QTest::newRow("control change number")
            << FontFamilyQRL8 << QSize(44, 15) << QStringList{QStringLiteral("127")};
        QTest::newRow("thirteen characters in the editor of the template name")
            << FontFamilyQRL8 << QSize(135 - editorMargins, 14) << namesOfOneCharacter(13);
        QTest::newRow("fifteen characters in the editor of the display name")
            << FontFamilyQRL8 << QSize(123 - editorMargins, 15) << namesOfOneCharacter(15);
        // Twelve capitals are wider than the editor, which then scrolls; names as makers give
        // them, a capital at the head of each word, fit.
        QTest::newRow("twelve characters in the editor of the instrument")
            << FontFamilyQRL8 << QSize(73 - editorMargins, 14)
            << QStringList{QStringLiteral("OrchestraPro"), QStringLiteral("ElectroPiano"),
                           QStringLiteral("DrumMachine2"), QStringLiteral("WaveMorph_64"),
                           QStringLiteral("MonoBass-303"), QStringLiteral("StringEnsmbl")};

        QStringList cells{QStringLiteral("CC000"),     QStringLiteral("CC127"),
                          QStringLiteral("CC044"),     QStringLiteral("Volume"),
                          QStringLiteral("No Assign"), QStringLiteral("QuickCtrl")};
        for (const ControlChange &change : controlChanges) {
            cells.append(QString::fromLatin1(change.displayName));
        }
        // Air on both sides, or the names of neighbouring knobs run together.
        QTest::newRow("lines of an LCD cell, with room")
            << FontFamilyQRL8 << QSize(71 - 2 * 8, 21 / 2) << cells;

        QStringList names;
        for (const ControlChange &change : controlChanges) {
            names.append(padded(change.number) + QString::fromLatin1(change.name));
        }
        for (int number = 0; number < 128; ++number) {
            names.append(padded(number) +
                         QStringLiteral("CC#=%1").arg(number, 3, 10, QLatin1Char('0')));
        }
        // An item's text keeps three pixels from either edge of its row.
        QTest::newRow("control changes in their popup")
            << FontFamilyQRL8 << QSize(150 - 6, 11) << names;

        QStringList templates;
        for (const QString &name : namesOfOneCharacter(13)) {
            templates.append(QStringLiteral("50 : ") + name);
        }
        QTest::newRow("templates in their popup")
            << FontFamilyQRL8 << QSize(138 - 6, 11) << templates;

        QStringList library;
        for (const QString &name : namesOfOneCharacter(13)) {
            library.append(QStringLiteral("50  ") + name);
        }
        QTest::newRow("templates in the lists of the library")
            << FontFamilyQRL10 << QSize(198 - 2 * 5, 15) << library;

        const QStringList messages{
            QStringLiteral("TARN/TERN Remote Editor Ver.1.1.8"),
            QStringLiteral("Unsaved changes. Exit anyway?"),
            QStringLiteral(" MIDI port is not found."),
            QStringLiteral(" Save changes?"),
            QStringLiteral("Are you sure?"),
            QStringLiteral("Scanning VSTi"),
            QStringLiteral("Receiving"),
            QStringLiteral("Sending"),
        };
        QTest::newRow("messages of the panels in the large font")
            << FontFamilyQRL10 << QSize(263, 14) << messages;
        QTest::newRow("messages of the panels in the small font")
            << FontFamilyQRL8 << QSize(263, 14) << messages;
        QTest::newRow("file under the scan")
            << FontFamilyQRL8 << QSize(263, 12)
            << QStringList{QStringLiteral("[File: Orchestral Strings Ensemble x64.vst3]"),
                           QStringLiteral("[File: Vintage_Synthesizer_1978_(64bit).so]")};

        const QStringList ports{
            QStringLiteral("Not Assigned"),
            QStringLiteral("Corvan TARN/TERN"),
            QStringLiteral("CORVAN TARN/TERN MIDI"),
            QStringLiteral("Corvan TARN/TERN USB MIDI Interface 2"),
        };
        // Up to 229 pixels the popup pads them with blanks, 239 are on show in the panel.
        QTest::newRow("ports in their popup") << FontFamilyQRL8 << QSize(229, 15) << ports;
        QTest::newRow("port in the message that it can't be opened")
            << FontFamilyQRL10 << QSize(263, 14) << ports;

        QTest::newRow("file of the template view")
            << FontFamilyQRL8 << QSize(234, 13)
            << QStringList{QStringLiteral("UserBank001.Q7V"),
                           QStringLiteral("Live set of the summer tour (2).Q7V")};
        QTest::newRow("file of the library view")
            << FontFamilyQRL8 << QSize(153, 13)
            << QStringList{QStringLiteral("BankPreset1.Q7V"),
                           QStringLiteral("Live set of the tour (2).Q7V")};
    }
    void aTextFitsItsPlace()
    {
        QFETCH(QLatin1String, family);
        QFETCH(QSize, place);
        QFETCH(QStringList, texts);
        QVERIFY(QFontMetrics(widgetFont(family)).height() <= place.height());
        for (const QString &text : texts) {
            QVERIFY2(width(family, text) <= place.width(),
                     qPrintable(QStringLiteral("\"%1\" is %2 wide, its place %3")
                                    .arg(text)
                                    .arg(width(family, text))
                                    .arg(place.width())));
        }
    }

    void twoLinesFitACellOfTheLcd()
    {
        const QFontMetrics metrics(widgetFont(FontFamilyQRL8));
        const QSize size = metrics.size(0, QStringLiteral("CC127\nPrtmtTm"));
        QVERIFY2(size.height() <= 21, qPrintable(QString::number(size.height())));
    }

    void theMenusFitTheMenuBar()
    {
        QWidget window;
        QMenuBar bar(&window);
        bar.setStyle(m_style.get());
        bar.setNativeMenuBar(false);
        bar.setFont(widgetFont(FontFamilyQRL8));
        bar.setGeometry(0, 0, 97, 15);
        for (const QString &text : {MenuFileMenu, MenuEditMenu, MenuHelpMenu}) {
            bar.addMenu(text);
        }
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (const QAction *action : bar.actions()) {
            const QRect place = bar.actionGeometry(const_cast<QAction *>(action));
            QVERIFY2(!place.isEmpty() && place.right() < 97, qPrintable(action->text()));
        }
    }

    void aMenuIsNarrowerThanTheWindow()
    {
        QMenu menu;
        menu.setStyle(m_style.get());
        menu.setFont(widgetFont(FontFamilyQRL8));
        for (const QString &text :
             {MenuFileNew, MenuFileOpen, MenuFileSave, MenuFileSaveAs, MenuFileImportTemplate,
              MenuFileSetup, MenuFileVSTiDatabase, MenuEditCopy, MenuEditPaste, MenuEditInitialize,
              MenuEditResetStored, MenuEditRestoreHW, MenuEditResetFactory, MenuHelpManual,
              MenuHelpAbout}) {
            menu.addAction(text)->setShortcut(QKeySequence(QStringLiteral("Ctrl+M")));
        }
        QVERIFY2(menu.sizeHint().width() <= 265,
                 qPrintable(QString::number(menu.sizeHint().width())));
    }

    void numbersOfDifferentLengthStandInOneColumn()
    {
        QCOMPARE(width(FontFamilyQRL8, padded(9)), width(FontFamilyQRL8, padded(100)));
        QCOMPARE(width(FontFamilyQRL8, padded(99)), width(FontFamilyQRL8, padded(100)));
    }

    void aLongNameInAnEditorIsNotScrolledAway_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QString>("text");
        QTest::newRow("template name") << QSize(135, 14) << QStringLiteral("WARM MM STRNG");
        QTest::newRow("display name") << QSize(123, 15) << QStringLiteral("WWWWWWWWWWWWWWW");
        QTest::newRow("instrument") << QSize(73, 14) << QStringLiteral("DrumMachine2");
    }
    // On the real widget: with the cursor at the end, the first letter still stands at the margin.
    void aLongNameInAnEditorIsNotScrolledAway()
    {
        QFETCH(QSize, size);
        QFETCH(QString, text);
        QLineEdit editor;
        editor.setStyle(m_style.get());
        editor.setFrame(false);
        editor.setFont(widgetFont(FontFamilyQRL8));
        editor.resize(size);
        editor.setText(text);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        editor.setCursorPosition(int(text.size()));
        editor.repaint();
        QCOMPARE(editor.cursorPositionAt(QPoint(3, size.height() / 2)), 0);
    }
};

QTEST_MAIN(TestFontTexts)
#include "tst_fonttexts.moc"
