// Little-endian streams: the layout of every number kind, and reading past the end.
#include "host/base/byte_stream.h"

#include <gtest/gtest.h>

#include <limits>

using base::ByteReader;
using base::ByteWriter;

static const QByteArray kAll = QByteArray::fromHex("ff"
                                                   "0201"
                                                   "feff"
                                                   "04030201"
                                                   "ffffffff"
                                                   "0807060504030201"
                                                   "000000000000f0bf"
                                                   "2d4e3dd8");

TEST(ByteStream, WritesAndReadsTheGoldenBytes)
{
    ByteWriter out;
    out.put<std::uint8_t>(0xFF);
    out.put<std::uint16_t>(0x0102);
    out.put<std::int16_t>(-2);
    out.put<std::uint32_t>(0); // Patched below.
    out.put<std::int32_t>(-1);
    out.put<std::uint64_t>(0x0102030405060708);
    out.put<double>(-1.0);
    out.utf16(u"\u4E2D\xD83D");
    out.patch<std::uint32_t>(5, 0x01020304);
    EXPECT_EQ(out.data().toHex(), kAll.toHex());

    ByteReader in(kAll);
    EXPECT_EQ(in.get<std::uint8_t>(), 0xFF);
    EXPECT_EQ(in.get<std::uint16_t>(), 0x0102);
    EXPECT_EQ(in.get<std::int16_t>(), -2);
    EXPECT_EQ(in.get<std::uint32_t>(), 0x01020304u);
    EXPECT_EQ(in.get<std::int32_t>(), -1);
    EXPECT_EQ(in.get<std::uint64_t>(), 0x0102030405060708u);
    EXPECT_EQ(in.get<double>(), -1.0);
    EXPECT_EQ(in.utf16(2), QString::fromUtf16(u"\u4E2D\xD83D", 2));
    EXPECT_TRUE(in.atEnd());
    EXPECT_FALSE(in.failed());
}

TEST(ByteStream, TheFirstShortReadFailsForGood)
{
    ByteReader in(QByteArrayView("\1\2\3", 3));
    EXPECT_EQ(in.get<std::uint32_t>(), 0u);
    EXPECT_TRUE(in.failed());
    EXPECT_EQ(in.offset(), 0u);
    EXPECT_EQ(in.get<std::uint8_t>(), 0) << "a failed stream must not start again in the middle";
    EXPECT_TRUE(in.byteArray(1).isEmpty());
}

TEST(ByteStream, CountsFromHostileFilesDoNotOverflow)
{
    constexpr std::size_t kHuge = std::numeric_limits<std::size_t>::max();
    const auto fails = [](auto read) {
        ByteReader in(QByteArrayView("abcd"));
        in.skip(2);
        read(in);
        return in.failed();
    };
    EXPECT_TRUE(fails([](ByteReader &in) { in.skip(kHuge); }));
    EXPECT_TRUE(fails([](ByteReader &in) { in.seek(5); }));
    EXPECT_TRUE(fails([](ByteReader &in) { EXPECT_TRUE(in.utf16(kHuge / 2 + 2).isEmpty()); }));
    EXPECT_FALSE(fails([](ByteReader &in) {
        in.seek(4);
        EXPECT_TRUE(in.byteArray(0).isEmpty());
    }));
}
