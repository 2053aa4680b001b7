// System variables: one table of names, types, ranges and where each is kept.
#pragma once

#include "host/aced/edinput.h"

#include <QStringList>

/// RTNORM, or RTERROR for an unknown name or a drawing variable without a drawing. The value's restype is the
/// platform's type code: 5003 short, 5010 long, 5001 real, 5005 text, 5002 point, 5009 3D point.
int acedGetVar(const QString &name, resbuf &value);
/// RTREJ for a value of the wrong type or out of range, RTERROR for unknown or read-only variables.
int acedSetVar(const QString &name, const resbuf &value);
/// The same from what a person typed.
int acedSetVarText(const QString &name, const QString &typed);
QStringList acedVarNames();

/// Convenience for callers that know the type; the fallback when there is no such variable.
int acedIntVar(const QString &name, int fallback = 0);
double acedRealVar(const QString &name, double fallback = 0.0);
QString acedTextVar(const QString &name, const QString &fallback = {});
void acedSetIntVar(const QString &name, int value);
/// An integer variable has another value for the life of a scope.
class AcEdIntVarScope
{
public:
    AcEdIntVarScope(const QString &name, int value) : m_name(name), m_before(acedIntVar(name))
    {
        acedSetIntVar(name, value);
    }
    ~AcEdIntVarScope() { acedSetIntVar(m_name, m_before); }
    AcEdIntVarScope(const AcEdIntVarScope &) = delete;
    AcEdIntVarScope &operator=(const AcEdIntVarScope &) = delete;

private:
    QString m_name;
    int m_before;
};
