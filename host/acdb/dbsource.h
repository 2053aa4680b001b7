// Where the objects of an opened drawing come from, and what a file format tells about itself.
#pragma once

#include "host/acdb/resbuf.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Drawing file versions, by the number in their version text (AC1009 is 1009).
enum class DrawingVersion : int {
    unknown = 0,
    r12 = 1009,
    r13 = 1012,
    r14 = 1014,
    r2000 = 1015,
    r2004 = 1018,
    r2007 = 1021,
    r2010 = 1024,
    r2013 = 1027,
    r2018 = 1032,
};

enum class DrawingForm { dxfText, dxfBinary, dwg };

/// The bytes of an opened drawing, seen object by object. Owns those bytes; every `resbuf::source`
/// of the drawing points into them.
class DrawingSource
{
public:
    virtual ~DrawingSource() = default;

    virtual DrawingForm form() const = 0;
    virtual DrawingVersion version() const = 0;
    /// What the drawing holds that nobody understands, for people: "2 SUN, 3 MATERIAL". It is kept as it is.
    virtual QString notUnderstood() const { return {}; }
    /// The file as it was read; empty for drawings without one.
    virtual std::string_view bytes() const { return {}; }
    /// The groups of the object at the stub's place, as the file orders them. Damage inside the
    /// object ends the list there; what was read stays.
    virtual ResbufList read(const AcDbStub &stub) const = 0;
};
