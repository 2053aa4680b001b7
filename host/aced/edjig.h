// AcEdJig: an entity that takes shape while the cursor moves.
//
// A jig's owner sets the prompt and calls drag(). While the cursor moves, and once more for the answer
// itself, sampler() asks for the point with acquirePoint(); when that was a new one, update() changes the
// entity, which is shown over the drawing. A scripted answer is sampled once.
#pragma once

#include "host/acge/gepoint.h"

#include <QString>

#include <optional>

class AcDbEntity;

class AcEdJig
{
public:
    enum DragStatus {
        kNormal,   ///< A point.
        kNull,     ///< Enter or a blank.
        kCancel,   ///< Esc, or no answer.
        kNoChange, ///< The same sample as before.
        kKeyword
    };
    enum UserInputControls : int {
        kNone = 0,
        kAccept3dCoordinates = 0x008,     ///< z counts; without it it is 0 in the current UCS.
        kNullResponseAccepted = 0x080,    ///< Enter answers; without it it is asked again.
        kAnyBlankTerminatesInput = 0x020, ///< A blank answers like Enter.
    };

    virtual ~AcEdJig() = default;
    /// Asks with an acquire function and keeps what it gives; what that returns, or kNoChange.
    virtual DragStatus sampler() = 0;
    /// Changes the entity to fit the last sample. False: it cannot be shown.
    virtual bool update() = 0;
    /// What is shown; stays the jig's.
    virtual AcDbEntity *entity() const = 0;

    /// Runs one drag: prompts until a point is accepted or the input ends.
    DragStatus drag();
    void setDispPrompt(const QString &prompt) { m_prompt = prompt; }
    void setUserInputControls(int controls) { m_controls = controls; }
    /// A line follows the cursor from here (world), and relative answers count from it.
    void setBasePoint(const AcGePoint3d &world) { m_base = world; }

protected:
    /// The sample that is being looked at, world coordinates; kNormal. Only inside sampler().
    DragStatus acquirePoint(AcGePoint3d &point) const;

private:
    class Tracker;
    DragStatus take(const AcGePoint3d &world);

    QString m_prompt;
    int m_controls = kNone;
    AcGePoint3d m_sample;
    std::optional<AcGePoint3d> m_base;
};
