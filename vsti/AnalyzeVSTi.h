// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"
#include "vsti/AnalyzeVSTiThread.h"

#include "ui_AnalyzeVSTi.h"

#include <QtCore/QString>
#include <QtGui/QPixmap>

// The panel that looks for the software instruments of a DAW. It shows the file under examination
// and a running light: how long it takes cannot be known.
//
//   state     event                                    next
//   waiting   a moment after it shows                  scanning
//   scanning  the thread's end                         closed, the results entered
//
// It has no button, and refuses to close until the scan has ended. If it is destroyed before, with
// its window, the scan is ended, and what it has found until then is entered.
//
// Owner: the window. Thread: GUI; the scan runs on a thread of the panel's own.
class AnalyzeVSTi : public EditorOverlap, private Ui::AnalyzeVSTi
{
    Q_OBJECT

public:
    AnalyzeVSTi(EditorMainWindow *window, const QString &dawName);
    ~AnalyzeVSTi() override;

Q_SIGNALS:
    // The results are entered; the panel is about to close.
    void finished();

public Q_SLOTS:
    // Nothing from the second time on: a panel scans once.
    void start();
    void finish();
    // A plug-in's file, or null for none.
    void analyze(const QString &name);

protected:
    void showEvent(QShowEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void endScanDisplay();

    AnalyzeVSTiThread thread;
    QString panelDAWName;
    QPixmap ledPixmap;
    int ledStep = 0;
    int timerId = 0; // 0 for none
    bool m_hasStarted = false;
    bool m_isScanning = false; // from start() to the entering of the results
};
