// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/SysExAssembler.h"

namespace
{
constexpr unsigned char SysExStart = 0xF0;
constexpr unsigned char SysExEnd = 0xF7;
constexpr unsigned char FirstRealTime = 0xF8;
constexpr unsigned char FirstStatus = 0x80;
} // namespace

std::vector<QByteArray> SysExAssembler::push(const QByteArray &bytes)
{
    std::vector<QByteArray> whole;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= FirstRealTime) {
            continue;
        }
        const bool inside = !m_message.isEmpty();
        if (byte == SysExEnd) {
            if (inside) {
                m_message.append(c);
                whole.push_back(m_message);
                m_message.clear();
            }
        } else if (byte >= FirstStatus) {
            m_broken += inside ? 1 : 0;
            m_message.clear();
            if (byte == SysExStart) {
                m_message.append(c);
            }
        } else if (inside) {
            m_message.append(c);
            if (m_message.size() >= MaxMessageSize) {
                ++m_broken;
                m_message.clear();
            }
        }
    }
    return whole;
}
