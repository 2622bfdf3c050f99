// SPDX-License-Identifier: GPL-3.0-or-later
// Mouse and keys on the knobs of the template view, dragging, and the clipboard.
#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/Shortcuts.h"
#include "file/EditorData.h"
#include "file/XmlDocument.h"
#include "images/Artwork.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorTemplate.h"
#include "views/EditorTemplate.h"
#include "widgets/FlashFrame.h"

#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtGui/QClipboard>
#include <QtGui/QDrag>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

namespace
{

constexpr int NoKnob = -1;
// A knob has some 200 bytes. A drag is looked at with every move, so what is out of all proportion
// isn't even parsed.
constexpr qsizetype KnobMaximumBytes = 64 * 1024;

// The root element of a knob from the clipboard or from a drag, or a null one. The document must
// outlive it.
QDomElement parseKnob(const QMimeData *data, QDomDocument *document)
{
    if (data == nullptr || !data->hasFormat(KnobMimeType)) {
        return {};
    }
    const QByteArray text = data->data(KnobMimeType);
    QString message;
    int line = 0;
    if (text.size() > KnobMaximumBytes || !XmlDocument::parse(text, document, &message, &line)) {
        return {};
    }
    return document->documentElement();
}

} // namespace

// --- Data ----------------------------------------------------------------------------------------

QMimeData *EditorTemplate::createKnobMimeData(int knob) const
{
    QDomDocument document(KnobDocType);
    QDomElement root = EditorData::getControllerDomElement(
        remoteMemAPI, &document, Bank::EditBuffer, getCurrentTemplateNumber(), knob, QString());
    root.setAttribute(EditorData::AttributeKnobNumber, knob);
    document.appendChild(root);
    auto *mime = new QMimeData;
    mime->setData(KnobMimeType, document.toByteArray(1));
    return mime;
}

int EditorTemplate::getKnobNumberFromKnobMimeData(const QMimeData *mime)
{
    QDomDocument document;
    const QDomElement root = parseKnob(mime, &document);
    // Also what is only to tell where it comes from must be a knob: a damaged one moves nothing.
    if (!EditorData::isWholeControllerElement(root, QString())) {
        return NoKnob;
    }
    bool isNumber = false;
    const int knob = root.attribute(EditorData::AttributeKnobNumber).toInt(&isNumber);
    return isNumber && knob >= 0 && knob < KnobCount ? knob : NoKnob;
}

bool EditorTemplate::setKnobMimeData(const QMimeData *mime, int knob)
{
    QDomDocument document;
    const QDomElement root = parseKnob(mime, &document);
    // Nobody knows who has made the data, so all of it is looked at before any of it is written.
    if (!EditorData::isWholeControllerElement(root, QString())) {
        return false;
    }
    flashKnob(knob);
    EditorData::setControllerDomElement(remoteMemAPI, root, Bank::EditBuffer,
                                        getCurrentTemplateNumber(), knob, document.doctype().name(),
                                        QString());
    return true;
}

// --- Clipboard -----------------------------------------------------------------------------------

bool EditorTemplate::canPaste() const
{
    return mainWindow->clipboardHolds(KnobMimeType);
}

void EditorTemplate::copyKnob()
{
    flashKnob(currentKnob);
    QGuiApplication::clipboard()->setMimeData(createKnobMimeData(currentKnob));
}

void EditorTemplate::pasteKnob()
{
    setKnobMimeData(QGuiApplication::clipboard()->mimeData(), currentKnob);
}

void EditorTemplate::flashKnob(int knob) const
{
    const CFrame *label = lblKnob[static_cast<std::size_t>(knob)];
    FlashFrame::start(label->parentWidget(), label->geometry().adjusted(-1, -1, 1, 1));
}

// --- Mouse and keys ------------------------------------------------------------------------------

bool EditorTemplate::eventFilter(QObject *watched, QEvent *event)
{
    const auto found = std::find(btnKnob.cbegin(), btnKnob.cend(), watched);
    if (!isVisible() || found == btnKnob.cend()) {
        return QObject::eventFilter(watched, event);
    }
    const int knob = static_cast<int>(found - btnKnob.cbegin());
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        knobPressed(static_cast<QMouseEvent *>(event));
        return false;
    case QEvent::MouseMove:
        return knobMoved(knob, static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonDblClick:
        knobDoubleClicked(knob);
        return true;
    case QEvent::KeyPress:
        return knobKeyPressed(knob, static_cast<QKeyEvent *>(event));
    case QEvent::DragEnter:
    case QEvent::DragMove:
        knobDragged(knob, static_cast<QDragMoveEvent *>(event));
        return true;
    case QEvent::Drop:
        knobDropped(knob, static_cast<QDropEvent *>(event));
        return true;
    case QEvent::ContextMenu:
        knobMenu(knob, static_cast<QContextMenuEvent *>(event)->globalPos());
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

void EditorTemplate::knobPressed(const QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        dragStartPosition = event->position().toPoint();
    }
}

bool EditorTemplate::knobMoved(int knob, const QMouseEvent *event)
{
    const QPoint way = event->position().toPoint() - dragStartPosition;
    if (!event->buttons().testFlag(Qt::LeftButton) || mainWindow->isWindowLocked() ||
        way.manhattanLength() <= QApplication::startDragDistance()) {
        return false;
    }
    dragKnob(knob, event->modifiers());
    return true;
}

void EditorTemplate::knobDoubleClicked(int knob)
{
    QWidget *button = btnKnob[static_cast<std::size_t>(knob)];
    if (isRemote()) {
        popupRemoteControlParameter(button, QPoint());
    } else {
        popupCCNumberAndDisplayName(button, QPoint());
    }
}

bool EditorTemplate::knobKeyPressed(int knob, const QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || !isRemote() || mainWindow->isWindowLocked()) {
        return false;
    }
    // The repeats of a key that is held would choose in the popup that its press has opened.
    if (!event->isAutoRepeat()) {
        popupRemoteControlParameter(btnKnob[static_cast<std::size_t>(knob)], QPoint());
    }
    return true;
}

