// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/PopupWindow.h"

#include "widgets/StyleColors.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QEvent>
#include <QtCore/QEventLoop>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>

#include <limits>

namespace
{

// The screen that holds the point, or the one that is nearest to it.
QScreen *screenFor(const QPoint &point)
{
    if (QScreen *screen = QGuiApplication::screenAt(point)) {
        return screen;
    }
    QScreen *nearest = QGuiApplication::primaryScreen();
    qint64 least = std::numeric_limits<qint64>::max();
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (QScreen *screen : screens) {
        const QRect area = screen->geometry();
        const qint64 dx = qint64(point.x()) - qBound(area.left(), point.x(), area.right());
        const qint64 dy = qint64(point.y()) - qBound(area.top(), point.y(), area.bottom());
        const qint64 distance = std::abs(dx) + std::abs(dy);
        if (distance < least) {
            least = distance;
            nearest = screen;
        }
    }
    return nearest;
}

} // namespace

PopupWindow::PopupWindow(QWidget *parent)
    : QWidget(parent, Qt::Popup)
{
    setAttribute(Qt::WA_DeleteOnClose);
}

PopupWindow::~PopupWindow()
{
    // Deleting hides the window without a hide event of this class.
    if (eventLoop) {
        eventLoop->exit();
    }
}

void PopupWindow::setView(QAbstractItemView *view)
{
    m_view = view;
    // A window of its own inherits none of these from the widget that opens it.
    view->setStyle(QApplication::style());
    view->setPalette(QApplication::palette());
    view->setFont(QApplication::font());
    // Where two scroll bars meet the frame would shine through.
    auto *corner = new QWidget;
    QPalette colours = corner->palette();
    colours.setColor(QPalette::Window, colorScrollBarBackground);
    corner->setPalette(colours);
    corner->setAutoFillBackground(true);
    view->setCornerWidget(corner);
    resize(sizeHint());
}

QSize PopupWindow::sizeHint() const
{
    return m_view ? m_view->sizeHint() : QWidget::sizeHint();
}

QRect PopupWindow::fitToScreenAt(const QPoint &point)
{
    QScreen *screen = screenFor(point);
    if (!screen) {
        return {point, size()};
    }
    // Sizes and texts are those of the screen that the popup opens on.
    setScreen(screen);
    const QRect area = screen->geometry();
    resize(size().boundedTo(area.size()));
    return area;
}

QPoint PopupWindow::pointBeside(const QRect &rect)
{
    const QPoint wanted(rect.right() + 1, rect.top());
    const QRect area = fitToScreenAt(wanted);
    return {qMin(wanted.x(), area.right() + 1 - width()),
            qMin(wanted.y(), area.bottom() + 1 - height())};
}

void PopupWindow::popup(const QPoint &point)
{
    const QRect area = fitToScreenAt(point);
    QPoint corner = point;
    if (corner.x() + width() > area.right() + 1) {
        corner.rx() -= width();
    }
    if (corner.y() + height() > area.bottom() + 1) {
        corner.ry() -= height();
    }
    // Neither side may have the room.
    corner = {qBound(area.left(), corner.x(), area.right() + 1 - width()),
              qBound(area.top(), corner.y(), area.bottom() + 1 - height())};

    if (m_view) {
        if (!m_view->currentIndex().isValid()) {
            m_view->setCurrentIndex(m_view->model()->index(0, 0));
        }
        m_view->setGeometry(rect());
        m_view->setFocus();
    }
    prepare();
    move(corner);
    show();
}

bool PopupWindow::run(const QPoint &point)
{
    if (eventLoop) {
        return false;
    }
    const QPointer<PopupWindow> self(this);
    QEventLoop loop;
    eventLoop = &loop;
    popup(point);
    // Showing runs handlers that may have closed or deleted the popup.
    if (self && isVisible()) {
        loop.exec();
    }
    if (!self) {
        return false;
    }
    eventLoop = nullptr;
    // Choosing hides without closing.
    deleteLater();
    return true;
}

void PopupWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // The view has a font of its own, which would otherwise hide the one given to the popup.
    if (m_view && event->type() == QEvent::FontChange) {
        m_view->setFont(font());
    }
}

void PopupWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (eventLoop) {
        eventLoop->exit();
    }
}

void PopupWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_view) {
        m_view->setGeometry(rect());
    }
}
