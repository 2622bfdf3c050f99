// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <CoreMIDI/CoreMIDI.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

// The test's end of the in-memory MIDI service behind the fake declarations. Thread: the test's,
// but for deliver(), which may come on any as the platform's callback does.
namespace FakeCore
{

// Forgets everything: endpoints, calls, failures. Nothing may be open.
void reset();

struct EndpointNames
{
    QString device;   // null: no name
    QString endpoint; // null: no name
    bool hasEntity = true;
    bool hasDevice = true;
};
// Appends a source or destination; a gap is an index that the service counts and gives no endpoint
// for.
MIDIEndpointRef addSource(const EndpointNames &names);
MIDIEndpointRef addDestination(const EndpointNames &names);
void addSourceGap();

// While set, the calls of that name fail.
void setFailing(const QString &call, bool isFailing);

// The calls that create, connect, disconnect and dispose, in order, with the names given to them:
// "MIDIClientCreate MIDI Client", "MIDIPortDispose" and so on.
QStringList calls();
int clientCount();
int portCount();
// Text objects that the binding owns and has not released.
int stringCount();

// Calls the read procedure of whoever has the source connected, with one packet for each entry.
// Returns false if nobody has.
bool deliver(MIDIEndpointRef source, const QList<QByteArray> &packets);
// The same to a connection that may be gone, as a callback under way at its end would.
void deliverLate(void *connection, const QList<QByteArray> &packets);

struct Sent
{
    MIDIEndpointRef destination = 0;
    MIDITimeStamp timeStamp = 0;
    QByteArray bytes;
};
// One entry for each MIDISend that was not refused.
QList<Sent> sent();

} // namespace FakeCore
