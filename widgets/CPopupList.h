// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CPopupListWidget.h"
#include "widgets/PopupWindow.h"

// A small modal chooser with a list: the caller makes a new one on the heap, fills getListWidget(),
// calls exec() and gets the chosen item or null. It deletes itself (TypedPopup::exec()). The
// font is the application's unless one is set on the popup.
class CPopupList : public TypedPopup<QListWidgetItem>
{
    Q_OBJECT

public:
    explicit CPopupList(QWidget *parent = nullptr);
    CPopupListWidget *getListWidget() const { return listWidget; }

private:
    QPointer<CPopupListWidget> listWidget;
};
