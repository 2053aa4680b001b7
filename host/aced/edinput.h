// Prompts: how a command asks for points, numbers, texts, keywords and entities.
//
// Points go in and come out in the current UCS. Result codes are the platform's. A prompt takes its
// answer from the arguments of acedCommandS first, then from the front end.
#pragma once

#include "host/acdb/resbuf.h"

#include <QString>

#include <initializer_list>
#include <variant>
#include <vector>

class AcEdCursorTracker;

enum AcEdResult : int {
    RTNORM = 5100,
    RTNONE = 5000, ///< Enter.
    RTERROR = -5001,
    RTCAN = -5002,
    RTREJ = -5003,
    RTFAIL = -5004,
    RTKWORD = -5005, ///< A keyword; acedGetInput() has it.
};

/// Bits for acedInitGet().
enum AcEdInitGet : int {
    RSG_NONULL = 1,
    RSG_NOZERO = 2,
    RSG_NONEG = 4,
    RSG_NOLIM = 8,
    RSG_DASH = 32,
    RSG_2D = 64,
    RSG_OTHER = 128, ///< Any other text is taken as a keyword.
};

/// Rules and keywords ("Yes No") for the next prompt only.
void acedInitGet(int bits, const QString &keywords = {});
/// The keyword or text that ended the last prompt with RTKWORD, in full spelling.
QString acedGetInput();

/// What was answered or asked for makes no sense here: people read why, a script ends. What was given
/// together with that answer, the rest of a line or of a macro, no longer fits and is dropped.
void acedRefuse(const QString &reason);

/// With a base, relative and polar answers (@dx,dy and @d<a) count from it and a line follows the cursor.
int acedGetPoint(const AcGePoint3d *base, const QString &prompt, AcGePoint3d &point);
/// The same while `tracker` shows what would come of it.
int acedGetTrackedPoint(const AcGePoint3d *base, const QString &prompt, AcEdCursorTracker &tracker,
                        AcGePoint3d &point);
/// A rectangle follows the cursor.
int acedGetCorner(const AcGePoint3d &base, const QString &prompt, AcGePoint3d &corner);
int acedGetDist(const AcGePoint3d *base, const QString &prompt, double &distance,
                AcEdCursorTracker *tracker = nullptr);
/// Radians.
int acedGetAngle(const AcGePoint3d *base, const QString &prompt, double &angle,
                 AcEdCursorTracker *tracker = nullptr);
int acedGetInt(const QString &prompt, int &value);
int acedGetReal(const QString &prompt, double &value);
/// Blanks are part of the text when `blanksAllowed`.
int acedGetString(bool blanksAllowed, const QString &prompt, QString &value);
int acedGetKword(const QString &prompt, QString &keyword);
/// One entity under a pick point. RTERROR when the place is empty. An answer may be a point, "Last", or
/// "handle XX" (for scripts).
int acedEntSel(const QString &prompt, AcDbObjectId &entity, AcGePoint3d &pickPoint);

/// An argument of a command call: text, number, point, entity, or PAUSE (ask the user).
struct AcEdPause {
};
inline constexpr AcEdPause PAUSE{};
using AcEdToken = std::variant<QString, int, double, AcGePoint3d, AcDbObjectId, AcEdPause>;
/// Runs a host or module command to its end with these answers; an empty text is Enter. Answers left over are
/// dropped; a prompt without answer cancels the command. RTNORM, RTCAN, RTERROR (no such command).
int acedCommandS(std::initializer_list<AcEdToken> tokens);
/// The same with a list made at run time (LISP).
int acedCommandTokens(const std::vector<AcEdToken> &tokens);

/// Turns a point or vector between 0 world, 1 current UCS, 2 display.
enum class AcEdSpace : int { world = 0, ucs = 1, display = 2 };
AcGePoint3d acedTrans(const AcGePoint3d &point, AcEdSpace from, AcEdSpace to);
AcGeVector3d acedTrans(const AcGeVector3d &vector, AcEdSpace from, AcEdSpace to);
