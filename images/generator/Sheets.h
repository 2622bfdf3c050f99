// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QDir;

// Mock-ups of the window, of both views and of every panel, with texts as the widgets write them,
// at both scales; and all small pictures side by side on light and on dark. False if a file could
// not be written.
bool writeSheets(const QDir &folder);
