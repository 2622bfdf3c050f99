// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CFrame.h"
#include "widgets/CText.h"
#include "widgets/CombinedImage.h"
#include "widgets/DoubleBuffer.h"
#include "widgets/FlashFrame.h"
#include "widgets/FontHelpers.h"

#include "widgets/BoundHarness.h"

#include <QtGui/QPaintEngine>
#include <QtWidgets/QApplication>

#include <climits>

// The off-screen picture of a widget, and its three simple users: frame, text and flash.

namespace
{

// Counts what is painted, and says with what.
class Probe : public QWidget, public DoubleBuffer
{
public:
    explicit Probe(QWidget *parent = nullptr)
        : QWidget(parent)
        , DoubleBuffer(this)
    {
    }
    void paintDoubleBuffer(QPainter *painter) override
    {
        ++paints;
        hints = painter->renderHints();
        usedFont = painter->font();
        pen = painter->pen().color();
        clear = bufferPixmap.isNull();
        painter->fillRect(rect(), Qt::red);
    }
    bool isDirty() const { return dirty; }
    QPixmap buffer() const { return bufferPixmap; }

    int paints = 0;
    int paintEvents = 0;
    QPainter::RenderHints hints;
    QFont usedFont;
    QColor pen;
    bool clear = false;
    QList<QPair<QEvent::Type, bool>> results;

protected:
    bool event(QEvent *event) override
    {
        const bool done = eventDoubleBuffer(event);
        results.append({event->type(), done});
        paintEvents += event->type() == QEvent::Paint;
        return done || QWidget::event(event);
    }
};

int greenPixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixel(x, y) == qRgb(0, 255, 0);
        }
    }
    return count;
}

bool hasInk(const QImage &image, QRgb ink)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if ((image.pixel(x, y) & 0xFFFFFFU) == (ink & 0xFFFFFFU)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

class TestPaintingBase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The picture of a widget.
    void anUpdateBeforeTheFirstPolishDoesNothingAndThePolishPaints();
    void eachEventHasItsResult();
    void aPaintEventOfAnUnchangedWidgetPaintsNothing();
    void aChangeIsPaintedOnceHoweverOftenItIsTold();
    void aRepaintIsOnTheScreenAtOnce();
    void aWidgetOfNoWidthStaysDirtyAndPaintsAtTheFirstResizeWithAPaintEvent();
    void aResizeAloneDoesNotPaint();
    void thePainterHasTheWidgetsFontAndPaletteAndNoSmoothing();
    void thePictureIsEmptyBeforeEachPainting();
    void thePictureHasTheDevicePixelsOfTheScreen();

    // Frames.
    void aFrameHasItsDefaults();
    void aFrameDrawsItsPictureAtTheOrigin();
    void aFrameThatGrowsShowsMoreOfItsPicture();
    void aFrameKeepsThePictureThatCoversItAndPaintsAnyOther();
    void aClickOnAFrameGoesNoFurther();
    void aFrameWithoutAPictureShowsWhatIsBelow();

    // Texts.
    void aTextHasItsDefaults();
    void aTextTakesItsPropertiesByName();
    void aTextSaysWhatItShows();
    void aTextGivenANameKeepsIt();
    void aTextIsDrawnInTheTextColourOfTheCurrentGroup();
    void aTextStandsWhereItsAlignmentSays_data();
    void aTextStandsWhereItsAlignmentSays();
    void aTextFollowsItsFontAndItsSize();
    void aTextOfTenThousandCharactersIsHarmless();

    // Flashes.
    void aFlashWithoutAParentDoesNothing();
    void aFlashWithAnInvalidRectangleGoesAroundTheWholeParent_data();
    void aFlashWithAnInvalidRectangleGoesAroundTheWholeParent();
    void aFlashOutlinesItsRectangleForHalfASecond();
    void aClickKeepsTheFlashUnseenUntilTheButtonIsReleased();
    void aButtonHeldElsewhereKeepsNoFlash();
    void aFlashWithoutAnAreaDoesNothing();
    void aFlashGoesWithItsParent();

    // Slices of a picture.
    void aSliceIsPlacedByItsAlignment_data();
    void aSliceIsPlacedByItsAlignment();
    void aSliceComesFromItsRowAndColumn();
    void picturesThatMakeNoSenseDrawNothing();
};

