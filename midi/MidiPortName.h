// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

// The naming rule that all bindings share: the device's name, a blank, and the endpoint's name
// without every occurrence of the device's name followed by a blank, so that a device which puts
// its name in front of its ports' names does not show it twice. An empty device is "Unknown
// Device", an empty endpoint "Port #%d" with the port's number, which is index plus 1.
//
// index: 0-based, as TMIDIPortAccessor::identifierForIndex() gets it.
QString midiPortName(const QString &device, const QString &endpoint, int index);

// Linux kernels that do not know the instrument's jacks call them "MIDI 1" to "MIDI 5": reads a
// trailing "MIDI n" of the endpoint as "Portn", then applies midiPortName().
QString linuxMidiPortName(const QString &device, const QString &endpoint, int index);
