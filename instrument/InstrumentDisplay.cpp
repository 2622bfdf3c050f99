// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentDisplay.h"

#include "instrument/InstrumentLooks.h"

#include <QtGui/QPainter>

namespace looks = InstrumentLooks;
using looks::Face;

namespace
{

constexpr QSize DisplaySize(332, 88);
constexpr int BezelWidth = 4;
constexpr int Left = 12;
constexpr int Right = DisplaySize.width() - 12; // one behind the last column
constexpr int HeadBaseline = 18;
constexpr int TemplateBaseline = 41;
constexpr int RuleY = 47;
constexpr int KnobBaseline = 69;
constexpr QRect Bar(Left, 76, Right - Left, 4);
constexpr int TextColumn = Left + 38; // names, behind the number and the knob's place

// A word that stands out, dark with light letters; returns where it begins.
int tag(QPainter &painter, int right, const QString &word)
{
    const int width = looks::textWidth(Face::Small, word) + 6;
    const QRect box(right - width, HeadBaseline - 9, width, 11);
    looks::rounded(painter, box, 1.5, looks::GlassInk);
    looks::text(painter, Face::Small, QPoint(box.left() + 3, HeadBaseline), word, looks::Glass);
    return box.left();
}

} // namespace

InstrumentDisplay::InstrumentDisplay(QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(DisplaySize);
    describe();
}

QSize InstrumentDisplay::sizeHint() const
{
    return DisplaySize;
}

void InstrumentDisplay::setContent(const Content &content)
{
    if (m_content != content) {
        m_content = content;
        describe();
        update();
    }
}

void InstrumentDisplay::describe()
{
    QString words =
        tr("Template %1 %2, %3 mode")
            .arg(m_content.templateNumber)
            .arg(m_content.templateName, m_content.isControlChange ? tr("CC") : tr("remote"));
    if (!m_content.knob.isEmpty()) {
        words +=
            tr("; knob %1 %2: %3").arg(m_content.knob, m_content.knobName, m_content.knobValue);
    }
    setAccessibleDescription(words);
}

void InstrumentDisplay::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF all(rect());
    looks::rounded(painter, all, 5, looks::Light);
    looks::rounded(painter, all.adjusted(0, 0, 0, -1), 5, looks::Bezel);
    const QRectF glass = all.adjusted(BezelWidth, BezelWidth, -BezelWidth, -BezelWidth - 1);
    looks::rounded(painter, glass, 2.5, looks::GlassEdge);
    looks::rounded(painter, glass.adjusted(1, 1, 0, 0), 2, looks::Glass);
    paintTemplate(painter);
    painter.fillRect(QRect(Left, RuleY, Right - Left, 1), looks::GlassRule);
    paintKnob(painter);
}

void InstrumentDisplay::paintTemplate(QPainter &painter) const
{
    int right = Right;
    right = tag(painter, right, m_content.isControlChange ? tr("CC") : tr("REMOTE")) - 4;
    if (m_content.isEdited) {
        right = tag(painter, right, tr("EDIT")) - 4;
    }
    if (!m_content.isPlugged) {
        right = tag(painter, right, tr("NO CABLE")) - 4;
    }
    const QString head =
        m_content.vstiName.isEmpty() ? tr("Template") : tr("VSTi: %1").arg(m_content.vstiName);
    looks::text(painter, Face::Small, QPoint(Left, HeadBaseline),
                looks::fitted(Face::Small, head, right - Left), looks::GlassQuietInk);
    looks::text(painter, Face::Large, QPoint(Left, TemplateBaseline),
                QStringLiteral("%1").arg(m_content.templateNumber, 2, 10, QLatin1Char('0')),
                looks::GlassInk, 2);
    looks::text(painter, Face::Large, QPoint(TextColumn, TemplateBaseline),
                looks::fitted(Face::Large, m_content.templateName, Right - TextColumn, 2),
                looks::GlassInk, 2);
}

void InstrumentDisplay::paintKnob(QPainter &painter) const
{
    if (m_content.knob.isEmpty()) {
        looks::text(painter, Face::Small, QPoint(Left, KnobBaseline - 4),
                    tr("Turn a knob: drag it up or down."), looks::GlassQuietInk);
        return;
    }
    looks::text(painter, Face::Large, QPoint(Left, KnobBaseline), m_content.knob, looks::GlassInk,
                2);
    const int valueLeft = Right - looks::textWidth(Face::Large, m_content.knobValue, 2);
    looks::text(painter, Face::Large, QPoint(valueLeft, KnobBaseline), m_content.knobValue,
                looks::GlassInk, 2);
    looks::text(painter, Face::Large, QPoint(TextColumn, KnobBaseline),
                looks::fitted(Face::Large, m_content.knobName, valueLeft - 8 - TextColumn, 2),
                looks::GlassInk, 2);
    looks::rounded(painter, Bar, 1, looks::GlassRule);
    const double from = Bar.left() + m_content.barFrom * (Bar.width() - 2);
    const double to = Bar.left() + m_content.barTo * (Bar.width() - 2) + 2;
    looks::rounded(painter, QRectF(from, Bar.top(), to - from, Bar.height()), 1, looks::GlassInk);
}