void TestPaintingBase::anUpdateBeforeTheFirstPolishDoesNothingAndThePolishPaints()
{
    QWidget window;
    window.resize(100, 100);
    Probe probe(&window);
    probe.resize(20, 20);
    probe.updateDoubleBuffer();
    probe.repaintDoubleBuffer();
    QVERIFY(probe.isDirty());
    QCOMPARE(probe.paints, 0);
    QCOMPARE(probe.paintEvents, 0);
    probe.ensurePolished();
    QCOMPARE(probe.paints, 1);
    QVERIFY(!probe.isDirty());
    QCOMPARE(probe.paintEvents, 0);
}

void TestPaintingBase::eachEventHasItsResult()
{
    QWidget window;
    window.resize(100, 100);
    Probe probe(&window);
    probe.resize(20, 20);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(probe.paintEvents > 0);
    QSet<QEvent::Type> seen;
    for (const auto &[type, done] : qAsConst(probe.results)) {
        QCOMPARE(done, type == QEvent::Polish || type == QEvent::Paint);
        seen.insert(type);
    }
    QVERIFY(seen.contains(QEvent::Polish));
    QVERIFY(seen.contains(QEvent::Show));
    QVERIFY(seen.contains(QEvent::Resize));
    // Shown, a widget whose content has changed meanwhile paints before its paint event.
    probe.hide();
    probe.updateDoubleBuffer();
    const int before = probe.paints;
    QEvent show(QEvent::Show);
    QVERIFY(!probe.eventDoubleBuffer(&show));
    QCOMPARE(probe.paints, before + 1);
}

void TestPaintingBase::aPaintEventOfAnUnchangedWidgetPaintsNothing()
{
    Probe probe;
    probe.resize(50, 50);
    probe.show();
    QVERIFY(QTest::qWaitForWindowExposed(&probe));
    QTRY_VERIFY(probe.paintEvents > 0);
    const int events = probe.paintEvents;
    const qint64 picture = probe.buffer().cacheKey();
    for (int i = 0; i < 10; ++i) {
        probe.repaint();
    }
    QCOMPARE(probe.paintEvents, events + 10);
    QCOMPARE(probe.paints, 1);
    QCOMPARE(probe.buffer().cacheKey(), picture);
}

void TestPaintingBase::aChangeIsPaintedOnceHoweverOftenItIsTold()
{
    Probe probe;
    probe.resize(50, 50);
    probe.show();
    QVERIFY(QTest::qWaitForWindowExposed(&probe));
    QTRY_VERIFY(probe.paintEvents > 0);
    for (int i = 0; i < 100; ++i) {
        probe.updateDoubleBuffer();
    }
    QVERIFY(probe.isDirty());
    QCOMPARE(probe.paints, 1);
    QTRY_COMPARE(probe.paints, 2);
    QVERIFY(!probe.isDirty());
}

void TestPaintingBase::aRepaintIsOnTheScreenAtOnce()
{
    Probe probe;
    probe.resize(50, 50);
    probe.show();
    QVERIFY(QTest::qWaitForWindowExposed(&probe));
    const int events = probe.paintEvents;
    probe.repaintDoubleBuffer();
    QCOMPARE(probe.paints, 2);
    QCOMPARE(probe.paintEvents, events + 1);
}

void TestPaintingBase::aWidgetOfNoWidthStaysDirtyAndPaintsAtTheFirstResizeWithAPaintEvent()
{
    QWidget window;
    window.resize(100, 100);
    Probe probe(&window);
    probe.setGeometry(0, 0, 0, 20);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(probe.paints, 0);
    QVERIFY(probe.isDirty());
    probe.resize(20, 0);
    probe.updateDoubleBufferPixmap();
    QCOMPARE(probe.paints, 0);
    probe.resize(20, 20);
    QTRY_COMPARE(probe.paints, 1);
    QVERIFY(!probe.isDirty());
}

