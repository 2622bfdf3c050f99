// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

// A ring of whole messages for one writer and one reader, without a lock, so that the reader may be
// a real-time thread. Each message carries a mark of its writer's.
//
// Frame: length (4 bytes), mark (4 bytes), length bytes.
class MessageRing
{
public:
    // capacity: bytes, a power of two, for the messages and a frame head of 8 bytes each.
    explicit MessageRing(std::size_t capacity)
        : m_bytes(std::make_unique<unsigned char[]>(capacity))
        , m_mask(capacity - 1)
    {
    }

    // Thread: writer. A first byte of 0 means none. False, and nothing is written, if there is no
    // room for the whole message.
    bool push(std::uint32_t mark, unsigned char first, const unsigned char *bytes,
              std::size_t length)
    {
        const std::size_t firstBytes = first != 0 ? 1 : 0;
        const std::size_t end = m_end.load(std::memory_order_relaxed);
        const std::size_t used = end - m_begin.load(std::memory_order_acquire);
        if (HeadBytes + firstBytes + length > m_mask + 1 - used) {
            return false;
        }
        const std::array<std::uint32_t, 2> head{static_cast<std::uint32_t>(firstBytes + length),
                                                mark};
        put(end, head.data(), HeadBytes);
        put(end + HeadBytes, &first, firstBytes);
        put(end + HeadBytes + firstBytes, bytes, length);
        m_end.store(end + HeadBytes + firstBytes + length, std::memory_order_release);
        return true;
    }

    // Thread: reader. False if the ring is empty.
    bool next(std::size_t *length, std::uint32_t *mark) const
    {
        const std::size_t begin = m_begin.load(std::memory_order_relaxed);
        if (begin == m_end.load(std::memory_order_acquire)) {
            return false;
        }
        std::array<std::uint32_t, 2> head{};
        get(begin, head.data(), HeadBytes);
        *length = head[0];
        *mark = head[1];
        return true;
    }

    // Thread: reader, after next() gave the length. Takes the message out, into length bytes at
    // destination, or nowhere if that is null.
    void pop(void *destination, std::size_t length)
    {
        const std::size_t begin = m_begin.load(std::memory_order_relaxed);
        if (destination != nullptr) {
            get(begin + HeadBytes, destination, length);
        }
        m_begin.store(begin + HeadBytes + length, std::memory_order_release);
    }

    // Thread: any.
    bool isEmpty() const { return m_begin.load() == m_end.load(); }

private:
    static constexpr std::size_t HeadBytes = 2 * sizeof(std::uint32_t);

    void put(std::size_t at, const void *source, std::size_t length)
    {
        const std::size_t place = at & m_mask;
        const std::size_t untilEnd = std::min(length, m_mask + 1 - place);
        if (untilEnd > 0) {
            std::memcpy(m_bytes.get() + place, source, untilEnd);
        }
        if (length > untilEnd) {
            std::memcpy(m_bytes.get(), static_cast<const unsigned char *>(source) + untilEnd,
                        length - untilEnd);
        }
    }
    void get(std::size_t at, void *destination, std::size_t length) const
    {
        const std::size_t place = at & m_mask;
        const std::size_t untilEnd = std::min(length, m_mask + 1 - place);
        std::memcpy(destination, m_bytes.get() + place, untilEnd);
        if (length > untilEnd) {
            std::memcpy(static_cast<unsigned char *>(destination) + untilEnd, m_bytes.get(),
                        length - untilEnd);
        }
    }

    const std::unique_ptr<unsigned char[]> m_bytes;
    const std::size_t m_mask;
    // Both only grow, and are places modulo the capacity.
    std::atomic<std::size_t> m_begin{0};
    std::atomic<std::size_t> m_end{0};
};
