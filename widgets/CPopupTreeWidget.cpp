// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CPopupTreeWidget.h"

CPopupTreeWidget::CPopupTreeWidget(TypedPopup<QTreeWidgetItem> *parent)
    : PopupItemView(parent)
{
    setObjectName(QStringLiteral("CPopupTreeWidget"));
}

bool CPopupTreeWidget::canChoose(const QTreeWidgetItem *item) const
{
    return item->childCount() == 0;
}
