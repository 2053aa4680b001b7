// External references: drawings that another one shows, how they are found, read, changed and seen.
#include "host/acdb/dbclip.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/dbxrefedit.h"
#include "host/acgi/query/install.h"
#include "host/acgi/query/spatial_index.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/whole_drawing.h"

#include <gmock/gmock.h>

#include <QFileInfo>

#include <map>
#include <random>

using tests::Groups;
using tests::MemoryDrawing;

namespace
{

/// A drawing with references to others, each inserted at its origin.
struct Drawing {
    struct Reference {
        QString name;
        QString path;
        bool isOverlay;
    };
    MemoryDrawing content;
    std::vector<Reference> references;

    void refer(const char *name, const QString &path, bool isOverlay = false)
    {
        content.entity("INSERT", {{2, name}, {10, AcGePoint3d(0, 0, 0)}});
        references.push_back({QString::fromLatin1(name), path, isOverlay});
    }
    std::unique_ptr<AcDbDatabase> open() const
    {
        auto database = content.open();
        for (const Reference &each : references)
            acdbAttachXref(*database, each.name, each.path, each.isOverlay);
        return database;
    }
};

/// What files hold, by their names; how often each was read.
std::map<QString, Drawing> s_drawings;
std::map<QString, int> s_reads;

base::Result<std::unique_ptr<AcDbDatabase>, QString> readMemory(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    ++s_reads[name];
    const auto found = s_drawings.find(name);
    if (found == s_drawings.end())
        return base::Failure{path + QStringLiteral(": no drawing")};
    return found->second.open();
}

Drawing lineDrawing(const AcGePoint3d &to, const char *layer = "WALL")
{
    Drawing drawing;
    drawing.content.layer(layer, {.flags = 0, .color = 3});
    drawing.content.entity("LINE", {{8, layer}, {10, AcGePoint3d(0, 0, 0)}, {11, to}});
    return drawing;
}

class Xrefs : public testing::Test
{
protected:
    Xrefs()
    {
        acdbSetDrawingReader(readMemory);
        s_drawings.clear();
        s_reads.clear();
    }
    ~Xrefs() override { acdbSetDrawingReader(nullptr); }

    QString file(const QString &name, Drawing content)
    {
        s_drawings.insert_or_assign(name, std::move(content));
        return folder.write(name, "a drawing");
    }
    std::unique_ptr<AcDbDatabase> open(const Drawing &drawing) const
    {
        auto database = drawing.open();
        database->setFile(folder.path(QStringLiteral("host.dxf")));
        return database;
    }
    static AcDbObjectId block(const AcDbDatabase &database, const char *name)
    {
        return database.tableRecord(SymbolTable::block, QString::fromLatin1(name));
    }
    static AcDbExtents extents(AcDbDatabase &database)
    {
        return acgi::spatialIndexOf(database).extents(database.modelSpaceId());
    }

    tests::TempDir folder;
};

} // namespace

TEST_F(Xrefs, AreReadOnceAndSeenByWhoeverWalksBlocks)
{
    file("leaf.dxf", lineDrawing({7, 30, 0}));
    Drawing mid = lineDrawing({20, 5, 0});
    mid.refer("LEAF", "leaf.dxf");
    file("mid.dxf", std::move(mid));
    Drawing host;
    host.refer("MID", "old\\place\\mid.dxf");
    host.refer("LEAF", folder.path("leaf.dxf"));
    host.content.entity("INSERT", {{2, "LEAF"}, {10, AcGePoint3d(0, 0, 0)}});
    const auto database = open(host);

    const std::uint64_t changes = database->changeCount();
    EXPECT_EQ(s_reads.size(), 0u) << "nobody looked yet";
    EXPECT_EQ(extents(*database).maxPoint(), AcGePoint3d(20, 30, 0));
    EXPECT_THAT(s_reads, testing::ElementsAre(testing::Pair(QString("leaf.dxf"), 1),
                                              testing::Pair(QString("mid.dxf"), 1)));
    EXPECT_EQ(database->changeCount(), changes);
    EXPECT_EQ(acgi::spatialIndexOf(*database).atPoint(database->modelSpaceId(), {3.5, 15, 0}, 0.1).size(),
              3u);
    EXPECT_EQ(database->xrefs().nested().size(), 1u);
}

