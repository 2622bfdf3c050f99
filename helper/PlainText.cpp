// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/PlainText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace
{

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t ByteOrderMark = 0xFEFF;

bool endsLineOrControls(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
}

bool isSpace(char32_t c)
{
    return c == ' ' || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
           c == 0x205F || c == 0x3000 || c == ByteOrderMark;
}

void append(std::string *line, char32_t c)
{
    const auto byte = [line](char32_t value) { line->push_back(static_cast<char>(value)); };
    if (endsLineOrControls(c)) {
        byte(' ');
    } else if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | (c >> 6));
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | (c >> 12));
        byte(0x80 | ((c >> 6) & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | (c >> 18));
        byte(0x80 | ((c >> 12) & 0x3F));
        byte(0x80 | ((c >> 6) & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

// Takes one character off the front; nothing if the bytes there are no UTF-8, in which case nothing
// is taken off.
std::optional<char32_t> takeUtf8(std::string_view *bytes)
{
    const auto at = [bytes](std::size_t i) { return static_cast<std::uint8_t>((*bytes)[i]); };
    const std::uint8_t first = at(0);
    std::size_t length = 1;
    char32_t c = first;
    // The smallest character that needs this length: a longer form than needed is no UTF-8.
    char32_t smallest = 0;
    if (first >= 0xC0 && first < 0xE0) {
        length = 2;
        c = first & 0x1FU;
        smallest = 0x80;
    } else if (first >= 0xE0 && first < 0xF0) {
        length = 3;
        c = first & 0x0FU;
        smallest = 0x800;
    } else if (first >= 0xF0 && first < 0xF8) {
        length = 4;
        c = first & 0x07U;
        smallest = 0x10000;
    } else if (first >= 0x80) {
        return {};
    }
    if (bytes->size() < length) {
        return {};
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0U) != 0x80) {
            return {};
        }
        c = (c << 6) | (at(i) & 0x3FU);
    }
    if (c < smallest || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) {
        return {};
    }
    bytes->remove_prefix(length);
    return c;
}

} // namespace

std::string lineFromUtf16(const char16_t *text, std::size_t length)
{
    std::string line;
    for (std::size_t i = 0; i < length && text[i] != 0; ++i) {
        const char32_t unit = text[i];
        if (unit < 0xD800 || unit > 0xDFFF) {
            append(&line, unit);
            continue;
        }
        const char32_t next = i + 1 < length ? text[i + 1] : 0;
        if (unit < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
            append(&line, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            ++i;
        } else {
            append(&line, Replacement);
        }
    }
    return line;
}

std::string lineFromBytes(std::string_view bytes)
{
    std::string line;
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const std::optional<char32_t> c = takeUtf8(&rest);
        if (!c) {
            break;
        }
        append(&line, *c);
    }
    if (rest.empty()) {
        return line;
    }
    line.clear();
    for (const char byte : bytes) {
        append(&line, static_cast<std::uint8_t>(byte));
    }
    return line;
}

bool isBlank(std::string_view utf8)
{
    while (!utf8.empty()) {
        const std::optional<char32_t> c = takeUtf8(&utf8);
        if (!c || !isSpace(*c)) {
            return false;
        }
    }
    return true;
}

bool saysSomething(std::string_view utf8)
{
    if (isBlank(utf8)) {
        return false;
    }
    std::string word;
    for (const char c : utf8) {
        const bool passedOver = (c >= '0' && c <= '9') ||
                                std::string_view(" #-_.:()[]").find(c) != std::string_view::npos;
        if (!passedOver) {
            word.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
        }
    }
    constexpr std::array<std::string_view, 5> SayNothing = {"", "p", "par", "param", "parameter"};
    return std::find(SayNothing.begin(), SayNothing.end(), word) == SayNothing.end();
}
