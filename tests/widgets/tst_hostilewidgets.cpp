// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/BoundHarness.h"
#include "widgets/CFrame.h"
#include "widgets/CLineEdit.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"
#include "widgets/CTextSlider.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtTest/QtTest>

#include <QtCore/QRandomGenerator>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>

#include <limits>

// Every control, bound to a memory, is given values that make no sense, sizes from nothing to large
// and whatever mouse, keys and wheel can do, in an order that is the same in every run. What each
// value does is told by the tests of the controls; here nothing may fall, hang or read what isn't
// its own, which the sanitizers see.

namespace
{

constexpr int Rounds = 1500;
using Make = std::function<QWidget *(ControlWindow &)>;

template <typename Control>
Make made(const QString &address = {})
{
    return [address](ControlWindow &window) {
        auto *control = window.add<Control>({10, 10, 60, 30});
        if (!address.isEmpty()) {
            control->setProperty("namedAddress", address);
            control->setProperty("checkable", true);
        }
        return control;
    };
}

QPixmap filled(const QSize &size, qreal ratio)
{
    QPixmap pixmap(size);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::red);
    return pixmap;
}

class Hostile
{
public:
    explicit Hostile(quint32 seed)
        : m_random(seed)
    {
    }

    void setAProperty(QWidget *widget)
    {
        // The properties of a plain widget are Qt's own.
        const QMetaObject *meta = widget->metaObject();
        const int first = QWidget::staticMetaObject.propertyCount();
        if (meta->propertyCount() == first) {
            return;
        }
        const QMetaProperty property = meta->property(below(meta->propertyCount() - first) + first);
        if (property.isWritable() && qstrcmp(property.name(), "namedAddress") != 0) {
            property.write(widget, value(property));
        }
    }

    void resize(QWidget *widget)
    {
        widget->resize(oneOf<int>({0, 1, 2, 15, 60, 700}), oneOf<int>({0, 1, 2, 15, 30, 500}));
    }

    void touch(QWidget *widget)
    {
        const QPoint at(below(80) - 10, below(50) - 10);
        const auto button = oneOf<Qt::MouseButton>({Qt::LeftButton, Qt::RightButton});
        const auto modifiers =
            oneOf<Qt::KeyboardModifiers>({Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier});
        switch (below(6)) {
        case 0:
            QTest::mouseClick(widget, button, modifiers, at);
            break;
        case 1:
            QTest::mouseDClick(widget, button, modifiers, at);
            break;
        case 2: {
            QTest::mousePress(widget, button, modifiers, at);
            QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(QPointF(3, below(2000))),
                             Qt::NoButton, button, modifiers);
            QApplication::sendEvent(widget, &move);
            QTest::mouseRelease(widget, button, modifiers, at);
            break;
        }
        case 3: {
            const QPoint angle(0, oneOf<int>({-100000, -120, -7, 0, 1, 60, 120, 361, 100000}));
            QWheelEvent wheel(at, widget->mapToGlobal(QPointF(at)), {}, angle, Qt::NoButton,
                              modifiers, Qt::NoScrollPhase, false);
            QApplication::sendEvent(widget, &wheel);
            break;
        }
        case 4:
            QTest::keyClick(
                widget,
                oneOf<Qt::Key>({Qt::Key_Home, Qt::Key_End, Qt::Key_Up, Qt::Key_Down, Qt::Key_Left,
                                Qt::Key_Right, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Return,
                                Qt::Key_Escape, Qt::Key_Space, Qt::Key_A, Qt::Key_Backspace}),
                modifiers);
            break;
        default:
            widget->setVisible(below(4) != 0);
            widget->setEnabled(below(4) != 0);
            break;
        }
    }

    void turnTheList(CListView *list)
    {
        const int index = oneOf<int>({-1, 0, 1, 3, 100, std::numeric_limits<int>::max()});
        switch (below(8)) {
        case 0:
            list->insertItem(index, {text(), text()});
            break;
        case 1:
            list->addItem({text()});
            break;
        case 2:
            list->removeItem(index);
            break;
        case 3:
            list->addMark(index);
            break;
        case 4:
            list->setItemIcon(index, pixmap());
            break;
        case 5:
            list->setColumnCount(oneOf<int>({-1, 0, 1, 3, 50}));
            break;
        case 6:
            list->setTrim(below(2) == 0);
            list->setTrimLabel(text());
            break;
        default:
            list->setColumnIcon(number());
            list->setItemMarginWidth(number());
            list->setItemMarginHeight(number());
            list->setIconMarginWidth(number());
            list->adjustScroll();
            break;
        }
    }

