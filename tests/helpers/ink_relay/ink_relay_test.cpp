// The freehand drawing library as the program calls it: a person's mouse, pen and keys, and the file that the
// reader of sketches finds afterwards.
#include "helpers/ink_relay/ink_relay.h"

#include "host/os/helper_library.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/sketch.h"

#include "host/acdb/dbsymtb.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/picture.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPointer>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTest>
#include <QTimer>

#include <cmath>
#include <functional>

namespace
{

constexpr QRect kArea(40, 60, 640, 480);
constexpr int kUnits = 8; ///< Of the file, for each pixel.

struct InkRelay : testing::Test {
    InkRelay()
        : library(QCoreApplication::applicationDirPath() +
                  QStringLiteral("/../share/quillnote3/InkRelayDLL_X64.dll")),
          entry(library.function<decltype(&callInkRelay)>("callInkRelay"))
    {
        EXPECT_TRUE(entry) << qPrintable(library.error());
        drawing.setStyleSheet(QStringLiteral("background: white"));
        drawing.setGeometry(kArea);
        drawing.show();
    }

    /// What the library returns when a person does this; the person ends with Enter when not said otherwise.
    int sketch(const std::function<void(QWidget &overlay)> &person, Qt::Key last = Qt::Key_Return) const
    {
        const QObject call; // Its end ends the watch.
        QTimer::singleShot(20'000, &call, [] {
            ADD_FAILURE() << "the overlay stays open";
            QApplication::closeAllWindows();
        });
        QTimer::singleShot(0, [&] {
            QWidget *overlay = QApplication::activeModalWidget();
            ASSERT_TRUE(overlay && QTest::qWaitForWindowActive(overlay));
            person(*overlay);
            if (last != Qt::Key_unknown)
                QTest::keyClick(overlay, last);
        });
        const std::u16string name = path.toStdU16String();
        return entry(1, name.c_str(), kArea.x(), kArea.y(), kArea.width(), kArea.height());
    }
    sketch::Sketch read() const
    {
        const auto sketch = sketch::decode(tests::readFile(path));
        EXPECT_TRUE(sketch);
        return sketch ? *sketch : sketch::Sketch();
    }

    QWidget drawing; ///< What lies below.
    tests::TempDir folder;
    QString path = folder.path(QStringLiteral("QNS1.TMP"));
    os::HelperLibrary library;
    decltype(&callInkRelay) entry;
};

} // namespace

static void drag(QWidget &overlay, const std::vector<QPoint> &way, Qt::KeyboardModifiers keys = {})
{
    QTest::mousePress(&overlay, Qt::LeftButton, keys, way.front());
    for (const QPoint &place : way) {
        QMouseEvent move(QEvent::MouseMove, place, overlay.mapToGlobal(QPointF(place)), Qt::NoButton,
                         Qt::LeftButton, keys);
        QApplication::sendEvent(&overlay, &move);
    }
    QTest::mouseRelease(&overlay, Qt::LeftButton, keys, way.back());
}

static QAbstractButton *button(const QWidget &overlay, const QString &name)
{
    for (QAbstractButton *found : overlay.findChildren<QAbstractButton *>()) {
        if (found->accessibleName() == name)
            return found;
    }
    ADD_FAILURE() << "no button " << qPrintable(name);
    return nullptr;
}

static void press(const QWidget &overlay, const QString &name)
{
    if (QAbstractButton *found = button(overlay, name))
        QTest::mouseClick(found, Qt::LeftButton);
}

static sketch::Stroke stroke(sketch::Kind kind, QPoint from, QPoint to, std::uint32_t rgb, int penWidth)
{
    return {.kind = kind,
            .from = {from.x() * kUnits, from.y() * kUnits},
            .to = {to.x() * kUnits, to.y() * kUnits},
            .rgb = rgb,
            .penWidth = penWidth};
}

