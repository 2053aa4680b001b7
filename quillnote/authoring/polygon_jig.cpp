#include "quillnote/authoring/polygon_jig.h"

#include "quillnote/authoring/mark_vertices.h"
#include "quillnote/authoring/polygon_mark.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/start_up_settings.h"

/// Marks around rectangles have thick waves by this setting; so do those that are drawn then.
static bool wantsThickWaves()
{
    return withoutSign(TargetStyle(startUpSettings().style)) >= TargetStyle::thickWaves;
}

QuillnotePolygonJig::QuillnotePolygonJig(const AcGePoint3d &start, const AcGeVector3d &ucsNormal,
                                         bool isPolygon)
    : m_mark(std::make_unique<QuillnoteObj3>()), m_start(start), m_lastSample(start), m_normal(ucsNormal),
      m_isPolygon(isPolygon)
{
}

QuillnotePolygonJig::~QuillnotePolygonJig() = default;

void QuillnotePolygonJig::begin()
{
    initMarkFromSettings(*m_mark);
    orientMark(*m_mark, m_normal);
    m_mark->markNumber = 0;
    m_mark->targetStyle = m_isPolygon ? TargetStyle::thinPolygon : TargetStyle::thinSpline;
    m_vertices.assign(1, m_start);
    setOutlineVertices(*m_mark, m_vertices);
}

AcEdJig::DragStatus QuillnotePolygonJig::run()
{
    begin();
    setDispPrompt(QStringLiteral("\n请指定下一点<退出>: "));
    setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted | kAnyBlankTerminatesInput);
    DragStatus status = kNormal;
    while (status == kNormal) {
        setBasePoint(m_vertices.back());
        status = drag();
        if (status != kNormal && m_hasRubberBand && m_vertices.size() > 1)
            m_vertices.pop_back();
        else if (status == kNormal && m_hasRubberBand)
            tellLastVertex(m_vertices);
        m_hasRubberBand = false;
    }
    return status;
}

std::unique_ptr<QuillnoteObj3> QuillnotePolygonJig::takeMark()
{
    setOutlineVertices(*m_mark, distinctVertices(m_vertices));
    if (wantsThickWaves())
        m_mark->targetStyle = m_isPolygon ? TargetStyle::thickPolygon : TargetStyle::thickSpline;
    return std::move(m_mark);
}

AcEdJig::DragStatus QuillnotePolygonJig::sampler()
{
    AcGePoint3d point;
    const DragStatus status = acquirePoint(point);
    if (status != kNormal)
        return status;
    if (point.isEqualTo(m_lastSample))
        return kNoChange;
    m_lastSample = point;
    if (m_hasRubberBand && m_vertices.size() > 1)
        m_vertices.back() = point;
    else
        m_vertices.push_back(point);
    m_hasRubberBand = true;
    return kNormal;
}

bool QuillnotePolygonJig::update()
{
    if (m_vertices.size() < 2)
        return false;
    setOutlineVertices(*m_mark, m_vertices);
    return true;
}

AcDbEntity *QuillnotePolygonJig::entity() const
{
    return m_mark.get();
}
