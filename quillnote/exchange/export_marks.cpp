#include "quillnote/exchange/export_marks.h"

#include "quillnote/aids/tick_symbols.h"
#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/exchange/exchange_files.h"
#include "quillnote/reports/report_path.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/base/atomic_file.h"

QString drawingFingerprint(const AcDbDatabase &database)
{
    const QString fingerprint = database.headerText("$FINGERPRINTGUID").trimmed();
    return fingerprint.isEmpty() ? QStringLiteral("0") : fingerprint;
}

MarkDataRecord markDataRecord(const QuillnoteObj3 &mark)
{
    MarkDataRecord record;
    record.layer = QStringLiteral("0");
    if (const AcDbObjectPointer<AcDbLayerTableRecord> layer(mark.layerId(), AcDb::kForRead); layer) {
        record.layer = layer->getName();
        record.layerColor = static_cast<std::uint16_t>(layer->colorIndex());
    }
    record.mark = copyOfMark(mark);
    record.handle = mark.handle();
    record.owner = mark.blockId().handle();
    return record;
}

MarkData marksOf(const AcDbDatabase &database)
{
    MarkData data;
    data.fingerprint = drawingFingerprint(database);
    for (const AcDbObjectId id : collectMarks(database).ids) {
        if (const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead); mark)
            data.marks.push_back(markDataRecord(*mark));
    }
    data.ticks = ticksOf(database);
    return data;
}

QString writeSynchronisationFile(const QByteArray &bytes, const QString &prefix)
{
    const QString path = unusedFileName(synchronisationFolder(), prefix, QString::fromUtf16(kMarkFileEnding));
    if (base::writeFileAtomically(path, bytes))
        return path;
    acutPrintf(QStringLiteral("\n创建Quillnote数据文件<%1>错误。").arg(path));
    return {};
}

/// Refuses what no reader would take.
static bool fitsIntoFile(const MarkData &data)
{
    if (data.marks.size() <= kMostDataRecords && data.ticks.size() <= kMostDataRecords)
        return true;
    acutPrintf(QStringLiteral("\n本图有 %1 个评图标签、%2 个对勾标记，一个数据文件最多各存 %3 个。")
                   .arg(data.marks.size())
                   .arg(data.ticks.size())
                   .arg(kMostDataRecords));
    return false;
}

static bool exportTo(const QString &target)
{
    const MarkData data = marksOf(*acdbCurDwg());
    if ((data.marks.empty() && data.ticks.empty()) || !fitsIntoFile(data))
        return false;
    const QByteArray bytes = encodeMarkData(data);
    return !writeSynchronisationFile(bytes, QString::fromUtf16(kMarkFilePrefix)).isEmpty() &&
           base::writeFileAtomically(target, bytes);
}

void QN3_DataFileOut()
{
    const QString drawing = drawingPath();
    if (drawing.isEmpty()) {
        acutPrintf(QStringLiteral("\n请先命名并保存本文件后，再执行本命令。"));
        return;
    }
    // Drawings end in ".dwg" or ".dxf".
    const QString target = drawing.chopped(4) + QStringLiteral(".Quillnote");
    acedAlert(exportTo(target) ? QStringLiteral("评图标签独立信息文件:\n\n%1  \n\n已成功保存。").arg(target)
                               : QStringLiteral("未保存！"));
}