void TestPaintingBase::aResizeAloneDoesNotPaint()
{
    Probe probe;
    probe.resize(50, 50);
    probe.show();
    QVERIFY(QTest::qWaitForWindowExposed(&probe));
    QTRY_VERIFY(probe.paintEvents > 0);
    const int events = probe.paintEvents;
    probe.resize(80, 80);
    QTRY_VERIFY(probe.paintEvents > events);
    QCOMPARE(probe.paints, 1);
    QCOMPARE(probe.buffer().size(), QSize(50, 50));
}

void TestPaintingBase::thePainterHasTheWidgetsFontAndPaletteAndNoSmoothing()
{
    Probe probe;
    QFont font;
    font.setPixelSize(17);
    font.setBold(true);
    probe.setFont(font);
    QPalette palette;
    palette.setColor(QPalette::WindowText, QColor(1, 2, 3));
    probe.setPalette(palette);
    probe.resize(50, 50);
    probe.ensurePolished();
    QCOMPARE(probe.paints, 1);
    QVERIFY(!probe.hints.testFlag(QPainter::TextAntialiasing));
    QCOMPARE(probe.usedFont.pixelSize(), 17);
    QVERIFY(probe.usedFont.bold());
    QCOMPARE(probe.pen, QColor(1, 2, 3));
}

void TestPaintingBase::thePictureIsEmptyBeforeEachPainting()
{
    class Corner : public Probe
    {
    public:
        QPoint at;
        void paintDoubleBuffer(QPainter *painter) override
        {
            painter->fillRect(QRect(at, QSize(5, 5)), Qt::red);
        }
    };
    Corner corner;
    corner.resize(20, 20);
    corner.ensurePolished();
    corner.at = QPoint(10, 10);
    corner.updateDoubleBuffer();
    corner.updateDoubleBufferPixmap();
    const QImage image = corner.buffer().toImage();
    QCOMPARE(qAlpha(image.pixel(2, 2)), 0);
    QCOMPARE(image.pixel(12, 12), qRgb(255, 0, 0));
}

void TestPaintingBase::thePictureHasTheDevicePixelsOfTheScreen()
{
    Probe probe;
    probe.resize(31, 17);
    probe.ensurePolished();
    const qreal ratio = probe.devicePixelRatioF();
    QCOMPARE(probe.buffer().devicePixelRatio(), ratio);
    QCOMPARE(probe.buffer().deviceIndependentSize(), QSizeF(31, 17));
}

void TestPaintingBase::aFrameHasItsDefaults()
{
    CFrame frame;
    QCOMPARE(frame.focusPolicy(), Qt::ClickFocus);
    QVERIFY(frame.property("backgroundPixmap").value<QPixmap>().isNull());
    QVERIFY(qobject_cast<QFrame *>(&frame) != nullptr);
    QVERIFY(dynamic_cast<DoubleBuffer *>(static_cast<QWidget *>(&frame)) != nullptr);
}

void TestPaintingBase::aFrameDrawsItsPictureAtTheOrigin()
{
    ControlWindow window;
    auto *frame = window.add<CFrame>({20, 20, 40, 40});
    QPixmap picture(10, 10);
    picture.fill(Qt::red);
    QVERIFY(frame->setProperty("backgroundPixmap", picture));
    window.open();
    QCOMPARE(shownAt(frame, {0, 0}), qRgb(255, 0, 0));
    QCOMPARE(shownAt(frame, {9, 9}), qRgb(255, 0, 0));
    QCOMPARE(shownAt(frame, {10, 9}), WindowColour);
    picture.fill(Qt::blue);
    frame->setBackgroundPixmap(picture);
    QCOMPARE(shownAt(frame, {5, 5}), qRgb(0, 0, 255));
}

void TestPaintingBase::aFrameThatGrowsShowsMoreOfItsPicture()
{
    ControlWindow window;
    auto *frame = window.add<CFrame>({20, 20, 10, 10});
    QPixmap picture(40, 40);
    picture.fill(Qt::red);
    frame->setBackgroundPixmap(picture);
    window.open();
    frame->resize(40, 40);
    QCOMPARE(shownAt(frame, {30, 30}), qRgb(255, 0, 0));
}

