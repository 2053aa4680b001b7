// Display: the pictures of a drawing's entities as display lists, and painting them. Lists are made when
// first needed and made again when their entity changes; layers, colours of layers, linetype scales and the
// background are looked at while painting, so changing those costs nothing.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/acge/geextents.h"
#include "host/acgi/viewport.h"

#include <QColor>
#include <QImage>
#include <QPainter>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

class AcDbEntity;

namespace acgi
{

struct PaintOptions {
    QColor background = Qt::black;
    bool fillBackground = true;
    /// Off draws every line one pixel wide, but for those that are always as wide as they state.
    bool lineWeights = false;
    double pixelsPerMillimetre = 4.0; ///< For lineweights.
    bool monochrome = false;          ///< Everything in the colour that stands out from the background.
    /// Plots leave out layers that do not plot; text goes out as text that can be searched.
    bool plotting = false;
    bool antialiasing = true;
    /// Everything in this colour, over a picture that is there already: what is chosen, what is being moved.
    QColor highlight;
    /// Only this part of the view is painted, pixels; all of it when empty.
    QRect part;
    /// True for entities that the picture does without.
    std::function<bool(AcDbObjectId)> leavesOut;
    /// Asked for the entities of a space that may be seen in a box of the world's plane; only their lists are
    /// made. None: it is not known, or all may as well be looked at.
    std::function<std::optional<std::vector<AcDbObjectId>>(AcDbObjectId space, const AcDbExtents &box)> near;
    /// The picture is none of the screen's: what the screen shows, and its lists, stay as they are.
    bool besideScreen = false;
    /// Asked now and then; true ends the painting early.
    std::function<bool()> isCancelled;
};

struct PaintReport {
    std::size_t painted = 0; ///< Entities of the space that had to do with the view.
    /// Entities that could not be drawn or only in part: kind and reason ("3DSOLID: no graphics",
    /// "IMAGE: plan.png not found"), and how many.
    std::map<QString, std::size_t> undrawn;
    bool cancelled = false;
};

/// What has to be painted again.
struct Damage {
    bool everything = false;
    QRect part; ///< Otherwise; empty when nothing changed.
};

class Display
{
public:
    ~Display();
    Display(const Display &) = delete;
    Display &operator=(const Display &) = delete;

    /// Paints a space (block record of model space or a layout) as seen in `view`. The painter's coordinates
    /// are the pixels of the view; an image of that size, a window, or a PDF page scaled to it.
    PaintReport paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                      const PaintOptions &options);
    /// Makes lists that the view needs and that are missing, for about so long. True when none is missing.
    bool prepare(AcDbObjectId space, const AcGiViewport &view, int milliseconds);
    /// Paints on threads of its own; `done` gets the picture on the calling thread, from its event loop. What
    /// changes the lists stops the painting first, and so does another call; then `done` is never called. Not
    /// for plots; `isCancelled` is not asked and the background always filled. With a part, only that part of
    /// the picture is painted.
    void paintInBackground(AcDbObjectId space, const AcGiViewport &view, const PaintOptions &options,
                           std::function<void(QImage, PaintReport)> done);
    void stopPainting();

    /// Paints single entities of the shown space over a picture.
    void paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view, QPainter &painter,
                       const PaintOptions &options);
    /// The same for entities that stand in no drawing.
    void paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                         QPainter &painter, const PaintOptions &options);

    /// The box in x and y of what the entity shows in the view; not valid when that is nothing or without
    /// end.
    AcDbExtents shownBox(AcDbObjectId entity, const AcGiViewport &view);

    /// Forgets the lists of entities that look different in each view, and all others when `everything`.
    void regenerate(bool everything = false);
    /// Forgets the list of one entity.
    void regenerate(AcDbObjectId entity);
    /// What looks different since the last call, as far as it lies in the space: pixels of the view that it
    /// was painted in last.
    Damage takeDamage(AcDbObjectId space, const AcGiViewport &view);
    /// Bytes held by the lists.
    std::size_t memory() const;

private:
    friend base::Attachments;
    class Impl;
    explicit Display(AcDbDatabase &database);
    std::unique_ptr<Impl> m_impl;
};

/// The display of a drawing, made when first asked for; it ends with the drawing.
Display &displayOf(AcDbDatabase &database);

} // namespace acgi
