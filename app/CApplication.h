// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QApplication>

class EditorMainWindow;

// The window that takes the files which the desktop asks the program to open. Null until main has
// shown it: a request that comes before is dropped. Not owned. Thread: GUI.
extern EditorMainWindow *g_pEditorMainWindow;

// The application object; it hands the desktop's requests to open a file to the main window.
class CApplication : public QApplication
{
    Q_OBJECT

public:
    // argc and argv must live as long as the object.
    CApplication(int &argc, char **argv);

protected:
    bool event(QEvent *event) override;
};

// A message handler that silences the process, but for what is fatal and would otherwise end it
// without a word, such as a missing display. Any thread.
void doNotOutputMessage(QtMsgType type, const QMessageLogContext &context, const QString &message);
