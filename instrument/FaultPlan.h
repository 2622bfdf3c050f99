// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "instrument/InstrumentProtocol.h"

#include <QtCore/QString>

#include <optional>
#include <vector>

// What a fault can be aimed at.
enum class MessageClass {
    Header,
    Block,
    Footer,
    Acknowledge,
    Change,
    Sensing,
    ParameterRequest,
    BulkRequest,
    Store,
    StoreToFlash,
    Other
};

enum class MessageDirection { Sent, Received };

// One message as the plan sees it.
struct MessageTag
{
    MessageClass messageClass = MessageClass::Other;
    int block = -1;          // for Block: 0 the template's own, 1 to 12 the knobs
    int templateNumber = -1; // from 0; of header, block, footer, acknowledge and bulk request
    std::optional<DumpType> type;
};

// What is to become of one message.
struct FaultVerdict
{
    bool drop = false;
    bool silence = false; // the instrument falls silent instead of sending or taking it
    bool corrupt = false;
    int copies = 1;
    int keepBytes = -1; // cut behind so many bytes; -1 for all
    int loseBytes = 0;  // so many bytes in front of the checksum are left out
    int delayMs = 0;

    // The bytes as they go out: the byte in front of 0xF7, which is the checksum where there is
    // one, with a bit changed; bytes left out; the end cut off. Never empty unless it was.
    QByteArray applied(QByteArray wire) const;
};

// Faults on demand, one rule per fault. Rules apply together, in the order in which they were
// added. The text of a rule (numbers of templates from 1, as on the display):
//
//   [in:]ACTION[:SELECTOR]...
//
//   ACTION     delay=MS        what follows on the same port waits behind it
//              drop            as if never sent
//              duplicate       twice
//              corrupt         a bit of the checksum (or of the byte in its place) is wrong
//              truncate[=N]    cut behind N bytes, without its 0xF7 (default: half of it)
//              shorten[=N]     N data bytes fewer (default 1), 0xF7 and all else in place
//              silent          falls silent instead: nothing more is sent, sensing included; once
//              comeback=MS     not a message's fault: so long after falling silent it sends again
//   SELECTOR   header, block, block0 (the template's own) to block12, footer, ack, change,
//              sensing, request, bulkrequest, store, flash, every (the default: all but sensing)
//              stored or edit  only of that kind of dump
//              N               only of template N, 1 to 50
//              #N              only the N-th message that the selectors before it fit, from 1
//              after:N         all but the first N of them
//
//   drop:footer:12      corrupt:block3:edit:7      silent:after:200      delay=50:ack
//   drop:ack:#1         in:drop:bulkrequest:5      comeback=2000
//
// "in:" aims at what the instrument receives, otherwise at what it sends.
// Thread: one at a time; the owner guards it.
class FaultPlan
{
public:
    // False, *error told, and the plan as it was, for a text that is no rule.
    [[nodiscard]] bool add(const QString &text, QString *error);
    static QString grammar();

    // Counts the message and tells its fate.
    FaultVerdict judge(MessageDirection direction, const MessageTag &tag);

    // 0 when it stays silent for good.
    int comebackMs() const { return m_comebackMs; }
    bool isEmpty() const { return m_rules.empty(); }

private:
    enum class Action { Delay, Drop, Duplicate, Corrupt, Truncate, Shorten, Silent };
    struct Rule
    {
        Action action = Action::Drop;
        int argument = -1;
        MessageDirection direction = MessageDirection::Sent;
        std::optional<MessageClass> messageClass; // none: every but sensing
        int block = -1;
        int templateNumber = -1;
        std::optional<DumpType> type;
        int only = 0;
        int after = 0;
        int seen = 0;
        bool spent = false;

        bool fits(MessageDirection d, const MessageTag &tag) const;
    };
    static bool parseSelectors(const QStringList &words, Rule *rule, QString *why);

    std::vector<Rule> m_rules;
    int m_comebackMs = 0;
};
