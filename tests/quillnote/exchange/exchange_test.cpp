// Marks and ticks from one drawing to another: by command, by force, twice, into locked layers, past
// passwords.
#include "quillnote/aids/tick_symbols.h"
#include "quillnote/exchange/exchange_files.h"
#include "quillnote/exchange/export_marks.h"
#include "quillnote/exchange/import_marks.h"
#include "quillnote/exchange/synchronisation.h"

#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/entity/mark_values.h"

#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edinput.h"
#include "tests/quillnote/authoring/authoring_fixture.h"
#include "tests/support/files.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <set>

struct ExchangeTest : AuthoringTest {
    ExchangeTest() { settings::setText(u"synFileUploadPath", folder.path(QStringLiteral("sync"))); }
    ~ExchangeTest() override
    {
        synchronisation().reset();
        settings::setText(u"synFileUploadPath", u"");
    }

    /// A drawing with a fingerprint and the block of the green tick, current until the next one.
    void openDrawing(const char *fingerprint, const QString &name = {})
    {
        tests::MemoryDrawing fresh;
        fresh.headerVariable("$FINGERPRINTGUID", {{2, fingerprint}});
        fresh.block("QuillnoteYesGreen");
        drawing =
            std::make_unique<tests::OpenDrawing>(fresh.open(), name.isEmpty() ? name : folder.path(name));
    }
    QString written(const QString &name, const QByteArray &bytes) const
    {
        tests::writeFile(folder.path(name), bytes);
        return folder.path(name);
    }
    /// What the current drawing's marks say, without what data files leave out.
    QStringList markLines() const
    {
        QStringList lines;
        for (const AcDbObjectId id : collectMarks(database()).ids) {
            const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
            QString line = mark->layer();
            for (const auto &[name, value] : markFieldValues(*mark)) {
                if (!name.startsWith(u"snap") && name != u"fullImage" && name != u"autoTextHeight")
                    line +=
                        u' ' + name +
                        QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
            }
            lines.append(line);
        }
        return lines;
    }
    tests::TempDir folder;
};

TEST_F(ExchangeTest, CarriesMarksAndTicksToTheOtherCopy)
{
    openDrawing("{F1}", QStringLiteral("a.dxf"));
    make(QStringLiteral("张工"), QStringLiteral("门宽\n不足"));
    AcDbObjectPointer<QuillnoteObj3>(make(QStringLiteral("李工")), AcDb::kForWrite)->feedbackContent =
        QStringLiteral("已改");
    insertTick(database(), {QStringLiteral("QuillnoteYesGreen"), {3, 4, 5}, {0, 0, -1}, 0.5, {100, 100, 1}});
    const QStringList before = markLines();
    const QString file = folder.path(QStringLiteral("a.Quillnote"));
    EXPECT_EQ(run(QStringLiteral("QN3_DataFileOut"), {}, {QStringLiteral("ok")}),
              QStringLiteral("\n评图标签独立信息文件:\n\n%1  \n\n已成功保存。").arg(file));

    openDrawing("{F1}");
    runAndBack(QStringLiteral("QN3_DataFileIn"), {}, {QStringLiteral("file \"%1\"").arg(file)});
    EXPECT_EQ(markLines(), before);
    EXPECT_EQ(ticksOf(database()).size(), 1U);
    EXPECT_EQ(ticksOf(database()).front().position, AcGePoint3d(3, 4, 5));
    EXPECT_EQ(readLastMarkNumber(database()), 2);
    run(QStringLiteral("QN3_DataFileIn"), {}, {QStringLiteral("file \"%1\"").arg(file)});
    EXPECT_EQ(markLines(), before);
}

