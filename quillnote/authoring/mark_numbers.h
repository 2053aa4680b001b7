// Numbers of new marks: each drawing counts for itself and never gives a number twice.
#pragma once

#include <cstdint>
#include <optional>

class AcDbDatabase;

/// One more than the drawing's last number, or than the highest number of its marks where the record is
/// missing or lower. None when every number up to 65535 may be taken.
std::optional<std::uint16_t> nextMarkNumber(AcDbDatabase &database);

/// The same for a command that is about to ask the user for the rest: says why there will be no mark.
bool hasFreeMarkNumber(AcDbDatabase &database);
