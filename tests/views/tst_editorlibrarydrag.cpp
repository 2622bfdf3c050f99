// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/LibraryRig.h"

#include "file/EditorData.h"

#include <QtCore/QMimeData>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>

// Dragging in the library, by the mouse on the real window.

namespace
{

QPoint middleOf(const CListView *list, int row)
{
    return list->getItemRect(row).center();
}

} // namespace

class TestEditorLibraryDrag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void aMoveSwapsTwoTemplatesAndBothFlash();
    void aCopyLeavesTheSourceAndTheTargetFlashes();
    void controlCountsAtTheDrop();
    void aTemplateDraggedOntoItselfIsRefused_data();
    void aTemplateDraggedOntoItselfIsRefused();
    void theSameNumberFromTheImportIsAValidCopy();
    void aDragFromTheImportAlwaysCopies_data();
    void aDragFromTheImportAlwaysCopies();
    void theImportListTakesNoDrops();
    void besideTheItemsIsRefused_data();
    void besideTheItemsIsRefused();
    void escapeEndsADrag();
    void aShortMoveIsNoDrag();
    void aPressBesideTheItemsDragsNothing();
    void theDragPicture();

    void hoveringAtTheEdgeScrolls_data();
    void hoveringAtTheEdgeScrolls();
    void theWindowMayEndDuringADrag();

    void foreignDataIsIgnored_data();
    void foreignDataIsIgnored();
    void anotherEditorsImportIsNoneOfThisOne();
};

void TestEditorLibraryDrag::initTestCase()
{
    LibraryRig::prepareApplication();
}

void TestEditorLibraryDrag::aMoveSwapsTwoTemplatesAndBothFlash()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    QVERIFY(MouseDrag(list, middleOf(list, 1)).drop(list, middleOf(list, 6)).run());
    QCOMPARE(rig.nameOf(Bank::Library, 1), QStringLiteral("A07"));
    QCOMPARE(rig.nameOf(Bank::Library, 6), QStringLiteral("A02"));
    QCOMPARE(list->text(1, 0), QStringLiteral("02  A07"));
    QCOMPARE(list->value(), 6);
    QCOMPARE(rig.flashes(), 2);
    QCOMPARE(rig.libraryEditFlag(), 1);
    QCOMPARE(rig.fileEditFlag(), 0);
    QCOMPARE(rig.nameOf(Bank::EditBuffer, 1), QStringLiteral("A02"));
    QTRY_COMPARE(rig.flashes(), 0);
}

void TestEditorLibraryDrag::aCopyLeavesTheSourceAndTheTargetFlashes()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    QVERIFY(MouseDrag(list, middleOf(list, 1), Qt::ControlModifier)
                .drop(list, middleOf(list, 6))
                .run());
    QCOMPARE(rig.nameOf(Bank::Library, 1), QStringLiteral("A02"));
    QCOMPARE(rig.nameOf(Bank::Library, 6), QStringLiteral("A02"));
    QCOMPARE(list->value(), 6);
    QCOMPARE(rig.flashes(), 1);
    QCOMPARE(rig.libraryEditFlag(), 1);
}

void TestEditorLibraryDrag::controlCountsAtTheDrop()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    QVERIFY(MouseDrag(list, middleOf(list, 1), Qt::ControlModifier)
                .moveTo(list, middleOf(list, 4))
                .hold(Qt::NoModifier)
                .drop(list, middleOf(list, 6))
                .run());
    QCOMPARE(rig.nameOf(Bank::Library, 1), QStringLiteral("A07"));
    QCOMPARE(rig.nameOf(Bank::Library, 6), QStringLiteral("A02"));
}

void TestEditorLibraryDrag::aTemplateDraggedOntoItselfIsRefused_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("move") << Qt::KeyboardModifiers();
    QTest::newRow("copy") << Qt::KeyboardModifiers(Qt::ControlModifier);
}

