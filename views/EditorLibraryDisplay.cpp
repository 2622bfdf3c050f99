// SPDX-License-Identifier: GPL-3.0-or-later
// What the lists and the preview show.

#include "app/EditorMainWindow.h"
#include "images/Artwork.h"
#include "memory/CSimpleNotifier.h"
#include "ui_EditorLibrary.h"
#include "views/EditorLibrary.h"
#include "widgets/FlashFrame.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QScopedValueRollback>

namespace
{

constexpr int ControlTypeRemote = 0;

QString ccLine(int ccNumber)
{
    return QStringLiteral("CC%1\n").arg(ccNumber, 3, 10, QLatin1Char('0'));
}

// A tip tells what the text had to leave out, and nothing that it tells itself.
QString tipBeside(const QString &shown, const QString &whole)
{
    return whole == shown ? QString() : whole;
}

} // namespace

// --- Lists ---------------------------------------------------------------------------------------

void EditorLibrary::fillList(CListView *list,
                             const std::array<CSimpleNotifier *, TemplateCount> &names)
{
    int row = 0;
    for (const CSimpleNotifier *name : names) {
        const QString number = QStringLiteral("%1  ").arg(row + 1, 2, 10, QLatin1Char('0'));
        list->setItem(row, {number + name->getMemAPIString()});
        ++row;
    }
}

void EditorLibrary::updateTemplateList()
{
    if (templateListEnabled) {
        fillList(ui->listTemplate, templateNameNotifier);
    }
}

void EditorLibrary::updateImportTemplateList()
{
    if (importAvailable) {
        fillList(ui->listImport, importTemplateNameNotifier);
    }
    ui->listImport->setVisible(importAvailable);
    ui->scrollImport->setVisible(importAvailable);
}

void EditorLibrary::flashItem(int number) const
{
    const QRect item = ui->listTemplate->getItemRect(number);
    if (item.isValid()) {
        FlashFrame::start(ui->listTemplate->parentWidget(),
                          item.translated(ui->listTemplate->pos()).adjusted(-1, -1, 1, 1));
    }
}

// --- Preview -------------------------------------------------------------------------------------

void EditorLibrary::showTemplate(int number)
{
    {
        const QScopedValueRollback<bool> reassigning(m_reassigning, true);
        assignTemplate(ui->framePreview, number);
    }
    updatePreview();
}

void EditorLibrary::showBankAndTemplate(int bank, int number)
{
    {
        const QScopedValueRollback<bool> reassigning(m_reassigning, true);
        assignBank(ui->framePreview, bank);
        assignTemplate(ui->framePreview, number);
    }
    updatePreview();
}

void EditorLibrary::updateDAW()
{
    updatePreview();
}

void EditorLibrary::updatePreview()
{
    if (m_reassigning) {
        return;
    }
    const bool known = mainWindow->isBrandholmDAW();
    const bool remote = known && controlTypeNotifier->getMemAPICurrentValue() == ControlTypeRemote;
    const QString vsti = mainWindow->getVSTiInfo().getVSTiNameFromVSTiExtensionName(
        vstiNameNotifier->getMemAPIString());
    if (known) {
        ui->txtVSTi->setText(vsti);
    }
    ui->txtVSTi->setVisible(known);
    ui->lblRemote->setVisible(remote);
    for (std::size_t knob = 0; knob < KnobCount; ++knob) {
        if (remote) {
            updateRemoteKnob(knob, vsti);
        } else {
            updateCCKnob(knob, known);
        }
    }
}

void EditorLibrary::updateRemoteKnob(std::size_t knob, const QString &vsti)
{
    CText *text = txtKnob[knob];
    const QStringList path = mainWindow->getVSTiInfo().getParameterName(
        vsti, remoteNumberNotifier[knob]->getMemAPIString());
    const QString shown = path.isEmpty() ? QString() : trimText(text, path.last(), text->width());
    text->setText(shown);
    text->setToolTip(tipBeside(shown, path.join(QStringLiteral(" - "))));
}

void EditorLibrary::updateCCKnob(std::size_t knob, bool trimmed)
{
    CText *text = txtKnob[knob];
    const QString name = displayNameNotifier[knob]->getMemAPIString();
    const QString shown = trimmed ? trimText(text, name, text->width()) : name;
    text->setText(ccLine(ccNumberNotifier[knob]->getMemAPICurrentValue()) + shown);
    text->setToolTip(tipBeside(shown, name));
}
