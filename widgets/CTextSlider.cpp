// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CTextSlider.h"

#include "widgets/CLineEdit.h"
#include "widgets/NumberFormat.h"

#include <QtCore/QPointer>
#include <QtGui/QCursor>
#include <QtGui/QDoubleValidator>
#include <QtGui/QGuiApplication>
#include <QtGui/QIntValidator>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include <algorithm>
#include <cmath>

namespace
{

// A wide range goes by faster, so that the way from end to end stays the length of an arm.
struct DragSpeed
{
    qint64 widestRange; // maximum less minimum
    double stepsPerPixel;
};
constexpr DragSpeed DragSpeeds[] = {{8, 0.125}, {16, 0.25}, {32, 0.5}, {999, 1.0}};
constexpr double WidestSpeed = 10.0;
constexpr double WidestSpeedFinely = 1.0;
constexpr double FineFactor = 0.25;
constexpr double FineLimit = 1.0;

// How far the held pointer goes where its place is rounded, in pixels.
constexpr int RoundedReach = 8;

double dragSpeed(qint64 range, bool finely)
{
    double speed = finely ? WidestSpeedFinely : WidestSpeed;
    for (const DragSpeed &entry : DragSpeeds) {
        if (range <= entry.widestRange) {
            speed = entry.stepsPerPixel;
            break;
        }
    }
    return finely ? std::min(speed * FineFactor, FineLimit) : speed;
}

void movePointer(const QPoint &to)
{
    if (QCursor::pos() != to) {
        QCursor::setPos(to);
    }
}

bool canPlacePointer()
{
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool isWhole(double number)
{
    return std::trunc(number) == number;
}

} // namespace

CTextSlider::CTextSlider(QWidget *parent)
    : BoundSlider(Qt::AlignLeft | Qt::AlignVCenter, parent)
    , m_format(QStringLiteral("%.0f"))
    , m_editor(new CLineEdit(this))
{
    m_editMaxLength = m_editor->maxLength();
    m_editor->hide();
    connect(m_editor, &CLineEdit::accepted, this, &CTextSlider::acceptEdit);
    connect(m_editor, &CLineEdit::aborted, this, &CTextSlider::abortEdit);
    updateText();
}

CTextSlider::~CTextSlider()
{
    // The editor's last signals, sent while it is deleted as a child, find nobody here any more.
    m_editor->disconnect(this);
}

// --- Properties ----------------------------------------------------------------------------------

void CTextSlider::setFormat(const QString &format)
{
    m_format = format;
    updateText();
}

void CTextSlider::setOffset(double offset)
{
    m_offset = offset;
    updateText();
}

void CTextSlider::setMultiplier(double multiplier)
{
    m_multiplier = multiplier;
    updateText();
}

void CTextSlider::setDirectEdit(bool direct)
{
    m_directEdit = direct;
    updateDoubleBuffer();
}

void CTextSlider::setEditMaxLength(int length)
{
    m_editMaxLength = std::max(length, 0);
    updateDoubleBuffer();
}

void CTextSlider::setEditInputMask(const QString &mask)
{
    m_editInputMask = mask;
    updateDoubleBuffer();
}

void CTextSlider::setEditValidatorRegExp(const QString &expression)
{
    m_editValidatorRegExp = expression;
    updateDoubleBuffer();
}

// --- What shows ----------------------------------------------------------------------------------

void CTextSlider::updateValue()
{
    BoundSlider::updateValue();
    updateText();
}

void CTextSlider::updateText()
{
    m_shownText = formatNumber(m_format, m_offset + value() * m_multiplier);
    updateDoubleBuffer();
}

void CTextSlider::paintDoubleBuffer(QPainter *painter)
{
    if (m_editor->isVisible()) {
        return;
    }
    painter->setPen(palette().color(QPalette::Text));
    painter->drawText(rect(), static_cast<int>(alignment()), m_shownText);
}

void CTextSlider::changeEvent(QEvent *event)
{
    BoundSlider::changeEvent(event);
    if (changesLettering(event)) {
        updateDoubleBuffer();
    }
    if (!isEnabled()) {
        endDrag();
    }
}

void CTextSlider::hideEvent(QHideEvent *event)
{
    BoundSlider::hideEvent(event);
    // The release will go elsewhere.
    endDrag();
}

// --- Dragging ------------------------------------------------------------------------------------

void CTextSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        BoundSlider::mousePressEvent(event);
        return;
    }
    beginDrag(event);
}

void CTextSlider::beginDrag(const QMouseEvent *event)
{
    m_dragging = true;
    m_dragRemainder = 0;
    m_savedCursorPos = QCursor::pos();
    m_dragCenter = mapToGlobal(rect().center());
    m_lastPosition = event->globalPosition().toPoint();
    setCursor(Qt::BlankCursor);
    // A press from elsewhere than the pointer, by a pen or a finger, leaves it alone; and a place
    // beside the screens would never be reached.
    m_holding = canPlacePointer() && rect().contains(mapFromGlobal(m_savedCursorPos)) &&
                QGuiApplication::screenAt(m_dragCenter) != nullptr;
    if (m_holding) {
        movePointer(m_dragCenter);
        m_lastPosition = m_dragCenter;
    }
}

