// SPDX-License-Identifier: GPL-3.0-or-later
// Carries the headers that every test includes, compiled once.
