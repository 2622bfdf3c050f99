// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CPopupListWidget.h"

CPopupListWidget::CPopupListWidget(TypedPopup<QListWidgetItem> *parent)
    : PopupItemView(parent)
{
    setObjectName(QStringLiteral("CPopupListWidget"));
}

bool CPopupListWidget::canChoose(const QListWidgetItem *item) const
{
    return item != nullptr;
}
