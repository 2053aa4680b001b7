// The web report: a page with a picture and a table for each mark that is not hidden.
#pragma once

#include <QString>

struct ReportedMark;

/// Command: takes the pictures in the view, writes the page beside the drawing and opens it.
void QN3_outputHtml();

/// The pieces of the page, lines ended by "\n". Texts stand in it as they are stored.
QString webReportHead(const QString &drawing);
/// `picture` is the name of the mark's picture in the folder "PNG" beside the page.
QString webReportMark(const ReportedMark &mark, const QString &picture);
QString webReportEnd();
