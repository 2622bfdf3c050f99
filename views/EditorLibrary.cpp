// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/EditorLibrary.h"

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "images/Artwork.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorLibrary.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QMimeData>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

// Life, selection and commands; the other sources are named in the header.

namespace
{

constexpr int MostBanks = 128;
constexpr int ItemMarginWidthPx = 5;

const QString KeyEnter = QStringLiteral("Enter");
const QString KeyReturn = QStringLiteral("Return");
const QString KeyEscape = QStringLiteral("Esc");

// A notifier of the value with that name, of a template of a bank.
CSimpleNotifier *newNotifier(const QString &name, int bank, int number, QObject *parent)
{
    auto *notifier = new CSimpleNotifier(name, parent);
    notifier->assignClassMemAPI({bank, number});
    return notifier;
}

} // namespace

EditorLibrary::EditorLibrary(EditorMainWindow *window)
    : CFrame(window)
    , ui(std::make_unique<Ui::EditorLibrary>())
    , mainWindow(window)
    , remoteMemAPI(window->getRemoteMemAPI())
{
    ui->setupUi(this);
    adjustFont(this);
    mainWindow->installTabCanceller(this);
    collectKnobs();
    buildLists();
    buildNotifiers();
    connectControls();
    installShortcut(KeyEnter, &EditorLibrary::emulateOKPressing);
    installShortcut(KeyReturn, &EditorLibrary::emulateOKPressing);
    installShortcut(KeyEscape, &EditorLibrary::emulateCancelPressing);
}

EditorLibrary::~EditorLibrary() = default;

// --- Construction --------------------------------------------------------------------------------

void EditorLibrary::collectKnobs()
{
    txtKnob = {ui->txtKnobA1, ui->txtKnobB1, ui->txtKnobC1, ui->txtKnobD1,
               ui->txtKnobA2, ui->txtKnobB2, ui->txtKnobC2, ui->txtKnobD2,
               ui->txtKnobA3, ui->txtKnobB3, ui->txtKnobC3, ui->txtKnobD3};
}

void EditorLibrary::buildLists()
{
    for (CListView *list : {ui->listTemplate, ui->listImport}) {
        list->setItemMarginWidth(ItemMarginWidthPx);
        list->setTrim(true);
        for (std::size_t number = 0; number < TemplateCount; ++number) {
            list->addItem({QString()});
        }
        list->installEventFilter(this);
    }
    ui->listTemplate->setScrollBar(ui->scrollTemplate);
    ui->listImport->setScrollBar(ui->scrollImport);
}

void EditorLibrary::buildNotifiers()
{
    isOnlineNotifier = new CSimpleNotifier(QStringLiteral("isOnline"), this);
    fileEditFlagNotifier = new CSimpleNotifier(QStringLiteral("fileEditFlag"), this);
    libraryEditFlagNotifier = new CSimpleNotifier(QStringLiteral("libraryEditFlag"), this);
    fileNameNotifier = new CSimpleNotifier(QStringLiteral("fileName"), this);
    currentTemplateNumberNotifier =
        newNotifier(QStringLiteral("currentTemplateNumber"), Bank::EditBuffer, 0, this);
    connect(isOnlineNotifier, &CSimpleNotifier::update, this, &EditorLibrary::updateBankNumber);

    const QString templateName = QStringLiteral("templateName");
    for (std::size_t number = 0; number < TemplateCount; ++number) {
        const int row = static_cast<int>(number);
        templateNameNotifier[number] = newNotifier(templateName, Bank::Library, row, this);
        connect(templateNameNotifier[number], &CSimpleNotifier::update, this,
                &EditorLibrary::updateTemplateList);
        importTemplateNameNotifier[number] = newNotifier(templateName, Bank::Import, row, this);
        connect(importTemplateNameNotifier[number], &CSimpleNotifier::update, this,
                &EditorLibrary::updateImportTemplateList);
    }

    const auto preview = [this](const QString &name) {
        CSimpleNotifier *notifier = newNotifier(name, Bank::Library, 0, ui->framePreview);
        connect(notifier, &CSimpleNotifier::update, this, &EditorLibrary::updatePreview);
        return notifier;
    };
    vstiNameNotifier = preview(QStringLiteral("vstiName"));
    controlTypeNotifier = preview(QStringLiteral("controlType"));
    for (std::size_t knob = 0; knob < KnobCount; ++knob) {
        const QString name = QLatin1String(LCDSelectAddressUpper[knob]);
        remoteNumberNotifier[knob] = preview(name + QStringLiteral("/remoteNumber"));
        ccNumberNotifier[knob] = preview(name + QStringLiteral("/ccNumber"));
        displayNameNotifier[knob] = preview(name + QStringLiteral("/displayName"));
    }
}

void EditorLibrary::connectControls()
{
    for (CListView *list : {ui->listImport, ui->listTemplate}) {
        connect(list, &CListView::listSelected, this, &EditorLibrary::setSelectedBank);
    }
    connect(ui->listImport, &CListView::valueChanged, this,
            &EditorLibrary::updateImportTemplateNumber);
    connect(ui->listTemplate, &CListView::valueChanged, this, &EditorLibrary::updateTemplateNumber);
    connect(ui->listTemplate, &CListView::itemDoubleClick, this,
            [this](int number) { decide(number); });
    connect(ui->btnOK, &COnOffButton::clicked, this, [this] { decide(); });
    connect(ui->btnCancel, &COnOffButton::clicked, this, &EditorLibrary::revoke);
    connect(ui->btnFileOpen, &COnOffButton::clicked, this, &EditorLibrary::importBank);
    connect(ui->btnImport, &COnOffButton::clicked, this, &EditorLibrary::importTemplate);
}

