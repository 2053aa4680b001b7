// Pointing: what clicks and moves in the drawing view mean to the prompt that waits, and what follows the
// cursor over the picture.
//
// Pixels are those of the view (AcGeView::pixelWidth), from its upper left corner. A press with the left
// button answers; pressing, dragging and releasing works like two clicks where two clicks belong together.
#pragma once

#include "app/canvas/view_grips.h"
#include "app/front_end/window_front_end.h"

#include "host/acgi/viewport.h"

#include <QPainter>

namespace window
{

/// The view of the current space, which is where points are; in an entered viewport model space as it lies on
/// the screen.
AcGiViewport pointingView(const AcApDocument &document);
/// The place under a pixel on the XY plane of the current UCS at ELEVATION, world coordinates.
AcGePoint3d worldAt(const AcApDocument &document, QPointF pixel);

/// The menu macro that a double click on the entity runs; empty when there is none.
QString doubleClickMacro(AcDbObjectId entity);

class Pointing : public QObject
{
    Q_OBJECT

public:
    explicit Pointing(WindowFrontEnd &frontEnd, QObject *parent = nullptr);

    void press(QPointF pixel, Qt::KeyboardModifiers modifiers);
    void move(QPointF pixel);
    void release(QPointF pixel, Qt::KeyboardModifiers modifiers);
    /// Runs what a double click on the entity there stands for.
    void doubleClick(QPointF pixel);
    /// Ends a window that was begun at the command prompt; otherwise empties the pick set. Cancels prompts.
    void escape();
    /// Another prompt waits, or another view or drawing is shown.
    void update();

    /// What follows the cursor. The painter's coordinates are the pixels of the view.
    void paint(QPainter &painter) const;

Q_SIGNALS:
    /// paint() would give something else than before.
    void changed();
    void pickSetChanged();

private:
    enum class Band { none, line, rectangle, window };

    void pressIdle(AcApDocument &document, QPointF pixel, Qt::KeyboardModifiers modifiers);
    void pressAnswering(AcApDocument &document, QPointF pixel);
    void giveEntityOrPoint(AcApDocument &document, QPointF pixel);
    void givePoint(const AcGePoint3d &world);
    void beginGrip(const AcGePoint3d &grip);
    void addToPickSet(AcApDocument &document, const std::vector<AcDbObjectId> &entities, bool removes);
    void finishWindow(AcApDocument &document, QPointF pixel, bool removes);
    bool isDraggingGrip() const;
    Band band() const;
    std::optional<QPointF> bandStart(const AcApDocument &document) const;
    void paintBand(QPainter &painter, const AcApDocument &document) const;
    void paintTracked(QPainter &painter, AcApDocument &document) const;

    WindowFrontEnd &m_frontEnd;
    ViewGrips m_grips;
    QPointF m_cursor;
    std::optional<AcGePoint3d> m_hoveredGrip;
    std::optional<AcGePoint3d> m_windowCorner; ///< Of a window at the command prompt, world.
    bool m_selectsWindow = false;              ///< The corner that is asked for belongs to a selection.
    std::optional<QPointF> m_dragFrom;         ///< The press began something that a release may end.
    const AcEdPrompt *m_followed = nullptr;    ///< Whose tracker knows the cursor.
};

} // namespace window
