// The review sheet: the marks that are not hidden on one page, under a head to be filled in by hand.
#pragma once

#include <QString>

struct ReportedMark;

/// Command: the review sheet, or the report by the user's own template when there is one and he wants it.
void QN3_outputHtmlWithNoPng();

/// The pieces of the page, lines ended by "\n". Texts stand in it as they are stored.
QString sheetHead(const QString &drawing, const QString &reviewer);
QString sheetRow(const ReportedMark &mark);
QString sheetEnd();

/// Hands a page to the sheet viewer when it is installed, else to the desktop. `toViewer` is what the command
/// line says then, with the path in the place of %1.
void openSheet(const QString &path, const QString &toViewer);
