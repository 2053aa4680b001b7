// Mark data files into a drawing.
#pragma once

#include "quillnote/exchange/mark_data_file.h"

class AcDbDatabase;

/// What became of the records of a file.
struct ImportedMarks {
    std::vector<AcDbObjectId> marks; ///< The new marks, in file order.
    std::size_t kept = 0;    ///< Records left out, because the mark that they replace may not be erased.
    std::size_t refused = 0; ///< Records that the drawing refused.
    std::size_t ticks = 0;
    std::size_t missingTicks = 0; ///< Ticks whose block the drawing does not have.
};

/// Takes marks and ticks into the current space. A mark takes the place of those with the same GUID; its
/// layer is made, or made visible and writable, in its colour. The drawing's last number rises to that of the
/// marks.
ImportedMarks importMarkData(AcDbDatabase &database, MarkData data);

/// What becomes of a file of another drawing, or with a wrong checksum.
enum class WhenInDoubt { ask, import, refuse };

enum class ImportedFile {
    unreadable, ///< There is no such file, or it is no mark data file.
    refused,    ///< Because of a doubt. Nothing was changed.
    partly,     ///< Something that the file holds or should hold did not get into the drawing.
    whole,
};

/// Reads a file of any kind into the current drawing and tells what happened.
ImportedFile importMarkDataFile(const QString &path, WhenInDoubt doubt);

/// Command: asks for the file in a dialog.
void QN3_DataFileIn();
/// Command for scripts and the synchronisation: asks nothing more than the file, which it removes afterwards.
/// A file that is no mark data file stays.
void QN3_DataFileInQuiet();
