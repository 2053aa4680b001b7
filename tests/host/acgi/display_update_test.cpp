// Pictures in parts, in the background, and what has to be painted again after changes.
#include "host/acgi/display/display.h"
#include "host/acgi/index_color.h"
#include "host/acgi/query/install.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbtransient.h"
#include "host/acdb/dbundo.h"
#include "tests/support/memory_drawing.h"

#include "host/acdb/dbfiler.h"
#include "host/acgi/world_draw.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>

#include <cmath>
#include <random>
#include <thread>

using tests::Groups;
using tests::MemoryDrawing;

static constexpr QSize kSize(640, 480);

static AcGiViewport viewOf(double x = 320.0, double y = 240.0, double height = 480.0)
{
    AcGiViewport view;
    view.centre = {x, y, 0.0};
    view.height = height;
    view.pixelWidth = kSize.width();
    view.pixelHeight = kSize.height();
    return view;
}

/// An entity of the same size in every view: a square of 30 pixels.
class FlagEntity : public AcDbEntity
{
public:
    AcGePoint3d position;

    FlagEntity() : AcDbEntity("TESTFLAG") {}
    AcRxClass *isA() const override { return s_class; }
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override
    {
        if (!filer->atSubclassData(u"TestFlag"))
            return filer->setError(Acad::eBadDxfSequence);
        resbuf group;
        while (filer->readResBuf(group) == Acad::eOk) {
            if (group.restype == 10)
                position = group.point();
        }
        return filer->filerStatus();
    }
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override { return filer->readPoint3d(position); }
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override
    {
        return filer->writePoint3d(position);
    }
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &matrix) override
    {
        position = matrix * position;
        return Acad::eOk;
    }
    bool subWorldDraw(AcGiWorldDraw *) const override { return false; }
    void subViewportDraw(AcGiViewportDraw *context) const override
    {
        const double side = 30.0 * context->viewport().pixelSize();
        const AcGePoint3d corners[] = {position, position + AcGeVector3d(side, 0, 0),
                                       position + AcGeVector3d(side, side, 0)};
        context->geometry().polyline(3, corners);
    }

    inline static AcRxClass *s_class = nullptr;
};

/// The class is known while this lives.
class FlagClass
{
public:
    FlagClass()
    {
        auto known = std::make_unique<AcRxClass>(QStringLiteral("TestFlag"), AcDbEntity::desc(), "TESTFLAG",
                                                 []() -> AcRxObject * { return new FlagEntity; });
        known->setApplication({31, 81, 0, QStringLiteral("TestFlag")});
        FlagEntity::s_class = acrxClassDictionary().add(std::move(known));
    }
    ~FlagClass() { deleteAcRxClass(FlagEntity::s_class); }
};

