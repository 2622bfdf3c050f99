// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/RemoteEditorStyle.h"

#include "widgets/StyleColors.h"
#include "widgets/StyleImages.h"

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyleFactory>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QTreeView>

#include <algorithm>

namespace
{

constexpr int ScrollBarExtent = 16;
constexpr int ScrollBarSliderMin = 10;

// The scroll bar along its orientation: arrow, arrow, groove, and the margin behind it.
constexpr int SubLineFirst = 3;
constexpr int SubLineLast = 9;
constexpr int AddLineFirst = 11;
constexpr int AddLineLast = 17;
constexpr int GrooveFirst = 21;
constexpr int GrooveEndMargin = 4;
// Across it.
constexpr int ArrowMargin = 3;
constexpr int GrooveMargin = 4;

constexpr int BranchImageSize = 9;

constexpr int IndicatorSize = 5;
constexpr int IndicatorMargin = 5;
constexpr int IconColumnMin = 7;
constexpr int ItemTextMargin = 5;
constexpr int ItemVMargin = 2;
constexpr int ItemRightMargin = 14;
// Between the longest text and the shortcuts.
constexpr int ShortcutGap = 12;
constexpr int SeparatorMargin = 5;
constexpr int SeparatorHeight = 7;
constexpr int SubmenuArrowSize = 7;
constexpr int SubmenuArrowMargin = 4;

constexpr int ItemTextFlags = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip;

// The images are made of whole pixels, as the fonts are, and stay so on a finer screen, for which a
// widget's painter would smooth them.
void drawPixels(QPainter &painter, const QRect &rect, const QImage &image)
{
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(rect, image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}

QString withoutMnemonics(QString text)
{
    return text.remove(u'&');
}

// The key's own name in the menus, as it stands on the keys of the machines this came from.
QString shortcutText(QString shortcut)
{
    const QLatin1String word("Backspace");
    if (shortcut.contains(word)) {
        shortcut.remove(word).append(QLatin1String("Del (BS)"));
    }
    return shortcut;
}

int iconColumnWidth(const QStyleOptionMenuItem &item)
{
    return std::max(item.maxIconWidth, IconColumnMin);
}

QFont itemFont(const QStyleOptionMenuItem &item)
{
    QFont font = item.font;
    if (item.menuItemType == QStyleOptionMenuItem::DefaultItem) {
        font.setWeight(QFont::Bold);
    }
    return font;
}

QPixmap iconPixmap(const QStyleOptionMenuItem &item, const QPainter &painter, int size)
{
    const bool enabled = item.state & QStyle::State_Enabled;
    const bool selected = item.state & QStyle::State_Selected;
    const QIcon::Mode mode = !enabled ? QIcon::Disabled : selected ? QIcon::Active : QIcon::Normal;
    return item.icon.pixmap(QSize(size, size), painter.device()->devicePixelRatioF(), mode,
                            item.checked ? QIcon::On : QIcon::Off);
}

void drawSeparator(const QStyleOptionMenuItem &item, QPainter &painter)
{
    const QRect &rect = item.rect;
    painter.fillRect(rect, colorMenuEnableBackground);
    painter.setPen(colorMenuEnableText);
    int lineStart = SeparatorMargin;
    const QString text = withoutMnemonics(item.text);
    if (!text.isEmpty()) {
        painter.setFont(item.font);
        const QRect textRect = rect.adjusted(SeparatorMargin, 0, -SeparatorMargin, 0);
        painter.drawText(
            QStyle::visualRect(item.direction, rect, textRect),
            ItemTextFlags | int(QStyle::visualAlignment(item.direction, Qt::AlignLeft)), text);
        lineStart += painter.fontMetrics().horizontalAdvance(text) + SeparatorMargin;
    }
    const QRect line(rect.left() + lineStart, rect.top() + rect.height() / 2,
                     rect.width() - lineStart - SeparatorMargin, 1);
    if (line.isValid()) {
        painter.fillRect(QStyle::visualRect(item.direction, rect, line), colorMenuEnableText);
    }
}

QSize menuItemSize(const QStyleOptionMenuItem &item, const QSize &contents)
{
    const QFontMetrics metrics(itemFont(item));
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        if (item.text.isEmpty()) {
            return {2 * SeparatorMargin, SeparatorHeight};
        }
        return {metrics.horizontalAdvance(withoutMnemonics(item.text)) + 4 * SeparatorMargin,
                metrics.height() + 2 * ItemVMargin};
    }
    const QString text = item.text.section(u'\t', 0, 0);
    // The menu has measured the text in its plain font; the default item's is wider.
    int width = std::max(contents.width(), metrics.horizontalAdvance(withoutMnemonics(text)));
    width += iconColumnWidth(item) + ItemTextMargin + ItemRightMargin;
    if (item.text.contains(u'\t')) {
        // The menu adds the width of the shortcuts itself.
        width += ShortcutGap;
    }
    return {width, contents.height() + 2 * ItemVMargin};
}

} // namespace