TEST_F(ExchangeTest, AsksAboutForeignAndDamagedFiles)
{
    openDrawing("{F1}");
    make();
    QByteArray bytes = encodeMarkData(marksOf(database()));
    const QString good = written(QStringLiteral("good.Quillnote"), bytes);
    bytes[146] = char(bytes[146] + 1);
    const QString damaged = written(QStringLiteral("damaged.Quillnote"), bytes);
    const auto import = [this](const QString &path, const QStringList &answers) {
        openDrawing("{F2}");
        const QString printed = run(QStringLiteral("QN3_DataFileIn"), {},
                                    QStringList(QStringLiteral("file \"%1\"").arg(path)) + answers);
        EXPECT_TRUE(printed.contains(u"指纹错误"));
        return collectMarks(database()).ids.size();
    };
    EXPECT_EQ(import(good, {QStringLiteral("no")}), 0U);
    EXPECT_EQ(import(good, {QStringLiteral("yes")}), 1U);
    EXPECT_EQ(import(damaged, {QStringLiteral("yes"), QStringLiteral("no")}), 0U);
    EXPECT_EQ(import(damaged, {QStringLiteral("yes"), QStringLiteral("yes")}), 1U);

    openDrawing("{F2}");
    EXPECT_EQ(run(QStringLiteral("-QN3_DataFileIn"), {damaged}), QString());
    EXPECT_EQ(collectMarks(database()).ids.size(), 1U);
    EXPECT_FALSE(QFile::exists(damaged));
    const QString other = written(QStringLiteral("plan.dxf"), "0\nEOF\n");
    EXPECT_EQ(run(QStringLiteral("-QN3_DataFileIn"), {other}),
              QStringLiteral("\n读取<%1>错误2，不是Quillnote数据文件。").arg(other));
    EXPECT_TRUE(QFile::exists(other));
}

TEST_F(ExchangeTest, LayersOfMarksAreMadeVisibleAndWritable)
{
    openDrawing("{F1}");
    make();
    MarkData data = marksOf(database());
    data.marks.front().layer = QStringLiteral("审图");
    data.marks.front().layerColor = 256;
    data.marks.front().mark->GUID = QStringLiteral("{new}");
    importMarkData(database(), std::move(data));
    const AcDbObjectId id = database().tableRecord(SymbolTable::layer, QStringLiteral("审图"));
    ASSERT_TRUE(id.isValid());
    {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
        EXPECT_EQ(layer->colorIndex(), 2);
        layer->setIsOff(true);
        layer->setIsFrozen(true);
        layer->setIsLocked(true);
    }
    MarkData again = marksOf(database());
    again.marks.erase(again.marks.begin());
    EXPECT_EQ(importMarkData(database(), std::move(again)).marks.size(), 1U);
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
    EXPECT_FALSE(layer->isOff() || layer->isFrozen() || layer->isLocked());
    EXPECT_EQ(collectMarks(database()).ids.size(), 2U);
}

TEST_F(ExchangeTest, ProtectedMarksStayUnlessTheNewerStateHasTheirPassword)
{
    openDrawing("{F1}");
    const AcDbObjectId id = make();
    const auto protect = [&](const QString &hash, bool erasable) {
        AcDbObjectPointer<QuillnoteObj3> mark(collectMarks(database()).ids.front(), AcDb::kForWrite);
        mark->chPwMD5 = hash;
        mark->erasable = erasable;
    };
    const auto importWith = [&](const QString &hash) {
        MarkData data = marksOf(database());
        data.marks.front().mark->chPwMD5 = hash;
        data.marks.front().mark->erasable = true;
        return importMarkData(database(), std::move(data));
    };
    protect(hashPassword(QStringLiteral("a")), true);
    EXPECT_EQ(importWith(hashPassword(QStringLiteral("a"))).marks.size(), 1U);
    EXPECT_TRUE(id.isErased());
    {
        tests::ScriptFrontEnd cancelling({}, {QStringLiteral("cancel")});
        EXPECT_EQ(importWith({}).kept, 1U);
    }
    protect({}, false);
    EXPECT_EQ(importWith({}).kept, 1U);
    EXPECT_EQ(collectMarks(database()).ids.size(), 1U);
}

TEST_F(ExchangeTest, ErasesWhatADeletionFileNames)
{
    openDrawing("{F1}");
    const AcDbObjectId id = make();
    make();
    const QString guid = AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->GUID;
    run(QStringLiteral("-QN3_DataFileIn"),
        {written(QStringLiteral("d.quillNote"), encodeErasedMarks({QStringLiteral("{unknown}"), guid}))});
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(collectMarks(database()).ids.size(), 1U);
    EXPECT_EQ(run(QStringLiteral("-QN3_DataFileIn"),
                  {written(QStringLiteral("e.quillNote"), encodeErasedMarks({}))}),
              QStringLiteral("\n同步删除评图标签时读取记录条目数为0。报告错误"));
}

