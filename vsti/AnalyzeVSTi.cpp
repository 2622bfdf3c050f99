// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/AnalyzeVSTi.h"

#include "app/EditorMainWindow.h"
#include "images/Artwork.h"
#include "views/RunningLight.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QTimer>
#include <QtCore/QTimerEvent>
#include <QtWidgets/QApplication>

#include <algorithm>

namespace
{

const QString AnalyzingMessage = QStringLiteral("Scanning VSTi");
const QString FileLine = QStringLiteral("[File: %1]");

// So that the panel is there to be seen before the work begins.
constexpr int StartDelayMs = 100;

// A file may be called anything, and the line is one line.
QString inOneLine(QString name)
{
    std::replace_if(
        name.begin(), name.end(),
        [](QChar character) { return character.category() == QChar::Other_Control; }, QChar(u' '));
    return name;
}

} // namespace

AnalyzeVSTi::AnalyzeVSTi(EditorMainWindow *window, const QString &dawName)
    : EditorOverlap(window)
    , thread(&window->getVSTiInfo())
    , panelDAWName(dawName)
    , ledPixmap(artwork(":/images/trn_led_autosync.png"))
{
    setupUi(this);
    finishForm();
    txtMessage->setText(AnalyzingMessage);
    connect(&mainWindow->getVSTiInfo(), &VSTiInfo::analyzingVSTi, this, &AnalyzeVSTi::analyze,
            Qt::QueuedConnection);
    connect(&thread, &QThread::finished, this, &AnalyzeVSTi::finish, Qt::QueuedConnection);
    closeLock();
}

AnalyzeVSTi::~AnalyzeVSTi()
{
    if (!m_isScanning) {
        return;
    }
    thread.requestInterruption();
    thread.join();
    endScanDisplay();
    mainWindow->getVSTiInfo().entryVSTiParameter();
}

void AnalyzeVSTi::showEvent(QShowEvent *event)
{
    EditorOverlap::showEvent(event);
    QTimer::singleShot(StartDelayMs, this, &AnalyzeVSTi::start);
}

void AnalyzeVSTi::start()
{
    if (m_hasStarted) {
        return;
    }
    m_hasStarted = true;
    m_isScanning = true;
    mainWindow->getVSTiInfo().selectDAW(panelDAWName);
    thread.start(QThread::LowestPriority);
    ledStep = 0;
    timerId = startTimer(RunningLightPeriodMs);
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

void AnalyzeVSTi::analyze(const QString &name)
{
    if (name.isEmpty()) {
        txtAnalyzeFile->setText(QString());
        txtAnalyzeFile->setAccessibleName(QString());
        return;
    }
    // The end of a name that is too long goes, and the bracket stays.
    const int room = txtAnalyzeFile->width() -
                     txtAnalyzeFile->fontMetrics().horizontalAdvance(FileLine.arg(QString()));
    const QString line = inOneLine(name);
    txtAnalyzeFile->setText(FileLine.arg(trimText(txtAnalyzeFile, line, room)));
    txtAnalyzeFile->setAccessibleName(FileLine.arg(line));
}

void AnalyzeVSTi::finish()
{
    if (!m_isScanning) {
        return;
    }
    thread.join();
    m_isScanning = false;
    endScanDisplay();
    mainWindow->getVSTiInfo().entryVSTiParameter();
    Q_EMIT finished();
    closeUnlock();
    close();
}

void AnalyzeVSTi::endScanDisplay()
{
    killTimer(timerId);
    timerId = 0;
    QApplication::restoreOverrideCursor();
}

void AnalyzeVSTi::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == timerId) {
        ledStep = drawRunningLight(lblAnimation, ledPixmap, ledStep);
    } else {
        EditorOverlap::timerEvent(event);
    }
}
