// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/generator/Sheets.h"

#include "images/generator/Catalogue.h"
#include "images/generator/Geometry.h"
#include "images/generator/Palette.h"
#include "images/generator/Shapes.h"

#include <QtCore/QDir>

#include <algorithm>
#include <string_view>

namespace
{

using shapes::Face;

class Sheet
{
public:
    Sheet(const QSize &size, int ratio, const QColor &ground = Qt::transparent)
        : m_image(size * ratio, QImage::Format_ARGB32_Premultiplied)
        , m_ratio(ratio)
    {
        m_image.setDevicePixelRatio(ratio);
        m_image.fill(ground);
    }

    // One slice of a picture, by its file's name.
    void slice(const QPoint &at, std::string_view name, int row = 0, int category = 0)
    {
        const auto all = catalogue();
        const auto found = std::find_if(all.begin(), all.end(), [name](const Artwork &artwork) {
            return name == artwork.name;
        });
        if (found == all.end()) {
            return;
        }
        const QImage image = render(*found, m_ratio);
        const QSize size = found->slice * m_ratio;
        QImage part = image.copy(QRect(QPoint(category * size.width(), row * size.height()), size));
        part.setDevicePixelRatio(m_ratio);
        QPainter(&m_image).drawImage(at, part);
    }

    // As a widget writes that draws its text into its rectangle.
    void text(const QRect &rect, const QString &text, Face face = Face::Small,
              Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter,
              const QColor &color = palette::ink)
    {
        QPainter painter(&m_image);
        painter.setRenderHint(QPainter::TextAntialiasing, false);
        QFont font = shapes::font(face);
        if (face == Face::Small) {
            font.setLetterSpacing(QFont::AbsoluteSpacing, 0.1);
        }
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(rect, static_cast<int>(alignment), text);
    }

    void fill(const QRect &rect, const QColor &color) { QPainter(&m_image).fillRect(rect, color); }

    void paste(const QPoint &at, const Sheet &other)
    {
        QPainter(&m_image).drawImage(at, other.m_image);
    }

