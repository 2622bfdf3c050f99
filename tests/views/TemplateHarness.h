// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/Folders.h"
#include "fonts/ApplicationFonts.h"
#include "memory/MemoryHarness.h"
#include "memory/RemoteMemAPI.h"
#include "views/Answers.h"
#include "views/EditorTemplate.h"
#include "vsti/DawMachine.h"
#include "widgets/CFrame.h"
#include "widgets/CLineEdit.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"
#include "widgets/CTextSlider.h"
#include "widgets/FlashFrame.h"
#include "widgets/FontHelpers.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtTest/QtTest>

#include <QtCore/QDateTime>
#include <QtCore/QSettings>
#include <QtWidgets/QLabel>

// The real window with the template view in front, on a machine of its own, without an instrument,
// and with a database of two instruments for whoever chooses its DAW.

// Cut to thirteen characters it ends in a blank.
inline const QString LongSynth = QStringLiteral("Grand Organs 1000");
inline const QString ShortSynth = QStringLiteral("Halcyon");

inline void prepareApplication()
{
    loadApplicationFonts();
    QApplication::setStyle(new RemoteEditorStyle);
}

inline void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

// One instrument of the database, behind a file that is there and unchanged.
inline QByteArray databaseEntry(const QString &folder, const QString &name,
                                const QByteArray &parameters)
{
    const QString path = folder + QLatin1Char('/') + name + QStringLiteral(".so");
    writeFile(path, "plug-in");
    const QFileInfo info(path);
    return "<vsti name=\"" + name.toUtf8() + "\" path=\"" + path.toUtf8() + "\" time=\"" +
           info.lastModified().toString(Qt::ISODate).toUtf8() + "\" size=\"" +
           QByteArray::number(info.size()) + "\" version=\"2\">" + parameters + "</vsti>";
}

class TemplateRun
{
public:
    // parameters: those of ShortSynth, as the database has them.
    explicit TemplateRun(const QByteArray &parameters = DefaultParameters)
    {
        QSettings(QSettings::UserScope, CorporationName, SettingName)
            .setValue(QStringLiteral("PortName"), PortNotAssigned);
        QSettings(QSettings::UserScope, CorporationName, SettingName)
            .setValue(QStringLiteral("DAWName"), OtherDAW);
        QSettings(QSettings::UserScope, CorporationName, SettingName)
            .setValue(QStringLiteral("WorkingFolder"), folder.path());
        writeFile(getAppDataDirectory().filePath(DatabaseFileName),
                  "<!DOCTYPE VSTiDatabase>\n<dawlist><daw name=\"" + DawMachine::daw().toUtf8() +
                      "\">" + databaseEntry(folder.path(), LongSynth, {}) +
                      databaseEntry(folder.path(), ShortSynth, parameters) + "</daw></dawlist>\n");
        window = std::make_unique<EditorMainWindow>(&api, false);
        view = window->findChild<EditorTemplate *>();
        window->move(200, 150);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

    // Chooses the DAW and waits for the end of the scan, which makes the instruments of the
    // database known.
    void useRack()
    {
        window->setDAWName(DawMachine::daw());
        QTRY_VERIFY_WITH_TIMEOUT(!window->isWindowLocked(), 60000);
    }

    template <typename Widget>
    Widget *get(const char *name) const
    {
        return view->findChild<Widget *>(QString::fromLatin1(name));
    }
    static QString knobName(int knob)
    {
        return QString(QLatin1Char("ABCD"[knob % 4])) + QString::number(knob / 4 + 1);
    }
    CRadioButton *button(int knob) const
    {
        return view->findChild<CRadioButton *>(QStringLiteral("btnKnob") + knobName(knob));
    }
    CFrame *label(int knob) const
    {
        return view->findChild<CFrame *>(QStringLiteral("lblKnob") + knobName(knob));
    }
    CText *cell(int knob) const
    {
        return view->findChild<CText *>(QStringLiteral("txtKnob") + knobName(knob));
    }
    int current() const { return view->getCurrentTemplateNumber(); }

    // One of the current template's knobs, whole.
    void setKnob(int knob, const char *name, int cc, int format, const char *id)
    {
        api.setParam(ParamAddress(0, current(), knob, 0), QString::fromLatin1(name));
        api.setParam(ParamAddress(0, current(), knob, 1), cc);
        api.setParam(ParamAddress(0, current(), knob, 2), format);
        api.setParam(ParamAddress(0, current(), knob, 3), QString::fromLatin1(id));
    }
    QString knob(int number) const
    {
        const auto text = [&](int parameter) {
            return api.getParamQString(ParamAddress(0, current(), number, parameter));
        };
        const auto value = [&](int parameter) {
            return QString::number(valueAt(api, ParamAddress(0, current(), number, parameter)));
        };
        return QStringList{text(0), value(1), value(2), text(3)}.join(QLatin1Char('|'));
    }
    void setControlType(int type) { api.setParam(ParamAddress(0, current(), 14, -1), type); }
    int controlType() const { return valueAt(api, ParamAddress(0, current(), 14, -1)); }
    QString templateName() const { return api.getParamQString(ParamAddress(0, current(), 13, -1)); }
    QString vstiName() const { return api.getParamQString(ParamAddress(0, current(), 15, -1)); }
    bool isEdited() const { return valueAt(api, FileEdit) != 0; }

    // Where the green outlines stand, in the coordinates of the LCD.
    QList<QRect> flashes() const
    {
        QList<QRect> result;
        for (const FlashFrame *frame : view->findChildren<FlashFrame *>()) {
            if (frame->isVisible()) {
                result.append(frame->geometry());
            }
        }
        return result;
    }
    QRect flashOf(int knob) const { return label(knob)->geometry().adjusted(-1, -1, 1, 1); }
    QString filePath(const char *name) const { return folder.filePath(QString::fromUtf8(name)); }

    // Two of them stand in groups, and one has the identifier of a track control.
    static constexpr const char *DefaultParameters =
        "<parameter id=\"20000000001\" name=\"Output Level\"/>"
        "<group name=\"Filter\"><parameter id=\"20000000002\" name=\"Cutoff\"/>"
        "<group name=\"Envelope\"><parameter id=\"20000000003\""
        " name=\"Attack Time Of The Very Slow Kind\"/></group></group>"
        "<parameter id=\"10000001025\" name=\"Own Volume\"/>";

    DawMachine machine;
    QTemporaryDir folder;
    RemoteMemAPI api;
    std::unique_ptr<EditorMainWindow> window;
    EditorTemplate *view = nullptr;
};
