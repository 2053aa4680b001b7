#include "quillnote/snapshot/snapshot_viewer.h"

#include "ui_123.h"

#include "host/aced/edfrontend.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QStyle>
#include <QtWidgets/qdrawutil.h>

static constexpr int kFromEdge = 2;
static constexpr QPoint kFullViewPlace(20, 200); ///< From the right edge; from the top.
static constexpr int kNearCorner = 64;
static constexpr QSize kSmallest(100, 64);

// Rules -------------------------------------------------------------------------------------------

static int pushedBack(int begin, int length, int screenLength)
{
    return begin + length > screenLength ? screenLength - length - kFromEdge : begin;
}

QRect snapshotViewerPlace(SnapshotKind kind, const QSize &picture, const QSize &screen,
                          const std::optional<QPoint> &movedTo)
{
    if (kind == SnapshotKind::fullView)
        return {movedTo.value_or(QPoint(screen.width() - kFullViewPlace.x(), kFullViewPlace.y())), picture};
    if (!movedTo)
        return {QPoint(screen.width() - picture.width() - kFromEdge, kFromEdge), picture};
    return {QPoint(pushedBack(movedTo->x(), picture.width(), screen.width()),
                   pushedBack(movedTo->y(), picture.height(), screen.height())),
            picture};
}

bool showsCloseButton(const QPoint &mouse)
{
    return mouse.x() < kNearCorner && mouse.y() < kNearCorner;
}

bool isShownInViewer(const QSize &picture)
{
    return picture.width() >= kSmallest.width() && picture.height() >= kSmallest.height();
}

// The window --------------------------------------------------------------------------------------

CViewSnapshot::CViewSnapshot(SnapshotKind kind) : m_form(std::make_unique<Ui::SnapshotViewer>()), m_kind(kind)
{
    m_form->setupUi(this);
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    setMouseTracking(true);
    connectOkCancel();
    m_form->id2->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    setItemVisible(kAcUiCancel, false);
}

CViewSnapshot::~CViewSnapshot() = default;

void CViewSnapshot::showPicture(const QPixmap &picture)
{
    m_picture = picture;
    const QSize screen = QGuiApplication::primaryScreen()->size();
    setGeometry(
        snapshotViewerPlace(m_kind, picture.size(), screen, m_moved ? std::optional(pos()) : std::nullopt));
    show();
    update();
}

void CViewSnapshot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
    // Its edge tells the picture from the drawing under it.
    qDrawShadePanel(&painter, rect(), palette(), true);
}

void CViewSnapshot::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_moved = true;
    m_grip = event->pos();
    update();
}

void CViewSnapshot::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        move(event->globalPosition().toPoint() - m_grip);
    else
        setItemVisible(kAcUiCancel, showsCloseButton(event->pos()));
}

// The mouse may go out over the near edges without another move inside.
void CViewSnapshot::leaveEvent(QEvent *event)
{
    CAcUiDialog::leaveEvent(event);
    setItemVisible(kAcUiCancel, false);
}

// The two viewers ---------------------------------------------------------------------------------

static QPointer<CViewSnapshot> &viewerOf(SnapshotKind kind)
{
    static QPointer<CViewSnapshot> target;
    static QPointer<CViewSnapshot> fullView;
    return kind == SnapshotKind::target ? target : fullView;
}

CViewSnapshot *snapshotViewer(SnapshotKind kind)
{
    CViewSnapshot *const viewer = viewerOf(kind);
    // A closed one is on its way out.
    return viewer && viewer->isVisible() ? viewer : nullptr;
}

void showSnapshotImage(const QByteArray &bytes, SnapshotKind kind)
{
    QPixmap picture;
    const bool isPicture = picture.loadFromData(bytes);
    if (!isPicture || !isShownInViewer(picture.size())) {
        acutPrintf(isPicture ? QStringLiteral("靶区图片太小不显示。")
                             : QStringLiteral("靶区图片没加载成功。"));
        // What is shown is of another mark.
        delete viewerOf(kind).data();
        return;
    }
    if (!snapshotViewer(kind))
        viewerOf(kind) = new CViewSnapshot(kind);
    viewerOf(kind)->showPicture(picture);
}

void closeSnapshotViewers()
{
    for (const SnapshotKind kind : {SnapshotKind::target, SnapshotKind::fullView})
        delete viewerOf(kind).data();
}
