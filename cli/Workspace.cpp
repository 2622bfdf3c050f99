// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Workspace.h"

#include "app/Constants.h"
#include "app/Folders.h"
#include "file/EditorFile.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace
{

constexpr int PresetBankNumber = 1;

const ParamAddress FileNameAddress(ParamAddress::FileName, -1, -1, -1);

} // namespace

Workspace::Workspace()
{
    // A command looks for its instrument once, and takes no note of what is plugged in later.
    m_api.setWatchPortActivate(false);
    while (m_api.getQuantityOfBank() < Bank::Count) {
        m_api.createBank();
    }
    const QDir resources = getInitialDirectory();
    if (!resources.path().isEmpty()) {
        QFile preset(
            resources.filePath(PresetBankFile.arg(PresetBankNumber) + EditorFileExtension));
        // Without the factory templates, blank knobs are blank.
        EditorFile::load(&m_api, Bank::Preset, &preset, false, nullptr);
    }
    m_api.initializeInitialTemplate();
    clear();
    m_api.setBankAvailableFlag(1, Bank::EditBuffer);
    m_api.setBankAvailableFlag(1, Bank::Stored);
}

void Workspace::clear()
{
    m_api.denyToRaiseFileEditFlag();
    for (const int bank : {Bank::EditBuffer, Bank::Stored}) {
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            m_api.initializeTemplate(bank, number);
        }
        m_api.setParam(ParamAddress(bank, ParamAddress::CurrentTemplateNumber, -1, -1), 0);
    }
    m_api.allowToRaiseFileEditFlag();
}

bool Workspace::load(const QString &path, QString *error)
{
    // A value that a load refuses stays as it was, so nothing of another document may be left.
    clear();
    m_api.denyToRaiseFileEditFlag();
    QFile file(path);
    const bool loaded = EditorFile::load(&m_api, Bank::Stored, &file, true, error);
    if (loaded) {
        m_api.setParam(FileNameAddress, path);
    }
    m_api.allowToRaiseFileEditFlag();
    return loaded;
}

bool Workspace::save(const QString &path, QString *error)
{
    QFile file(path);
    return EditorFile::save(&m_api, Bank::Stored, &file, error);
}