/// A bit of everything that is painted in a way of its own, all over the view and beyond.
class DisplayUpdate : public testing::Test
{
protected:
    void fill(int count)
    {
        std::mt19937 random(7);
        std::uniform_real_distribution<double> place(-200.0, 800.0);
        std::uniform_real_distribution<double> turn(0.0, 360.0);
        m_drawing.record(SymbolTable::linetype, "LTYPE", "DASHES",
                         {{73, 2}, {40, 20.0}, {49, 12.0}, {74, 0}, {49, -8.0}, {74, 0}});
        const std::uint64_t block = m_drawing.block("BLOCK");
        m_drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(30, 17, 0)}}, block);
        m_drawing.entity("CIRCLE", {{62, 0}, {10, AcGePoint3d(0, 0, 0)}, {40, 11.3}}, block);
        m_inBlock = m_drawing.entity("SOLID", square(5, 5, 8), block);
        for (int i = 0; i < count; ++i) {
            AcGePoint3d at(place(random), place(random), 0.0);
            AcGePoint3d to(place(random), place(random), 0.0);
            if (i < 3) { // Those that tests change are seen.
                at = {100.3 + 41.7 * i, 151.1 + 73.2 * i, 0.0};
                to = {231.9 + 33.1 * i, 120.4 + 57.7 * i, 0.0};
            }
            const int color = 1 + i % 6;
            m_handles.push_back(m_drawing.entity("LINE", {{62, color}, {10, at}, {11, to}}));
            m_drawing.entity("LINE", {{6, "DASHES"}, {62, color}, {370, 100}, {10, at}, {11, to}});
            m_drawing.entity("CIRCLE", {{62, color}, {10, to}, {40, std::abs(at.x) / 10.0 + 1.0}});
            m_handles.push_back(
                m_drawing.entity("SOLID", square(at.x, to.y, 23.7, {{62, color}, {440, 0x02000080}})));
            m_drawing.entity("TEXT", {{10, at}, {40, 9.3}, {50, turn(random)}, {1, "Room 12"}});
            m_drawing.entity("TEXT", {{10, to}, {40, 70.0}, {50, turn(random)}, {1, "Ag"}});
            m_handles.push_back(m_drawing.entity("INSERT", {{2, "BLOCK"}, {10, at}, {50, turn(random)}}));
            m_drawing.entity("INSERT", {{2, "BLOCK"}, {10, to}, {70, 40}, {71, 30}, {44, 0.2}, {45, 0.15}});
        }
        m_drawing.entity("XLINE",
                         {{10, AcGePoint3d(100, 90, 0)}, {11, AcGePoint3d(0.8, 0.6, 0)}, {6, "DASHES"}});
        m_database = m_drawing.open();
    }

    static Groups square(double x, double y, double size, const Groups &first = {})
    {
        Groups groups = first;
        groups.insert(groups.end(), {{10, AcGePoint3d(x, y, 0)},
                                     {11, AcGePoint3d(x + size, y + 0.3, 0)},
                                     {12, AcGePoint3d(x, y + size, 0)},
                                     {13, AcGePoint3d(x + size, y + size, 0)}});
        return groups;
    }

    acgi::Display &display() { return acgi::displayOf(*m_database); }
    AcDbObjectId space() { return m_database->modelSpaceId(); }
    AcDbObjectId id(std::uint64_t handle) { return m_database->getAcDbObjectId({handle}); }

    void paintOnto(QImage &image, const AcGiViewport &view, const acgi::PaintOptions &options = m_options)
    {
        QPainter painter(&image);
        display().paint(space(), view, painter, options);
    }
    QImage painted(const AcGiViewport &view)
    {
        QImage image(kSize, QImage::Format_RGB32);
        paintOnto(image, view);
        return image;
    }

    template <class Change>
    void change(std::uint64_t handle, Change set)
    {
        AcDbObjectPointer<AcDbEntity> entity(id(handle), AcDb::kForWrite);
        ASSERT_TRUE(entity);
        set(*entity);
    }
    void move(std::uint64_t handle, double x, double y)
    {
        change(handle, [&](AcDbEntity &entity) {
            entity.transformBy(AcGeMatrix3d::translation({x, y, 0.0}));
        });
    }

    /// Repaints the damage of a change onto the picture of before: must give the picture of after.
    void expectDamageIsEnough(QImage &image, const char *what, double mostShare = 0.5)
    {
        const AcGiViewport view = viewOf();
        const acgi::Damage damage = display().takeDamage(space(), view);
        ASSERT_FALSE(damage.everything) << what;
        EXPECT_FALSE(damage.part.isEmpty()) << what;
        EXPECT_LE(damage.part.width() * damage.part.height(), mostShare * image.width() * image.height())
            << what;
        acgi::PaintOptions options = m_options;
        options.part = damage.part;
        if (!damage.part.isEmpty())
            paintOnto(image, view, options);
        EXPECT_EQ(image, painted(view)) << what;
        const acgi::Damage again = display().takeDamage(space(), view);
        EXPECT_TRUE(!again.everything && again.part.isEmpty()) << what;
    }

    inline static const acgi::PaintOptions m_options = [] {
        acgi::PaintOptions options;
        options.lineWeights = true;
        return options;
    }();
    MemoryDrawing m_drawing;
    std::vector<std::uint64_t> m_handles; ///< A line, a square, an insert, and so on.
    std::uint64_t m_inBlock = 0;
    std::unique_ptr<AcDbDatabase> m_database;
};

