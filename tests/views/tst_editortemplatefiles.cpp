// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/TemplateHarness.h"

#include "file/EditorFile.h"

#include <QtCore/QStandardPaths>
#include <QtWidgets/QMessageBox>

// How the template view saves the document: the real file dialog and the real questions, answered
// as a user does.
class TestEditorTemplateFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { prepareApplication(); }

    void aNewDocumentIsSavedAs();
    void aDocumentWithAPathIsSavedThere();
    void anotherExtensionActsAsSaveAs();
    void theExtensionIsAppended_data();
    void theExtensionIsAppended();
    void theDialogStartsWhereTheDocumentIs();
    void aCancelledDialogLeavesEverything();
    void noToOverwritingReturnsToTheDialog();
    void yesToOverwritingReplacesTheFile();
    void aFileThatCannotBeReplacedStaysAndIsTold();
    void aFolderThatCannotBeWrittenIsTold();
    void aDocumentWhoseFolderIsGoneStaysEdited();
    void namesOfAllKindsComeBackWhole_data();
    void namesOfAllKindsComeBackWhole();
};

namespace
{

void expectBox(Answers *answers, const QString &title, const QString &text,
               QMessageBox::StandardButton button, QMessageBox::StandardButton defaultButton)
{
    answers->expect<QMessageBox>([=](QMessageBox *box) {
        QCOMPARE(box->windowTitle(), title);
        QCOMPARE(box->text(), text);
        if (defaultButton != QMessageBox::NoButton) {
            QCOMPARE(static_cast<QAbstractButton *>(box->defaultButton()),
                     box->button(defaultButton));
        }
        QTest::mouseClick(box->button(button), Qt::LeftButton);
    });
}

QString overwriteText(const QString &path)
{
    return QStringLiteral("A file called %1 already exists.\r\n"
                          "Do you want to overwrite it?")
        .arg(path);
}

QByteArray contentOfFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

// Whether the file's stored bank and edit buffer are those of the memory.
bool holdsTheDocument(const TemplateRun &run, const QString &path)
{
    RemoteMemAPI other;
    makeNineBanks(&other);
    QFile file(path);
    QString error;
    return EditorFile::load(&other, 1, &file, true, &error) &&
           contentOf(other, 0, false) == contentOf(run.api, 0, false) &&
           contentOf(other, 1, false) == contentOf(run.api, 1, false);
}

QString documentName(const TemplateRun &run)
{
    return run.api.getParamQString(FilePath);
}

} // namespace

void TestEditorTemplateFiles::aNewDocumentIsSavedAs()
{
    TemplateRun run;
    run.setKnob(0, "Edit", 1, 0, "100000401");
    run.api.storeBank(false);
    run.setKnob(0, "Later", 2, 0, "100000401");
    const QString path = run.filePath("New.Q7V");
    Answers answers;
    answers.expectFileDialog(path, [&](QFileDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Save As"));
        QCOMPARE(dialog->nameFilters(), QStringList{QStringLiteral("Q7V Files (*.Q7V)")});
        QCOMPARE(dialog->directory().absolutePath(), run.folder.path());
    });
    QVERIFY(run.window->fileSaveBank());
    QVERIFY(answers.allGiven());
    QVERIFY(holdsTheDocument(run, path));
    QVERIFY(!run.isEdited());
    QCOMPARE(documentName(run), path);
    QCOMPARE(run.get<CText>("txtFileName")->text(), QStringLiteral("New.Q7V"));
}

void TestEditorTemplateFiles::aDocumentWithAPathIsSavedThere()
{
    TemplateRun run;
    for (const char *name : {"There.Q7V", "There.q7v"}) {
        const QString path = run.filePath(name);
        run.api.setParam(FilePath, path);
        run.setKnob(0, name, 1, 0, "100000401");
        QVERIFY(run.isEdited());
        Answers answers;
        QVERIFY(run.view->saveBank());
        QVERIFY(answers.allGiven());
        QVERIFY(holdsTheDocument(run, path));
        QVERIFY(!run.isEdited());
        QCOMPARE(documentName(run), path);
    }
}

void TestEditorTemplateFiles::anotherExtensionActsAsSaveAs()
{
    TemplateRun run;
    const QString old = run.filePath("Old.xml");
    writeFile(old, "old");
    run.api.setParam(FilePath, old);
    Answers answers;
    answers.expectFileDialog(run.filePath("Fresh.Q7V"));
    QVERIFY(run.view->saveBank());
    QVERIFY(answers.allGiven());
    QCOMPARE(documentName(run), run.filePath("Fresh.Q7V"));
    QCOMPARE(contentOfFile(old), QByteArray("old"));
}

