// Mark data files as bytes: records of every version, damage, hostile numbers.
#include "quillnote/exchange/mark_data_file.h"

#include "quillnote/entity/field_walk.h"
#include "quillnote/entity/mark_fields.h"

#include "host/base/byte_stream.h"
#include "tests/quillnote/entity/mark_streams.h"
#include "tests/support/files.h"
#include "tests/support/golden.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

static constexpr qsizetype kHeader = 160;

/// The record of the full mark as files of this version hold it, from full_mark_data.hex.
static QByteArray recordBytes(int version, int formatVersion, int style = 51)
{
    base::ByteWriter number;
    number.put<std::uint16_t>(std::uint16_t(formatVersion));
    base::ByteWriter outline;
    outline.put<std::int16_t>(std::int16_t(style));
    QByteArray bytes;
    for (const QByteArray &line :
         tests::readFile(tests::testDataPath("quillnote/exchange/full_mark_data.hex")).split('\n')) {
        QByteArray item = line.split('#').front().trimmed();
        const qsizetype space = item.indexOf(' ');
        if (item.isEmpty() || item.left(space).toInt() > version)
            continue;
        item.replace("{version}", number.data().toHex()).replace("{style}", outline.data().toHex());
        bytes += QByteArray::fromHex(item.mid(space + 1));
    }
    return bytes;
}

static QByteArray fileOf(const char *magic, int marks, int ticks, const QByteArray &records,
                         const QByteArray &fingerprint = "{F1}")
{
    base::ByteWriter file;
    file.bytes(magic);
    file.zeros(32 - file.size());
    file.bytes(fingerprint);
    file.zeros(kHeader - file.size());
    file.bytes(records);
    std::uint32_t sum = 0;
    for (const char byte : records)
        sum += static_cast<unsigned char>(byte);
    file.patch<std::uint16_t>(144, std::uint16_t(marks));
    file.patch<std::uint32_t>(146, sum);
    file.patch<std::uint16_t>(150, std::uint16_t(ticks));
    return file.take();
}

/// A green tick at 1,2,3, turned by a quarter, 100 by 100 by 1.
static QByteArray tickBytes()
{
    base::ByteWriter tick;
    const QString name = QStringLiteral("QuillnoteYesGreen");
    tick.put<std::uint16_t>(std::uint16_t(name.size() * 2));
    tick.utf16(name);
    for (const double number : {1.0, 2.0, 3.0, 0.0, 0.0, 1.0, 1.5, 100.0, 100.0, 1.0})
        tick.put<double>(number);
    return tick.take();
}

static const char kV3[] = "Corvantelsoft Quillnote DATA V3";
static const char kV4[] = "Corvantelsoft Quillnote DATA V4";
static const char kV7[] = "Corvantelsoft Quillnote DATA V7";
static const char kD7[] = "Corvantelsoft Quillnote DATA D7";

static MarkDataContents contentsOf(const QByteArray &file)
{
    const auto header = readMarkDataHeader(file);
    EXPECT_TRUE(header.has_value());
    return header ? readMarkData(file, *header) : MarkDataContents();
}

/// The full mark without what data files leave out.
static std::unique_ptr<QuillnoteObj3> expectedMark()
{
    const auto drawing = tests::drawingOfStreams();
    auto mark = QuillnoteObj3::forReading();
    tests::setFullMark(*mark, *drawing);
    const auto fresh = QuillnoteObj3::forReading();
    for (const QStringView name :
         {u"editVersion", u"reservedShortA", u"reservedShortB", u"reservedDoubleA", u"reservedDoubleB",
          u"reservedDoubleC", u"reservedPointA", u"reservedPointB", u"reservedPointC", u"autoTextHeight",
          u"reservedBoolA", u"reservedBoolB", u"snapEntityIds", u"snapNote", u"snapChecksum", u"snapImage",
          u"fullImage"})
        fields::copyField(*fresh, *mark, markField(name));
    return mark;
}

TEST(MarkDataFile, Version7IsReadAndWrittenAsTheFormatSays)
{
    const QByteArray file = fileOf(kV7, 1, 1, recordBytes(7, 7) + tickBytes());
    const MarkDataContents read = contentsOf(file);
    ASSERT_EQ(read.data.marks.size(), 1U);
    ASSERT_EQ(read.data.ticks.size(), 1U);
    EXPECT_EQ(read.missing + read.left, 0U);
    const MarkDataRecord &record = read.data.marks.front();
    EXPECT_EQ(tests::fieldLines(*record.mark), tests::fieldLines(*expectedMark()));
    EXPECT_EQ(record.layer, QStringLiteral("审图"));
    EXPECT_EQ(record.layerColor, 6);
    EXPECT_EQ(record.mark->textAnchor, AcGePoint3d(53, 54, 55));
    EXPECT_EQ(record.handle.value, 0x2AU);
    EXPECT_EQ(record.owner.value, 0x1FU);
    EXPECT_EQ(read.data.ticks.front().position, AcGePoint3d(1, 2, 3));
    EXPECT_EQ(read.data.ticks.front().scale, AcGeVector3d(100, 100, 1));
    EXPECT_TRUE(tests::sameBytes(encodeMarkData(read.data), file));
}

