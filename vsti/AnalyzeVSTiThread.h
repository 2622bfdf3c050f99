// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QThread>

class VSTiInfo;

// Carries a scan. Owner: whoever starts it, who must not delete it before it has finished, and ends
// it before its time by requestInterruption() and join(). That takes a second or two beyond the
// walk through the folders, and leaves no process of the helper's behind.
//
// No meta object of its own: QThread asks for it when run() is over, which would be the last that
// the thread does with this object, and behind what join() waits for.
class AnalyzeVSTiThread : public QThread
{
public:
    explicit AnalyzeVSTiThread(VSTiInfo *info, QObject *parent = nullptr);
    // Waits for the end of the scan. What it wrote may be read from then on.
    void join();

protected:
    void run() override;

private:
    VSTiInfo *const m_info;
};
