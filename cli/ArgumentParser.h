// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

// What was asked for on the command line, checked as far as the words alone allow.
struct Arguments
{
    QString command;
    QStringList operands; // as many as the command takes
    QString midi;         // "alsa", "jack", or empty for the first there is
    QString port;         // empty for the first instrument
    int timeoutMs = 0;    // 0 for the default
    bool json = false;
    bool editBufferOnly = false;
    bool store = false;
    bool verify = false;
    QString backup;     // empty for none
    int template_ = -1; // from 0; -1 for all
};

// The grammar of the command line: "trn-remote [options] COMMAND [operands and options]".
// Needs an application object. Thread: GUI.
class ArgumentParser
{
public:
    enum class Result {
        Command, // *arguments are to be carried out
        Answer,  // help or version was asked for; *text is it
        Wrong,   // *text says what
    };
    // words: with the program's name first.
    Result parse(const QStringList &words, Arguments *arguments, QString *text) const;

private:
    Result parseCommand(const QStringList &words, Arguments *arguments, QString *text) const;
};
