// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The small pictures of RemoteEditorStyle, each an XPM of two colours, for QImage(const char *const
// []). Immutable, any thread.

// 10 by 7, a solid triangle on the dark colour; the highlight while the arrow is held down and the
// bar can still move that way.
extern const char *const scrollbar_up_image[];
extern const char *const scrollbar_down_image[];
extern const char *const scrollbar_up_highlight_image[];
extern const char *const scrollbar_down_highlight_image[];
// 7 by 10.
extern const char *const scrollbar_left_image[];
extern const char *const scrollbar_right_image[];
extern const char *const scrollbar_left_highlight_image[];
extern const char *const scrollbar_right_highlight_image[];
// 5 by 5: the mark of a checkable menu item, off and on.
extern const char *const radio_image[];
extern const char *const radio_check_image[];
// 9 by 9: what a click on a branch will do, so that an open branch shows list_close_image.
extern const char *const list_close_image[];
extern const char *const list_open_image[];
