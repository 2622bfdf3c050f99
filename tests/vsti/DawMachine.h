// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Folders.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// A machine of a test's own: a home and the folders that all users share, with a DAW or two and
// whatever plug-ins a test puts there. The program's own folders stay as they are.
//
// The helper is a script that each plug-in brings along, its file's content, unless the test wants
// the real one. Which plug-ins it was asked for stands in a list.
class DawMachine
{
public:
    static QString daw() { return QStringLiteral("Trevia 7"); }
    static QString otherDaw() { return QStringLiteral("Trevia 6"); }

    enum class Helper { Script, Real };

    explicit DawMachine(Helper helper = Helper::Script)
        : m_before(machineFolders())
    {
        MachineFolders folders = m_before;
        folders.home = path("home");
        folders.system = path("system");
        folders.libexecFolder = path("libexec");
        setMachineFolders(folders);
        if (helper == Helper::Script) {
            write("libexec/vif_tarn_tern_x64", "#!/bin/sh\n"
                                               "printf '%s\\n' \"${1##*/}\" >> \"${0%/*}/asked\"\n"
                                               "echo $$ > \"${0%/*}/running\"\n"
                                               ". \"$1\"\n");
            QFile::setPermissions(path("libexec/vif_tarn_tern_x64"),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        install(daw());
    }
    ~DawMachine() { setMachineFolders(m_before); }
    DawMachine(const DawMachine &) = delete;
    DawMachine &operator=(const DawMachine &) = delete;

    // Edition and version: "Trevia 7".
    void install(const QString &name) const
    {
        QDir().mkpath(applicationFolders().first() + name + QStringLiteral(".app"));
        const QString edition = name.section(QLatin1Char(' '), 0, 0);
        write(preferencesFolder().filePath(name + QStringLiteral("/Vst2xPlugins ") + edition +
                                           QStringLiteral(".xml")),
              "<?xml version=\"1.0\"?>\n<Vst2xPlugins/>\n");
    }

    QString path(const char *below) const { return m_folder.filePath(QString::fromUtf8(below)); }
    void write(const char *below, const QByteArray &content) const { write(path(below), content); }
    static void write(const QString &file, const QByteArray &content)
    {
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile written(file);
        if (!written.open(QIODevice::WriteOnly) || written.write(content) != content.size()) {
            qFatal("%s: %s", qPrintable(file), qPrintable(written.errorString()));
        }
    }
    QByteArray read(const char *below) const
    {
        QFile file(path(below));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString vst3Folder() const { return path("home/.vst3"); }
    QString vst3(const QString &name) const { return vst3Folder() + QLatin1Char('/') + name; }
    // A plug-in with one instrument of that name and two parameters, or what its script does.
    void plugin(const QString &name, const QByteArray &script) const { write(vst3(name), script); }
    static QByteArray saysInstrument(const QByteArray &name)
    {
        return "cat > \"$2\" <<'end'\n1\n" + name +
               "\n2\n4201\nVolume\n0\n4202\nCutoff\n1\nFilter\nend\nexit 0\n";
    }
    static QByteArray saysNoInstrument() { return "exit 3\n"; }
    // It tells its process beforehand, and hangs until the gate is opened.
    static QByteArray waits(const QByteArray &then)
    {
        return "read line < \"${0%/*}/gate\"\n" + then;
    }

    // Names of the plug-ins for which the helper was started, in order, since the last call.
    QStringList asked() const
    {
        QStringList names =
            QString::fromUtf8(read("libexec/asked")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QFile::remove(path("libexec/asked"));
        return names;
    }
    // Process of the helper that was started last, 0 for none.
    int helperProcess() const { return read("libexec/running").trimmed().toInt(); }
    static bool isRunning(int process)
    {
        QFile state(QStringLiteral("/proc/%1/stat").arg(process));
        if (process <= 0 || !state.open(QIODevice::ReadOnly)) {
            return false;
        }
        // One that has ended and that nobody has waited for yet runs no more.
        const QByteArray text = state.readAll();
        return !text.isEmpty() && !text.mid(text.lastIndexOf(')')).startsWith(") Z");
    }
    QByteArray notSynthList() const
    {
        QFile file(getAppDataDirectory().filePath(QStringLiteral("NotSynthList.txt")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    MachineFolders m_before;
    QTemporaryDir m_folder;
};

// Holds the plug-ins up that wait for it.
class Gate
{
public:
    explicit Gate(const DawMachine &machine)
    {
        const QByteArray name = QFile::encodeName(machine.path("libexec/gate"));
        if (::mkfifo(name.constData(), 0600) != 0) {
            qFatal("%s: %s", name.constData(), std::strerror(errno));
        }
        // For both, so that neither side ever waits for the other to come.
        m_end = ::open(name.constData(), O_RDWR | O_CLOEXEC);
    }
    ~Gate() { ::close(m_end); }
    Gate(const Gate &) = delete;
    Gate &operator=(const Gate &) = delete;

    // For one plug-in.
    void open() const
    {
        if (::write(m_end, "\n", 1) != 1) {
            qFatal("gate: %s", std::strerror(errno));
        }
    }

private:
    int m_end = -1;
};