TEST_F(DisplayUpdate, PaintsPartsAsTheWhole)
{
    fill(300);
    for (const AcGiViewport &view : {viewOf(), viewOf(301.7, 255.3, 97.0), viewOf(0.0, 0.0, 9000.0)}) {
        const QImage whole = painted(view);
        std::mt19937 random(3);
        for (const QRect &part : {QRect(0, 0, 20, 480), QRect(620, 0, 20, 480), QRect(0, 460, 640, 20),
                                  QRect(201, 133, 77, 61), QRect(0, 0, 640, 480)}) {
            QImage pieces(kSize, QImage::Format_RGB32);
            pieces.fill(Qt::magenta);
            acgi::PaintOptions options = m_options;
            options.part = part;
            paintOnto(pieces, view, options);
            EXPECT_EQ(pieces.copy(part), whole.copy(part))
                << part.x() << " " << part.y() << " " << view.height;
            EXPECT_EQ(pieces.pixel(part.left() == 0 ? 639 : 0, part.top() == 0 ? 479 : 0) == 0xFFFF00FFu,
                      part.size() != kSize)
                << "nothing outside the part is touched";
        }
    }
}

TEST_F(DisplayUpdate, DamageIsWhatChangesLeave)
{
    fill(40);
    QImage image = painted(viewOf());
    display().takeDamage(space(), viewOf());
    AcDbUndo &undo = m_database->undo();

    undo.beginGroup(QStringLiteral("move"));
    move(m_handles[2], 15.0, -9.0);
    undo.endGroup();
    expectDamageIsEnough(image, "an insert moved");
    undo.undo();
    expectDamageIsEnough(image, "and moved back");
    undo.redo();
    expectDamageIsEnough(image, "and again");

    change(m_handles[1], [](AcDbEntity &entity) { entity.erase(); });
    expectDamageIsEnough(image, "a square erased");
    change(m_handles[4], [](AcDbEntity &entity) { entity.setColorIndex(6); });
    expectDamageIsEnough(image, "a square in another colour");
    display().regenerate(id(m_handles[5]));
    expectDamageIsEnough(image, "a list forgotten");

    undo.beginGroup(QStringLiteral("add"));
    {
        AcDbObjectPointer<AcDbBlockTableRecord> model(space(), AcDb::kForWrite);
        AcDbEntity *const added = acdbNewEntity("LINE", {tests::Group(10, AcGePoint3d(300.2, 200.7, 0)),
                                                         tests::Group(11, AcGePoint3d(350, 217, 0))})
                                      .release();
        AcDbObjectId addedId;
        ASSERT_EQ(model->appendAcDbEntity(addedId, added), Acad::eOk);
        added->close();
    }
    undo.endGroup();
    expectDamageIsEnough(image, "a line added", 0.05);
    undo.undo();
    expectDamageIsEnough(image, "and taken back", 0.05);
}

/// Whatever was done to the drawing, its display shows what one shows that has just been made.
TEST_F(DisplayUpdate, RandomEditsShowAsInAFreshDisplay)
{
    fill(25);
    std::mt19937 random(11);
    const auto below = [&](int count) { return int(random() % unsigned(count)); };
    AcDbUndo &undo = m_database->undo();
    const auto edit = [&] {
        const AcDbObjectId any(m_database->stub(1 + random() % (m_database->stubCount() - 1)));
        const bool wanted = below(6) != 0;
        undo.beginGroup(QStringLiteral("edit"));
        if (AcDbObjectPointer<AcDbEntity> entity(any, AcDb::kForWrite, true); entity) {
            if (entity->isErased() || !wanted)
                entity->erase(!entity->isErased());
            else if (below(2) == 0)
                entity->setColorIndex(below(256));
            else
                entity->transformBy(AcGeMatrix3d::translation({below(80) - 40.0, below(60) - 30.0, 0.0}));
        } else if (AcDbObjectPointer<AcDbLayerTableRecord> layer(any, AcDb::kForWrite); layer) {
            layer->setGroup(62, std::int64_t(below(12) - 3), u"AcDbLayerTableRecord");
        }
        if (below(20) == 0)
            m_database->setHeaderVariable("$LTSCALE", {{40, 0.5 + below(4)}});
        undo.endGroup();
        for (int back = below(5) == 0 ? below(6) : 0; back > 0; --back)
            below(3) == 0 ? undo.redo() : undo.undo();
    };
    QImage image = painted(viewOf());
    for (int round = 0; round < 40; ++round) {
        for (int i = below(12); i >= 0; --i)
            edit();
        image = painted(viewOf());
        base::Attachments apart;
        QImage fresh(kSize, QImage::Format_RGB32);
        QPainter painter(&fresh);
        apart.get<acgi::Display>(*m_database).paint(space(), viewOf(), painter, m_options);
        ASSERT_EQ(image, fresh) << "round " << round;
    }
}

