// The settings of the review module: short readers and writers of the values in the table (settings_table.h).
//
// Values are read at the moment of use, except the start-up copies (start_up_settings.h). No call fails: a
// value that is missing or of the other type counts as 0 or an empty text.
#pragma once

#include "quillnote/frame/settings/settings_table.h"

#include <QString>

#include <optional>

namespace settings
{

/// The stored 32 bits taken as signed (0xFFFFFFFF reads as -1) when they lie in the row's range, else what
/// the row has for that.
int number(Number row);
/// None when the row's range does not hold the stored number.
std::optional<int> stored(Number row);
/// A text longer than 4095 characters reads as empty. `index` is the number of one row of several.
QString text(Text row);
QString text(Text row, int index);

/// False when nothing was stored. The range is the reader's: every number can be stored.
bool setNumber(Number row, int value);
bool setText(Text row, QStringView value);
bool setText(Text row, int index, QStringView value);

/// Tells the user's store the types of all values of the table.
void declareTypes();

} // namespace settings
