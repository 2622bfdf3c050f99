// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CFrame.h"

#include <QtCore/QPoint>
#include <QtGui/QPixmap>

#include <array>
#include <memory>

class CLineEdit;
class CRadioButton;
class CSimpleNotifier;
class CText;
class EditorMainWindow;
class QMimeData;
class QKeyEvent;
class QMouseEvent;
class QDragMoveEvent;
class QDropEvent;
class RemoteMemAPI;
namespace Ui
{
class EditorTemplate;
}

// The page on which one template of the edit buffer, bank 0, is edited: its name and instrument,
// its twelve knobs on an LCD, and below it the settings of the one knob that is selected. Most of
// its controls are bound to addresses of the memory; what it shows is the memory's state at the
// current template and knob. It also saves the document.
//
// Sources: EditorTemplate.cpp life and commands, EditorTemplateDisplay.cpp what is shown,
// EditorTemplatePopups.cpp the lists to choose from, EditorTemplateKnobs.cpp mouse and keys on the
// knobs, dragging and the clipboard, EditorTemplateFiles.cpp saving.
//
// Owner: the main window, which outlives it. Thread: GUI. It becomes live when
// createMemProxyController() walks over the main window.
class EditorTemplate : public CFrame
{
    Q_OBJECT

public:
    static constexpr int KnobCount = 12;

    // The main window need not be complete: its memory and its tab canceller are used.
    explicit EditorTemplate(EditorMainWindow *window);
    ~EditorTemplate() override;

    // Clears the document: all templates of the edit buffer, and the file's name. No flag rises.
    void initializeEditBuffer();

    // True: the document was written. False: the user refused, or has been told why not.
    bool saveBank();
    bool saveBankAs();
    bool canSaveBank() const { return true; }
    bool canSaveBankAs() const;

    // The Edit commands of this view.
    bool canCopy() const { return true; }
    bool canPaste() const;
    bool canInitialize() const { return true; }
    void copyKnob();
    void pasteKnob();
    void initializeTemplate();

    // 0 to 49.
    int getCurrentTemplateNumber() const;
    // 0 to 11.
    int getCurrentKnob() const { return currentKnob; }
    // Gives the focus to the current knob.
    void focusKnob();
    // Ends what is being typed as Return does. Until then a name stands in its control alone, and
    // whoever saves, asks about edits, or replaces the document would do so without it. A control
    // that was entered and left as it is is no edit.
    void acceptTyping();

public Q_SLOTS:
    // Reads the list of instruments and the choice of DAW again.
    void updateDAW();
    void updateTemplateNumber();
    // number: 0 to 49.
    void updateTemplateNumber(int number);
    void updateVSTiName();
    void selectRemoteCC();
    void selectKnob();
    void popupTemplate();
    void popupVSTiName();
    // Beside an area of the widget's size whose corner lies at the point of the widget; without
    // one, beside the button that is there for it.
    void popupRemoteControlParameter(QWidget *beside = nullptr, const QPoint &point = QPoint());
    void popupCCNumberAndDisplayName(QWidget *beside = nullptr, const QPoint &point = QPoint());
    void updateLCDDisplay();
    void updateRemoteControlParameter();
    void updateFileName();
    void updateFileEditFlag();
    void updateBankEditFlag();

protected:
    // Of the twelve knobs.
    bool eventFilter(QObject *watched, QEvent *event) override;
    // The Store button's flash.
    void timerEvent(QTimerEvent *event) override;
    // Nothing can be dropped beside a knob.
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;

private:
    // --- Construction.
    void buildNotifiers();
    void collectKnobs();
    void connectControls();
    void loadFlash();

    // --- Display.
    std::array<CLineEdit *, 3> lineEdits() const;
    bool isOtherDAW() const;
    // The template's knobs are remote parameters of an instrument that the DAW plays.
    bool isRemote() const;
    // The long name of the template's instrument, null if it is unknown.
    QString longVSTiName() const;
    void updateLCDCell(int knob, const QString &vsti);
    void enableRemoteGUI();
    void disableRemoteGUI();
    void hideRemoteChoice();

    // --- Knobs.
    void knobPressed(const QMouseEvent *event);
    bool knobMoved(int knob, const QMouseEvent *event);
    void knobDoubleClicked(int knob);
    bool knobKeyPressed(int knob, const QKeyEvent *event);
    void knobDragged(int knob, QDragMoveEvent *event) const;
    void knobDropped(int knob, QDropEvent *event);
    void knobMenu(int knob, const QPoint &position);
    void dragKnob(int knob, Qt::KeyboardModifiers modifiers);
    QPixmap knobPicture(int knob) const;
    void flashKnob(int knob) const;
    QMimeData *createKnobMimeData(int knob) const;
    // -1 for data that is no knob's, or a damaged one's.
    static int getKnobNumberFromKnobMimeData(const QMimeData *mime);
    // Writes the knob and flashes it. False, with nothing written: a part was missing or damaged.
    bool setKnobMimeData(const QMimeData *mime, int knob);

    // --- Choices and files.
    void chooseVSTi(const QString &name);
    bool writeDocument(const QString &path, QString *error);
    bool mayOverwrite(const QString &path);

    std::unique_ptr<Ui::EditorTemplate> ui;
    EditorMainWindow *mainWindow;
    RemoteMemAPI *remoteMemAPI;
    int currentKnob = 0;
    QPoint dragStartPosition; // where the left button went down on a knob
    CSimpleNotifier *fileNameNotifier = nullptr;
    CSimpleNotifier *templateNameNotifier = nullptr;
    CSimpleNotifier *controlTypeNotifier = nullptr;
    CSimpleNotifier *remoteNumberNotifier = nullptr;
    std::array<CSimpleNotifier *, KnobCount> lcdRemoteNumberNotifier{};
    std::array<CSimpleNotifier *, KnobCount> lcdCCNumberNotifier{};
    std::array<CSimpleNotifier *, KnobCount> lcdDisplayNameNotifier{};
    std::array<CFrame *, KnobCount> lblKnob{};
    std::array<CText *, KnobCount> txtKnob{};
    std::array<CRadioButton *, KnobCount> btnKnob{};
    CSimpleNotifier *fileEditFlagNotifier = nullptr;
    CSimpleNotifier *bankEditFlagNotifier = nullptr;
    CSimpleNotifier *isOnlineNotifier = nullptr;
    int flashTimerId = 0;
    int flashStep = 0; // 0 to 19
    std::array<QPixmap, 10> flashPixmap;
    // While the controls are being moved to another template or knob, which would have the display
    // made anew for each of them.
    bool m_reassigning = false;
};