TEST_F(DisplayUpdate, DamageCountsWhatDependsOnTheViewAsItIsSeen)
{
    const FlagClass known;
    const std::uint64_t flag = m_drawing.entity(
        "TESTFLAG", {{100, "AcDbEntity"}, {100, "TestFlag"}, {10, AcGePoint3d(200.3, 100.2, 0)}});
    fill(20);
    QImage image = painted(viewOf());
    display().takeDamage(space(), viewOf());
    move(flag, 40.0, 30.0);
    expectDamageIsEnough(image, "a flag moved", 0.05);
    acgi::install();
    AcDbExtents none;
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id(flag), AcDb::kForRead)->getGeomExtents(none),
              Acad::eInvalidExtents)
        << "it states none of its own";
    display().prepare(space(), viewOf(320, 240, 100), 1000);
    move(flag, 40.0, 30.0);
    EXPECT_TRUE(display().takeDamage(space(), viewOf()).everything) << "nobody knows what it looked like";
    m_database.reset();
}

TEST_F(DisplayUpdate, EverythingIsDamagedByWhatConcernsAll)
{
    m_drawing.layer("WALLS");
    fill(2);
    const AcGiViewport view = viewOf();
    const auto settle = [&] {
        painted(view);
        display().takeDamage(space(), view);
        EXPECT_FALSE(display().takeDamage(space(), view).everything);
    };
    settle();
    EXPECT_TRUE(display().takeDamage(space(), viewOf(321.0)).everything) << "another view";
    EXPECT_TRUE(display().takeDamage(m_database->paperSpaceId(), view).everything) << "another space";
    settle();
    {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(
            m_database->tableRecord(SymbolTable::layer, QStringLiteral("WALLS")), AcDb::kForWrite);
        layer->setIsOff(true);
    }
    EXPECT_TRUE(display().takeDamage(space(), view).everything) << "a layer";
    settle();
    m_database->setHeaderVariable("$LTSCALE", {resbuf(40, 3.0)});
    EXPECT_TRUE(display().takeDamage(space(), view).everything) << "a variable that shapes lines";
    settle();
    m_database->setHeaderVariable("$CLAYER", {resbuf(8, QStringLiteral("WALLS"))});
    EXPECT_FALSE(display().takeDamage(space(), view).everything) << "a variable that shapes nothing";
    display().regenerate();
    EXPECT_TRUE(display().takeDamage(space(), view).everything);
}

TEST_F(DisplayUpdate, DamageOfBlocksIsWhereTheyAreShown)
{
    fill(2);
    QImage image = painted(viewOf());
    display().takeDamage(space(), viewOf());
    move(m_inBlock, 7.0, 5.0);
    expectDamageIsEnough(image, "an entity of a block", 1.0);
}

TEST_F(DisplayUpdate, PreparesInSlices)
{
    fill(400);
    int slices = 0;
    while (!display().prepare(space(), viewOf(), 0))
        ++slices;
    EXPECT_GT(slices, 1000) << "with no time at all it makes one list at a time";
    const std::size_t memory = display().memory();
    painted(viewOf());
    EXPECT_EQ(display().memory(), memory) << "nothing was left to make";
    move(m_handles[0], 1.0, 1.0);
    EXPECT_FALSE(display().prepare(space(), viewOf(), 0));
    EXPECT_TRUE(display().prepare(space(), viewOf(), 0));
}

