// The data of a project that go into the XML document: what no mark knows and the user types.
#pragma once

#include <QString>

#include <optional>

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

/// Shows the dialog. What is typed is remembered for the next time, unless it is empty. None when it was
/// cancelled.
std::optional<XmlProject> askXmlProject(const QString &fileName);
