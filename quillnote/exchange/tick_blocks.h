// Tick symbols of a drawing: inserts of the four tick blocks.
#pragma once

#include "quillnote/exchange/mark_data_file.h"

class AcDbDatabase;

/// True for the name of a tick block, whatever its letter case.
bool isTickBlock(const QString &name);

/// The tick symbols of model space and the layouts.
std::vector<TickRecord> ticksOf(const AcDbDatabase &database);

/// An insert for the current space; a null id when the drawing has no block of that name.
AcDbObjectId insertTick(AcDbDatabase &database, const TickRecord &tick);
