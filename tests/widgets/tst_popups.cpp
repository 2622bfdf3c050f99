// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CPopupList.h"
#include "widgets/CPopupTree.h"
#include "widgets/RemoteEditorStyle.h"
#include "widgets/StyleColors.h"

#include <QtTest/QtTest>

#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>

#include <functional>
#include <memory>

// The popup list and the popup tree: where they open, what ends them, and what they return. A step
// of a test that runs while a popup is open stands in a function that the popup's own event loop
// calls.

namespace
{

// Runs the step once the popup shows. A popup that is gone by then takes its steps with it.
void whileOpen(PopupWindow *popup, const std::function<void()> &step)
{
    QTimer::singleShot(0, popup, [popup, step] {
        QVERIFY(QTest::qWaitForWindowExposed(popup));
        step();
    });
}

QPoint centerOf(QAbstractItemView *view, const QModelIndex &index)
{
    return view->visualRect(index).center();
}

} // namespace

class TestPopups : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void theWindow();
    void theInnerWidgets();
    void theFontOfThePopupReachesTheInnerWidget();
    void theInnerWidgetFillsThePopup();
    void theFirstItemBecomesCurrent();
    void theCurrentItemStays();
    void anEmptyPopupOpensAndReturnsNull_data();
    void anEmptyPopupOpensAndReturnsNull();

    void escapeReturnsNull_data();
    void escapeReturnsNull();
    void aClickOutsideReturnsNull_data();
    void aClickOutsideReturnsNull();
    void hidingReturnsNull();
    void deletedWhileOpenReturnsNull_data();
    void deletedWhileOpenReturnsNull();
    void parentDeletedWhileOpenReturnsNull_data();
    void parentDeletedWhileOpenReturnsNull();
    void closedByTheProgramReturnsNull();
    void deletedWhileItShows();
    void aSecondExecWhileOpenReturnsNull();
    void popupsInPopupsEndEachOnItsOwn();
    void theEndOfTheProgramEndsExec();
    void thePopupDeletesItself_data();
    void thePopupDeletesItself();
    void theItemOutlivesExec();

    void aClickChooses();
    void returnAndEnterChoose_data();
    void returnAndEnterChoose();
    void arrowKeysAndReturn();
    void pressOutsideAndReleaseInsideChoosesNothing();
    void pressInsideAndReleaseOutsideChoosesNothing();
    void releaseBesideAnItemThatIsWiderThanThePopupChoosesNothing();
    void releaseOnAnotherItemThanPressed();
    void theRightButtonChoosesNothing();
    void aDisabledItemIsNotChosen();
    void aClickBelowTheItemsChoosesNothing();
    void returnWithSeveralSelectedChoosesNothing();
    void aClickOnABranchOpensItAndDoesNotClose();
    void aClickOnTheNameOfABranchDoesNotClose();
    void returnOnABranchDoesNotClose();
    void aLeafOfATreeIsChosenByAClick();
    void theColumnFollowsItsContents();
    void aScrollBarInThePopupChoosesNothing();

    void openedByPoint_data();
    void openedByPoint();
    void openedByRectangle_data();
    void openedByRectangle();
    void largerThanTheScreen();
    void aPointOnNoScreenTakesTheNearest();
    void popupWithoutALoop();
    void theLook();

private:
    CPopupList *newList(int count)
    {
        auto *popup = new CPopupList;
        popup->resize(120, 100);
        for (int i = 0; i < count; ++i) {
            popup->getListWidget()->addItem(QStringLiteral("Item %1").arg(i));
        }
        m_popup = popup;
        return popup;
    }
    // Two branches of three leaves.
    CPopupTree *newTree()
    {
        auto *popup = new CPopupTree;
        popup->resize(160, 140);
        for (int i = 0; i < 2; ++i) {
            auto *branch =
                new QTreeWidgetItem(popup->getTreeWidget(), {QStringLiteral("Branch %1").arg(i)});
            for (int j = 0; j < 3; ++j) {
                new QTreeWidgetItem(branch, {QStringLiteral("Leaf %1.%2").arg(i).arg(j)});
            }
        }
        m_popup = popup;
        return popup;
    }
    static void kinds()
    {
        QTest::addColumn<bool>("tree");
        QTest::newRow("list") << false;
        QTest::newRow("tree") << true;
    }
    // Opens either kind at a place in the middle of the screen; whether it returned null.
    bool runsToNull(bool tree, const std::function<void(PopupWindow *, QAbstractItemView *)> &step)
    {
        if (tree) {
            auto *popup = newTree();
            whileOpen(popup, [=] { step(popup, popup->getTreeWidget()); });
            return popup->exec(Middle) == nullptr;
        }
        auto *popup = newList(5);
        whileOpen(popup, [=] { step(popup, popup->getListWidget()); });
        return popup->exec(Middle) == nullptr;
    }

    static constexpr QPoint Middle{300, 300};
    std::unique_ptr<QWidget> m_window;
    QPointer<QWidget> m_popup;
};