TEST_F(Xrefs, ThatShowNothingSayWhy)
{
    Drawing ring = lineDrawing({1, 1, 0});
    ring.refer("BACK", "ring2.dxf");
    file("ring1.dxf", ring);
    Drawing other = lineDrawing({2, 2, 0});
    other.refer("RING1", "ring1.dxf");
    other.refer("HOST", "host.dxf");
    other.refer("OVER", "ring1.dxf", true);
    file("ring2.dxf", other);
    folder.write("host.dxf", "a drawing");
    folder.write("broken.dxf", "x");
    Drawing host;
    for (const char *const name : {"ring1.dxf", "gone.dxf", "broken.dxf", "host.dxf"})
        host.refer(name, QString::fromLatin1(name));
    const auto database = open(host);

    QStringList states;
    for (const AcDbXref &xref : database->xrefs().all())
        states << xref.name + u' ' + QString::number(int(xref.state));
    for (const AcDbXref &xref : database->xrefs().nested())
        states << u'>' + xref.name + u' ' + QString::number(int(xref.state));
    const auto state = [](AcDbXrefState which) { return QString::number(int(which)); };
    const QString circular = state(AcDbXrefState::circular);
    EXPECT_EQ(states, QStringList({"ring1.dxf " + state(AcDbXrefState::loaded),
                                   "gone.dxf " + state(AcDbXrefState::notFound),
                                   "broken.dxf " + state(AcDbXrefState::refused), "host.dxf " + circular,
                                   ">BACK " + state(AcDbXrefState::loaded), ">RING1 " + circular,
                                   ">HOST " + circular, ">OVER " + state(AcDbXrefState::unloaded)}));
    EXPECT_TRUE(extents(*database).isValid());
}

