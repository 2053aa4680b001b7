// Review marks in streams: every version, damage, values out of range.
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
    /// The full mark as an old record keeps it: the fields of newer versions have their defaults.
    std::unique_ptr<QuillnoteObj3> fullMarkOfVersion(int version, std::int16_t targetStyle)
    {
        auto expected = std::make_unique<QuillnoteObj3>();
        tests::setFullMark(*expected, *database);
        expected->targetStyle = targetStyle;
        if (version < 7)
            forgetVersion7(*expected);
        if (version < 6)
            forgetVersion6(*expected);
        if (version < 4)
            forgetVersion4(*expected);
        return expected;
    }
    static void forgetVersion7(QuillnoteObj3 &mark)
    {
        mark.normal = {0, 0, 1};
        mark.xDirection = {1, 0, 0};
        mark.targetCorner3 = mark.targetCorner4 = mark.flagPoint = {};
        mark.textBoxCorner1 = mark.textBoxCorner2 = mark.textBoxCorner3 = mark.textBoxCorner4 = {};
        mark.flagStyle = 101;
        mark.leaderMode = mark.reservedShort2 = mark.vertexCount = 0;
        mark.cornersValid = false;
        mark.reservedDouble = 0;
        mark.bigCategory.clear();
        mark.smallCategory.clear();
        mark.weight = 5;
    }
    static void forgetVersion6(QuillnoteObj3 &mark)
    {
        mark.snapEntityIds.clear();
        mark.snapChecksum.clear();
        mark.snapImage.clear();
        mark.fullImage.clear();
    }
    static void forgetVersion4(QuillnoteObj3 &mark)
    {
        mark.textHeight = 0;
        mark.leaderEnds = {};
        mark.leaderUsed = {};
        mark.editVersion = 1;
        mark.reservedShortA = mark.reservedShortB = 0;
        mark.reservedDoubleA = mark.reservedDoubleB = mark.reservedDoubleC = 0;
        mark.reservedPointA = mark.reservedPointB = mark.reservedPointC = {};
        mark.autoTextHeight = mark.reservedBoolA = mark.reservedBoolB = false;
    }

    std::unique_ptr<AcDbDatabase> database = tests::drawingOfStreams();
    tests::ScriptFrontEnd frontEnd;
    qsizetype position = 0;
};

TEST_F(MarkStream, TheCurrentVersionReadsAndWritesTheGoldenBytes)
{
    QuillnoteObj3 mark;
    ASSERT_EQ(read(mark, tests::version7Stream()), Acad::eOk);
    EXPECT_EQ(position, tests::version7Stream().size());

    QuillnoteObj3 expected;
    tests::setFullMark(expected, *database);
    ASSERT_FALSE(expected.snapEntityIds[0].isNull());
    EXPECT_EQ(differingMarkFields(mark, expected), QStringList());
    EXPECT_TRUE(tests::sameBytes(written(expected), tests::version7Stream()));
}

TEST_F(MarkStream, OldRecordsGetDefaultsAndAreWrittenAsTheCurrentVersion)
{
    struct Row {
        int version;
        QByteArray stream;
        std::int16_t targetStyle;
    };
    for (const Row &row : {Row{6, tests::version6Stream(2), 2}, Row{4, tests::version4Stream(), 2},
                           Row{3, tests::version3Stream(), 2}}) {
        SCOPED_TRACE(row.version);
        // What stood in the object before must not shine through.
        QuillnoteObj3 mark;
        tests::setFullMark(mark, *database);
        ASSERT_EQ(read(mark, row.stream), Acad::eOk);
        EXPECT_EQ(position, row.stream.size());
        EXPECT_EQ(mark.formatVersion, QuillnoteObj3::kFormatVersion);
        EXPECT_EQ(differingMarkFields(mark, *fullMarkOfVersion(row.version, row.targetStyle)), QStringList());

        QuillnoteObj3 again;
        ASSERT_EQ(read(again, written(mark)), Acad::eOk);
        EXPECT_EQ(differingMarkFields(again, mark), QStringList());
    }
}

TEST_F(MarkStream, AnOldLeaderMarkGetsATextBoxOverItsTarget)
{
    startUpSettings().BKstyle = 105;
    QuillnoteObj3 mark;
    ASSERT_EQ(read(mark, tests::version6Stream(-4)), Acad::eOk);
    startUpSettings().reset();

    EXPECT_EQ(mark.targetStyle, 0);
    EXPECT_EQ(mark.leaderMode, 1);
    EXPECT_EQ(mark.flagStyle, 105);
    EXPECT_FALSE(mark.cornersValid);
    EXPECT_EQ(mark.textBoxCorner1, AcGePoint3d(1, 2, 3));
    EXPECT_EQ(mark.textBoxCorner2, AcGePoint3d(4, 5, 0));
    EXPECT_EQ(mark.textBoxCorner3, AcGePoint3d(1, 5, 0));
}

TEST_F(MarkStream, ATextBoxBeginsAtTheLeftCorner)
{
    // Target corner 1 at x = 1 and corner 2 at x = 4 change places: the third double of each stays.
    QByteArray stream = tests::version6Stream(-4);
    const QByteArray one = QByteArray::fromHex("000000000000f03f");
    const QByteArray four = QByteArray::fromHex("0000000000001040");
    stream.replace(stream.indexOf(four), 8, one);
    stream.replace(stream.indexOf(one), 8, four);
    QuillnoteObj3 mark;
    ASSERT_EQ(read(mark, stream), Acad::eOk);
    EXPECT_EQ(mark.textBoxCorner1, AcGePoint3d(1, 5, 6));
    EXPECT_EQ(mark.textBoxCorner2, AcGePoint3d(4, 2, 0));
    EXPECT_EQ(mark.textBoxCorner3, AcGePoint3d(1, 2, 0));
}

TEST_F(MarkStream, ANewerRecordIsRefusedAndLeftAlone)
{
    QByteArray stream = tests::version7Stream();
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
    for (const QByteArray &whole :
         {tests::version7Stream(), tests::version6Stream(2), tests::version3Stream()}) {
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
    EXPECT_EQ(read(mark, tests::version7Stream().left(12)), Acad::eEndOfFile);
    EXPECT_EQ(mark.markNumber, 12);
    EXPECT_TRUE(std::exchange(frontEnd.printed, {})
                    .contains(QStringLiteral("@%1:").arg(markField(u"suggestionContent").row.line)));
}

TEST_F(MarkStream, ValuesOutOfRangeAreSettled)
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
        mark.targetStyle = static_cast<std::int16_t>(style);
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
    AcDbMemoryFiler in(AcDb::kIdXlateFiler, database.get(), tests::version7Stream());
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
