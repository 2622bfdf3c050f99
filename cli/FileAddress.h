// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ParamAddress.h"

#include <QtCore/QList>
#include <QtCore/QString>

class RemoteMemAPI;
class BankData;

// A value of a template or of a knob, as a person names it.
struct FileField
{
    QString name;
    int number; // in the controller field for a template's value, in the parameter field for a
                // knob's
    bool isText;
    int limit; // longest text, or highest number; the lowest is 0

    static const QList<FileField> &ofTemplate();
    static const QList<FileField> &ofKnob();
};

// A place in a document, written as "edit/13/knobA1/ccNumber", "stored/1/templateName" or
// "edit/currentTemplateNumber". Templates are numbered from 1, also as the last one's value.
class FileAddress
{
public:
    // False for a text that names no place; *error then says what would.
    static bool parse(const QString &text, FileAddress *address, QString *error);
    // All places of a bank in the order of a document; bank 0 or 1.
    static QList<FileAddress> ofTemplate(int bank, int template_);
    static FileAddress currentTemplateNumber();

    QString name() const;
    const ParamAddress &address() const { return m_address; }
    bool isText() const { return m_field.isText; }

    // What the bank holds at this place, whatever its number; numbers in decimal.
    QString value(const BankData &bank) const;
    // False for a value out of its limits; *error then tells them.
    bool setValue(RemoteMemAPI *api, const QString &text, QString *error) const;

private:
    ParamAddress m_address{nullptr};
    FileField m_field{QString(), -1, false, 0};
    bool m_countsFromOne = false;
};
