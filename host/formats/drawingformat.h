// DrawingFormat: a kind of file that drawings are read from and written to.
//
// A format's library registers itself when it is loaded; who opens or saves drawings asks here and knows none
// by name. The errors are sentences with file, place and reason.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"
#include "host/base/progress.h"
#include "host/base/result.h"

#include <memory>
#include <string_view>

/// What a drawing would be saved as at one moment. Changes of the drawing do not reach it. It may share the
/// bytes of the opened file with the drawing, which must outlive it; nothing else of the drawing is touched,
/// so that another thread may write it while the drawing is being edited.
class DrawingImage
{
public:
    virtual ~DrawingImage() = default;
    /// Without a look at what was written.
    virtual base::Result<void, QString> write(const QString &path, const base::Progress &progress) const = 0;
    /// The ending of such files, without the dot: not always that of the drawing's own format.
    virtual QString suffix() const = 0;
};

/// Some formats have no mark; they take what no other knows.
enum class Recognised { no, perhaps, surely };

class DrawingFormat
{
public:
    virtual ~DrawingFormat() = default;

    /// "DXF"
    virtual QString name() const = 0;
    /// The ending of its files, without the dot, in small letters.
    virtual QString suffix() const = 0;
    /// Asked of the whole file.
    virtual Recognised recognises(std::string_view bytes) const = 0;
    /// The drawing was read by this format.
    virtual bool holds(const AcDbDatabase &database) const = 0;
    /// `name` is what errors call the file. When `progress` says no, reading ends with an error.
    virtual base::Result<std::unique_ptr<AcDbDatabase>, QString>
    read(base::FileBytes bytes, const QString &name, const base::Progress &progress) const = 0;
    /// Why a drawing cannot be written in this format, and what to do instead; empty when it can.
    virtual QString whyNotWritten(const AcDbDatabase &) const { return {}; }
    /// What of a drawing cannot be written in this format, a sentence each. Empty: all of it can.
    virtual QStringList losses(const AcDbDatabase &database) const = 0;
    /// Drawings of other formats are converted, or refused with the reason. A crash, a failure, or `progress`
    /// or `mayReplace` saying no, leaves what the file held.
    virtual base::Result<base::WrittenFile, QString> write(AcDbDatabase &database, const QString &path,
                                                           const base::Progress &progress,
                                                           const base::MayReplace &mayReplace) const = 0;
    /// The drawing's own thread takes it. Formats that cannot write let another one make it.
    virtual base::Result<std::unique_ptr<DrawingImage>, QString> image(AcDbDatabase &database) const = 0;
    /// The file that a new drawing starts from; empty when the format has none.
    virtual QByteArray blank() const { return {}; }
};

/// Formats live as long as the process.
void registerDrawingFormat(const DrawingFormat &format);
const std::vector<const DrawingFormat *> &drawingFormats();

// Null when there is none.
const DrawingFormat *drawingFormatOfBytes(std::string_view bytes);
const DrawingFormat *drawingFormatOf(const AcDbDatabase &database);
/// By the ending of a name.
const DrawingFormat *drawingFormatOfName(const QString &path);
/// What a drawing is saved in under a name: the format of the ending, else its own.
const DrawingFormat *drawingFormatToSave(const AcDbDatabase &database, const QString &path);