void TestEditorTemplateFiles::theExtensionIsAppended_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("saved");
    QTest::newRow("none") << "Bank"
                          << "Bank.Q7V";
    QTest::newRow("as it is") << "Bank.Q7V"
                              << "Bank.Q7V";
    QTest::newRow("other case stays as typed") << "Bank.q7v"
                                               << "Bank.q7v";
    QTest::newRow("mixed case stays as typed") << "Bank.Q7v"
                                               << "Bank.Q7v";
    QTest::newRow("another one") << "Bank.xml"
                                 << "Bank.xml.Q7V";
    QTest::newRow("the word alone") << "BankQ7V"
                                    << "BankQ7V.Q7V";
    QTest::newRow("shorter than it") << "Q7V"
                                     << "Q7V.Q7V";
}

void TestEditorTemplateFiles::theExtensionIsAppended()
{
    QFETCH(QString, typed);
    QFETCH(QString, saved);
    TemplateRun run;
    Answers answers;
    answers.expectFileDialog(run.folder.filePath(typed));
    QVERIFY(run.view->saveBankAs());
    QVERIFY(answers.allGiven());
    QCOMPARE(documentName(run), run.folder.filePath(saved));
    QCOMPARE(QDir(run.folder.path()).entryList({QStringLiteral("*7*")}, QDir::Files),
             QStringList{saved});
}

void TestEditorTemplateFiles::theDialogStartsWhereTheDocumentIs()
{
    TemplateRun run;
    const QString there = run.filePath("sub/Here.Q7V");
    writeFile(there, "x");
    run.api.setParam(FilePath, there);
    Answers answers;
    answers.expectFileDialog(QString(), [&](QFileDialog *dialog) {
        QCOMPARE(dialog->directory().absolutePath(), run.filePath("sub"));
        QCOMPARE(dialog->selectedFiles(), QStringList{there});
    });
    QVERIFY(!run.view->saveBankAs());
    // One that has gone doesn't count.
    QVERIFY(QFile::remove(there));
    answers.expectFileDialog(QString(), [&](QFileDialog *dialog) {
        QCOMPARE(dialog->directory().absolutePath(), run.folder.path());
    });
    QVERIFY(!run.view->saveBankAs());
    QVERIFY(answers.allGiven());
    // What is saved elsewhere moves the folder.
    answers.expectFileDialog(run.filePath("sub/Moved.Q7V"));
    QVERIFY(run.view->saveBankAs());
    QCOMPARE(run.window->getWorkingFolder(), run.filePath("sub"));
}

void TestEditorTemplateFiles::aCancelledDialogLeavesEverything()
{
    TemplateRun run;
    run.setKnob(0, "Edit", 1, 0, "100000401");
    Answers answers;
    answers.expectFileDialog(QString());
    QVERIFY(!run.view->saveBankAs());
    QVERIFY(answers.allGiven());
    QVERIFY(run.isEdited());
    QCOMPARE(documentName(run), QString());
}

void TestEditorTemplateFiles::noToOverwritingReturnsToTheDialog()
{
    TemplateRun run;
    const QString present = run.filePath("Present.Q7V");
    writeFile(present, "old");
    Answers answers;
    answers.expectFileDialog(present);
    expectBox(&answers, ModelName, overwriteText(present), QMessageBox::No, QMessageBox::No);
    // With the last name as its start.
    answers.expectFileDialog(run.filePath("Other.Q7V"), [&](QFileDialog *dialog) {
        QCOMPARE(dialog->selectedFiles(), QStringList{present});
    });
    QVERIFY(run.view->saveBankAs());
    QVERIFY(answers.allGiven());
    QCOMPARE(contentOfFile(present), QByteArray("old"));
    QVERIFY(holdsTheDocument(run, run.filePath("Other.Q7V")));
    QCOMPARE(documentName(run), run.filePath("Other.Q7V"));
}

