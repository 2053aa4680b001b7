#include "host/formats/dwg/dwgchecksums.h"

#include <algorithm>
#include <array>

namespace dwg
{

std::uint16_t crc16(std::string_view bytes, std::uint16_t seed)
{
    // What a byte does to the sum when so many others follow it: four bytes go in at once.
    static const std::array<std::array<std::uint16_t, 256>, 4> kTables = [] {
        std::array<std::array<std::uint16_t, 256>, 4> tables{};
        for (unsigned i = 0; i < 256; ++i) {
            unsigned value = i;
            for (std::array<std::uint16_t, 256> &table : tables) {
                for (int bit = 0; bit < 8; ++bit)
                    value = value >> 1 ^ (value & 1 ? 0xA001u : 0u);
                table[i] = std::uint16_t(value);
            }
        }
        return tables;
    }();
    unsigned crc = seed;
    const auto byteAt = [&bytes](std::size_t i) { return std::uint8_t(bytes[i]); };
    std::size_t i = 0;
    for (; i + 4 <= bytes.size(); i += 4)
        crc = kTables[3][(crc ^ byteAt(i)) & 0xFF] ^ kTables[2][(crc >> 8 ^ byteAt(i + 1)) & 0xFF] ^
              kTables[1][byteAt(i + 2)] ^ kTables[0][byteAt(i + 3)];
    for (; i < bytes.size(); ++i)
        crc = crc >> 8 ^ kTables[0][(crc ^ byteAt(i)) & 0xFF];
    return std::uint16_t(crc);
}

static constexpr std::size_t kStride = 0x15B0; // So that sums cannot overflow.

std::uint32_t pageChecksum(std::uint32_t seed, std::string_view bytes)
{
    std::uint32_t low = seed & 0xFFFF;
    std::uint32_t high = seed >> 16;
    while (!bytes.empty()) {
        for (const char byte : bytes.substr(0, kStride)) {
            low += std::uint8_t(byte);
            high += low;
        }
        low %= 0xFFF1;
        high %= 0xFFF1;
        bytes.remove_prefix(std::min(bytes.size(), kStride));
    }
    return high << 16 | low;
}

/// The bytes go in by groups of eight, in an order of their own.
template <class Put>
static void putInOrder(std::string_view bytes, Put put)
{
    static constexpr std::array<std::string_view, 9> kOrders = {
        "", "0", "01", "012", "2301", "23014", "230145", "2301456", "67452301"};
    while (!bytes.empty()) {
        const std::string_view group = bytes.substr(0, 8);
        for (const char place : kOrders[group.size()])
            put(std::uint8_t(group[std::size_t(place - '0')]));
        bytes.remove_prefix(group.size());
    }
}

std::uint32_t pageChecksum21(std::string_view bytes)
{
    const std::uint64_t seed = std::uint64_t(bytes.size()) * 0x343FD + 0x269EC3;
    std::uint32_t low = seed & 0xFFFF;
    std::uint32_t high = std::uint32_t(seed >> 16) & 0xFFFF;
    while (!bytes.empty()) {
        putInOrder(bytes.substr(0, kStride), [&low, &high](std::uint8_t byte) {
            low += byte;
            high += low;
        });
        low %= 0xFFF1;
        high %= 0xFFF1;
        bytes.remove_prefix(std::min(bytes.size(), kStride));
    }
    return high << 16 | low;
}

std::uint64_t pageCrc64(std::string_view bytes)
{
    static const std::array<std::uint64_t, 256> kTable = [] {
        std::array<std::uint64_t, 256> table{};
        for (std::uint64_t i = 0; i < table.size(); ++i) {
            std::uint64_t value = i;
            for (int bit = 0; bit < 8; ++bit)
                value = value >> 1 ^ (value & 1 ? 0x95AC9329AC4BC9B5u : 0u);
            table[i] = value;
        }
        return table;
    }();
    std::uint64_t crc = std::uint64_t(bytes.size()) * 0x343FD + 0x269EC3;
    crc |= crc * (std::uint64_t(0x343FD) << 32) + (std::uint64_t(0x269EC3) << 32);
    crc = ~crc;
    putInOrder(bytes, [&crc](std::uint8_t byte) { crc = kTable[(crc ^ byte) & 0xFF] ^ crc >> 8; });
    return crc;
}

std::uint64_t headerCrc64(std::string_view bytes)
{
    static const std::array<std::uint64_t, 256> kTable = [] {
        std::array<std::uint64_t, 256> table{};
        for (std::uint64_t i = 0; i < table.size(); ++i) {
            std::uint64_t value = i << 56;
            for (int bit = 0; bit < 8; ++bit)
                value = value << 1 ^ (value >> 63 ? 0x42F0E1EBA9EA3693u : 0u);
            table[i] = value;
        }
        return table;
    }();
    const std::uint64_t length = bytes.size();
    std::uint64_t crc = length * 0x343FD + 0x269EC3;
    crc = crc * ((std::uint64_t(1) << 32) + 0x343FD) + (length + 0x269EC3);
    crc = ~crc;
    putInOrder(bytes, [&crc](std::uint8_t byte) { crc = kTable[(byte ^ crc >> 56) & 0xFF] ^ crc << 8; });
    return ~crc;
}

} // namespace dwg
