// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/TemplateHarness.h"

#include "views/GeneralMidi.h"
#include "widgets/CPopupList.h"
#include "widgets/CPopupTree.h"

// The lists from which the template view takes values, by mouse and keyboard.
class TestEditorTemplatePopups : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { prepareApplication(); }

    void theTemplatePopupListsAllNamesAndGoesToTheChosenOne();
    void escapeLeavesTheTemplateAndReturnsTheFocus();
    void turningTheTemplateNumberClosesAnyOpenPopup_data();
    void turningTheTemplateNumberClosesAnyOpenPopup();
    void theVSTiPopupShowsTheInstrumentsAndTheCurrentOne();
    void whatTheTemplatesNameBecomesWithAnInstrument_data();
    void whatTheTemplatesNameBecomesWithAnInstrument();
    void theParameterPopupIsTheTreeOfTheParameters();
    void withoutParametersOfItsOwnTheTrackControlsAreOpen();
    void aChosenParameterGoesToTheCurrentKnobAndMakesItRemote();
    void ofTwoParametersWithOneIdentifierTheLastIsCurrent();
    void aFolderIsNoChoice();
    void theCCPopupGivesNumberAndName();
    void theNamesOfTheControlChanges();
    void aDoubleClickOpensWhatTheKnobIs_data();
    void aDoubleClickOpensWhatTheKnobIs();
    void returnOnAKnobOpensTheParametersOnlyWhenRemote();
    void whatIsChosenUnderAPanelIsNotTaken();
    void aPopupDiesWithItsWindow();
};

namespace
{

QStringList textsOf(const CPopupList *popup)
{
    QStringList texts;
    for (int row = 0; row < popup->getListWidget()->count(); ++row) {
        texts.append(popup->getListWidget()->item(row)->text());
    }
    return texts;
}

// The tree as lines, a blank per level, with a mark at what is open.
void appendLines(const QTreeWidgetItem *item, int level, QStringList *lines)
{
    const bool open = item->isExpanded();
    lines->append(QString(level, QLatin1Char(' ')) + item->text(0) +
                  QLatin1String(open && item->childCount() > 0 ? " v" : ""));
    for (int i = 0; i < item->childCount(); ++i) {
        appendLines(item->child(i), level + 1, lines);
    }
}

QStringList linesOf(const QTreeWidget *tree)
{
    QStringList lines;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        appendLines(tree->topLevelItem(i), 0, &lines);
    }
    return lines;
}

QTreeWidgetItem *itemNamed(const QTreeWidget *tree, const QString &name)
{
    return tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

void clickRow(const CPopupList *popup, int row)
{
    CPopupListWidget *list = popup->getListWidget();
    list->scrollToItem(list->item(row));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(row)).center());
}

void clickItem(QTreeWidget *tree, const QTreeWidgetItem *item)
{
    tree->scrollToItem(item);
    QRect place = tree->visualItemRect(item);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                      QPoint(place.left() + 4, place.center().y()));
}

} // namespace