void TestPopups::initTestCase()
{
    QApplication::setStyle(new RemoteEditorStyle);
    QCOMPARE(QGuiApplication::primaryScreen()->geometry(), QRect(0, 0, 1600, 1200));
}

void TestPopups::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->setGeometry(50, 50, 200, 200);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

// However a popup ended, it is not left behind.
void TestPopups::cleanup()
{
    QTRY_VERIFY(!m_popup);
    QVERIFY(!QApplication::activePopupWidget());
    m_window.reset();
}

// --- The window
// -----------------------------------------------------------------------------------

void TestPopups::theWindow()
{
    const CPopupTree tree;
    const CPopupList list;
    for (const QWidget *popup :
         {static_cast<const QWidget *>(&tree), static_cast<const QWidget *>(&list)}) {
        QCOMPARE(popup->windowType(), Qt::Popup);
        QVERIFY(popup->testAttribute(Qt::WA_DeleteOnClose));
        QVERIFY(popup->isWindow());
        QVERIFY(!popup->isVisible());
        QCOMPARE(popup->size(), popup->sizeHint());
        QVERIFY(!popup->size().isEmpty());
    }
}

void TestPopups::theInnerWidgets()
{
    const CPopupTree tree;
    QCOMPARE(tree.getTreeWidget()->objectName(), QStringLiteral("CPopupTreeWidget"));
    QCOMPARE(tree.getTreeWidget()->parentWidget(), &tree);
    QCOMPARE(tree.getTreeWidget()->columnCount(), 1);
    QVERIFY(tree.getTreeWidget()->isHeaderHidden());
    QVERIFY(RemoteEditorStyle::isPopupTree(tree.getTreeWidget()));
    QCOMPARE(tree.getTreeWidget()->font(), QApplication::font());
    QCOMPARE(tree.getTreeWidget()->style(), QApplication::style());

    const CPopupList list;
    QCOMPARE(list.getListWidget()->objectName(), QStringLiteral("CPopupListWidget"));
    QCOMPARE(list.getListWidget()->parentWidget(), &list);
    QVERIFY(RemoteEditorStyle::isPopupList(list.getListWidget()));
}

void TestPopups::theFontOfThePopupReachesTheInnerWidget()
{
    QFont font = QApplication::font();
    font.setPixelSize(8);
    CPopupTree tree;
    tree.setFont(font);
    QCOMPARE(tree.getTreeWidget()->font().pixelSize(), 8);
    CPopupList list;
    list.setFont(font);
    QCOMPARE(list.getListWidget()->font().pixelSize(), 8);
}

void TestPopups::theInnerWidgetFillsThePopup()
{
    CPopupList popup;
    popup.resize(77, 55);
    popup.popup(Middle);
    QCOMPARE(popup.getListWidget()->geometry(), QRect(0, 0, 77, 55));
    popup.resize(99, 66);
    QCOMPARE(popup.getListWidget()->geometry(), QRect(0, 0, 99, 66));
    QVERIFY(popup.getListWidget()->hasFocus() || popup.focusWidget() == popup.getListWidget());
}

void TestPopups::theFirstItemBecomesCurrent()
{
    auto *list = newList(3);
    whileOpen(list, [list] {
        QCOMPARE(list->getListWidget()->currentRow(), 0);
        list->close();
    });
    QVERIFY(!list->exec(Middle));

    auto *tree = newTree();
    whileOpen(tree, [tree] {
        QCOMPARE(tree->getTreeWidget()->currentItem(), tree->getTreeWidget()->topLevelItem(0));
        tree->close();
    });
    QVERIFY(!tree->exec(Middle));
}

