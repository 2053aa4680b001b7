// QuillnotePolygonJig: a polygon or spline mark that takes shape while its vertices are pointed at.
#pragma once

#include "host/aced/edjig.h"

#include <memory>
#include <vector>

class QuillnoteObj3;

class QuillnotePolygonJig : public AcEdJig
{
public:
    /// Begins at a point (world). `ucsNormal` tells which side of the drawing the coordinate system shows.
    QuillnotePolygonJig(const AcGePoint3d &start, const AcGeVector3d &ucsNormal, bool isPolygon);
    ~QuillnotePolygonJig() override;

    /// Asks for vertices until the input ends.
    DragStatus run();
    /// Those that were accepted, as they were pointed at; the start is the first one.
    const std::vector<AcGePoint3d> &vertices() const { return m_vertices; }
    /// The mark with the outline that the setting "style" wants. Nothing is shown any more.
    std::unique_ptr<QuillnoteObj3> takeMark();

    DragStatus sampler() override;
    bool update() override;
    AcDbEntity *entity() const override;

private:
    void begin();

    std::unique_ptr<QuillnoteObj3> m_mark; ///< The jig's until it is taken.
    std::vector<AcGePoint3d> m_vertices;
    AcGePoint3d m_start;
    AcGePoint3d m_lastSample;
    AcGeVector3d m_normal; ///< Of the current coordinate system.
    bool m_isPolygon;
    bool m_hasRubberBand = false; ///< The last vertex is the place of the cursor.
};
