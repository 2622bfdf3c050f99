// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// A tree of folders and files, new for each test, whose names are bytes of any kind. What is made
// is made with all that it lies in.
class PathRig
{
public:
    PathRig() = default;
    // Where folders are made, if not in the usual place for temporary ones.
    explicit PathRig(const QString &within)
        : m_folder(within + QStringLiteral("/trn-XXXXXX"))
    {
    }
    ~PathRig()
    {
        // Qt cannot name all of it.
        std::error_code error;
        std::filesystem::remove_all(root(), error);
    }
    PathRig(const PathRig &) = delete;
    PathRig &operator=(const PathRig &) = delete;

    std::string root() const { return QFile::encodeName(m_folder.path()).toStdString(); }
    std::string path(const std::string &below) const { return root() + '/' + below; }

    std::string folder(const std::string &below) const
    {
        std::string full = path(below);
        for (size_t slash = full.find('/', 1); slash != std::string::npos;
             slash = full.find('/', slash + 1)) {
            ::mkdir(full.substr(0, slash).c_str(), 0755);
        }
        ::mkdir(full.c_str(), 0755);
        return full;
    }
    std::string file(const std::string &below, const std::string &content = {}) const
    {
        const size_t slash = below.rfind('/');
        folder(slash == std::string::npos ? std::string() : below.substr(0, slash));
        std::string full = path(below);
        const int file = ::open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (file < 0 || ::write(file, content.data(), content.size()) < 0) {
            qFatal("%s: %s", full.c_str(), std::strerror(errno));
        }
        ::close(file);
        return full;
    }
    std::string link(const std::string &target, const std::string &below) const
    {
        std::string full = path(below);
        if (::symlink(target.c_str(), full.c_str()) != 0) {
            qFatal("%s: %s", full.c_str(), std::strerror(errno));
        }
        return full;
    }
    std::string content(const std::string &below) const
    {
        QFile file(QFile::decodeName(path(below).c_str()));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }

private:
    QTemporaryDir m_folder;
};

// Where a hundred thousand files cost little: in memory, if there is such a place.
inline QString folderForManyFiles()
{
    const QString memory = QStringLiteral("/dev/shm");
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

// Permissions say nothing to the superuser, who is somebody else while one of these lives. What is
// to be found must be open to all.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        if (m_user == 0 && ::seteuid(Nobody) != 0) {
            qFatal("no other user: %s", std::strerror(errno));
        }
    }
    ~OrdinaryUser()
    {
        if (m_user == 0 && ::seteuid(0) != 0) {
            qFatal("no way back: %s", std::strerror(errno));
        }
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    static constexpr uid_t Nobody = 65534;
    const uid_t m_user = ::geteuid();
};
