// The review as an XML document for other programs: a record for each mark with the data of the project.
#pragma once

#include "host/acdb/dbid.h"

#include <QByteArray>
#include <QString>

#include <span>

/// What no mark knows; typed by the user.
struct XmlProject {
    QString fileName;
    QString projectName;
    QString subProjectName;
    QString projectCode;
    QString projectManager;
    QString discipline;
    QString designCompany;
    QString designer;
    QString designPhase;
    QString drawingName;
    QString drawingNumber;
};

/// UTF-8 without a mark of byte order, in the order of the marks. Marks that are hidden or cannot be read are left out.
/// Characters that XML does not know (control characters, half surrogates) become U+FFFD.
QByteArray xmlDocument(const XmlProject &project, std::span<const AcDbObjectId> marks);
