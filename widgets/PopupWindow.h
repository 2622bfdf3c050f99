// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QPointer>
#include <QtGui/QCursor>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QWidget>

class QEventLoop;
class QScreen;

// What the popup list and the popup tree have in common but for the kind of their items: the
// window, its place on the screen and the nested event loop. Thread: GUI.
class PopupWindow : public QWidget
{
    Q_OBJECT

public:
    ~PopupWindow() override;
    QSize sizeHint() const override;

    // Shows the popup with a corner at the global point, without a loop: on a screen that has no
    // room to the right of the point, or below it, it goes to the other side.
    void popup(const QPoint &point);

protected:
    explicit PopupWindow(QWidget *parent);

    // view: a child of this; what the popup shows.
    void setView(QAbstractItemView *view);
    // Shows the popup and returns once it is hidden. False: it is gone, and may not be touched.
    [[nodiscard]] bool run(const QPoint &point);
    // Where run() opens at the right of the global rectangle, pushed back onto the screen.
    QPoint pointBeside(const QRect &rect);
    // The popup is about to show.
    virtual void prepare() = 0;

    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    // A popup that is larger than the screen becomes as large as the screen.
    QRect fitToScreenAt(const QPoint &point);

    QPointer<QAbstractItemView> m_view;
    // Null outside run().
    QEventLoop *eventLoop = nullptr;
};

// The part that knows the kind of the items.
template <class Item>
class TypedPopup : public PopupWindow
{
public:
    // The item that the user has chosen, or null. It lives as long as the popup, which deletes
    // itself when the program returns to the event loop from which exec() was called, or earlier if
    // someone else deletes it. A call while another one runs returns null.
    Item *exec() { return exec(QCursor::pos()); }
    Item *exec(const QPoint &point) { return run(point) ? selectedItem : nullptr; }
    Item *exec(const QRect &rect) { return exec(pointBeside(rect)); }

    // Ends exec() with this item. Called by the view.
    void choose(Item *item)
    {
        selectedItem = item;
        hide();
    }

protected:
    using PopupWindow::PopupWindow;
    void prepare() override { selectedItem = nullptr; }

private:
    Item *selectedItem = nullptr;
};
