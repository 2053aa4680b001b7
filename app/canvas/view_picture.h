// ViewPicture: the last picture of the drawing, kept so that panning and zooming show something at once.
//
// Panning moves the picture by whole pixels and paints only what came into view; after zooming the old
// picture is shown scaled until the sharp one is there; changes of the drawing repaint only where they show.
// Nothing takes longer than a few hundredths of a second at a time: missing display lists are made in slices,
// and pictures that take long are painted in the background.
#pragma once

#include "host/acgi/display/display.h"

#include <QObject>
#include <QRegion>
#include <QTimer>
#include <QTransform>

namespace window
{

/// What a picture shows.
struct ViewSubject {
    AcDbDatabase *database = nullptr;
    AcDbObjectId space;
    AcGiViewport view;
    acgi::PaintOptions options;
    QString folder; ///< Of the drawing: images are looked for in it.

    /// Both look at the same thing in the same way, if perhaps from elsewhere.
    bool isLike(const ViewSubject &other) const;
};

/// Pixels of one view in the pixels of another.
QTransform pixelTransform(const AcGiViewport &from, const AcGiViewport &to);
bool isSameView(const AcGiViewport &one, const AcGiViewport &other);

class ViewPicture : public QObject
{
    Q_OBJECT

public:
    explicit ViewPicture(QObject *parent = nullptr);

    /// What is to be seen from now on. The drawing may be read at this moment.
    void show(const ViewSubject &subject);
    /// The drawing may have changed: looks for what has to be painted again.
    void takeDamage();
    /// Shows nothing; before a drawing goes.
    void clear();

    /// Paints what there is; the painter's coordinates are the pixels of the view.
    void paint(QPainter &painter) const;
    /// The picture is complete and shows exactly the subject.
    bool isSharp() const;
    const QImage &image() const { return m_image; }

Q_SIGNALS:
    /// paint() would give something else than before.
    void changed();
    /// Work on the picture began or ended.
    void busyChanged(bool busy);
    /// A whole picture was painted.
    void painted(const acgi::PaintReport &report);

private:
    void moveTo(const AcGiViewport &view);
    void advance();
    void finishSoon();
    void paintMissing();
    bool paintAtOnce();
    void paintBehind();
    void takeLatePicture(const QImage &image, const acgi::PaintReport &report);
    void takePicture(const QImage &image, const acgi::PaintReport &report, const AcGiViewport &view);
    void prepareIndex();
    bool isPaintingBehind() const { return !m_behind.expired(); }
    void setBusy(bool busy);

    ViewSubject m_subject;
    QImage m_image;
    AcGiViewport m_imageView; ///< What the image shows.
    QRegion m_missing;        ///< Pixels of the image that are not painted or out of date.
    bool m_isOutOfDate = true;
    std::weak_ptr<bool> m_behind; ///< Alive while a picture is being painted in the background.
    AcGiViewport m_behindView;
    double m_seconds = 0.0; ///< How long the last whole picture took.
    bool m_isBusy = false;
    QTimer m_next;
    QTimer m_index; ///< Slices of the spatial index, which the next pick or window needs.
};

} // namespace window
