#include "quillnote/exchange/header/data_header.h"

#include "host/base/byte_stream.h"

#include <QCryptographicHash>

#include <algorithm>
#include <array>
#include <cstring>

using base::ByteReader;
using base::ByteWriter;

static constexpr std::size_t kMagicSize = 32;
static constexpr std::size_t kFingerprintSize = 48;
static constexpr std::size_t kSharedAt = 80;
static constexpr std::size_t kMarkCountAt = 144;

struct Magic {
    MarkDataKind kind;
    const char *text;
};
static constexpr std::array kMagics = std::to_array<Magic>({
    {MarkDataKind::marks3, "Corvantelsoft Quillnote DATA V3"},
    {MarkDataKind::marks4, "Corvantelsoft Quillnote DATA V4"},
    {MarkDataKind::marks7, "Corvantelsoft Quillnote DATA V7"},
    {MarkDataKind::erased, "Corvantelsoft Quillnote DATA D7"},
});

static QByteArrayView magicOf(MarkDataKind kind)
{
    return std::ranges::find(kMagics, kind, &Magic::kind)->text;
}

/// Eight bytes at a time: a byte at a time would be half of reading a file.
static std::uint32_t sumOfBytes(QByteArrayView bytes)
{
    constexpr qsizetype kStep = qsizetype(sizeof(std::uint64_t));
    constexpr qsizetype kStepsBeforeOverflow = 128; // Of four sums of 16 bits, each of two bytes a step.
    constexpr std::uint64_t kEveryOther = 0x00FF00FF00FF00FF;
    std::uint32_t sum = 0;
    while (bytes.size() >= kStep) {
        const qsizetype steps = std::min(bytes.size() / kStep, kStepsBeforeOverflow);
        std::uint64_t sums = 0;
        for (qsizetype i = 0; i < steps; ++i) {
            std::uint64_t eight = 0;
            std::memcpy(&eight, bytes.data() + i * kStep, sizeof eight);
            sums += (eight & kEveryOther) + (eight >> 8 & kEveryOther);
        }
        for (; sums != 0; sums >>= 16)
            sum += std::uint32_t(sums & 0xFFFF);
        bytes = bytes.sliced(steps * kStep);
    }
    for (const char byte : bytes)
        sum += static_cast<unsigned char>(byte);
    return sum;
}

static void putPadded(ByteWriter &out, QByteArrayView text, std::size_t size)
{
    const QByteArrayView fitting = text.first(std::min<qsizetype>(text.size(), qsizetype(size)));
    out.bytes(fitting);
    out.zeros(size - std::size_t(fitting.size()));
}

static void putShared(ByteWriter &out, const SharedChange &shared)
{
    putPadded(out, shared.drawing, kIdentitySize);
    putPadded(out, shared.mark, kIdentitySize);
    putPadded(out, shared.before, kDigestSize);
    putPadded(out, shared.after, kDigestSize);
    out.put<std::uint64_t>(shared.serial);
}

QByteArray withMarkDataHeader(const MarkDataHeader &header, QByteArrayView records)
{
    QUILL_ASSERT(header.markCount <= kMostDataRecords && header.tickCount <= kMostDataRecords);
    const SharedChange shared = header.shared.value_or(SharedChange());
    ByteWriter out;
    putPadded(out, magicOf(header.kind), kMagicSize);
    putPadded(out, header.fingerprint.toLatin1(), kFingerprintSize);
    putShared(out, shared);
    out.put<std::uint16_t>(header.markCount);
    out.put<std::uint32_t>(sumOfBytes(records));
    out.put<std::uint16_t>(header.tickCount);
    out.put<std::uint16_t>(shared.asCopies ? 1 : 0);
    out.zeros(kMarkDataHeaderSize - out.size());
    out.bytes(records);
    return out.take();
}

QByteArray joinMarkData(MarkDataHeader header, const std::vector<QByteArray> &files)
{
    QByteArray records;
    header.markCount = 0;
    for (const QByteArray &file : files) {
        records += QByteArrayView(file).sliced(qsizetype(kMarkDataHeaderSize));
        header.markCount += readMarkDataHeader(file)->markCount;
    }
    return withMarkDataHeader(header, records);
}

static bool isZero(QByteArrayView bytes)
{
    return std::ranges::all_of(bytes, [](char byte) { return byte == 0; });
}

static std::optional<SharedChange> getShared(QByteArrayView file)
{
    ByteReader in(file);
    in.seek(kSharedAt);
    SharedChange shared;
    shared.drawing = in.byteArray(kIdentitySize);
    if (isZero(shared.drawing))
        return {};
    shared.mark = in.byteArray(kIdentitySize);
    if (isZero(shared.mark))
        shared.mark.clear();
    shared.before = in.byteArray(kDigestSize);
    shared.after = in.byteArray(kDigestSize);
    in.get(shared.serial);
    in.skip(2 + 4 + 2); // Counts and checksum.
    shared.asCopies = in.get<std::uint16_t>() == 1;
    return shared;
}

std::optional<MarkDataHeader> readMarkDataHeader(QByteArrayView file)
{
    if (file.size() < qsizetype(kMarkDataHeaderSize) || file[kMagicSize - 1] != '\0')
        return {};
    const QByteArrayView magic = file.first(kMagicSize - 1);
    const auto known = std::ranges::find_if(kMagics, [&](const Magic &candidate) {
        return magic.compare(candidate.text, Qt::CaseInsensitive) == 0;
    });
    if (known == kMagics.end())
        return {};
    MarkDataHeader header;
    header.kind = known->kind;
    QByteArrayView fingerprint = file.sliced(kMagicSize, kFingerprintSize);
    if (const qsizetype end = fingerprint.indexOf('\0'); end >= 0)
        fingerprint = fingerprint.first(end);
    header.fingerprint = QString::fromLatin1(fingerprint);
    header.shared = getShared(file);
    ByteReader counts(file);
    counts.seek(kMarkCountAt);
    counts.get(header.markCount);
    header.checksumHolds =
        counts.get<std::uint32_t>() == sumOfBytes(file.sliced(qsizetype(kMarkDataHeaderSize)));
    counts.get(header.tickCount);
    return header;
}

QByteArray identityOf(const QString &text)
{
    const QByteArrayView units(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    return QCryptographicHash::hash(units, QCryptographicHash::Md5);
}

QByteArray unknownDigest()
{
    return QByteArray(kDigestSize, '\0');
}

QByteArray erasedDigest()
{
    return QByteArray(kDigestSize, '\xFF');
}
