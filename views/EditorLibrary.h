// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ParamAddress.h"
#include "widgets/CFrame.h"

#include <QtCore/QPoint>
#include <QtCore/QPointer>
#include <QtCore/QStringList>

#include <array>
#include <memory>
#include <optional>

class CListView;
class CSimpleNotifier;
class CText;
class EditorMainWindow;
class QContextMenuEvent;
class QDragMoveEvent;
class QDomDocument;
class QDomElement;
class QDropEvent;
class QMimeData;
class QMouseEvent;
class QPixmap;
class RemoteMemAPI;
namespace Ui
{
class EditorLibrary;
}

// The page on which the fifty templates are arranged, and others are taken from a second file. It
// works on a copy of the edit buffer in the library bank, made on entering, which OK alone carries
// back: Cancel leaves it behind. The file lies in the import bank and outlives the visit. Whatever
// is selected shows its twelve knobs below the lists. The three resets fill the library bank from
// elsewhere and then take the same way out as OK.
//
// Sources: EditorLibrary.cpp life, selection and commands, EditorLibraryDisplay.cpp what is shown,
// EditorLibraryDecide.cpp the ways out, EditorLibraryDrag.cpp mouse, dragging and the context menu,
// EditorLibraryImport.cpp the second file and the clipboard.
//
// Owner: the main window, which outlives it. Thread: GUI. It becomes live when
// createMemProxyController() walks over the main window.
class EditorLibrary : public CFrame
{
    Q_OBJECT

public:
    // What leads to a decision.
    enum EResetMenuItems {
        UserDecision = 0,
        ResetToStoredData = 1,
        ResetToStartUpData = 2,
        ResetToFactorySettings = 3,
    };
    Q_ENUM(EResetMenuItems)

    // The main window need not be complete: its memory and its tab canceller are used.
    explicit EditorLibrary(EditorMainWindow *window);
    ~EditorLibrary() override;

    // At start-up, once the preset bank is loaded.
    void initializeList();
    // On entering the view: lists and the controls of the import file are brought up to date.
    void updateLibrary();
    // number: 0 to 49, selected and scrolled into view.
    void setCurrentTemplateNumber(int number);
    void focusTemplateList();

    // The rules of the menus. The library's own list must be the active one, not the import's.
    bool canCopy() const { return templateListSelected; }
    bool canInitialize() const { return templateListSelected; }
    bool canEditTemplate() const { return templateListSelected; }
    bool canPaste() const;
    bool canImport() const;
    bool canNewBank() const;
    bool canDeleteBank() const { return false; }
    // Of the active list.
    int getBankNumber() const;

    // The Edit commands of this view. A paste takes the template that now lies where the copied one
    // was; data that is damaged, or names no place of the two lists, pastes nothing.
    void copyTemplate();
    void pasteTemplate();
    void initializeTemplate();

    // Writes the content of the data itself to a template of the active list, which no command
    // does. False, and nothing written, for data that pasteTemplate() would refuse.
    bool setTemplateMimeData(const QMimeData *mime, int number);

    // The resets, from the stored bank, the instrument's edit buffer at start-up and the presets.
    // number: the template to put in front, negative for the selected one.
    void resetStoredData(int number);
    void restoreHWBackup(int number);
    void resetFactorySet(int number);

    // Return, Enter and Escape.
    void enableKeyboardShortcuts(bool enabled);

public Q_SLOTS:
    // Lets the user choose a file and reads it into the import bank.
    void importBank();
    // Copies the selected template of the file over the selected one of the library.
    void importTemplate();

    // The one way out with the changes: they go to the edit buffer, and online to the instrument.
    // number: the template to put in front, without one that which is selected.
    void decide();
    void decide(EResetMenuItems item);
    void decide(int number, EResetMenuItems item = UserDecision);
    // The way out without them; nothing is asked.
    void revoke();
    // Puts the template in front as a double click does. number: negative for the selected one.
    void editTemplate(int number = -1);

    // list: one of the two; it becomes the active one.
    void setSelectedBank(CListView *list);
    void updateTemplateNumber();
    void updateImportTemplateNumber();
    void updateTemplateList();
    void updateImportTemplateList();
    void updatePreview();
    void updateDAW();
    // A list of several banks would hook in here and in bankNameList; there is none.
    void updateBankNumber();
    void abortEditBankName();
    void emulateOKPressing();
    void emulateCancelPressing();

protected:
    // Of the two lists: dragging, dropping, the context menu.
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Scrolls while a drag hovers above or below the list.
    void timerEvent(QTimerEvent *event) override;