void TestPopups::theCurrentItemStays()
{
    auto *list = newList(3);
    list->getListWidget()->setCurrentRow(2);
    whileOpen(list, [list] {
        QCOMPARE(list->getListWidget()->currentRow(), 2);
        list->close();
    });
    QVERIFY(!list->exec(Middle));
}

void TestPopups::anEmptyPopupOpensAndReturnsNull_data()
{
    kinds();
}

void TestPopups::anEmptyPopupOpensAndReturnsNull()
{
    QFETCH(bool, tree);
    bool opened = false;
    const auto step = [&opened](PopupWindow *popup, QWidget *view, QWidget *viewport) {
        opened = popup->isVisible();
        QTest::keyClick(view, Qt::Key_Return);
        QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
        QVERIFY(popup->isVisible());
        QTest::keyClick(view, Qt::Key_Escape);
    };
    if (tree) {
        auto *popup = new CPopupTree;
        m_popup = popup;
        whileOpen(popup,
                  [=] { step(popup, popup->getTreeWidget(), popup->getTreeWidget()->viewport()); });
        QVERIFY(!popup->exec(Middle));
    } else {
        auto *popup = newList(0);
        whileOpen(popup,
                  [=] { step(popup, popup->getListWidget(), popup->getListWidget()->viewport()); });
        QVERIFY(!popup->exec(Middle));
    }
    QVERIFY(opened);
}

// --- What ends a popup
// ----------------------------------------------------------------------------

void TestPopups::escapeReturnsNull_data()
{
    kinds();
}

void TestPopups::escapeReturnsNull()
{
    QFETCH(bool, tree);
    QVERIFY(runsToNull(tree, [](PopupWindow *popup, QAbstractItemView *) {
        // The window's event, as the keyboard gives it.
        QTest::keyClick(popup->windowHandle(), Qt::Key_Escape);
    }));
}

void TestPopups::aClickOutsideReturnsNull_data()
{
    kinds();
}

void TestPopups::aClickOutsideReturnsNull()
{
    QFETCH(bool, tree);
    QVERIFY(runsToNull(tree, [this](PopupWindow *, QAbstractItemView *) {
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    }));
}

void TestPopups::hidingReturnsNull()
{
    QVERIFY(runsToNull(false, [](PopupWindow *popup, QAbstractItemView *) { popup->hide(); }));
}

void TestPopups::deletedWhileOpenReturnsNull_data()
{
    kinds();
}

void TestPopups::deletedWhileOpenReturnsNull()
{
    QFETCH(bool, tree);
    QVERIFY(runsToNull(tree, [](PopupWindow *popup, QAbstractItemView *) { delete popup; }));
    QVERIFY(!m_popup);
}

void TestPopups::parentDeletedWhileOpenReturnsNull_data()
{
    kinds();
}

void TestPopups::parentDeletedWhileOpenReturnsNull()
{
    QFETCH(bool, tree);
    auto *parent = new QWidget;
    if (tree) {
        auto *popup = new CPopupTree(parent);
        m_popup = popup;
        whileOpen(popup, [parent] { delete parent; });
        QVERIFY(!popup->exec(Middle));
    } else {
        auto *popup = new CPopupList(parent);
        m_popup = popup;
        whileOpen(popup, [parent] { delete parent; });
        QVERIFY(!popup->exec(Middle));
    }
    QVERIFY(!m_popup);
}

void TestPopups::closedByTheProgramReturnsNull()
{
    QVERIFY(runsToNull(true, [](PopupWindow *, QAbstractItemView *) {
        QApplication::activePopupWidget()->close();
    }));
}