void TestPaintingBase::aFrameKeepsThePictureThatCoversItAndPaintsAnyOther()
{
    struct Frame : CFrame
    {
        using CFrame::CFrame;
        QPixmap buffer() const { return bufferPixmap; }
    };
    Frame frame;
    frame.resize(40, 30);
    const qreal ratio = frame.devicePixelRatioF();
    QPixmap picture(frame.size() * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::red);
    frame.setBackgroundPixmap(picture);
    frame.ensurePolished();
    QCOMPARE(frame.buffer().cacheKey(), picture.cacheKey());

    frame.resize(41, 30);
    frame.updateDoubleBuffer();
    frame.updateDoubleBufferPixmap();
    QCOMPARE(frame.buffer().size(), frame.size() * ratio);
    QCOMPARE(qAlpha(frame.buffer().toImage().pixel(frame.buffer().width() - 1, 0)), 0);

    frame.resize(40, 30);
    QPixmap large(picture.size());
    large.fill(Qt::red);
    large.setDevicePixelRatio(2 * ratio);
    frame.setBackgroundPixmap(large);
    frame.updateDoubleBufferPixmap();
    QCOMPARE(frame.buffer().devicePixelRatio(), ratio);
    QVERIFY(frame.buffer().cacheKey() != large.cacheKey());

    frame.setBackgroundPixmap(QPixmap());
    frame.updateDoubleBufferPixmap();
    QCOMPARE(frame.buffer().size(), picture.size());
}

void TestPaintingBase::aClickOnAFrameGoesNoFurther()
{
    ControlWindow window;
    auto *frame = window.add<CFrame>({20, 20, 40, 40});
    window.open();
    EventLog parent(&window);
    RealInput input;
    input.moveTo(frame->mapToGlobal(QPoint(10, 10)));
    input.pressLeft();
    QTRY_VERIFY(frame->hasFocus());
    input.moveBy(3, 3);
    input.releaseLeft();
    QTest::mouseDClick(frame, Qt::RightButton);
    // A click beside the frame comes to the window, so all before it has been dealt with.
    input.moveTo(window.mapToGlobal(QPoint(100, 100)));
    input.pressLeft();
    input.releaseLeft();
    QTRY_COMPARE(parent.count(QEvent::MouseButtonRelease), 1);
    QCOMPARE(parent.count(QEvent::MouseButtonPress), 1);
    QCOMPARE(parent.count(QEvent::MouseMove), 0);
    QCOMPARE(parent.count(QEvent::MouseButtonDblClick), 0);
}

void TestPaintingBase::aFrameWithoutAPictureShowsWhatIsBelow()
{
    ControlWindow window;
    auto *frame = window.add<CFrame>({20, 20, 40, 40});
    window.open();
    QCOMPARE(shownInMiddle(frame), WindowColour);
}

void TestPaintingBase::aTextHasItsDefaults()
{
    CText text;
    QCOMPARE(text.focusPolicy(), Qt::ClickFocus);
    QCOMPARE(text.alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QVERIFY(text.text().isNull());
}

void TestPaintingBase::aTextTakesItsPropertiesByName()
{
    CText text;
    QVERIFY(text.setProperty("text", QStringLiteral("Cutoff")));
    QVERIFY(text.setProperty("alignment", QVariant::fromValue(Qt::Alignment(Qt::AlignRight))));
    QCOMPARE(text.property("text").toString(), QStringLiteral("Cutoff"));
    QCOMPARE(text.property("alignment").value<Qt::Alignment>(), Qt::Alignment(Qt::AlignRight));
}

void TestPaintingBase::aTextSaysWhatItShows()
{
    CText text;
    QCOMPARE(text.accessibleName(), QString());
    text.setText(QStringLiteral("CC074"));
    QCOMPARE(text.accessibleName(), QStringLiteral("CC074"));
    // The label is an ellipsis in the program's own fonts, and a letter to everyone else.
    text.setText(QStringLiteral("Resona") + TrimLabel);
    QCOMPARE(text.accessibleName(), QStringLiteral("Resona\u2026"));
    text.setText(QStringLiteral("Cutoff"));
    QCOMPARE(text.accessibleName(), QStringLiteral("Cutoff"));
    text.setText({});
    QCOMPARE(text.accessibleName(), QString());
}

void TestPaintingBase::aTextGivenANameKeepsIt()
{
    CText text;
    text.setText(QStringLiteral("74"));
    text.setAccessibleName(QStringLiteral("CC number"));
    text.setText(QStringLiteral("75"));
    QCOMPARE(text.accessibleName(), QStringLiteral("CC number"));
}

void TestPaintingBase::aTextIsDrawnInTheTextColourOfTheCurrentGroup()
{
    const QColor active(200, 0, 0);
    const QColor disabled(0, 200, 0);
    ControlWindow window;
    auto *text = window.add<CText>({10, 10, 100, 30});
    QFont font;
    font.setPixelSize(20);
    font.setStyleStrategy(QFont::NoAntialias);
    text->setFont(font);
    QPalette palette;
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::Active, QPalette::Text, active);
    palette.setColor(QPalette::Inactive, QPalette::Text, active);
    palette.setColor(QPalette::Disabled, QPalette::Text, disabled);
    text->setPalette(palette);
    text->setText(QStringLiteral("HHHH"));
    window.open();
    const auto look = [&] { return window.grab().toImage().copy(text->geometry()); };
    QVERIFY(hasInk(look(), active.rgb()));
    QVERIFY(!hasInk(look(), qRgb(255, 255, 255)));
    text->setEnabled(false);
    QVERIFY(hasInk(look(), disabled.rgb()));
    QVERIFY(!hasInk(look(), active.rgb()));
}

