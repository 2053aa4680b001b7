// Values of the computed system variables, and the checks of those that name something in the drawing.
#pragma once

#include "host/aced/edsysvartable.h"

// clang-format off
namespace sysvar
{
using Value = AcEdVariable::Value;

Value tileMode(AcApDocument *);          bool setTileMode(AcApDocument *, const Value &);
Value currentTab(AcApDocument *);        bool setCurrentTab(AcApDocument *, const Value &);
Value currentViewport(AcApDocument *);   bool setCurrentViewport(AcApDocument *, const Value &);
Value viewSize(AcApDocument *);
Value viewCentre(AcApDocument *);
Value viewTwist(AcApDocument *);
Value viewDirection(AcApDocument *);
Value viewTarget(AcApDocument *);
Value screenSize(AcApDocument *);
Value extentsMin(AcApDocument *);
Value extentsMax(AcApDocument *);
Value limitsMin(AcApDocument *);         bool setLimitsMin(AcApDocument *, const Value &);
Value limitsMax(AcApDocument *);         bool setLimitsMax(AcApDocument *, const Value &);
Value ucsOrigin(AcApDocument *);
Value ucsXDirection(AcApDocument *);
Value ucsYDirection(AcApDocument *);
Value isWorldUcs(AcApDocument *);
Value lastPoint(AcApDocument *);         bool setLastPoint(AcApDocument *, const Value &);

Value julianDate(AcApDocument *);
Value calendarDate(AcApDocument *);
Value drawingName(AcApDocument *);
Value drawingFolder(AcApDocument *);
Value isTitled(AcApDocument *);
Value isModified(AcApDocument *);
Value commandNames(AcApDocument *);
Value commandActive(AcApDocument *);
Value undoState(AcApDocument *);
Value loginName(AcApDocument *);
Value temporaryFolder(AcApDocument *);

Value currentColor(AcApDocument *);      bool setCurrentColor(AcApDocument *, const Value &);
bool isUsableLayer(const AcDbDatabase &, const Value &);
bool isLinetype(const AcDbDatabase &, const Value &);
bool isTextStyle(const AcDbDatabase &, const Value &);
} // namespace sysvar
// clang-format on
