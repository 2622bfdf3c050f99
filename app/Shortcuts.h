// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtGui/QKeySequence>

// The key sequence of each menu text in Constants.h; an empty one means that the command has no
// key. Kept apart from Constants.h because QKeySequence is graphical and the engine is not.

static const QKeySequence ShortcutFileNew(QStringLiteral("Ctrl+N"));
static const QKeySequence ShortcutFileOpen(QStringLiteral("Ctrl+O"));
static const QKeySequence ShortcutFileSave(QStringLiteral("Ctrl+S"));
static const QKeySequence ShortcutFileSaveAs(QStringLiteral(""));
static const QKeySequence ShortcutImportTemplate(QStringLiteral("Ctrl+I"));
static const QKeySequence ShortcutFileNewBank;
static const QKeySequence ShortcutFileImport;
static const QKeySequence ShortcutFileExport;
static const QKeySequence ShortcutFileDuplicateBank;
static const QKeySequence ShortcutFileDeleteBank;
static const QKeySequence ShortcutFileSetup;
static const QKeySequence ShortcutFileVSTiDatabaseFullScan;
static const QKeySequence ShortcutFileVSTiDatabaseUpdate;
static const QKeySequence ShortcutEditCopy(QStringLiteral("Ctrl+C"));
static const QKeySequence ShortcutEditPaste(QStringLiteral("Ctrl+V"));
static const QKeySequence ShortcutEditInitialize;
static const QKeySequence ShortcutEditResetStored;
static const QKeySequence ShortcutEditRestoreHW;
static const QKeySequence ShortcutEditResetFactory;
static const QKeySequence ShortcutHelpManual(QStringLiteral("F1"));
static const QKeySequence ShortcutHelpAbout;
