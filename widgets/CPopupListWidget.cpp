// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CPopupListWidget.h"

CPopupListWidget::CPopupListWidget(TypedPopup<QListWidgetItem> *popup)
    : PopupItemView(popup)
{
    setObjectName(QStringLiteral("CPopupListWidget"));
}

bool CPopupListWidget::canChoose(const QListWidgetItem *item) const
{
    return item != nullptr;
}
