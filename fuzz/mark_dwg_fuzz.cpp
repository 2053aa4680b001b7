// Streams of review marks: whatever is read can be written and reads as the same again.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"

#include "fuzz/silent_front_end.h"

#include <cstdlib>

static QByteArray written(const QuillnoteObj3 &mark)
{
    AcDbMemoryFiler filer(AcDb::kFileFiler, nullptr);
    if (mark.dwgOutFields(&filer) != Acad::eOk)
        std::abort();
    return filer.stream();
}

static Acad::ErrorStatus read(QuillnoteObj3 &mark, const QByteArray &stream)
{
    AcDbMemoryFiler filer(AcDb::kFileFiler, nullptr, stream);
    return mark.dwgInFields(&filer);
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    static fuzz::SilentFrontEnd frontEnd;
    acedSetFrontEnd(&frontEnd);
    registerMarkClass();
    return 0;
}

/// Also after a failure: the record keeps what was read, and that is a record like any other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto mark = QuillnoteObj3::forReading();
    read(*mark, QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const QByteArray first = written(*mark);
    const auto again = QuillnoteObj3::forReading();
    if (read(*again, first) != Acad::eOk || written(*again) != first)
        std::abort();
    AcDbExtents extents;
    mark->getGeomExtents(extents);
    return 0;
}
