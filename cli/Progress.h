// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

class Console;

// The templates done of all, drawn while a person watches and removed at the end. Thread: GUI.
class Progress
{
public:
    // what: "Receiving" or "Sending". The console outlives this.
    Progress(Console *console, const QString &what);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void show(int done, int total);

private:
    Console *m_console;
    QString m_what;
};
