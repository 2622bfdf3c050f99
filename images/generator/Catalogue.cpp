// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/generator/Catalogue.h"

#include "images/generator/Drawings.h"
#include "images/generator/Geometry.h"

#include <array>

namespace
{

// Rows of a control's picture: at rest and pressed or on; a spin button at rest, up, down.
constexpr int single = 1;
constexpr int onOff = 2;
constexpr int spin = 3;

constexpr std::array artworks{
    Artwork{"trn_bak_1", mainwindow::large, 1, single, drawings::windowLarge},
    Artwork{"trn_bak_s", mainwindow::small, 1, single, drawings::windowSmall},
    Artwork{"vd_arrow", QSize(13, 20), 1, single, drawings::pointer},
    Artwork{"t27r_led_online", mainwindow::online.size(), 1, single, drawings::lampOnline},
    Artwork{"vd_nsw_window", mainwindow::closeButton.size(), 1, onOff, drawings::windowClose},
    Artwork{"vd_nsw_window_small", mainwindow::minimizeButton.size(), 1, onOff,
            drawings::windowMinimize},
    Artwork{"vd_nsw_window_front", mainwindow::onTopButton.size(), 1, onOff, drawings::windowOnTop},
    // The first category while the window is small, the second while it is large.
    Artwork{"t27r_tsw_size", mainwindow::sizeButtonLarge.size(), 2, onOff, drawings::windowSize},

    Artwork{"trn_bak_main", templateview::size, 1, single, drawings::templateView},
    Artwork{"t27r_lcd_panel", templateview::knobs.cell, 1, single, drawings::selectedCell},
    Artwork{"t27r_bak_remote", templateview::remoteTab.size(), 1, single, drawings::tabRemote},
    Artwork{"t27r_bak_cc", templateview::ccTab.size(), 1, single, drawings::tabCc},
    Artwork{"t27r_btn_back_store", templateview::storeFlash.size(), 1, single, drawings::storeGlow},
    Artwork{"t27r_nsw_store", templateview::storeButton.size(), 1, onOff, drawings::store},
    Artwork{"vd_tsw_lib_open", templateview::libraryButton.size(), 1, onOff, drawings::library},
    Artwork{"trn_led_edit_t", templateview::bankEditLamp.size(), 1, single, drawings::lampBankEdit},
    Artwork{"t27r_led_edit_f", templateview::fileEditLamp.size(), 1, single,
            drawings::lampFileEdit},
    Artwork{"vd_nsw_inc_dec_l", templateview::templateSpin.size(), 1, spin, drawings::spinLarge},
    Artwork{"vd_nsw_inc_dec_s", templateview::ccSpin.size(), 1, spin, drawings::spinSmall},
    Artwork{"vd_nsw_popup_s", templateview::templatePopup.size(), 1, onOff, drawings::popupLarge},
    Artwork{"vd_nsw_popup", templateview::ccPopup.size(), 1, onOff, drawings::popupSmall},
    Artwork{"trn_tsw_radiobtn_cc_rem", templateview::remoteRadio.size(), 1, onOff,
            drawings::radioType},
    Artwork{"trn_tsw_radiobtn", templateview::formatPlain.size(), 1, onOff, drawings::radioFormat},

    Artwork{"trn_bak_library", libraryview::size, 1, single, drawings::libraryView},
    Artwork{"t27r_bak_lib_remote_off", libraryview::tab.size(), 1, single,
            drawings::tabLibraryRemote},
    Artwork{"t27r_nsw_ok_2", libraryview::okButton.size(), 1, onOff, drawings::libraryOk},
    Artwork{"t27r_nsw_cancel_2", libraryview::cancelButton.size(), 1, onOff,
            drawings::libraryCancel},
    Artwork{"t27r_nsw_lib_import", libraryview::importButton.size(), 1, onOff,
            drawings::libraryImport},
    Artwork{"t27r_nsw_file", libraryview::fileKey, 1, onOff, drawings::libraryFile},

    Artwork{"trn_bak_about", overlaypanel::size, 1, single, drawings::panelAbout},
    Artwork{"trn_bak_autosync", overlaypanel::size, 1, single, drawings::panelSynchronisation},
    Artwork{"trn_bak_start", overlaypanel::size, 1, single, drawings::panelScan},
    Artwork{"trn_bak_set", overlaypanel::size, 1, single, drawings::panelSetup},
    Artwork{"trn_bak_save_change", overlaypanel::size, 1, single, drawings::panelSaveChange},
    Artwork{"trn_bak_exit_anyway", overlaypanel::size, 1, single, drawings::panelExitAnyway},
    Artwork{"trn_bak_port_error", overlaypanel::size, 1, single, drawings::panelPortError},
    Artwork{"trn_bak_rename_caution", overlaypanel::size, 1, single, drawings::panelCaution},
    Artwork{"trn_bak_reset_stored", overlaypanel::size, 1, single, drawings::panelResetStored},
    Artwork{"trn_bak_reset_original", overlaypanel::size, 1, single, drawings::panelResetOriginal},
    Artwork{"trn_bak_reset_factoryset", overlaypanel::size, 1, single, drawings::panelResetFactory},
    Artwork{"t27r_txt_error", overlaypanel::runningMessage.size(), 1, single,
            drawings::synchronisationError},
    // Eight steps of seven pixels: the head and its tail.
    Artwork{"trn_led_autosync", QSize(56, overlaypanel::runningLight.height()), 1, single,
            drawings::movingLight},
    Artwork{"vd_nsw_close", overlaypanel::closeButton.size(), 1, onOff, drawings::windowClose},
    Artwork{"vd_nsw_ok", overlaypanel::button, 1, onOff, drawings::ok},
    Artwork{"vd_nsw_cancel", overlaypanel::button, 1, onOff, drawings::cancel},
    Artwork{"vd_nsw_yes", overlaypanel::button, 1, onOff, drawings::yes},
    Artwork{"vd_nsw_no", overlaypanel::button, 1, onOff, drawings::no},
    Artwork{"vd_nsw_start", overlaypanel::button, 1, onOff, drawings::start},
    Artwork{"vd_nsw_retry", overlaypanel::button, 1, onOff, drawings::retry},
    // At the right end of a button that is as wide as its field.
    Artwork{"vd_nsw_pulldown", QSize(19, overlaypanel::portPulldown.height()), 1, onOff,
            drawings::pulldown},
};

} // namespace

std::span<const Artwork> catalogue()
{
    return artworks;
}

QImage render(const Artwork &artwork, int ratio)
{
    QImage image(artwork.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int category = 0; category < artwork.categories; ++category) {
        for (int row = 0; row < artwork.rows; ++row) {
            const QRect slice(
                QPoint(category * artwork.slice.width(), row * artwork.slice.height()),
                artwork.slice);
            painter.save();
            // A glow that reaches beyond its slice would show in the next state.
            painter.setClipRect(slice);
            painter.translate(slice.topLeft());
            artwork.draw(painter, category, row);
            painter.restore();
        }
    }
    return image;
}
