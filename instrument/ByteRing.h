// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

// A ring of records (a port and its bytes) between one thread that writes and one that reads,
// without a lock, so that either may be a service's real-time thread.
class ByteRing
{
public:
    // Capacity in bytes, a power of two. A record takes its bytes and five more.
    explicit ByteRing(std::size_t capacity)
        : m_bytes(capacity)
        , m_mask(capacity - 1)
    {
    }

    // Writer. False, and nothing written, without room for the whole record.
    bool push(int port, const std::uint8_t *bytes, std::size_t count)
    {
        const std::size_t write = m_write.load(std::memory_order_relaxed);
        const std::size_t used = write - m_read.load(std::memory_order_acquire);
        if (count > m_bytes.size() || used + HeaderSize + count > m_bytes.size()) {
            return false;
        }
        put(write, static_cast<std::uint8_t>(port));
        for (std::size_t i = 0; i < 4; ++i) {
            put(write + 1 + i, static_cast<std::uint8_t>(count >> (8 * i)));
        }
        for (std::size_t i = 0; i < count; ++i) {
            put(write + HeaderSize + i, bytes[i]);
        }
        m_write.store(write + HeaderSize + count, std::memory_order_release);
        return true;
    }

    // Reader: port and size of the oldest record; false if there is none.
    bool peek(int *port, std::size_t *count) const
    {
        const std::size_t read = m_read.load(std::memory_order_relaxed);
        if (read == m_write.load(std::memory_order_acquire)) {
            return false;
        }
        *port = get(read);
        *count = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            *count |= static_cast<std::size_t>(get(read + 1 + i)) << (8 * i);
        }
        return true;
    }
    // Reader, after a good peek(): copies the record's bytes to target (null: nowhere), and frees
    // it.
    void pop(std::uint8_t *target)
    {
        int port = 0;
        std::size_t count = 0;
        if (!peek(&port, &count)) {
            return;
        }
        const std::size_t read = m_read.load(std::memory_order_relaxed);
        for (std::size_t i = 0; target && i < count; ++i) {
            target[i] = get(read + HeaderSize + i);
        }
        m_read.store(read + HeaderSize + count, std::memory_order_release);
    }

private:
    static constexpr std::size_t HeaderSize = 5;

    void put(std::size_t position, std::uint8_t byte) { m_bytes[position & m_mask] = byte; }
    std::uint8_t get(std::size_t position) const { return m_bytes[position & m_mask]; }

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_mask;
    std::atomic<std::size_t> m_write{0};
    std::atomic<std::size_t> m_read{0};
};
