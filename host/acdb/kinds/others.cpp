// Kinds that are kept, drawn and listed, and of which the database knows the class only.
#include "host/acdb/kinds/entitykind.h"

std::vector<EntityKind> entitykinds::others()
{
    return {
        {.dxfName = "3DSOLID", .className = "AcDb3dSolid"},
        {.dxfName = "ACAD_PROXY_ENTITY", .className = "AcDbProxyEntity"},
        {.dxfName = "ACAD_TABLE", .className = "AcDbTable"},
        {.dxfName = "ARC_DIMENSION", .className = "AcDbArcDimension"},
        {.dxfName = "BLOCK", .className = "AcDbBlockBegin"},
        {.dxfName = "BODY", .className = "AcDbBody"},
        {.dxfName = "ENDBLK", .className = "AcDbBlockEnd"},
        {.dxfName = "LIGHT", .className = "AcDbLight"},
        {.dxfName = "MESH", .className = "AcDbSubDMesh"},
        {.dxfName = "OLE2FRAME", .className = "AcDbOle2Frame"},
        {.dxfName = "REGION", .className = "AcDbRegion"},
        {.dxfName = "SECTION", .className = "AcDbSection"},
        {.dxfName = "SURFACE", .className = "AcDbSurface"},
        {.dxfName = "UNDERLAY", .className = "AcDbUnderlayReference"},
    };
}
