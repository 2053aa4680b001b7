#include "quillnote/reports/marks_verb.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/reports/mark_pictures.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

static const QString kPictures = QStringLiteral("--pictures");
static const QString kOverwrite = QStringLiteral("-f");

/// A JSON value on one line: texts with their quotes and escapes, numbers and lists bare.
static QString asText(const QJsonValue &value)
{
    const QString inList = QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
    return inList.mid(1, inList.size() - 2);
}

static QString asLine(const QJsonObject &place, const std::vector<std::pair<QString, QJsonValue>> &fields)
{
    QString line = QStringLiteral("%1 %2 %3")
                       .arg(place[QStringLiteral("handle")].toString(),
                            asText(place[QStringLiteral("layout")]), asText(place[QStringLiteral("layer")]));
    for (const auto &[name, value] : fields)
        line += QStringLiteral(" %1=%2").arg(name, asText(value));
    return line + QLatin1Char('\n');
}

static QString handleText(AcDbObjectId id)
{
    return QString::number(id.handle().value, 16).toUpper();
}

static std::optional<MarkPictureWriter> pictureWriter(const AcEdVerbCall &call)
{
    const auto folder = call.options.find(kPictures);
    if (folder == call.options.end())
        return {};
    return MarkPictureWriter(folder->second, call.has(kOverwrite));
}

static int listMarks(const AcEdVerbCall &call)
{
    std::optional<MarkPictureWriter> pictures = pictureWriter(call);
    bool written = true;
    for (const AcDbObjectId id : collectMarks(*acdbCurDwg()).ids) {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (!mark)
            continue;
        written = (!pictures || pictures->write(*mark)) && written;
        QJsonObject place{{QStringLiteral("handle"), handleText(id)},
                          {QStringLiteral("layout"), acdbLayoutName(mark->blockId())},
                          {QStringLiteral("layer"), mark->layer()}};
        const auto fields = markFieldValues(*mark);
        if (!call.json) {
            acedPrintResult(asLine(place, fields));
            continue;
        }
        place.insert(QStringLiteral("file"), curDoc()->fileName());
        for (const auto &[name, value] : fields)
            place.insert(name, value);
        acedPrintResult(place);
    }
    return written ? 0 : 2;
}

AcEdVerb marksVerb()
{
    return {
        QStringLiteral("marks"),
        QStringLiteral("List the review marks with all their fields"),
        {{kPictures, QStringLiteral("DIR"), QStringLiteral("Write the stored pictures into this folder.")},
         {kOverwrite, {}, QStringLiteral("Let --pictures overwrite.")}},
        listMarks};
}
