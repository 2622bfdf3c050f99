// SPDX-License-Identifier: GPL-3.0-or-later
// The template view's lists to choose from. Each opens beside the control that asked for it, which
// has the focus again afterwards. While one is open the event loop runs: the view may be deleted,
// and a panel may come and take the window; what is chosen under a panel is not taken.
#include "app/EditorMainWindow.h"
#include "memory/CSimpleNotifier.h"
#include "ui_EditorTemplate.h"
#include "views/EditorTemplate.h"
#include "views/GeneralMidi.h"
#include "widgets/CPopupList.h"
#include "widgets/CPopupTree.h"

#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtCore/QRegularExpression>

#include <utility>

namespace
{

constexpr int RowHeightPx = 11;
constexpr int FramePx = 2; // both edges
constexpr QSize TemplatePopupSize(140, ParamAddress::TemplateCount *RowHeightPx + FramePx);
constexpr int TemplateCellWidthPx = 138;
constexpr int VSTiPopupWidthPx = 160;
constexpr int VSTiCellWidthPx = 158;
constexpr int VSTiPopupMaximumRows = 25;
constexpr QSize ParameterPopupSize(200, 277);
constexpr QSize CCPopupSize(170, 277);
constexpr int CCCellWidthPx = 150;
// What of an instrument's name becomes the template's.
constexpr int TemplateNameLength = 13;

QRect globalRect(const QWidget *widget, const QPoint &corner = QPoint())
{
    return {widget->mapToGlobal(corner), widget->size()};
}

template <typename Popup>
Popup *makePopup(QWidget *owner)
{
    auto *popup = new Popup(owner);
    popup->setFont(owner->window()->font());
    popup->setCursor(owner->window()->cursor());
    return popup;
}

CPopupList *makeList(QWidget *owner, const QSize &size, int cellWidthPx)
{
    auto *popup = makePopup<CPopupList>(owner);
    popup->resize(size);
    popup->getListWidget()->setGridSize(QSize(cellWidthPx, RowHeightPx));
    popup->getListWidget()->setResizeMode(QListView::Adjust);
    return popup;
}

// The row that was chosen, or -1.
int chosenRow(CPopupList *popup, const QRect &beside)
{
    const QPointer<CPopupListWidget> list = popup->getListWidget();
    const QListWidgetItem *item = popup->exec(beside);
    return item != nullptr && list ? list->row(item) : -1;
}

void focusOn(const QPointer<QWidget> &widget)
{
    if (widget) {
        widget->setFocus();
    }
}

QString templateNameFor(const QString &vsti)
{
    static const QRegularExpression trailingBlank(QStringLiteral(" $"));
    return vsti.left(TemplateNameLength).remove(trailingBlank);
}

// One of the two trees of parameters: the folders of a parameter's path, and the parameter as a
// leaf, which holds its place among all parameters.
class ParameterTree
{
public:
    explicit ParameterTree(const QString &name)
        : m_root(new QTreeWidgetItem({name}))
    {
    }

    QTreeWidgetItem *root() const { return m_root; }
    const QList<QTreeWidgetItem *> &folders() const { return m_folders; }

    // Null for a path without a name.
    QTreeWidgetItem *append(const QStringList &path)
    {
        if (path.isEmpty()) {
            return nullptr;
        }
        return new QTreeWidgetItem(folderOf(path.first(path.size() - 1)), {path.constLast()});
    }

private:
    QTreeWidgetItem *folderOf(const QStringList &names)
    {
        QTreeWidgetItem *folder = m_root;
        QString key;
        for (const QString &name : names) {
            key += name + QLatin1Char('\n');
            QTreeWidgetItem *&known = m_byPath[key];
            if (known == nullptr) {
                known = new QTreeWidgetItem(folder, {name});
                m_folders.append(known);
            }
            folder = known;
        }
        return folder;
    }

    QTreeWidgetItem *m_root; // owned by the popup's tree
    QHash<QString, QTreeWidgetItem *> m_byPath;
    QList<QTreeWidgetItem *> m_folders;
};

QString ccLine(int number)
{
    const QString blanks(number < 10 ? 4 : number < 100 ? 2 : 0, QLatin1Char(' '));
    const char *name = GeneralMidiCCName[static_cast<std::size_t>(number)];
    return blanks + QString::number(number) + QLatin1String(" : ") +
           QLatin1String(name != nullptr ? name : "---");
}

} // namespace

void EditorTemplate::popupTemplate()
{
    CPopupList *popup = makeList(this, TemplatePopupSize, TemplateCellWidthPx);
    CPopupListWidget *list = popup->getListWidget();
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        assignTemplate(templateNameNotifier, number);
        list->addItem(QLatin1String(number < 9 ? "  " : "") + QString::number(number + 1) +
                      QLatin1String(" : ") + templateNameNotifier->getMemAPIString());
    }
    list->setCurrentRow(getCurrentTemplateNumber());

    const QPointer<EditorTemplate> self(this);
    const int row = chosenRow(popup, globalRect(ui->btnTemplate));
    if (!self) {
        return;
    }
    if (row >= 0 && !mainWindow->isWindowLocked()) {
        ui->btnTemplateNumber->setValue(row);
    }
    ui->btnTemplate->setFocus();
}

