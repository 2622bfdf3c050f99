// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Console.h"

#include "app/PlainText.h"

#include <QtCore/QFileDevice>
#include <QtCore/QIODevice>

namespace
{

// Back to the first column, and the line erased.
const QByteArray EraseLine = QByteArrayLiteral("\r\x1B[K");

bool writeNow(QIODevice *device, const QByteArray &bytes)
{
    const bool isTaken = device->write(bytes) == bytes.size();
    auto *file = qobject_cast<QFileDevice *>(device);
    return (file == nullptr || file->flush()) && isTaken;
}

} // namespace

Console::Console(QIODevice *out, QIODevice *err, bool errIsTerminal, bool outIsTerminal)
    : m_out(out)
    , m_err(err)
    , m_errIsTerminal(errIsTerminal)
    , m_outIsTerminal(outIsTerminal)
{
}

void Console::line(const QString &text)
{
    bytes(text.toUtf8() + '\n');
}

void Console::bytes(const QByteArray &text)
{
    const QByteArray written =
        m_outIsTerminal ? PlainText::shown(QString::fromUtf8(text)).toUtf8() : text;
    m_hasLostOutput = !writeNow(m_out, written) || m_hasLostOutput;
}

void Console::error(const QString &text)
{
    note(QStringLiteral("trn-remote: ") + text);
}

void Console::note(const QString &text)
{
    draw(QString());
    writeNow(m_err, (m_errIsTerminal ? PlainText::shown(text) : text).toUtf8() + '\n');
}

void Console::draw(const QString &text)
{
    if (!m_errIsTerminal || (text.isEmpty() && !m_isDrawn)) {
        return;
    }
    m_isDrawn = !text.isEmpty();
    writeNow(m_err, EraseLine + text.toUtf8());
}
