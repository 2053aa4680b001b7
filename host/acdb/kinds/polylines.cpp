// Polylines and their vertices.
#include "host/acdb/dbsymtb.h"
#include "host/acdb/kinds/entitykind.h"

using namespace gripping;
using namespace listed;

static constexpr Rule kLightPolylineRules[] = {
    {10, Role::planePoint2d}, {38, Role::elevation}, {39, Role::length}, {40, Role::length},
    {41, Role::length},       {42, Role::bulge},     {43, Role::length}};

static constexpr Rule kPolylineRules[] = {{39, Role::length}, {40, Role::length}, {41, Role::length}};

static constexpr Rule kVertexRules[] = {
    {40, Role::length}, {41, Role::length}, {42, Role::bulge}, {50, Role::planeAngle}};

static void finishLightPolyline(EntityTransform &t)
{
    if (!t.find(38))
        t.setReal(38, (t.inPlane() * AcGePoint3d()).z, 0.0, 70);
}

static void finishPolyline(EntityTransform &t)
{
    constexpr int k3dOrMesh = 8 | 16 | 64;
    resbuf *const base = t.find(10);
    if (base && !(t.integer(70, 0) & k3dOrMesh))
        t.apply(Role::elevationPoint, *base);
}

static void finishVertex(EntityTransform &t)
{
    constexpr int kWorldCoordinates = 32 | 64;
    constexpr int kFaceRecord = 128;
    const std::int64_t flags = t.integer(70, 0);
    resbuf *const position = t.find(10);
    if (!position || (flags & (kWorldCoordinates | kFaceRecord)) == kFaceRecord)
        return;
    t.apply(flags & kWorldCoordinates ? Role::point : Role::planePoint, *position);
}

static void lightPolylineGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, 10, Role::planePoint2d);
}

static void polylineGrips(const Shape &shape, Grips &grips)
{
    constexpr std::int64_t kWorldCoordinates = 32 | 64;
    constexpr std::int64_t kFaceRecord = 128;
    for (const AcDbObjectId id : acdbSubEntities(shape.entity().objectId())) {
        const AcDbObjectPointer<AcDbEntity> vertex(id, AcDb::kForRead);
        if (!vertex || vertex->dxfName() != "VERTEX")
            continue;
        const Shape own(*vertex);
        const std::int64_t flags = own.integer(70);
        const auto place = own.point(10);
        if (!place || (flags & (kWorldCoordinates | kFaceRecord)) == kFaceRecord)
            continue;
        const bool isWorld = flags & kWorldCoordinates;
        grips.push_back({.place = isWorld ? *place : shape.toWorld(*place),
                         .action = Grip::moveVertex,
                         .role = isWorld ? Role::point : Role::planePoint,
                         .group = *own.find(10),
                         .vertex = id});
    }
}

/// Polylines of any sort start with a point that holds the elevation.
static Section polylineSection()
{
    return {{"AcDb2dPolyline", "AcDb3dPolyline", "AcDbPolygonMesh", "AcDbPolyFaceMesh"},
            {integer(66, 1), point(10, 0, 0, 0), thickness(), integer(70, 0), real(40, 0), real(41, 0),
             normal(), integer(71, 0), integer(72, 0), integer(73, 0), integer(74, 0), integer(75, 0)}};
}

std::vector<EntityKind> entitykinds::polylines()
{
    return {
        {.dxfName = "LWPOLYLINE",
         .className = "AcDbPolyline",
         .listed = {{{{"AcDbPolyline"},
                      {given(90), integer(70, 0), given(43), real(38, 0), real(39, 0), given(10), normal()}}},
                    true},
         .transforming = TransformRules{kLightPolylineRules, finishLightPolyline},
         .grips = {lightPolylineGrips}},
        {.dxfName = "POLYLINE",
         .className = "AcDb2dPolyline",
         .listed = {{polylineSection()}},
         .transforming = TransformRules{kPolylineRules, finishPolyline},
         .grips = {polylineGrips}},
        {.dxfName = "VERTEX",
         .className = "AcDbVertex",
         .listed = {{{{"AcDbVertex"}, {}},
                     {{"AcDb2dVertex", "AcDb3dPolylineVertex", "AcDbPolygonMeshVertex",
                       "AcDbPolyFaceMeshVertex", "AcDbFaceRecord"},
                      {given(10), real(40, 0), real(41, 0), real(42, 0), integer(91, 0), integer(70, 0),
                       real(50, 0), integer(71, 0), integer(72, 0), integer(73, 0), integer(74, 0)}}}},
         .transforming = TransformRules{kVertexRules, finishVertex, false}},
        {.dxfName = "SEQEND",
         .className = "AcDbSequenceEnd",
         .transforming = TransformRules{{}, nullptr, false}},
    };
}