TEST_F(Xrefs, AreAttachedUnloadedAndDetachedAsStepsOfUndo)
{
    const QString path = file("plan.dxf", lineDrawing({40, 50, 0}));
    const auto database = open(lineDrawing({1, 1, 0}, "OWN"));
    const auto step = [&](const auto &work) {
        const AcDbUndoGroup group(*database, QStringLiteral("STEP"));
        work();
    };
    const auto before = tests::wholeDrawing(*database);
    AcDbObjectId plan;
    step([&] {
        plan = acdbAttachXref(*database, "PLAN", path, false);
        acdbTakeXrefRecords(*database, *database->xrefs().find(plan));
        AcDbObjectPointer<AcDbBlockTableRecord> space(database->modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId added;
        auto insert = acdbNewEntity(
            "INSERT",
            {{100, QString("AcDbBlockReference")}, {2, QString("PLAN")}, {10, AcGePoint3d(100, 0, 0)}});
        space->appendAcDbEntity(added, insert.get());
        insert.release()->close();
    });
    const AcGePoint3d shown(140, 50, 0);
    EXPECT_EQ(extents(*database).maxPoint(), shown);
    AcDbObjectPointer<AcDbLayerTableRecord> layer(database->tableRecord(SymbolTable::layer, "PLAN|WALL"),
                                                  AcDb::kForRead);
    ASSERT_TRUE(layer);
    EXPECT_EQ(layer->colorIndex(), 3);
    EXPECT_EQ(layer->flags() & 16, 16);
    layer.close();

    step([&] { acdbSetXrefUnloaded(plan, true); });
    EXPECT_EQ(extents(*database).maxPoint(), AcGePoint3d(1, 1, 0));
    database->undo().undo();
    EXPECT_EQ(extents(*database).maxPoint(), shown);

    step([&] { EXPECT_EQ(acdbDetachXref(*database, plan), Acad::eOk); });
    EXPECT_EQ(tests::wholeDifference(tests::wholeDrawing(*database), before), QStringList());
    database->undo().undo();
    EXPECT_EQ(extents(*database).maxPoint(), shown);
    database->undo().undo();
    EXPECT_EQ(tests::wholeDifference(tests::wholeDrawing(*database), before), QStringList());
    EXPECT_EQ(s_reads["plan.dxf"], 1);
}

TEST_F(Xrefs, AreReadAgainWhenTheirFileIsAnotherOne)
{
    file("plan.dxf", lineDrawing({10, 10, 0}));
    Drawing host;
    host.refer("PLAN", "plan.dxf");
    const auto database = open(host);
    EXPECT_EQ(extents(*database).maxPoint(), AcGePoint3d(10, 10, 0));
    EXPECT_TRUE(database->xrefs().changedOnDisk().empty());

    s_drawings.insert_or_assign("plan.dxf", lineDrawing({60, 10, 0}));
    folder.write("plan.dxf", "a changed drawing");
    ASSERT_EQ(database->xrefs().changedOnDisk().size(), 1u);
    EXPECT_EQ(extents(*database).maxPoint(), AcGePoint3d(10, 10, 0)) << "as it was read";
    database->xrefs().reload(block(*database, "PLAN"));
    EXPECT_EQ(extents(*database).maxPoint(), AcGePoint3d(60, 10, 0));
    EXPECT_TRUE(database->xrefs().changedOnDisk().empty());
}

TEST_F(Xrefs, HideWithTheLayersOfTheirHost)
{
    file("plan.dxf", lineDrawing({10, 10, 0}));
    Drawing host;
    host.content.layer("PLAN|WALL", {.flags = 48, .color = -3});
    host.refer("PLAN", "plan.dxf");
    const auto database = open(host);
    acgi::SpatialIndex &index = acgi::spatialIndexOf(*database);
    EXPECT_TRUE(index.atPoint(database->modelSpaceId(), {5, 5, 0}, 0.1).empty());
    {
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(
            database->tableRecord(SymbolTable::layer, "PLAN|WALL"), AcDb::kForWrite);
        layer->setIsOff(false);
    }
    EXPECT_EQ(index.atPoint(database->modelSpaceId(), {5, 5, 0}, 0.1).size(), 1u);
}

// Clips ------------------------------------------------------------------------------------------

/// Whether a point of the segments or areas that shows lies in the window, found by trying very many.
TEST(Clips, ArePickedByWhatShows)
{
    acgi::install();
    MemoryDrawing content;
    const std::uint64_t plan = content.block("PLAN");
    content.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(40, 40, 0)}}, plan);
    content.entity("CIRCLE", {{10, AcGePoint3d(30, 12, 0)}, {40, 9.0}}, plan);
    content.entity("SOLID",
                   {{10, AcGePoint3d(2, 20, 0)},
                    {11, AcGePoint3d(16, 20, 0)},
                    {12, AcGePoint3d(2, 38, 0)},
                    {13, AcGePoint3d(16, 38, 0)}},
                   plan);
    const std::uint64_t insert = content.entity(
        "INSERT", {{100, "AcDbBlockReference"}, {2, "PLAN"}, {10, AcGePoint3d(5, -3, 0)}, {50, 20.0}});
    const auto database = content.open();
    const AcDbObjectId id = database->getAcDbObjectId({insert});
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-15.0, 55.0);
    const auto point = [&] { return AcGePoint3d(place(random), place(random), 0.0); };
    int hits = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<AcGePoint3d> corners{point(), point(), point(), point()};
        const bool inverted = round % 3 == 0;
        ASSERT_EQ(acdbSetClip(id, corners, AcGeVector3d::kZAxis, inverted), Acad::eOk);
        const auto shows = [&](const AcGePoint3d &p) {
            bool holds = false;
            for (std::size_t i = 0; i < 4; ++i) {
                const AcGePoint3d &a = corners[i];
                const AcGePoint3d &b = corners[(i + 1) % 4];
                if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x))
                    holds = !holds;
            }
            return holds != inverted;
        };
        const AcGeMatrix3d placement = AcGeMatrix3d::translation({5, -3, 0}) *
                                       AcGeMatrix3d::rotation(20.0 * kGePi / 180.0, AcGeVector3d::kZAxis);
        std::vector<AcGePoint3d> shown;
        const auto add = [&](const AcGePoint3d &inBlock) {
            if (const AcGePoint3d p = placement * inBlock; shows(p))
                shown.push_back(p);
        };
        for (int i = 0; i <= 4000; ++i) {
            add({i / 100.0, i / 100.0, 0});
            add({30 + 9 * std::cos(i / 600.0), 12 + 9 * std::sin(i / 600.0), 0});
            add({2 + 14.0 * (i % 63) / 62, 20 + 18.0 * (i / 63) / 63, 0});
        }
        const acgi::Window window = acgi::Window::fromCorners(point(), point());
        const acgi::Window larger =
            acgi::Window::fromCorners(window.extents().minPoint() - AcGeVector3d(0.4, 0.4, 0),
                                      window.extents().maxPoint() + AcGeVector3d(0.4, 0.4, 0));
        const auto holds = [](const acgi::Window &w) {
            return [&w](const AcGePoint3d &p) { return w.contains(p); };
        };
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        const bool crosses = acgi::crosses(*entity, window);
        hits += crosses;
        if (std::ranges::any_of(shown, holds(window))) {
            EXPECT_TRUE(crosses) << round;
        } else if (std::ranges::none_of(shown, holds(larger))) {
            EXPECT_FALSE(crosses) << round;
        }
        if (acgi::liesInside(*entity, window)) {
            EXPECT_TRUE(std::ranges::all_of(shown, holds(larger))) << round;
        }
        AcDbExtents box;
        if (entity->getGeomExtents(box) == Acad::eOk) {
            for (const AcGePoint3d &p : shown)
                EXPECT_TRUE(box.containsInPlane({p, p})) << round;
        } else {
            EXPECT_TRUE(shown.empty()) << round;
        }
    }
    EXPECT_GT(hits, 10);
    EXPECT_EQ(acdbSwitchClip(id, false), Acad::eOk);
    EXPECT_EQ(acdbRemoveClip(id), Acad::eOk);
    EXPECT_EQ(acdbRemoveClip(id), Acad::eKeyNotFound);
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    EXPECT_TRUE(entity->extensionDictionary().isNull());
}
