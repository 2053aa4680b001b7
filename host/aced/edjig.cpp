#include "host/aced/edjig.h"

#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

class AcEdJig::Tracker : public AcEdCursorTracker
{
public:
    explicit Tracker(AcEdJig &jig) : m_jig(jig) {}
    bool cursorMoved(const AcGePoint3d &world) override
    {
        const DragStatus status = m_jig.take(world);
        if (status == kNormal)
            m_isShown = m_jig.update();
        return status == kNormal;
    }
    std::vector<const AcDbEntity *> shown() const override
    {
        return m_isShown ? std::vector<const AcDbEntity *>{m_jig.entity()}
                         : std::vector<const AcDbEntity *>();
    }

private:
    AcEdJig &m_jig;
    bool m_isShown = false;
};

AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d &point) const
{
    point = m_sample;
    return kNormal;
}

AcEdJig::DragStatus AcEdJig::take(const AcGePoint3d &world)
{
    m_sample = world;
    if (!(m_controls & kAccept3dCoordinates)) {
        AcGePoint3d flat = acedTrans(world, AcEdSpace::world, AcEdSpace::ucs);
        flat.z = 0.0;
        m_sample = acedTrans(flat, AcEdSpace::ucs, AcEdSpace::world);
    }
    return sampler();
}

AcEdJig::DragStatus AcEdJig::drag()
{
    Tracker tracker(*this);
    acedInitGet(m_controls & kNullResponseAccepted ? 0 : int(RSG_NONULL));
    const AcGePoint3d base = m_base ? acedTrans(*m_base, AcEdSpace::world, AcEdSpace::ucs) : AcGePoint3d();
    AcGePoint3d point;
    switch (acedGetTrackedPoint(m_base ? &base : nullptr, m_prompt, tracker, point)) {
    case RTNORM: {
        const DragStatus status = take(acedTrans(point, AcEdSpace::ucs, AcEdSpace::world));
        if (status == kNormal || status == kNoChange)
            update();
        return status == kNoChange ? kNormal : status;
    }
    case RTNONE:
        return kNull;
    case RTKWORD:
        return kKeyword;
    default:
        return kCancel;
    }
}