void TestPopups::deletedWhileItShows()
{
    // Within the show event, before the loop runs.
    class Deleter : public QObject
    {
    public:
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (event->type() == QEvent::Show) {
                watched->removeEventFilter(this);
                static_cast<QWidget *>(watched)->close();
            }
            return false;
        }
    } deleter;
    auto *popup = newList(3);
    popup->installEventFilter(&deleter);
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::aSecondExecWhileOpenReturnsNull()
{
    auto *popup = newList(3);
    bool second = false;
    whileOpen(popup, [popup, &second] {
        second = popup->exec(Middle) == nullptr;
        QVERIFY(popup->isVisible());
        QTest::keyClick(popup->getListWidget(), Qt::Key_Return);
    });
    QCOMPARE(popup->exec(Middle), popup->getListWidget()->item(0));
    QVERIFY(second);
}

void TestPopups::popupsInPopupsEndEachOnItsOwn()
{
    auto *outer = newList(3);
    QString inner;
    whileOpen(outer, [outer, &inner] {
        auto *popup = new CPopupList;
        popup->getListWidget()->addItem(QStringLiteral("inner"));
        whileOpen(popup, [popup] { QTest::keyClick(popup->getListWidget(), Qt::Key_Return); });
        inner = popup->exec(Middle + QPoint(10, 10))->text();
        QVERIFY(outer->isVisible());
        QTest::keyClick(outer->getListWidget(), Qt::Key_Return);
    });
    QCOMPARE(outer->exec(Middle), outer->getListWidget()->item(0));
    QCOMPARE(inner, QStringLiteral("inner"));
}

void TestPopups::theEndOfTheProgramEndsExec()
{
    // Leaving the program's loop leaves the popup's first.
    QTimer::singleShot(0, this, [this] {
        auto *popup = newList(3);
        whileOpen(popup, [] { QCoreApplication::exit(7); });
        QVERIFY(!popup->exec(Middle));
    });
    QCOMPARE(QCoreApplication::exec(), 7);
}

void TestPopups::thePopupDeletesItself_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("chosen") << int(Qt::Key_Return);
    QTest::newRow("escaped") << int(Qt::Key_Escape);
}

void TestPopups::thePopupDeletesItself()
{
    QFETCH(int, key);
    QPointer<CPopupList> popup = newList(3);
    whileOpen(popup, [popup, key] { QTest::keyClick(popup->getListWidget(), Qt::Key(key)); });
    QCOMPARE(bool(popup->exec(Middle)), key == Qt::Key_Return);
    QTRY_VERIFY(!popup);
}

void TestPopups::theItemOutlivesExec()
{
    // As in the program, where a handler of an event opens the popup.
    QEventLoop program;
    QTimer::singleShot(0, &program, [this, &program] {
        auto *popup = newList(3);
        whileOpen(popup, [popup] { QTest::keyClick(popup->getListWidget(), Qt::Key_Return); });
        const QListWidgetItem *item = popup->exec(Middle);
        // Not even a loop that the handler runs meanwhile takes it away.
        QEventLoop loop;
        QTimer::singleShot(0, &loop, &QEventLoop::quit);
        loop.exec();
        QVERIFY(m_popup);
        QCOMPARE(item->text(), QStringLiteral("Item 0"));
        QCOMPARE(popup->getListWidget()->row(item), 0);
        program.quit();
    });
    program.exec();
}

// --- Choosing
// -------------------------------------------------------------------------------------

void TestPopups::aClickChooses()
{
    auto *popup = newList(5);
    auto *list = popup->getListWidget();
    whileOpen(popup, [popup, list] {
        const QPoint point = list->visualItemRect(list->item(3)).center();
        QTest::mouseClick(popup->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          list->viewport()->mapTo(popup, point));
    });
    QCOMPARE(popup->exec(Middle), list->item(3));
}

void TestPopups::returnAndEnterChoose_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
}

void TestPopups::returnAndEnterChoose()
{
    QFETCH(int, key);
    auto *popup = newList(5);
    auto *list = popup->getListWidget();
    list->setCurrentRow(2);
    whileOpen(popup, [popup, key] { QTest::keyClick(popup->windowHandle(), Qt::Key(key)); });
    QCOMPARE(popup->exec(Middle), list->item(2));
}

