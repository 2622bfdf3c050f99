// SPDX-License-Identifier: GPL-3.0-or-later
// The instruments on the machine, the route to one of them, and the online state.

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "protocol/AutoSync.h"
#include "ui_EditorMainWindow.h"
#include "views/EditorTemplate.h"

void EditorMainWindow::updatePortInfoList()
{
    portInfoList =
        recognizeDevicePorts(remoteMemAPI->getInputPortList(), remoteMemAPI->getOutputPortList());
    portNameList = {PortNotAssigned};
    for (const PortInfo &info : std::as_const(portInfoList)) {
        portNameList.append(info.name);
    }
    if (routeName.isNull()) {
        return;
    }
    const auto found = portNameList.indexOf(routeName, 1);
    if (found > 0) {
        portIndex = static_cast<int>(found);
    }
    // While it is gone no port is in use, and each that is chosen is another.
    takePorts(portInfoList.value(found - 1));
}

void EditorMainWindow::takePorts(const PortInfo &info)
{
    activeSensePort = info.activeSensePort;
    communicationInPort = info.communicationInPort;
    communicationOutPort = info.communicationOutPort;
}

// The route of portIndex, which is above 0.
void EditorMainWindow::openRoute()
{
    const PortInfo info = portInfoList.value(portIndex - 1);
    routeName = info.name;
    takePorts(info);
    midiRouteOpen = remoteMemAPI->createMIDIComunicationRoute(activeSensePort, communicationInPort,
                                                              communicationOutPort);
    if (!midiRouteOpen) {
        portName = portNameList.value(portIndex);
        portOpenError(portName);
    } else {
        // An earlier failure that nobody has been told of yet is mended.
        portOpenErrorPending = false;
    }
}

void EditorMainWindow::setPortIndex(int index)
{
    if (index <= 0 && portIndex > 0) {
        portIndex = index;
        routeName.clear();
        remoteMemAPI->deleteMIDIComunicationRoute();
        remoteMemAPI->setONLINEstate(0);
    } else if (index > 0) {
        const PortInfo info = portInfoList.value(index - 1);
        // A port that is shared with the route in use is no change; so a route is built anew only
        // if all three differ. One that could not be opened is no route, and is tried again.
        const bool isSame = midiRouteOpen && portIndex > 0 &&
                            (info.activeSensePort == activeSensePort ||
                             info.communicationInPort == communicationInPort ||
                             info.communicationOutPort == communicationOutPort);
        if (!isSame) {
            portIndex = index;
            openRoute();
            remoteMemAPI->setONLINEstate(0);
        }
    }
    settings.setValue(QStringLiteral("PortName"), portNameList.value(portIndex));
    if (!remoteMemAPI->isONLINE()) {
        remoteMemAPI->setWatchPortActivate(true);
    }
}

void EditorMainWindow::activePort()
{
    if (remoteMemAPI->isONLINE()) {
        // A sign that was on its way when the synchronisation ended.
        return;
    }
    if (!isWindowLocked()) {
        updatePortInfoList();
        if (isRouteGone()) {
            // An instrument that returns shows one port after another, and gives the sign by the
            // first. Its next sign finds them all.
            return;
        }
    }
    remoteMemAPI->setWatchPortActivate(false);
    remoteMemAPI->setNeedToWaitAutoSyncDoneFlag(true);
    if (!autoSyncPanel) {
        editorTemplate->acceptTyping();
        const bool hasDocument = !fileNameNotifier->getMemAPIString().isEmpty() ||
                                 fileEditFlagNotifier->getMemAPICurrentValue() == 1;
        autoSync(hasDocument, !hasDocument);
        if (!autoSyncPanel) {
            activePortPending = true;
            return;
        }
    }
    autoSyncPanel->activePort();
}

void EditorMainWindow::updateOnline()
{
    const bool online = isOnlineNotifier->getMemAPICurrentValue() != 0;
    ui->lblOnline->setVisible(online);
    remoteMemAPI->setWatchPortActivate(!online);
    updatesMenuEnabled();
}