RemoteEditorStyle::RemoteEditorStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Windows")))
    , baseStyle(QApplication::style())
    , popupPalette(baseStyle->standardPalette())
    , menuPalette(baseStyle->standardPalette())
    , m_up{QImage(scrollbar_up_image), QImage(scrollbar_up_highlight_image)}
    , m_down{QImage(scrollbar_down_image), QImage(scrollbar_down_highlight_image)}
    , m_left{QImage(scrollbar_left_image), QImage(scrollbar_left_highlight_image)}
    , m_right{QImage(scrollbar_right_image), QImage(scrollbar_right_highlight_image)}
    , m_radio(radio_image)
    , m_radioCheck(radio_check_image)
    , m_listClose(list_close_image)
    , m_listOpen(list_open_image)
{
    // QApplication::setStyle() deletes the former style if the application is its parent.
    baseStyle->setParent(this);
    for (QPalette *palette : {&popupPalette, &menuPalette}) {
        for (const auto group : {QPalette::Disabled, QPalette::Active, QPalette::Inactive}) {
            setStandardPaletteColorGroup(palette, group);
        }
    }
}

RemoteEditorStyle::~RemoteEditorStyle()
{
    if (qApp && QApplication::style() == baseStyle) {
        baseStyle->setParent(qApp);
    }
}

bool RemoteEditorStyle::isCustomStyle(const QWidget *widget)
{
    return qobject_cast<const QMenuBar *>(widget) || qobject_cast<const QMenu *>(widget) ||
           qobject_cast<const QScrollBar *>(widget) || qobject_cast<const QLineEdit *>(widget) ||
           isPopupTree(widget) || isPopupList(widget);
}

bool RemoteEditorStyle::isPopupTree(const QWidget *widget)
{
    return qobject_cast<const QTreeView *>(widget) &&
           widget->objectName() == QLatin1String("CPopupTreeWidget");
}

bool RemoteEditorStyle::isPopupList(const QWidget *widget)
{
    return qobject_cast<const QListView *>(widget) &&
           widget->objectName() == QLatin1String("CPopupListWidget");
}

void RemoteEditorStyle::setStandardPaletteColorGroup(QPalette *palette, QPalette::ColorGroup group)
{
    using Role = QPalette::ColorRole;
    const auto set = [&](const QColor &color, std::initializer_list<Role> roles) {
        for (const Role role : roles) {
            palette->setBrush(group, role, QBrush(color, Qt::SolidPattern));
        }
    };
    set(colorPaletteBase, {Role::Base, Role::Window, Role::Button, Role::AlternateBase});
    set(colorPaletteText, {Role::WindowText, Role::Text, Role::ButtonText});
    set(colorPaletteHighlightedText, {Role::BrightText, Role::HighlightedText});
    set(colorPaletteFrame, {Role::Light, Role::Midlight, Role::Dark, Role::Mid, Role::Shadow});
    set(colorPaletteHighlight, {Role::Highlight, Role::Link, Role::LinkVisited});
}

// --- Which style answers
// --------------------------------------------------------------------------

// Null: this one, over "Windows".
const QStyle *RemoteEditorStyle::styleFor(const QWidget *widget) const
{
    return isCustomStyle(widget) ? nullptr : baseStyle;
}

int RemoteEditorStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                                   const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->pixelMetric(metric, option, widget);
    }
    switch (metric) {
    case PM_DefaultFrameWidth:
        return 1;
    case PM_ScrollBarExtent:
        return ScrollBarExtent;
    case PM_ScrollBarSliderMin:
        return ScrollBarSliderMin;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
    case PM_MenuBarPanelWidth:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int RemoteEditorStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                                 QStyleHintReturn *returnData) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->styleHint(hint, option, widget, returnData);
    }
    // Else what a menu has more than the screen has rows would stand in further columns, and so
    // outside of a menu of fixed width.
    if (hint == SH_Menu_Scrollable) {
        return 1;
    }
    if (hint == SH_ItemView_ShowDecorationSelected) {
        if (isPopupTree(widget)) {
            return 0;
        }
        if (isPopupList(widget)) {
            return 1;
        }
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

void RemoteEditorStyle::drawItemText(QPainter *painter, const QRect &rect, int flags,
                                     const QPalette &palette, bool enabled, const QString &text,
                                     QPalette::ColorRole textRole) const
{
    baseStyle->drawItemText(painter, rect, flags, palette, enabled, text, textRole);
}

void RemoteEditorStyle::drawItemPixmap(QPainter *painter, const QRect &rect, int alignment,
                                       const QPixmap &pixmap) const
{
    baseStyle->drawItemPixmap(painter, rect, alignment, pixmap);
}

QRect RemoteEditorStyle::itemTextRect(const QFontMetrics &metrics, const QRect &rect, int flags,
                                      bool enabled, const QString &text) const
{
    return baseStyle->itemTextRect(metrics, rect, flags, enabled, text);
}

QRect RemoteEditorStyle::itemPixmapRect(const QRect &rect, int flags, const QPixmap &pixmap) const
{
    return baseStyle->itemPixmapRect(rect, flags, pixmap);
}

QPixmap RemoteEditorStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap &pixmap,
                                               const QStyleOption *option) const
{
    return baseStyle->generatedIconPixmap(mode, pixmap, option);
}

QPalette RemoteEditorStyle::standardPalette() const
{
    return baseStyle->standardPalette();
}

QRect RemoteEditorStyle::subElementRect(SubElement element, const QStyleOption *option,
                                        const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->subElementRect(element, option, widget);
    }
    return QProxyStyle::subElementRect(element, option, widget);
}

QSize RemoteEditorStyle::sizeFromContents(ContentsType type, const QStyleOption *option,
                                          const QSize &size, const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->sizeFromContents(type, option, size, widget);
    }
    if (type == CT_MenuItem) {
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            return menuItemSize(*item, size);
        }
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

QStyle::SubControl RemoteEditorStyle::hitTestComplexControl(ComplexControl control,
                                                            const QStyleOptionComplex *option,
                                                            const QPoint &position,
                                                            const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->hitTestComplexControl(control, option, position, widget);
    }
    return QProxyStyle::hitTestComplexControl(control, option, position, widget);
}

int RemoteEditorStyle::layoutSpacing(QSizePolicy::ControlType control1,
                                     QSizePolicy::ControlType control2, Qt::Orientation orientation,
                                     const QStyleOption *option, const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->layoutSpacing(control1, control2, orientation, option, widget);
    }
    return QProxyStyle::layoutSpacing(control1, control2, orientation, option, widget);
}

QIcon RemoteEditorStyle::standardIcon(StandardPixmap icon, const QStyleOption *option,
                                      const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->standardIcon(icon, option, widget);
    }
    return QProxyStyle::standardIcon(icon, option, widget);
}

QPixmap RemoteEditorStyle::standardPixmap(StandardPixmap pixmap, const QStyleOption *option,
                                          const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->standardPixmap(pixmap, option, widget);
    }
    return QProxyStyle::standardPixmap(pixmap, option, widget);
}

void RemoteEditorStyle::polish(QWidget *widget)
{
    if (!isCustomStyle(widget)) {
        baseStyle->polish(widget);
        return;
    }
    QProxyStyle::polish(widget);
    if (isPopupTree(widget) || isPopupList(widget)) {
        widget->setPalette(popupPalette);
    } else if (qobject_cast<QMenu *>(widget)) {
        widget->setPalette(menuPalette);
    }
}

void RemoteEditorStyle::polish(QPalette &palette)
{
    baseStyle->polish(palette);
}

