// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/PluginSession.h"

#include "helper/Vst2Session.h"
#include "helper/Vst3Session.h"

std::unique_ptr<PluginSession> PluginSession::open(const PluginFile &file)
{
    if (file.format == PluginFormat::Vst3) {
        return std::make_unique<Vst3Session>(file);
    }
    return std::make_unique<Vst2Session>(file);
}
