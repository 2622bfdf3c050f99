// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

class Console;
class Interruption;

// The companion for the terminal as a function, for its program and its tests: carries out one
// command line and returns the exit code. words begins with the program's name. chooseMidi gets
// "alsa" or "jack" if that was asked for, before any port is read; it may be empty.
// Needs an application object, with no event loop running. Thread: GUI.
int trnRemote(const QStringList &words, Console *console, Interruption *interruption,
              const std::function<void(const QString &service)> &chooseMidi);