template <typename Slot>
void EditorLibrary::installShortcut(const QString &key, Slot slot)
{
    auto *action = new QAction(this);
    action->setShortcut(QKeySequence(key, QKeySequence::PortableText));
    // A key still held down after it has closed a panel must not end the visit.
    action->setAutoRepeat(false);
    connect(action, &QAction::triggered, this, slot);
    addAction(action);
}

// --- Entering and selection ----------------------------------------------------------------------

void EditorLibrary::initializeList()
{
    updateLibrary();
    showTemplate(ui->listTemplate->value());
    ui->scrollImport->setValue(0);
    ui->listImport->setValue(0);
}

void EditorLibrary::updateLibrary()
{
    updateImportTemplateList();
    updateTemplateList();
    const bool imported = remoteMemAPI->getBankAvailableFlag(Bank::Import).getCurrentValue() != 0;
    ui->btnImport->setVisible(imported);
    ui->txtFileName->setVisible(imported);
}

void EditorLibrary::setCurrentTemplateNumber(int number)
{
    ui->scrollTemplate->setValue(number);
    ui->listTemplate->setValue(number);
    ui->listTemplate->adjustScroll();
    // The last way out has left the preview elsewhere; a list whose row stays says nothing.
    if (templateListSelected) {
        updateTemplateNumber();
    }
}

void EditorLibrary::focusTemplateList()
{
    ui->listTemplate->setFocus();
}

void EditorLibrary::setSelectedBank(CListView *list)
{
    if (list == ui->listTemplate) {
        templateListSelected = true;
        ui->listImport->unselectList();
        showBankAndTemplate(Bank::Library, list->value());
    } else if (list == ui->listImport) {
        templateListSelected = false;
        ui->listTemplate->unselectList();
        showBankAndTemplate(Bank::Import, list->value());
    }
    mainWindow->updatesMenuEnabled();
}

void EditorLibrary::updateTemplateNumber()
{
    showTemplate(ui->listTemplate->value());
}

void EditorLibrary::updateImportTemplateNumber()
{
    showTemplate(ui->listImport->value());
}

int EditorLibrary::getBankNumber() const
{
    return templateListSelected ? Bank::Library : Bank::Import;
}

// --- Rules and commands --------------------------------------------------------------------------

bool EditorLibrary::canPaste() const
{
    return bankAvailable && templateListSelected && mainWindow->clipboardHolds(TemplateMimeType);
}

bool EditorLibrary::canImport() const
{
    return remoteMemAPI->getQuantityOfBank() < MostBanks;
}

bool EditorLibrary::canNewBank() const
{
    return remoteMemAPI->getQuantityOfBank() < MostBanks;
}

void EditorLibrary::copyTemplate()
{
    const int number = ui->listTemplate->value();
    flashItem(number);
    QGuiApplication::clipboard()->setMimeData(createTemplateMimeData(number));
}

void EditorLibrary::pasteTemplate()
{
    const std::optional<TemplatePlace> source =
        templatePlace(QGuiApplication::clipboard()->mimeData());
    if (!source) {
        return;
    }
    const int number = ui->listTemplate->value();
    flashItem(number);
    remoteMemAPI->copyTemplate(source->bank, source->number, getBankNumber(), number);
}

void EditorLibrary::initializeTemplate()
{
    remoteMemAPI->initializeTemplate(Bank::Library, ui->listTemplate->value());
    libraryEditFlagNotifier->setMemAPICurrentValue(1);
}

// --- Keyboard ------------------------------------------------------------------------------------

void EditorLibrary::enableKeyboardShortcuts(bool enabled)
{
    const QList<QAction *> own = actions();
    for (QAction *action : own) {
        const QString key = action->shortcut().toString(QKeySequence::PortableText);
        if (key == KeyEnter || key == KeyReturn || key == KeyEscape) {
            action->setEnabled(enabled);
        }
    }
}

void EditorLibrary::emulateOKPressing()
{
    ui->btnOK->animateClick();
}

void EditorLibrary::emulateCancelPressing()
{
    ui->btnCancel->animateClick();
}

// --- Several banks -------------------------------------------------------------------------------

void EditorLibrary::updateBankNumber()
{
    if (bankNameList.isEmpty()) {
        return;
    }
    const int bank = getBankNumber();
    for (std::size_t number = 0; number < TemplateCount; ++number) {
        assignBank(templateNameNotifier[number], bank);
        assignBank(importTemplateNameNotifier[number], bank);
    }
    assignBank(ui->framePreview, bank);
    bankAvailable = remoteMemAPI->getBankAvailableFlag(bank).getCurrentValue() != 0;
    ui->listTemplate->setVisible(bankAvailable);
    ui->scrollTemplate->setVisible(bankAvailable);
    ui->btnOK->setVisible(bankAvailable && bank == Bank::Import);
    ui->btnCancel->raise();
    mainWindow->updatesMenuEnabled();
}

void EditorLibrary::abortEditBankName()
{
    if (bankNameEditor) {
        bankNameEditor->hide();
        bankNameEditor->deleteLater();
    }
}
