// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Text from a plug-in as one line of UTF-8: line feeds, control characters and the separators of
// lines and paragraphs become blanks. Nothing is cut off.

// From UTF-16 of at most `length` units, or up to its end. Half a surrogate pair becomes U+FFFD.
[[nodiscard]] std::string lineFromUtf16(const char16_t *text, std::size_t length);

// From bytes whose encoding nobody tells: UTF-8 if they are valid as such, else Latin-1.
[[nodiscard]] std::string lineFromBytes(std::string_view bytes);

// True if nothing would be left once the blanks at both ends are taken off. Counts the blanks of
// all Unicode, and the byte order mark, which readers drop.
[[nodiscard]] bool isBlank(std::string_view utf8);

// False for a parameter name that is empty, or no more than a number with or without the word
// "parameter".
[[nodiscard]] bool saysSomething(std::string_view utf8);
