// SPDX-License-Identifier: GPL-3.0-or-later
// The mouse on the two lists: dragging, dropping, scrolling meanwhile, the context menu.
//
//   from                      to a template of the library
//   import list               copy, whatever the modifiers
//   library, Control held     copy
//   library                   the two change places

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "images/Artwork.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorLibrary.h"
#include "views/EditorLibrary.h"

#include <QtCore/QMimeData>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QDrag>
#include <QtGui/QDropEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

namespace
{

// From where the pointer is to the point that it means.
constexpr QPoint MouseOffset(-1, -3);

constexpr int ScrollIntervalMs = 100;
constexpr int ScrollUp = 0;
constexpr int ScrollDown = 1;

QPoint meantPoint(const QDropEvent *event)
{
    return event->position().toPoint() + MouseOffset;
}

// The row whose own area holds the point, the space below it not included; -1 for none.
int rowAt(const CListView *list, const QPoint &point)
{
    const int row = list->getIndex(point.y());
    return row >= 0 && list->getItemRect(row).contains(point) ? row : -1;
}

} // namespace

bool EditorLibrary::eventFilter(QObject *watched, QEvent *event)
{
    if (isVisible()) {
        for (CListView *list : {ui->listTemplate, ui->listImport}) {
            if (watched == list && listEvent(list, event)) {
                return true;
            }
        }
    }
    return CFrame::eventFilter(watched, event);
}

bool EditorLibrary::listEvent(CListView *list, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto *press = static_cast<QMouseEvent *>(event);
        if (press->button() == Qt::LeftButton) {
            dragStartPosition = press->position().toPoint();
        }
        return false;
    }
    case QEvent::MouseMove:
        return listMoved(list, static_cast<QMouseEvent *>(event));
    case QEvent::DragLeave:
        endDrag();
        return true;
    default:
        return list == ui->listTemplate && templateListEvent(event);
    }
}

bool EditorLibrary::templateListEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
        endDrag();
        dragMoved(static_cast<QDragMoveEvent *>(event));
        return true;
    case QEvent::DragMove:
        dragMoved(static_cast<QDragMoveEvent *>(event));
        return true;
    case QEvent::Drop:
        return dropped(static_cast<QDropEvent *>(event));
    case QEvent::ContextMenu:
        return contextMenu(static_cast<QContextMenuEvent *>(event));
    default:
        return false;
    }
}

// --- Dragging ------------------------------------------------------------------------------------

bool EditorLibrary::listMoved(CListView *list, const QMouseEvent *event)
{
    if (!event->buttons().testFlag(Qt::LeftButton) ||
        (event->position().toPoint() - dragStartPosition).manhattanLength() <=
            QApplication::startDragDistance()) {
        return false;
    }
    const int number = list->getIndex(dragStartPosition.y());
    if (number < 0 || (list == ui->listTemplate && !templateListSelected)) {
        return false;
    }
    dragTemplate(list, number, event->modifiers());
    return true;
}

void EditorLibrary::dragTemplate(CListView *list, int number, Qt::KeyboardModifiers modifiers)
{
    const bool fromImport = list == ui->listImport;
    const bool copies = fromImport || modifiers == Qt::ControlModifier;
    auto *drag = new QDrag(list);
    drag->setMimeData(createTemplateMimeData(number));
    drag->setPixmap(dragPicture(list, number));
    drag->setHotSpot(dragStartPosition - list->getItemRect(number).topLeft());

    // The program may end while the drag runs.
    const QPointer<EditorLibrary> self(this);
    dragSource = fromImport ? DragFromImport : DragFromTemplates;
    drag->exec(copies ? Qt::CopyAction : Qt::MoveAction);
    if (self) {
        dragSource = NoDrag;
        endDrag();
    }
}

