// The plain-text report: every opinion with its answer, in collection order.
#pragma once

#include <QString>

class AcDbDatabase;

/// Command: writes the report beside the drawing and opens it.
void QN3_QuillnoteOutputTxt();

/// The report's text, lines ended by "\n". Marks that cannot be opened are left out but counted.
QString textReport(const AcDbDatabase &database);
