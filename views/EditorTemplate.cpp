// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/EditorTemplate.h"

#include "app/EditorMainWindow.h"
#include "images/Artwork.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorTemplate.h"
#include "widgets/FontHelpers.h"

#include <QtGui/QDragEnterEvent>
#include <QtGui/QImage>

static_assert(EditorTemplate::KnobCount == ParamAddress::KnobCount);

namespace
{

constexpr int FlashStepMs = 100;
// Shares of the full flash, out of this many; the last but the full one is one step below it.
constexpr int FlashShares = 11;

// By the number of the knob.
const std::array<QString, ParamAddress::KnobCount> LCDSelectAddressUpper = {
    QStringLiteral("knobA1"), QStringLiteral("knobB1"), QStringLiteral("knobC1"),
    QStringLiteral("knobD1"), QStringLiteral("knobA2"), QStringLiteral("knobB2"),
    QStringLiteral("knobC2"), QStringLiteral("knobD2"), QStringLiteral("knobA3"),
    QStringLiteral("knobB3"), QStringLiteral("knobC3"), QStringLiteral("knobD3")};

// The picture with its opacity multiplied by grey, of 255.
QPixmap faded(const QPixmap &picture, int grey)
{
    QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = line[x];
            line[x] =
                qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), qAlpha(pixel) * grey / UCHAR_MAX);
        }
    }
    return QPixmap::fromImage(image);
}

} // namespace

EditorTemplate::EditorTemplate(EditorMainWindow *window)
    : CFrame(window)
    , ui(std::make_unique<Ui::EditorTemplate>())
    , mainWindow(window)
    , remoteMemAPI(window->getRemoteMemAPI())
{
    ui->setupUi(this);
    adjustFont(this);
    mainWindow->installTabCanceller(this);

    collectKnobs();
    ui->btnVSTiName->hide();
    for (CFrame *label : lblKnob) {
        label->setVisible(label == ui->lblKnobA1);
    }
    ui->lblCC->hide();
    ui->txtKnobA1->setEnabled(true);
    buildNotifiers();
    connectControls();
    for (CRadioButton *button : btnKnob) {
        button->installEventFilter(this);
    }
    setAcceptDrops(true);
    loadFlash();
    flashTimerId = startTimer(FlashStepMs);
}

EditorTemplate::~EditorTemplate() = default;

void EditorTemplate::collectKnobs()
{
    lblKnob = {ui->lblKnobA1, ui->lblKnobB1, ui->lblKnobC1, ui->lblKnobD1,
               ui->lblKnobA2, ui->lblKnobB2, ui->lblKnobC2, ui->lblKnobD2,
               ui->lblKnobA3, ui->lblKnobB3, ui->lblKnobC3, ui->lblKnobD3};
    txtKnob = {ui->txtKnobA1, ui->txtKnobB1, ui->txtKnobC1, ui->txtKnobD1,
               ui->txtKnobA2, ui->txtKnobB2, ui->txtKnobC2, ui->txtKnobD2,
               ui->txtKnobA3, ui->txtKnobB3, ui->txtKnobC3, ui->txtKnobD3};
    btnKnob = {ui->btnKnobA1, ui->btnKnobB1, ui->btnKnobC1, ui->btnKnobD1,
               ui->btnKnobA2, ui->btnKnobB2, ui->btnKnobC2, ui->btnKnobD2,
               ui->btnKnobA3, ui->btnKnobB3, ui->btnKnobC3, ui->btnKnobD3};
}

// A notifier takes its template and its knob from its parent, which the walks over the tree visit.
// The global ones stand outside of those walks, since a number in a field that they don't use would
// silence them.
void EditorTemplate::buildNotifiers()
{
    const auto notifier = [](const QString &address, QWidget *parent) {
        return new CSimpleNotifier(address, parent);
    };
    fileEditFlagNotifier = notifier(QStringLiteral("fileEditFlag"), this);
    connect(fileEditFlagNotifier, &CSimpleNotifier::update, mainWindow,
            &EditorMainWindow::updatesMenuEnabled);
    connect(fileEditFlagNotifier, &CSimpleNotifier::update, this,
            &EditorTemplate::updateFileEditFlag);
    bankEditFlagNotifier = notifier(QStringLiteral("bankEditFlag"), this);
    connect(bankEditFlagNotifier, &CSimpleNotifier::update, this,
            &EditorTemplate::updateBankEditFlag);
    isOnlineNotifier = notifier(QStringLiteral("isOnline"), this);
    connect(isOnlineNotifier, &CSimpleNotifier::update, this, &EditorTemplate::updateBankEditFlag);
    fileNameNotifier = notifier(QStringLiteral("fileName"), this);
    connect(fileNameNotifier, &CSimpleNotifier::update, this, &EditorTemplate::updateFileName);
    templateNameNotifier = notifier(QStringLiteral("templateName"), this);

    QWidget *panel = ui->frameControllerPanel;
    const auto forLCD = [&](const QString &address) {
        CSimpleNotifier *made = notifier(address, panel);
        connect(made, &CSimpleNotifier::update, this, &EditorTemplate::updateLCDDisplay);
        return made;
    };
    controlTypeNotifier = forLCD(QStringLiteral("controlType"));
    for (std::size_t knob = 0; knob < KnobCount; ++knob) {
        const QString &name = LCDSelectAddressUpper[knob];
        lcdRemoteNumberNotifier[knob] = forLCD(name + QStringLiteral("/remoteNumber"));
        lcdCCNumberNotifier[knob] = forLCD(name + QStringLiteral("/ccNumber"));
        lcdDisplayNameNotifier[knob] = forLCD(name + QStringLiteral("/displayName"));
    }
    remoteNumberNotifier = notifier(LCDSelectAddressUpper[0] + QStringLiteral("/remoteNumber"),
                                    ui->frameControllerSetting);
    connect(remoteNumberNotifier, &CSimpleNotifier::update, this,
            &EditorTemplate::updateRemoteControlParameter);
}

