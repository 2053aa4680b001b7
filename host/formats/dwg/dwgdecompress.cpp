#include "host/formats/dwg/dwgdecompress.h"

#include <cstdint>
#include <cstring>

namespace dwg
{
namespace
{

/// Input and output of one decompression; both ends are watched.
class Unpacker
{
public:
    Unpacker(std::string_view packed, std::size_t limit)
        : m_in(packed), m_limit(limit), m_out(qsizetype(limit), Qt::Uninitialized)
    {
    }

    bool good() const { return m_good; }
    bool atEnd() const { return m_at >= m_in.size(); }
    std::uint8_t byte()
    {
        if (atEnd()) {
            m_good = false;
            return 0;
        }
        return std::uint8_t(m_in[m_at++]);
    }
    void skip(std::size_t count)
    {
        for (; count > 0; --count)
            byte();
    }

    /// The next literals, still in the order of the file.
    std::string_view literals(std::size_t count)
    {
        if (count > m_in.size() - m_at || count > m_limit - m_size) {
            m_good = false;
            return {};
        }
        m_at += count;
        return m_in.substr(m_at - count, count);
    }
    /// No more than literals() gave.
    void append(std::string_view bytes)
    {
        if (bytes.empty())
            return;
        std::memcpy(m_out.data() + m_size, bytes.data(), bytes.size());
        m_size += bytes.size();
    }

    /// Repeats bytes that came `distance` before; the copy may run into itself.
    void copy(std::size_t distance, std::size_t count)
    {
        if (!m_good || distance == 0 || distance > m_size || count > m_limit - m_size) {
            m_good = false;
            return;
        }
        char *const to = m_out.data() + m_size;
        m_size += count;
        if (distance >= count) {
            std::memcpy(to, to - distance, count);
            return;
        }
        for (std::size_t i = 0; i < count; ++i)
            to[i] = to[std::ptrdiff_t(i) - std::ptrdiff_t(distance)];
    }

