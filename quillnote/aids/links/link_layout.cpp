#include "quillnote/aids/links/link_layout.h"

#include "quillnote/aids/links/link_record.h"

#include <algorithm>
#include <cmath>

static constexpr double kStepShare = 1.0 / 15.0; ///< Of the diagonal: how long a link of the chain is.
static constexpr double kLeastStep = 0.0001;     ///< Shorter ones count as 1.
static constexpr int kMostPoints = 100;
static constexpr double kLeastLink = 0.001; ///< Shorter ones are not drawn.

// Wide links reach beyond their ends, so that they hold their narrow neighbours.
static std::optional<ChainLink> chainLink(const AcGePoint3d &start, const AcGePoint3d &end, bool isWide)
{
    const double length = start.distanceTo(end);
    if (!(length >= kLeastLink) || !std::isfinite(length))
        return std::nullopt;
    ChainLink link{start, end, length / (isWide ? 4.0 : 8.0), isWide};
    if (isWide) {
        const AcGeVector3d outwards = (end - start) * (link.radius / 2.0 / length);
        link.start = start - outwards;
        link.end = end + outwards;
    }
    return link;
}

static void appendChain(std::vector<ChainLink> &chain, const AcGePoint3d &from, const AcGePoint3d &to,
                        double step)
{
    const double links = std::round(from.distanceTo(to) / (step < kLeastStep ? 1.0 : step));
    const int points = links < kMostPoints ? std::max(int(links) + 1, 2) : kMostPoints;
    const auto at = [&](int i) { return from + (to - from) * (double(i) / (points - 1)); };
    for (int i = 0; i + 1 < points; ++i) {
        if (const auto link = chainLink(at(i), at(i + 1), i % 2 == 1))
            chain.push_back(*link);
    }
}

static std::optional<std::array<AcGePoint3d, 3>> arcToPartner(const QuillLinkObj &link)
{
    if (link.linkRole != QuillLinkObj::source || link.linkKind != QuillLinkObj::sameDrawing ||
        !link.partnerId.isValid())
        return std::nullopt;
    const AcDbObjectPointer<QuillLinkObj> partner(link.partnerId, AcDb::kForRead);
    if (!partner)
        return std::nullopt;
    const AcGePoint3d from = link.centre();
    const AcGePoint3d to = partner->centre();
    AcGePoint3d middle = from + (to - from) * 0.5;
    middle.y += from.distanceTo(to) / 6.0;
    return std::array{from, middle, to};
}

LinkLayout layOutLink(const QuillLinkObj &link)
{
    LinkLayout layout{.corners = link.corners(), .normal = link.normal.normal(), .color = link.colorIndex};
    const auto &[corner1, corner2, corner3, corner4] = layout.corners;
    const double step = layout.corners.diagonal() * kStepShare;
    for (const auto &[from, to] : {std::pair(corner1, corner4), std::pair(corner4, corner2),
                                   std::pair(corner2, corner3), std::pair(corner3, corner1)})
        appendChain(layout.chain, from, to, step);
    if (link.linkKind != QuillLinkObj::sameDrawing) {
        const double along = 2.0 * step * std::sqrt(0.5);
        layout.leadsOut = corner2 + AcGeVector3d(along, along, 0.0);
        appendChain(layout.chain, corner2, *layout.leadsOut, step);
    }
    layout.arc = arcToPartner(link);
    return layout;
}

// Drawing -----------------------------------------------------------------------------------------

static void drawChainLink(const ChainLink &link, const AcGeVector3d &normal, AcGiGeometry &geometry)
{
    const AcGeVector3d along = (link.end - link.start).normal();
    const AcGeVector3d aside = normal.crossProduct(along) * link.radius;
    const AcGePoint3d first = link.start + along * link.radius;
    const AcGePoint3d last = link.end - along * link.radius;
    const AcGePoint3d right[] = {first - aside, last - aside};
    const AcGePoint3d left[] = {first + aside, last + aside};
    geometry.circularArc(right[0], link.start, left[0]);
    geometry.circularArc(left[1], link.end, right[1]);
    geometry.polyline(2, right);
    geometry.polyline(2, left);
}

static void drawArc(const LinkLayout &layout, const AcGiCommonDraw &context)
{
    if (layout.arc)
        context.geometry().circularArc((*layout.arc)[0], (*layout.arc)[1], (*layout.arc)[2]);
}

void drawLink(const LinkLayout &layout, const AcGiCommonDraw &context)
{
    AcGiSubEntityTraits &pen = context.subEntityTraits();
    const acgi::Traits own = pen.traits();
    pen.setFillType(kAcGiFillAlways);
    for (const ChainLink &link : layout.chain) {
        if (link.isWide)
            pen.setTrueColor(own.color);
        else
            pen.setColor(layout.color);
        drawChainLink(link, layout.normal, context.geometry());
    }
    pen.setTraits(own);
    drawArc(layout, context);
}

void drawPlainLink(const LinkLayout &layout, const AcGiCommonDraw &context)
{
    const auto &[corner1, corner2, corner3, corner4] = layout.corners;
    const acgi::Traits own = context.subEntityTraits().traits();
    context.subEntityTraits().setColor(layout.color);
    const AcGePoint3d outline[] = {corner1, corner4, corner2, corner3, corner1};
    context.geometry().polyline(5, outline);
    if (layout.leadsOut) {
        const AcGePoint3d out[] = {corner2, *layout.leadsOut};
        context.geometry().polyline(2, out);
    }
    context.subEntityTraits().setTraits(own);
    drawArc(layout, context);
}
