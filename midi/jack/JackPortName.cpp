// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/jack/JackPortName.h"

#include <QtCore/QRegularExpression>

JackPortName splitJackPortName(const QString &fullName)
{
    static const QRegularExpression bridgedByA2j(
        QStringLiteral(
            "\\Aa2j(?:-[0-9]+)?:(.*?)(?: \\[[0-9]+\\])? \\((?:capture|playback)\\): (.*)\\z"),
        QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression bridgedByMidiBridge(
        QStringLiteral(
            "\\AMidi-Bridge(?:-[0-9]+)?:(.*?):\\((?:capture|playback)_[0-9]+\\) (.*)\\z"),
        QRegularExpression::DotMatchesEverythingOption);

    for (const QRegularExpression *form : {&bridgedByA2j, &bridgedByMidiBridge}) {
        const QRegularExpressionMatch match = form->match(fullName);
        if (match.hasMatch()) {
            return {match.captured(1), match.captured(2)};
        }
    }
    const auto colon = fullName.indexOf(QLatin1Char(':'));
    if (colon < 0) {
        return {QString(), fullName};
    }
    return {fullName.left(colon), fullName.mid(colon + 1)};
}