    QStringList bankNameList; // stays empty

private:
    static constexpr std::size_t TemplateCount = ParamAddress::TemplateCount;
    static constexpr std::size_t KnobCount = ParamAddress::KnobCount;

    // Of the list that a drag comes from, the two of this view or none.
    enum DragSource { DragFromTemplates = 0, DragFromImport = 1, NoDrag = 2 };
    // A template of one of the two lists, as dragged or copied data names it.
    struct TemplatePlace
    {
        int bank;
        int number;

        bool operator==(const TemplatePlace &) const = default;
    };

    // --- Construction.
    void collectKnobs();
    void buildLists();
    void buildNotifiers();
    void connectControls();
    template <typename Slot>
    void installShortcut(const QString &key, Slot slot);

    // --- Display.
    void fillList(CListView *list,
                  const std::array<CSimpleNotifier *, ParamAddress::TemplateCount> &names);
    // What the preview shows.
    void showTemplate(int number);
    void showBankAndTemplate(int bank, int number);
    void updateRemoteKnob(std::size_t knob, const QString &vsti);
    void updateCCKnob(std::size_t knob, bool trimmed);
    void flashItem(int number) const;

    // --- Clipboard and drag data.
    QMimeData *createTemplateMimeData(int number) const;
    // Null for null, damaged or foreign data; document keeps what it points into.
    static QDomElement templateElement(const QMimeData *mime, QDomDocument *document);
    // -1 without the attribute.
    static int getTemplateNumberFromTemplateMimeData(const QDomElement &element);
    static int getBankNumberFromTemplateMimeData(const QDomElement &element);
    std::optional<TemplatePlace> templatePlace(const QMimeData *mime) const;
    // --- Mouse.
    bool listEvent(CListView *list, QEvent *event);
    bool templateListEvent(QEvent *event);
    bool listMoved(CListView *list, const QMouseEvent *event);
    void dragTemplate(CListView *list, int number, Qt::KeyboardModifiers modifiers);
    QPixmap dragPicture(const CListView *list, int number) const;
    void dragMoved(QDragMoveEvent *event);
    void endDrag();
    bool dropped(QDropEvent *event);
    bool contextMenu(const QContextMenuEvent *event);
    void startScrolling(int direction);
    void stopScrolling();

    // --- Ways out.
    void applyLibraryEdit(int number, EResetMenuItems item);
    void putInFront(int number);
    int selectedOr(int number) const;

    std::unique_ptr<Ui::EditorLibrary> ui;
    EditorMainWindow *mainWindow;
    RemoteMemAPI *remoteMemAPI;
    bool templateListEnabled = true; // updateTemplateList() writes to the list
    bool importAvailable = false;    // a file has been loaded into the import bank
    bool bankAvailable = true;
    bool templateListSelected = true; // otherwise the import's list is the active one
    QPoint dragStartPosition;         // where the left button went down
    int scrollTimerId = 0;
    int scrollDirection = 0; // 1 down, 0 up
    CSimpleNotifier *isOnlineNotifier = nullptr;
    CSimpleNotifier *fileEditFlagNotifier = nullptr;
    CSimpleNotifier *libraryEditFlagNotifier = nullptr;
    CSimpleNotifier *fileNameNotifier = nullptr;
    CSimpleNotifier *currentTemplateNumberNotifier = nullptr;
    std::array<CSimpleNotifier *, TemplateCount> templateNameNotifier{};
    // Children of framePreview, which is aimed at the template to show.
    CSimpleNotifier *vstiNameNotifier = nullptr;
    CSimpleNotifier *controlTypeNotifier = nullptr;
    std::array<CSimpleNotifier *, KnobCount> remoteNumberNotifier{};
    std::array<CSimpleNotifier *, KnobCount> ccNumberNotifier{};
    std::array<CSimpleNotifier *, KnobCount> displayNameNotifier{};
    std::array<CSimpleNotifier *, TemplateCount> importTemplateNameNotifier{};
    std::array<CText *, KnobCount> txtKnob{};
    QPointer<QWidget> bankNameEditor; // nothing makes one
    DragSource dragSource = NoDrag;
    // While the preview is being aimed at another template, which would have it made anew for each
    // of its values.
    bool m_reassigning = false;
    // What the drag over the list carries, read once and not at every move; nothing for data that
    // is refused.
    std::optional<TemplatePlace> m_dragged;
    bool m_dragRead = false;
};
