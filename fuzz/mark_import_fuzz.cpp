// Mark data files taken into a drawing: whatever a file holds, the drawing can be saved and read again with
// the same marks, and taking the file a second time adds none that has a GUID.
#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/exchange/import_marks.h"
#include "quillnote/exchange/mark_data_file.h"

#include "host/acgi/query/install.h"
#include "host/base/assert.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxftemplate.h"
#include "host/formats/dxf/dxfwriter.h"

#include <memory>

static std::unique_ptr<AcDbDatabase> drawingOf(const QByteArray &bytes)
{
    auto database = readDxf(base::FileBytes::fromByteArray(bytes), QStringLiteral("fuzz"));
    QUILL_ASSERT(database);
    return std::move(database).value();
}

static QStringList guidsOf(const AcDbDatabase &database)
{
    QStringList guids;
    for (const AcDbObjectId id : collectMarks(database).ids) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        QUILL_ASSERT(mark);
        guids.append(mark->GUID);
    }
    return guids;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool isReady = (acgi::install(), registerMarkClass(), true);
    static_cast<void>(isReady);
    const QByteArrayView file(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto header = readMarkDataHeader(file);
    if (!header || header->kind == MarkDataKind::erased)
        return 0;
    const auto database = drawingOf(newDrawingDxf());
    importMarkData(*database, readMarkData(file, *header).data);
    const QStringList guids = guidsOf(*database);
    const auto saved = writeDxf(*database);
    QUILL_ASSERT(saved);
    const auto again = drawingOf(*saved);
    QUILL_ASSERT(guidsOf(*again) == guids);
    importMarkData(*again, readMarkData(file, *header).data);
    const auto named = [](const QStringList &all) { return all.size() - all.count(QString()); };
    QUILL_ASSERT(named(guidsOf(*again)) <= named(guids));
    return 0;
}
