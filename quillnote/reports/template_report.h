// The report by template: the user's own page, filled with what a dialog asks for and with the marks.
#pragma once

#include <QString>

/// Asks for marks and fields, writes the report beside the current drawing and opens it.
void writeTemplateReport();

/// "/p/a.dwg" gives "/p/a_dwg.html", or "/p/a_dwg_1.html" ... when there is such a file.
QString templateReportPath(const QString &drawing);
