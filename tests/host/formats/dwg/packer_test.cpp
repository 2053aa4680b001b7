// Packing DWG files again: what is in them afterwards, and what is refused.
#include "host/formats/dwg/dwgobject.h"
#include "host/formats/dwg/dwgreread.h"
#include "tests/host/formats/dwg/dwg_support.h"

#include <gtest/gtest.h>

namespace
{

constexpr DrawingVersion kVersions[] = {DrawingVersion::r2000, DrawingVersion::r2004, DrawingVersion::r2007,
                                        DrawingVersion::r2010, DrawingVersion::r2013, DrawingVersion::r2018};

class Small
{
public:
    explicit Small(DrawingVersion version) : Small(tests::smallDwg(version)) {}
    explicit Small(QByteArray bytes)
        : m_bytes(std::move(bytes)),
          container(*dwg::openContainer(dwg::viewOf(m_bytes))), contents{container, {}, {}, 0}
    {
        contents.objects = dwg::storedObjects(container);
    }

private:
    QByteArray m_bytes;

public:
    dwg::Container container;
    dwg::FileContents contents;
};

TEST(DwgPacker, KeepsEveryRecordAndSettlesAtOnce)
{
    for (const DrawingVersion version : kVersions) {
        SCOPED_TRACE(int(version));
        const Small small(version);
        EXPECT_EQ(small.container.warnings, QStringList());
        const auto packed = dwg::packFile(small.contents);
        ASSERT_TRUE(packed) << qPrintable(packed.error());
        const auto same = dwg::compareWritten(dwg::viewOf(*packed), small.contents);
        EXPECT_TRUE(same) << qPrintable(same.error());
        const Small again(*packed);
        EXPECT_EQ(again.container.warnings, QStringList());
        ASSERT_EQ(again.contents.objects.size(), small.contents.objects.size());
        EXPECT_EQ(*dwg::packFile(again.contents), *packed);
    }
}

/// Objects and sections that span many pages and parts of the map.
TEST(DwgPacker, SpreadsLargeSectionsOverPages)
{
    for (const DrawingVersion version : kVersions) {
        SCOPED_TRACE(int(version));
        Small small(version);
        constexpr std::size_t kMore = 5000;
        std::vector<QByteArray> more;
        more.reserve(kMore);
        for (std::uint64_t handle = 0x1000; more.size() < kMore; handle += 1 + handle % 900) {
            more.push_back(
                tests::dwgRecord(version, handle, dwg::kFirstClass, [handle](tests::DwgObject &object) {
                    object.entity(0x10, int(handle % 255), QByteArray(qsizetype(handle % 97), char(handle)));
                }));
            small.contents.objects.push_back({handle, dwg::viewOf(more.back())});
        }
        QByteArray section(300000, '\0');
        for (qsizetype i = 100000; i < section.size(); ++i)
            section[i] = char(i * i >> 7);
        small.contents.sections["AcDb:Header"] = section;
        const auto packed = dwg::packFile(small.contents);
        ASSERT_TRUE(packed) << qPrintable(packed.error());
        const auto same = dwg::compareWritten(dwg::viewOf(*packed), small.contents);
        EXPECT_TRUE(same) << qPrintable(same.error());
    }
}

TEST(DwgPacker, ComparingTellsWhatDiffers)
{
    const Small small(DrawingVersion::r2013);
    const QByteArray packed = *dwg::packFile(small.contents);
    const auto faultOf = [](const QByteArray &file, const dwg::FileContents &meant) {
        const auto compared = dwg::compareWritten(dwg::viewOf(file), meant);
        return compared ? QString() : compared.error();
    };
    dwg::FileContents meant = small.contents;
    QByteArray other(meant.objects[3].record.data(), qsizetype(meant.objects[3].record.size()));
    other[other.size() - 4] = char(other[other.size() - 4] ^ 1);
    meant.objects[3].record = dwg::viewOf(other);
    EXPECT_EQ(faultOf(packed, meant), "object 5 is not as it was meant");
    meant.objects.resize(3);
    EXPECT_EQ(faultOf(packed, meant), "it names 18 objects instead of 3");
    meant.sections["AcDb:Classes"] = "other";
    EXPECT_EQ(faultOf(packed, meant), "the section AcDb:Classes is not as it was meant");
    for (const qsizetype size : {packed.size() / 2, packed.size() - 200})
        EXPECT_NE(faultOf(packed.left(size), small.contents), QString());
}

TEST(DwgPacker, RefusesWhatWouldLoseSomething)
{
    Small small(DrawingVersion::r2013);
    small.container.damage = QStringLiteral("page 3 is missing");
    EXPECT_EQ(dwg::packFile(small.contents).error(),
              "the file was damaged when it was opened (page 3 is missing)");
    Small old(DrawingVersion::r2000);
    old.container.version = DrawingVersion::r14;
    EXPECT_FALSE(dwg::packFile(old.contents));
    QByteArray signedFile = tests::smallDwg(DrawingVersion::r2010);
    signedFile[0x18] = 0x10;
    EXPECT_FALSE(dwg::packFile(Small(signedFile).contents));
}

} // namespace