int CTextSlider::takeMovement(const QMouseEvent *event)
{
    if (!m_holding) {
        const QPoint position = event->globalPosition().toPoint();
        const int pixels = position.y() - m_lastPosition.y();
        m_lastPosition = position;
        return pixels;
    }
    // Where the pointer is now, and not where the event has seen it: events from before the pointer
    // was put back still arrive, and their way is counted already.
    const QPoint position = QCursor::pos();
    const int pixels = position.y() - m_lastPosition.y();
    m_lastPosition = position;
    // On a fine screen the pointer stands between whole pixels, too, and its place is rounded. Put
    // back at every pixel, it would go twice as fast downwards as upwards under a slow hand.
    const int reach = devicePixelRatioF() > 1 ? RoundedReach : 1;
    const QPoint offset = position - m_dragCenter;
    if (std::max(std::abs(offset.x()), std::abs(offset.y())) >= reach) {
        QCursor::setPos(m_dragCenter);
        m_lastPosition = m_dragCenter;
    }
    return pixels;
}

void CTextSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging || !event->buttons().testFlag(Qt::LeftButton)) {
        BoundSlider::mouseMoveEvent(event);
        return;
    }
    const int pixels = takeMovement(event);
    if (pixels != 0) {
        dragBy(pixels, event->modifiers().testFlag(Qt::ShiftModifier));
    }
}

void CTextSlider::dragBy(int pixels, bool finely)
{
    const double speed = dragSpeed(qint64(maximum()) - minimum(), finely);
    const int delta = pixels + m_dragRemainder;
    const double steps = std::trunc(speed * delta);
    m_dragRemainder = static_cast<int>(std::trunc(delta - steps / speed));
    const int before = value();
    const QPointer<CTextSlider> self(this);
    setBoundedValue(before - steps);
    if (self && value() != before) {
        Q_EMIT actionTriggered(SliderMove);
    }
}

void CTextSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        BoundSlider::mouseReleaseEvent(event);
        return;
    }
    endDrag();
}

void CTextSlider::endDrag()
{
    if (!m_dragging) {
        return;
    }
    m_dragging = false;
    if (canPlacePointer()) {
        movePointer(m_savedCursorPos);
    }
    unsetCursor();
}

void CTextSlider::wheelEvent(QWheelEvent *event)
{
    event->accept();
    const int steps = wheelSteps(event);
    const bool up = steps > 0;
    // Whoever hears of a step may delete the control.
    const QPointer<CTextSlider> self(this);
    for (int i = 0; i < qAbs(steps); ++i) {
        const int before = value();
        if (up) {
            stepUp();
        } else {
            stepDown();
        }
        if (!self || value() == before) {
            break;
        }
    }
}

// --- The editor ----------------------------------------------------------------------------------

void CTextSlider::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (m_directEdit && event->button() == Qt::LeftButton) {
        openEditor();
    } else {
        BoundSlider::mouseDoubleClickEvent(event);
    }
}

void CTextSlider::openEditor()
{
    m_editAborted = false;
    m_editor->setGeometry(rect());
    m_editor->setMaxLength(m_editMaxLength);
    // The numbers are written with a point in every country, as they are shown.
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    const QValidator *old = m_editor->validator();
    QValidator *validator = nullptr;
    if (isWhole(m_offset) && isWhole(m_multiplier)) {
        validator = new QIntValidator(m_editor);
    } else {
        validator = new QDoubleValidator(m_editor);
    }
    validator->setLocale(locale);
    m_editor->setValidator(validator);
    delete old;
    m_editor->setAlignment(alignment());
    m_editor->setText(m_shownText);
    m_editor->selectAll();
    m_editor->show();
    m_editor->setFocus();
    updateDoubleBuffer();
}

void CTextSlider::acceptEdit()
{
    if (!m_editAborted) {
        bool isNumber = false;
        const double number = m_editor->text().toDouble(&isNumber);
        if (isNumber) {
            setBoundedValue(number / m_multiplier - m_offset);
            Q_EMIT actionTriggered(SliderNoAction);
        }
    }
    closeEditor();
}

void CTextSlider::abortEdit()
{
    m_editAborted = true;
    closeEditor();
}

void CTextSlider::closeEditor()
{
    m_editor->hide();
    updateDoubleBuffer();
}

// Cut towards zero, and to the range. No number at all leaves the value as it is.
void CTextSlider::setBoundedValue(double newValue)
{
    if (!std::isnan(newValue)) {
        setValue(static_cast<int>(
            std::clamp(std::trunc(newValue), double(minimum()), double(maximum()))));
    }
}