/// Takes what lies in the synchronisation folder into the current drawing, in the order of writing. Names of
/// the same millisecond count up.
static int deliver(const QString &folder)
{
    int files = 0;
    QFileInfoList arrived = QDir(folder).entryInfoList(QDir::Files);
    std::ranges::stable_sort(arrived, {}, [](const QFileInfo &file) { return file.lastModified(); });
    for (const QFileInfo &file : arrived) {
        ++files;
        EXPECT_EQ(importMarkDataFile(file.filePath(), WhenInDoubt::import), ImportedFile::whole);
        QFile::remove(file.filePath());
    }
    return files;
}

TEST_F(ExchangeTest, EveryChangeOfAMarkReachesTheOtherCopyAndNothingComesBack)
{
    const QString sync = folder.path(QStringLiteral("sync"));
    openDrawing("{F1}");
    auto theirs = std::move(drawing);
    openDrawing("{F1}");
    const auto send = [&](const char *what, int files) {
        const QStringList here = markLines();
        acDocManager()->activateDocument(&theirs->document());
        std::swap(drawing, theirs);
        EXPECT_EQ(deliver(sync), files) << what;
        EXPECT_EQ(markLines(), here) << what;
        EXPECT_TRUE(QDir(sync).isEmpty(QDir::Files)) << what;
        std::swap(drawing, theirs);
        acDocManager()->activateDocument(&drawing->document());
    };
    run(QStringLiteral("QN8_SynningOff"));
    make();
    EXPECT_TRUE(QDir(sync).isEmpty(QDir::Files));
    run(QStringLiteral("QN8_SynningOn"));
    send("a mark that they never had", 1);
    AcDbObjectPointer<QuillnoteObj3>(collectMarks(database()).ids.front(), AcDb::kForWrite)->feedbackType = 1;
    send("a status", 1);
    const AcDbObjectId id = make();
    send("a new mark", 1);
    AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForWrite)->feedbackContent = QStringLiteral("已改");
    send("an answer", 1);
    AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForWrite)->close();
    send("opened and not changed", 0);
    closeStep();
    run(QStringLiteral("COPY"), {QStringLiteral("handle %1").arg(id.handle().value, 0, 16),
                                 {},
                                 QStringLiteral("0,0"),
                                 QStringLiteral("50,0"),
                                 {}});
    send("a copy, which is made and then moved", 2);
    run(QStringLiteral("U"));
    send("the copy taken back", 1);
    closeStep();
    run(QStringLiteral("ERASE"), {QStringLiteral("handle %1").arg(id.handle().value, 0, 16), {}});
    send("erased", 1);
    run(QStringLiteral("U"));
    send("and back again", 1);
    run(QStringLiteral("QN8_SynningOff"));
    make();
    EXPECT_TRUE(QDir(sync).isEmpty(QDir::Files));
}

TEST_F(ExchangeTest, SaysWhenThereIsNothingToWriteOrNowhere)
{
    openDrawing("{F1}");
    make();
    EXPECT_EQ(run(QStringLiteral("QN3_DataFileOut")),
              QStringLiteral("\n请先命名并保存本文件后，再执行本命令。"));
    openDrawing("{F1}", QStringLiteral("empty.dxf"));
    EXPECT_EQ(run(QStringLiteral("QN3_DataFileOut")), QStringLiteral("\n未保存！"));
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral("empty.Quillnote"))));
}

