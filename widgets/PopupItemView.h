// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/PopupWindow.h"

#include <QtCore/QPointer>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QWidget>

// How an item of a popup is chosen: by Return or Enter, and by a press and a release of the left
// button that both fall inside, so that the release of the click that opened the popup chooses
// nothing. View: QListWidget or QTreeWidget; Item: its items.
template <class View, class Item>
class PopupItemView : public View
{
protected:
    explicit PopupItemView(TypedPopup<Item> *parent)
        : View(parent)
        , popup(parent)
    {
    }

    // What remains when the item is selected: whether it is a leaf.
    virtual bool canChoose(const Item *item) const = 0;

    void keyPressEvent(QKeyEvent *event) override
    {
        const int key = event->key();
        const QPointer<QWidget> self(this);
        View::keyPressEvent(event);
        if (!self || (key != Qt::Key_Return && key != Qt::Key_Enter)) {
            return;
        }
        const QList<Item *> selected = this->selectedItems();
        if (selected.size() == 1 && canChoose(selected.first())) {
            popup->choose(selected.first());
        }
    }

    void mousePressEvent(QMouseEvent *event) override
    {
        const bool left = event->button() == Qt::LeftButton;
        const QPointer<QWidget> self(this);
        View::mousePressEvent(event);
        if (self && left) {
            leftPressed = true;
        }
    }

    void mouseReleaseEvent(QMouseEvent *event) override
    {
        const bool left = event->button() == Qt::LeftButton;
        const QPoint position = event->position().toPoint();
        const QPointer<QWidget> self(this);
        View::mouseReleaseEvent(event);
        if (!self || !left || !leftPressed) {
            return;
        }
        leftPressed = false;
        // A view finds items beyond its edges, too.
        Item *item = this->viewport()->rect().contains(position) ? this->itemAt(position) : nullptr;
        if (item && item->isSelected() && canChoose(item)) {
            popup->choose(item);
        }
    }

private:
    TypedPopup<Item> *popup;
    bool leftPressed = false;
};