void RemoteEditorStyle::polish(QApplication *application)
{
    baseStyle->polish(application);
    QProxyStyle::polish(application);
}

void RemoteEditorStyle::unpolish(QWidget *widget)
{
    if (!isCustomStyle(widget)) {
        baseStyle->unpolish(widget);
        return;
    }
    QProxyStyle::unpolish(widget);
}

void RemoteEditorStyle::unpolish(QApplication *application)
{
    baseStyle->unpolish(application);
    QProxyStyle::unpolish(application);
}

// --- Frames and branches
// --------------------------------------------------------------------------

void RemoteEditorStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                      QPainter *painter, const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        style->drawPrimitive(element, option, painter, widget);
        return;
    }
    const bool antialiased = painter->testRenderHint(QPainter::TextAntialiasing);
    painter->setRenderHint(QPainter::TextAntialiasing, false);
    switch (element) {
    case PE_Frame:
    case PE_FrameMenu:
        painter->fillRect(option->rect, colorPaletteFrame);
        break;
    case PE_FrameFocusRect:
    case PE_PanelMenuBar:
    case PE_PanelLineEdit:
        break;
    case PE_IndicatorBranch:
        drawBranch(option, painter);
        break;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        break;
    }
    painter->setRenderHint(QPainter::TextAntialiasing, antialiased);
}

void RemoteEditorStyle::drawBranch(const QStyleOption *option, QPainter *painter) const
{
    const QRect &rect = option->rect;
    const QPoint center = rect.center();
    const auto line = [painter](const QPoint &from, const QPoint &to) {
        painter->fillRect(QRect(from, to), colorListViewLine);
    };
    if (option->state & State_Item) {
        if (option->direction == Qt::RightToLeft) {
            line({rect.left(), center.y()}, center);
        } else {
            line(center, {rect.right(), center.y()});
        }
    }
    if (option->state & State_Sibling) {
        line(center, {center.x(), rect.bottom()});
    }
    if (option->state & (State_Item | State_Sibling | State_Children | State_Open)) {
        line({center.x(), rect.top()}, center);
    }
    if (option->state & State_Children) {
        const QPoint corner = center - QPoint(BranchImageSize / 2, BranchImageSize / 2);
        drawPixels(*painter, QRect(corner, QSize(BranchImageSize, BranchImageSize)),
                   option->state & State_Open ? m_listClose : m_listOpen);
    }
}

// --- Menus
// ----------------------------------------------------------------------------------------

void RemoteEditorStyle::drawControl(ControlElement element, const QStyleOption *option,
                                    QPainter *painter, const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        style->drawControl(element, option, painter, widget);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::TextAntialiasing, false);
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (element == CE_MenuBarEmptyArea) {
        painter->fillRect(option->rect, QColor(0, 0, 0, 0));
    } else if (element == CE_MenuBarItem && item) {
        drawMenuBarItem(item, painter, widget);
    } else if (element == CE_MenuItem && item) {
        if (item->menuItemType == QStyleOptionMenuItem::Separator) {
            drawSeparator(*item, *painter);
        } else {
            drawMenuItem(item, painter, widget);
        }
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
    painter->restore();
}

void RemoteEditorStyle::drawMenuBarItem(const QStyleOptionMenuItem *item, QPainter *painter,
                                        const QWidget *widget) const
{
    if (!(item->state & State_Enabled)) {
        painter->fillRect(item->rect, colorMenuBarDisableBackgorund);
        painter->setPen(colorMenuBarDisableText);
    } else if (item->state & State_Selected) {
        painter->fillRect(item->rect, colorMenuBarSelectBackground);
        painter->setPen(colorMenuBarSelectText);
    } else {
        painter->fillRect(item->rect, colorMenuBarEnableBackgorund);
        painter->setPen(colorMenuBarEnableText);
    }
    if (!item->icon.isNull()) {
        const int size = proxy()->pixelMetric(PM_SmallIconSize, item, widget);
        proxy()->drawItemPixmap(painter, item->rect, Qt::AlignCenter,
                                iconPixmap(*item, *painter, size));
        return;
    }
    painter->drawText(item->rect, ItemTextFlags | Qt::AlignHCenter, withoutMnemonics(item->text));
}

