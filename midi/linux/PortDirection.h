// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which side of a port the program uses: it reads from an input and sends to an output, whatever
// the service calls the two.
enum class PortDirection { Input, Output };

// The catalogue counts 0 as input and any other value as output.
constexpr PortDirection portDirection(int catalogueDirection)
{
    return catalogueDirection == 0 ? PortDirection::Input : PortDirection::Output;
}
