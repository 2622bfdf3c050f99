// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemControllerFactory.h"
#include "memory/MemProxy.h"
#include "memory/MemoryHarness.h"
#include "widgets/RealInput.h"

#include <QtTest/QtTest>

#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QWidget>

#include <functional>

// What the tests of bound controls share: a memory of nine banks, a window, and pictures whose
// slices tell by their colour which they are.

// Knob 1 of template 1 of the edit buffer, and what belongs to that template.
inline const ParamAddress CCNumberA1(0, 0, 0, 1);
inline const ParamAddress DisplayFormatA1(0, 0, 0, 2);
inline const ParamAddress DisplayNameA1(0, 0, 0, 0);
inline const ParamAddress TemplateName1(0, 0, 13, -1);
inline const ParamAddress TemplateNumber(0, 52, -1, -1);
inline const QString CCName = QStringLiteral("knobA1/ccNumber");
inline const QString FormatName = QStringLiteral("knobA1/displayFormat");
inline const QString TemplateNameName = QStringLiteral("templateName");

constexpr QRgb WindowColour = qRgb(10, 20, 30);

// The colour of a slice of the picture below.
inline QColor sliceColour(int row, int category)
{
    return {50 + row * 60, 40 + category * 50, 200};
}

// A grid of slices of the size given, each of one colour.
inline QPixmap slices(int rows, int categories, const QSize &slice)
{
    QPixmap picture(slice.width() * categories, slice.height() * rows);
    QPainter painter(&picture);
    for (int row = 0; row < rows; ++row) {
        for (int category = 0; category < categories; ++category) {
            painter.fillRect(QRect(QPoint(category * slice.width(), row * slice.height()), slice),
                             sliceColour(row, category));
        }
    }
    return picture;
}

// A window with a memory behind it. Controls are made as its children, then bound.
class ControlWindow : public QWidget
{
public:
    ControlWindow()
        : factory(&api)
    {
        makeNineBanks(&api);
        api.setParam(CCNumberA1, 64);
        QPalette colours = palette();
        colours.setColor(QPalette::Window, QColor(WindowColour));
        setPalette(colours);
        setFocusPolicy(Qt::ClickFocus);
        setGeometry(300, 200, 240, 180);
    }
    ~ControlWindow() override
    {
        // Before the memory and the factory go, which the controls point to.
        qDeleteAll(findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly));
    }

    template <typename Control>
    Control *add(const QRect &place)
    {
        auto *made = new Control(this);
        made->setGeometry(place);
        return made;
    }
    void bind() { createMemProxyController(&factory, this); }
    void open()
    {
        setFocus();
        show();
        QVERIFY(QTest::qWaitForWindowExposed(this));
        activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(this));
    }
    int at(const ParamAddress &address) const { return valueAt(api, address); }

    RemoteMemAPI api;
    MemControllerFactory factory;
};

// The colour of a point of the widget as the window shows it.
inline QRgb shownAt(const QWidget *widget, const QPoint &position)
{
    QWidget *shell = widget->window();
    return shell->grab().toImage().pixel(widget->mapTo(shell, position)) | 0xFF000000U;
}
inline QRgb shownInMiddle(const QWidget *widget)
{
    return shownAt(widget, widget->rect().center());
}

// A turn of a wheel at a place of the widget, as the window system sends it.
inline void turnWheel(QWidget *widget, int angle, const QPoint &at, int sideways = 0,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWheelEvent event(at, widget->mapToGlobal(at), QPoint(), QPoint(sideways, angle), Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget, &event);
}
inline void turnWheel(QWidget *widget, int angle)
{
    turnWheel(widget, angle, widget->rect().center());
}

// Counts and keeps the mouse and key events that come to a parent.
class EventLog : public QObject
{
public:
    explicit EventLog(QObject *watched) { watched->installEventFilter(this); }
    int count(QEvent::Type type) const { return int(m_types.count(type)); }
    void clear() { m_types.clear(); }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        m_types.append(event->type());
        return false;
    }

private:
    QList<QEvent::Type> m_types;
};