    Decompressed take(bool whole)
    {
        m_out.truncate(qsizetype(m_size));
        return {std::move(m_out), whole && m_good};
    }
    std::size_t size() const { return m_size; }

private:
    std::string_view m_in;
    std::size_t m_at = 0;
    std::size_t m_limit;
    QByteArray m_out; ///< Of the limit's size, filled up to m_size.
    std::size_t m_size = 0;
    bool m_good = true;
};

/// A length that goes on while bytes are zero.
std::size_t longLength(Unpacker &unpacker, std::size_t start)
{
    std::size_t length = start;
    for (;;) {
        const std::uint8_t byte = unpacker.byte();
        if (byte != 0)
            return length + byte;
        if (!unpacker.good())
            return 0;
        length += 0xFF;
    }
}

// AC1018 -----------------------------------------------------------------------------------------

/// 0 when what stands here is the next opcode, which is then in `opcode`.
std::size_t literalLength(Unpacker &unpacker, std::uint8_t &opcode)
{
    const std::uint8_t byte = unpacker.byte();
    opcode = 0;
    if (byte & 0xF0) {
        opcode = byte;
        return 0;
    }
    return (byte == 0 ? longLength(unpacker, 0x0F) : byte) + 3;
}

struct Copy {
    std::size_t length = 0;
    std::size_t distance = 0;
    std::size_t literals = 0; ///< 0: a length of its own follows.
};

Copy readCopy18(Unpacker &unpacker, std::uint8_t opcode)
{
    Copy copy;
    if (opcode >= 0x40) {
        copy.length = (opcode >> 4) - 1;
        copy.distance = (std::size_t(unpacker.byte()) << 2 | (opcode & 0x0C) >> 2) + 1;
        copy.literals = opcode & 3;
        return copy;
    }
    std::size_t beyond = 1;
    if (opcode >= 0x20) {
        copy.length = opcode == 0x20 ? longLength(unpacker, 0) + 0x21 : opcode - 0x1E;
    } else {
        copy.length = (opcode & 7) == 0 ? longLength(unpacker, 0) + 9 : (opcode & 7) + 2;
        beyond = 0x4000 + (opcode & 8 ? 0x4000 : 0);
    }
    const std::uint8_t first = unpacker.byte();
    copy.distance = (first >> 2 | std::size_t(unpacker.byte()) << 6) + beyond;
    copy.literals = first & 3;
    return copy;
}

// AC1021 -----------------------------------------------------------------------------------------

/// Up to 32 literals; larger pieces stand in the file behind smaller ones.
void appendShuffled(Unpacker &unpacker, std::string_view bytes)
{
    const LiteralOrder &order = literalOrder21(bytes.size());
    for (std::size_t i = 0; i + 1 < sizeof order && order[i + 1] != 0; i += 2) {
        const std::string_view piece = bytes.substr(order[i], order[i + 1]);
        if (piece.size() == 16) { // Two halves, swapped.
            unpacker.append(piece.substr(8));
            unpacker.append(piece.substr(0, 8));
        } else if (piece.size() == 2 || piece.size() == 3) {
            for (auto byte = piece.rbegin(); byte != piece.rend(); ++byte)
                unpacker.append({&*byte, 1});
        } else {
            unpacker.append(piece);
        }
    }
}

std::size_t literalLength21(Unpacker &unpacker, std::uint8_t opcode)
{
    std::size_t length = opcode + 8u;
    if (length != 0x17)
        return length;
    std::size_t more = unpacker.byte();
    length += more;
    if (more != 0xFF)
        return length;
    do {
        more = unpacker.byte();
        more |= std::size_t(unpacker.byte()) << 8;
        length += more;
    } while (more == 0xFFFF && unpacker.good());
    return length;
}

/// The opcode that follows also holds bits of this copy; its lowest three are the literals behind it.
Copy readCopy21(Unpacker &unpacker, std::uint8_t &opcode)
{
    Copy copy;
    switch (opcode >> 4) {
    case 0:
        copy.length = (opcode & 0xF) + 0x13;
        copy.distance = unpacker.byte();
        opcode = unpacker.byte();
        copy.length += (opcode >> 3) & 0x10;
        copy.distance += ((opcode & 0x78u) << 5) + 1;
        break;
    case 1:
        copy.length = (opcode & 0xF) + 3;
        copy.distance = unpacker.byte();
        opcode = unpacker.byte();
        copy.distance += ((opcode & 0xF8u) << 5) + 1;
        break;
    case 2:
        copy.distance = unpacker.byte();
        copy.distance |= std::size_t(unpacker.byte()) << 8;
        copy.length = opcode & 7;
        if (!(opcode & 8)) {
            opcode = unpacker.byte();
            copy.length += opcode & 0xF8;
        } else {
            ++copy.distance;
            copy.length += std::size_t(unpacker.byte()) << 3;
            opcode = unpacker.byte();
            copy.length += ((opcode & 0xF8u) << 8) + 0x100;
        }
        break;
    default:
        copy.length = opcode >> 4;
        copy.distance = opcode & 15;
        opcode = unpacker.byte();
        copy.distance += ((opcode & 0xF8u) << 1) + 1;
        break;
    }
    copy.literals = opcode & 7;
    return copy;
}

} // namespace

const LiteralOrder &literalOrder21(std::size_t count)
{
    static constexpr LiteralOrder kOrders[33] = {
        {},
        {0, 1},
        {1, 1, 0, 1},
        {2, 1, 1, 1, 0, 1},
        {0, 4},
        {4, 1, 0, 4},
        {5, 1, 1, 4, 0, 1},
        {5, 2, 1, 4, 0, 1},
        {0, 8},
        {8, 1, 0, 8},
        {9, 1, 1, 8, 0, 1},
        {9, 2, 1, 8, 0, 1},
        {8, 4, 0, 8},
        {12, 1, 8, 4, 0, 8},
        {13, 1, 9, 4, 1, 8, 0, 1},
        {13, 2, 9, 4, 1, 8, 0, 1},
        {8, 8, 0, 8},
        {9, 8, 8, 1, 0, 8},
        {17, 1, 1, 16, 0, 1},
        {16, 3, 0, 16},
        {16, 4, 0, 16},
        {20, 1, 16, 4, 0, 16},
        {20, 2, 16, 4, 0, 16},
        {20, 3, 16, 4, 0, 16},
        {16, 8, 0, 16},
        {17, 8, 16, 1, 0, 16},
        {25, 1, 17, 8, 16, 1, 0, 16},
        {25, 2, 17, 8, 16, 1, 0, 16},
        {24, 4, 16, 8, 0, 16},
        {28, 1, 24, 4, 16, 8, 0, 16},
        {28, 2, 24, 4, 16, 8, 0, 16},
        {30, 1, 26, 4, 18, 8, 2, 16, 0, 2},
        {16, 16, 0, 16},
    };
    return kOrders[count];
}

Decompressed decompress18(std::string_view packed, std::size_t limit)
{
    constexpr std::uint8_t kEnd = 0x11;
    Unpacker unpacker(packed, limit);
    std::uint8_t opcode = 0;
    unpacker.append(unpacker.literals(literalLength(unpacker, opcode)));
    while (unpacker.good()) {
        if (opcode == 0)
            opcode = unpacker.byte();
        if (opcode == kEnd)
            return unpacker.take(true);
        if (opcode < 0x10)
            break;
        const Copy copy = readCopy18(unpacker, opcode);
        opcode = 0;
        std::size_t literals = copy.literals;
        if (literals == 0)
            literals = literalLength(unpacker, opcode);
        unpacker.copy(copy.distance, copy.length);
        unpacker.append(unpacker.literals(literals));
    }
    return unpacker.take(false);
}

Decompressed decompress21(std::string_view packed, std::size_t size)
{
    Unpacker unpacker(packed, size);
    std::uint8_t opcode = unpacker.byte();
    std::size_t literals = 0;
    if (opcode >> 4 == 2) {
        unpacker.skip(2);
        literals = unpacker.byte() & 7;
    }
    while (unpacker.good() && unpacker.size() < size) {
        if (literals == 0)
            literals = literalLength21(unpacker, opcode);
        for (std::string_view run = unpacker.literals(literals); !run.empty();
             run.remove_prefix(std::min<std::size_t>(32, run.size())))
            appendShuffled(unpacker, run.substr(0, 32));
        literals = 0;
        if (unpacker.atEnd() || !unpacker.good())
            break;
        opcode = unpacker.byte();
        for (;;) {
            const Copy copy = readCopy21(unpacker, opcode);
            unpacker.copy(copy.distance, copy.length);
            literals = copy.literals;
            if (literals != 0 || unpacker.atEnd() || !unpacker.good())
                break;
            opcode = unpacker.byte();
            if (opcode >> 4 == 0)
                break;
            if (opcode >> 4 == 15)
                opcode &= 15;
        }
    }
    const bool filled = unpacker.size() == size;
    return unpacker.take(filled);
}

} // namespace dwg