    bool save(const QDir &folder, const char *name) const
    {
        return m_image.save(folder.filePath(
            QStringLiteral("%1-%2x.png").arg(QString::fromLatin1(name)).arg(m_ratio)));
    }

private:
    QImage m_image;
    int m_ratio;
};

constexpr std::array<const char *, 12> displayNames{"Cutoff", "FltReso", "AtkTim",  "RelTim",
                                                    "Volume", "Pan",     "RevSend", "ChoSend",
                                                    "Bright", "VibRate", "CC#=102", "Hold1"};
constexpr std::array controlNumbers{74, 71, 73, 72, 7, 10, 91, 93, 74, 76, 102, 64};

QString knobText(int knob)
{
    const auto index = static_cast<std::size_t>(knob);
    return QStringLiteral("CC%1\n%2")
        .arg(controlNumbers[index], 3, 10, QLatin1Char('0'))
        .arg(QString::fromLatin1(displayNames[index]));
}

void knobs(Sheet &sheet, const KnobGrid &grid, int selected, int textHeight)
{
    for (int knob = 0; knob < 12; ++knob) {
        const QRect cell = grid.at(knob % 4, knob / 4);
        if (knob == selected) {
            sheet.slice(cell.topLeft(), "t27r_lcd_panel");
        }
        const int below = (cell.height() - textHeight) / 2;
        sheet.text(QRect(cell.left(), cell.top() + below, cell.width(), textHeight), knobText(knob),
                   Face::Small, Qt::AlignCenter);
    }
}

Sheet templateSheet(int ratio, bool online, bool pressed)
{
    using namespace templateview;
    const int row = pressed ? 1 : 0;
    Sheet sheet(size, ratio);
    sheet.slice({}, "trn_bak_main");
    sheet.text(fileName, QStringLiteral("StudioSetup.Q7V"));
    if (online) {
        sheet.slice(bankEditLamp.topLeft(), "trn_led_edit_t");
        sheet.slice(fileEditLamp.topLeft(), "t27r_led_edit_f");
    }
    if (!pressed) {
        sheet.slice(storeFlash.topLeft(), "t27r_btn_back_store");
    }
    sheet.slice(storeButton.topLeft(), "t27r_nsw_store", row);
    sheet.slice(libraryButton.topLeft(), "vd_tsw_lib_open", row);
    sheet.text(templateNumber, QStringLiteral("Template No:07"), Face::Large);
    sheet.text(templateName.adjusted(2, 0, 0, 0), QStringLiteral("Vintage Poly"));
    sheet.slice(templateSpin.topLeft(), "vd_nsw_inc_dec_l", pressed ? 2 : 0);
    sheet.slice(templatePopup.topLeft(), "vd_nsw_popup_s", row);
    sheet.text(vstiName.adjusted(2, 0, 0, 0), QStringLiteral("PolySynth"));
    sheet.slice(vstiPopup.topLeft(), "vd_nsw_popup_s", row);
    sheet.slice(remoteRadio.topLeft(), "trn_tsw_radiobtn_cc_rem", pressed ? 1 : 0);
    sheet.slice(ccRadio.topLeft(), "trn_tsw_radiobtn_cc_rem", pressed ? 0 : 1);
    knobs(sheet, templateview::knobs, pressed ? 6 : 0, 21);
    if (pressed) {
        sheet.slice(remoteTab.topLeft(), "t27r_bak_remote");
    } else {
        sheet.slice(ccTab.topLeft(), "t27r_bak_cc");
    }
    sheet.text(remoteParameter.adjusted(2, 0, 0, 0), QStringLiteral("Filter - Cutoff"));
    sheet.slice(remotePopup.topLeft(), "vd_nsw_popup", row);
    sheet.text(ccNumber, QStringLiteral("74"), Face::Small, Qt::AlignCenter);
    sheet.slice(ccSpin.topLeft(), "vd_nsw_inc_dec_s", pressed ? 1 : 0);
    sheet.slice(ccPopup.topLeft(), "vd_nsw_popup", row);
    sheet.text(displayName.adjusted(2, 0, 0, 0), QStringLiteral("Cutoff"));
    sheet.slice(formatPlain.topLeft(), "trn_tsw_radiobtn", pressed ? 0 : 1);
    sheet.slice(formatCentred.topLeft(), "trn_tsw_radiobtn", pressed ? 1 : 0);
    return sheet;
}

void list(Sheet &sheet, const QRect &rect, int selected, int marginHeight, bool focus)
{
    constexpr std::array names{"Vintage Poly", "Soft Strings", "Bass Mono",  "EP Stage",
                               "Organ Draw",   "Lead Sync",    "Pad Motion", "Init",
                               "Init",         "Init",         "Init"};
    for (int row = 0; row < libraryview::visibleRows; ++row) {
        const QRect line(rect.left(), rect.top() + marginHeight + row * libraryview::rowPitch,
                         rect.width(), libraryview::rowHeight);
        const bool chosen = row == selected;
        sheet.fill(line, chosen         ? (focus ? QColor(0, 102, 0) : QColor(0, 162, 0))
                         : row % 2 == 0 ? palette::listEven
                                        : palette::listOdd);
        sheet.text(line.adjusted(5, 0, -5, 0),
                   QStringLiteral("%1  %2")
                       .arg(row + 1, 2, 10, QLatin1Char('0'))
                       .arg(QString::fromLatin1(names[static_cast<std::size_t>(row)])),
                   Face::Large, Qt::AlignLeft | Qt::AlignBottom,
                   chosen ? QColor(Qt::white) : palette::grey(182));
    }
}

void scrollBar(Sheet &sheet, const QRect &rect)
{
    sheet.fill(rect, palette::grey(102));
    sheet.fill(QRect(rect.left() + 4, rect.top() + 21, 8, rect.height() - 25), QColor(24, 15, 2));
    sheet.fill(QRect(rect.left() + 5, rect.top() + 60, 6, rect.height() - 65), palette::grey(102));
    sheet.fill(QRect(rect.left() + 3, rect.top() + 3, 10, 15), QColor(24, 15, 2));
}

Sheet librarySheet(int ratio, bool imported)
{
    using namespace libraryview;
    Sheet sheet(size, ratio);
    sheet.slice({}, "trn_bak_library");
    sheet.slice(okButton.topLeft(), "t27r_nsw_ok_2");
    sheet.slice(cancelButton.topLeft(), "t27r_nsw_cancel_2");
    if (imported) {
        sheet.text(fileName, QStringLiteral("Tour 2026.Q7V"));
        sheet.slice(importButton.topLeft(), "t27r_nsw_lib_import");
        list(sheet, importList, 3, 0, false);
        scrollBar(sheet, importScroll);
    }
    list(sheet, templateList, 0, 5, true);
    scrollBar(sheet, templateScroll);
    sheet.slice(fileButton.topLeft() + QPoint(0, 2), "t27r_nsw_file");
    if (imported) {
        sheet.slice(tab.topLeft(), "t27r_bak_lib_remote_off");
    }
    sheet.text(vsti, QStringLiteral("PolySynth"));
    knobs(sheet, libraryview::knobs, -1, 21);
    return sheet;
}

Sheet windowSheet(int ratio, bool online, bool small, const Sheet &view)
{
    const QSize size = small ? mainwindow::small : mainwindow::large;
    Sheet sheet(size, ratio);
    Sheet shown(QSize(templateview::size.width(),
                      small ? templateview::smallHeight : templateview::size.height()),
                ratio);
    shown.paste({}, view);
    sheet.slice({}, small ? "trn_bak_s" : "trn_bak_1");
    sheet.slice(mainwindow::closeButton.topLeft(), "vd_nsw_window");
    sheet.slice(mainwindow::minimizeButton.topLeft(), "vd_nsw_window_small");
    sheet.slice(mainwindow::onTopButton.topLeft(), "vd_nsw_window_front", online ? 1 : 0);
    const QRect menu = mainwindow::menu;
    constexpr std::array titles{"File", "Edit", "Help"};
    int x = menu.left();
    for (const char *title : titles) {
        sheet.text(QRect(x, menu.top(), 32, menu.height()), QString::fromLatin1(title), Face::Small,
                   Qt::AlignCenter, palette::grey(220));
        x += 32;
    }
    if (online) {
        sheet.slice(mainwindow::online.topLeft(), "t27r_led_online");
    }
    sheet.paste(mainwindow::view, shown);
    const QRect button = small ? mainwindow::sizeButtonSmall : mainwindow::sizeButtonLarge;
    sheet.slice(button.topLeft(), "t27r_tsw_size", 0, small ? 0 : 1);
    return sheet;
}

struct PanelSheet
{
    const char *background;
    bool close;
    // Right-aligned, in their order.
    std::vector<const char *> buttons;
    QString message;
};

Sheet panelSheet(int ratio, const Sheet &window, const PanelSheet &panel)
{
    using namespace overlaypanel;
    Sheet sheet(mainwindow::large, ratio);
    sheet.paste({}, window);
    Sheet overlay(size, ratio);
    const std::string_view background = panel.background;
    overlay.slice({}, background);
    if (panel.close) {
        overlay.slice(closeButton.topLeft(), "vd_nsw_close");
    }
    const std::size_t offset = buttonColumns.size() - panel.buttons.size();
    for (std::size_t index = 0; index < panel.buttons.size(); ++index) {
        overlay.slice(QPoint(buttonColumns[offset + index], buttonRow), panel.buttons[index]);
    }
    overlay.text(message, panel.message, Face::Large, Qt::AlignCenter);
    const QPoint keyOffset(portPulldown.width() - 19, 0);
    if (background == "trn_bak_set" || background == "trn_bak_autosync") {
        overlay.text(port, QStringLiteral("TARN - Port 1"));
        overlay.slice(portPulldown.topLeft() + keyOffset, "vd_nsw_pulldown");
    }
    if (background == "trn_bak_set") {
        overlay.text(daw, QStringLiteral("Other"));
        overlay.slice(dawPulldown.topLeft() + keyOffset, "vd_nsw_pulldown", 1);
    }
    if (background == "trn_bak_start") {
        Sheet light(runningLight.size(), ratio);
        light.slice(QPoint(12 * 7, 0), "trn_led_autosync");
        overlay.paste(runningLight.topLeft(), light);
        overlay.text(runningMessage, QStringLiteral("Scanning VSTi"), Face::Large, Qt::AlignCenter);
        overlay.text(scannedFile, QStringLiteral("[File: PolySynth.vst3]"), Face::Small,
                     Qt::AlignCenter);
    }
    if (background == "trn_bak_autosync") {
        overlay.slice(runningMessage.topLeft(), "t27r_txt_error");
    }
    if (background == "trn_bak_about") {
        constexpr std::array lines{"TARN/TERN Remote Editor Ver.1.1.8",
                                   "Free software under the GNU GPL, version 3",
                                   "Artwork and fonts are this project's own"};
        for (std::size_t index = 0; index < lines.size(); ++index) {
            overlay.text(QRect(91, aboutLines[index], 263, 14), QString::fromLatin1(lines[index]),
                         Face::Small, Qt::AlignCenter);
        }
    }
    sheet.paste(mainwindow::overlay, overlay);
    return sheet;
}

// Every picture that is no background, on the panel and on the strip, slice by slice as in its
// file.
Sheet smallPictures(int ratio)
{
    constexpr int pitch = 96;
    const QSize area(6 * pitch, 560);
    Sheet sheet(QSize(area.width(), area.height()), ratio, palette::plate);
    sheet.fill(QRect(area.width() / 2, 0, area.width() / 2, area.height()), palette::strip);
    for (int half = 0; half < 2; ++half) {
        int x = 8;
        int y = 8;
        int tallest = 0;
        for (const Artwork &artwork : catalogue()) {
            if (artwork.size().width() > 90 || artwork.size().height() > 200) {
                continue;
            }
            if (x + artwork.size().width() > area.width() / 2 - 8) {
                x = 8;
                y += tallest + 8;
                tallest = 0;
            }
            for (int category = 0; category < artwork.categories; ++category) {
                for (int row = 0; row < artwork.rows; ++row) {
                    sheet.slice(
                        QPoint(x + half * area.width() / 2 + category * artwork.slice.width(),
                               y + row * artwork.slice.height()),
                        artwork.name, row, category);
                }
            }
            x += artwork.size().width() + 8;
            tallest = std::max(tallest, artwork.size().height());
        }
    }
    return sheet;
}

} // namespace

