// What the program keeps in each drawing besides the marks: the last mark number, the place of the review
// palette and what was exchanged with copies of it, in xrecords of the dictionary "QN_DICT".
#pragma once

#include "host/acdb/dbdatabase.h"

#include <QStringList>

/// The number given to the last mark made in the drawing; 0 when there is none.
std::uint16_t readLastMarkNumber(const AcDbDatabase &database);
Acad::ErrorStatus writeLastMarkNumber(AcDbDatabase &database, std::uint16_t number);

struct ReviewPosition {
    std::int16_t index = 0; ///< Place in the palette's list.
    AcDbObjectId mark;      ///< Null when none was shown, or when it is gone.

    friend bool operator==(const ReviewPosition &, const ReviewPosition &) = default;
};

ReviewPosition readReviewPosition(const AcDbDatabase &database);
/// An id that is null or erased is left out.
Acad::ErrorStatus writeReviewPosition(AcDbDatabase &database, const ReviewPosition &position);

/// Texts in their order; none when nothing was ever exchanged (quillnote/exchange/synchronisation.h).
QStringList readExchangeRecord(const AcDbDatabase &database);
Acad::ErrorStatus writeExchangeRecord(AcDbDatabase &database, const QStringList &texts);
