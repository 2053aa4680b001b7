// Overlays: the painted copy, attaching it, what becomes of it when its file is gone, cleaning.
#include "quillnote/aids/drawing_difference.h"
#include "quillnote/aids/overlay_copy.h"
#include "quillnote/aids/recolouring.h"

#include "host/acap/docfile.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/dbxrefedit.h"
#include "host/aced/edselect.h"
#include "tests/quillnote/authoring/authoring_fixture.h"
#include "tests/support/files.h"
#include "tests/support/picture.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace
{

struct OverlayTest : AuthoringTest {
    OverlayTest()
    {
        settings::setNumber(u"DiTuColor", 8);
        for (const QString &name : copies())
            QFile::remove(QDir(QDir::tempPath()).filePath(name));
        drawing.reset();
        acDocManager()->newDocument();
        source = files.path("旧图.dxf");
        run("LINE", {"0,0", "100,50", ""});
        acdbCurDwg()->setHeaderVariable("$INSBASE", {{10, AcGePoint3d(7, 8, 0)}});
        addDefinitions(*acdbCurDwg());
        EXPECT_TRUE(acDocManager()->saveDocument(curDoc(), source));
        acDocManager()->closeDocument(curDoc());
        acDocManager()->newDocument();
    }
    ~OverlayTest() override
    {
        for (AcApDocument *const document : acDocManager()->allDocuments())
            acDocManager()->closeDocument(document);
    }
    static void addDefinitions(AcDbDatabase &database)
    {
        const AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
        for (const auto &[tag, flags] : {std::pair("SHOWN", 0), std::pair("HIDDEN", 1)}) {
            AcDbObjectId id;
            auto definition = acdbNewEntity("ATTDEF", {{100, QStringLiteral("AcDbText")},
                                                       {10, AcGePoint3d(20, 30, 0)},
                                                       {40, 2.5},
                                                       {1, QStringLiteral("default")},
                                                       {50, 30.0},
                                                       {100, QStringLiteral("AcDbAttributeDefinition")},
                                                       {3, QStringLiteral("?")},
                                                       {2, QString::fromLatin1(tag)},
                                                       {70, std::int64_t(flags)}});
            definition->setColorIndex(3);
            EXPECT_EQ(space->appendAcDbEntity(id, definition.get()), Acad::eOk);
            definition.release()->close();
        }
    }
    static QStringList copies()
    {
        return QDir(QDir::tempPath()).entryList({QStringLiteral("叠图_*")}, QDir::Files);
    }
    QString attach() const { return run("QN8_whiteAttach", {}, {QStringLiteral("file \"%1\"").arg(source)}); }

    tests::TempDir files;
    QString source;
};

} // namespace

TEST_F(OverlayTest, TheCopyIsPaintedAndTheDrawingIsOnlyRead)
{
    const QByteArray before = tests::readFile(source);
    attach();
    EXPECT_EQ(tests::readFile(source), before);
    ASSERT_EQ(copies().size(), 1);
    EXPECT_TRUE(copies().front().startsWith(u"叠图_旧图"));

    const std::vector<Overlay> overlays = overlaysOf(*acdbCurDwg());
    ASSERT_EQ(overlays.size(), 1U);
    EXPECT_EQ(overlays[0].name + QStringLiteral(".dxf"),
              QFileInfo(copies().front()).completeBaseName() + ".dxf");
    EXPECT_EQ(overlays[0].source, source);
    EXPECT_EQ(overlays[0].colorIndex, 8);

    const AcDbXref *const xref = acdbCurDwg()->xrefs().find(overlays[0].block);
    ASSERT_TRUE(xref && xref->database);
    std::map<QByteArray, int> kinds;
    const AcDbObjectPointer<AcDbBlockTableRecord> space(xref->database->modelSpaceId(), AcDb::kForRead);
    for (const AcDbObjectId id : space->entities()) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        EXPECT_EQ(entity->colorIndex(), 8);
        ++kinds[entity->dxfName()];
        if (entity->dxfName() == "TEXT") {
            EXPECT_EQ(findGroup(entity->groups(), 1)->text(), "SHOWN");
            EXPECT_EQ(findGroup(entity->groups(), 40)->real(), 2.5);
            EXPECT_EQ(entity->xData(kColorApplication.toString()).at(1).integer(), 3);
        }
    }
    EXPECT_EQ(kinds, (std::map<QByteArray, int>{{"LINE", 1}, {"TEXT", 1}}));

    // It lies where the drawing was.
    AcEdSelectionSet inserts;
    ASSERT_EQ(acedSSGet("X", nullptr, nullptr, {{0, QStringLiteral("INSERT")}}, inserts), RTNORM);
    AcDbExtents box;
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(inserts.front(), AcDb::kForRead)->getGeomExtents(box), Acad::eOk);
    EXPECT_TRUE(box.minPoint().isEqualTo({0, 0, 0}, 1e-9) && box.maxPoint().isEqualTo({100, 50, 0}, 1e-9));
    attach();
    EXPECT_EQ(overlaysOf(*acdbCurDwg()).size(), 2U) << "a second one has a name of its own";
}

