// The floating viewers that show a mark's stored pictures: one for target pictures, one for pictures of the
// whole view. A viewer has no caption; it is dragged by its picture and closed by a button that appears when
// the mouse comes near its corner.
#pragma once

#include "host/acui/acuidialog.h"

#include <QPixmap>
#include <QRect>

#include <memory>

namespace Ui
{
class SnapshotViewer;
}

enum class SnapshotKind { target, fullView };

/// Where a viewer stands with a picture. Target pictures: at the upper right of the screen until the user
/// moves the viewer, afterwards where it was left, pushed back where it would stick out to the right or
/// below. Full views: beyond the right edge, on a second screen, until moved.
QRect snapshotViewerPlace(SnapshotKind kind, const QSize &picture, const QSize &screen,
                          const std::optional<QPoint> &movedTo);
/// The close button is there while the mouse is near the upper left corner.
bool showsCloseButton(const QPoint &mouse);
/// Pictures smaller than this (100 x 64 pixels) are not shown.
bool isShownInViewer(const QSize &picture);

class CViewSnapshot : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit CViewSnapshot(SnapshotKind kind);
    ~CViewSnapshot() override;

    void showPicture(const QPixmap &picture);
    bool wasMoved() const { return m_moved; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    std::unique_ptr<Ui::SnapshotViewer> m_form;
    SnapshotKind m_kind;
    QPixmap m_picture;
    bool m_moved = false; ///< By the user, since the viewer was opened.
    QPoint m_grip;        ///< Of the drag: the mouse within the window.
};

/// Shows a picture file's bytes in the viewer of its kind, which opens when needed. What is no picture, or
/// too small a one, is told on the command line and closes the viewer: it would show another mark's picture.
void showSnapshotImage(const QByteArray &bytes, SnapshotKind kind);
/// The viewer that is open; null when there is none.
CViewSnapshot *snapshotViewer(SnapshotKind kind);
void closeSnapshotViewers();
