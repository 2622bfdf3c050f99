// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CPopupList.h"

CPopupList::CPopupList(QWidget *parent)
    : TypedPopup(parent)
    , listWidget(new CPopupListWidget(this))
{
    setView(listWidget);
}
