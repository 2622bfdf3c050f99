// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <csignal>
#include <optional>
#include <utility>

inline QString operator""_q(const char *text, std::size_t length)
{
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

// What a result file says, read as the editor reads it.
struct ReportedParameter
{
    qint64 id = 0;
    QString name;
    QStringList groups;

    bool operator==(const ReportedParameter &other) const = default;
};

struct ReportedInstrument
{
    QString name;
    QList<ReportedParameter> parameters;
};

// For the message of a failing comparison.
inline char *toString(const ReportedParameter &parameter)
{
    const QString text = QString::number(parameter.id) + " \""_q + parameter.name + "\" in \""_q +
                         parameter.groups.join("/"_q) + "\""_q;
    return qstrdup(text.toUtf8().constData());
}

// Nothing if the file is not exactly what it should be, to its last line.
inline std::optional<QList<ReportedInstrument>> readReport(const QByteArray &bytes)
{
    QList<QByteArray> lines = bytes.split('\n');
    if (lines.size() < 2 || !lines.takeLast().isEmpty()) {
        return {};
    }
    qsizetype at = 0;
    bool good = true;
    const auto text = [&] {
        good = good && at < lines.size();
        return good ? QString::fromUtf8(lines.at(at++)).trimmed() : QString();
    };
    const auto number = [&] {
        bool isNumber = false;
        const int value = text().toInt(&isNumber);
        good = good && isNumber;
        return value;
    };
    QList<ReportedInstrument> instruments;
    for (int left = number(); good && left > 0; --left) {
        ReportedInstrument instrument;
        instrument.name = text();
        good = good && !instrument.name.isEmpty();
        const int parameters = number();
        for (int i = 0; good && i < parameters; ++i) {
            ReportedParameter parameter;
            parameter.id = number();
            parameter.name = text();
            for (int groups = number(); good && groups > 0; --groups) {
                parameter.groups.append(text());
            }
            instrument.parameters.append(parameter);
        }
        instruments.append(instrument);
    }
    if (!good || at != lines.size()) {
        return {};
    }
    return instruments;
}

// The helper as a process, in a folder of its own, without a display.
class HelperRun
{
public:
    HelperRun() = default;
    HelperRun(const HelperRun &) = delete;
    HelperRun &operator=(const HelperRun &) = delete;
    // A test that fails leaves no plug-in running: not the process that it told of, if it is still
    // the one that had this folder in its command line.
    ~HelperRun()
    {
        const pid_t pid = processId();
        QFile commandLine("/proc/"_q + QString::number(pid) + "/cmdline"_q);
        if (pid > 0 && commandLine.open(QIODevice::ReadOnly) &&
            commandLine.readAll().contains(QFile::encodeName(m_folder.path()))) {
            kill(pid, SIGKILL);
        }
    }

    static QString program() { return QStringLiteral(TRN_BIN_DIR "/vif_tarn_tern_x64"); }
    static QString plugins() { return QStringLiteral(TRN_BIN_DIR "/tests/plugins"); }

    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString resultPath() const { return path("result.txt"_q); }
    // The misbehaving plug-in of the format, "vst2" or "vst3", under a name that says what to do.
    [[nodiscard]] QString plugin(const QString &format, const QString &behaviour) const
    {
        const QString extension = format.startsWith("vst3"_q) ? ".vst3"_q : ".so"_q;
        QString made = path(behaviour + extension);
        QFile::link(plugins() + "/misbehaving/"_q + format + ".so"_q, made);
        return made;
    }

    // Starts it, and does not wait.
    void start(const QString &pluginPath) { start(QStringList{pluginPath, resultPath()}); }
    void start(const QStringList &arguments)
    {
        QFile::remove(resultPath());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY"_q);
        environment.remove("WAYLAND_DISPLAY"_q);
        environment.insert("TRN_TEST_PROCESS_ID"_q, processIdPath());
        process.setProcessEnvironment(environment);
        process.start(program(), arguments);
    }
    // Runs it to its end; false if it takes longer than a scan would wait.
    [[nodiscard]] bool run(const QString &pluginPath)
    {
        start(pluginPath);
        return process.waitForFinished(60000);
    }
    [[nodiscard]] bool died() const { return process.exitStatus() == QProcess::CrashExit; }
    [[nodiscard]] int exitCode() const { return process.exitCode(); }
    [[nodiscard]] bool saidNothing()
    {
        return process.readAllStandardOutput().isEmpty() &&
               process.readAllStandardError().isEmpty();
    }
    // Nothing if there is no result file, or a damaged one.
    [[nodiscard]] std::optional<QList<ReportedInstrument>> report() const
    {
        QFile file(resultPath());
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        return readReport(file.readAll());
    }
    // The files that the helper has left behind, the result included.
    [[nodiscard]] QStringList written() const
    {
        return QDir(m_folder.path()).entryList({"result*"_q}, QDir::AllEntries);
    }
    // The one instrument of the report, empty if there is another number of them.
    [[nodiscard]] ReportedInstrument instrument() const
    {
        const auto all = report();
        return all && all->size() == 1 ? all->first() : ReportedInstrument{};
    }

    [[nodiscard]] QString processIdPath() const { return path("process"_q); }
    // The process that the plug-in told of, or 0.
    [[nodiscard]] pid_t processId() const
    {
        QFile file(processIdPath());
        return file.open(QIODevice::ReadOnly) ? static_cast<pid_t>(file.readAll().toLong()) : 0;
    }

    QProcess process;

private:
    QTemporaryDir m_folder;
};
