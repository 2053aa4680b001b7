// DXF groups of review marks, written as lines: whatever is read can be written and reads as the same again.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"

#include "fuzz/silent_front_end.h"
#include "tests/quillnote/entity/group_lines.h"

#include <cstdlib>

static ResbufList written(const QuillnoteObj3 &mark)
{
    AcDbDxfFiler filer(nullptr);
    if (mark.dxfOutFields(&filer) != Acad::eOk)
        std::abort();
    return filer.groups();
}

static Acad::ErrorStatus read(QuillnoteObj3 &mark, const ResbufList &groups)
{
    AcDbDxfFiler filer(nullptr, groups);
    return mark.dxfInFields(&filer);
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    static fuzz::SilentFrontEnd frontEnd;
    acedSetFrontEnd(&frontEnd);
    registerMarkClass();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray lines(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto mark = QuillnoteObj3::forReading();
    read(*mark, tests::groupsFromLines(lines));
    const ResbufList first = written(*mark);
    const auto again = QuillnoteObj3::forReading();
    if (read(*again, first) != Acad::eOk)
        std::abort();
    const ResbufList second = written(*again);
    if (!lines.toLower().contains("nan") && second != first)
        std::abort();
    return 0;
}