private:
    int below(int end) { return m_random.bounded(end); }
    template <typename Value>
    Value oneOf(std::initializer_list<Value> values)
    {
        return *(values.begin() + below(int(values.size())));
    }
    int number()
    {
        return oneOf<int>({std::numeric_limits<int>::min(), -1, 0, 1, 2, 15, 1000,
                           std::numeric_limits<int>::max()});
    }
    double real()
    {
        using Limits = std::numeric_limits<double>;
        return oneOf<double>({Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                              Limits::max(), -1.0, 0.0, 0.5, 1.0});
    }
    QString text()
    {
        return oneOf<QString>({QString(), QStringLiteral("%s%n%d"), QStringLiteral("%.99999f"),
                               QStringLiteral("1,,x"), QStringLiteral("40,20"),
                               QStringLiteral("[a-"), QStringLiteral("\t\n\r"), QString(QChar(0)),
                               QString(QChar(0xD800)), QString(10000, u'W')});
    }
    QPixmap pixmap()
    {
        return oneOf<QPixmap>({QPixmap(), filled({1, 1}, 1), filled({40, 57}, 1),
                               filled({40, 57}, 2), filled({3000, 1}, 1), filled({2, 3000}, 3)});
    }
    QVariant value(const QMetaProperty &property)
    {
        if (property.isEnumType()) {
            return property.isFlagType() ? below(1 << 10) : below(2);
        }
        switch (property.metaType().id()) {
        case QMetaType::Bool:
            return below(2) == 0;
        case QMetaType::Int:
            return number();
        case QMetaType::Double:
            return real();
        case QMetaType::QString:
            return text();
        case QMetaType::QPixmap:
            return pixmap();
        case QMetaType::QColor:
            return QColor::fromRgba(m_random.generate());
        default:
            return {};
        }
    }

    QRandomGenerator m_random;
};

} // namespace

class TestHostileWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new RemoteEditorStyle); }
    void nothingThatComesMakesAControlFall_data();
    void nothingThatComesMakesAControlFall();
};

void TestHostileWidgets::nothingThatComesMakesAControlFall_data()
{
    QTest::addColumn<Make>("make");
    QTest::newRow("frame") << made<CFrame>();
    QTest::newRow("text") << made<CText>();
    QTest::newRow("on/off button") << made<COnOffButton>(FormatName);
    QTest::newRow("radio button") << made<CRadioButton>(FormatName);
    QTest::newRow("spin button") << made<CSpinButton>(CCName);
    QTest::newRow("text slider") << made<CTextSlider>(CCName);
    QTest::newRow("line edit") << made<CLineEdit>(TemplateNameName);
    QTest::newRow("list") << Make([](ControlWindow &window) {
        auto *list = window.add<CListView>({10, 10, 60, 30});
        list->setScrollBar(window.add<QScrollBar>({80, 10, 16, 100}));
        return list;
    });
    QTest::newRow("scroll bar") << made<QScrollBar>();
}

void TestHostileWidgets::nothingThatComesMakesAControlFall()
{
    QFETCH(const Make, make);
    ControlWindow window;
    QWidget *widget = make(window);
    auto *list = qobject_cast<CListView *>(widget);
    window.bind();
    window.open();
    Hostile hostile(1);
    for (int round = 0; round < Rounds; ++round) {
        hostile.setAProperty(widget);
        if (list != nullptr) {
            hostile.turnTheList(list);
        }
        hostile.touch(widget);
        if (round % 5 == 0) {
            hostile.resize(widget);
        }
        if (round % 3 == 0) {
            QVERIFY(!window.grab().isNull());
        }
    }
    QCoreApplication::processEvents();
}

QTEST_MAIN(TestHostileWidgets)
#include "tst_hostilewidgets.moc"