void TestPopups::arrowKeysAndReturn()
{
    auto *popup = newList(5);
    auto *list = popup->getListWidget();
    whileOpen(popup, [popup] {
        QTest::keyClick(popup->windowHandle(), Qt::Key_Down);
        QTest::keyClick(popup->windowHandle(), Qt::Key_End);
        QTest::keyClick(popup->windowHandle(), Qt::Key_Up);
        QTest::keyClick(popup->windowHandle(), Qt::Key_Return);
    });
    QCOMPARE(popup->exec(Middle), list->item(3));
}

void TestPopups::pressOutsideAndReleaseInsideChoosesNothing()
{
    QVERIFY(runsToNull(false, [](PopupWindow *popup, QAbstractItemView *view) {
        // The release of the click that opened the popup.
        view->setCurrentIndex(view->model()->index(1, 0));
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                            centerOf(view, view->model()->index(1, 0)));
        QVERIFY(popup->isVisible());
        popup->close();
    }));
}

void TestPopups::pressInsideAndReleaseOutsideChoosesNothing()
{
    QVERIFY(runsToNull(false, [](PopupWindow *popup, QAbstractItemView *view) {
        const QPoint point = centerOf(view, view->model()->index(1, 0));
        QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier, point);
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                            point + QPoint(500, 0));
        QVERIFY(popup->isVisible());
        // That press is over; a release alone chooses nothing.
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier, point);
        QVERIFY(popup->isVisible());
        popup->close();
    }));
}

