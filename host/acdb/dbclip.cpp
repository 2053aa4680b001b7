#include "host/acdb/dbclip.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbents.h"
#include "host/acdb/owngroups.h"

#include <algorithm>
#include <array>

static const QString kFilters = QStringLiteral("ACAD_FILTER");
static const QString kSpatial = QStringLiteral("SPATIAL");

AcDbObjectId acdbClipOf(const AcDbObject &reference)
{
    AcDbObjectId clip;
    const auto entry = [](AcDbObjectId dictionary, const QString &key) {
        const AcDbObjectPointer<AcDbDictionary> opened(dictionary, AcDb::kForRead);
        return opened ? opened->getAt(key) : AcDbObjectId();
    };
    clip = entry(entry(reference.extensionDictionary(), kFilters), kSpatial);
    return clip.isValid() && acdbKindName(clip.stub()->kind) == "SPATIAL_FILTER" ? clip : AcDbObjectId();
}

// Boundaries -------------------------------------------------------------------------------------

namespace
{

using Corners = std::vector<AcGePoint2d>;

AcDbExtents boxOf(const Corners &corners)
{
    AcDbExtents box;
    for (const AcGePoint2d &corner : corners)
        box.addPoint({corner.x, corner.y, 0.0});
    return box;
}

/// Two corners do for a rectangle along the axes.
Corners shortened(const Corners &corners)
{
    const AcDbExtents box = boxOf(corners);
    const auto isAtCorner = [&](const AcGePoint2d &p) {
        return (p.x == box.minPoint().x || p.x == box.maxPoint().x) &&
               (p.y == box.minPoint().y || p.y == box.maxPoint().y);
    };
    const bool isRectangle = corners.size() == 4 && std::ranges::all_of(corners, isAtCorner) &&
                             (corners[0].x == corners[1].x) != (corners[0].y == corners[1].y) &&
                             corners[0] != corners[2] && corners[1] != corners[3];
    return isRectangle ? Corners{{box.minPoint().x, box.minPoint().y}, {box.maxPoint().x, box.maxPoint().y}}
                       : corners;
}

/// The polygon that shows nearly the same to programs that know no inverted clips: around everything, with a
/// slit to the hole.
Corners imitation(Corners hole, AcDbExtents around)
{
    const auto leftmost = std::ranges::min_element(hole, {}, &AcGePoint2d::x);
    std::rotate(hole.begin(), leftmost, hole.end());
    around.addExt(boxOf(hole));
    const AcGeVector3d margin = (around.maxPoint() - around.minPoint()) * 0.05;
    const AcGePoint3d low = around.minPoint() - margin;
    const AcGePoint3d high = around.maxPoint() + margin;
    const AcGePoint2d start = hole.front();
    Corners outline{start,           {low.x, start.y}, {low.x, high.y}, {high.x, high.y},
                    {high.x, low.y}, {low.x, low.y},   {low.x, start.y}};
    outline.insert(outline.end(), hole.begin(), hole.end());
    return outline;
}

void appendMatrix(ResbufList &groups, const AcGeMatrix3d &matrix)
{
    for (std::size_t i = 0; i < 12; ++i)
        groups.emplace_back(40, matrix.entry[i / 4][i % 4]);
}

ResbufList filterGroups(const Corners &boundary, const AcGeVector3d &normal, const AcGeMatrix3d &toBlock)
{
    ResbufList groups{{0, QStringLiteral("SPATIAL_FILTER")},
                      {100, QStringLiteral("AcDbFilter")},
                      {100, QStringLiteral("AcDbSpatialFilter")},
                      {70, std::int64_t(boundary.size())}};
    for (const AcGePoint2d &corner : boundary)
        groups.emplace_back(10, corner);
    groups.insert(groups.end(), {{210, AcGePoint3d(normal.x, normal.y, normal.z)},
                                 {11, AcGePoint3d()},
                                 {71, std::int64_t(1)},
                                 {72, std::int64_t(0)},
                                 {73, std::int64_t(0)}});
    appendMatrix(groups, toBlock);
    appendMatrix(groups, AcGeMatrix3d::planeToWorld(normal).inverse());
    return groups;
}

/// The outline itself, beside its imitation, which tells whether another program has changed that since.
ResbufList invertedGroups(const Corners &hole, const Corners &imitated)
{
    ResbufList groups;
    const auto append = [&](const QString &name, const Corners &corners) {
        groups.emplace_back(102, name);
        for (const AcGePoint2d &corner : corners)
            groups.emplace_back(10, AcGePoint3d(corner.x, corner.y, 0.0));
    };
    append(QStringLiteral("ACAD_INVERTEDCLIP_ROUNDTRIP"), hole);
    append(QStringLiteral("ACAD_INVERTEDCLIP_ROUNDTRIP_COMPARE"), imitated);
    return groups;
}

} // namespace

// Keeping them -----------------------------------------------------------------------------------

/// The dictionary under the key, made when missing.
static AcDbObjectId dictionaryIn(AcDbObjectId parent, const QString &key)
{
    const AcDbObjectPointer<AcDbDictionary> opened(parent, AcDb::kForWrite);
    AcDbObjectId id = opened ? opened->getAt(key) : AcDbObjectId();
    if (opened && id.isNull()) {
        auto *const made = new AcDbDictionary;
        opened->setAt(key, made, id);
        made->close();
    }
    return id;
}