TEST_F(ExchangeTest, FileNamesAreNotInUseAndFoldersAreMade)
{
    const QString made = folder.path(QStringLiteral("new/one"));
    const QString first = unusedFileName(made, QStringLiteral("P_"), QStringLiteral("txt"));
    EXPECT_TRUE(first.startsWith(made + QStringLiteral("/P_")) && first.endsWith(QStringLiteral("1.txt")));
    const QString blocked = written(QStringLiteral("file"), "x");
    tests::ScriptFrontEnd script({}, {QStringLiteral("ok"), QStringLiteral("ok")});
    EXPECT_TRUE(unusedFileName(blocked, QStringLiteral("P_"), {}).startsWith(QDir::tempPath()));
    EXPECT_EQ(script.printed, QStringLiteral("\n创建文件夹 %1 失败.").arg(blocked));
    settings::setText(u"synFileUploadPath", blocked);
    script.printed.clear();
    EXPECT_EQ(synchronisationFolder(FolderTest::write), QString());
    EXPECT_EQ(settings::text(u"synFileUploadPath"), QString());
}

TEST_F(ExchangeTest, AHundredCopiesAreMarksOfTheirOwnAndGoWithOneUndo)
{
    const QString sync = folder.path(QStringLiteral("sync"));
    openDrawing("{F1}");
    const AcDbObjectId id = make();
    run(QStringLiteral("QN8_SynningOn"));
    closeStep();
    QStringList answers{QStringLiteral("handle %1").arg(id.handle().value, 0, 16), {}, QStringLiteral("0,0")};
    for (int i = 1; i <= 100; ++i)
        answers << QStringLiteral("%1,0").arg(50 * i);
    run(QStringLiteral("COPY"), answers << QString());
    std::set<QString> guids, numbers;
    for (const AcDbObjectId each : collectMarks(database()).ids) {
        const AcDbObjectPointer<QuillnoteObj3> mark(each, AcDb::kForRead);
        guids.insert(mark->GUID);
        numbers.insert(markNumberText(mark->markNumber, mark->subNumber));
    }
    EXPECT_EQ(guids.size(), 101U);
    EXPECT_EQ(numbers.size(), 101U);
    EXPECT_TRUE(numbers.contains(QStringLiteral("1.101")));
    run(QStringLiteral("U"));
    EXPECT_EQ(collectMarks(database()).ids.size(), 1U);
    const auto erased = QDir(sync).entryList({QStringLiteral("QnSysnning_Del*")}, QDir::Files);
    EXPECT_EQ(erased.size(), 100);
}

TEST_F(ExchangeTest, SwitchingOnSendsWhatChangedSinceTheDrawingWasSaved)
{
    const QString sync = folder.path(QStringLiteral("sync"));
    const QString path = folder.path(QStringLiteral("plan.dxf"));
    drawing.reset();
    AcApDocument *const fresh = acDocManager()->newDocument();
    NewMark request;
    request.corner2 = {20, 10, 0};
    for (int i = 0; i < 3; ++i)
        createMark(*fresh->database(), request);
    run(QStringLiteral("QN8_SynningOn"));
    EXPECT_EQ(QDir(sync).entryList(QDir::Files).size(), 3);
    ASSERT_TRUE(acDocManager()->saveDocument(fresh, path).ok());
    acDocManager()->closeDocument(fresh);
    run(QStringLiteral("QN8_SynningOff"));
    for (const QString &name : QDir(sync).entryList(QDir::Files))
        QFile::remove(QDir(sync).filePath(name));

    const auto opened = acDocManager()->openDocument(path);
    ASSERT_TRUE(opened.ok());
    run(QStringLiteral("QN8_SynningOn"));
    EXPECT_TRUE(QDir(sync).isEmpty(QDir::Files)) << "the drawing is as it was";
    run(QStringLiteral("QN8_SynningOff"));
    const auto marks = collectMarks(*acdbCurDwg()).ids;
    AcDbObjectPointer<QuillnoteObj3>(marks[0], AcDb::kForWrite)->feedbackContent = QStringLiteral("已改");
    AcDbObjectPointer<QuillnoteObj3>(marks[1], AcDb::kForWrite)->erase();
    run(QStringLiteral("QN8_SynningOn"));
    EXPECT_EQ(QDir(sync).entryList(QDir::Files).size(), 2);
    EXPECT_EQ(QDir(sync).entryList({QStringLiteral("QnSysnning_Del*")}, QDir::Files).size(), 1);
    acDocManager()->closeDocument(*opened);
}
