// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentWindow.h"

#include "instrument/InstrumentCable.h"
#include "instrument/InstrumentDial.h"
#include "instrument/InstrumentDisplay.h"
#include "instrument/InstrumentKey.h"
#include "instrument/InstrumentLamp.h"
#include "instrument/InstrumentLooks.h"
#include "instrument/InstrumentSwitch.h"
#include "instrument/VirtualInstrument.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QPainter>

#include <algorithm>

namespace looks = InstrumentLooks;
using looks::Face;

namespace
{

constexpr int ColumnCount = 4;
constexpr int RowCount = InstrumentKnobCount / ColumnCount;
constexpr int KnobMiddle = 64;
constexpr int KnobMaximum = 127;
constexpr QLatin1String NoAssignId("204143dff");
constexpr int PlayingNotch = 4;
constexpr int AssigningNotch = 1;

constexpr QSize WindowSize(476, 436);
constexpr int StripHeight = 28;
constexpr QPoint DisplayPosition(8, 38);
constexpr QPoint KeysPosition(350, 54);
constexpr int KeyColumnStep = 60;
constexpr int KeyRowStep = 25;
constexpr QRect KeysHeading(350, 38, 118, 12);
constexpr QRect KnobPlate(8, 136, 460, 292);
constexpr QPoint KnobsPosition(36, 156);
constexpr int KnobColumnStep = 107;
constexpr int KnobRowStep = 90;
constexpr int KnobWidth = 104;
constexpr int KnobRingMiddle = 28; // within a knob, from its top

QString knobPlace(int index)
{
    return QStringLiteral("%1%2")
        .arg(QChar(u'A' + static_cast<char16_t>(index % ColumnCount)))
        .arg(index / ColumnCount + 1);
}

QString text(const QByteArray &ascii)
{
    return QString::fromLatin1(ascii);
}

// What the fixed controls of a track are called. What any other identifier stands for is known to
// the plug-in alone.
QString remoteName(const QString &id)
{
    if (id == NoAssignId) {
        return InstrumentWindow::tr("No Assign");
    }
    if (id == QLatin1String("100000401")) {
        return InstrumentWindow::tr("Volume");
    }
    if (id == QLatin1String("100001069")) {
        return InstrumentWindow::tr("Pan Left-Right");
    }
    const QLatin1String quickControl("10000000");
    if (id.startsWith(quickControl) && id.size() == quickControl.size() + 1) {
        const int number = id.back().digitValue();
        if (number >= 1 && number <= 8) {
            return InstrumentWindow::tr("QuickCtrl%1").arg(number);
        }
    }
    return id;
}

QString ccName(const InstrumentKnob &knob)
{
    const QString name = text(knob.displayName.trimmed());
    return name.isEmpty() ? QStringLiteral("CC#=%1").arg(knob.ccNumber, 3, 10, QLatin1Char('0'))
                          : name;
}

QString ccDetail(const InstrumentKnob &knob)
{
    return QStringLiteral("CC%1").arg(knob.ccNumber, 3, 10, QLatin1Char('0'));
}

bool isBipolar(const InstrumentKnob &knob)
{
    return knob.displayFormat == 1;
}

QString shownValue(const InstrumentKnob &knob, int value)
{
    if (!isBipolar(knob)) {
        return QString::number(value);
    }
    const int signedValue = value - KnobMiddle;
    return (signedValue > 0 ? QStringLiteral("+") : QString()) + QString::number(signedValue);
}

void name(QWidget *widget, const QString &objectName, const QString &accessible,
          const QString &toolTip)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessible);
    widget->setToolTip(toolTip);
}

} // namespace

