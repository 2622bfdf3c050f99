// SPDX-License-Identifier: GPL-3.0-or-later
// Carries headers that many sources include, compiled once.
