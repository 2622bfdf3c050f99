// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Progress.h"

#include "cli/Console.h"

Progress::Progress(Console *console, const QString &what)
    : m_console(console)
    , m_what(what)
{
}

Progress::~Progress()
{
    m_console->draw(QString());
}

void Progress::show(int done, int total)
{
    m_console->draw(QStringLiteral("%1: %2 of %3 templates").arg(m_what).arg(done).arg(total));
}
