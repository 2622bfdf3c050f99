// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/FaultPlan.h"

#include "instrument/InstrumentMemory.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <algorithm>

namespace
{

constexpr int LongestTimeMs = 3600 * 1000;
constexpr int HighestCount = 1000000000;

const QHash<QString, MessageClass> &classWords()
{
    static const QHash<QString, MessageClass> words = {
        {QStringLiteral("header"), MessageClass::Header},
        {QStringLiteral("block"), MessageClass::Block},
        {QStringLiteral("footer"), MessageClass::Footer},
        {QStringLiteral("ack"), MessageClass::Acknowledge},
        {QStringLiteral("change"), MessageClass::Change},
        {QStringLiteral("sensing"), MessageClass::Sensing},
        {QStringLiteral("request"), MessageClass::ParameterRequest},
        {QStringLiteral("bulkrequest"), MessageClass::BulkRequest},
        {QStringLiteral("store"), MessageClass::Store},
        {QStringLiteral("flash"), MessageClass::StoreToFlash}};
    return words;
}

// Digits alone, within the bounds.
bool readCount(const QString &text, int minimum, int maximum, int *result)
{
    if (text.isEmpty() || !std::all_of(text.cbegin(), text.cend(), [](QChar c) {
            return c >= QLatin1Char('0') && c <= QLatin1Char('9');
        })) {
        return false;
    }
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || value < minimum || value > maximum) {
        return false;
    }
    *result = value;
    return true;
}

bool isOfATemplate(MessageClass messageClass)
{
    switch (messageClass) {
    case MessageClass::Header:
    case MessageClass::Block:
    case MessageClass::Footer:
    case MessageClass::Acknowledge:
    case MessageClass::BulkRequest:
        return true;
    default:
        return false;
    }
}

} // namespace

QByteArray FaultVerdict::applied(QByteArray wire) const
{
    if (loseBytes > 0 && wire.size() > 4) {
        const qsizetype count = std::min<qsizetype>(loseBytes, wire.size() - 4);
        wire.remove(wire.size() - 2 - count, count);
    }
    if (corrupt && wire.size() >= 3) {
        const qsizetype position = wire.size() - 2;
        wire[position] = static_cast<char>(wire.at(position) ^ 0x01);
    }
    if (keepBytes >= 0) {
        // Half of the message by default; never the whole, or it would not be cut.
        const qsizetype wanted = keepBytes > 0 ? keepBytes : wire.size() / 2;
        wire.truncate(std::max<qsizetype>(1, std::min(wanted, wire.size() - 1)));
    }
    return wire;
}

bool FaultPlan::Rule::fits(MessageDirection d, const MessageTag &tag) const
{
    const bool isClass = messageClass ? tag.messageClass == *messageClass
                                      : tag.messageClass != MessageClass::Sensing;
    return d == direction && isClass && (block < 0 || tag.block == block) &&
           (templateNumber < 0 || tag.templateNumber == templateNumber) &&
           (!type || tag.type == type);
}

FaultVerdict FaultPlan::judge(MessageDirection direction, const MessageTag &tag)
{
    FaultVerdict verdict;
    for (Rule &rule : m_rules) {
        if (rule.spent || !rule.fits(direction, tag)) {
            continue;
        }
        rule.seen = std::min(rule.seen + 1, HighestCount);
        if ((rule.only > 0 && rule.seen != rule.only) || rule.seen <= rule.after) {
            continue;
        }
        switch (rule.action) {
        case Action::Delay:
            verdict.delayMs += rule.argument;
            break;
        case Action::Drop:
            verdict.drop = true;
            break;
        case Action::Duplicate:
            ++verdict.copies;
            break;
        case Action::Corrupt:
            verdict.corrupt = true;
            break;
        case Action::Truncate:
            verdict.keepBytes = std::max(0, rule.argument);
            break;
        case Action::Shorten:
            verdict.loseBytes += std::max(1, rule.argument);
            break;
        case Action::Silent:
            // Otherwise it would fall silent again with the first message after its comeback.
            verdict.silence = true;
            rule.spent = true;
            break;
        }
    }
    return verdict;
}