// In the background ------------------------------------------------------------------------------

/// Runs the event loop until the condition holds; false after a long time.
template <class Condition>
static bool waitFor(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(20000))
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}

class BackgroundPainting : public DisplayUpdate
{
protected:
    void start(const AcGiViewport &view = viewOf())
    {
        display().paintInBackground(space(), view, m_options,
                                    [this](const QImage &image, const acgi::PaintReport &) {
                                        m_image = image;
                                        ++m_delivered;
                                    });
    }

    static inline int s_argc = 1;
    static inline char s_name[] = "test";
    static inline char *s_argv[] = {s_name, nullptr};
    QCoreApplication m_application{s_argc, s_argv};
    QImage m_image;
    int m_delivered = 0;
};

TEST_F(BackgroundPainting, GivesTheSamePictureOnTheCallingThread)
{
    fill(300);
    start();
    EXPECT_EQ(m_delivered, 0) << "only the event loop delivers";
    ASSERT_TRUE(waitFor([&] { return m_delivered > 0; }));
    EXPECT_EQ(m_image, painted(viewOf()));

    start(viewOf(0.0, 0.0));
    start();
    ASSERT_TRUE(waitFor([&] { return m_delivered > 1; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(m_delivered, 2) << "a second call ends the first";
    EXPECT_EQ(m_image, painted(viewOf()));
}

TEST_F(BackgroundPainting, EndsBeforeAnythingChanges)
{
    fill(300);
    painted(viewOf());
    const std::vector<std::function<void()>> changes = {
        [this] { move(m_handles[2], 1.0, 0.0); },
        [this] { move(m_inBlock, 1.0, 0.0); },
        [this] { change(m_handles[1], [](AcDbEntity &entity) { entity.erase(); }); },
        [this] { m_database->undo().undo(); },
        [this] { display().regenerate(true); },
        [this] { display().prepare(space(), viewOf(1, 2, 300), 1000); },
        [this] { display().stopPainting(); },
    };
    for (int round = 0; round < 60; ++round) {
        start(round % 2 == 0 ? viewOf() : viewOf(320, 240, 480.0 + round));
        if (round % 3 == 0)
            std::this_thread::sleep_for(std::chrono::microseconds(round * 100));
        changes[std::size_t(round) % changes.size()]();
        QCoreApplication::processEvents();
    }
    // A stopped painting never comes; what paints over the picture does not stop one.
    m_delivered = 0;
    painted(viewOf());
    start();
    const AcDbObjectId over[] = {id(m_handles[0]), id(m_handles[2])};
    const auto copy = AcDbTransient::copyOf(id(m_handles[2]));
    const AcDbEntity *const copies[] = {&copy->entity()};
    QImage image(kSize, QImage::Format_RGB32);
    for (int i = 0; i < 20; ++i) {
        QPainter painter(&image);
        display().paintEntities(over, viewOf(), painter, m_options);
        display().paintTransients(copies, viewOf(), painter, m_options);
    }
    ASSERT_TRUE(waitFor([&] { return m_delivered > 0; }));
    start();
    m_database.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_delivered, 1) << "the end of the drawing";
}

// Over a picture ---------------------------------------------------------------------------------

TEST_F(DisplayUpdate, PaintsEntitiesOverAPictureInOneColour)
{
    const std::uint64_t other = m_drawing.entity("SOLID", square(4990, 4990, 20, {{440, 0x02000080}}));
    fill(3);
    QImage image = painted(viewOf(9000, 9000));
    ASSERT_EQ(image.pixel(320, 240), 0xFF000000u);
    const AcGiViewport view = viewOf(5000, 5000);
    acgi::PaintOptions options;
    options.highlight = QColor(10, 200, 30);
    const auto colors = [&] {
        std::map<QRgb, int> counts;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                ++counts[image.pixel(x, y)];
        }
        return counts;
    };
    {
        QPainter painter(&image);
        const AcDbObjectId entities[] = {id(other)};
        display().paintEntities(entities, view, painter, options);
    }
    EXPECT_EQ(image.pixel(320, 240), 0xFF000000u) << "what stands on an area can be seen";
    EXPECT_EQ(image.pixel(100, 100), 0xFF000000u) << "nothing else";
    const int edge = colors()[options.highlight.rgb()];
    EXPECT_NEAR(edge, 4 * 20, 25) << "its edge, opaque whatever the entity is";
    const auto copy = AcDbTransient::copyOf(id(other));
    ASSERT_TRUE(copy);
    copy->entity().transformBy(AcGeMatrix3d::translation({100.0, 0.0, 0.0}));
    const AcDbEntity *const copies[] = {&copy->entity()};
    {
        QPainter painter(&image);
        display().paintTransients(copies, view, painter, options);
    }
    EXPECT_EQ(colors()[options.highlight.rgb()], 2 * edge) << "a copy that stands in no drawing";
}

TEST_F(DisplayUpdate, TextOnAnAreaIsReadAlsoOverAPictureInOneColour)
{
    const std::uint64_t mask = m_drawing.entity(
        "MTEXT", {{10, AcGePoint3d(4900, 5050, 0)}, {40, 40.0}, {1, "38"}, {90, 1}, {63, 4}, {45, 2.0}});
    fill(3);
    QImage image = painted(viewOf(9000, 9000));
    acgi::PaintOptions options;
    options.highlight = QColor(10, 200, 30);
    image.fill(options.highlight);
    {
        QPainter painter(&image);
        const AcDbObjectId entities[] = {id(mask)};
        display().paintEntities(entities, viewOf(5000, 5000), painter, options);
    }
    int grounds = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            grounds += image.pixel(x, y) == options.background.rgb();
    }
    EXPECT_GT(grounds, 500);
    EXPECT_LT(grounds, 4000) << "the ground is the text's, not the area's";
    EXPECT_EQ(image.pixel(10, 10), options.highlight.rgb());
}

