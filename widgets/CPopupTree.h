// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CPopupTreeWidget.h"
#include "widgets/PopupWindow.h"

// A small modal chooser with a tree: the caller makes a new one on the heap, fills getTreeWidget(),
// calls exec() and gets the chosen leaf or null. It deletes itself (TypedPopup::exec()). The
// font is the application's unless one is set on the popup.
class CPopupTree : public TypedPopup<QTreeWidgetItem>
{
    Q_OBJECT

public:
    explicit CPopupTree(QWidget *parent = nullptr);
    CPopupTreeWidget *getTreeWidget() const { return treeWidget; }

public Q_SLOTS:
    // Makes the column as wide as its contents, and at least as wide as the popup, so that a row
    // can be clicked all along. Nothing while the popup doesn't show, since showing it does this.
    void adjustScrollArea();

protected:
    void showEvent(QShowEvent *event) override;

private:
    QPointer<CPopupTreeWidget> treeWidget;
};