InstrumentWindow::InstrumentWindow(VirtualInstrument &instrument, InstrumentCable &cable,
                                   QWidget *parent)
    : QWidget(parent)
    , m_instrument(instrument)
    , m_cable(cable)
    , m_display(new InstrumentDisplay(this))
{
    setObjectName(QStringLiteral("InstrumentWindow"));
    setWindowTitle(tr("TARN/TERN Instrument"));
    setAccessibleName(windowTitle());
    setFixedSize(WindowSize);
    m_positions.fill(KnobMiddle);

    m_display->move(DisplayPosition);
    name(m_display, QStringLiteral("display"), tr("Display"),
         tr("The current template, and the knob turned last."));
    makeStrip();
    makeKeys();
    makeKnobs();

    m_frame.setSingleShot(true);
    m_frame.setInterval(FrameMs);
    connect(&m_frame, &QTimer::timeout, this, &InstrumentWindow::lookAtFlags);
    connect(this, &InstrumentWindow::flagRaised, &m_frame, qOverload<>(&QTimer::start),
            Qt::QueuedConnection);

    m_instrument.setChangeCallback([this] { notify(m_changed); });
    m_cable.setActivityCallback([this] { notify(m_heard); });
    refresh();
}

InstrumentWindow::~InstrumentWindow()
{
    // From here on nobody calls, whatever still arrives; what was posted ends with this object.
    m_cable.setActivityCallback({});
    m_instrument.setChangeCallback({});
}

QSize InstrumentWindow::sizeHint() const
{
    return WindowSize;
}

// --- Parts --------------------------------------------------------------------------------------

void InstrumentWindow::makeStrip()
{
    m_cableSwitch = new InstrumentSwitch(tr("CABLE"), this);
    m_cableSwitch->move(WindowSize.width() - m_cableSwitch->width() - 6, 4);
    name(m_cableSwitch, QStringLiteral("cable"), tr("Cable"),
         tr("Pulls out the MIDI cable to the editor, and puts it back."));
    m_cableSwitch->setChecked(m_cable.isPlugged());
    connect(m_cableSwitch, &QAbstractButton::toggled, this, &InstrumentWindow::setPlugged);

    m_lamp = new InstrumentLamp(tr("MIDI"), this);
    m_lamp->move(m_cableSwitch->x() - m_lamp->width() - 8, 4);
    name(m_lamp, QStringLiteral("midiLamp"), tr("MIDI lamp"),
         tr("Lights while something arrives from the editor."));
}

InstrumentKey *InstrumentWindow::makeKey(int column, int row, const QString &caption,
                                         const QString &objectName, const QString &toolTip)
{
    auto *key = new InstrumentKey(InstrumentKey::Face::Caption, caption, this);
    key->move(KeysPosition + QPoint(column * KeyColumnStep, row * KeyRowStep));
    key->setHasLamp(true);
    name(key, objectName, caption, toolTip);
    return key;
}

void InstrumentWindow::makeKeys()
{
    m_down = new InstrumentKey(InstrumentKey::Face::ArrowDown, QString(), this);
    m_down->move(KeysPosition);
    name(m_down, QStringLiteral("templateDown"), tr("Previous template"),
         tr("Goes to the template before. The editor follows."));
    m_up = new InstrumentKey(InstrumentKey::Face::ArrowUp, QString(), this);
    m_up->move(KeysPosition + QPoint(KeyColumnStep, 0));
    name(m_up, QStringLiteral("templateUp"), tr("Next template"),
         tr("Goes to the next template. The editor follows."));
    for (InstrumentKey *key : {m_down, m_up}) {
        key->setAutoRepeat(true);
    }
    connect(m_down, &QAbstractButton::clicked, this, [this] { stepTemplate(-1); });
    connect(m_up, &QAbstractButton::clicked, this, [this] { stepTemplate(1); });

    m_remote = makeKey(0, 1, tr("Remote"), QStringLiteral("remote"),
                       tr("The knobs of this template steer the parameters of a plug-in."));
    m_cc = makeKey(1, 1, tr("CC"), QStringLiteral("cc"),
                   tr("The knobs of this template send control changes."));
    connect(m_remote, &QAbstractButton::clicked, this, [this] { m_instrument.setControlType(0); });
    connect(m_cc, &QAbstractButton::clicked, this, [this] { m_instrument.setControlType(1); });

    m_assign = makeKey(0, 2, tr("Assign"), QStringLiteral("assign"),
                       tr("While it is lit, a knob chooses its control change number."));
    m_assign->setCheckable(true);
    connect(m_assign, &QAbstractButton::toggled, this, [this] { showAll(); });
    m_store = makeKey(1, 2, tr("Store"), QStringLiteral("store"),
                      tr("Stores what was edited. The lamp tells that there are edits."));
    connect(m_store, &QAbstractButton::clicked, this, [this] { m_instrument.pressStore(); });
}

