// Reads a DWG file that was just written and compares it with what was meant.
//
// It goes the way of opening: maps, checksums, sections, and every record at the place that the object map
// gives for its handle. It says nothing of the disk: what it reads may still stand in the system's memory.
#pragma once

#include "host/formats/dwg/dwgpacker.h"

namespace dwg
{

/// The error is a sentence's end: "object 1F is not as it was meant". Objects whose checksum was wrong in
/// the original may keep it.
base::Result<void, QString> compareWritten(std::string_view file, const FileContents &meant);

} // namespace dwg
