// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

class QIODevice;

// Where a command writes: results to out, everything said to the user to err. UTF-8. Neither device
// is owned; both are open and outlive the console. Thread: GUI.
class Console
{
public:
    // errIsTerminal: a person is watching err, so that progress may be drawn on it. What goes to a
    // terminal is shown plainly (see PlainText); elsewhere it arrives as it is.
    Console(QIODevice *out, QIODevice *err, bool errIsTerminal, bool outIsTerminal = false);

    void line(const QString &text);
    void bytes(const QByteArray &text);
    // Something written to out did not arrive, as on a full disk or with the reader of a pipe gone.
    bool hasLostOutput() const { return m_hasLostOutput; }
    // One line "trn-remote: text".
    void error(const QString &text);
    // One line as it stands.
    void note(const QString &text);

    bool isWatched() const { return m_errIsTerminal; }
    // Replaces the line that is being drawn on the terminal; an empty text removes it. Nothing
    // unless watched.
    void draw(const QString &text);

private:
    QIODevice *m_out;
    QIODevice *m_err;
    bool m_errIsTerminal;
    bool m_outIsTerminal;
    bool m_isDrawn = false;
    bool m_hasLostOutput = false;
};
