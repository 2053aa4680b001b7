// The review as an XML document for other programs: a record for each mark with the data of the project.
#pragma once

#include "quillnote/reports/reported_mark.h"
#include "quillnote/reports/xml_project.h"

#include <QByteArray>

#include <memory>
#include <span>

class TiXmlDocument;
class TiXmlElement;

/// Collects records, of one drawing after another.
class XmlReport
{
public:
    XmlReport();
    ~XmlReport();
    XmlReport(const XmlReport &) = delete;
    XmlReport &operator=(const XmlReport &) = delete;

    /// A record for each mark, in their order. Marks that are hidden or cannot be read are left out.
    void add(const XmlProject &project, std::span<const ReportedMark> marks);
    bool isEmpty() const;
    /// UTF-8 without a mark of byte order. Characters that XML does not know (control characters, half
    /// surrogates) are U+FFFD.
    QByteArray document() const;

private:
    std::unique_ptr<TiXmlDocument> m_document;
    TiXmlElement *m_root;
};

/// Command: asks for marks and for the data of the project, writes the document beside the drawing, and on
/// request hands it to the cloud program.
void QN8_ToXml();

/// "/p/a.dwg" gives "/p/a_dwg.xml", or "/p/a_dwg_1.xml" ... when there is such a file.
QString xmlReportPath(const QString &drawing);
