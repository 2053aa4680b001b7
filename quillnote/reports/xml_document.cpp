#include "quillnote/reports/xml_document.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"

#include <tinyxml.h>

// Texts -------------------------------------------------------------------------------------------

/// Stands for the "&" that the library would take for the beginning of a character reference and pass on as it is. No
/// text has it: it is one of the characters that are for such uses only.
static constexpr QChar kAmpersand(0xFDD0);

static bool isKnownToXml(QChar unit)
{
    const char16_t code = unit.unicode();
    return (code >= 0x20 || code == u'\t' || code == u'\n' || code == u'\r') && code < 0xFFFE && unit != kAmpersand;
}

/// True when the unit is half of a character whose other half is there.
static bool isPaired(const QString &text, qsizetype at)
{
    return text[at].isHighSurrogate() ? at + 1 < text.size() && text[at + 1].isLowSurrogate()
                                      : at > 0 && text[at - 1].isHighSurrogate();
}

static std::string xmlText(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!isKnownToXml(text[i]) || (text[i].isSurrogate() && !isPaired(text, i)))
            text[i] = QChar::ReplacementCharacter;
    }
    return text.replace(QLatin1String("&#x"), kAmpersand + QLatin1String("#x")).toStdString();
}

// Records -----------------------------------------------------------------------------------------

static void addText(TiXmlElement &record, const char *name, const QString &text = {})
{
    auto *const element = new TiXmlElement(name);
    element->LinkEndChild(new TiXmlText(xmlText(text)));
    record.LinkEndChild(element);
}

static void addMark(TiXmlElement &record, const XmlProject &project, const QuillnoteObj3 &mark)
{
    constexpr int kMostWeight = 10;
    constexpr int kPlainWeight = 5;
    const QString created = markDateText(mark.createTime);
    const int weight = mark.weight >= 1 && mark.weight <= kMostWeight ? mark.weight : kPlainWeight;
    addText(record, "uniqueNumber");
    addText(record, "idNumber", QStringLiteral("%1.%2").arg(mark.markNumber).arg(mark.subNumber));
    addText(record, "projectName", project.projectName);
    addText(record, "subProjectName", project.subProjectName);
    addText(record, "fileName", project.fileName);
    addText(record, "suggestionContent", mark.suggestionContent);
    addText(record, "feedbackContent", mark.feedbackContent);
    addText(record, "feedbackType", QString::number(mark.feedbackType));
    addText(record, "createTime", created);
    addText(record, "suggestionName", mark.suggestionName);
    addText(record, "feedbackName", mark.feedbackName);
    addText(record, "feedbackTime", created); // What readers of the document expect here.
    addText(record, "subject", project.discipline);
    addText(record, "bigCategory", mark.bigCategory);
    addText(record, "smallCategory", mark.smallCategory);
    addText(record, "weight", QString::number(weight));
    addText(record, "image0");
    addText(record, "GUID", mark.GUID);
    addText(record, "editVersion", QString::number(mark.editVersion));
    addText(record, "designer", project.designer);
    addText(record, "designCompany", project.designCompany);
    addText(record, "projectManager", project.projectManager);
    addText(record, "projectCode", project.projectCode);
    addText(record, "paperNumber", project.drawingNumber);
    addText(record, "paperName", project.drawingName);
    addText(record, "designPhase", project.designPhase);
    for (const char *name : {"addOne", "addTwo", "addThree", "addFour", "addFive", "image1", "image2", "image3",
                             "image4", "image5"})
        addText(record, name);
}

QByteArray xmlDocument(const XmlProject &project, std::span<const AcDbObjectId> marks)
{
    TiXmlDocument document;
    document.LinkEndChild(new TiXmlDeclaration("1.0", "UTF-8", ""));
    auto *const root = new TiXmlElement("opdetail");
    document.LinkEndChild(root);
    for (const AcDbObjectId id : marks) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (!mark || mark->displayMode == -1)
            continue;
        auto *const record = new TiXmlElement("oneRecord");
        root->LinkEndChild(record);
        addMark(*record, project, *mark);
    }
    TiXmlPrinter printer;
    document.Accept(&printer);
    return QByteArray(printer.CStr(), qsizetype(printer.Size())).replace(QString(kAmpersand).toUtf8(), "&amp;");
}
