#include "quillnote/aids/links/link_record.h"

#include "quillnote/aids/links/link_layout.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_values.h"

#include "host/aced/edfrontend.h"
#include "host/base/assert.h"

#include <algorithm>
#include <cmath>

static AcRxClass *s_class = nullptr;

QuillLinkObj::QuillLinkObj(PlainDefaults) : AcDbEntity(kLinkDxfName) {}

QuillLinkObj::QuillLinkObj() : QuillLinkObj(PlainDefaults{})
{
    colorIndex = secondColorOfNewMarks();
}

std::unique_ptr<QuillLinkObj> QuillLinkObj::forReading()
{
    return std::unique_ptr<QuillLinkObj>(new QuillLinkObj(PlainDefaults{}));
}

void registerLinkClass()
{
    registerEntityClass(s_class, kLinkClassName, kLinkDxfName,
                        [] { return QuillLinkObj::forReading().release(); });
}

void unregisterLinkClass()
{
    unregisterEntityClass(s_class);
}

AcRxClass *QuillLinkObj::desc()
{
    return s_class;
}

AcRxClass *QuillLinkObj::isA() const
{
    QUILL_ASSERT(s_class != nullptr);
    return s_class;
}

void QuillLinkObj::setCorners(const MarkCorners &corners)
{
    assertWriteEnabled();
    corner1 = corners.corner1;
    corner2 = corners.corner2;
    corner3 = corners.corner3;
    corner4 = corners.corner4;
}

Acad::ErrorStatus QuillLinkObj::subErase(bool erasing)
{
    return erasable ? AcDbEntity::subErase(erasing) : Acad::eInvalidInput;
}

QString QuillLinkObj::subHint() const
{
    if (linkKind == sameDrawing)
        return QStringLiteral("热点链接：本图另一处");
    return QStringLiteral("热点链接：%1").arg(partnerName);
}

void QuillLinkObj::subList() const
{
    acutPrintf(QStringLiteral("\n热点链接[%1][%2]").arg(QString::number(linkNumber), partnerName));
}

bool QuillLinkObj::subWorldDraw(AcGiWorldDraw *context) const
{
    if (!subIsHidden())
        drawLink(layOutLink(*this), *context);
    return true;
}

void QuillLinkObj::saveAs(AcGiWorldDraw *context) const
{
    if (!subIsHidden())
        drawPlainLink(layOutLink(*this), *context);
}

Acad::ErrorStatus QuillLinkObj::subGetGeomExtents(AcDbExtents &extents) const
{
    extents = {};
    for (const AcGePoint3d &corner : {corner1, corner2, corner3, corner4})
        extents.addPoint(corner);
    return Acad::eOk;
}

Acad::ErrorStatus QuillLinkObj::subTransformBy(const AcGeMatrix3d &matrix)
{
    assertWriteEnabled();
    MarkCorners moved = corners();
    for (AcGePoint3d *const corner : {&moved.corner1, &moved.corner2, &moved.corner3, &moved.corner4}) {
        corner->transformBy(matrix);
        if (!std::isfinite(corner->x) || !std::isfinite(corner->y) || !std::isfinite(corner->z))
            return Acad::eInvalidInput;
    }
    setCorners(moved);
    normal.transformBy(matrix);
    xDirection.transformBy(matrix);
    normal = normal.normal();
    xDirection = xDirection.normal();
    return Acad::eOk;
}
