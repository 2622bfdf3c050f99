// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/PopupItemView.h"

#include <QtWidgets/QTreeWidget>

// The tree inside of a CPopupTree. RemoteEditorStyle knows it by its object name. Owner: the popup.
class CPopupTreeWidget : public PopupItemView<QTreeWidget, QTreeWidgetItem>
{
    Q_OBJECT

public:
    explicit CPopupTreeWidget(TypedPopup<QTreeWidgetItem> *parent);

protected:
    bool canChoose(const QTreeWidgetItem *item) const override;
};
