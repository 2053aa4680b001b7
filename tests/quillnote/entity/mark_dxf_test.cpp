// Review marks in DXF groups: what is written, what is lost, what is refused.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"

#include "tests/quillnote/entity/group_lines.h"
#include "tests/quillnote/entity/mark_streams.h"
#include "tests/support/files.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <QDir>

class MarkDxf : public testing::Test
{
protected:
    MarkDxf() { registerMarkClass(); }

    static Acad::ErrorStatus read(QuillnoteObj3 &mark, const ResbufList &groups)
    {
        AcDbDxfFiler filer(nullptr, groups);
        const Acad::ErrorStatus status = mark.dxfInFields(&filer);
        EXPECT_EQ(status, filer.filerStatus());
        return status;
    }
    static ResbufList written(const QuillnoteObj3 &mark)
    {
        AcDbDxfFiler filer(nullptr);
        EXPECT_EQ(mark.dxfOutFields(&filer), Acad::eOk);
        return filer.groups();
    }
    static ResbufList with(ResbufList groups, const ResbufList &more)
    {
        groups.insert(groups.end(), more.begin(), more.end());
        return groups;
    }
    static resbuf &group(ResbufList &groups, int code) { return *findGroup(groups, code); }

    std::unique_ptr<AcDbDatabase> database = tests::drawingOfStreams();
    tests::ScriptFrontEnd frontEnd;
};

TEST_F(MarkDxf, TheGroupsAreWrittenInTheirSequence)
{
    QuillnoteObj3 mark;
    tests::setFullMark(mark, *database);
    const ResbufList groups = written(mark);
    const ResbufList expected = tests::dxfGroups();
    ASSERT_EQ(groups.size(), expected.size());
    for (std::size_t i = 0; i < groups.size(); ++i)
        EXPECT_EQ(groups[i], expected[i]) << "group " << i << ", code " << groups[i].restype;
}

TEST_F(MarkDxf, ReadingLosesOnlyWhatDxfDoesNotHold)
{
    QuillnoteObj3 full;
    tests::setFullMark(full, *database);
    QuillnoteObj3 mark;
    ASSERT_EQ(read(mark, tests::dxfGroups()), Acad::eOk);
    EXPECT_EQ(
        differingMarkFields(mark, full).join(u' '),
        u"chPwMD5 GUID sketchData editVersion reservedShortA reservedShortB reservedDoubleA reservedDoubleB "
        u"reservedDoubleC reservedPointA reservedPointB reservedPointC autoTextHeight reservedBoolB "
        u"snapEntityIds snapChecksum snapImage fullImage");

    // Over a mark that has them already, as beside the carrier, nothing is lost.
    QuillnoteObj3 carried;
    tests::setFullMark(carried, *database);
    ASSERT_EQ(read(carried, tests::dxfGroups()), Acad::eOk);
    EXPECT_EQ(differingMarkFields(carried, full), QStringList());
}

TEST_F(MarkDxf, OtherVersionsAndAMissingMarkerAreRefused)
{
    for (const auto &[version, status] :
         {std::pair{QuillnoteObj3::kFormatVersion + 1, Acad::eMakeMeProxy},
          std::pair{6, Acad::eBadDxfSequence}, std::pair{0, Acad::eBadDxfSequence},
          std::pair{-1, Acad::eMakeMeProxy}}) {
        ResbufList groups = tests::dxfGroups();
        group(groups, 70).assign(std::int64_t(version));
        QuillnoteObj3 mark;
        EXPECT_EQ(read(mark, groups), status) << version;
        EXPECT_EQ(mark.markNumber, 1) << "reading went on behind the version";
        EXPECT_EQ(mark.formatVersion, QuillnoteObj3::kFormatVersion);
        EXPECT_EQ(std::exchange(frontEnd.printed, {}).startsWith(u"请安装更高版本评图标签软件！\nhttp"),
                  status == Acad::eMakeMeProxy);
    }
    ResbufList groups = tests::dxfGroups();
    groups.erase(groups.begin());
    QuillnoteObj3 mark;
    EXPECT_EQ(read(mark, groups), Acad::eBadDxfSequence);
    EXPECT_EQ(read(mark, {}), Acad::eBadDxfSequence);
    group(groups = tests::dxfGroups(), 100).assign(QStringLiteral("QuillLink"));
    EXPECT_EQ(read(mark, groups), Acad::eBadDxfSequence);
}

TEST_F(MarkDxf, WhatIsTooMuchOrUnknownIsSkipped)
{
    const AcGePoint3d stray(-1, -1, -1);
    QuillnoteObj3 mark;
    const ResbufList tooMuch{{11, stray},
                             {12, stray},
                             {14, stray},
                             {15, stray},
                             {292, std::int64_t(1)},
                             {100, QStringLiteral("Other")},
                             {999, QStringLiteral("?")},
                             {310, QByteArray("x")}};
    ASSERT_EQ(read(mark, with(tests::dxfGroups(), tooMuch)), Acad::eOk);
    QuillnoteObj3 clean;
    ASSERT_EQ(read(clean, tests::dxfGroups()), Acad::eOk);
    clean.createTime = mark.createTime;
    EXPECT_EQ(differingMarkFields(mark, clean), QStringList());
}

TEST_F(MarkDxf, OfOtherCodesTheLastCountsAndRangesAreRepaired)
{
    ResbufList groups = tests::dxfGroups();
    std::erase_if(groups, [](const resbuf &g) { return g.restype == 14; });
    QuillnoteObj3 mark;
    tests::setFullMark(mark, *database);
    ASSERT_EQ(read(mark, with(groups, {{172, std::int64_t(-1)},
                                       {71, std::int64_t(11)},
                                       {270, std::int64_t(20)},
                                       {301, std::int64_t(5)}})),
              Acad::eOk);
    EXPECT_EQ(mark.markNumber, 65535) << "signed in the file";
    EXPECT_EQ(findGroup(written(mark), 172)->integer(), -1);
    EXPECT_EQ(mark.weight, 5);
    EXPECT_EQ(mark.vertexCount, 16);
    EXPECT_EQ(mark.suggestionContent, QString()) << "a group of the wrong type";
    EXPECT_EQ(mark.vertices[2], AcGePoint3d()) << "an old vertex";
}

TEST_F(MarkDxf, TheCorpusIsReadOrRefusedAndWhatIsReadIsStable)
{
    const QDir corpus(tests::testDataPath(QStringLiteral("corpus/mark_dxf")));
    const QStringList names = corpus.entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString &name : names) {
        QuillnoteObj3 mark;
        const ResbufList groups = tests::groupsFromLines(tests::readFile(corpus.filePath(name)));
        EXPECT_EQ(read(mark, groups) != Acad::eOk, name.contains(u"refused")) << name.toStdString();
        QuillnoteObj3 again;
        EXPECT_EQ(read(again, written(mark)), Acad::eOk) << name.toStdString();
        EXPECT_EQ(differingMarkFields(again, mark), QStringList()) << name.toStdString();
    }
}
