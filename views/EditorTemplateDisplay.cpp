// SPDX-License-Identifier: GPL-3.0-or-later
// What the template view shows of the memory beyond its bound controls.
#include "app/EditorMainWindow.h"
#include "memory/CSimpleNotifier.h"
#include "ui_EditorTemplate.h"
#include "views/EditorTemplate.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QFileInfo>
#include <QtCore/QScopedValueRollback>
#include <QtGui/QDrag>
#include <QtWidgets/QApplication>

#include <algorithm>

namespace
{

const QString PathSeparator = QStringLiteral(" - ");

QString ccText(int number, const QString &name)
{
    return QStringLiteral("CC%1\n").arg(number, 3, 10, QLatin1Char('0')) + name;
}

} // namespace

// --- Template and knob ---------------------------------------------------------------------------

void EditorTemplate::updateTemplateNumber()
{
    updateTemplateNumber(ui->btnTemplateNumber->value());
}

void EditorTemplate::updateTemplateNumber(int number)
{
    if (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close();
    }
    // A drag would end on a knob of another template than it began on.
    QDrag::cancel();
    // What has been typed belongs to the template that it was typed for.
    for (CLineEdit *edit : lineEdits()) {
        edit->accept();
    }
    ui->txtTemplateNumber->setText(
        QStringLiteral("Template No:%1").arg(number + 1, 2, 10, QLatin1Char('0')));
    {
        // Each of the controls below would have the whole display made anew.
        const QScopedValueRollback<bool> reassigning(m_reassigning, true);
        assignTemplate(ui->editTemplateName, number);
        assignTemplate(ui->editVSTiName, number);
        assignTemplate(ui->frameControllerPanel, number);
        assignTemplate(ui->frameControllerSetting, number);
    }
    updateVSTiName();
}

void EditorTemplate::acceptTyping()
{
    for (CLineEdit *edit : lineEdits()) {
        if (edit->hasTyping()) {
            edit->accept();
        }
    }
}

std::array<CLineEdit *, 3> EditorTemplate::lineEdits() const
{
    return {ui->editTemplateName, ui->editVSTiName, ui->editDisplayName};
}

void EditorTemplate::selectKnob()
{
    const auto checked =
        std::find_if(btnKnob.cbegin(), btnKnob.cend(),
                     [](const CRadioButton *button) { return button->isChecked(); });
    if (checked == btnKnob.cend()) {
        return;
    }
    ui->editDisplayName->accept();
    currentKnob = static_cast<int>(checked - btnKnob.cbegin());
    for (std::size_t knob = 0; knob < KnobCount; ++knob) {
        const bool isCurrent = knob == static_cast<std::size_t>(currentKnob);
        lblKnob[knob]->setVisible(isCurrent);
        txtKnob[knob]->setEnabled(isCurrent);
        lblKnob[knob]->stackUnder(txtKnob[knob]);
        btnKnob[knob]->raise();
    }
    assignController(ui->frameControllerSetting, currentKnob);
}

// --- LCD -----------------------------------------------------------------------------------------

bool EditorTemplate::isOtherDAW() const
{
    return !mainWindow->isBrandholmDAW();
}

bool EditorTemplate::isRemote() const
{
    return !isOtherDAW() && controlTypeNotifier->getMemAPICurrentValue() == 0;
}

QString EditorTemplate::longVSTiName() const
{
    return mainWindow->getVSTiInfo().getVSTiNameFromVSTiExtensionName(ui->editVSTiName->text());
}

// All cells at once: of an exchange of two knobs one alone is told.
void EditorTemplate::updateLCDDisplay()
{
    if (m_reassigning) {
        return;
    }
    const QString vsti = longVSTiName();
    for (int knob = 0; knob < KnobCount; ++knob) {
        updateLCDCell(knob, vsti);
    }
}

