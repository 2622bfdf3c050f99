// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/AutoSync.h"

#include "app/EditorMainWindow.h"
#include "images/Artwork.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "views/PulldownMenu.h"
#include "views/RunningLight.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QTimerEvent>
#include <QtWidgets/QApplication>

namespace
{

// Right below the field, in the panel's pixels.
constexpr QPoint PopupMidiPortPosition(89, 167);
constexpr int PopupMidiPortRoom = 270;

} // namespace

AutoSync::AutoSync(EditorMainWindow *window, bool editorToDevice, bool editBufferOnly)
    : EditorOverlap(window)
    , m_editorToDevice(editorToDevice)
    , m_editBufferOnly(editBufferOnly)
    , m_ledPixmap(artwork(":/images/trn_led_autosync.png"))
    , m_fileEditNotifier(new CSimpleNotifier(QStringLiteral("fileEditFlag"), this))
    , m_run(remoteMemAPI)
{
    setupUi(this);
    finishForm();
    createMemProxyController(mainWindow->getMemControllerFactory(), m_fileEditNotifier);
    setRunDisplayVisible(false);
    lblError->hide();
    btnRetry->hide();
    takePorts();

    connect(btnMidiPort, &QAbstractButton::clicked, this, &AutoSync::popupMidiPort);
    connect(btnStart, &QAbstractButton::clicked, this, &AutoSync::start);
    connect(btnRetry, &QAbstractButton::clicked, this, &AutoSync::start);
    connect(btnClose, &QAbstractButton::clicked, this, &AutoSync::close);
    connect(btnCancel, &QAbstractButton::clicked, this, &AutoSync::close);
    connect(&m_run, &SyncRun::succeeded, this, [this] {
        if (m_receiving) {
            bulkReceived();
        } else {
            bulkSended();
        }
    });
    connect(&m_run, &SyncRun::failed, this, &AutoSync::bulkError);
    connect(&m_run, &SyncRun::progress, this, [this](int done, int) {
        lineProgress->setProgress(m_templatesBefore + done, m_templatesOfAll);
    });
    installShortcut(QStringLiteral("Return"), SLOT(emulateStartPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateStartPressing()));
    installShortcut(QStringLiteral("Escape"), SLOT(emulateClosePressing()));
}

AutoSync::~AutoSync()
{
    endRunDisplay();
}

void AutoSync::emulateStartPressing()
{
    COnOffButton *button = m_errorShown ? btnRetry : btnStart;
    // Without a port there is nothing to start, and no button that says so.
    if (button->isVisible()) {
        emulateButtonPressing(button);
    }
}

void AutoSync::emulateClosePressing()
{
    if (btnClose->isVisible()) {
        emulateButtonPressing(btnClose);
    }
}

void AutoSync::activePort()
{
    if (m_errorShown) {
        return;
    }
    if (m_portIndex <= 0 && !m_hasChosenPort) {
        // Its ports were gone when the panel was made.
        takePorts();
    }
    if (m_portIndex > 0) {
        start();
    }
}

// --- Ports ---------------------------------------------------------------------------------------

void AutoSync::takePorts()
{
    mainWindow->updatePortInfoList();
    m_portNames = mainWindow->getPortNameList();
    m_portIndex = mainWindow->getPortIndex() < m_portNames.size() ? mainWindow->getPortIndex() : 0;
    showPort();
}

void AutoSync::showPort()
{
    const QString name = m_portNames.value(m_portIndex);
    txtMidiPort->setText(trimText(txtMidiPort, name, txtMidiPort->width()));
    txtMidiPort->setAccessibleName(name);
    const bool isAssigned = m_portIndex > 0;
    btnStart->setVisible(isAssigned && !m_errorShown);
    btnRetry->setVisible(isAssigned && m_errorShown);
}

void AutoSync::popupMidiPort()
{
    auto *menu = new PulldownMenu(this, m_portNames);
    connect(menu, &PulldownMenu::chosen, this, &AutoSync::choosePort);
    menu->open(PopupMidiPortPosition, PopupMidiPortRoom);
}

void AutoSync::choosePort(int index)
{
    if (isRunning()) {
        return;
    }
    m_portIndex = index;
    m_hasChosenPort = true;
    showPort();
}

// --- Runs ----------------------------------------------------------------------------------------

