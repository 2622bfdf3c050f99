// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QImage>
#include <QtGui/QPalette>
#include <QtWidgets/QProxyStyle>

class QStyleOptionMenuItem;
class QStyleOptionSlider;

// The look of what Qt still draws in this program: menu bar, menus, scroll bars, line edits and the
// two popup widgets, over Qt's "Windows" style. Every other widget keeps the look of the style that
// the application had before, and so does every question that names no widget.
//
// Made on the heap and given to QApplication::setStyle(), which owns it from then on. The former
// style becomes a child of this one, so that setStyle() doesn't delete it; if this is deleted
// without ever having been set, the former style goes back to the application. Thread: GUI.
class RemoteEditorStyle : public QProxyStyle
{
    Q_OBJECT

public:
    RemoteEditorStyle();
    ~RemoteEditorStyle() override;

    // True for the widgets that this style draws. A null widget is none of them.
    static bool isCustomStyle(const QWidget *widget);
    static bool isPopupTree(const QWidget *widget);
    static bool isPopupList(const QWidget *widget);
    static void setStandardPaletteColorGroup(QPalette *palette, QPalette::ColorGroup group);

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget = nullptr) const override;
    void drawItemText(QPainter *painter, const QRect &rect, int flags, const QPalette &palette,
                      bool enabled, const QString &text,
                      QPalette::ColorRole textRole = QPalette::NoRole) const override;
    void drawItemPixmap(QPainter *painter, const QRect &rect, int alignment,
                        const QPixmap &pixmap) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                         SubControl subControl, const QWidget *widget) const override;
    QRect itemTextRect(const QFontMetrics &metrics, const QRect &rect, int flags, bool enabled,
                       const QString &text) const override;
    QRect itemPixmapRect(const QRect &rect, int flags, const QPixmap &pixmap) const override;
    SubControl hitTestComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                     const QPoint &position,
                                     const QWidget *widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr,
                  const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;
    int layoutSpacing(QSizePolicy::ControlType control1, QSizePolicy::ControlType control2,
                      Qt::Orientation orientation, const QStyleOption *option = nullptr,
                      const QWidget *widget = nullptr) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
    QPixmap standardPixmap(StandardPixmap pixmap, const QStyleOption *option,
                           const QWidget *widget = nullptr) const override;
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap &pixmap,
                                const QStyleOption *option) const override;
    QPalette standardPalette() const override;

    void polish(QWidget *widget) override;
    void polish(QPalette &palette) override;
    void polish(QApplication *application) override;
    void unpolish(QWidget *widget) override;
    void unpolish(QApplication *application) override;

private:
    // A scroll bar's arrow, at rest and while it is held down and can move.
    struct Arrow
    {
        QImage rest;
        QImage highlight;
    };

    const QStyle *styleFor(const QWidget *widget) const;
    void drawBranch(const QStyleOption *option, QPainter *painter) const;
    void drawMenuBarItem(const QStyleOptionMenuItem *item, QPainter *painter,
                         const QWidget *widget) const;
    void drawMenuItem(const QStyleOptionMenuItem *item, QPainter *painter,
                      const QWidget *widget) const;
    void drawScrollBar(const QStyleOptionSlider *bar, QPainter *painter,
                       const QWidget *widget) const;
    QRect scrollBarRect(const QStyleOptionSlider *bar, SubControl subControl,
                        const QWidget *widget) const;

    // The style that the application had. Not the style under the proxy, which is "Windows".
    QStyle *baseStyle;
    QPalette popupPalette;
    QPalette menuPalette;

    Arrow m_up;
    Arrow m_down;
    Arrow m_left;
    Arrow m_right;
    QImage m_radio;
    QImage m_radioCheck;
    QImage m_listClose;
    QImage m_listOpen;
};