void EditorTemplate::connectControls()
{
    connect(ui->btnLibrary, &COnOffButton::clicked, mainWindow, &EditorMainWindow::viewLibrary);
    connect(ui->btnStore, &COnOffButton::clicked, mainWindow, &EditorMainWindow::viewStore);
    connect(ui->btnTemplateNumber, &CSpinButton::valueChanged, this,
            qOverload<>(&EditorTemplate::updateTemplateNumber));
    updateTemplateNumber(ui->btnTemplateNumber->value());
    connect(ui->editVSTiName, &CLineEdit::textChanged, this, &EditorTemplate::updateVSTiName);
    connect(ui->btnRemote, &CRadioButton::toggled, this, &EditorTemplate::selectRemoteCC);
    connect(ui->btnCC, &CRadioButton::toggled, this, &EditorTemplate::selectRemoteCC);
    for (CRadioButton *button : btnKnob) {
        connect(button, &CRadioButton::toggled, this, &EditorTemplate::selectKnob);
    }
    connect(ui->btnTemplate, &COnOffButton::clicked, this, &EditorTemplate::popupTemplate);
    connect(ui->btnVSTiName, &COnOffButton::clicked, this, &EditorTemplate::popupVSTiName);
    connect(ui->btnRemoteControlParameter, &COnOffButton::clicked, this,
            [this] { popupRemoteControlParameter(); });
    connect(ui->btnCCNumberAndDisplayName, &COnOffButton::clicked, this,
            [this] { popupCCNumberAndDisplayName(); });
}

void EditorTemplate::loadFlash()
{
    flashPixmap[0] = artwork(":/images/t27r_btn_back_store.png");
    for (std::size_t share = 1; share < flashPixmap.size(); ++share) {
        flashPixmap[share] = faded(flashPixmap[0], 256 * static_cast<int>(share) / FlashShares);
    }
}

// --- Commands ------------------------------------------------------------------------------------

void EditorTemplate::initializeEditBuffer()
{
    remoteMemAPI->denyToRaiseFileEditFlag();
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        remoteMemAPI->initializeTemplate(Bank::EditBuffer, number);
    }
    fileNameNotifier->setMemAPIString(QString());
    remoteMemAPI->allowToRaiseFileEditFlag();
}

void EditorTemplate::initializeTemplate()
{
    const int number = getCurrentTemplateNumber();
    remoteMemAPI->initializeTemplate(Bank::EditBuffer, number);
    fileEditFlagNotifier->setMemAPICurrentValue(1);
    if (isOnlineNotifier->getMemAPICurrentValue() == 1) {
        remoteMemAPI->send1TemplateDataParamChange(Bank::EditBuffer, number);
    }
}

int EditorTemplate::getCurrentTemplateNumber() const
{
    return ui->btnTemplateNumber->value();
}

void EditorTemplate::focusKnob()
{
    if (currentKnob < KnobCount) {
        btnKnob[static_cast<std::size_t>(currentKnob)]->setFocus();
    }
}

// --- Events --------------------------------------------------------------------------------------

void EditorTemplate::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != flashTimerId) {
        CFrame::timerEvent(event);
        return;
    }
    // A round: full, fading out, nothing, fading in.
    constexpr int Steps = 20;
    constexpr int Nothing = Steps / 2;
    flashStep = (flashStep + 1) % Steps;
    if (flashStep == 0) {
        ui->lblStoreFlash->setPixmap(flashPixmap[0]);
    } else if (flashStep == Nothing) {
        ui->lblStoreFlash->setPixmap(QPixmap());
    } else {
        ui->lblStoreFlash->setPixmap(
            flashPixmap[static_cast<std::size_t>(std::abs(Nothing - flashStep))]);
    }
}

void EditorTemplate::dragEnterEvent(QDragEnterEvent *event)
{
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
}

void EditorTemplate::dragMoveEvent(QDragMoveEvent *event)
{
    event->ignore();
}
