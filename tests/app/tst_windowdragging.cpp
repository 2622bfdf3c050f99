// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowRig.h"
#include "app/XWatch.h"
#include "widgets/RealInput.h"

#include <QtGui/QScreen>

// Where a dragged window ends, by the X server's own pointer and its word for the place. There is
// no window manager, so nobody but the program decides; the screen has a panel's margins all the
// same.

namespace
{

constexpr QRect Screen(0, 0, 1600, 1200);
// Nothing but the window's own ground lies there.
constexpr QPoint Title(300, 12);
constexpr QPoint LeftEdge(5, 100);
constexpr QPoint RightEdge(469, 100); // the pointer itself stays on the screen

} // namespace

class TestWindowDragging : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        PanelRig::setUpApplication();
        QCOMPARE(QGuiApplication::primaryScreen()->availableGeometry(), Screen);
    }
    void init()
    {
        m_rig = std::make_unique<MainWindowRig>();
        QVERIFY(m_rig->openWindow());
        m_watch = std::make_unique<XWatch>(m_rig->window->winId());
        QTRY_COMPARE(m_watch->position(), QPoint(100, 100));
    }
    void cleanup()
    {
        m_input.releaseLeft();
        QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
        m_watch.reset();
        m_rig.reset();
    }

    void aWindowDraggedOutIsBroughtBack_data();
    void aWindowDraggedOutIsBroughtBack();
    void theSmallWindowIsBroughtBackByItsOwnSize();
    void onlyTheLeftButtonsReleaseEndsADrag();
    void onlyTheGroundDrags_data();
    void onlyTheGroundDrags();
    void theOtherButtonsDoNotDrag_data();
    void theOtherButtonsDoNotDrag();
    void aReleaseWithoutADragMovesNothing();

private:
    bool isAt(const QPoint &place) const
    {
        return QTest::qWaitFor([this, place] {
            return m_watch->position() == place && m_rig->window->pos() == place;
        });
    }
    // The button goes down there, so that the window's corner comes to the place.
    void grab(const QPoint &grip)
    {
        m_input.moveTo(m_watch->position() + grip);
        m_input.pressLeft();
        QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::LeftButton);
    }
    // Whatever happened until now has been heard: a press and its release on the other mouse
    // button.
    void settle()
    {
        m_input.press(2);
        QTRY_VERIFY(QGuiApplication::mouseButtons() & Qt::MiddleButton);
        m_input.release(2);
        QTRY_VERIFY(!(QGuiApplication::mouseButtons() & Qt::MiddleButton));
    }

    std::unique_ptr<MainWindowRig> m_rig;
    std::unique_ptr<XWatch> m_watch;
    RealInput m_input;
};

void TestWindowDragging::aWindowDraggedOutIsBroughtBack_data()
{
    QTest::addColumn<QPoint>("grip");
    QTest::addColumn<QPoint>("corner");
    QTest::addColumn<QPoint>("place");
    const QRect s = Screen;
    const auto row = [](const char *name, const QPoint &grip, const QPoint &corner,
                        const QPoint &place) { QTest::newRow(name) << grip << corner << place; };
    row("at the top", Title, {400, s.top()}, {400, s.top()});
    row("above the top", Title, {400, s.top() - 1}, {400, s.top()});
    row("far above", QPoint(5, 400), {400, s.top() - 300}, {400, s.top()});
    row("low", Title, {400, s.bottom() - 23}, {400, s.bottom() - 23});
    row("at the bottom's rim", Title, {400, s.bottom() - 22}, {400, s.bottom() - 22});
    row("too low", Title, {400, s.bottom() - 20}, {400, s.bottom() - 22});
    row("far left", RightEdge, {s.left() + 12 - 469, 300}, {s.left() + 12 - 469, 300});
    row("at the left rim", RightEdge, {s.left() + 11 - 469, 300}, {s.left() + 11 - 469, 300});
    row("too far left", RightEdge, {s.left() - 468, 300}, {s.left() + 11 - 470, 300});
    row("far right", LeftEdge, {s.right() - 12, 300}, {s.right() - 12, 300});
    row("at the right rim", LeftEdge, {s.right() - 11, 300}, {s.right() - 11, 300});
    row("too far right", LeftEdge, {s.right() - 5, 300}, {s.right() - 11, 300});
    row("over the upper right corner", LeftEdge, {s.right() - 5, s.top() - 20},
        {s.right() - 11, s.top()});
    row("over the lower left corner", QPoint(469, 5), {s.left() - 468, s.bottom() - 10},
        {s.left() + 11 - 470, s.bottom() - 22});
}