void TestEditorTemplateFiles::yesToOverwritingReplacesTheFile()
{
    TemplateRun run;
    const QString present = run.filePath("Present.Q7V");
    writeFile(present, "old");
    Answers answers;
    // The extension is appended before the question.
    answers.expectFileDialog(run.filePath("Present"));
    answers.expect<QMessageBox>([&](QMessageBox *box) {
        QCOMPARE(box->text(), overwriteText(present));
        QCOMPARE(box->icon(), QMessageBox::Question);
        QCOMPARE(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
        for (const QAbstractButton *button : box->buttons()) {
            QCOMPARE(button->width(), 90);
        }
        QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
    });
    QVERIFY(run.view->saveBankAs());
    QVERIFY(answers.allGiven());
    QVERIFY(holdsTheDocument(run, present));
}

void TestEditorTemplateFiles::aFileThatCannotBeReplacedStaysAndIsTold()
{
    TemplateRun run;
    run.setKnob(0, "Edit", 1, 0, "100000401");
    // A name as long as names can be: what is to take the file's place can't lie beside it. Unlike
    // permissions this binds every user.
    const QString present =
        run.folder.filePath(QString(251, QLatin1Char('n'))) + EditorFileExtension;
    writeFile(present, "old");
    Answers answers;
    answers.expectFileDialog(present);
    expectBox(&answers, ModelName, overwriteText(present), QMessageBox::Yes, QMessageBox::No);
    expectBox(&answers, ModelName, QStringLiteral("Document \"%1\" not saved.").arg(present),
              QMessageBox::Ok, QMessageBox::NoButton);
    QVERIFY(!run.view->saveBankAs());
    QVERIFY(answers.allGiven());
    QCOMPARE(contentOfFile(present), QByteArray("old"));
    QVERIFY(run.isEdited());
    QCOMPARE(documentName(run), QString());
    QCOMPARE(run.window->getWorkingFolder(), run.folder.path());
}

void TestEditorTemplateFiles::aFolderThatCannotBeWrittenIsTold()
{
    TemplateRun run;
    run.setKnob(0, "Edit", 1, 0, "100000401");
    Answers answers;
    // No folder at all of that name, whoever writes.
    const QString path = run.filePath("nowhere/File.Q7V");
    run.api.setParam(FilePath, path);
    expectBox(&answers, EditorName, QStringLiteral("Failed in the file writing."), QMessageBox::Ok,
              QMessageBox::NoButton);
    QVERIFY(!run.view->saveBank());
    QVERIFY(answers.allGiven());
    QVERIFY(run.isEdited());
    QCOMPARE(documentName(run), path);
}

void TestEditorTemplateFiles::aDocumentWhoseFolderIsGoneStaysEdited()
{
    TemplateRun run;
    const QString path = run.filePath("sub/Bank.Q7V");
    QVERIFY(QDir().mkpath(run.filePath("sub")));
    run.api.setParam(FilePath, path);
    QVERIFY(run.view->saveBank());
    QVERIFY(QDir(run.filePath("sub")).removeRecursively());
    run.setKnob(0, "Edit", 1, 0, "100000401");
    Answers answers;
    expectBox(&answers, EditorName, QStringLiteral("Failed in the file writing."), QMessageBox::Ok,
              QMessageBox::NoButton);
    QVERIFY(!run.view->saveBank());
    QVERIFY(answers.allGiven());
    QVERIFY(run.isEdited());
}

void TestEditorTemplateFiles::namesOfAllKindsComeBackWhole_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << " my  bank .Q7V";
    QTest::newRow("quotes") << "my 'bank' \xC2\xABone\xC2\xBB.Q7V";
    QTest::newRow("double quotes") << "\"my\" bank.Q7V";
    QTest::newRow("markup") << "<b>bank&amp;%1.Q7V";
    QTest::newRow("other letters") << QString::fromUtf8("Bänk né Ω 日本.Q7V");
    QTest::newRow("dots") << "..bank..Q7V";
}

void TestEditorTemplateFiles::namesOfAllKindsComeBackWhole()
{
    QFETCH(QString, name);
    TemplateRun run;
    const QString path = run.folder.filePath(name);
    run.api.setParam(FilePath, path);
    Answers answers;
    QVERIFY(run.view->saveBank());
    QVERIFY(holdsTheDocument(run, path));
    if (name.contains(QLatin1Char('"'))) {
        return; // Qt's own file dialog takes these for several names.
    }
    // The question says it letter by letter.
    answers.expectFileDialog(path);
    expectBox(&answers, ModelName,
              QStringLiteral("A file called ") + path +
                  QStringLiteral(" already exists.\r\nDo you want to overwrite it?"),
              QMessageBox::No, QMessageBox::No);
    answers.expectFileDialog(QString());
    QVERIFY(!run.view->saveBankAs());
    QVERIFY(answers.allGiven());
}

QTEST_MAIN(TestEditorTemplateFiles)
#include "tst_editortemplatefiles.moc"