TEST(MarkDataFile, OlderVersionsAreUpgraded)
{
    for (const auto &[magic, version] : {std::pair(kV3, 3), std::pair(kV4, 4)}) {
        const MarkDataContents read = contentsOf(fileOf(magic, 1, 1, recordBytes(version, version, -4)));
        ASSERT_EQ(read.data.marks.size(), 1U) << version;
        EXPECT_EQ(read.missing + read.left + read.data.ticks.size(), 0U);
        const QuillnoteObj3 &mark = *read.data.marks.front().mark;
        EXPECT_EQ(mark.formatVersion, 7);
        EXPECT_FALSE(mark.cornersValid);
        // A leader mark of those days.
        EXPECT_EQ(mark.leaderMode, LeaderMode::leader);
        EXPECT_EQ(mark.targetStyle, TargetStyle::none);
        EXPECT_EQ(mark.textBoxCorner1, AcGePoint3d(1, 2, 3));
        EXPECT_EQ(mark.textBoxCorner2, AcGePoint3d(4, 5, 6));
        EXPECT_EQ(mark.textHeight, version == 4 ? 2.5 : 0.0);
        EXPECT_EQ(mark.leaderUsed[3], version == 4);
        EXPECT_EQ(mark.GUID, QStringLiteral("{0A}"));
    }
}

TEST(MarkDataFile, TellsItsFilesByTheirHeader)
{
    const QByteArray good = fileOf(kV7, 1, 0, recordBytes(7, 7));
    EXPECT_TRUE(readMarkDataHeader(good)->checksumHolds);
    EXPECT_EQ(readMarkDataHeader(good)->fingerprint, QStringLiteral("{F1}"));
    EXPECT_EQ(readMarkDataHeader(QByteArray(good).replace("Quillnote DATA", "QUILLNOTE data"))->kind,
              MarkDataKind::marks7);
    QByteArray changed = good;
    changed.back() = char(changed.back() + 1);
    EXPECT_FALSE(readMarkDataHeader(changed)->checksumHolds);
    EXPECT_FALSE(readMarkDataHeader(good.first(kHeader - 1)));
    EXPECT_FALSE(readMarkDataHeader(QByteArray(good).replace("V7", "V8")));
    EXPECT_FALSE(readMarkDataHeader({}));
}

TEST(MarkDataFile, NeverInventsAMark)
{
    const QByteArray two = recordBytes(7, 7) + recordBytes(7, 7);
    const QByteArray whole = fileOf(kV7, 2, 1, two + tickBytes());
    for (qsizetype size = kHeader; size < whole.size(); ++size) {
        const MarkDataContents read = contentsOf(whole.first(size));
        const qsizetype records = size - kHeader;
        ASSERT_EQ(read.data.marks.size(), std::size_t(records / (two.size() / 2))) << size;
        ASSERT_EQ(read.missing, 3 - read.data.marks.size()) << size;
        ASSERT_TRUE(read.data.ticks.empty());
    }
    EXPECT_EQ(contentsOf(whole + "more").left, 4U);
    // Counts that no file has.
    const MarkDataContents hostile = contentsOf(fileOf(kV7, 10000, 1, tickBytes()));
    EXPECT_TRUE(hostile.tooManyMarks);
    EXPECT_EQ(hostile.data.ticks.size(), 1U);
    // A length of 4 GB, a text of half a character, a coordinate that is no number.
    const QByteArray sketchSize = QByteArray::fromHex("050000000102030405");
    EXPECT_EQ(
        contentsOf(fileOf(kV7, 1, 0, recordBytes(7, 7).replace(sketchSize, "\xff\xff\xff\xff"))).missing, 1U);
    EXPECT_EQ(contentsOf(fileOf(kV7, 1, 0, QByteArray::fromHex("0500") + two)).missing, 1U);
    const QByteArray fifty = QByteArray::fromHex("0000000000004940");
    const QByteArray noNumber = QByteArray::fromHex("000000000000f87f");
    EXPECT_EQ(contentsOf(fileOf(kV7, 1, 0, recordBytes(7, 7).replace(fifty, noNumber))).missing, 1U);
}

TEST(MarkDataFile, TextsBeyondWhatAFileCountsAreCut)
{
    MarkData data;
    data.marks.emplace_back().mark = QuillnoteObj3::forReading();
    data.marks.front().mark->suggestionContent = QString(40000, u'长');
    EXPECT_EQ(contentsOf(encodeMarkData(data)).data.marks.front().mark->suggestionContent,
              QString(32767, u'长'));
}

TEST(MarkDataFile, NamesErasedMarks)
{
    const QByteArray guids = QByteArray::fromHex("08007b00300041007d00") + QByteArray::fromHex("02004200");
    const QByteArray file = fileOf(kD7, 2, 0, guids, {});
    EXPECT_TRUE(tests::sameBytes(encodeErasedMarks({QStringLiteral("{0A}"), QStringLiteral("B")}), file));
    const QStringList expected{QStringLiteral("{0A}"), QStringLiteral("B")};
    EXPECT_EQ(readErasedMarks(file, *readMarkDataHeader(file)), expected);
    EXPECT_FALSE(readErasedMarks(file.chopped(1), *readMarkDataHeader(file)));
}
