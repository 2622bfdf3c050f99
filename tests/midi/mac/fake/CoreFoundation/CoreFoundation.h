// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The few declarations of the platform's foundation that the binding uses, for compiling and
// testing it elsewhere. The platform's names and types; the implementation is FakeCore.cpp.

#include <cstdint>

using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
using UInt64 = std::uint64_t;
using UniChar = UInt16;
using OSStatus = std::int32_t;
using ItemCount = unsigned long;
using CFIndex = long;
using CFStringEncoding = UInt32;
using CFTypeRef = const void *;
// NOLINTBEGIN(bugprone-reserved-identifier): the platform's own names
using CFAllocatorRef = const struct __CFAllocator *;
using CFStringRef = const struct __CFString *;
// NOLINTEND(bugprone-reserved-identifier)

enum { noErr = 0 };

struct CFRange
{
    CFIndex location;
    CFIndex length;
};

inline CFRange CFRangeMake(CFIndex location, CFIndex length)
{
    return {location, length};
}

inline constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text,
                                      CFStringEncoding encoding);
CFIndex CFStringGetLength(CFStringRef text);
void CFStringGetCharacters(CFStringRef text, CFRange range, UniChar *units);
void CFRelease(CFTypeRef object);
