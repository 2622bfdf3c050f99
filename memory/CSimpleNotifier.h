// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemProxy.h"

#include <QtCore/QObject>

// The binding without a widget: turns a change of its parameter into a signal. Owner: its QObject
// parent. Thread: GUI.
class CSimpleNotifier : public QObject, public MemProxy
{
    Q_OBJECT

public:
    explicit CSimpleNotifier(QObject *parent);
    CSimpleNotifier(const QString &address, QObject *parent);
    CSimpleNotifier(int controllerNumber, int parameter, QObject *parent);
    ~CSimpleNotifier() override;

    void assignMemAPI() override;
    void updateMemAPI() override;

Q_SIGNALS:
    void update();
};