void RemoteEditorStyle::drawMenuItem(const QStyleOptionMenuItem *item, QPainter *painter,
                                     const QWidget *widget) const
{
    const bool enabled = item->state & State_Enabled;
    const bool selected = item->state & State_Selected;
    const bool sunken = item->state & State_Sunken;
    const QRect &rect = item->rect;
    const auto visual = [item, &rect](const QRect &logical) {
        return visualRect(item->direction, rect, logical);
    };

    painter->fillRect(rect, sunken     ? colorMenuSunkenBackground
                            : selected ? colorMenuSelectBackground
                            : enabled  ? colorMenuEnableBackground
                                       : colorMenuDisableBackground);

    const int column = iconColumnWidth(*item);
    if (item->checkType != QStyleOptionMenuItem::NotCheckable && item->icon.isNull()) {
        const bool checked = item->checked || (enabled && sunken);
        const QRect indicator(rect.left() + IndicatorMargin,
                              rect.top() + (rect.height() - IndicatorSize) / 2, IndicatorSize,
                              IndicatorSize);
        drawPixels(*painter, visual(indicator), checked ? m_radioCheck : m_radio);
    }
    if (!item->icon.isNull()) {
        const int size = proxy()->pixelMetric(PM_SmallIconSize, item, widget);
        proxy()->drawItemPixmap(painter, visual({rect.left(), rect.top(), column, rect.height()}),
                                Qt::AlignCenter, iconPixmap(*item, *painter, size));
    }

    painter->setPen(!enabled   ? colorMenuDisableText
                    : sunken   ? colorMenuSunkenText
                    : selected ? colorMenuSelectText
                               : colorMenuEnableText);
    const int flags = ItemTextFlags | int(visualAlignment(item->direction, Qt::AlignLeft));
    const QRect textRect =
        rect.adjusted(column + ItemTextMargin, ItemVMargin,
                      -ItemRightMargin - item->reservedShortcutWidth, -ItemVMargin);
    const qsizetype tab = item->text.indexOf(u'\t');
    if (tab >= 0) {
        // The shortcuts of all items start at one place, behind the longest text.
        painter->setFont(item->font);
        const QRect shortcutRect(textRect.right() + 1, textRect.top(),
                                 rect.right() - textRect.right(), textRect.height());
        painter->drawText(visual(shortcutRect), flags, shortcutText(item->text.mid(tab + 1)));
    }
    painter->setFont(itemFont(*item));
    painter->drawText(visual(textRect), flags, withoutMnemonics(item->text.left(tab)));

    if (item->menuItemType == QStyleOptionMenuItem::SubMenu) {
        QStyleOption arrow;
        arrow.rect = visual({rect.right() + 1 - SubmenuArrowMargin - SubmenuArrowSize,
                             rect.top() + (rect.height() - SubmenuArrowSize) / 2, SubmenuArrowSize,
                             SubmenuArrowSize});
        arrow.state = State_Enabled;
        arrow.palette = item->palette;
        arrow.palette.setColor(QPalette::ButtonText,
                               selected ? colorMenuSelectText : painter->pen().color());
        proxy()->drawPrimitive(item->direction == Qt::RightToLeft ? PE_IndicatorArrowLeft
                                                                  : PE_IndicatorArrowRight,
                               &arrow, painter, widget);
    }
}

// --- Scroll bars
// ----------------------------------------------------------------------------------

void RemoteEditorStyle::drawComplexControl(ComplexControl control,
                                           const QStyleOptionComplex *option, QPainter *painter,
                                           const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        style->drawComplexControl(control, option, painter, widget);
        return;
    }
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || !bar) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    painter->save();
    drawScrollBar(bar, painter, widget);
    painter->restore();
}

