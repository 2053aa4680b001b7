// What a hot link looks like, as a value: chains along its sides, and what shows where it leads.
#pragma once

#include "quillnote/entity/mark_outline.h"

#include "host/acgi/world_draw.h"

#include <array>
#include <optional>
#include <vector>

class QuillLinkObj;

/// A link of a chain: two straight lines with a half circle at either end.
struct ChainLink {
    AcGePoint3d start; ///< Where it ends, the half circles included.
    AcGePoint3d end;
    double radius = 0.0;
    bool isWide = false;
};

struct LinkLayout {
    MarkCorners corners{};
    AcGeVector3d normal;
    int color = 5; ///< Of the narrow links; the wide ones have the entity's own.
    std::vector<ChainLink> chain{};
    /// A piece of chain beyond corner 2 says that the partner stands in another drawing: where it ends.
    std::optional<AcGePoint3d> leadsOut{};
    /// Start, middle and end of the arc to a partner in the same drawing; the source alone draws it.
    std::optional<std::array<AcGePoint3d, 3>> arc{};
};
/// Looks the partner up, when it stands in the same drawing.
LinkLayout layOutLink(const QuillLinkObj &link);

/// The pen has the link's own traits.
void drawLink(const LinkLayout &layout, const AcGiCommonDraw &context);
/// With lines instead of chains: for programs that keep a picture of each entity.
void drawPlainLink(const LinkLayout &layout, const AcGiCommonDraw &context);