void TestEditorLibraryDrag::aTemplateDraggedOntoItselfIsRefused()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    const QStringList before = rig.namesOf(Bank::Library);
    QVERIFY(MouseDrag(list, middleOf(list, 3), modifiers)
                .moveTo(list, middleOf(list, 6))
                .drop(list, middleOf(list, 3))
                .run());
    QCOMPARE(rig.namesOf(Bank::Library), before);
    QCOMPARE(rig.flashes(), 0);
    QCOMPARE(rig.libraryEditFlag(), 0);
}

void TestEditorLibraryDrag::theSameNumberFromTheImportIsAValidCopy()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    CListView *list = rig.list();
    QVERIFY(MouseDrag(rig.importList(), middleOf(rig.importList(), 3))
                .drop(list, middleOf(list, 3))
                .run());
    QCOMPARE(rig.nameOf(Bank::Library, 3), QStringLiteral("F04"));
    QCOMPARE(rig.libraryEditFlag(), 1);
}

void TestEditorLibraryDrag::aDragFromTheImportAlwaysCopies_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("none") << Qt::KeyboardModifiers();
    QTest::newRow("Control") << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("both") << (Qt::ControlModifier | Qt::ShiftModifier);
}

void TestEditorLibraryDrag::aDragFromTheImportAlwaysCopies()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    CListView *list = rig.list();
    QVERIFY(MouseDrag(rig.importList(), middleOf(rig.importList(), 2), modifiers)
                .drop(list, middleOf(list, 7))
                .run());
    QCOMPARE(rig.nameOf(Bank::Library, 7), QStringLiteral("F03"));
    QCOMPARE(rig.nameOf(Bank::Import, 2), QStringLiteral("F03"));
    QCOMPARE(rig.nameOf(Bank::Import, 7), QStringLiteral("F08"));
    QCOMPARE(list->value(), 7);
    QVERIFY(list->hasFocus());
    QVERIFY(rig.view->canCopy());
    QCOMPARE(rig.flashes(), 1);
}

void TestEditorLibraryDrag::theImportListTakesNoDrops()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    CListView *list = rig.list();
    QVERIFY(MouseDrag(list, middleOf(list, 2))
                .drop(rig.importList(), middleOf(rig.importList(), 7))
                .run());
    QCOMPARE(rig.nameOf(Bank::Import, 7), QStringLiteral("F08"));
    QCOMPARE(rig.nameOf(Bank::Library, 2), QStringLiteral("A03"));
    QCOMPARE(rig.libraryEditFlag(), 0);
}

void TestEditorLibraryDrag::besideTheItemsIsRefused_data()
{
    QTest::addColumn<int>("y");
    // Rows are 15 pixels with 2 between, from 5 on; the point meant is 3 higher than the pointer.
    QTest::newRow("margin above") << 7;
    QTest::newRow("between the first two") << 24;
    QTest::newRow("margin below") << 194;
}

void TestEditorLibraryDrag::besideTheItemsIsRefused()
{
    QFETCH(int, y);
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    const QStringList before = rig.namesOf(Bank::Library);
    QVERIFY(MouseDrag(list, middleOf(list, 5))
                .moveTo(list, middleOf(list, 6))
                .drop(list, QPoint(40, y))
                .run());
    QCOMPARE(rig.namesOf(Bank::Library), before);
    QCOMPARE(rig.libraryEditFlag(), 0);
}

void TestEditorLibraryDrag::escapeEndsADrag()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    const QStringList before = rig.namesOf(Bank::Library);
    QVERIFY(MouseDrag(list, middleOf(list, 5))
                .moveTo(list, middleOf(list, 2))
                .then([&rig] {
                    QTest::keyClick(rig.window.windowHandle(), Qt::Key_Escape);
                    return true;
                })
                .run());
    QTest::mouseRelease(rig.window.windowHandle(), Qt::LeftButton, {}, QPoint(1, 1));
    QCOMPARE(rig.namesOf(Bank::Library), before);
    QVERIFY(rig.view->isVisible());
    QVERIFY(!rig.widget<COnOffButton>("btnCancel")->isDown());
}