void RemoteEditorStyle::drawScrollBar(const QStyleOptionSlider *bar, QPainter *painter,
                                      const QWidget *widget) const
{
    painter->fillRect(bar->rect, colorScrollBarBackground);

    const auto part = [this, bar, widget](SubControl subControl) {
        return bar->subControls & subControl
                   ? proxy()->subControlRect(CC_ScrollBar, bar, subControl, widget)
                   : QRect();
    };
    const QRect groove = part(SC_ScrollBarGroove);
    if (groove.isValid()) {
        // Two fillings instead of a pen, which at twice the scale would lie between the pixels.
        painter->fillRect(groove, colorScrollBarForeground);
        const QRect inside = groove.adjusted(1, 1, -1, -1);
        if (inside.isValid()) {
            painter->fillRect(inside, colorScrollBarBackground);
        }
    }
    const bool canSub = bar->sliderPosition > bar->minimum;
    const bool canAdd = bar->sliderPosition < bar->maximum;
    const QRect slider = part(SC_ScrollBarSlider);
    if ((canSub || canAdd) && slider.isValid()) {
        const QRect inside = proxy()->subControlRect(CC_ScrollBar, bar, SC_ScrollBarGroove, widget);
        painter->fillRect(slider & inside.adjusted(1, 1, -1, -1), colorScrollBarForeground);
    }

    const bool horizontal = bar->orientation == Qt::Horizontal;
    const auto drawArrow = [&](SubControl subControl, const Arrow &arrow, bool canMove) {
        const QRect rect = part(subControl);
        if (!rect.isValid()) {
            return;
        }
        const bool held = bar->activeSubControls & subControl && bar->state & State_Sunken;
        drawPixels(*painter, rect, held && canMove ? arrow.highlight : arrow.rest);
    };
    drawArrow(SC_ScrollBarSubLine, horizontal ? m_left : m_up, canSub);
    drawArrow(SC_ScrollBarAddLine, horizontal ? m_right : m_down, canAdd);
}

QRect RemoteEditorStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                                        SubControl subControl, const QWidget *widget) const
{
    if (const QStyle *style = styleFor(widget)) {
        return style->subControlRect(control, option, subControl, widget);
    }
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control == CC_ScrollBar && bar) {
        return scrollBarRect(bar, subControl, widget);
    }
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

QRect RemoteEditorStyle::scrollBarRect(const QStyleOptionSlider *bar, SubControl subControl,
                                       const QWidget *widget) const
{
    const bool horizontal = bar->orientation == Qt::Horizontal;
    const int length = horizontal ? bar->rect.width() : bar->rect.height();
    const int grooveLast = length - 1 - GrooveEndMargin;
    const int maxLength = grooveLast - GrooveFirst + 1;

    // The range of a hostile bar doesn't fit into an int.
    const qint64 range = qint64(bar->maximum) - bar->minimum;
    int sliderLength = maxLength;
    if (range > 0) {
        const qint64 page = std::max(bar->pageStep, 0);
        const auto share = int(page * std::max(maxLength, 0) / (page + range));
        sliderLength = std::min(
            std::max(share, proxy()->pixelMetric(PM_ScrollBarSliderMin, bar, widget)), maxLength);
    }
    const int sliderFirst =
        GrooveFirst + sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                              maxLength - sliderLength, bar->upsideDown);
    const int sliderLast = sliderFirst + sliderLength - 1;

    int first = 0;
    int last = 0;
    int margin = GrooveMargin;
    switch (subControl) {
    case SC_ScrollBarSubLine:
        first = SubLineFirst;
        last = SubLineLast;
        margin = ArrowMargin;
        break;
    case SC_ScrollBarAddLine:
        first = AddLineFirst;
        last = AddLineLast;
        margin = ArrowMargin;
        break;
    case SC_ScrollBarSubPage:
        first = GrooveFirst;
        last = sliderFirst - 1;
        break;
    case SC_ScrollBarSlider:
        first = sliderFirst;
        last = sliderLast;
        break;
    case SC_ScrollBarAddPage:
        first = sliderLast + 1;
        last = grooveLast;
        break;
    case SC_ScrollBarGroove:
        first = GrooveFirst;
        last = grooveLast;
        break;
    default:
        return {};
    }
    const int acrossLast = proxy()->pixelMetric(PM_ScrollBarExtent, bar, widget) - 1 - margin;
    const QRect rect = horizontal ? QRect(QPoint(first, margin), QPoint(last, acrossLast))
                                  : QRect(QPoint(margin, first), QPoint(acrossLast, last));
    return visualRect(bar->direction, bar->rect, rect);
}
