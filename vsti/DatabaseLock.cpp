// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/DatabaseLock.h"

#include <QtCore/QFile>
#include <QtCore/QThread>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int LookUpMs = 100;

} // namespace

void DatabaseLock::take(const QString &path, const std::function<bool()> &isAbandoned)
{
    if (isHeld()) {
        return;
    }
    // No pipe that nobody reads, no link to elsewhere, and nothing that the helper inherits.
    const int file = ::open(QFile::encodeName(path).constData(),
                            O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
    struct stat status = {};
    if (file < 0) {
        return;
    }
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(file);
        return;
    }
    while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || isAbandoned()) {
            ::close(file);
            return;
        }
        QThread::msleep(LookUpMs);
    }
    m_file = file;
}

void DatabaseLock::release()
{
    if (isHeld()) {
        ::close(m_file);
        m_file = -1;
    }
}
