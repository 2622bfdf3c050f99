// SPDX-License-Identifier: GPL-3.0-or-later
// A shared object without the entry of any plug-in format.
extern "C" __attribute__((visibility("default"))) int somethingElse()
{
    return 1;
}
