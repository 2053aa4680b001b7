#include "host/acdb/dbtransform.h"

#include "host/acdb/kinds/entitykind.h"
#include "host/acdb/owngroups.h"

#include <algorithm>
#include <cmath>

namespace
{

bool isSimilarity(const AcGeMatrix3d &matrix)
{
    const AcGeVector3d x = matrix * AcGeVector3d::kXAxis;
    const AcGeVector3d y = matrix * AcGeVector3d::kYAxis;
    const AcGeVector3d z = matrix * AcGeVector3d::kZAxis;
    const double size = x.length();
    if (!std::isfinite(size) || size < 1e-100)
        return false;
    constexpr double kAllowed = 1e-6;
    const auto equal = [&](const AcGeVector3d &v) { return std::abs(v.length() - size) <= kAllowed * size; };
    const auto square = [&](const AcGeVector3d &a, const AcGeVector3d &b) {
        return std::abs(a.dotProduct(b)) <= kAllowed * size * size;
    };
    return equal(y) && equal(z) && square(x, y) && square(y, z) && square(z, x);
}

AcGeVector3d ownNormal(const ResbufList &groups)
{
    return OwnGroups(groups).normal().normal();
}

} // namespace

Acad::ErrorStatus acdbTransformGroups(ResbufList &groups, const AcGeMatrix3d &matrix,
                                      const AcGeVector3d &ownerNormal)
{
    const resbuf *const name = findGroup(groups, 0);
    if (!name)
        return Acad::eNotApplicable;
    const QByteArray dxfName = name->text().toLatin1();
    const EntityKind *const kind = acdbEntityKind(dxfName);
    if (!kind || !kind->transforming)
        return Acad::eNotApplicable;
    if (!isSimilarity(matrix))
        return Acad::eInvalidInput;

    ResbufList moved = groups;
    EntityTransform transform(moved, matrix, dxfName == "VERTEX" ? ownerNormal : ownNormal(groups));
    transform.applyRules(kind->transforming->rules);
    if (kind->transforming->finish)
        kind->transforming->finish(transform);
    if (kind->transforming->hasNormal)
        transform.setNormal(transform.newNormal());
    transform.applyExtendedData();
    if (transform.overflows())
        return Acad::eInvalidInput;
    groups = std::move(moved);
    return Acad::eOk;
}

AcGeVector3d acdbUnstatedTextDirection(const AcGeVector3d &normal)
{
    constexpr double kInPlane = 1e-6;
    const bool isWorld = std::abs(normal.normal().dotProduct(AcGeVector3d::kXAxis)) < kInPlane;
    return isWorld ? AcGeVector3d::kXAxis : AcGeMatrix3d::planeToWorld(normal) * AcGeVector3d::kXAxis;
}
