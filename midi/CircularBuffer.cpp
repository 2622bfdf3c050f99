// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/CircularBuffer.h"

#include <QtCore/QtDebug>

#include <algorithm>
#include <cstring>

CircularBuffer::CircularBuffer(int size, bool recursive)
    : mutex(recursive)
    , m_bytes(std::make_unique<unsigned char[]>(static_cast<std::size_t>(std::max(size, 0))))
    , m_size(std::max(size, 0))
{
}

CircularBuffer::~CircularBuffer() = default;

int CircularBuffer::avail() const
{
    return m_available.load();
}

int CircularBuffer::size() const
{
    return m_size;
}

int CircularBuffer::space() const
{
    return m_size - avail();
}

int CircularBuffer::write(const void *bytes, int count)
{
    const int room = space();
    if (count > room) {
        qDebug("CircularBuffer - buffer overflow? <tell oru>");
        count = room;
    }
    if (count < 1) {
        return 0;
    }
    const auto *source = static_cast<const unsigned char *>(bytes);
    const int first = std::min(count, m_size - m_writeIndex);
    std::memcpy(m_bytes.get() + m_writeIndex, source, static_cast<std::size_t>(first));
    const int second = count - first;
    if (second > 0) {
        std::memcpy(m_bytes.get(), source + first, static_cast<std::size_t>(second));
    }
    m_writeIndex = second > 0 ? second : m_writeIndex + first;
    if (m_writeIndex == m_size) {
        m_writeIndex = 0;
    }
    // Only now may the reader see them.
    m_available.fetch_add(count);
    return count;
}

int CircularBuffer::read(void *bytes, int count)
{
    const int there = avail();
    if (count > there) {
        qDebug(
            "CircularBuffer - Client is asking for too much data!!! count:%d, avail:%d <tell oru>",
            count, there);
        count = there;
    }
    if (count < 1) {
        return 0;
    }
    const int first = std::min(count, m_size - m_readIndex);
    const int second = count - first;
    if (bytes != nullptr) {
        auto *destination = static_cast<unsigned char *>(bytes);
        std::memcpy(destination, m_bytes.get() + m_readIndex, static_cast<std::size_t>(first));
        if (second > 0) {
            std::memcpy(destination + first, m_bytes.get(), static_cast<std::size_t>(second));
        }
    }
    m_readIndex = second > 0 ? second : m_readIndex + first;
    if (m_readIndex == m_size) {
        m_readIndex = 0;
    }
    // Only now may the writer use their place.
    m_available.fetch_sub(count);
    return count;
}