bool FaultPlan::parseSelectors(const QStringList &words, Rule *rule, QString *why)
{
    bool hasClass = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString &word = words.at(i);
        const bool isCounted = rule->only > 0 || rule->after > 0;
        int number = 0;
        if (word == QStringLiteral("after") && !isCounted && i + 1 < words.size() &&
            readCount(words.at(i + 1), 0, HighestCount, &rule->after)) {
            ++i;
        } else if (word.startsWith(QLatin1Char('#')) && !isCounted &&
                   readCount(word.mid(1), 1, HighestCount, &rule->only)) {
            continue;
        } else if (!hasClass && word == QStringLiteral("every")) {
            hasClass = true;
        } else if (!hasClass && classWords().contains(word)) {
            hasClass = true;
            rule->messageClass = classWords().value(word);
        } else if (!hasClass && word.startsWith(QStringLiteral("block")) &&
                   readCount(word.mid(5), 0, InstrumentKnobCount, &rule->block)) {
            hasClass = true;
            rule->messageClass = MessageClass::Block;
        } else if (!rule->type && word == QStringLiteral("stored")) {
            rule->type = DumpType::Stored;
        } else if (!rule->type && word == QStringLiteral("edit")) {
            rule->type = DumpType::EditBuffer;
        } else if (rule->templateNumber < 0 &&
                   readCount(word, 1, InstrumentTemplateCount, &number)) {
            rule->templateNumber = number - 1;
        } else {
            *why = QStringLiteral("\"%1\" is no selector here").arg(word);
            return false;
        }
    }
    if ((rule->templateNumber >= 0 || rule->type) && rule->messageClass &&
        !isOfATemplate(*rule->messageClass)) {
        *why = QStringLiteral("such messages belong to no template (\"#N\" counts messages)");
        return false;
    }
    return true;
}

bool FaultPlan::add(const QString &text, QString *error)
{
    const auto fail = [&](const QString &why) {
        *error = QStringLiteral("\"%1\" is not a fault: %2.").arg(text, why);
        return false;
    };
    QStringList words = text.split(QLatin1Char(':'));
    Rule rule;
    if (words.first() == QStringLiteral("in")) {
        rule.direction = MessageDirection::Received;
        words.removeFirst();
    }
    if (words.isEmpty()) {
        return fail(QStringLiteral("it has no action"));
    }
    const QString head = words.takeFirst();
    const QString name = head.section(QLatin1Char('='), 0, 0);
    const bool hasArgument = head.contains(QLatin1Char('='));
    const QString argument = head.section(QLatin1Char('='), 1);

    if (name == QStringLiteral("comeback")) {
        if (!words.isEmpty() || rule.direction != MessageDirection::Sent) {
            return fail(QStringLiteral("comeback takes a time and no selector"));
        }
        int ms = 0;
        if (!readCount(argument, 1, LongestTimeMs, &ms)) {
            return fail(QStringLiteral("comeback needs milliseconds, as in comeback=2000"));
        }
        m_comebackMs = ms;
        return true;
    }

    struct ActionWord
    {
        QString name;
        Action action;
        enum { None, Optional, Needed } argument;
        int maximum;
    };
    static const ActionWord actions[] = {
        {QStringLiteral("delay"), Action::Delay, ActionWord::Needed, LongestTimeMs},
        {QStringLiteral("drop"), Action::Drop, ActionWord::None, 0},
        {QStringLiteral("duplicate"), Action::Duplicate, ActionWord::None, 0},
        {QStringLiteral("corrupt"), Action::Corrupt, ActionWord::None, 0},
        {QStringLiteral("truncate"), Action::Truncate, ActionWord::Optional, 64},
        {QStringLiteral("shorten"), Action::Shorten, ActionWord::Optional, 64},
        {QStringLiteral("silent"), Action::Silent, ActionWord::None, 0}};
    const auto *found = std::find_if(std::begin(actions), std::end(actions),
                                     [&](const ActionWord &a) { return a.name == name; });
    if (found == std::end(actions)) {
        return fail(QStringLiteral("\"%1\" is no action").arg(name));
    }
    rule.action = found->action;
    if (hasArgument ? found->argument == ActionWord::None ||
                          !readCount(argument, 1, found->maximum, &rule.argument)
                    : found->argument == ActionWord::Needed) {
        return fail(QStringLiteral("\"%1\" is no action").arg(head));
    }
    QString why;
    if (!parseSelectors(words, &rule, &why)) {
        return fail(why);
    }
    if (rule.messageClass == MessageClass::Sensing &&
        (rule.action == Action::Corrupt || rule.action == Action::Truncate ||
         rule.action == Action::Shorten)) {
        return fail(QStringLiteral("active sensing is a single byte"));
    }
    m_rules.push_back(rule);
    return true;
}

QString FaultPlan::grammar()
{
    return QStringLiteral(
        "[in:]ACTION[:SELECTOR]...; in: aims at what is received.\n"
        "ACTION: delay=MS, drop, duplicate, corrupt (the checksum), truncate[=BYTES] (without its "
        "end), shorten[=BYTES] (fewer data bytes), silent (nothing more is sent), comeback=MS "
        "(after silence, no selector).\n"
        "SELECTOR: header, block, block0 to block12, footer, ack, change, sensing, request, "
        "bulkrequest, store, flash, every (all but sensing, the default); stored, edit; N "
        "(template, "
        "1 to 50); #N (the N-th of them); after:N (all but the first N).\n"
        "Examples: drop:footer:12, corrupt:block3:7, silent:after:200, delay=50:ack, drop:ack:#1, "
        "comeback=2000.");
}