void TestPaintingBase::aTextStandsWhereItsAlignmentSays_data()
{
    QTest::addColumn<Qt::Alignment>("alignment");
    QTest::addColumn<QRect>("half");
    QTest::newRow("left") << Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter) << QRect(0, 0, 50, 60);
    QTest::newRow("right") << Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter)
                           << QRect(50, 0, 50, 60);
    QTest::newRow("top") << Qt::Alignment(Qt::AlignHCenter | Qt::AlignTop) << QRect(0, 0, 100, 30);
    QTest::newRow("bottom") << Qt::Alignment(Qt::AlignHCenter | Qt::AlignBottom)
                            << QRect(0, 30, 100, 30);
    QTest::newRow("centre") << Qt::Alignment(Qt::AlignCenter) << QRect(30, 15, 40, 30);
}

void TestPaintingBase::aTextStandsWhereItsAlignmentSays()
{
    QFETCH(Qt::Alignment, alignment);
    QFETCH(QRect, half);
    CText text;
    text.resize(100, 60);
    QFont font;
    font.setPixelSize(16);
    font.setStyleStrategy(QFont::NoAntialias);
    text.setFont(font);
    QPalette palette;
    palette.setColor(QPalette::Text, Qt::red);
    palette.setColor(QPalette::Window, Qt::white);
    text.setPalette(palette);
    text.setText(QStringLiteral("HH"));
    text.setAlignment(alignment);
    const QImage image = text.grab().toImage();
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == qRgb(255, 0, 0)) {
                ++(half.contains(x, y) ? inside : outside);
            }
        }
    }
    QVERIFY(inside > 10);
    QCOMPARE(outside, 0);
}

void TestPaintingBase::aTextFollowsItsFontAndItsSize()
{
    ControlWindow window;
    auto *text = window.add<CText>({10, 10, 60, 30});
    text->setText(QStringLiteral("HH"));
    text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont font;
    font.setPixelSize(8);
    text->setFont(font);
    window.open();
    const QImage before = text->grab().toImage();
    font.setPixelSize(24);
    text->setFont(font);
    QVERIFY(text->grab().toImage() != before);
    const QImage narrow = text->grab().toImage();
    text->resize(120, 30);
    QVERIFY(text->grab().toImage().copy(0, 0, 60, 30) != narrow);
}

void TestPaintingBase::aTextOfTenThousandCharactersIsHarmless()
{
    ControlWindow window;
    auto *text = window.add<CText>({10, 10, 60, 30});
    window.open();
    text->setText(QString(10000, u'W'));
    QVERIFY(!text->grab().isNull());
    text->setText(QStringLiteral("W\n").repeated(5000));
    QVERIFY(!text->grab().isNull());
}

void TestPaintingBase::aFlashWithoutAParentDoesNothing()
{
    const auto before = QApplication::topLevelWidgets().size();
    FlashFrame::start(nullptr, QRect(0, 0, 10, 10));
    FlashFrame::start(nullptr, 0, 0, 10, 10);
    QCOMPARE(QApplication::topLevelWidgets().size(), before);
}

