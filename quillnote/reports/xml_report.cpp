#include "quillnote/reports/xml_report.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/frame/settings/install_folder.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/reports/mark_selection.h"
#include "quillnote/reports/report_path.h"
#include "quillnote/reports/report_start.h"
#include "quillnote/reports/xml_project.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edshell.h"
#include "host/base/atomic_file.h"
#include "host/os/shell.h"

#include <QFileInfo>

#include <tinyxml.h>

// Texts -------------------------------------------------------------------------------------------

/// Stands for the "&" that the library would take for the beginning of a character reference and pass on as
/// it is. No text has it: it is one of the characters that are for such uses only.
static constexpr QChar kAmpersand(0xFDD0);

static bool isKnownToXml(QChar unit)
{
    const char16_t code = unit.unicode();
    return (code >= 0x20 || code == u'\t' || code == u'\n' || code == u'\r') && code < 0xFFFE &&
           unit != kAmpersand;
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
    return text.replace(QLatin1String("&#x"), QString(kAmpersand) + QLatin1String("#x")).toStdString();
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
    for (const char *name : {"addOne", "addTwo", "addThree", "addFour", "addFive", "image1", "image2",
                             "image3", "image4", "image5"})
        addText(record, name);
}

XmlReport::XmlReport() : m_document(std::make_unique<TiXmlDocument>()), m_root(new TiXmlElement("opdetail"))
{
    m_document->LinkEndChild(new TiXmlDeclaration("1.0", "UTF-8", ""));
    m_document->LinkEndChild(m_root);
}

XmlReport::~XmlReport() = default;

bool XmlReport::isEmpty() const
{
    return m_root->NoChildren();
}

void XmlReport::add(const XmlProject &project, std::span<const ReportedMark> marks)
{
    for (const ReportedMark &each : marks) {
        const AcDbObjectPointer<QuillnoteObj3> mark(each.id, AcDb::kForRead);
        if (!mark || mark->displayMode == DisplayMode::hidden)
            continue;
        auto *const record = new TiXmlElement("oneRecord");
        m_root->LinkEndChild(record);
        addMark(*record, project, *mark);
    }
}

QByteArray XmlReport::document() const
{
    TiXmlPrinter printer;
    m_document->Accept(&printer);
    return QByteArray(printer.CStr(), qsizetype(printer.Size()))
        .replace(QString(kAmpersand).toUtf8(), "&amp;");
}

QString xmlReportPath(const QString &drawing)
{
    QString path = withoutDrawingEnding(drawing) + QStringLiteral(".xml");
    for (int k = 1; QFileInfo::exists(path); ++k)
        path = withoutDrawingEnding(drawing + u'_' + QString::number(k)) + QStringLiteral(".xml");
    return path;
}

// The command -------------------------------------------------------------------------------------

static constexpr settings::Text kHandedOver = u"Yun_tmpXmlFn";

static bool writeDocument(const XmlReport &report, const QString &path)
{
    const auto written = base::writeFileAtomically(path, report.document());
    if (!written) {
        acutPrintf(u'\n' + written.error().text());
        acedFail(QStringLiteral("创建文件<%1>失败！").arg(path));
    }
    return written.ok();
}

/// The program reads the document's path from the settings.
static void handOver(const QString &path)
{
    acedOpenWithDesktop(path);
    const QString program = installedFile(QStringLiteral("Yun\\reviewUploadExe.exe"));
    if (!QFileInfo::exists(program)) {
        acedFail(QStringLiteral("%1程序文件未找到，请重新安装CAD评图标签软件云模块！").arg(program));
        return;
    }
    settings::setText(kHandedOver, path);
    os::startProgram(program, {}, installFolder());
}

void QN8_ToXml()
{
    settings::setText(kHandedOver, QString());
    const auto drawing = savedDrawingPath();
    if (!drawing)
        return;
    const QString path = xmlReportPath(*drawing);
    const auto marks = selectMarks();
    if (!marks || marks->empty())
        return;
    const auto project = askXmlProject(QFileInfo(*drawing).fileName());
    XmlReport report;
    report.add(project.value_or(XmlProject()), *marks);
    if (!writeDocument(report, path))
        return;
    const QString question =
        QStringLiteral("已经输出XML格式的审图意见文件:\n\n    <%1>\n\n如果需要上传到评图云，请先运行"
                       "评图云并登陆您的账号，然后点Y继续。");
    if (acedAsk(question.arg(path), AcEdButtons::yesNo) != AcEdButton::yes)
        return;
    if (project)
        handOver(path);
    else
        acedFail(QStringLiteral("生成XML文件错误！"));
}
