// SPDX-License-Identifier: GPL-3.0-or-later
// The one source that the packaged interfaces lack: the ids of the interfaces of views.
#include <pluginterfaces/gui/iplugview.h>

namespace Steinberg
{

DEF_CLASS_IID(IPlugView)
DEF_CLASS_IID(IPlugFrame)

} // namespace Steinberg