QPixmap EditorLibrary::dragPicture(const CListView *list, int number) const
{
    const QSize size(list->width(), list->rowHeight());
    const qreal ratio = list->devicePixelRatioF();
    QPixmap picture(size * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(number % 2 == 0 ? list->backgroundEvenRowColor() : list->backgroundOddRowColor());

    QPainter painter(&picture);
    painter.setFont(list->font());
    painter.setPen(list->foregroundColor());
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    const int across = list->itemMarginWidth();
    const int down = list->itemMarginHeight();
    painter.drawText(QRect(QPoint(), size).adjusted(across, down, -across, -down),
                     Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine, list->text(number, 0));
    return picture;
}

// --- Dropping ------------------------------------------------------------------------------------

void EditorLibrary::endDrag()
{
    m_dragRead = false;
    stopScrolling();
}

void EditorLibrary::dragMoved(QDragMoveEvent *event)
{
    if (!m_dragRead) {
        m_dragged = templatePlace(event->mimeData());
        m_dragRead = true;
    }
    if (!m_dragged) {
        event->ignore();
        return;
    }
    const QPoint point = meantPoint(event);
    const int margin = ui->listTemplate->marginHeight();
    if (point.y() < margin) {
        startScrolling(ScrollUp);
    } else if (point.y() >= ui->listTemplate->height() - margin) {
        startScrolling(ScrollDown);
    } else {
        stopScrolling();
        const int row = rowAt(ui->listTemplate, point);
        if (row >= 0 && *m_dragged != TemplatePlace{Bank::Library, row}) {
            if (dragSource == DragFromTemplates) {
                event->setDropAction(event->modifiers().testFlag(Qt::ControlModifier)
                                         ? Qt::CopyAction
                                         : Qt::MoveAction);
            }
            event->accept();
            return;
        }
    }
    // Nothing can be dropped here, but the moves must keep coming.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
}

bool EditorLibrary::dropped(QDropEvent *event)
{
    endDrag();
    if (event->mimeData() == nullptr || !event->mimeData()->hasFormat(TemplateMimeType)) {
        return false;
    }
    const std::optional<TemplatePlace> source = templatePlace(event->mimeData());
    const int target = rowAt(ui->listTemplate, meantPoint(event));
    if (!source || target < 0 || *source == TemplatePlace{Bank::Library, target}) {
        event->setDropAction(Qt::IgnoreAction);
        event->ignore();
        return true;
    }
    if (source->bank != Bank::Library) {
        ui->listTemplate->setFocus();
        flashItem(target);
        remoteMemAPI->copyTemplate(Bank::Import, source->number, Bank::Library, target);
    } else if (event->modifiers().testFlag(Qt::ControlModifier)) {
        remoteMemAPI->copyTemplate(Bank::Library, source->number, Bank::Library, target);
        event->setDropAction(Qt::CopyAction);
        flashItem(target);
    } else {
        remoteMemAPI->exchangeTemplate(Bank::Library, source->number, Bank::Library, target);
        event->setDropAction(Qt::MoveAction);
        flashItem(source->number);
        flashItem(target);
    }
    event->acceptProposedAction();
    ui->listTemplate->setValue(target);
    return true;
}

void EditorLibrary::startScrolling(int direction)
{
    scrollDirection = direction;
    if (scrollTimerId == 0) {
        scrollTimerId = startTimer(ScrollIntervalMs);
    }
}

void EditorLibrary::stopScrolling()
{
    if (scrollTimerId != 0) {
        killTimer(scrollTimerId);
        scrollTimerId = 0;
    }
}

void EditorLibrary::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != scrollTimerId) {
        CFrame::timerEvent(event);
        return;
    }
    ui->scrollTemplate->triggerAction(scrollDirection == ScrollDown
                                          ? QAbstractSlider::SliderSingleStepAdd
                                          : QAbstractSlider::SliderSingleStepSub);
}

// --- Context menu --------------------------------------------------------------------------------

bool EditorLibrary::contextMenu(const QContextMenuEvent *event)
{
    CListView *list = ui->listTemplate;
    const QPoint point = event->reason() == QContextMenuEvent::Keyboard
                             ? list->getItemRect(list->value()).center()
                             : event->pos() + MouseOffset;
    const int row = list->getIndex(point.y());
    if (row < 0) {
        return false;
    }
    list->setValue(row);
    if (!bankAvailable) {
        return false;
    }
    // Closes with the view, if that ends first.
    const QPointer<QMenu> menu = new QMenu(this);
    menu->setFont(font());
    menu->setCursor(window()->cursor());
    menu->addAction(MenuEditCopy, mainWindow, &EditorMainWindow::editCopy)
        ->setEnabled(templateListSelected);
    menu->addAction(MenuEditPaste, mainWindow, &EditorMainWindow::editPaste)
        ->setEnabled(canPaste());
    menu->addAction(MenuEditInitialize, mainWindow, &EditorMainWindow::editInitialize)
        ->setEnabled(templateListSelected);
    menu->exec(list->mapToGlobal(point));
    delete menu;
    return true;
}