void EditorTemplate::knobMenu(int knob, const QPoint &position)
{
    btnKnob[static_cast<std::size_t>(knob)]->click();
    // The menu may be deleted with the view while it stands.
    const QPointer<QMenu> menu = new QMenu(this);
    menu->setFont(font());
    menu->setCursor(window()->cursor());
    QAction *copy = menu->addAction(MenuEditCopy);
    copy->setShortcut(ShortcutEditCopy);
    connect(copy, &QAction::triggered, mainWindow, &EditorMainWindow::editCopy);
    QAction *paste = menu->addAction(MenuEditPaste);
    paste->setShortcut(ShortcutEditPaste);
    paste->setEnabled(canPaste());
    connect(paste, &QAction::triggered, mainWindow, &EditorMainWindow::editPaste);
    menu->exec(position);
    delete menu.data();
}

// --- Dragging ------------------------------------------------------------------------------------

QPixmap EditorTemplate::knobPicture(int knob) const
{
    const CText *cell = txtKnob[static_cast<std::size_t>(knob)];
    QPixmap picture = artwork(QStringLiteral(":/images/t27r_lcd_panel.png"), devicePixelRatioF());
    QPainter painter(&picture);
    painter.setFont(cell->font());
    painter.setPen(cell->palette().color(QPalette::Text));
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    painter.drawText(QRectF(QPointF(), picture.deviceIndependentSize()), Qt::AlignCenter,
                     cell->text());
    return picture;
}

void EditorTemplate::dragKnob(int knob, Qt::KeyboardModifiers modifiers)
{
    const auto index = static_cast<std::size_t>(knob);
    const QPointer<CRadioButton> button = btnKnob[index];
    auto *drag = new QDrag(button);
    drag->setMimeData(createKnobMimeData(knob));
    drag->setPixmap(knobPicture(knob));
    drag->setHotSpot(lblKnob[index]->mapFromGlobal(button->mapToGlobal(dragStartPosition)));
    // Both can be had, since Control may be pressed or released on the way, and the pointer says
    // which of them it would be.
    drag->exec(Qt::CopyAction | Qt::MoveAction,
               modifiers == Qt::ControlModifier ? Qt::CopyAction : Qt::MoveAction);
    // The drag has taken the release of the button that the press had put down.
    if (button) {
        button->setDown(false);
    }
}

namespace
{

Qt::DropAction actionFor(Qt::KeyboardModifiers modifiers)
{
    return modifiers.testFlag(Qt::ControlModifier) ? Qt::CopyAction : Qt::MoveAction;
}

} // namespace

void EditorTemplate::knobDragged(int knob, QDragMoveEvent *event) const
{
    const QRect answerRect = btnKnob[static_cast<std::size_t>(knob)]->rect();
    const int source = getKnobNumberFromKnobMimeData(event->mimeData());
    if (source == NoKnob || source == knob || mainWindow->isWindowLocked()) {
        event->ignore(answerRect);
        return;
    }
    event->setDropAction(actionFor(event->modifiers()));
    event->accept(answerRect);
}

void EditorTemplate::knobDropped(int knob, QDropEvent *event)
{
    const int source = getKnobNumberFromKnobMimeData(event->mimeData());
    if (source == NoKnob || source == knob || mainWindow->isWindowLocked()) {
        event->ignore();
        return;
    }
    const Qt::DropAction action = actionFor(event->modifiers());
    if (action == Qt::CopyAction) {
        if (!setKnobMimeData(event->mimeData(), knob)) {
            event->ignore();
            return;
        }
    } else {
        const int number = getCurrentTemplateNumber();
        remoteMemAPI->exchangeController(Bank::EditBuffer, number, source, Bank::EditBuffer, number,
                                         knob);
        flashKnob(source);
        flashKnob(knob);
    }
    event->setDropAction(action);
    event->accept();
    btnKnob[static_cast<std::size_t>(knob)]->click();
}
