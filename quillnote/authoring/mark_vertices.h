// The vertices of polygon and spline marks: giving a mark its outline, and adding a vertex where the user
// picks the outline.
#pragma once

#include "host/acge/gepoint.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

class QuillnoteObj3;

/// Without points that lie within 0.001 of the one kept before them, nor a last point that lies so near to
/// the first one: the outline closes by itself.
std::vector<AcGePoint3d> distinctVertices(std::span<const AcGePoint3d> points);
/// Says so when the last of the points is the last vertex that an outline has room for.
void tellLastVertex(std::span<const AcGePoint3d> points);

/// Gives the mark the points, the first 16 of them, on the plane z 0. Its target becomes the rectangle around
/// them that is upright along the mark's own axes. One point at least.
void setOutlineVertices(QuillnoteObj3 &mark, std::span<const AcGePoint3d> points);

/// The edge that a point lies on: the first one whose ends are seen from there in nearly opposite directions,
/// more than 160 degrees apart, or 100 degrees for a spline, whose edges leave the straight line. Edge i runs
/// from vertex i to the next one, the last edge back to vertex 0.
std::optional<std::size_t> edgeAt(std::span<const AcGePoint3d> vertices, bool isSpline,
                                  const AcGePoint3d &point);

/// Where a picked point falls on the outline of a mark.
struct VertexPlace {
    enum Kind {
        onEdge,
        noOutline, ///< The mark has neither a wave or bevel rectangle nor a polygon nor a spline.
        offOutline,
        full, ///< On the outline, but 16 vertices are all that a mark can hold.
    };
    Kind kind = offOutline;
    std::size_t edge = 0; ///< Index of the vertex before the point.
};
VertexPlace vertexPlace(const QuillnoteObj3 &mark, const AcGePoint3d &point);

/// Inserts a vertex at the point into the edge there; a rectangle becomes a polygon of thick waves. False,
/// and nothing changed, when vertexPlace() finds no edge for it. Needs write access.
bool insertVertex(QuillnoteObj3 &mark, const AcGePoint3d &point);

/// Command: pick the outline of a mark where it is to have one more vertex. Asks for the password of a
/// protected mark.
void QN3_addVertext();
