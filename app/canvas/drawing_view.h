// DrawingView: the drawing area of the window. It shows the current document and takes what a person does
// with mouse and keyboard there.
#pragma once

#include "app/canvas/pointing.h"
#include "app/canvas/view_highlight.h"
#include "app/canvas/view_picture.h"

#include "host/acap/docman.h"
#include "host/acge/geextents.h"

#include <QElapsedTimer>
#include <QWidget>

#include <map>

class QHelpEvent;

namespace window
{

class DrawingView : public QWidget, private AcApDocManagerReactor
{
    Q_OBJECT
    Q_PROPERTY(bool whiteBackground READ whiteBackground WRITE setWhiteBackground)

public:
    explicit DrawingView(WindowFrontEnd &frontEnd, QWidget *parent = nullptr);
    ~DrawingView() override;

    /// Shows everything that is visible, on a sheet the whole sheet also while a viewport is entered. As long
    /// as that is not known of a large drawing it shows what its file says, and corrects that when it is.
    void zoomExtents();
    /// Enlarges by the factor; the place under `at` (widget coordinates) stays where it is.
    void zoomBy(double factor, QPointF at);
    /// Moves the drawing over the screen, widget coordinates.
    void panBy(QPoint way);
    /// Black on white instead of white on black; kept in BACKGROUNDCOLOR.
    bool whiteBackground() const;
    void setWhiteBackground(bool white);

    /// The picture shows exactly the drawing as it is; nothing is being painted.
    bool isSharp() const { return m_picture.isSharp(); }
    /// What is chosen is shown so, and nothing more is being painted for it.
    bool isHighlightSharp() const { return m_highlight.isSharp(); }
    /// The picture of the drawing alone, without what follows the cursor.
    const QImage &picture() const { return m_picture.image(); }
    /// Looks at once for what has changed.
    void refresh();
    /// Everything that can be seen in the current space; hidden marks are left alone.
    void selectAll();

    QSize sizeHint() const override { return {1000, 700}; }

Q_SIGNALS:
    void cursorMoved(const AcGePoint3d &world);
    /// Another part of the drawing is seen, or another drawing.
    void viewChanged();
    /// More or fewer entities are chosen, by whatever way.
    void pickSetChanged();
    void busyChanged(bool busy);
    void painted(const acgi::PaintReport &report);
    /// Typed while the drawing has the keyboard; meant for the command line.
    void textTyped(const QString &text);
    /// Enter, a blank or the right button at a prompt: the command line is confirmed.
    void enterPressed();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    // AcApDocManagerReactor
    void documentToBeDestroyed(AcApDocument *document) override;
    void documentActivated(AcApDocument *document) override;

    bool showHint(QHelpEvent &event);
    QPointF toPixel(QPointF place) const { return place * devicePixelRatioF(); }
    QSize pixelSize() const;
    void fitViewToWidget(AcApDocument &document);
    void promptChanged();
    void lookForChanges();
    void zoomTo(AcApDocument &document, AcDbExtents box);
    void showEverything(AcApDocument &document);
    void correctZoom(AcApDocument &document);
    void rememberView(AcApDocument &document);
    void viewMoved(AcApDocument &document);
    void showDocument(AcApDocument &document, bool mayHaveChanged);
    void showHighlight();
    void paintPlace(QPainter &painter) const;
    void showCursor();
    bool mayRead() const;
    void pressRight(QMouseEvent &event);
    bool pressViewKey(QKeyEvent &event);

    /// A zoom to all that rests on what the file says.
    struct RoughZoom {
        const AcDbDatabase *database;
        AcGeView view; ///< As it was left; who has moved it since does not want to be sent back.
    };

    /// The view as it was when somebody last moved it, and what this widget's size made of it.
    struct FittedView {
        AcGeView asked;
        AcGeView shown;
    };

    WindowFrontEnd &m_frontEnd;
    Pointing m_pointing;
    ViewPicture m_picture;
    ViewHighlight m_highlight;
    QTimer m_watch; ///< Looks for changes that nobody announces, while a prompt waits.
    AcDbDatabase *m_shown = nullptr;
    std::uint64_t m_changeCount = 0;
    AcGiViewport m_view;
    QColor m_background = Qt::black;
    std::vector<AcDbObjectId> m_chosen;                  ///< Of a selection that is being made.
    std::vector<AcGePoint3d> m_place;                    ///< What a dialog is about; world.
    std::size_t m_pickSetSize = 0;                       ///< As it was shown last.
    std::map<const AcApDocument *, FittedView> m_fitted; ///< Documents whose view has this widget's pixels.
    QElapsedTimer m_lastMove;                            ///< By hand.
    AcGeView m_movedTo;                                  ///< As the last move left it.
    std::optional<QPoint> m_panFrom;
    std::optional<RoughZoom> m_roughZoom;
};

} // namespace window
