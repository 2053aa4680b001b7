#include "quillnote/reports/mark_area.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/snapshot/zoom_to_area.h"

static base::Result<AcEdNamedArea, QString> areaOfMark(AcApDocument &document, const QString &number)
{
    for (const AcDbObjectId id : collectMarks(*document.database()).ids) {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (!mark || markNumberText(mark->markNumber, mark->subNumber) != number)
            continue;
        AcDbExtents extents;
        if (mark->getGeomExtents(extents) != Acad::eOk)
            return base::Failure{QStringLiteral("mark %1 has no extents").arg(number)};
        return AcEdNamedArea{mark->blockId(), widenedArea(extents)};
    }
    return base::Failure{QStringLiteral("there is no mark %1").arg(number)};
}

AcEdAreaOption markAreaOption()
{
    return {{QStringLiteral("--mark"), QStringLiteral("N"),
             QStringLiteral("Show this mark and what is around it.")},
            areaOfMark};
}
