// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/GalleryWindow.h"

#include "app/Constants.h"
#include "fonts/ApplicationFonts.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtCore/QCommandLineParser>
#include <QtWidgets/QApplication>

#include <cstdio>

// gallery [--screenshots DIR]: the window, or, without a user, a picture of everything in it.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(CorporationName);
    QCoreApplication::setApplicationName(QStringLiteral("gallery"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TRN_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows every control, list, popup, menu and picture of the editor."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption screenshots(
        QStringLiteral("screenshots"),
        QStringLiteral("Write a picture of each page, menu and popup into DIR and end."),
        QStringLiteral("DIR"));
    parser.addOption(screenshots);
    parser.process(application);

    if (!loadApplicationFonts()) {
        std::fputs("gallery: the program's fonts can't be loaded\n", stderr);
        return 1;
    }
    QApplication::setStyle(new RemoteEditorStyle);
    GalleryWindow window;
    window.show();
    if (!parser.isSet(screenshots)) {
        return QApplication::exec();
    }
    QString failed;
    if (!window.saveScreenshots(parser.value(screenshots), &failed)) {
        std::fprintf(stderr, "gallery: can't write %s\n", qPrintable(failed));
        return 1;
    }
    return 0;
}