void TestPaintingBase::aFlashWithAnInvalidRectangleGoesAroundTheWholeParent_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::newRow("none") << QRect();
    QTest::newRow("left above right") << QRect(QPoint(10, 0), QPoint(5, 20));
    QTest::newRow("top above bottom") << QRect(QPoint(0, 20), QPoint(20, 10));
}

void TestPaintingBase::aFlashWithAnInvalidRectangleGoesAroundTheWholeParent()
{
    QFETCH(QRect, rect);
    ControlWindow window;
    auto *parent = window.add<CFrame>({20, 20, 80, 50});
    window.open();
    FlashFrame::start(parent, rect);
    auto *flash = parent->findChild<FlashFrame *>();
    QVERIFY(flash != nullptr);
    QCOMPARE(flash->geometry(), QRect(0, 0, 80, 50));
    QCOMPARE(greenPixels(window.grab().toImage()), 2 * 80 + 2 * 48);
}

void TestPaintingBase::aFlashOutlinesItsRectangleForHalfASecond()
{
    ControlWindow window;
    auto *parent = window.add<CFrame>({20, 20, 80, 50});
    window.open();
    QElapsedTimer since;
    since.start();
    FlashFrame::start(parent, 5, 6, 30, 20);
    QPointer<FlashFrame> flash = parent->findChild<FlashFrame *>();
    QVERIFY(flash);
    QVERIFY(flash->isVisible());
    QCOMPARE(flash->focusPolicy(), Qt::ClickFocus);
    const QImage image = window.grab().toImage();
    QCOMPARE(greenPixels(image), 2 * 30 + 2 * 18);
    for (const QPoint corner : {QPoint(5, 6), QPoint(34, 6), QPoint(5, 25), QPoint(34, 25)}) {
        QCOMPARE(image.pixel(parent->mapTo(&window, corner)), qRgb(0, 255, 0));
    }
    QCOMPARE(image.pixel(parent->mapTo(&window, QPoint(20, 15))), WindowColour);
    QTRY_VERIFY(flash.isNull());
    QVERIFY(since.elapsed() >= 450);
    QCOMPARE(greenPixels(window.grab().toImage()), 0);
}

void TestPaintingBase::aClickKeepsTheFlashUnseenUntilTheButtonIsReleased()
{
    ControlWindow window;
    auto *parent = window.add<CFrame>({20, 20, 80, 50});
    window.open();
    FlashFrame::start(parent, 5, 6, 30, 20);
    QPointer<FlashFrame> flash = parent->findChild<FlashFrame *>();
    RealInput input;
    input.moveTo(flash->mapToGlobal(QPoint(10, 10)));
    input.pressLeft();
    QTRY_VERIFY(flash && flash->hasFocus());
    QTRY_VERIFY(flash && flash->pixmap().isNull());
    QCOMPARE(greenPixels(window.grab().toImage()), 0);
    // It outlives several of its later ticks.
    QElapsedTimer held;
    held.start();
    QTRY_VERIFY(held.elapsed() > 350 || !flash);
    QVERIFY(flash);
    QVERIFY(flash->isVisible());
    input.releaseLeft();
    QTRY_VERIFY(flash.isNull());
}

void TestPaintingBase::aButtonHeldElsewhereKeepsNoFlash()
{
    ControlWindow window;
    auto *parent = window.add<CFrame>({20, 20, 80, 50});
    window.open();
    RealInput input;
    input.moveTo(window.mapToGlobal(QPoint(150, 120)));
    input.pressLeft();
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::LeftButton);
    FlashFrame::start(parent, 5, 6, 30, 20);
    const QPointer<FlashFrame> flash = parent->findChild<FlashFrame *>();
    QVERIFY(flash);
    QTRY_VERIFY(flash.isNull());
    QCOMPARE(QGuiApplication::mouseButtons(), Qt::LeftButton);
    input.releaseLeft();
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
}

