// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/GalleryWindow.h"

#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "app/Constants.h"
#include "memory/MemProxy.h"
#include "widgets/CListView.h"
#include "widgets/CPopupList.h"
#include "widgets/CPopupTree.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QDir>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStackedWidget>

namespace
{

constexpr int BankCount = 9;
constexpr int ListWidth = 180;
constexpr QSize WindowSize(1180, 640);
constexpr QColor GroundColor(55, 55, 55);

const char *const KnobNames[] = {"Cutoff",   "Resonance", "Env Amount", "Key Follow",
                                 "Attack",   "Decay",     "Sustain",    "Release",
                                 "LFO Rate", "LFO Depth", "Drive",      "Volume"};
constexpr int KnobCCs[] = {74, 71, 79, 80, 73, 75, 76, 72, 16, 1, 17, 7};

// A document that looks like one, so that the pages show what a user would see.
void fillMemory(RemoteMemAPI *memory)
{
    while (memory->getQuantityOfBank() < BankCount) {
        memory->createBank();
    }
    const auto template_ = [](int selector) {
        return ParamAddress(0, 0, selector, ParamAddress::None);
    };
    memory->setParam(template_(ParamAddress::VSTiName), QStringLiteral("Synth"));
    memory->setParam(template_(ParamAddress::TemplateName), QStringLiteral("Filter & Env"));
    memory->setParam(template_(ParamAddress::ControlType), 1);
    for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
        memory->setParam(ParamAddress(0, 0, knob, ParamAddress::DisplayName),
                         QString::fromLatin1(KnobNames[knob]));
        memory->setParam(ParamAddress(0, 0, knob, ParamAddress::CCNumber), KnobCCs[knob]);
    }
}

} // namespace

GalleryWindow::GalleryWindow()
    : m_factory(&m_memory)
    , m_list(nullptr)
    , m_stack(new QStackedWidget(this))
{
    fillMemory(&m_memory);
    setWindowTitle(EditorName + QStringLiteral(" - Gallery"));
    Specimens::setWindowPalette(this);
    resize(WindowSize);
    // The list's ground, which shows between and below its rows.
    auto *ground = new QFrame(this);
    ground->setGeometry(0, 0, ListWidth, WindowSize.height());
    ground->setAutoFillBackground(true);
    QPalette dark = palette();
    dark.setColor(QPalette::Window, GroundColor);
    ground->setPalette(dark);
    m_list = Specimens::list(this, {0, 0, ListWidth, WindowSize.height()},
                             {ListWidth, 0, 16, WindowSize.height()});
    m_list->setMarginHeight(5);
    addPage(QStringLiteral("Window, template view"), QStringLiteral("template"),
            Pages::templatePage());
    addPage(QStringLiteral("Window, small"), QStringLiteral("small"), Pages::smallWindowPage());
    addPage(QStringLiteral("Window, library view"), QStringLiteral("library"),
            Pages::libraryPage());
    addPage(QStringLiteral("Panels"), QStringLiteral("panels"), Pages::panelsPage());
    addPage(QStringLiteral("Controls"), QStringLiteral("controls"), Pages::controlsPage());
    addPage(QStringLiteral("Bound controls"), QStringLiteral("bound"), Pages::boundPage());
    addPage(QStringLiteral("Lists, scroll bars"), QStringLiteral("lists"), Pages::listsPage());
    addPage(QStringLiteral("Popups, menus"), QStringLiteral("popups"), Pages::popupsPage());
    addPage(QStringLiteral("Texts"), QStringLiteral("texts"), Pages::textsPage());
    addPage(QStringLiteral("Artwork"), QStringLiteral("artwork"), Pages::artworkPage());
    createMemProxyController(&m_factory, this);
    connect(m_list, &CListView::valueChanged, this, &GalleryWindow::showPage);
    m_list->selectList();
    showPage(0);
    adjustFont(m_list);
}

// The pages' controls hold on to the memory; they go first.
GalleryWindow::~GalleryWindow()
{
    delete m_stack;
}

void GalleryWindow::addPage(const QString &title, const QString &fileName, QWidget *page)
{
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(page);
    m_stack->addWidget(area);
    m_stack->setGeometry(ListWidth + 16, 0, WindowSize.width() - ListWidth - 16,
                         WindowSize.height());
    m_list->addItem({title});
    m_pages.append({fileName, page});
}

void GalleryWindow::showPage(int index)
{
    m_stack->setCurrentIndex(index);
}

bool GalleryWindow::saveScreenshots(const QString &folder, QString *failed)
{
    const QDir directory(folder);
    if (!directory.mkpath(QStringLiteral("."))) {
        *failed = folder;
        return false;
    }
    const QString suffix =
        devicePixelRatioF() > 1 ? QStringLiteral("@2x.png") : QStringLiteral(".png");
    const auto save = [&](const QString &name, QWidget *widget) {
        // What stands on queued updates is shown before it is taken.
        QCoreApplication::sendPostedEvents();
        *failed = directory.filePath(name + suffix);
        return widget->grab().save(*failed, "PNG");
    };
    for (int i = 0; i < m_pages.size(); ++i) {
        m_list->setValue(i);
        if (!save(m_pages.at(i).fileName, m_pages.at(i).content)) {
            return false;
        }
    }
    m_list->setValue(0);
    if (!save(QStringLiteral("gallery"), this)) {
        return false;
    }

    const QPoint at = mapToGlobal(QPoint(20, 20));
    const auto saveMenu = [&](const QString &name, QMenu *menu, int active) {
        menu->popup(at);
        menu->setActiveAction(menu->actions().at(active));
        const bool saved = save(name, menu);
        menu->close();
        return saved;
    };
    QMenuBar *bar = m_pages.first().content->findChild<QMenuBar *>();
    int number = 0;
    for (const QString &name :
         {QStringLiteral("menu-file"), QStringLiteral("menu-edit"), QStringLiteral("menu-help")}) {
        if (!saveMenu(name, bar->actions().at(number++)->menu(), 0)) {
            return false;
        }
    }
    if (!saveMenu(QStringLiteral("menu-kinds"), Pages::menu(this), 2)) {
        return false;
    }
    CPopupList *list = Pages::popupList();
    list->popup(at);
    bool saved = save(QStringLiteral("popup-list"), list);
    list->close();
    if (!saved) {
        return false;
    }
    CPopupTree *tree = Pages::popupTree();
    tree->popup(at);
    saved = save(QStringLiteral("popup-tree"), tree);
    tree->close();
    return saved;
}
