// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CApplication.h"
#include "app/Companion.h"
#include "app/EditorMainWindow.h"
#include "fonts/ApplicationFonts.h"
#include "memory/RemoteMemAPI.h"
#include "widgets/RemoteEditorStyle.h"

// TARN_TERNRemoteEditor [FILE]: the editor, on the MIDI binding and with the companion that it is
// linked with. The exit status is 0, or 1 when the event loop has failed.
int main(int argc, char **argv)
{
    qInstallMessageHandler(doNotOutputMessage);
    CApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::unique_ptr<Companion> companion = makeCompanion();
    RemoteMemAPI remoteMemAPI;
    // Before any widget is made, so that all have them.
    loadApplicationFonts();
    QApplication::setStyle(new RemoteEditorStyle);

    // A name that is empty is a name: the file is then missed as any other.
    const bool namesNoFile = argc < 2 || argv[1] == nullptr;
    EditorMainWindow window(&remoteMemAPI, namesNoFile);
    if (!namesNoFile && arguments.size() >= 2) {
        window.applicationFileOpen(arguments.at(1));
    }
    window.setVisible(true);
    window.updateWindowStaysOnTop();
    g_pEditorMainWindow = &window;
    QObject::connect(&application, &QGuiApplication::lastWindowClosed, &application,
                     &QCoreApplication::quit);
    companion->windowShown(&window);
    const int result = QApplication::exec();
    g_pEditorMainWindow = nullptr;
    return result == 0 ? 0 : 1;
}
