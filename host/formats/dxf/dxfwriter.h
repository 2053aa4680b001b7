// Saving a drawing that came from a DXF file: the file as it was, with the changes put in.
//
// A drawing without changes is saved byte for byte. With changes only the changed objects, variables and
// counts differ; what the file lacked (ends of sections, tables, the file) is put in as well. The
// drawing keeps its source, so it can be saved again.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/atomic_file.h"
#include "host/base/progress.h"
#include "host/base/result.h"
#include "host/formats/dxf/dxferror.h"

#include <memory>

namespace dxf
{
struct Image;
}

/// What a drawing would be saved as at one moment. Changes of the drawing do not reach it. It shares the
/// bytes of the opened file with the drawing, which must outlive it; nothing else of the drawing is touched,
/// so that another thread may write it while the drawing is being edited.
class DxfImage
{
public:
    /// The drawing's own thread takes it. Refuses drawings that did not come from a DXF file.
    static base::Result<DxfImage, DxfError> take(AcDbDatabase &database);
    DxfImage(DxfImage &&other) noexcept;
    DxfImage &operator=(DxfImage &&other) noexcept;
    ~DxfImage();

    /// Without a look at what was written. `progress` is called between pieces of a few megabytes.
    base::Result<void, DxfError> write(const QString &path, const base::Progress &progress = {}) const;

private:
    explicit DxfImage(std::unique_ptr<dxf::Image> image);
    std::unique_ptr<dxf::Image> m_image;
};

/// A drawing of another format as a whole DXF file. Writes a temporary file beside the target, reads it
/// again, and renames it when every object that was written is in it.
base::Result<base::WrittenFile, DxfError> convertToDxf(AcDbDatabase &database, const QString &path,
                                                       const base::Progress &progress,
                                                       const base::MayReplace &mayReplace);

/// Writes a temporary file beside the target, reads it again, and renames it when every object of the drawing
/// is in it (dxfreread.h). A failure, or `progress` or `mayReplace` saying no, leaves the target as it was.
base::Result<base::WrittenFile, DxfError> writeDxf(AcDbDatabase &database, const QString &path,
                                                   const base::Progress &progress = {},
                                                   const base::MayReplace &mayReplace = {});
base::Result<QByteArray, DxfError> writeDxf(AcDbDatabase &database);