TEST_F(OverlayTest, AClippedOneLooksLikeTheGoldenAndIsNoPartOfTheDrawing)
{
    run("LINE", {"20,45", "20,5", "100,5", ""});
    attach();
    run("QN8_xclip", {"0,0", "15,15"});
    run("QN8_xclip", {"25,-5", "80,45"});
    const AcDbObjectId space = acdbCurDwg()->modelSpaceId();
    const tests::Picture picture = tests::paintPicture(space, tests::planView(-10, -10, 480, 280, 4.0));
    EXPECT_TRUE(tests::matchesPicture(picture.image, QStringLiteral("quillnote/aids/clipped.png")));
    EXPECT_EQ(compareSpaces({}, {acdbCurDwg(), space}, 0.0).onlyNew.size(), 2U) << "the two lines";
}

TEST_F(OverlayTest, SaysWhyNothingWasAttached)
{
    EXPECT_TRUE(run("QN8_whiteAttach", {}, {"cancel", "ok"}).contains(u"未选中文件。"));
    source = files.write("no.dwg", "AC1027 and nothing else");
    EXPECT_TRUE(attach().contains(u"Open DWG Error."));
    EXPECT_TRUE(copies().isEmpty());
    EXPECT_FALSE(acdbCurDwg()->hasChanges());
    EXPECT_TRUE(run("QN8_xclip").contains(u"本图内还没有叠图。"));
    EXPECT_TRUE(run("QN8_overlayRenew").contains(u"没有缺少文件的叠图"));
}

TEST_F(OverlayTest, AMissingCopyIsSaidAndMadeAnew)
{
    attach();
    const QString plan = files.path("plan.dxf");
    ASSERT_TRUE(acDocManager()->saveDocument(curDoc(), plan));
    acDocManager()->closeDocument(curDoc());
    ASSERT_TRUE(QFile::remove(QDir(QDir::tempPath()).filePath(copies().front())));
    ASSERT_TRUE(acDocManager()->openDocument(plan));
    ASSERT_TRUE(run("QN8_overlayRenew").contains(u"重新生成"));
    ASSERT_EQ(copies().size(), 1);
    const AcDbXref xref = acdbCurDwg()->xrefs().all().at(0);
    EXPECT_EQ(xref.state, AcDbXrefState::loaded);
    EXPECT_EQ(QFileInfo(xref.file).fileName(), copies().front());

    ASSERT_TRUE(QFile::remove(QDir(QDir::tempPath()).filePath(copies().front())));
    ASSERT_TRUE(QFile::remove(source));
    EXPECT_TRUE(run("QN8_overlayRenew").contains(u"没有找到"));
}

TEST_F(OverlayTest, CopiesThatNobodyUsesAreCleanedAwayAfterADay)
{
    const QString folder = QDir::tempPath();
    const auto age = [&](const QString &name) {
        QFile file(QDir(folder).filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(
            file.setFileTime(QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime));
    };
    for (const QString &name : {QStringLiteral("叠图_a1234561.dwg"), QStringLiteral("叠图_young1234561.dxf"),
                                QStringLiteral("叠图_notes.txt"), QStringLiteral("叠图_mine.dwg")})
        tests::writeFile(QDir(folder).filePath(name), "x");
    attach();
    const QString used = overlaysOf(*acdbCurDwg()).at(0).name;
    for (const QString &name : copies()) {
        if (!name.contains(u"young"))
            age(name);
    }
    removeUnusedOverlays();
    EXPECT_EQ(copies().filter(QStringLiteral("叠图_a")).size(), 0);
    EXPECT_EQ(copies().size(), 4) << qPrintable(copies().join(u' '));

    // A drawing that was saved with it keeps it, also when it is not open.
    const QString plan = files.path("plan.dxf");
    ASSERT_TRUE(acDocManager()->saveDocument(curDoc(), plan));
    keepOverlaysFor(*acdbCurDwg(), plan);
    acDocManager()->closeDocument(curDoc());
    removeUnusedOverlays();
    EXPECT_EQ(copies().filter(used).size(), 1);
    ASSERT_TRUE(QFile::remove(plan));
    removeUnusedOverlays();
    EXPECT_EQ(copies().filter(used).size(), 0);
}
