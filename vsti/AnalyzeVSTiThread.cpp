// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/AnalyzeVSTiThread.h"

#include "app/Locks.h"
#include "vsti/VSTiInfo.h"

AnalyzeVSTiThread::AnalyzeVSTiThread(VSTiInfo *info, QObject *parent)
    : QThread(parent)
    , m_info(info)
{
}

void AnalyzeVSTiThread::join()
{
    wait();
    joinedThread(this);
}

void AnalyzeVSTiThread::run()
{
    m_info->analyzeVSTi();
    endingThread(this);
}
