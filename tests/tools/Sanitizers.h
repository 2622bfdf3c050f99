// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which sanitizer a test is built with, for what would take too long under it.

#if defined(__has_feature) // clang's way to ask
#define TRN_HAS_FEATURE(feature) __has_feature(feature)
#else
#define TRN_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || TRN_HAS_FEATURE(address_sanitizer)
inline constexpr bool UnderAddressSanitizer = true;
#else
inline constexpr bool UnderAddressSanitizer = false;
#endif

#if defined(__SANITIZE_THREAD__) || TRN_HAS_FEATURE(thread_sanitizer)
inline constexpr bool UnderThreadSanitizer = true;
#else
inline constexpr bool UnderThreadSanitizer = false;
#endif

#undef TRN_HAS_FEATURE