void InstrumentWindow::makeKnobs()
{
    for (int index = 0; index < InstrumentKnobCount; ++index) {
        auto *dial = new InstrumentDial(this);
        dial->move(KnobsPosition +
                   QPoint(index % ColumnCount * KnobColumnStep, index / ColumnCount * KnobRowStep));
        dial->setObjectName(QStringLiteral("knob") + knobPlace(index));
        connect(dial, &QDial::valueChanged, this,
                [this, index](int value) { turned(index, value); });
        m_dials[static_cast<std::size_t>(index)] = dial;
    }
}

// --- From the instrument ------------------------------------------------------------------------

void InstrumentWindow::notify(std::atomic<bool> &flag)
{
    flag.store(true);
    // One signal at a time, however many changes there are.
    if (!m_posted.exchange(true)) {
        Q_EMIT flagRaised();
    }
}

void InstrumentWindow::lookAtFlags()
{
    // First, so that a flag raised from here on makes a signal of its own.
    m_posted.store(false);
    if (m_heard.exchange(false)) {
        m_lamp->blink();
    }
    if (m_changed.exchange(false)) {
        refresh();
    }
}

void InstrumentWindow::refresh()
{
    ++m_refreshCount;
    const InstrumentMemory memory = m_instrument.contents();
    m_templateNumber = memory.currentTemplate;
    m_isEdited = memory.editFlag;
    m_current = memory.editBuffer[static_cast<std::size_t>(memory.currentTemplate)];
    showAll();
}

void InstrumentWindow::showAll()
{
    m_down->setDimmed(m_templateNumber == 0);
    m_up->setDimmed(m_templateNumber == InstrumentTemplateCount - 1);
    m_remote->setLit(m_current.controlType == 0);
    m_cc->setLit(m_current.controlType == 1);
    m_store->setLit(m_isEdited);
    for (int index = 0; index < InstrumentKnobCount; ++index) {
        showKnob(index);
    }
    showDisplay();
}

void InstrumentWindow::showKnob(int index)
{
    const auto at = static_cast<std::size_t>(index);
    const InstrumentKnob &knob = m_current.knobs[at];
    InstrumentDial *dial = m_dials[at];
    const bool assigning = isAssigning();
    const int value = assigning ? knob.ccNumber : m_positions[at];
    const bool showsCc = assigning || m_current.controlType == 1;

    InstrumentDial::Caption caption;
    if (showsCc) {
        caption.name = ccName(knob);
        caption.detail = assigning ? tr("CC number") : ccDetail(knob);
    } else {
        const QString id = text(knob.remoteId.trimmed());
        caption.name = remoteName(id);
        const bool saysMore = caption.name != id && id != NoAssignId;
        caption.detail = saysMore ? id : QString();
    }
    caption.value = assigning ? QString::number(value) : shownValue(knob, value);

    {
        // What the memory says is no turn of the knob.
        const QSignalBlocker blocker(dial);
        dial->setValue(value);
    }
    dial->setFormat(isBipolar(knob) && !assigning ? InstrumentDial::Format::Bipolar
                                                  : InstrumentDial::Format::Unipolar);
    dial->setNotch(assigning ? AssigningNotch : PlayingNotch);
    dial->setSelected(index == m_lastTurned);
    dial->setCaption(caption);
    const QString accessible = tr("Knob %1, %2").arg(knobPlace(index), caption.name);
    if (dial->accessibleName() != accessible) {
        dial->setAccessibleName(accessible);
        dial->setToolTip(tr("%1: drag up or down, turn the wheel or press the arrow keys; "
                            "Shift turns in fine steps.")
                             .arg(accessible));
    }
}

