// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QStringList>

// Where things lie on this platform. Everything that depends on the machine's layout passes
// through here, and a test can point all of it at a temporary machine.

// The pieces that getAppDataDirectory() puts behind the home folder.
#ifdef Q_OS_MACOS
inline constexpr const char *AppDataFolderPath = "/Library/Application Support";
#else
inline constexpr const char *AppDataFolderPath = "/.local/share";
#endif
inline constexpr const char *UserFolderPath = "/Corvan/TARN_TERN Remote Editor";

// A machine of a test's own. An empty field means the real place.
struct MachineFolders
{
    QString home;          // user's home; the application data folder is below it
    QString executable;    // folder that the running program lies in
    QString shareFolder;   // installed resources
    QString libexecFolder; // installed helper programs
    QString documents;     // the user's documents
    QString system;        // stands in front of the folders that all users share, as /opt
};

// Thread: GUI, before the folders are first asked for.
void setMachineFolders(const MachineFolders &folders);
MachineFolders machineFolders();

// The user's application data folder. Not created here: who writes into it creates it.
QDir getAppDataDirectory();
// Resources: the preset bank, the plug-in presets, the manual. The folder "resources" beside the
// executable or one level above, or the installed share folder, whichever holds the preset bank
// first; on macOS the bundle's resources. A QDir of a null path if there is none. The installed
// folders are found from the executable's on, wherever the installation lies.
QDir getInitialDirectory();
// Helper programs: the executable's folder, or the installed libexec folder if it exists.
QDir getExecuteDirectory();
// The user's documents folder, or the home folder if the platform knows none.
QString documentsFolder();

// What other makers' programs have on this machine. None of these need exist.

// Where applications are installed, each with a "/" at its end, in the order of their search.
QStringList applicationFolders();
// The preferences of an application lie below it, in a folder of the application's name.
QDir preferencesFolder();
// Plug-ins that belong to no application, in the order of their search.
QStringList commonVST3Folders();
// Components that an application's maker shares among applications lie below it.
QString sharedDataFolder();
// The program of a helper that is named as a bundle, "folder/name.app". Where the platform has no
// bundles it is "folder/name".
QString helperExecutable(const QString &bundle);
