// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CPopupTree.h"

#include <QtWidgets/QHeaderView>

CPopupTree::CPopupTree(QWidget *parent)
    : TypedPopup(parent)
    , treeWidget(new CPopupTreeWidget(this))
{
    treeWidget->setColumnCount(1);
    treeWidget->header()->hide();
    // Stretched, a column never becomes wider than the popup, and long names are cut.
    treeWidget->header()->setStretchLastSection(false);
    connect(treeWidget, &QTreeWidget::itemChanged, this, &CPopupTree::adjustScrollArea);
    connect(treeWidget, &QTreeWidget::itemCollapsed, this, &CPopupTree::adjustScrollArea);
    connect(treeWidget, &QTreeWidget::itemExpanded, this, &CPopupTree::adjustScrollArea);
    setView(treeWidget);
}

void CPopupTree::adjustScrollArea()
{
    if (!treeWidget || !isVisible()) {
        return;
    }
    treeWidget->resizeColumnToContents(0);
    const int least = treeWidget->viewport()->width();
    if (treeWidget->columnWidth(0) < least) {
        treeWidget->setColumnWidth(0, least);
    }
}

void CPopupTree::showEvent(QShowEvent *event)
{
    TypedPopup::showEvent(event);
    adjustScrollArea();
}