void TestWindowDragging::aWindowDraggedOutIsBroughtBack()
{
    QFETCH(QPoint, grip);
    QFETCH(QPoint, corner);
    QFETCH(QPoint, place);
    grab(grip);
    m_input.moveTo(corner + grip);
    QVERIFY(isAt(corner));
    m_input.releaseLeft();
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    QTRY_COMPARE(m_watch->position(), place);
    QCOMPARE(m_rig->window->pos(), place);
    // It can be taken there again.
    const QRect title(place, QSize(470, 22));
    QVERIFY(title.intersects(Screen));
}

void TestWindowDragging::theSmallWindowIsBroughtBackByItsOwnSize()
{
    m_rig->window->controlWindowSize();
    QTRY_COMPARE(m_rig->window->size(), QSize(470, 324));
    grab(QPoint(300, 12));
    m_input.moveTo(QPoint(400, Screen.bottom() - 15) + QPoint(300, 12));
    QVERIFY(isAt({400, Screen.bottom() - 15}));
    m_input.releaseLeft();
    QVERIFY(isAt({400, Screen.bottom() - 22}));
}

// The right button's press and release in the middle of a drag are nothing to it.
void TestWindowDragging::onlyTheLeftButtonsReleaseEndsADrag()
{
    grab(Title);
    m_input.moveTo(QPoint(130, 130) + Title);
    QVERIFY(isAt({130, 130}));
    settle();
    m_input.moveTo(QPoint(160, 150) + Title);
    QVERIFY(isAt({160, 150}));
    m_input.releaseLeft();
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    m_input.moveTo(QPoint(300, 300) + Title);
    settle();
    QCOMPARE(m_watch->position(), QPoint(160, 150));
}

void TestWindowDragging::onlyTheGroundDrags_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::newRow("the template view's ground") << QPoint(20, 60);
    QTest::newRow("a button of the skin") << QPoint(45, 13);
    QTest::newRow("the menu bar's rest") << QPoint(174, 18);
}

void TestWindowDragging::onlyTheGroundDrags()
{
    QFETCH(QPoint, at);
    grab(at);
    m_input.moveTo(QPoint(100, 100) + at + QPoint(50, 200));
    m_input.releaseLeft();
    settle();
    QCOMPARE(m_watch->position(), QPoint(100, 100));
}

void TestWindowDragging::theOtherButtonsDoNotDrag_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("middle") << 2;
    QTest::newRow("right") << 3;
}

void TestWindowDragging::theOtherButtonsDoNotDrag()
{
    QFETCH(int, button);
    m_input.moveTo(QPoint(100, 100) + Title);
    m_input.press(button);
    QTRY_VERIFY(QGuiApplication::mouseButtons() != Qt::NoButton);
    m_input.moveTo(QPoint(140, 140) + Title);
    m_input.release(button);
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    settle();
    QCOMPARE(m_watch->position(), QPoint(100, 100));
    // The next drag by the left button goes all the same.
    grab(Title);
    m_input.moveTo(QPoint(107, 100) + Title);
    QVERIFY(isAt({107, 100}));
}

// A window that its user has put out of the way by other means stays there until it is dragged.
void TestWindowDragging::aReleaseWithoutADragMovesNothing()
{
    const QPoint aside(400, Screen.bottom() - 10);
    m_rig->window->move(aside);
    QVERIFY(isAt(aside));
    m_input.moveTo(aside + QPoint(300, 5));
    QTest::mouseRelease(m_rig->window->windowHandle(), Qt::LeftButton, {}, Title);
    settle();
    QCOMPARE(m_watch->position(), aside);
}

QTEST_MAIN(TestWindowDragging)
#include "tst_windowdragging.moc"