void TestPaintingBase::aFlashWithoutAnAreaDoesNothing()
{
    ControlWindow window;
    FlashFrame::start(&window, 5, 6, 0, 20);
    FlashFrame::start(&window, 5, 6, 10, -3);
    FlashFrame::start(&window, 5, 6, INT_MIN, INT_MIN);
    QWidget empty(&window);
    empty.resize(0, 0);
    FlashFrame::start(&empty, QRect());
    QVERIFY(window.findChildren<FlashFrame *>().isEmpty());
}

void TestPaintingBase::aFlashGoesWithItsParent()
{
    ControlWindow window;
    auto *parent = window.add<CFrame>({20, 20, 80, 50});
    window.open();
    FlashFrame::start(parent, QRect());
    QPointer<FlashFrame> flash = parent->findChild<FlashFrame *>();
    delete parent;
    QVERIFY(flash.isNull());
}

void TestPaintingBase::aSliceIsPlacedByItsAlignment_data()
{
    QTest::addColumn<Qt::Alignment>("alignment");
    QTest::addColumn<QPoint>("at");
    QTest::newRow("left top") << Qt::Alignment(Qt::AlignLeft | Qt::AlignTop) << QPoint(0, 0);
    QTest::newRow("right bottom") << Qt::Alignment(Qt::AlignRight | Qt::AlignBottom)
                                  << QPoint(20, 30);
    QTest::newRow("centred") << Qt::Alignment(Qt::AlignCenter) << QPoint(10, 15);
    QTest::newRow("right, vertically centred")
        << Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter) << QPoint(20, 15);
    QTest::newRow("nothing said") << Qt::Alignment() << QPoint(0, 0);
}

void TestPaintingBase::aSliceIsPlacedByItsAlignment()
{
    QFETCH(Qt::Alignment, alignment);
    QFETCH(QPoint, at);
    CombinedImage combined;
    combined.setPixmap(slices(2, 1, QSize(10, 10)));
    QImage image(30, 40, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    combined.paint(&painter, image.rect(), alignment, 1, 2);
    painter.end();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool inside = QRect(at, QSize(10, 10)).contains(x, y);
            QCOMPARE(image.pixel(x, y), inside ? sliceColour(1, 0).rgb() : 0U);
        }
    }
}

void TestPaintingBase::aSliceComesFromItsRowAndColumn()
{
    CombinedImage combined;
    combined.setPixmap(slices(3, 4, QSize(7, 5)));
    combined.setImageCategories(4);
    for (int category = 0; category < 4; ++category) {
        combined.setCategory(category);
        for (int row = 0; row < 3; ++row) {
            QImage image(7, 5, QImage::Format_ARGB32);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            combined.paint(&painter, image.rect(), Qt::AlignCenter, row, 3);
            painter.end();
            QCOMPARE(image.pixel(0, 0), sliceColour(row, category).rgb());
            QCOMPARE(image.pixel(6, 4), sliceColour(row, category).rgb());
        }
    }
}

void TestPaintingBase::picturesThatMakeNoSenseDrawNothing()
{
    CombinedImage combined;
    QImage image(30, 40, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    combined.paint(&painter, image.rect(), Qt::AlignCenter, 0, 2);
    combined.setPixmap(QPixmap(1, 1));
    combined.paint(&painter, image.rect(), Qt::AlignCenter, 0, 2);
    combined.setPixmap(slices(2, 1, QSize(10, 10)));
    combined.paint(&painter, image.rect(), Qt::AlignCenter, 2, 2);
    combined.paint(&painter, image.rect(), Qt::AlignCenter, -1, 2);
    combined.paint(&painter, image.rect(), Qt::AlignCenter, 0, 0);
    combined.setImageCategories(INT_MAX);
    combined.setCategory(INT_MAX);
    combined.paint(&painter, image.rect(), Qt::AlignCenter, 0, 2);
    painter.end();
    QCOMPARE(combined.category(), INT_MAX - 1);
    combined.setImageCategories(0);
    QCOMPARE(combined.imageCategories(), 1);
    QCOMPARE(combined.category(), 0);
    combined.setImageCategories(-5);
    combined.setCategory(-5);
    QCOMPARE(combined.imageCategories(), 1);
    QCOMPARE(combined.category(), 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            QCOMPARE(image.pixel(x, y), 0U);
        }
    }
}

QTEST_MAIN(TestPaintingBase)
#include "tst_paintingbase.moc"
