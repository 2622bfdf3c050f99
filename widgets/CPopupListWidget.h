// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/PopupItemView.h"

#include <QtWidgets/QListWidget>

// The list inside of a CPopupList. RemoteEditorStyle knows it by its object name. Owner: the popup.
class CPopupListWidget : public PopupItemView<QListWidget, QListWidgetItem>
{
    Q_OBJECT

public:
    explicit CPopupListWidget(TypedPopup<QListWidgetItem> *parent);

protected:
    bool canChoose(const QListWidgetItem *item) const override;
};
