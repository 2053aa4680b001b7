// Review marks in streams: every version, damage, values out of range.
#include "quillnote/entity/field_walk.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "tests/quillnote/entity/mark_streams.h"
#include "tests/support/files.h"
#include "tests/support/golden.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <QDir>

class MarkStream : public testing::Test
{
protected:
    MarkStream() { registerMarkClass(); }

    Acad::ErrorStatus read(QuillnoteObj3 &mark, const QByteArray &stream)
    {
        AcDbMemoryFiler filer(AcDb::kFileFiler, database.get(), stream);
        const Acad::ErrorStatus status = mark.dwgInFields(&filer);
        position = filer.position();
        return status;
    }
    QByteArray written(const QuillnoteObj3 &mark)
    {
        AcDbMemoryFiler filer(AcDb::kFileFiler, database.get());
        EXPECT_EQ(mark.dwgOutFields(&filer), Acad::eOk);
        return filer.stream();
    }
    std::unique_ptr<AcDbDatabase> database = tests::drawingOfStreams();
    tests::ScriptFrontEnd frontEnd;
    qsizetype position = 0;
};

TEST_F(MarkStream, TheCurrentVersionReadsAndWritesTheGoldenBytes)
{
    QuillnoteObj3 mark;
    ASSERT_EQ(read(mark, tests::markStream()), Acad::eOk);
    EXPECT_EQ(position, tests::markStream().size());
    EXPECT_TRUE(tests::matchesGolden(tests::fieldLines(mark).toUtf8(), "quillnote/entity/full_mark.txt"));
    EXPECT_TRUE(tests::sameBytes(written(mark), tests::markStream()));
}

TEST_F(MarkStream, OldRecordsGetDefaultsAndAreWrittenAsTheCurrentVersion)
{
    QuillnoteObj3 full;
    tests::setFullMark(full, *database);
    const QuillnoteObj3 fresh;
    for (const int version : {6, 4, 3}) {
        SCOPED_TRACE(version);
        // What stood in the object before must not shine through.
        QuillnoteObj3 mark;
        tests::setFullMark(mark, *database);
        ASSERT_EQ(read(mark, tests::markStream(version)), Acad::eOk);
        EXPECT_EQ(position, tests::markStream(version).size());
        EXPECT_EQ(mark.formatVersion, QuillnoteObj3::kFormatVersion);
        for (const MarkField &field : markFields()) {
            EXPECT_TRUE(fields::sameField(mark, field.since > version ? fresh : full, field))
                << field.name.toString().toStdString();
        }
        QuillnoteObj3 again;
        ASSERT_EQ(read(again, written(mark)), Acad::eOk);
        EXPECT_EQ(differingMarkFields(again, mark), QStringList());
    }
}

TEST_F(MarkStream, AnOldLeaderMarkGetsATextBoxOverItsTarget)
{
    startUpSettings().BKstyle = 105;
    QuillnoteObj3 mark;
    ASSERT_EQ(read(mark, tests::markStream(6, -4)), Acad::eOk);
    startUpSettings().reset();
    EXPECT_EQ(mark.targetStyle, TargetStyle::none);
    EXPECT_EQ(mark.leaderMode, LeaderMode::leader);
    EXPECT_EQ(mark.flagStyle, FrameStyle::thickWaves);
    EXPECT_EQ(mark.textBoxCorner1, AcGePoint3d(1, 2, 3));
    EXPECT_EQ(mark.textBoxCorner2, AcGePoint3d(4, 5, 0));
    EXPECT_EQ(mark.textBoxCorner3, AcGePoint3d(1, 5, 0));

    // Corner 1 at x = 1 and corner 2 at x = 4 change places: the box begins at the left one.
    QByteArray stream = tests::markStream(6, -4);
    const QByteArray one = QByteArray::fromHex("000000000000f03f");
    const QByteArray four = QByteArray::fromHex("0000000000001040");
    stream.replace(stream.indexOf(four), 8, one);
    stream.replace(stream.indexOf(one), 8, four);
    ASSERT_EQ(read(mark, stream), Acad::eOk);
    EXPECT_EQ(mark.textBoxCorner1, AcGePoint3d(1, 5, 6));
    EXPECT_EQ(mark.textBoxCorner2, AcGePoint3d(4, 2, 0));
    EXPECT_EQ(mark.textBoxCorner3, AcGePoint3d(1, 2, 0));
}

TEST_F(MarkStream, ANewerRecordIsRefusedAndLeftAlone)
{
    QByteArray stream = tests::markStream();
    stream[0] = char(QuillnoteObj3::kFormatVersion + 1);
    QuillnoteObj3 mark;
    const QuillnoteObj3 untouched;
    EXPECT_EQ(read(mark, stream), Acad::eMakeMeProxy);
    EXPECT_TRUE(std::exchange(frontEnd.printed, {}).startsWith(u"请安装更高版本评图标签软件！\nhttp"));
    mark.createTime = untouched.createTime;
    EXPECT_EQ(differingMarkFields(mark, untouched), QStringList());
}

