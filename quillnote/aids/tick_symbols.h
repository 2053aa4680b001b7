// The four tick symbols: red and green tick, red cross, red question mark. Each is a block whose definition
// comes from a drawing that is shipped beside the module.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/acge/gepoint.h"

#include <QString>

#include <vector>

class AcDbDatabase;
class AcDbEntity;

/// A symbol as an insert of its block; the scale is in drawing units, a symbol of scale 1 is 1 unit high.
struct TickRecord {
    QString block;
    AcGePoint3d position{}; ///< World.
    AcGeVector3d normal{0, 0, 1};
    double rotation = 0; ///< Radians.
    AcGeVector3d scale{1, 1, 1};
};

enum class TickSymbol { yesRed, yesGreen, error, question };
inline constexpr std::size_t kTickSymbols = 4;

QString tickBlock(TickSymbol symbol);
/// True for the name of a tick block, whatever its letter case.
bool isTickBlock(const QString &name);
/// The shipped drawing of a tick block; the path that it should have when there is none.
QString tickFile(const QString &block);
/// Selection filter for inserts of the four blocks.
ResbufList tickFilter();

/// The tick symbols of model space and the layouts.
std::vector<AcDbObjectId> findTicks(const AcDbDatabase &database);
std::vector<TickRecord> ticksOf(const AcDbDatabase &database);
/// Of one that is open for write; it stays where it is.
void multiplyTickScale(AcDbEntity &tick, double factor);
/// Those that can be written.
void eraseTicks(const std::vector<AcDbObjectId> &ticks);

/// An insert for the current space, its block defined from the shipped drawing when the drawing lacks it; a
/// null id when there is neither.
AcDbObjectId insertTick(AcDbDatabase &database, const TickRecord &tick);
