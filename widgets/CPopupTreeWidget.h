// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/PopupItemView.h"
#include "widgets/PopupWindow.h"

#include <QtWidgets/QTreeWidget>

// The tree inside of a CPopupTree. RemoteEditorStyle knows it by its object name. Owner: the popup.
class CPopupTreeWidget
    : public PopupItemView<QTreeWidget, QTreeWidgetItem, TypedPopup<QTreeWidgetItem>>
{
    Q_OBJECT

public:
    explicit CPopupTreeWidget(TypedPopup<QTreeWidgetItem> *popup);

protected:
    bool canChoose(const QTreeWidgetItem *item) const override;
};