void TestEditorLibraryDrag::aShortMoveIsNoDrag()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    QWindow *window = rig.window.windowHandle();
    const QPoint start = list->mapTo(&rig.window, middleOf(list, 5));
    const int distance = QApplication::startDragDistance();
    QTest::mousePress(window, Qt::LeftButton, {}, start);
    QTest::mouseMove(window, start + QPoint(distance - 2, 2));
    QVERIFY(list->findChild<QDrag *>() == nullptr);
    QTest::mouseRelease(window, Qt::LeftButton, {}, start + QPoint(distance - 2, 2));
    QCOMPARE(list->value(), 5);
}

void TestEditorLibraryDrag::aPressBesideTheItemsDragsNothing()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    QVERIFY(!MouseDrag(rig.list(), QPoint(50, 2)).run());
}

void TestEditorLibraryDrag::theDragPicture()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    QPixmap picture;
    QPoint hotSpot;
    const QPoint start = middleOf(list, 5) + QPoint(-20, 3);
    QVERIFY(MouseDrag(list, start)
                .then([&] {
                    const QDrag *drag = list->findChild<QDrag *>();
                    picture = drag->pixmap();
                    hotSpot = drag->hotSpot();
                    return true;
                })
                .drop(list, middleOf(list, 5))
                .run());
    QCOMPARE(picture.deviceIndependentSize(), QSizeF(list->width(), list->rowHeight()));
    QCOMPARE(hotSpot, start - list->getItemRect(5).topLeft());
    const QImage image = picture.toImage();
    // It looks like the row that it was.
    const QColor ground = list->backgroundOddRowColor();
    QCOMPARE(image.pixelColor(image.width() - 1, 0), ground);
    // The text begins behind the margin, and is drawn without shades.
    const QColor pen = list->foregroundColor();
    int penPixels = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            QVERIFY(color == pen || color == ground);
            if (color == pen) {
                ++penPixels;
                QVERIFY(x >= 5);
            }
        }
    }
    QVERIFY(penPixels > 30);
}

// --- Scrolling -----------------------------------------------------------------------------------

void TestEditorLibraryDrag::hoveringAtTheEdgeScrolls_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("leaves");
    QTest::newRow("above, until it comes back") << 2 << -1 << false;
    QTest::newRow("below, until it comes back") << 194 << 1 << false;
    QTest::newRow("above, until it leaves") << 2 << -1 << true;
    QTest::newRow("below, until it leaves") << 194 << 1 << true;
}

void TestEditorLibraryDrag::hoveringAtTheEdgeScrolls()
{
    QFETCH(int, y);
    QFETCH(int, step);
    QFETCH(bool, leaves);
    LibraryRig rig;
    QVERIFY(rig.enter());
    CListView *list = rig.list();
    rig.scrollBar()->setValue(20);
    rig.choose(list, 25);
    QSignalSpy scrolled(rig.scrollBar(), &QScrollBar::valueChanged);
    QElapsedTimer clock;
    qint64 took = 0;
    int stopped = -1;
    QVERIFY(MouseDrag(list, middleOf(list, 25))
                .then([&] {
                    clock.start();
                    return true;
                })
                .moveTo(list, QPoint(60, y))
                .then([&] {
                    took = clock.elapsed();
                    return scrolled.size() >= 4;
                })
                .moveTo(leaves ? static_cast<QWidget *>(rig.view) : list,
                        leaves ? QPoint(20, 300) : QPoint(60, 100))
                .then([&] {
                    stopped = rig.scrollBar()->value();
                    clock.start();
                    return true;
                })
                // Three periods in which nothing may happen.
                .then([&] { return clock.elapsed() > 350; })
                .release(rig.view, QPoint(20, 300))
                .run());
    QCOMPARE(scrolled.at(0).at(0).toInt(), 20 + step);
    QCOMPARE(scrolled.at(3).at(0).toInt(), 20 + 4 * step);
    QVERIFY2(took >= 350, qPrintable(QString::number(took)));
    QCOMPARE(rig.scrollBar()->value(), stopped);
}

