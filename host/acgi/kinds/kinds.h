// The drawing functions of the entity kinds; the table in gidraw.cpp names each once.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/geometry.h"

namespace acgi
{

using DrawFunction = void (*)(const AcDbEntity &entity, AcGiGeometry &sink);

/// For what shows on no plot: lights, cameras, section planes.
void drawNothing(const AcDbEntity &entity, AcGiGeometry &sink);

// Curves and points
void drawLine(const AcDbEntity &entity, AcGiGeometry &sink);
void drawPoint(const AcDbEntity &entity, AcGiGeometry &sink);
void drawCircle(const AcDbEntity &entity, AcGiGeometry &sink);
void drawArc(const AcDbEntity &entity, AcGiGeometry &sink);
void drawEllipse(const AcDbEntity &entity, AcGiGeometry &sink);
void drawSpline(const AcDbEntity &entity, AcGiGeometry &sink);
void drawRay(const AcDbEntity &entity, AcGiGeometry &sink);
void drawConstructionLine(const AcDbEntity &entity, AcGiGeometry &sink);

// Polylines
void drawLightPolyline(const AcDbEntity &entity, AcGiGeometry &sink);
void drawPolyline(const AcDbEntity &entity, AcGiGeometry &sink);
void drawMultiline(const AcDbEntity &entity, AcGiGeometry &sink);
void drawLeader(const AcDbEntity &entity, AcGiGeometry &sink);

void drawMultileader(const AcDbEntity &entity, AcGiGeometry &sink);
void drawSubdivisionMesh(const AcDbEntity &entity, AcGiGeometry &sink);

// Areas
void drawSolid(const AcDbEntity &entity, AcGiGeometry &sink);
void drawFace(const AcDbEntity &entity, AcGiGeometry &sink);
void drawHatch(const AcDbEntity &entity, AcGiGeometry &sink);
void drawPolygonHatch(const AcDbEntity &entity, AcGiGeometry &sink);
void drawImage(const AcDbEntity &entity, AcGiGeometry &sink);
void drawWipeout(const AcDbEntity &entity, AcGiGeometry &sink);
void drawViewport(const AcDbEntity &entity, AcGiGeometry &sink);
void drawOleFrame(const AcDbEntity &entity, AcGiGeometry &sink);
void drawUnderlay(const AcDbEntity &entity, AcGiGeometry &sink);

// Text
void drawText(const AcDbEntity &entity, AcGiGeometry &sink);
void drawAttribute(const AcDbEntity &entity, AcGiGeometry &sink);
void drawAttributeDefinition(const AcDbEntity &entity, AcGiGeometry &sink);
void drawMText(const AcDbEntity &entity, AcGiGeometry &sink);
void drawTolerance(const AcDbEntity &entity, AcGiGeometry &sink);
void drawShape(const AcDbEntity &entity, AcGiGeometry &sink);

// Blocks
void drawInsert(const AcDbEntity &entity, AcGiGeometry &sink);
void drawTable(const AcDbEntity &entity, AcGiGeometry &sink);
void drawDimension(const AcDbEntity &entity, AcGiGeometry &sink);

} // namespace acgi
