// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

// A JACK port's full name taken apart, as the naming rule needs it.
struct JackPortName
{
    QString device;
    QString endpoint;

    bool operator==(const JackPortName &) const = default;
};

// JACK knows clients, not devices: an instrument shows up below the client that bridges it. The
// bridges put the device's name into the port's, each in a form of its own:
//
//   a2j:DEVICE [N] (capture): ENDPOINT        also (playback); the number may be missing, and JACK
//                                             puts -NN behind a second client of one name
//   Midi-Bridge:DEVICE:(capture_N) ENDPOINT   also (playback_N)
//   CLIENT:PORT                               anything else
//
// The bracketed number is the device's address of the moment and no part of its name: it changes
// when the device is plugged in again. A text without a colon is all endpoint.
JackPortName splitJackPortName(const QString &fullName);
