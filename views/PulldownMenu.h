// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QMenu>

// The list that a pulldown field of a panel opens. Every row fills the width, so that a click
// anywhere on it selects it.
//
// Owner: the panel, its Qt parent. It opens without an event loop of its own and deletes itself
// when it closes, whether by a choice, by a click beside it, or with its panel. Thread: GUI.
class PulldownMenu : public QMenu
{
    Q_OBJECT

public:
    PulldownMenu(QWidget *panel, const QStringList &texts);

    // At this place in the panel, and moved from there as far as it takes to be wholly on the
    // screen. roomBelow: height to keep there even if the menu is lower, in pixels.
    void open(const QPoint &position, int roomBelow = 0);

Q_SIGNALS:
    // index: into the texts.
    void chosen(int index);
};
