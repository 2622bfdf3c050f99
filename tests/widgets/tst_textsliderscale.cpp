// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/BoundHarness.h"
#include "widgets/CTextSlider.h"

#include <QtTest/QtTest>

// The dragged slider where a pixel of the program is two of the screen, and the mouse moves by one
// of those at a time. It is a program of its own, since the scale is that of all of it.

namespace
{

class LastMove : public QObject
{
public:
    QPointF position;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseMove) {
            position = static_cast<QMouseEvent *>(event)->globalPosition();
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

class TestTextSliderScale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSlowDragIsAsFastDownwardsAsUpwards();
};

void TestTextSliderScale::aSlowDragIsAsFastDownwardsAsUpwards()
{
    constexpr int Ratio = 2;
    constexpr int DevicePixels = 40;
    ControlWindow window;
    window.setGeometry(60, 50, 200, 120);
    auto *slider = window.add<CTextSlider>({20, 20, 44, 15});
    slider->setRange(0, 127);
    slider->setValue(64);
    window.open();
    QCOMPARE(slider->devicePixelRatioF(), qreal(Ratio));
    LastMove last;
    slider->installEventFilter(&last);
    RealInput input;
    const QPoint middle = slider->mapToGlobal(slider->rect().center());
    input.moveTo(slider->mapToGlobal(QPoint(3, 4)) * Ratio);
    input.pressLeft();
    QTRY_COMPARE(slider->cursor().shape(), Qt::BlankCursor);
    QTRY_COMPARE(QCursor::pos(), middle);
    for (const int direction : {1, -1}) {
        for (int i = 0; i < DevicePixels; ++i) {
            input.moveBy(0, direction);
            // Seen where it stands, or back in the middle.
            QTRY_COMPARE(last.position.toPoint(), QCursor::pos());
        }
        // Rounding takes half a pixel each time that the pointer is put back.
        const int expected = direction > 0 ? 64 - DevicePixels / Ratio : 64;
        QTRY_VERIFY2(qAbs(slider->value() - expected) <= 1,
                     qPrintable(QString::number(slider->value())));
    }
    input.releaseLeft();
    QTRY_COMPARE(QCursor::pos(), slider->mapToGlobal(QPoint(3, 4)));
}

QTEST_MAIN(TestTextSliderScale)
#include "tst_textsliderscale.moc"