void TestEditorLibraryDrag::theWindowMayEndDuringADrag()
{
    auto rig = std::make_unique<LibraryRig>();
    QVERIFY(rig->enter());
    CListView *list = rig->list();
    QWindow *window = rig->window.windowHandle();
    const QPoint start = list->mapTo(&rig->window, middleOf(list, 5));
    QTimer::singleShot(50, qApp, [&rig] {
        rig.reset();
        QDrag::cancel();
    });
    QTest::mousePress(window, Qt::LeftButton, {}, start);
    QTest::mouseMove(window, start + QPoint(3, 0));
    QTest::mouseMove(window, start + QPoint(40, 0));
    QTRY_VERIFY(rig == nullptr);
    QTestPrivate::qtestMouseButtons = Qt::NoButton;
}

// --- Data from elsewhere -------------------------------------------------------------------------

void TestEditorLibraryDrag::foreignDataIsIgnored_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("text") << QStringLiteral("text/plain") << QByteArray("A template");
    QTest::newRow("a knob") << KnobMimeType << QByteArray("<controller/>");
    QTest::newRow("an empty template") << TemplateMimeType << QByteArray();
    QTest::newRow("no XML") << TemplateMimeType << QByteArray(4000, '\xFF');
    QTest::newRow("no attributes")
        << TemplateMimeType << QByteArray("<!DOCTYPE TARN_TERN_RemoteEditorTemplate><template/>");
    QTest::newRow("no parts") << TemplateMimeType
                              << QByteArray("<!DOCTYPE TARN_TERN_RemoteEditorTemplate>"
                                            "<template number=\"3\" banknumber=\"5\"/>");
    QTest::newRow("huge") << TemplateMimeType << QByteArray(32 * 1024 * 1024, '<');
}

void TestEditorLibraryDrag::foreignDataIsIgnored()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, content);
    LibraryRig rig;
    QVERIFY(rig.enter());
    const QStringList before = rig.namesOf(Bank::Library);
    QMimeData mime;
    mime.setData(type, content);
    const QPoint point = middleOf(rig.list(), 4);
    QDragEnterEvent enter(point, Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(rig.list(), &enter);
    // The window behind takes it, to do nothing with it.
    QCOMPARE(enter.dropAction(), Qt::IgnoreAction);
    QDropEvent drop(point, Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(rig.list(), &drop);
    QCOMPARE(rig.namesOf(Bank::Library), before);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QCOMPARE(rig.flashes(), 0);
}

void TestEditorLibraryDrag::anotherEditorsImportIsNoneOfThisOne()
{
    LibraryRig there;
    QVERIFY(there.enter());
    there.importFile(there.makeFile(QStringLiteral("Other.Q7V")));
    QVERIFY(there.importList()->isVisible());
    QByteArray dragged;
    QVERIFY(MouseDrag(there.importList(), middleOf(there.importList(), 2))
                .then([&] {
                    const QDrag *drag = there.importList()->findChild<QDrag *>();
                    dragged = drag->mimeData()->data(TemplateMimeType);
                    return true;
                })
                .release(there.importList(), middleOf(there.importList(), 2))
                .run());
    QMimeData mime;
    mime.setData(TemplateMimeType, dragged);

    LibraryRig here;
    QVERIFY(here.enter());
    const QPoint point = middleOf(here.list(), 4);
    const auto drop = [&] {
        QDragEnterEvent enter(point, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(here.list(), &enter);
        QDropEvent event(point, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(here.list(), &event);
    };
    const QStringList before = here.namesOf(Bank::Library);
    drop();
    QCOMPARE(here.namesOf(Bank::Library), before);
    QCOMPARE(here.libraryEditFlag(), 0);

    // With a second document open, the place that is told is one of it.
    here.importFile(here.makeFile(QStringLiteral("Own.Q7V"), 'O'));
    drop();
    QCOMPARE(here.nameOf(Bank::Library, 4), LibraryRig::name('O', 2));
}

QTEST_MAIN(TestEditorLibraryDrag)
#include "tst_editorlibrarydrag.moc"