void EditorTemplate::updateLCDCell(int knob, const QString &vsti)
{
    const auto index = static_cast<std::size_t>(knob);
    CText *cell = txtKnob[index];
    QString text;
    QString whole; // what the tool tip says if the cell doesn't
    if (!isRemote()) {
        const int number = lcdCCNumberNotifier[index]->getMemAPICurrentValue();
        const QString name = lcdDisplayNameNotifier[index]->getMemAPIString();
        const QString shown = isOtherDAW() ? name : trimText(cell, name, cell->width());
        text = ccText(number, shown);
        whole = shown == name ? QString() : name;
    } else {
        const QStringList path = mainWindow->getVSTiInfo().getParameterName(
            vsti, lcdRemoteNumberNotifier[index]->getMemAPIString());
        if (!path.isEmpty()) {
            text = trimText(cell, path.constLast(), cell->width());
            whole = path.join(PathSeparator);
        }
        if (whole == text) {
            whole.clear();
        }
    }
    // Neither of the button's setters looks whether there is anything to do.
    CRadioButton *button = btnKnob[index];
    if (cell->text() != text) {
        cell->setText(text);
        button->setAccessibleDescription(text);
    }
    if (button->toolTip() != whole) {
        button->setToolTip(whole);
    }
}

void EditorTemplate::updateRemoteControlParameter()
{
    if (m_reassigning) {
        return;
    }
    const QString path =
        mainWindow->getVSTiInfo()
            .getParameterName(longVSTiName(), remoteNumberNotifier->getMemAPIString())
            .join(PathSeparator);
    if (ui->txtRemoteControlParameter->text() != path) {
        ui->txtRemoteControlParameter->setText(path);
        // A path is read from its start; what has no room stands in the tool tip.
        ui->txtRemoteControlParameter->setCursorPosition(0);
        ui->txtRemoteControlParameter->setToolTip(path);
    }
}

void EditorTemplate::updateVSTiName()
{
    updateLCDDisplay();
    updateRemoteControlParameter();
}

// --- Remote and CC -------------------------------------------------------------------------------

void EditorTemplate::updateDAW()
{
    ui->btnVSTiName->setVisible(!mainWindow->getVSTiInfo().getVSTiList().isEmpty() &&
                                !isOtherDAW());
    updateLCDDisplay();
    updateRemoteControlParameter();
    if (isOtherDAW()) {
        disableRemoteGUI();
    } else {
        enableRemoteGUI();
    }
}

void EditorTemplate::disableRemoteGUI()
{
    hideRemoteChoice();
    ui->txtRemoteControlParameter->hide();
    ui->btnRemoteControlParameter->hide();
    ui->editVSTiName->hide();
}

void EditorTemplate::enableRemoteGUI()
{
    for (QWidget *control : std::initializer_list<QWidget *>{
             ui->btnRemote, ui->btnCC, ui->btnRemotePanel, ui->btnCCPanel,
             ui->txtRemoteControlParameter, ui->btnRemoteControlParameter, ui->editVSTiName}) {
        control->show();
    }
    ui->lblRemote->setVisible(ui->btnRemote->isChecked());
    ui->lblCC->setVisible(ui->btnCC->isChecked());
}

// Without a DAW that knows remote parameters there is nothing to choose: a knob is a CC.
void EditorTemplate::hideRemoteChoice()
{
    for (QWidget *control : std::initializer_list<QWidget *>{
             ui->btnRemote, ui->btnCC, ui->lblRemote, ui->btnRemotePanel, ui->btnCCPanel}) {
        control->hide();
    }
    ui->lblCC->show();
}

void EditorTemplate::selectRemoteCC()
{
    if (isOtherDAW()) {
        hideRemoteChoice();
    } else {
        ui->lblRemote->setVisible(ui->btnRemote->isChecked());
        ui->lblCC->setVisible(ui->btnCC->isChecked());
    }
    ui->btnRemotePanel->update();
    ui->btnCCPanel->update();
}

// --- Document and instrument ---------------------------------------------------------------------

void EditorTemplate::updateFileName()
{
    const QString path = fileNameNotifier->getMemAPIString();
    const QString name = QFileInfo(path).fileName();
    const QString shown = trimText(ui->txtFileName, name, ui->txtFileName->width());
    ui->txtFileName->setText(shown);
    ui->txtFileName->setToolTip(path);
}

void EditorTemplate::updateFileEditFlag()
{
    ui->lblFileEditFlag->setVisible(fileEditFlagNotifier->getMemAPICurrentValue() != 0);
}

// Offline one may always store, since nobody knows what the instrument holds.
void EditorTemplate::updateBankEditFlag()
{
    const bool online = isOnlineNotifier->getMemAPICurrentValue() != 0;
    const bool edited = bankEditFlagNotifier->getMemAPICurrentValue() != 0;
    ui->lblBankEditFlag->setVisible(online && edited);
    ui->lblStoreFlash->setVisible(!online || edited);
    ui->btnStore->setVisible(!online || edited);
}