void AutoSync::start()
{
    if (isRunning()) {
        return;
    }
    // The buttons go, whatever the pointer does with them, and the list of ports with its field.
    releasePointer();
    mainWindow->setPortIndex(m_portIndex);
    lblAnimation->setPixmap(QPixmap());
    txtMessage->setText(QString());
    lblError->hide();
    for (COnOffButton *button : {btnClose, btnMidiPort, btnStart, btnRetry, btnCancel}) {
        button->hide();
    }
    closeLock();
    m_animationStep = 0;
    m_animationTimer = startTimer(RunningLightPeriodMs);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    m_hasWaitCursor = true;

    const auto isAvailable = [this](int bank) {
        return remoteMemAPI->getBankAvailableFlag(bank).getCurrentValue() != 0;
    };
    const bool hasDeviceData =
        isAvailable(Bank::HardwareStored) || isAvailable(Bank::HardwareEditBuffer);
    const int templatesToSend = ParamAddress::TemplateCount * (m_editBufferOnly ? 1 : 2);
    const int templatesToReceive = ParamAddress::TemplateCount * (m_editorToDevice ? 1 : 2);
    m_templatesBefore = 0;
    m_templatesOfAll = hasDeviceData
                           ? templatesToSend
                           : templatesToReceive + (m_editorToDevice ? templatesToSend : 0);
    lineProgress->setProgress(0, m_templatesOfAll);
    setRunDisplayVisible(true);
    if (hasDeviceData) {
        bulkSend(m_editBufferOnly);
    } else {
        bulkReceive();
    }
}

void AutoSync::bulkReceive()
{
    m_receiving = true;
    txtMessage->setText(QStringLiteral("Receiving"));
    // The editor's own data are about to go to the instrument: its edit buffer need not be fetched.
    m_run.startReceive(!m_editorToDevice);
}

void AutoSync::bulkSend(bool editBufferOnly)
{
    m_sending = true;
    txtMessage->setText(QStringLiteral("Sending"));
    m_run.startSend(editBufferOnly);
}

void AutoSync::bulkReceived()
{
    if (!m_receiving) {
        return;
    }
    m_receiving = false;
    if (m_editorToDevice) {
        m_templatesBefore = ParamAddress::TemplateCount;
        bulkSend(m_editBufferOnly);
        return;
    }
    m_run.applyReceived();
    remoteMemAPI->setONLINEstate(1);
    // What came is no file's content. But a file that waits is about to replace it, and nobody is
    // to be asked about edits that he never made.
    if (remoteMemAPI->isFileOpenRequestExist()) {
        remoteMemAPI->setFileOpenRequestFlag(false);
    } else {
        m_fileEditNotifier->setMemAPICurrentValue(1);
    }
    syncSucceeded();
}

void AutoSync::bulkSended()
{
    if (!m_sending) {
        return;
    }
    m_sending = false;
    remoteMemAPI->setONLINEstate(1);
    syncSucceeded();
}

void AutoSync::syncSucceeded()
{
    endRunDisplay();
    closeUnlock();
    close();
}

void AutoSync::bulkError()
{
    endRunDisplay();
    m_errorShown = true;
    m_receiving = false;
    m_sending = false;
    setRunDisplayVisible(false);
    lblError->show();
    for (COnOffButton *button : {btnClose, btnMidiPort, btnCancel}) {
        button->show();
    }
    showPort();
    closeUnlock();
}

bool AutoSync::close()
{
    const bool closed = EditorOverlap::close();
    if (closed) {
        remoteMemAPI->setNeedToWaitAutoSyncDoneFlag(false);
    }
    return closed;
}

// --- Display -------------------------------------------------------------------------------------

void AutoSync::setRunDisplayVisible(bool visible)
{
    for (QWidget *shown : {static_cast<QWidget *>(lblAnimation), static_cast<QWidget *>(txtMessage),
                           static_cast<QWidget *>(lineProgress)}) {
        shown->setVisible(visible);
    }
}

// Also when the panel dies in the middle of a run: neither timer nor cursor outlasts it.
void AutoSync::endRunDisplay()
{
    if (m_animationTimer != 0) {
        killTimer(m_animationTimer);
        m_animationTimer = 0;
    }
    if (m_hasWaitCursor) {
        m_hasWaitCursor = false;
        QApplication::restoreOverrideCursor();
    }
}

void AutoSync::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_animationTimer) {
        m_animationStep = drawRunningLight(lblAnimation, m_ledPixmap, m_animationStep);
    } else {
        EditorOverlap::timerEvent(event);
    }
}