TEST_F(InkRelay, TheReaderFindsEveryShape)
{
    using namespace sketch;
    const QPoint from(100, 200);
    const QPoint to(300, 150);
    const auto draw = [&](QWidget &overlay) {
        EXPECT_EQ(overlay.geometry(), kArea);
        QTest::keyClick(&overlay, Qt::Key_L);
        drag(overlay, {from, {0, 0}, to});
        press(overlay, QStringLiteral("蓝色"));
        QTest::keyClick(&overlay, Qt::Key_4);
        for (const Qt::Key fill : {Qt::Key_unknown, Qt::Key_F}) {
            QTest::keyClick(&overlay, Qt::Key_R);
            if (fill != Qt::Key_unknown)
                QTest::keyClick(&overlay, fill);
            drag(overlay, {from, to});
            QTest::keyClick(&overlay, Qt::Key_O);
            drag(overlay, {from, to});
            press(overlay, QStringLiteral("椭圆"));
            drag(overlay, {from, to});
        }
        QTest::keyClick(&overlay, Qt::Key_L);
        drag(overlay, {to, from});
    };
    ASSERT_EQ(sketch(draw), 1);
    const Sketch found = read();
    EXPECT_EQ(QSize(found.width, found.height), kArea.size() * kUnits);
    std::vector<Stroke> expected{stroke(kLine, from, to, 0xFF0000, 2)};
    for (const Kind kind :
         {kRectangle, kRoundedRectangle, kEllipse, kFilledRectangle, kFilledRoundedRectangle, kFilledEllipse})
        expected.push_back(stroke(kind, from, to, 0x0000FF, 4));
    expected.push_back(stroke(kLine, to, from, 0x0000FF, 4));
    EXPECT_EQ(found.strokes, expected);
    EXPECT_EQ(folder.fileNames(), QStringList{QStringLiteral("QNS1.TMP")}) << "nothing else is left behind";
}

TEST_F(InkRelay, FreehandStrokesAreRunsOfLines)
{
    const auto draw = [](QWidget &overlay) {
        std::vector<QPoint> way;
        for (int x = 100; x < 500; ++x)
            way.emplace_back(x, int(std::lround(300 + 80 * std::sin(x / 40.0))));
        drag(overlay, way);
        drag(overlay, {{50, 400}}); // A dot.
    };
    ASSERT_EQ(sketch(draw), 1);
    const std::vector<sketch::Stroke> strokes = read().strokes;
    ASSERT_GT(strokes.size(), 20u);
    EXPECT_LT(strokes.size(), 100u);
    EXPECT_EQ(strokes.back(), stroke(sketch::kLine, {50, 400}, {51, 400}, 0xFF0000, 2));
    for (std::size_t i = 0; i + 2 < strokes.size(); ++i) {
        EXPECT_EQ(strokes[i].to, strokes[i + 1].from);
        EXPECT_NEAR(strokes[i].to.y / double(kUnits), 300 + 80 * std::sin(strokes[i].to.x / 40.0 / kUnits),
                    1.5);
    }
    EXPECT_EQ(strokes.front().from, (sketch::CanvasPoint{100 * kUnits, 348 * kUnits}));
}

TEST_F(InkRelay, ShapesStayOnTheCanvasAndShiftStraightensThem)
{
    const auto draw = [](QWidget &overlay) {
        QTest::keyClick(&overlay, Qt::Key_L);
        drag(overlay, {{100, 200}, {200, 210}}, Qt::ShiftModifier);
        drag(overlay, {{100, 200}, {190, 120}}, Qt::ShiftModifier);
        QTest::keyClick(&overlay, Qt::Key_R);
        drag(overlay, {{100, 200}, {50, 400}}, Qt::ShiftModifier);
        drag(overlay, {{600, 400}, {900, 900}});
        drag(overlay, {{300, 300}, {301, 301}}); // Went astray.
    };
    ASSERT_EQ(sketch(draw), 1);
    using namespace sketch;
    const std::vector<Stroke> expected{stroke(kLine, {100, 200}, {200, 200}, 0xFF0000, 2),
                                       stroke(kLine, {100, 200}, {180, 120}, 0xFF0000, 2),
                                       stroke(kRectangle, {100, 200}, {50, 250}, 0xFF0000, 2),
                                       stroke(kRectangle, {600, 400}, {640, 480}, 0xFF0000, 2)};
    EXPECT_EQ(read().strokes, expected);
}

