// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/CSimpleNotifier.h"

CSimpleNotifier::CSimpleNotifier(QObject *parent)
    : QObject(parent)
{
}

CSimpleNotifier::CSimpleNotifier(const QString &address, QObject *parent)
    : QObject(parent)
{
    setNamedAddress(address);
}

CSimpleNotifier::CSimpleNotifier(int controllerNumber, int parameter, QObject *parent)
    : QObject(parent)
{
    setNumericAddress(controllerNumber, parameter);
}

CSimpleNotifier::~CSimpleNotifier()
{
    unbind();
}

void CSimpleNotifier::assignMemAPI()
{
    MemProxy::assignMemAPI();
    updateMemAPI();
}

void CSimpleNotifier::updateMemAPI()
{
    if (isAssigned()) {
        Q_EMIT update();
    }
}
