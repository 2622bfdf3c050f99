// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "helper/HelperResult.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The ids of a plug-in's parameters among all remote parameter ids.
inline constexpr std::int64_t FirstParameterId = 4201;
inline constexpr std::int64_t LargestParameterId = 2147483647;
// The switch that lets the sound pass unchanged has the same id in every plug-in.
inline constexpr std::int64_t BypassParameterId = 10004202;

// One instrument, as it goes into the result file. All texts are lines: UTF-8 without control
// characters.
class InstrumentRecord
{
public:
    // A blank name would make the reader lose its place, so that `name` must not be one.
    explicit InstrumentRecord(std::string name);

    // `pluginId` is the plug-in's own number of the parameter. A parameter whose id does not fit is
    // left out. `groups` stand outermost first.
    void addParameter(std::int64_t pluginId, const std::string &name,
                      const std::vector<std::string> &groups);
    void addBypass(const std::string &name, const std::vector<std::string> &groups);

    [[nodiscard]] std::string text() const;
    // What the record will take in the file, without its head.
    [[nodiscard]] std::size_t size() const { return m_parameters.size(); }
    // True if there are names, and none of them says anything. The bypass, whose name comes from
    // the plug-in's framework, is no witness.
    [[nodiscard]] bool namesSayNothing() const { return m_hasNames && !m_saysSomething; }
    [[nodiscard]] bool hasNames() const { return m_hasNames; }

private:
    void add(std::int64_t id, const std::string &name, const std::vector<std::string> &groups);

    std::string m_name;
    std::string m_parameters;
    std::size_t m_count = 0;
    bool m_hasNames = false;
    bool m_saysSomething = false;
};

// What the plug-in file has told: the records of its instruments, and what became of the classes
// that gave none.
class PluginAnswer
{
public:
    // For one instrument, and more than a million parameters take. A plug-in that never comes to an
    // end would fill the memory first and the disk then.
    static constexpr std::size_t MaximumBytes = 64 * 1024 * 1024;

    // Each class that was looked at ends in one of these two.
    void addInstrument(InstrumentRecord record);
    void addFailure(HelperExit code);

    // An instrument outweighs every failure beside it; an instrument that failed outweighs an
    // effect; a file without any class has no audio class.
    [[nodiscard]] HelperExit exitCode() const;

    // The file appears under its name whole or not at all: it is written beside it and renamed.
    //
    //     number of instruments
    //     for each: name, number of parameters
    //         for each: id, name, number of groups
    //             for each: group name
    //
    // one item per line, decimal numbers.
    [[nodiscard]] bool write(const std::string &path) const;

private:
    std::vector<InstrumentRecord> m_instruments;
    std::vector<HelperExit> m_failures;
};

// Where the file is written before it is renamed.
[[nodiscard]] std::string unfinishedPath(const std::string &resultPath);