void TestPopups::releaseBesideAnItemThatIsWiderThanThePopupChoosesNothing()
{
    auto *popup = newList(3);
    auto *list = popup->getListWidget();
    list->item(1)->setText(QString(200, u'W'));
    whileOpen(popup, [popup, list] {
        const QPoint inside(20, list->visualItemRect(list->item(1)).center().y());
        const QPoint outside = inside + QPoint(300, 0);
        QCOMPARE(list->itemAt(outside), list->item(1));
        QTest::mousePress(list->viewport(), Qt::LeftButton, Qt::NoModifier, inside);
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, Qt::NoModifier, outside);
        QVERIFY(popup->isVisible());
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::releaseOnAnotherItemThanPressed()
{
    // The selection follows the pointer, so that the item under it at the end is meant.
    auto *popup = newList(5);
    auto *list = popup->getListWidget();
    whileOpen(popup, [list] {
        const auto center = [list](int row) {
            return list->visualItemRect(list->item(row)).center();
        };
        QTest::mousePress(list->viewport(), Qt::LeftButton, Qt::NoModifier, center(1));
        QMouseEvent move(QEvent::MouseMove, center(3), list->viewport()->mapToGlobal(center(3)),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &move);
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, Qt::NoModifier, center(3));
    });
    QCOMPARE(popup->exec(Middle), list->item(3));
}

void TestPopups::theRightButtonChoosesNothing()
{
    QVERIFY(runsToNull(false, [](PopupWindow *popup, QAbstractItemView *view) {
        QTest::mouseClick(view->viewport(), Qt::RightButton, Qt::NoModifier,
                          centerOf(view, view->model()->index(1, 0)));
        QVERIFY(popup->isVisible());
        popup->close();
    }));
}

void TestPopups::aDisabledItemIsNotChosen()
{
    auto *popup = newList(5);
    auto *list = popup->getListWidget();
    list->item(1)->setFlags(Qt::NoItemFlags);
    whileOpen(popup, [popup, list] {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                          list->visualItemRect(list->item(1)).center());
        QVERIFY(popup->isVisible());
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::aClickBelowTheItemsChoosesNothing()
{
    auto *popup = newList(2);
    auto *list = popup->getListWidget();
    whileOpen(popup, [popup, list] {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 90));
        QVERIFY(popup->isVisible());
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::returnWithSeveralSelectedChoosesNothing()
{
    auto *popup = newList(5);
    auto *list = popup->getListWidget();
    list->setSelectionMode(QAbstractItemView::MultiSelection);
    list->item(1)->setSelected(true);
    list->item(2)->setSelected(true);
    list->setCurrentRow(1, QItemSelectionModel::NoUpdate);
    whileOpen(popup, [popup, list] {
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(popup->isVisible());
        list->clearSelection();
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(popup->isVisible());
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::aClickOnABranchOpensItAndDoesNotClose()
{
    auto *popup = newTree();
    auto *tree = popup->getTreeWidget();
    whileOpen(popup, [popup, tree] {
        QTreeWidgetItem *branch = tree->topLevelItem(0);
        QVERIFY(!branch->isExpanded());
        const QPoint sign(tree->visualItemRect(branch).left() - tree->indentation() / 2,
                          tree->visualItemRect(branch).center().y());
        QTest::mouseClick(popup->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          tree->viewport()->mapTo(popup, sign));
        QVERIFY(branch->isExpanded());
        QVERIFY(popup->isVisible());
        QTest::keyClick(tree, Qt::Key_Escape);
    });
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::aClickOnTheNameOfABranchDoesNotClose()
{
    auto *popup = newTree();
    auto *tree = popup->getTreeWidget();
    whileOpen(popup, [popup, tree] {
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier,
                          tree->visualItemRect(tree->topLevelItem(1)).center());
        QVERIFY(popup->isVisible());
        QVERIFY(tree->topLevelItem(1)->isSelected());
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::returnOnABranchDoesNotClose()
{
    auto *popup = newTree();
    auto *tree = popup->getTreeWidget();
    whileOpen(popup, [popup, tree] {
        QVERIFY(tree->topLevelItem(0)->isSelected());
        QTest::keyClick(popup->windowHandle(), Qt::Key_Return);
        QVERIFY(popup->isVisible());
        // Right opens it, Down goes to the first leaf.
        QTest::keyClick(popup->windowHandle(), Qt::Key_Right);
        QTest::keyClick(popup->windowHandle(), Qt::Key_Down);
        QTest::keyClick(popup->windowHandle(), Qt::Key_Return);
    });
    QCOMPARE(popup->exec(Middle), tree->topLevelItem(0)->child(0));
}

void TestPopups::aLeafOfATreeIsChosenByAClick()
{
    auto *popup = newTree();
    auto *tree = popup->getTreeWidget();
    tree->topLevelItem(0)->setExpanded(true);
    whileOpen(popup, [tree] {
        // Anywhere in the row.
        const QRect leaf = tree->visualItemRect(tree->topLevelItem(0)->child(1));
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(tree->viewport()->width() - 3, leaf.center().y()));
    });
    QCOMPARE(popup->exec(Middle), tree->topLevelItem(0)->child(1));
}

void TestPopups::theColumnFollowsItsContents()
{
    auto *popup = newTree();
    auto *tree = popup->getTreeWidget();
    new QTreeWidgetItem(tree->topLevelItem(1), {QString(60, u'W')});
    whileOpen(popup, [popup, tree] {
        const auto isWide = [tree] { return tree->columnWidth(0) > tree->viewport()->width(); };
        QVERIFY(!isWide());
        tree->expandItem(tree->topLevelItem(1));
        QVERIFY(isWide());
        QVERIFY(tree->horizontalScrollBar()->maximum() > 0);
        tree->collapseItem(tree->topLevelItem(1));
        QVERIFY(!isWide());
        tree->topLevelItem(0)->setText(0, QString(60, u'W'));
        QVERIFY(isWide());
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
}

void TestPopups::aScrollBarInThePopupChoosesNothing()
{
    auto *popup = newList(50);
    auto *list = popup->getListWidget();
    whileOpen(popup, [popup, list] {
        QScrollBar *bar = list->verticalScrollBar();
        QVERIFY(bar->isVisible());
        QCOMPARE(bar->width(), 16);
        // The second of the two arrows at its start.
        QTest::mouseClick(popup->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          bar->mapTo(popup, QPoint(8, 14)));
        QVERIFY(bar->value() > 0);
        QVERIFY(popup->isVisible());
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
}

// --- Where it opens
// -------------------------------------------------------------------------------

void TestPopups::openedByPoint_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<QPoint>("corner");
    // A popup of 120 by 100 on a screen of 1600 by 1200.
    QTest::newRow("in the middle") << QPoint(300, 300) << QPoint(300, 300);
    QTest::newRow("upper left") << QPoint(0, 0) << QPoint(0, 0);
    QTest::newRow("fits exactly") << QPoint(1480, 1100) << QPoint(1480, 1100);
    QTest::newRow("one too far right") << QPoint(1481, 1100) << QPoint(1361, 1100);
    QTest::newRow("one too far down") << QPoint(1480, 1101) << QPoint(1480, 1001);
    QTest::newRow("lower right corner") << QPoint(1599, 1199) << QPoint(1479, 1099);
    QTest::newRow("beyond the left edge") << QPoint(-50, 300) << QPoint(0, 300);
}

void TestPopups::openedByPoint()
{
    QFETCH(QPoint, point);
    QFETCH(QPoint, corner);
    auto *popup = newList(3);
    QPoint at;
    whileOpen(popup, [popup, &at] {
        at = popup->pos();
        popup->close();
    });
    QVERIFY(!popup->exec(point));
    QCOMPARE(at, corner);
}

void TestPopups::openedByRectangle_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QPoint>("corner");
    QTest::newRow("in the middle") << QRect(300, 300, 20, 20) << QPoint(320, 300);
    QTest::newRow("fits exactly") << QRect(1460, 1100, 20, 20) << QPoint(1480, 1100);
    QTest::newRow("one too far right") << QRect(1461, 1100, 20, 20) << QPoint(1480, 1100);
    QTest::newRow("one too far down") << QRect(1460, 1101, 20, 20) << QPoint(1480, 1100);
    QTest::newRow("near the lower right corner") << QRect(1570, 1170, 20, 20) << QPoint(1480, 1100);
    QTest::newRow("at the right edge") << QRect(1580, 300, 20, 20) << QPoint(1480, 300);
}

void TestPopups::openedByRectangle()
{
    QFETCH(QRect, rect);
    QFETCH(QPoint, corner);
    auto *popup = newList(3);
    QPoint at;
    whileOpen(popup, [popup, &at] {
        at = popup->pos();
        popup->close();
    });
    QVERIFY(!popup->exec(rect));
    QCOMPARE(at, corner);
}

void TestPopups::largerThanTheScreen()
{
    auto *popup = newList(3);
    popup->resize(2000, 3000);
    QRect at;
    whileOpen(popup, [popup, &at] {
        at = popup->geometry();
        popup->close();
    });
    QVERIFY(!popup->exec(QRect(500, 500, 20, 20)));
    QCOMPARE(at, QRect(0, 0, 1600, 1200));
}

void TestPopups::aPointOnNoScreenTakesTheNearest()
{
    auto *popup = newList(3);
    QPoint at;
    whileOpen(popup, [popup, &at] {
        at = popup->pos();
        popup->close();
    });
    QVERIFY(!popup->exec(QPoint(100000, -100000)));
    QCOMPARE(at, QPoint(1480, 0));
}

void TestPopups::popupWithoutALoop()
{
    auto *popup = newList(3);
    popup->popup(Middle);
    QVERIFY(QTest::qWaitForWindowExposed(popup));
    QCOMPARE(QApplication::activePopupWidget(), popup);
    QTest::keyClick(popup->getListWidget(), Qt::Key_Return);
    QVERIFY(!popup->isVisible());
    popup->close();
    delete m_popup;
}

void TestPopups::theLook()
{
    auto *popup = newList(50);
    auto *list = popup->getListWidget();
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    QImage image;
    whileOpen(popup, [popup, &image] {
        image = popup->grab().toImage();
        popup->close();
    });
    QVERIFY(!popup->exec(Middle));
    QCOMPARE(image.pixelColor(0, 0), colorPaletteFrame);
    QCOMPARE(image.pixelColor(119, 99), colorPaletteFrame);
    // The selected row is dark to its end, the others are not.
    const QRect first = list->visualItemRect(list->item(0)).translated(1, 1);
    const QRect second = list->visualItemRect(list->item(1)).translated(1, 1);
    QCOMPARE(image.pixelColor(first.right() - 1, first.center().y()), colorPaletteHighlight);
    QCOMPARE(image.pixelColor(second.right() - 1, second.center().y()), colorPaletteBase);
    QCOMPARE(image.pixelColor(104, 1), colorScrollBarBackground);
    // Where the scroll bars meet.
    QCOMPARE(image.pixelColor(115, 95), colorScrollBarBackground);
}

QTEST_MAIN(TestPopups)
#include "tst_popups.moc"
