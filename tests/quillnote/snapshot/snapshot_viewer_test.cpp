// The snapshot viewers: where they stand, what they refuse to show, dragging and closing.
#include "quillnote/snapshot/snapshot_viewer.h"

#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QMouseEvent>
#include <QScreen>

static QByteArray png(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

TEST(SnapshotViewerPlace, FollowsKindScreenAndUser)
{
    const QSize screen(1920, 1080);
    const QSize picture(300, 200);
    struct Case {
        SnapshotKind kind;
        std::optional<QPoint> movedTo;
        QPoint place;
    };
    const Case cases[] = {
        {SnapshotKind::target, {}, {1618, 2}},
        {SnapshotKind::target, QPoint(-40, 70), {-40, 70}},
        {SnapshotKind::target, QPoint(1620, 880), {1620, 880}},
        {SnapshotKind::target, QPoint(1621, 881), {1618, 878}},
        {SnapshotKind::fullView, {}, {1900, 200}},
        {SnapshotKind::fullView, QPoint(2500, 900), {2500, 900}},
    };
    for (const Case &each : cases)
        EXPECT_EQ(snapshotViewerPlace(each.kind, picture, screen, each.movedTo), QRect(each.place, picture));
}

struct SnapshotViewerTest : testing::Test {
    ~SnapshotViewerTest() override { closeSnapshotViewers(); }
    tests::ScriptFrontEnd script;
};

TEST_F(SnapshotViewerTest, SmallAndBrokenPicturesAreTold)
{
    showSnapshotImage(png(99, 200), SnapshotKind::target);
    showSnapshotImage(png(100, 63), SnapshotKind::target);
    EXPECT_EQ(script.printed, QStringLiteral("靶区图片太小不显示。靶区图片太小不显示。"));
    script.printed.clear();
    showSnapshotImage(png(200, 200).left(60), SnapshotKind::target);
    showSnapshotImage({}, SnapshotKind::fullView);
    EXPECT_EQ(script.printed, QStringLiteral("靶区图片没加载成功。靶区图片没加载成功。"));
    EXPECT_EQ(snapshotViewer(SnapshotKind::target), nullptr);
    showSnapshotImage(png(100, 64), SnapshotKind::target);
    EXPECT_NE(snapshotViewer(SnapshotKind::target), nullptr);
    EXPECT_EQ(snapshotViewer(SnapshotKind::fullView), nullptr);
}

TEST_F(SnapshotViewerTest, ADraggedViewerStaysWhereItIs)
{
    showSnapshotImage(png(200, 100), SnapshotKind::target);
    CViewSnapshot *const viewer = snapshotViewer(SnapshotKind::target);
    ASSERT_TRUE(viewer);
    const QSize screen = QGuiApplication::primaryScreen()->size();
    EXPECT_EQ(viewer->geometry(), QRect(screen.width() - 202, 2, 200, 100));
    EXPECT_EQ(viewer->grab().toImage().pixelColor(100, 50), QColor(Qt::red));

    const auto drag = [viewer](QEvent::Type type, const QPoint &at, Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, viewer->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewer, &event);
    };
    drag(QEvent::MouseButtonPress, {80, 70}, Qt::LeftButton);
    drag(QEvent::MouseMove, {80 - 300, 70 + 40}, Qt::LeftButton);
    EXPECT_TRUE(viewer->wasMoved());
    const QPoint left(screen.width() - 502, 42);
    EXPECT_EQ(viewer->pos(), left);
    showSnapshotImage(png(150, 120), SnapshotKind::target);
    EXPECT_EQ(viewer->geometry(), QRect(left, QSize(150, 120)));
}

TEST_F(SnapshotViewerTest, TheCloseButtonShowsNearTheCornerAndEndsTheViewer)
{
    showSnapshotImage(png(200, 100), SnapshotKind::fullView);
    CViewSnapshot *const viewer = snapshotViewer(SnapshotKind::fullView);
    ASSERT_TRUE(viewer);
    const auto isButtonShownAt = [viewer](const QPoint &at) {
        QMouseEvent event(QEvent::MouseMove, at, viewer->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(viewer, &event);
        return viewer->item(2)->isVisible();
    };
    EXPECT_FALSE(viewer->item(2)->isVisible());
    EXPECT_TRUE(isButtonShownAt({63, 63}));
    EXPECT_FALSE(isButtonShownAt({64, 10}));
    EXPECT_FALSE(isButtonShownAt({10, 64}));
    EXPECT_TRUE(isButtonShownAt({1, 1}));
    qobject_cast<QAbstractButton *>(viewer->item(2))->click();
    EXPECT_EQ(snapshotViewer(SnapshotKind::fullView), nullptr);
    // The next one does not remember where the last one was.
    showSnapshotImage(png(200, 100), SnapshotKind::fullView);
    ASSERT_TRUE(snapshotViewer(SnapshotKind::fullView));
    EXPECT_FALSE(snapshotViewer(SnapshotKind::fullView)->wasMoved());
}