void TestEditorTemplatePopups::theTemplatePopupListsAllNamesAndGoesToTheChosenOne()
{
    TemplateRun run;
    run.api.setParam(ParamAddress(0, 0, 13, -1), QStringLiteral("First"));
    run.api.setParam(ParamAddress(0, 9, 13, -1), QStringLiteral("Tenth"));
    run.api.setParam(ParamAddress(0, 52, -1, -1), 9);
    Answers answers;
    auto *button = run.get<COnOffButton>("btnTemplate");
    answers.expect<CPopupList>([&](CPopupList *popup) {
        QCOMPARE(popup->size(), QSize(140, 552));
        QCOMPARE(popup->getListWidget()->gridSize(), QSize(138, 11));
        QCOMPARE(popup->font(), run.window->font());
        // To the right of the button, at its top.
        QCOMPARE(popup->pos(), button->mapToGlobal(QPoint(button->width(), 0)));
        const QStringList texts = textsOf(popup);
        QCOMPARE(texts.size(), 50);
        QCOMPARE(texts.at(0), QStringLiteral("  1 : First"));
        QCOMPARE(texts.at(8), QStringLiteral("  9 : "));
        QCOMPARE(texts.at(9), QStringLiteral("10 : Tenth"));
        QCOMPARE(texts.at(49), QStringLiteral("50 : "));
        QCOMPARE(popup->getListWidget()->currentRow(), 9);
        clickRow(popup, 41);
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(run.current(), 41);
    QTRY_VERIFY(button->hasFocus());
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::escapeLeavesTheTemplateAndReturnsTheFocus()
{
    TemplateRun run;
    Answers answers;
    auto *button = run.get<COnOffButton>("btnTemplate");
    answers.expect<CPopupList>([](CPopupList *popup) {
        QTest::keyClick(popup->getListWidget(), Qt::Key_Down);
        QTest::keyClick(popup->getListWidget(), Qt::Key_Escape);
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(run.current(), 0);
    QTRY_VERIFY(button->hasFocus());
    // And by keys alone.
    answers.expect<CPopupList>([](CPopupList *popup) {
        QTest::keyClick(popup->getListWidget(), Qt::Key_Down);
        QTest::keyClick(popup->getListWidget(), Qt::Key_Return);
    });
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(run.current(), 1);
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::turningTheTemplateNumberClosesAnyOpenPopup_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("templates") << QStringLiteral("btnTemplate");
    QTest::newRow("instruments") << QStringLiteral("btnVSTiName");
    QTest::newRow("parameters") << QStringLiteral("btnRemoteControlParameter");
    QTest::newRow("control changes") << QStringLiteral("btnCCNumberAndDisplayName");
}

void TestEditorTemplatePopups::turningTheTemplateNumberClosesAnyOpenPopup()
{
    QFETCH(QString, button);
    TemplateRun run;
    run.useRack();
    run.api.setParam(FileEdit, 0);
    Answers answers;
    answers.expect<PopupWindow>([&](PopupWindow *popup) {
        // The instrument's number comes on another thread.
        std::thread([&] { run.api.setParam(ParamAddress(0, 52, -1, -1), 7); }).join();
        QVERIFY(popup->isVisible());
        const QPointer<PopupWindow> guard(popup);
        QTRY_VERIFY_WITH_TIMEOUT(guard.isNull() || !guard->isVisible(), 2000);
    });
    QTest::mouseClick(run.view->findChild<QWidget *>(button), Qt::LeftButton);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    QCOMPARE(run.current(), 7);
    QCOMPARE(run.templateName(), QString());
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::theVSTiPopupShowsTheInstrumentsAndTheCurrentOne()
{
    TemplateRun run;
    run.useRack();
    run.get<CLineEdit>("editVSTiName")->setText(ShortSynth);
    Answers answers;
    answers.expect<CPopupList>([&](CPopupList *popup) {
        const QStringList names{LongSynth, ShortSynth, AudioTrackName, MIDITrackName, GenericName};
        QCOMPARE(textsOf(popup), names);
        QCOMPARE(popup->size(), QSize(160, 5 * 11 + 2));
        QCOMPARE(popup->getListWidget()->gridSize(), QSize(158, 11));
        QCOMPARE(popup->getListWidget()->currentItem()->text(), ShortSynth);
        QTest::keyClick(popup->getListWidget(), Qt::Key_Escape);
    });
    auto *button = run.get<COnOffButton>("btnVSTiName");
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(run.vstiName(), ShortSynth);
    QTRY_VERIFY(button->hasFocus());
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::whatTheTemplatesNameBecomesWithAnInstrument_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("instrument");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("shortName");
    const QString none;
    const QString halcyon = QStringLiteral("Halcyon");
    const QString organ = QStringLiteral("Grand Organs");
    const QString organShort = QStringLiteral("GrandOrgans1");
    QTest::newRow("an empty name takes the instrument's, cut, without the blank there")
        << none << none << 0 << organ << organShort;
    QTest::newRow("an empty name takes the instrument's")
        << none << halcyon << 1 << halcyon << halcyon;
    QTest::newRow("a name that came from the instrument follows")
        << halcyon << halcyon << 0 << organ << organShort;
    QTest::newRow("a cut name follows") << organ << organShort << 1 << halcyon << halcyon;
    QTest::newRow("a changed name stays")
        << QStringLiteral("Mine") << halcyon << 0 << QStringLiteral("Mine") << organShort;
    QTest::newRow("a name beside no instrument stays")
        << QStringLiteral("Mine") << none << 1 << QStringLiteral("Mine") << halcyon;
    QTest::newRow("an empty name takes a track's")
        << none << none << 2 << QStringLiteral("Audio Track") << QStringLiteral("Audio Track");
}

void TestEditorTemplatePopups::whatTheTemplatesNameBecomesWithAnInstrument()
{
    QFETCH(QString, before);
    QFETCH(QString, instrument);
    QFETCH(int, row);
    QFETCH(QString, after);
    QFETCH(QString, shortName);
    TemplateRun run;
    run.useRack();
    run.get<CLineEdit>("editTemplateName")->setText(before);
    run.get<CLineEdit>("editVSTiName")->setText(instrument);
    Answers answers;
    answers.expect<CPopupList>([row](CPopupList *popup) { clickRow(popup, row); });
    QTest::mouseClick(run.get<COnOffButton>("btnVSTiName"), Qt::LeftButton);
    QCOMPARE(run.templateName(), after);
    QCOMPARE(run.vstiName(), shortName);
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::theParameterPopupIsTheTreeOfTheParameters()
{
    TemplateRun run;
    run.useRack();
    run.get<CLineEdit>("editVSTiName")->setText(ShortSynth);
    run.setKnob(0, "", 0, 0, "204143dff");
    Answers answers;
    answers.expect<CPopupTree>([&](CPopupTree *popup) {
        QCOMPARE(popup->size(), QSize(200, 277));
        QCOMPARE(popup->font(), run.window->font());
        const QTreeWidget *tree = popup->getTreeWidget();
        QCOMPARE(tree->currentItem()->text(0), QStringLiteral("No Assign"));
        const QStringList lines = linesOf(tree);
        QStringList wanted{QStringLiteral("Track Control v"), QStringLiteral(" Volume"),
                           QStringLiteral(" Pan Left-Right"), QStringLiteral(" No Assign"),
                           QStringLiteral(" QuickCtrl v")};
        for (int n = 1; n <= 8; ++n) {
            wanted.append(QStringLiteral("  QuickCtrl%1").arg(n));
        }
        wanted << QStringLiteral("Halcyon v") << QStringLiteral(" Output Level")
               << QStringLiteral(" Filter") << QStringLiteral("  Cutoff")
               << QStringLiteral("  Envelope")
               << QStringLiteral("   Attack Time Of The Very Slow Kind")
               << QStringLiteral(" Own Volume");
        QCOMPARE(lines, wanted);
        QTest::keyClick(popup->getTreeWidget(), Qt::Key_Escape);
    });
    auto *button = run.get<COnOffButton>("btnRemoteControlParameter");
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(button->hasFocus());
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::withoutParametersOfItsOwnTheTrackControlsAreOpen()
{
    TemplateRun run;
    run.useRack();
    run.get<CLineEdit>("editVSTiName")->setText(QStringLiteral("Nobody"));
    Answers answers;
    answers.expect<CPopupTree>([](CPopupTree *popup) {
        QCOMPARE(popup->getTreeWidget()->topLevelItemCount(), 1);
        QVERIFY(popup->getTreeWidget()->topLevelItem(0)->isExpanded());
        QTest::keyClick(popup->getTreeWidget(), Qt::Key_Escape);
    });
    QTest::mouseClick(run.get<COnOffButton>("btnRemoteControlParameter"), Qt::LeftButton);
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::aChosenParameterGoesToTheCurrentKnobAndMakesItRemote()
{
    TemplateRun run;
    run.useRack();
    run.get<CLineEdit>("editVSTiName")->setText(ShortSynth);
    run.setControlType(1);
    QTest::mouseClick(run.button(4), Qt::LeftButton);
    const QString neighbour = run.knob(3);
    Answers answers;
    answers.expect<CPopupTree>([](CPopupTree *popup) {
        QTreeWidget *tree = popup->getTreeWidget();
        itemNamed(tree, QStringLiteral("Filter"))->setExpanded(true);
        clickItem(tree, itemNamed(tree, QStringLiteral("Cutoff")));
    });
    QTest::mouseClick(run.get<COnOffButton>("btnRemoteControlParameter"), Qt::LeftButton);
    QVERIFY(answers.allGiven());
    QVERIFY(run.knob(4).endsWith(QStringLiteral("|200000002")));
    QCOMPARE(run.knob(3), neighbour);
    QCOMPARE(run.controlType(), 0);
    QCOMPARE(run.cell(4)->text(), QStringLiteral("Cutoff"));
    QCOMPARE(run.get<CLineEdit>("txtRemoteControlParameter")->text(),
             QStringLiteral("Filter - Cutoff"));
    // It is current the next time.
    answers.expect<CPopupTree>([](CPopupTree *popup) {
        QCOMPARE(popup->getTreeWidget()->currentItem()->text(0), QStringLiteral("Cutoff"));
        QTest::keyClick(popup->getTreeWidget(), Qt::Key_Escape);
    });
    QTest::mouseClick(run.get<COnOffButton>("btnRemoteControlParameter"), Qt::LeftButton);
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::ofTwoParametersWithOneIdentifierTheLastIsCurrent()
{
    TemplateRun run;
    run.useRack();
    run.get<CLineEdit>("editVSTiName")->setText(ShortSynth);
    run.setKnob(0, "", 0, 0, "100000401");
    Answers answers;
    answers.expect<CPopupTree>([](CPopupTree *popup) {
        QCOMPARE(popup->getTreeWidget()->currentItem()->text(0), QStringLiteral("Own Volume"));
        QTest::keyClick(popup->getTreeWidget(), Qt::Key_Escape);
    });
    QTest::mouseClick(run.get<COnOffButton>("btnRemoteControlParameter"), Qt::LeftButton);
    QVERIFY(answers.allGiven());
}

void TestEditorTemplatePopups::aFolderIsNoChoice()
{
    TemplateRun run;
    run.useRack();
    run.get<CLineEdit>("editVSTiName")->setText(ShortSynth);
    run.setControlType(1);
    const QString before = run.knob(0);
    Answers answers;
    answers.expect<CPopupTree>([](CPopupTree *popup) {
        QTreeWidget *tree = popup->getTreeWidget();
        QTreeWidgetItem *folder = itemNamed(tree, QStringLiteral("Filter"));
        tree->setCurrentItem(folder);
        QTest::keyClick(tree, Qt::Key_Return);
        QVERIFY(popup->isVisible());
        QTest::keyClick(tree, Qt::Key_Escape);
    });
    QTest::mouseClick(run.get<COnOffButton>("btnRemoteControlParameter"), Qt::LeftButton);
    QVERIFY(answers.allGiven());
    QCOMPARE(run.knob(0), before);
    QCOMPARE(run.controlType(), 1);
}

void TestEditorTemplatePopups::theCCPopupGivesNumberAndName()
{
    TemplateRun run;
    run.useRack();
    run.setControlType(0);
    run.setKnob(0, "Old", 10, 1, "100000401");
    Answers answers;
    answers.expect<CPopupList>([](CPopupList *popup) {
        QCOMPARE(popup->size(), QSize(170, 277));
        QCOMPARE(popup->getListWidget()->gridSize(), QSize(150, 11));
        const QStringList texts = textsOf(popup);
        QCOMPARE(texts.size(), 128);
        QCOMPARE(texts.at(7), QStringLiteral("    7 : Channel Volume"));
        QCOMPARE(texts.at(10), QStringLiteral("  10 : Pan"));
        QCOMPARE(texts.at(127), QStringLiteral("127 : CC#=127"));
        QCOMPARE(popup->getListWidget()->currentRow(), 10);
        clickRow(popup, 74);
    });
    auto *button = run.get<COnOffButton>("btnCCNumberAndDisplayName");
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(answers.allGiven());
    QCOMPARE(run.knob(0), QStringLiteral("Bright|74|1|100000401"));
    QCOMPARE(run.controlType(), 1);
    QCOMPARE(run.cell(0)->text(), QStringLiteral("CC074\nBright"));
    QTRY_VERIFY(button->hasFocus());
}

void TestEditorTemplatePopups::theNamesOfTheControlChanges()
{
    struct Row
    {
        const char *name;
        const char *display;
    };
    const QHash<int, Row> named{{0, {"Bank Select MSB", "BankMSB"}},
                                {1, {"Modulation Depth", "ModDpth"}},
                                {5, {"Portamento Time", "PrtmtTm"}},
                                {6, {"Data Entry MSB", "DataMSB"}},
                                {7, {"Channel Volume", "Volume"}},
                                {10, {"Pan", "Pan"}},
                                {11, {"Expression", "Exp"}},
                                {32, {"Bank Select LSB", "BankLSB"}},
                                {38, {"Data Entry LSB", "DataLSB"}},
                                {64, {"Hold1 (Damper)", "Hold1"}},
                                {65, {"Portamento ON/OFF", "PrtmtSw"}},
                                {66, {"Sostenuto", "Soste"}},
                                {67, {"Soft Pedal", "Soft"}},
                                {71, {"Filter Resonance", "FltReso"}},
                                {72, {"Release Time", "RelTim"}},
                                {73, {"Attack time", "AtkTim"}},
                                {74, {"Brightness", "Bright"}},
                                {75, {"Decay Time", "DcayTim"}},
                                {76, {"Vibrato Rate", "VibRate"}},
                                {77, {"Vibrato Depth", "VibDpth"}},
                                {78, {"Vibrato Delay", "VibDly"}},
                                {91, {"Reverb Send Level", "RevSend"}},
                                {93, {"Chorus Send Level", "ChoSend"}},
                                {100, {"RPN LSB", "RPN LSB"}},
                                {101, {"RPN MSB", "RPN MSB"}}};
    for (int number = 0; number < 128; ++number) {
        const QByteArray plain = "CC#=" + QByteArray::number(number).rightJustified(3, '0');
        const Row row = named.value(number, {plain.constData(), plain.constData()});
        const auto index = static_cast<std::size_t>(number);
        QCOMPARE(QByteArray(GeneralMidiCCName[index]), QByteArray(row.name));
        QCOMPARE(QByteArray(GeneralMidiDisplayName[index]), QByteArray(row.display));
        QVERIFY(qstrlen(GeneralMidiDisplayName[index]) <= 7);
    }
}

void TestEditorTemplatePopups::aDoubleClickOpensWhatTheKnobIs_data()
{
    QTest::addColumn<bool>("daw");
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("tree");
    QTest::newRow("Other, Remote: control changes") << false << 0 << false;
    QTest::newRow("Other, CC: control changes") << false << 1 << false;
    QTest::newRow("DAW, Remote: parameters") << true << 0 << true;
    QTest::newRow("DAW, CC: control changes") << true << 1 << false;
}

void TestEditorTemplatePopups::aDoubleClickOpensWhatTheKnobIs()
{
    QFETCH(bool, daw);
    QFETCH(int, type);
    QFETCH(bool, tree);
    TemplateRun run;
    if (daw) {
        run.useRack();
    }
    run.setControlType(type);
    Answers answers;
    const auto look = [&](PopupWindow *popup, bool isTree) {
        QCOMPARE(isTree, tree);
        // Beside the knob.
        QCOMPARE(popup->pos(), run.button(6)->mapToGlobal(QPoint(run.button(6)->width(), 0)));
        popup->close();
    };
    if (tree) {
        answers.expect<CPopupTree>([&](CPopupTree *popup) { look(popup, true); });
    } else {
        answers.expect<CPopupList>([&](CPopupList *popup) { look(popup, false); });
    }
    QTest::mouseClick(run.button(6), Qt::LeftButton);
    QTest::mouseDClick(run.button(6), Qt::LeftButton);
    QVERIFY(answers.allGiven());
    QCOMPARE(run.view->getCurrentKnob(), 6);
    QTRY_VERIFY(run.button(6)->hasFocus());
    QVERIFY(!run.button(6)->isDown());
}

void TestEditorTemplatePopups::returnOnAKnobOpensTheParametersOnlyWhenRemote()
{
    TemplateRun run;
    Answers answers;
    QTest::mouseClick(run.button(2), Qt::LeftButton);
    // "Other", then CC, then a locked window: nothing opens, and nothing that waits is missed.
    run.setControlType(0);
    QTest::keyClick(run.button(2), Qt::Key_Return);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    run.useRack();
    run.setControlType(1);
    QTest::keyClick(run.button(2), Qt::Key_Enter);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    run.setControlType(0);
    run.window->windowLock();
    QTest::keyClick(run.button(2), Qt::Key_Return);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    run.window->windowUnlock();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        answers.expect<CPopupTree>([](CPopupTree *popup) {
            clickItem(popup->getTreeWidget(),
                      itemNamed(popup->getTreeWidget(), QStringLiteral("QuickCtrl5")));
        });
        QTest::keyClick(run.button(2), key);
        QVERIFY(answers.allGiven());
        QVERIFY(run.knob(2).endsWith(QStringLiteral("|100000005")));
        QTRY_VERIFY(run.button(2)->hasFocus());
    }
}

void TestEditorTemplatePopups::whatIsChosenUnderAPanelIsNotTaken()
{
    TemplateRun run;
    Answers answers;
    const QString before = run.knob(0);
    answers.expect<CPopupList>([&](CPopupList *popup) {
        run.window->windowLock();
        clickRow(popup, 74);
    });
    QTest::mouseClick(run.get<COnOffButton>("btnCCNumberAndDisplayName"), Qt::LeftButton);
    QVERIFY(answers.allGiven());
    QCOMPARE(run.knob(0), before);
    run.window->windowUnlock();
}

void TestEditorTemplatePopups::aPopupDiesWithItsWindow()
{
    TemplateRun run;
    Answers answers;
    answers.expect<CPopupList>([&](CPopupList *) { run.window.reset(); });
    run.view->popupTemplate();
    QVERIFY(run.window == nullptr);
    QVERIFY(answers.allGiven());
}

QTEST_MAIN(TestEditorTemplatePopups)
#include "tst_editortemplatepopups.moc"
