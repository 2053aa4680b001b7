#include "app/canvas/pointing.h"

#include "host/acdb/dbentity.h"
#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/aced/edmenu.h"
#include "host/aced/edpick.h"
#include "host/aced/edpicture.h"
#include "host/aced/edselect.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

#include <algorithm>
#include <unordered_set>

namespace window
{

/// A press that moved less is a click, pixels.
static constexpr double kLeastDrag = 6.0;

// Places ------------------------------------------------------------------------------------------

AcGiViewport pointingView(const AcApDocument &document)
{
    return acedGiViewport(document.view(), !acedIsModelSpaceCurrent(document));
}

AcGePoint3d worldAt(const AcApDocument &document, QPointF pixel)
{
    const AcGeMatrix3d toWorld = pointingView(document).worldToPixel().inverse();
    AcGePoint3d place = toWorld * AcGePoint3d(pixel.x(), pixel.y(), 0.0);
    const AcApUcs &ucs = document.ucs();
    const AcGeVector3d normal = ucs.xAxis.crossProduct(ucs.yAxis).normal();
    // Edge on, the plane has no place for the pixel.
    constexpr double kEdgeOn = 1e-6;
    if (std::abs(normal.z) < kEdgeOn)
        return place;
    const AcGeVector3d away(place.x - ucs.origin.x, place.y - ucs.origin.y, 0.0);
    place.z = ucs.origin.z + (acedRealVar(QStringLiteral("ELEVATION")) - normal.dotProduct(away)) / normal.z;
    return place;
}

static QPointF pixelOf(const AcApDocument &document, const AcGePoint3d &world)
{
    const AcGePoint3d place = pointingView(document).worldToPixel() * world;
    return {place.x, place.y};
}

static bool isFar(QPointF one, QPointF other)
{
    return (one - other).manhattanLength() > kLeastDrag;
}

// Answers -----------------------------------------------------------------------------------------

Pointing::Pointing(WindowFrontEnd &frontEnd, QObject *parent) : QObject(parent), m_frontEnd(frontEnd) {}

void Pointing::givePoint(const AcGePoint3d &world)
{
    m_frontEnd.give(AcEdAnswer::ofPoint(world));
}

void Pointing::giveEntityOrPoint(AcApDocument &document, QPointF pixel)
{
    const bool isSelection = m_frontEnd.prompt()->kind == AcEdPromptKind::selection;
    const AcGePoint3d place = worldAt(document, pixel);
    const AcDbObjectId entity = acedPickAt(document, place, {});
    if (isSelection && entity.isNull()) {
        m_selectsWindow = true;
        m_dragFrom = pixel;
    }
    m_frontEnd.give(entity.isNull() ? AcEdAnswer::ofPoint(place) : AcEdAnswer::ofEntity(entity, place));
}

void Pointing::pressAnswering(AcApDocument &document, QPointF pixel)
{
    switch (m_frontEnd.prompt()->kind) {
    case AcEdPromptKind::point:
    case AcEdPromptKind::corner:
    case AcEdPromptKind::distance:
    case AcEdPromptKind::angle:
        givePoint(worldAt(document, pixel));
        break;
    case AcEdPromptKind::entity:
    case AcEdPromptKind::selection:
        giveEntityOrPoint(document, pixel);
        break;
    default:
        break; // Texts and numbers are typed.
    }
}

void Pointing::press(QPointF pixel, Qt::KeyboardModifiers modifiers)
{
    m_cursor = pixel;
    m_dragFrom.reset();
    AcApDocument *const document = curDoc();
    if (!document || !m_frontEnd.prompt())
        return;
    if (m_frontEnd.isIdle())
        pressIdle(*document, pixel, modifiers);
    else
        pressAnswering(*document, pixel);
}

void Pointing::release(QPointF pixel, Qt::KeyboardModifiers modifiers)
{
    AcApDocument *const document = curDoc();
    const std::optional<QPointF> from = std::exchange(m_dragFrom, std::nullopt);
    if (!document || !from || !m_frontEnd.prompt() || !isFar(*from, pixel))
        return;
    if (m_windowCorner)
        finishWindow(*document, pixel, modifiers & Qt::ShiftModifier);
    else if (isDraggingGrip() || (m_selectsWindow && m_frontEnd.prompt()->kind == AcEdPromptKind::corner))
        givePoint(worldAt(*document, pixel));
}

void Pointing::escape()
{
    if (!m_frontEnd.isIdle()) {
        m_frontEnd.cancel();
        return;
    }
    if (std::exchange(m_windowCorner, std::nullopt)) {
        Q_EMIT changed();
        return;
    }
    AcApDocument *const document = curDoc();
    if (!document || document->pickSet().empty())
        return;
    document->pickSet().clear();
    Q_EMIT pickSetChanged();
}

// The command prompt ------------------------------------------------------------------------------

void Pointing::pressIdle(AcApDocument &document, QPointF pixel, Qt::KeyboardModifiers modifiers)
{
    const bool removes = modifiers & Qt::ShiftModifier;
    if (m_windowCorner) {
        finishWindow(document, pixel, removes);
        return;
    }
    const auto grip = removes ? std::nullopt : m_grips.at(pixel, pointingView(document));
    if (grip) {
        m_dragFrom = pixel;
        beginGrip(*grip);
        return;
    }
    const AcGePoint3d place = worldAt(document, pixel);
    const AcDbObjectId entity = acedPickAt(document, place, {});
    if (!entity.isNull()) {
        addToPickSet(document, {entity}, removes);
        return;
    }
    m_windowCorner = place;
    m_dragFrom = pixel;
    Q_EMIT changed();
}

void Pointing::beginGrip(const AcGePoint3d &grip)
{
    m_frontEnd.queue({AcEdAnswer::ofText(QStringLiteral("_GRIP")), AcEdAnswer::ofPoint(grip)});
}

void Pointing::addToPickSet(AcApDocument &document, const std::vector<AcDbObjectId> &entities, bool removes)
{
    std::vector<AcDbObjectId> &set = document.pickSet();
    const std::unordered_set<AcDbObjectId> known(set.begin(), set.end());
    if (removes) {
        const std::unordered_set<AcDbObjectId> removed(entities.begin(), entities.end());
        std::erase_if(set, [&removed](AcDbObjectId id) { return removed.contains(id); });
    } else {
        std::copy_if(entities.begin(), entities.end(), std::back_inserter(set),
                     [&known](AcDbObjectId id) { return !known.contains(id); });
    }
    Q_EMIT pickSetChanged();
}

/// Drawn to the right it takes what lies inside, to the left also what it touches.
void Pointing::finishWindow(AcApDocument &document, QPointF pixel, bool removes)
{
    const AcGePoint3d corner = acedTrans(*m_windowCorner, AcEdSpace::world, AcEdSpace::ucs);
    const AcGePoint3d other = acedTrans(worldAt(document, pixel), AcEdSpace::world, AcEdSpace::ucs);
    const bool isCrossing = pixel.x() < pixelOf(document, *m_windowCorner).x();
    m_windowCorner.reset();
    AcEdSelectionSet found;
    acedSSGet(isCrossing ? QStringLiteral("C") : QStringLiteral("W"), &corner, &other, {}, found);
    addToPickSet(document, found, removes);
    Q_EMIT changed();
}

QString doubleClickMacro(AcDbObjectId entity)
{
    const QString kind = QString::fromLatin1(acdbKindName(entity.stub()->kind));
    for (const auto &group : acedMenus().groups()) {
        for (const AcEdDoubleClick &action : group->doubleClicks) {
            if (action.dxfName.compare(kind, Qt::CaseInsensitive) == 0)
                return action.macro;
        }
    }
    return {};
}

void Pointing::doubleClick(QPointF pixel)
{
    AcApDocument *const document = curDoc();
    if (!document || !(m_frontEnd.isIdle() || isDraggingGrip()))
        return;
    const AcDbObjectId entity = acedPickAt(*document, worldAt(*document, pixel), {});
    const QString macro = entity.isNull() ? QString() : doubleClickMacro(entity);
    if (macro.isEmpty()) {
        press(pixel, {});
        return;
    }
    m_windowCorner.reset();
    m_dragFrom.reset();
    document->pickSet() = {entity};
    Q_EMIT pickSetChanged();
    m_frontEnd.runMacro(macro);
}

// Following the cursor ----------------------------------------------------------------------------

bool Pointing::isDraggingGrip() const
{
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    return prompt && prompt->kind == AcEdPromptKind::point && prompt->hasBase &&
           acedEditor()->activeCommands() == u"GRIP";
}

void Pointing::update()
{
    AcApDocument *const document = curDoc();
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    if (!prompt) {
        m_followed = nullptr;
        Q_EMIT changed(); // A dialog may come now: no band goes on following the cursor behind it.
        return;
    }
    if (prompt->kind != AcEdPromptKind::corner)
        m_selectsWindow = false;
    if (!m_frontEnd.isIdle())
        m_windowCorner.reset();
    m_grips.update(document);
    m_hoveredGrip =
        document && m_frontEnd.isIdle() ? m_grips.at(m_cursor, pointingView(*document)) : std::nullopt;
    if (document && prompt->tracker && m_followed != prompt) {
        m_followed = prompt;
        prompt->tracker->cursorMoved(worldAt(*document, m_cursor));
    }
    Q_EMIT changed();
}

void Pointing::move(QPointF pixel)
{
    m_cursor = pixel;
    const AcApDocument *const document = curDoc();
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    if (!document || !prompt)
        return;
    const auto hovered =
        m_frontEnd.isIdle() && !m_windowCorner ? m_grips.at(pixel, pointingView(*document)) : std::nullopt;
    bool isOther = hovered != m_hoveredGrip;
    m_hoveredGrip = hovered;
    if (prompt->tracker)
        isOther |= prompt->tracker->cursorMoved(worldAt(*document, pixel));
    if (isOther || band() != Band::none)
        Q_EMIT changed();
}

Pointing::Band Pointing::band() const
{
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    if (!prompt)
        return Band::none;
    if (m_windowCorner)
        return Band::window;
    if (!prompt->hasBase)
        return Band::none;
    if (prompt->kind == AcEdPromptKind::corner)
        return m_selectsWindow ? Band::window : Band::rectangle;
    const bool hasLine = prompt->kind == AcEdPromptKind::point || prompt->kind == AcEdPromptKind::distance ||
                         prompt->kind == AcEdPromptKind::angle;
    return hasLine ? Band::line : Band::none;
}

std::optional<QPointF> Pointing::bandStart(const AcApDocument &document) const
{
    if (m_windowCorner)
        return pixelOf(document, *m_windowCorner);
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    if (!prompt || !prompt->hasBase)
        return std::nullopt;
    return pixelOf(document, acedTrans(prompt->base, AcEdSpace::ucs, AcEdSpace::world));
}

/// A colour that stands out from the background.
static QColor lineColor()
{
    const QColor background = QColor::fromRgb(QRgb(acedIntVar(QStringLiteral("BACKGROUNDCOLOR"), 0)));
    return background.lightness() < 128 ? QColor(Qt::white) : QColor(Qt::black);
}

void Pointing::paintBand(QPainter &painter, const AcApDocument &document) const
{
    const Band shape = band();
    const std::optional<QPointF> start = bandStart(document);
    if (shape == Band::none || !start)
        return;
    painter.save();
    painter.setPen(QPen(lineColor(), 0));
    if (shape == Band::line) {
        painter.drawLine(*start, m_cursor);
    } else {
        const QRectF rectangle = QRectF(*start, m_cursor).normalized();
        if (shape == Band::window) {
            const bool isCrossing = m_cursor.x() < start->x();
            QColor filling = isCrossing ? QColor(0, 170, 60) : QColor(0, 90, 220);
            filling.setAlpha(70);
            painter.fillRect(rectangle, filling);
            painter.setPen(QPen(lineColor(), 0, isCrossing ? Qt::DashLine : Qt::SolidLine));
        }
        painter.drawRect(rectangle);
    }
    painter.restore();
}

void Pointing::paintTracked(QPainter &painter, AcApDocument &document) const
{
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    if (!prompt->tracker || m_followed != prompt)
        return;
    const std::vector<const AcDbEntity *> shown = prompt->tracker->shown();
    if (shown.empty())
        return;
    acgi::PaintOptions options = acedScreenOptions(document);
    options.fillBackground = false;
    acgi::displayOf(*document.database()).paintTransients(shown, pointingView(document), painter, options);
}

void Pointing::paint(QPainter &painter) const
{
    AcApDocument *const document = curDoc();
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    if (!document || !prompt)
        return;
    paintTracked(painter, *document);
    const bool isDragging = isDraggingGrip();
    const auto hot =
        isDragging ? std::optional(acedTrans(prompt->base, AcEdSpace::ucs, AcEdSpace::world)) : std::nullopt;
    if (m_frontEnd.isIdle() || acedEditor()->activeCommands() == u"GRIP")
        m_grips.paint(painter, pointingView(*document), m_hoveredGrip, hot);
    paintBand(painter, *document);
}

} // namespace window