TEST_F(InkRelay, StepsAreTakenBackByKeysAndButtons)
{
    const auto draw = [](QWidget &overlay) {
        EXPECT_FALSE(button(overlay, QStringLiteral("撤销"))->isEnabled());
        EXPECT_FALSE(button(overlay, QStringLiteral("填充"))->isEnabled()) << "nothing inside a line";
        QTest::keyClick(&overlay, Qt::Key_L);
        drag(overlay, {{10, 200}, {20, 200}});
        QTest::keyClick(&overlay, Qt::Key_Delete);
        QTest::keyClick(&overlay, Qt::Key_Z, Qt::ControlModifier);
        for (const int y : {300, 400})
            drag(overlay, {{10, y}, {20, y}});
        press(overlay, QStringLiteral("撤销"));
        QTest::keyClick(&overlay, Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(&overlay, Qt::Key_Y, Qt::ControlModifier);
        EXPECT_TRUE(button(overlay, QStringLiteral("重做"))->isEnabled());
    };
    ASSERT_EQ(sketch(draw), 1);
    const std::vector<sketch::Stroke> strokes = read().strokes;
    ASSERT_EQ(strokes.size(), 2u);
    EXPECT_EQ(strokes[0].from.y, 200 * kUnits);
    EXPECT_EQ(strokes[1].from.y, 300 * kUnits);
}

TEST_F(InkRelay, NothingIsWrittenWithoutASketch)
{
    tests::writeFile(path, "before");
    const auto draw = [](QWidget &overlay) { drag(overlay, {{10, 200}, {200, 200}}); };
    EXPECT_EQ(sketch([](QWidget &) {}), 0) << "nothing was drawn";
    EXPECT_EQ(sketch(draw, Qt::Key_Escape), 0);
    EXPECT_EQ(sketch([&](QWidget &overlay) { draw(overlay), overlay.close(); }, Qt::Key_unknown), 0);
    const auto clear = [&](QWidget &overlay) {
        draw(overlay);
        press(overlay, QStringLiteral("清空"));
        press(overlay, QStringLiteral("完成"));
    };
    EXPECT_EQ(sketch(clear, Qt::Key_unknown), 0);
    EXPECT_EQ(tests::readFile(path), "before");
    EXPECT_FALSE(QApplication::activeModalWidget());
}

TEST_F(InkRelay, EscapeTakesBackTheShapeUnderThePenFirst)
{
    const auto draw = [](QWidget &overlay) {
        drag(overlay, {{10, 200}, {20, 200}});
        QTest::mousePress(&overlay, Qt::LeftButton, {}, {50, 300});
        QTest::keyClick(&overlay, Qt::Key_Escape);
        QTest::mouseRelease(&overlay, Qt::LeftButton, {}, {90, 300});
    };
    ASSERT_EQ(sketch(draw), 1);
    EXPECT_EQ(read().strokes.size(), 1u);
}

TEST_F(InkRelay, AFileThatCannotBeWrittenKeepsTheSketchOnTheScreen)
{
    path = folder.path(QStringLiteral("missing/QNS1.TMP"));
    QString told;
    const auto draw = [&](QWidget &overlay) {
        drag(overlay, {{10, 200}, {20, 200}});
        QTimer::singleShot(0, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                told = box->text();
                box->accept();
            }
        });
        press(overlay, QStringLiteral("完成"));
        EXPECT_TRUE(QTest::qWaitForWindowActive(&overlay));
        QDir().mkpath(folder.path(QStringLiteral("missing")));
    };
    EXPECT_EQ(sketch(draw), 1) << "the second try finds its folder";
    EXPECT_TRUE(told.contains(path)) << qPrintable(told);
    EXPECT_EQ(read().strokes.size(), 1u);
}

/// On white: a freehand mark whose target is as many units large as the overlay had pixels.
static QImage pictureOfMark(const QByteArray &bytes)
{
    registerMarkClass();
    QImage picture;
    {
        const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
        auto mark = std::make_unique<QuillnoteObj3>();
        mark->targetCorner2 = {double(kArea.width()), double(kArea.height()), 0};
        mark->sketchData = bytes;
        const AcDbObjectId spaceId = drawing.database().modelSpaceId();
        {
            AcDbObjectPointer<AcDbBlockTableRecord> space(spaceId, AcDb::kForWrite);
            AcDbObjectId id;
            EXPECT_EQ(space->appendAcDbEntity(id, mark.get()), Acad::eOk);
            mark.release()->close();
        }
        picture = tests::paintPicture(spaceId, tests::planView(0, 0, kArea.width(), kArea.height())).image;
    }
    unregisterMarkClass();
    return picture;
}

/// Pixels with ink in `a` that have none within `reach` pixels in `b`.
static int missingInk(const QImage &a, const QImage &b, int reach)
{
    const auto hasInk = [](const QImage &picture, int x, int y) {
        return picture.rect().contains(x, y) && qGreen(picture.pixel(x, y)) < 128;
    };
    int missing = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            bool isFound = !hasInk(a, x, y);
            for (int dy = -reach; dy <= reach && !isFound; ++dy) {
                for (int dx = -reach; dx <= reach && !isFound; ++dx)
                    isFound = hasInk(b, x + dx, y + dy);
            }
            missing += isFound ? 0 : 1;
        }
    }
    return missing;
}