static std::unique_ptr<AcDbObject> newFilter(AcDbDatabase &database, ResbufList groups)
{
    const QByteArray kind = QByteArrayLiteral("SPATIAL_FILTER");
    // The class is no one of ours; the file says where it comes from.
    AcRxClass spatialFilter(QStringLiteral("AcDbSpatialFilter"), AcDbObject::desc(), kind, {});
    spatialFilter.setApplication({.description = QStringLiteral("ObjectDBX Classes")});
    database.ensureClass(spatialFilter);
    std::unique_ptr<AcDbObject> filter(
        static_cast<AcDbObject *>(acdbKindClass(database.kindNamed(kind), false)->create()));
    filter->editGroups() = std::move(groups);
    return filter;
}

static void keepOutline(AcDbObject &filter, const ResbufList &outline)
{
    const AcDbObjectPointer<AcDbDictionary> extension(filter.createExtensionDictionary(), AcDb::kForWrite);
    if (!extension)
        return;
    auto *const record = new AcDbXrecord;
    AcDbObjectId id;
    record->setFromRbChain(outline);
    extension->setAt(QStringLiteral("ACAD_XREC_ROUNDTRIP"), record, id);
    record->close();
}

Acad::ErrorStatus acdbSetClip(AcDbObjectId id, std::span<const AcGePoint3d> corners,
                              const AcGeVector3d &normal, bool inverted)
{
    if (corners.size() < 3)
        return Acad::eInvalidInput;
    if (const Acad::ErrorStatus status = acdbRemoveClip(id);
        status != Acad::eOk && status != Acad::eKeyNotFound)
        return status;
    AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForWrite);
    if (!reference)
        return reference.openStatus();
    if (id.database()->version() <= DrawingVersion::r12)
        return Acad::eNotApplicable;
    const AcGeMatrix3d toPlane = AcGeMatrix3d::planeToWorld(normal).inverse();
    Corners boundary;
    for (const AcGePoint3d &corner : corners) {
        const AcGePoint3d inPlane = toPlane * corner;
        boundary.emplace_back(inPlane.x, inPlane.y);
    }
    const Corners own = shortened(boundary);
    if (inverted) {
        AcDbExtents around;
        if (reference->getGeomExtents(around) == Acad::eOk)
            around.transformBy(toPlane);
        boundary = imitation(boundary, around);
    }
    auto filter = newFilter(*id.database(), filterGroups(inverted ? boundary : own, normal,
                                                         reference->blockTransform().inverse()));
    const AcDbObjectPointer<AcDbDictionary> filters(
        dictionaryIn(reference->createExtensionDictionary(), kFilters), AcDb::kForWrite);
    if (!filters)
        return filters.openStatus();
    AcDbObjectId added;
    if (const Acad::ErrorStatus status = filters->setAt(kSpatial, filter.get(), added); status != Acad::eOk)
        return status;
    AcDbObject *const kept = filter.release();
    if (inverted)
        keepOutline(*kept, invertedGroups(own, boundary));
    kept->close();
    return Acad::eOk;
}

Acad::ErrorStatus acdbSwitchClip(AcDbObjectId id, bool on)
{
    const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForWrite);
    if (!reference)
        return reference.openStatus();
    const AcDbObjectId clip = acdbClipOf(*reference);
    if (clip.isNull())
        return Acad::eKeyNotFound;
    const AcDbObjectPointer<AcDbObject> filter(clip, AcDb::kForWrite);
    if (filter)
        filter->setGroup(71, std::int64_t(on), u"AcDbSpatialFilter");
    return filter.openStatus();
}

/// Erases the dictionary when nothing is left in it; true then.
static bool eraseWhenEmpty(AcDbObjectId id)
{
    const AcDbObjectPointer<AcDbDictionary> dictionary(id, AcDb::kForWrite);
    return dictionary && dictionary->entries().empty() && dictionary->erase() == Acad::eOk;
}

static void forgetExtensionDictionary(AcDbObject &object)
{
    ResbufList &groups = object.editGroups();
    const auto isText = [](const char *text) {
        return [text](const resbuf &group) {
            return group.restype == 102 && group.text() == QLatin1String(text);
        };
    };
    const auto first = std::ranges::find_if(groups, isText("{ACAD_XDICTIONARY"));
    const auto last = std::find_if(first, groups.end(), isText("}"));
    if (last != groups.end())
        groups.erase(first, last + 1);
}

Acad::ErrorStatus acdbRemoveClip(AcDbObjectId id)
{
    AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForWrite);
    if (!reference)
        return reference.openStatus();
    if (acdbClipOf(*reference).isNull())
        return Acad::eKeyNotFound;
    const AcDbObjectId extension = reference->extensionDictionary();
    {
        const AcDbObjectPointer<AcDbDictionary> dictionary(extension, AcDb::kForWrite);
        if (!dictionary)
            return dictionary.openStatus();
        const AcDbObjectId filters = dictionary->getAt(kFilters);
        AcDbObjectPointer<AcDbDictionary> opened(filters, AcDb::kForWrite);
        if (opened)
            opened->remove(kSpatial);
        opened.close();
        if (eraseWhenEmpty(filters))
            dictionary->unlink(kFilters);
    }
    if (eraseWhenEmpty(extension))
        forgetExtensionDictionary(*reference);
    return Acad::eOk;
}
