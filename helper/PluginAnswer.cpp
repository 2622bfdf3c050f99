// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/PluginAnswer.h"

#include "helper/PlainText.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace
{

bool writeWhole(int file, const std::string &text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = write(file, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        done += static_cast<std::size_t>(written);
    }
    return true;
}

void appendLine(std::string *text, const std::string &line)
{
    *text += line;
    *text += '\n';
}

} // namespace

InstrumentRecord::InstrumentRecord(std::string name)
    : m_name(std::move(name))
{
}

void InstrumentRecord::addParameter(std::int64_t pluginId, const std::string &name,
                                    const std::vector<std::string> &groups)
{
    if (pluginId < -FirstParameterId || pluginId > LargestParameterId - FirstParameterId) {
        return;
    }
    m_hasNames = true;
    m_saysSomething = m_saysSomething || saysSomething(name);
    add(pluginId + FirstParameterId, name, groups);
}

void InstrumentRecord::addBypass(const std::string &name, const std::vector<std::string> &groups)
{
    add(BypassParameterId, name, groups);
}

void InstrumentRecord::add(std::int64_t id, const std::string &name,
                           const std::vector<std::string> &groups)
{
    ++m_count;
    appendLine(&m_parameters, std::to_string(id));
    appendLine(&m_parameters, name);
    appendLine(&m_parameters, std::to_string(groups.size()));
    for (const std::string &group : groups) {
        appendLine(&m_parameters, group);
    }
}

std::string InstrumentRecord::text() const
{
    std::string text;
    text.reserve(m_name.size() + m_parameters.size() + 32);
    appendLine(&text, m_name);
    appendLine(&text, std::to_string(m_count));
    text += m_parameters;
    return text;
}

void PluginAnswer::addInstrument(InstrumentRecord record)
{
    m_instruments.push_back(std::move(record));
}

void PluginAnswer::addFailure(HelperExit code)
{
    m_failures.push_back(code);
}

HelperExit PluginAnswer::exitCode() const
{
    if (!m_instruments.empty()) {
        const bool anyNames = std::any_of(m_instruments.begin(), m_instruments.end(),
                                          [](const auto &record) { return record.hasNames(); });
        const bool allSayNothing =
            std::all_of(m_instruments.begin(), m_instruments.end(), [](const auto &record) {
                return !record.hasNames() || record.namesSayNothing();
            });
        return anyNames && allSayNothing ? HelperExit::NamesSayNothing : HelperExit::List;
    }
    if (m_failures.empty()) {
        return HelperExit::NoAudioClass;
    }
    const auto instrument = std::find_if(m_failures.begin(), m_failures.end(), [](HelperExit code) {
        return code != HelperExit::NoInstrument;
    });
    return instrument == m_failures.end() ? HelperExit::NoInstrument : *instrument;
}

bool PluginAnswer::write(const std::string &path) const
{
    const std::string unfinished = unfinishedPath(path);
    // A device would be replaced, too, by whoever may do that.
    struct stat status = {};
    if (lstat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) {
        return false;
    }
    // Whatever stands there, as what an earlier plug-in has left, is not this one's.
    unlink(unfinished.c_str());
    const int file =
        open(unfinished.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (file < 0) {
        return false;
    }
    bool good = writeWhole(file, std::to_string(m_instruments.size()) + '\n');
    for (const InstrumentRecord &record : m_instruments) {
        good = good && writeWhole(file, record.text());
    }
    good = close(file) == 0 && good;
    good = good && std::rename(unfinished.c_str(), path.c_str()) == 0;
    if (!good) {
        unlink(unfinished.c_str());
    }
    return good;
}

std::string unfinishedPath(const std::string &resultPath)
{
    return resultPath + UnfinishedSuffix;
}
