// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "protocol/SyncRun.h"
#include "views/EditorOverlap.h"

#include "ui_AutoSync.h"

#include <QtCore/QStringList>
#include <QtGui/QPixmap>

class CSimpleNotifier;

// The panel that brings editor and instrument together: it receives the instrument's whole memory,
// sends the editor's, or both, and only its success makes the system online. The instrument's
// memory is fetched once; every later synchronisation only sends.
//
//   state      event                                          next
//   ready      start, without the instrument's data           receiving
//   ready      start, with them                               sending
//   receiving  all received, the instrument's data count      done
//   receiving  all received, the editor's data count          sending
//   sending    all acknowledged                               done
//   receiving  refused, or its time is over                   error
//   sending    the same                                       error
//   error      retry, by the user alone                       receiving or sending
//   ready      close                                          closed, offline
//   error      close                                          closed, offline
//
// While receiving and sending it can't be closed, and the wait cursor is up. Owner: the window.
// Thread: GUI.
class AutoSync : public EditorOverlap, private Ui::AutoSync
{
    Q_OBJECT

public:
    // editorToDevice: after a receive the editor's data go to the instrument, and what was received
    // is kept aside. editBufferOnly: a send covers the edit buffer alone.
    AutoSync(EditorMainWindow *window, bool editorToDevice, bool editBufferOnly);
    ~AutoSync() override;

    // The instrument has shown itself. Starts, but for after an error: then the user decides.
    void activePort();

public Q_SLOTS:
    // Nothing while a run is active.
    void start();
    void bulkReceived();
    void bulkSended(); // historical spelling
    void popupMidiPort();
    // False, and nothing done, while a run is active.
    bool close();
    void emulateStartPressing();
    void emulateClosePressing();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    bool isRunning() const { return m_receiving || m_sending; }
    void bulkReceive();
    void bulkSend(bool editBufferOnly);
    void bulkError();
    void syncSucceeded();
    void takePorts();
    void choosePort(int index);
    void showPort();
    void setRunDisplayVisible(bool visible);
    void endRunDisplay();

    bool m_editorToDevice;
    int m_portIndex = 0;
    QStringList m_portNames;
    bool m_hasChosenPort = false; // by hand, in this panel
    bool m_errorShown = false;    // never cleared: from the first error on, the user starts
    bool m_receiving = false;
    bool m_sending = false;
    bool m_editBufferOnly;
    QPixmap m_ledPixmap;
    int m_animationStep = 0;
    int m_animationTimer = 0; // id, 0 for none
    bool m_hasWaitCursor = false;
    CSimpleNotifier *m_fileEditNotifier;
    // What both runs of this synchronisation will come to, and what the first has.
    int m_templatesOfAll = 0;
    int m_templatesBefore = 0;
    // Each run with its connections, counters and time-out; whether one is active is told by
    // m_receiving and m_sending.
    SyncRun m_run;
};