TEST_F(MarkStream, EveryTruncationIsRefusedWithTheRowOfItsField)
{
    for (const QByteArray &whole : {tests::markStream(), tests::markStream(6), tests::markStream(3)}) {
        for (qsizetype size = 0; size < whole.size(); ++size) {
            QuillnoteObj3 mark;
            ASSERT_EQ(read(mark, whole.left(size)), Acad::eEndOfFile) << size;
            const QString line = std::exchange(frontEnd.printed, {});
            ASSERT_TRUE(line.startsWith(u"\n!mark_fields.cpp@") && line.endsWith(u": eEndOfFile"))
                << line.toStdString();
            ASSERT_EQ(mark.formatVersion, QuillnoteObj3::kFormatVersion);
        }
    }
    // Opinion missing: what came before is kept, the row is named.
    QuillnoteObj3 mark;
    EXPECT_EQ(read(mark, tests::markStream().left(12)), Acad::eEndOfFile);
    EXPECT_EQ(mark.markNumber, 12);
    EXPECT_TRUE(std::exchange(frontEnd.printed, {})
                    .contains(QStringLiteral("@%1:").arg(markField(u"suggestionContent").row.line)));
}

TEST_F(MarkStream, ValuesOutOfRangeAreRepaired)
{
    struct Row {
        std::int16_t QuillnoteObj3::*field;
        std::int16_t filed;
        std::int16_t expected;
    };
    const Row rows[] = {
        {&QuillnoteObj3::weight, 0, 5},        {&QuillnoteObj3::weight, 11, 5},
        {&QuillnoteObj3::weight, 1, 1},        {&QuillnoteObj3::editVersion, 300, 1},
        {&QuillnoteObj3::editVersion, -1, 1},  {&QuillnoteObj3::editVersion, 0, 0},
        {&QuillnoteObj3::vertexCount, 20, 16}, {&QuillnoteObj3::vertexCount, -3, 0},
    };
    for (const Row &row : rows) {
        QuillnoteObj3 mark;
        tests::setFullMark(mark, *database);
        mark.*row.field = row.filed;
        QuillnoteObj3 again;
        ASSERT_EQ(read(again, written(mark)), Acad::eOk);
        EXPECT_EQ(again.*row.field, row.expected) << row.filed;
        EXPECT_EQ(again.fullImage, mark.fullImage);
    }
    QuillnoteObj3 mark;
    mark.chPwMD5 = QString(40, u'a');
    QuillnoteObj3 again;
    ASSERT_EQ(read(again, written(mark)), Acad::eOk);
    EXPECT_EQ(again.chPwMD5, QString(32, u'a'));
}

TEST_F(MarkStream, VerticesAreFiledOnlyForPolygonsWithTwo)
{
    for (const auto &[style, count, filed] :
         {std::tuple{51, 1, 0}, std::tuple{51, 2, 2}, std::tuple{54, 16, 16}, std::tuple{50, 5, 0},
          std::tuple{2, 5, 0}}) {
        QuillnoteObj3 mark;
        const qsizetype without = written(mark).size();
        mark.targetStyle = TargetStyle(style);
        mark.vertexCount = static_cast<std::int16_t>(count);
        for (std::size_t i = 0; i < mark.vertices.size(); ++i)
            mark.vertices[i] = {double(i), 1, 2};
        EXPECT_EQ(written(mark).size(), without + 24 * filed) << style << ' ' << count;
        QuillnoteObj3 again;
        ASSERT_EQ(read(again, written(mark)), Acad::eOk);
        EXPECT_EQ(differingMarkFields(again, mark), QStringList());
    }
}

TEST_F(MarkStream, AnIdTranslationFilerSeesNothing)
{
    QuillnoteObj3 mark;
    AcDbMemoryFiler out(AcDb::kIdXlateFiler, database.get());
    EXPECT_EQ(mark.dwgOutFields(&out), Acad::eOk);
    EXPECT_TRUE(out.stream().isEmpty());
    AcDbMemoryFiler in(AcDb::kIdXlateFiler, database.get(), tests::markStream());
    EXPECT_EQ(mark.dwgInFields(&in), Acad::eOk);
    EXPECT_EQ(in.position(), 0);
    EXPECT_EQ(mark.markNumber, 1);
}

namespace
{
/// Takes no text.
class NoTextFiler : public AcDbMemoryFiler
{
public:
    using AcDbMemoryFiler::AcDbMemoryFiler;
    Acad::ErrorStatus writeString(const QString &) override { return Acad::eFilerError; }
};
} // namespace

TEST_F(MarkStream, WritingEndsAtTheFirstFailure)
{
    QuillnoteObj3 mark;
    NoTextFiler filer(AcDb::kFileFiler, database.get());
    EXPECT_EQ(mark.dwgOutFields(&filer), Acad::eFilerError);
    EXPECT_EQ(filer.stream().size(), 9);
    EXPECT_EQ(
        std::exchange(frontEnd.printed, {}),
        QStringLiteral("\n!mark_fields.cpp@%1: eFilerError").arg(markField(u"suggestionContent").row.line));
}

TEST_F(MarkStream, TheCorpusIsReadOrRefusedAndWhatIsReadIsStable)
{
    const QDir corpus(tests::testDataPath(QStringLiteral("corpus/mark_dwg")));
    const QStringList names = corpus.entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString &name : names) {
        QuillnoteObj3 mark;
        const Acad::ErrorStatus status = read(mark, tests::readFile(corpus.filePath(name)));
        const bool damaged =
            name.contains(u"beyond_end") || name.contains(u"overflows") || name.contains(u"refused");
        EXPECT_EQ(status != Acad::eOk, damaged) << name.toStdString();
        QuillnoteObj3 again;
        EXPECT_EQ(read(again, written(mark)), Acad::eOk) << name.toStdString();
        EXPECT_EQ(differingMarkFields(again, mark), QStringList()) << name.toStdString();
    }
}
