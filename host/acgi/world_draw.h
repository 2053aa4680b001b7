// The drawing contexts that custom entities draw in: a geometry, a pen, and in a view the view itself.
#pragma once

#include "host/acgi/geometry.h"
#include "host/acgi/viewport.h"

enum AcGiRegenType : std::uint8_t {
    kAcGiStandardDisplay,       ///< Screen, pictures, plots.
    kAcGiSaveWorldDrawForProxy, ///< What readers without the class will see.
    kAcGiForExtents             ///< Picks and boxes.
};

/// What both contexts share; whatever draws the same in both takes this.
class AcGiCommonDraw
{
public:
    AcGiCommonDraw(AcGiGeometry &geometry, AcGiRegenType type) : m_geometry(geometry), m_regenType(type) {}
    AcGiGeometry &geometry() const { return m_geometry; }
    AcGiSubEntityTraits &subEntityTraits() const { return m_geometry.subEntityTraits(); }
    AcGiRegenType regenType() const { return m_regenType; }

private:
    AcGiGeometry &m_geometry;
    AcGiRegenType m_regenType;
};

/// Drawing that looks the same in every view.
class AcGiWorldDraw : public AcGiCommonDraw
{
public:
    using AcGiCommonDraw::AcGiCommonDraw;
};

/// Drawing for one view; asked for again when the view changes.
class AcGiViewportDraw : public AcGiCommonDraw
{
public:
    AcGiViewportDraw(AcGiGeometry &geometry, AcGiRegenType type, const AcGiViewport &viewport)
        : AcGiCommonDraw(geometry, type), m_viewport(viewport)
    {
    }
    const AcGiViewport &viewport() const { return m_viewport; }

private:
    const AcGiViewport &m_viewport;
};
