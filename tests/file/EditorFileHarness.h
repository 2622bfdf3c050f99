// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemoryHarness.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

// An editor file as text, printed here line by line and by no XML library, so that what the
// program writes is held against something of another make.

inline const char *const KnobTags[12] = {"knobA1", "knobB1", "knobC1", "knobD1",
                                         "knobA2", "knobB2", "knobC2", "knobD2",
                                         "knobA3", "knobB3", "knobC3", "knobD3"};

inline QByteArray printedTemplate(const RemoteMemAPI &api, int bank, int number,
                                  const QByteArray &tag, const QByteArray &indent)
{
    const auto text = [&](int controller, int parameter) {
        return api.getParamQString(ParamAddress(bank, number, controller, parameter)).toUtf8();
    };
    const auto digits = [&](int controller, int parameter) {
        return QByteArray::number(valueAt(api, ParamAddress(bank, number, controller, parameter)));
    };
    const auto line = [](const QByteArray &before, const QByteArray &name,
                         const QByteArray &value) {
        return before + '<' + name + '>' + value + "</" + name + ">\n";
    };
    const QByteArray inner = indent + "    ";
    const QByteArray innermost = inner + "    ";
    QByteArray result = indent + '<' + tag + ">\n";
    result += line(inner, "name", text(13, -1));
    result += line(inner, "vstiname", text(15, -1));
    result += line(inner, "controltype", digits(14, -1));
    for (int knob = 0; knob < 12; ++knob) {
        result += inner + '<' + KnobTags[knob] + ">\n";
        result += line(innermost, "displayname", text(knob, 0));
        result += line(innermost, "ccnumber", digits(knob, 1));
        result += line(innermost, "displayformat", digits(knob, 2));
        result += line(innermost, "remotenumber", text(knob, 3));
        result += inner + "</" + KnobTags[knob] + ">\n";
    }
    return result + indent + "</" + tag + ">\n";
}

// Texts of the memory must need no escaping.
inline QByteArray printedFile(const RemoteMemAPI &api, int bank)
{
    QByteArray result = "<!DOCTYPE TARN_TERNRemoteEditorFile>\n<bank version=\"1.0\">\n";
    for (int t = 0; t < 50; ++t) {
        result += printedTemplate(api, bank, t, "template" + QByteArray::number(t + 1), "    ");
    }
    for (int t = 0; t < 50; ++t) {
        result +=
            printedTemplate(api, 0, t, "editBuffTemplate" + QByteArray::number(t + 1), "    ");
    }
    result += "    <bankInfo>\n        <templateNumber>" +
              QByteArray::number(valueAt(api, ParamAddress(0, 52, -1, -1))) +
              "</templateNumber>\n    </bankInfo>\n</bank>\n";
    return result;
}

inline QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

// The two banks and the number that a document holds, different in every value that has room.
inline void fillDocument(RemoteMemAPI *api)
{
    api->denyToRaiseFileEditFlag();
    for (int bank = 0; bank < 2; ++bank) {
        for (int t = 0; t < 50; ++t) {
            const QString stem =
                QStringLiteral("%1%2").arg(bank == 0 ? latin("E") : latin("S")).arg(t);
            api->setParam(ParamAddress(bank, t, 13, -1), latin("Template ") + stem);
            api->setParam(ParamAddress(bank, t, 15, -1), latin("Synth ") + stem);
            api->setParam(ParamAddress(bank, t, 14, -1), (bank + t) % 2);
            for (int k = 0; k < 12; ++k) {
                api->setParam(ParamAddress(bank, t, k, 0),
                              QStringLiteral("K%1 %2").arg(k).arg(stem));
                api->setParam(ParamAddress(bank, t, k, 1), (bank * 64 + t * 12 + k) % 128);
                api->setParam(ParamAddress(bank, t, k, 2), (bank + t + k) % 2);
                api->setParam(ParamAddress(bank, t, k, 3),
                              QStringLiteral("%1%2").arg(k % 3).arg(bank * 1000 + t * 12 + k, 8, 16,
                                                                    QLatin1Char('0')));
            }
        }
    }
    api->setParam(ParamAddress(0, 52, -1, -1), 31);
    api->allowToRaiseFileEditFlag();
}
