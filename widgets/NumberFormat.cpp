// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/NumberFormat.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr int WidestField = 99;

qlonglong wholePart(double number)
{
    constexpr double Limit = 9.2e18; // within what a long long holds
    return std::isnan(number) ? 0 : static_cast<qlonglong>(std::clamp(number, -Limit, Limit));
}

// A conversion between its percent sign and its letter.
class Conversion
{
public:
    // from: the place behind the percent sign.
    Conversion(const QString &format, qsizetype from)
        : m_format(format)
        , m_at(from)
    {
        while (isOneOf("-+ #0")) {
            m_written += next();
        }
        readNumber();
        if (isOneOf(".")) {
            m_written += next();
            readNumber();
        }
        // The lengths of C say nothing here.
        while (isOneOf("hlLqjzt")) {
            next();
        }
        if (m_at < m_format.size()) {
            m_letter = next();
        }
    }

    // The place behind the conversion.
    qsizetype end() const { return m_at; }

    bool write(double number, QString *text) const
    {
        if (QByteArrayView("aAeEfFgG").contains(m_letter)) {
            *text += QString::asprintf(("%" + m_written + m_letter).constData(), number);
            return true;
        }
        if (QByteArrayView("dixXou").contains(m_letter)) {
            *text += QString::asprintf(("%" + m_written + "ll" + m_letter).constData(),
                                       wholePart(number));
            return true;
        }
        return false;
    }

private:
    bool isOneOf(const char *characters) const
    {
        const char16_t character = m_at < m_format.size() ? m_format.at(m_at).unicode() : u'\0';
        return character != 0 && character < 0x80 &&
               QByteArrayView(characters).contains(static_cast<char>(character));
    }
    char next() { return m_format.at(m_at++).toLatin1(); }
    void readNumber()
    {
        int number = -1;
        while (isOneOf("0123456789")) {
            number = std::min(std::max(number, 0) * 10 + (next() - '0'), WidestField);
        }
        if (number >= 0) {
            m_written += QByteArray::number(number);
        }
    }

    const QString &m_format;
    qsizetype m_at;
    QByteArray m_written;
    char m_letter = '\0';
};

} // namespace

QString formatNumber(const QString &format, double number)
{
    QString text;
    bool shown = false;
    qsizetype at = 0;
    while (at < format.size()) {
        const qsizetype percent = format.indexOf(u'%', at);
        if (percent < 0) {
            break;
        }
        text += QStringView(format).mid(at, percent - at);
        if (format.size() > percent + 1 && format.at(percent + 1) == u'%') {
            text += u'%';
            at = percent + 2;
            continue;
        }
        const Conversion conversion(format, percent + 1);
        if (shown || !conversion.write(number, &text)) {
            text += QStringView(format).mid(percent, conversion.end() - percent);
        } else {
            shown = true;
        }
        at = conversion.end();
    }
    text += QStringView(format).mid(at);
    return text;
}