TEST_F(InkRelay, TheMarkLooksAsTheOverlayDid)
{
    QImage seen;
    const auto draw = [&](QWidget &overlay) {
        drag(overlay, {{50, 130}, {60, 160}, {90, 150}, {130, 120}, {170, 180}, {150, 210}});
        int x = 40;
        for (const Qt::Key tool : {Qt::Key_L, Qt::Key_R, Qt::Key_O, Qt::Key_E}) {
            QTest::keyClick(&overlay, tool);
            drag(overlay, {{x, 300}, {x + 100, 220}});
            QTest::keyClick(&overlay, Qt::Key_F);
            drag(overlay, {{x, 440}, {x + 100, 360}});
            QTest::keyClick(&overlay, Qt::Key_F);
            x += 150;
        }
        seen = overlay.grab().toImage();
    };
    ASSERT_EQ(sketch(draw), 1);
    const QImage drawn = pictureOfMark(tests::readFile(path));
    ASSERT_EQ(drawn.size(), seen.size());
    const QRect inside = seen.rect().adjusted(4, 110, -4, -4); // Without the overlay's frame and its tools.
    EXPECT_GT(missingInk(seen.copy(inside), QImage(), 0), 10'000) << "there is something to compare";
    EXPECT_EQ(missingInk(seen.copy(inside), drawn.copy(inside), 1), 0);
    EXPECT_EQ(missingInk(drawn.copy(inside), seen.copy(inside), 1), 0);
}

TEST_F(InkRelay, ThePenOfATabletDrawsBetweenPixels)
{
    const auto send = [](QWidget &target, QEvent::Type type, QPointF place) {
        const Qt::MouseButton button = type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons buttons = type == QEvent::TabletRelease ? Qt::NoButton : Qt::LeftButton;
        QTabletEvent event(type, QPointingDevice::primaryPointingDevice(), place, target.mapToGlobal(place),
                           0.5, 0, 0, 0, 0, 0, Qt::NoModifier, button, buttons);
        QApplication::sendEvent(&target, &event);
        return event.isAccepted();
    };
    const auto draw = [&](QWidget &overlay) {
        QTest::keyClick(&overlay, Qt::Key_R);
        EXPECT_FALSE(send(overlay, QEvent::TabletMove, {5, 5})) << "hovering is left to the mouse";
        EXPECT_TRUE(send(overlay, QEvent::TabletPress, {100.5, 200.25}));
        EXPECT_TRUE(send(overlay, QEvent::TabletMove, {150, 250}));
        EXPECT_TRUE(send(overlay, QEvent::TabletMove, {180.75, 260.5}));
        EXPECT_TRUE(send(overlay, QEvent::TabletRelease, {180.75, 260.5}));
        // On a button of the strip the pen draws nothing.
        QWidget *strip = button(overlay, QStringLiteral("红色"));
        for (const QEvent::Type type : {QEvent::TabletPress, QEvent::TabletRelease})
            EXPECT_FALSE(send(*strip, type, {3, 3}));
    };
    ASSERT_EQ(sketch(draw), 1);
    const std::vector<sketch::Stroke> strokes = read().strokes;
    ASSERT_EQ(strokes.size(), 1u);
    EXPECT_EQ(strokes[0].from, (sketch::CanvasPoint{804, 1602}));
    EXPECT_EQ(strokes[0].to, (sketch::CanvasPoint{1446, 2084}));
}

TEST_F(InkRelay, TheStripMovesAwayButNotOut)
{
    drawing.resize(kArea.width(), kArea.height() / 2 + 1); // The screen below is pictured, not one window.
    const auto draw = [](QWidget &overlay) {
        QWidget *strip = button(overlay, QStringLiteral("红色"))->parentWidget();
        const QPoint before = strip->pos();
        const QPoint handle(4, strip->height() / 2);
        QTest::mousePress(strip, Qt::LeftButton, {}, handle);
        const auto moveBy = [&](QPoint way) {
            QMouseEvent move(QEvent::MouseMove, handle + way, strip->mapToGlobal(QPointF(handle + way)),
                             Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(strip, &move);
        };
        moveBy({20, 100});
        EXPECT_EQ(strip->pos(), before + QPoint(20, 100));
        moveBy({9000, 9000});
        EXPECT_TRUE(overlay.rect().contains(strip->geometry()));
        QTest::mouseRelease(strip, Qt::LeftButton, {}, handle);
    };
    EXPECT_EQ(sketch(draw), 0) << "nothing is drawn by it";
}

TEST_F(InkRelay, CallsThatCannotBeServedAreRefused)
{
    EXPECT_EQ(entry(1, nullptr, 0, 0, 100, 100), 0);
    EXPECT_EQ(entry(1, u"", 0, 0, 100, 100), 0);
    const std::u16string name = path.toStdU16String();
    EXPECT_EQ(entry(1, name.c_str(), 0, 0, 0, 100), 0);
    EXPECT_EQ(entry(1, name.c_str(), 0, 0, 100, -1), 0);
    EXPECT_EQ(entry(2, name.c_str(), 0, 0, 100, 100), 0);
    drawing.hide();
    EXPECT_EQ(entry(1, name.c_str(), kArea.x(), kArea.y(), kArea.width(), kArea.height()), 0)
        << "nobody sees it";
    EXPECT_TRUE(folder.fileNames().isEmpty());
}