TEST_F(DisplayUpdate, FillsAreasOfVeryManyCornersLikeOthers)
{
    // The same ring, in few corners and in very many: nearly the same picture, in parts as in whole.
    const auto ring = [](int corners) {
        MemoryDrawing drawing;
        Groups groups = {{62, 1},
                         {100, "AcDbHatch"},
                         {10, AcGePoint3d()},
                         {210, AcGePoint3d(0, 0, 1)},
                         {2, "SOLID"},
                         {70, 1},
                         {71, 0},
                         {91, 2}};
        for (const double radius : {200.0, 120.0}) {
            groups.insert(groups.end(), {{92, 3}, {72, 0}, {73, 1}, {93, corners}});
            for (int i = 0; i < corners; ++i) {
                const double angle = 2.0 * kGePi * i / corners;
                groups.emplace_back(
                    10, AcGePoint2d(320.2 + radius * std::cos(angle), 240.1 + radius * std::sin(angle)));
            }
            groups.emplace_back(97, 0);
        }
        groups.insert(groups.end(), {{75, 0}, {76, 1}, {98, 0}});
        drawing.entity("HATCH", groups);
        return drawing.open();
    };
    m_database = ring(720);
    const QImage few = painted(viewOf());
    m_database = ring(40000);
    const QImage many = painted(viewOf());
    int different = 0;
    for (int y = 0; y < kSize.height(); ++y) {
        for (int x = 0; x < kSize.width(); ++x)
            different += std::abs(qRed(few.pixel(x, y)) - qRed(many.pixel(x, y))) > 40;
    }
    EXPECT_LT(different, 20);
    EXPECT_EQ(many.pixel(320, 80), acgi::indexColor(1));
    EXPECT_EQ(many.pixel(320, 240), 0xFF000000u) << "the hole";
    QImage pieces(kSize, QImage::Format_RGB32);
    acgi::PaintOptions options = m_options;
    for (const QRect &part : {QRect(0, 0, 333, 480), QRect(333, 0, 307, 201), QRect(333, 201, 307, 279)}) {
        options.part = part;
        paintOnto(pieces, viewOf(), options);
    }
    EXPECT_EQ(pieces, many);
}