void InstrumentWindow::showDisplay()
{
    InstrumentDisplay::Content content;
    content.templateNumber = m_templateNumber + 1;
    content.templateName = text(m_current.templateName.trimmed());
    content.vstiName = text(m_current.vstiName.trimmed());
    content.isControlChange = m_current.controlType == 1;
    content.isEdited = m_isEdited;
    content.isPlugged = m_cable.isPlugged();
    if (m_lastTurned >= 0) {
        const auto at = static_cast<std::size_t>(m_lastTurned);
        const InstrumentDial *dial = m_dials[at];
        content.knob = knobPlace(m_lastTurned);
        content.knobName = dial->caption().name;
        content.knobValue = dial->caption().value;
        if (isAssigning()) {
            content.knobValue.prepend(tr("CC "));
        }
        const double middle = static_cast<double>(KnobMiddle) / KnobMaximum;
        const double value = static_cast<double>(dial->value()) / KnobMaximum;
        const bool bipolar = isBipolar(m_current.knobs[at]) && !isAssigning();
        content.barFrom = bipolar ? std::min(middle, value) : 0;
        content.barTo = bipolar ? std::max(middle, value) : value;
    }
    m_display->setContent(content);
}

// --- By the hand --------------------------------------------------------------------------------

bool InstrumentWindow::isAssigning() const
{
    return m_assign->isChecked();
}

void InstrumentWindow::turned(int index, int value)
{
    m_lastTurned = index;
    if (isAssigning()) {
        m_instrument.setCCNumber(index, value);
        if (m_current.controlType != 1) {
            m_instrument.setControlType(1);
        }
        refresh();
    } else {
        m_positions[static_cast<std::size_t>(index)] = value;
        m_instrument.turnKnob(index, value);
        showAll();
    }
}

void InstrumentWindow::stepTemplate(int by)
{
    // From what the instrument holds now: the editor may have chosen another since the last frame.
    const int now = m_instrument.contents().currentTemplate;
    const int next = std::clamp(now + by, 0, InstrumentTemplateCount - 1);
    if (next != now) {
        m_instrument.selectTemplate(next);
    }
    refresh();
}

void InstrumentWindow::setPlugged(bool plugged)
{
    m_cable.setPlugged(plugged);
    showDisplay();
}

// --- Looks --------------------------------------------------------------------------------------

void InstrumentWindow::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), looks::Body);
    painter.fillRect(0, 0, width(), StripHeight, looks::Strip);
    painter.fillRect(0, 0, width(), 1, looks::StripLight);
    painter.fillRect(0, StripHeight - 1, width(), 1, looks::StripShade);
    painter.fillRect(0, StripHeight, width(), 1, looks::Light);
    looks::text(painter, Face::Expanded, QPoint(12, 21), tr("TARN/TERN"), looks::StripInk, 2);
    const int behind = 12 + looks::textWidth(Face::Expanded, tr("TARN/TERN"), 2) + 12;
    looks::text(painter, Face::Expanded, QPoint(behind, 21), tr("INSTRUMENT"),
                looks::StripQuietInk);

    looks::textCentred(painter, Face::Expanded, KeysHeading, tr("TEMPLATE"), looks::QuietInk);

    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF plate(KnobPlate);
    looks::rounded(painter, plate, 4, looks::Shade);
    looks::rounded(painter, plate.adjusted(0, 0, 0, -1), 4, looks::Light);
    looks::rounded(painter, plate.adjusted(1, 1, 0, -1), 3.5, looks::Groove);
    looks::rounded(painter, plate.adjusted(1, 1, -1, -1), 3.5, looks::Plate);
    for (int column = 0; column < ColumnCount; ++column) {
        const QRect within(KnobsPosition.x() + column * KnobColumnStep, KnobPlate.top() + 5,
                           KnobWidth, 12);
        looks::textCentred(painter, Face::Expanded, within,
                           QString(QChar(u'A' + static_cast<char16_t>(column))), looks::Ink);
    }
    for (int row = 0; row < RowCount; ++row) {
        const int y = KnobsPosition.y() + row * KnobRowStep;
        const QRect within(KnobPlate.left() + 6, y + KnobRingMiddle - 6, 20, 12);
        looks::textCentred(painter, Face::Expanded, within, QString::number(row + 1), looks::Ink);
    }
}