void EditorTemplate::popupVSTiName()
{
    const QStringList names = mainWindow->getVSTiInfo().getVSTiList();
    const int rows = std::min(static_cast<int>(names.size()), VSTiPopupMaximumRows);
    CPopupList *popup =
        makeList(this, QSize(VSTiPopupWidthPx, RowHeightPx * rows + FramePx), VSTiCellWidthPx);
    popup->getListWidget()->addItems(names);
    popup->getListWidget()->setCurrentRow(static_cast<int>(names.indexOf(longVSTiName())));

    const QPointer<EditorTemplate> self(this);
    const int row = chosenRow(popup, globalRect(ui->btnVSTiName));
    if (!self) {
        return;
    }
    if (row >= 0 && !mainWindow->isWindowLocked()) {
        chooseVSTi(names.at(row));
    }
    ui->btnVSTiName->setFocus();
}

// A template's name that the user never changed follows the instrument; a changed one stays.
void EditorTemplate::chooseVSTi(const QString &name)
{
    const QString templateName = ui->editTemplateName->text();
    if (templateName.isEmpty() || templateName == templateNameFor(longVSTiName())) {
        ui->editTemplateName->setText(templateNameFor(name));
    }
    ui->editVSTiName->setText(mainWindow->getVSTiInfo().getVSTiExtensionNameFromVSTiName(name));
}

void EditorTemplate::popupRemoteControlParameter(QWidget *beside, const QPoint &point)
{
    const QPointer<QWidget> asking = beside != nullptr ? beside : ui->btnRemoteControlParameter;
    auto *popup = makePopup<CPopupTree>(this);
    popup->resize(ParameterPopupSize);
    QTreeWidget *tree = popup->getTreeWidget();
    const VSTiInfo &info = mainWindow->getVSTiInfo();
    const QString now = remoteNumberNotifier->getMemAPIString();
    QHash<const QTreeWidgetItem *, QString> identifiers;
    QTreeWidgetItem *current = nullptr;
    // Filled before they join the tree, which would otherwise take notice of each item.
    const auto fill = [&](ParameterTree *parameters, const QList<VSTiInfo::Parameter> &list) {
        for (const VSTiInfo::Parameter &parameter : list) {
            if (QTreeWidgetItem *leaf = parameters->append(parameter.path)) {
                identifiers.insert(leaf, parameter.id);
                current = parameter.id == now ? leaf : current;
            }
        }
        tree->addTopLevelItem(parameters->root());
    };

    ParameterTree track(QStringLiteral("Track Control"));
    fill(&track, info.getTrackControlParameterList());
    for (QTreeWidgetItem *folder : track.folders()) {
        folder->setExpanded(true);
    }
    const QString vsti = longVSTiName();
    const QList<VSTiInfo::Parameter> own = info.getVSTiParameterList(vsti);
    if (own.isEmpty()) {
        track.root()->setExpanded(true);
    } else {
        ParameterTree parameters(vsti);
        fill(&parameters, own);
        parameters.root()->setExpanded(true);
    }
    if (current != nullptr) {
        tree->setCurrentItem(current);
    }

    const QPointer<EditorTemplate> self(this);
    const QTreeWidgetItem *chosen = popup->exec(globalRect(asking, point));
    if (!self) {
        return;
    }
    const auto identifier = identifiers.constFind(chosen);
    if (identifier != identifiers.constEnd() && !mainWindow->isWindowLocked()) {
        remoteNumberNotifier->setMemAPIString(*identifier);
        ui->btnRemote->click();
    }
    focusOn(asking);
}

void EditorTemplate::popupCCNumberAndDisplayName(QWidget *beside, const QPoint &point)
{
    const QPointer<QWidget> asking = beside != nullptr ? beside : ui->btnCCNumberAndDisplayName;
    CPopupList *popup = makeList(this, CCPopupSize, CCCellWidthPx);
    for (int number = 0; number < ControlChangeCount; ++number) {
        popup->getListWidget()->addItem(ccLine(number));
    }
    popup->getListWidget()->setCurrentRow(ui->txtCCNumber->value());

    const QPointer<EditorTemplate> self(this);
    const int number = chosenRow(popup, globalRect(asking, point));
    if (!self) {
        return;
    }
    if (number >= 0 && !mainWindow->isWindowLocked()) {
        ui->editDisplayName->setText(
            QString::fromLatin1(GeneralMidiDisplayName[static_cast<std::size_t>(number)]));
        ui->txtCCNumber->setValue(number);
        ui->btnCC->click();
    }
    focusOn(asking);
}
