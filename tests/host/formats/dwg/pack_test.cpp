// What packs a DWG file: both compressions, Reed-Solomon words, bit codes.
#include "host/formats/dwg/dwgbits.h"
#include "host/formats/dwg/dwgcompress.h"
#include "host/formats/dwg/dwgcontainer.h"
#include "host/formats/dwg/dwgdecompress.h"
#include "host/formats/dwg/dwgreedsolomon.h"
#include "tests/host/formats/dwg/dwg_support.h"

#include <gtest/gtest.h>

#include <random>

using namespace std::string_view_literals;

namespace
{

struct Packed {
    const char *what;
    std::string_view packed;
    std::string_view plain;
};

TEST(DwgDecompress, UnpacksEveryOpcode18AndRefusesEveryCut)
{
    const std::string_view kEnd = "\x11\0\0"sv;
    const Packed rows[] = {
        {"literals alone",
         "\x02"
         "abcde"sv,
         "abcde"},
        {"short copy, then one literal",
         "\x01"
         "abcd\x4d\x00!"sv,
         "abcdabc!"},
        {"copy into itself",
         "\x01"
         "abcd\x80\x00"sv,
         "abcdddddddd"},
        {"0x21-0x3F with a literal",
         "\x01"
         "abcd\x22\x0d\x00!"sv,
         "abcdabcd!"},
        {"0x20 long",
         "\x01"
         "abcd\x20\x02\x0d\x00!"sv,
         "abcdabcdabcdabcdabcdabcdabcdabcdabcdabc!"},
    };
    for (const Packed &row : rows) {
        SCOPED_TRACE(row.what);
        const std::string whole = std::string(row.packed) + std::string(kEnd);
        const auto unpacked = dwg::decompress18(whole, 100);
        EXPECT_TRUE(unpacked.whole);
        EXPECT_EQ(unpacked.bytes, QByteArray(row.plain.data(), qsizetype(row.plain.size())));
        for (std::size_t size = 0; size + kEnd.size() < whole.size(); ++size)
            EXPECT_FALSE(dwg::decompress18(std::string_view(whole).substr(0, size), 100).whole) << size;
        EXPECT_FALSE(dwg::decompress18(whole, row.plain.size() - 1).whole) << "more than there may be";
    }
}

TEST(DwgDecompress, UnpacksLiteralsOf21InTheirOwnOrder)
{
    // Three literals stand the other way round; eight by halves of four.
    EXPECT_EQ(dwg::decompress21("\x20\0\0\x03"
                                "cba"sv,
                                3)
                  .bytes,
              "abc");
    EXPECT_TRUE(dwg::decompress21("\x00"
                                  "abcdefgh"sv,
                                  8)
                    .whole);
    EXPECT_EQ(dwg::decompress21("\x00"
                                "abcdefgh"sv,
                                8)
                  .bytes,
              "abcdefgh");
    EXPECT_FALSE(dwg::decompress21("\x00"
                                   "abcdefgh"sv,
                                   9)
                     .whole);
}

/// Repetitions near and far, short and long, between runs of literals of every length up to a few hundred.
std::string patchwork(std::mt19937 &random, std::size_t size)
{
    std::string bytes;
    while (bytes.size() < size) {
        const std::size_t length = random() % (random() % 5 == 0 ? 3000 : 40) + 1;
        const std::size_t from = bytes.empty() ? 0 : random() % bytes.size();
        const bool isCopy = random() % 3 != 0 && !bytes.empty();
        for (std::size_t i = 0; i < length; ++i)
            bytes += isCopy ? bytes[from + i % (bytes.size() - from)] : char(random());
    }
    return bytes;
}

TEST(DwgCompress, GivesBackWhatWasPacked)
{
    std::mt19937 random(3);
    std::vector<std::string> rows{"abcd", "aaaaaaaa", std::string(0x7400, '\0'), std::string(200000, 'x')};
    for (std::size_t length = 1; length < 700; ++length) { // Runs of literals, then copies of every length.
        std::string run;
        for (std::size_t i = 0; i < length + 4; ++i)
            run += char(random());
        rows.push_back(run + run.substr(0, length) + "end");
    }
    for (int i = 0; i < 30; ++i)
        rows.push_back(patchwork(random, i < 3 ? 150000 : random() % 30000 + 4));
    for (const std::string &plain : rows) {
        SCOPED_TRACE(plain.size());
        const QByteArray wanted = QByteArray::fromStdString(plain);
        const auto as18 = dwg::decompress18(dwg::viewOf(dwg::compress18(plain)), plain.size());
        EXPECT_TRUE(as18.whole && as18.bytes == wanted);
        const auto as21 = dwg::decompress21(dwg::viewOf(dwg::compress21(plain)), plain.size());
        EXPECT_TRUE(as21.whole && as21.bytes == wanted);
    }
    EXPECT_LT(dwg::compress18(rows[2]).size(), 0x100) << "zeros take nearly nothing";
}

/// A code word made the slow way: parity is what is left of the data after division.
std::string codeWord(const dwg::ReedSolomonCode &code, const std::string &data)
{
    std::vector<int> power(510), logarithm(256);
    unsigned value = 1;
    for (int i = 0; i < 255; ++i) {
        power[std::size_t(i)] = power[std::size_t(i) + 255] = int(value);
        logarithm[value] = i;
        value = value << 1 & 0x100 ? (value << 1 ^ code.fieldPolynomial) & 0xFF : value << 1;
    }
    const auto times = [&](int a, int b) {
        return a && b ? power[std::size_t(logarithm[std::size_t(a)] + logarithm[std::size_t(b)])] : 0;
    };
    const int parity = int(dwg::kCodeWord - code.data);
    std::vector<int> generator{1};
    for (int root = 1; root <= parity; ++root) {
        std::vector<int> next(generator.size() + 1);
        for (std::size_t i = 0; i < generator.size(); ++i) {
            next[i + 1] ^= generator[i];
            next[i] ^= times(generator[i], power[std::size_t(root)]);
        }
        generator = next;
    }
    std::vector<int> rest(dwg::kCodeWord);
    for (std::size_t i = 0; i < code.data; ++i)
        rest[std::size_t(parity) + i] = std::uint8_t(data[i]);
    for (int i = int(dwg::kCodeWord) - 1; i >= parity; --i) {
        const int factor = rest[std::size_t(i)];
        for (int k = 0; k <= parity; ++k)
            rest[std::size_t(i - parity + k)] ^= times(factor, generator[std::size_t(k)]);
    }
    std::string word = data;
    for (int i = 0; i < parity; ++i)
        word += char(rest[std::size_t(i)]);
    return word;
}

TEST(DwgReedSolomon, MendsHalfAsManyBytesAsThereIsParity)
{
    std::mt19937 random(7);
    for (const dwg::ReedSolomonCode &code : {dwg::kSystemPages, dwg::kDataPages}) {
        std::string data[2], words[2];
        for (int w = 0; w < 2; ++w) {
            for (std::size_t i = 0; i < code.data; ++i)
                data[w] += char(random());
            words[w] = codeWord(code, data[w]);
        }
        const auto interleaved = [&] {
            std::string stored;
            for (std::size_t i = 0; i < dwg::kCodeWord; ++i)
                stored += {words[0][i], words[1][i]};
            return stored;
        };
        const QByteArray wanted = QByteArray::fromStdString(data[0] + data[1]);
        const std::string whole = wanted.toStdString();
        EXPECT_EQ(dwg::encodeReedSolomon(whole, 2, code, dwg::WordOrder::interleaved).toStdString(),
                  interleaved());
        EXPECT_EQ(dwg::encodeReedSolomon(whole, 2, code, dwg::WordOrder::parityBehind).toStdString(),
                  whole + words[0].substr(code.data) + words[1].substr(code.data));
        EXPECT_TRUE(dwg::decodeReedSolomon(interleaved(), 2, code).clean);
        const std::size_t most = (dwg::kCodeWord - code.data) / 2;
        for (std::size_t i = 0; i < most; ++i)
            words[1][i * 30 + 3] = char(words[1][i * 30 + 3] ^ char(0x5A + i));
        const auto mended = dwg::decodeReedSolomon(interleaved(), 2, code);
        EXPECT_FALSE(mended.clean);
        EXPECT_EQ(mended.bytes, wanted);
    }
}

TEST(DwgBits, HandlesCountFromTheObject)
{
    tests::BitWriter out;
    for (const auto &[code, handle] :
         {std::pair{5, 0x1234}, std::pair{6, 0}, std::pair{8, 0}, std::pair{0xA, 3}, std::pair{0xC, 3}})
        out.h(code, std::uint64_t(handle));
    const QByteArray bytes = out.bytes();
    dwg::Bits in(std::string_view(bytes.constData(), std::size_t(bytes.size())));
    for (const std::uint64_t wanted : {0x1234, 0x51, 0x4F, 0x53, 0x4D})
        EXPECT_EQ(in.handle(0x50).handle, wanted);
    EXPECT_FALSE(in.failed());
    in.handle(0x50);
    EXPECT_TRUE(in.failed());
}

} // namespace
