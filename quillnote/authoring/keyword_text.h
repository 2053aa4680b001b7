// The keyword text of a target: what the entities in it are called and say, for ranking phrases.
#pragma once

#include "host/acdb/dbid.h"

#include <QString>

#include <vector>

/// Kinds, layers, texts, block names and attributes of the first 101 entities, each once, each behind a
/// comma. Of a block at most 100 entities are looked at, those of blocks inside included, so that the cost
/// does not depend on the drawing.
QString keywordText(const std::vector<AcDbObjectId> &entities);
