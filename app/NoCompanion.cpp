// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Companion.h"

namespace
{

class NoCompanion : public Companion
{
public:
    void windowShown(EditorMainWindow *) override {}
};

} // namespace

std::unique_ptr<Companion> makeCompanion()
{
    return std::make_unique<NoCompanion>();
}