bool writeSheets(const QDir &folder)
{
    const QString reset;
    const std::vector<PanelSheet> panels{
        {"trn_bak_about", true, {}, {}},
        {"trn_bak_save_change",
         true,
         {"vd_nsw_yes", "vd_nsw_no", "vd_nsw_cancel"},
         QStringLiteral(" Save changes?")},
        {"trn_bak_exit_anyway",
         true,
         {"vd_nsw_yes", "vd_nsw_no"},
         QStringLiteral("Unsaved changes. Exit anyway?")},
        {"trn_bak_port_error", false, {"vd_nsw_ok"}, QStringLiteral("TARN - Port 1")},
        {"trn_bak_rename_caution",
         false,
         {"vd_nsw_ok"},
         QStringLiteral(" MIDI port is not found.")},
        {"trn_bak_reset_stored", false, {"vd_nsw_ok", "vd_nsw_cancel"}, reset},
        {"trn_bak_reset_original", false, {"vd_nsw_ok", "vd_nsw_cancel"}, reset},
        {"trn_bak_reset_factoryset", false, {"vd_nsw_ok", "vd_nsw_cancel"}, reset},
        {"trn_bak_set", true, {"vd_nsw_ok", "vd_nsw_cancel"}, {}},
        {"trn_bak_autosync", true, {"vd_nsw_retry", "vd_nsw_cancel"}, {}},
        {"trn_bak_start", false, {}, {}},
    };
    bool good = true;
    for (const int ratio : {1, 2}) {
        const Sheet online = windowSheet(ratio, true, false, templateSheet(ratio, true, false));
        good = online.save(folder, "template-online") && good;
        const Sheet remote = windowSheet(ratio, false, false, templateSheet(ratio, false, true));
        good = remote.save(folder, "template-pressed") && good;
        good = windowSheet(ratio, true, true, templateSheet(ratio, false, false))
                   .save(folder, "template-small") &&
               good;
        good = windowSheet(ratio, true, false, librarySheet(ratio, true)).save(folder, "library") &&
               good;
        good = windowSheet(ratio, false, false, librarySheet(ratio, false))
                   .save(folder, "library-empty") &&
               good;
        Sheet all(QSize(mainwindow::large.width() * 4, mainwindow::large.height() * 3), ratio);
        int place = 0;
        for (const PanelSheet &panel : panels) {
            const Sheet one = panelSheet(ratio, remote, panel);
            good = one.save(folder, panel.background) && good;
            all.paste(QPoint(place % 4 * mainwindow::large.width(),
                             place / 4 * mainwindow::large.height()),
                      one);
            ++place;
        }
        good = all.save(folder, "panels") && good;
        good = smallPictures(ratio).save(folder, "pictures") && good;
    }
    return good;
}
