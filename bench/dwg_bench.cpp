// Claim: opening a DWG drawing takes at most twice as long as opening the same drawing as DXF, whose file is
// several times as large. Files of AC1021 do not keep it yet: their pages are words of an error-correcting
// code. What decoding every object takes is told beside it, and what saving with one change takes, read again
// and with its backup, against copying the file.
//
// usage: bench_open_dwg FILE.dwg...   (the DXF file is written from the drawing itself)
#include "bench/stopwatch.h"
#include "host/acdb/dbobject.h"
#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"
#include "host/formats/dwg/dwgreader.h"
#include "host/formats/dwg/dwgsource.h"
#include "host/formats/dwg/dwgwriter.h"
#include "host/formats/dxf/dxfexport.h"
#include "host/formats/dxf/dxfreader.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

/// The layer "0" gets another colour and the drawing is saved; negative when it cannot be.
static double secondsOfSaving(AcDbDatabase &database, const QString &target)
{
    const auto *const source = dynamic_cast<const DwgSource *>(database.source());
    const AcDbObjectId layer = database.tableRecord(SymbolTable::layer, QStringLiteral("0"));
    {
        AcDbObjectPointer<AcDbObject> writer(layer, AcDb::kForWrite);
        if (!writer)
            return -1.0;
        writer->setGroup(62, std::int64_t(3));
    }
    bool good = true;
    const double seconds =
        bench::bestSeconds(5, [&] { good = writeDwg(database, *source, target, {}, {}) && good; });
    return good ? seconds : -1.0;
}

static bool measure(const QString &path)
{
    constexpr int kRuns = 9;
    const auto open = [&path] {
        auto bytes = base::readFileBytes(path);
        return bytes ? readDwg(*std::move(bytes), path)
                     : base::Result<std::unique_ptr<AcDbDatabase>, QString>(
                           base::Failure{bytes.error().text()});
    };
    const auto opened = open();
    if (!opened) {
        std::fprintf(stderr, "%s\n", qPrintable(opened.error()));
        return false;
    }
    const AcDbDatabase &database = **opened;
    const QTemporaryDir folder;
    const QString twin = folder.filePath(QStringLiteral("twin.dxf"));
    const QByteArray dxf = dxf::exportDrawing(database).bytes;
    if (!base::writeFileAtomically(twin, dxf))
        return false;
    const double dwgOpening = bench::bestSeconds(kRuns, [&] { static_cast<void>(open()); });
    const double dxfOpening = bench::bestSeconds(kRuns, [&] { static_cast<void>(readDxf(twin)); });
    const double decoding = bench::bestSeconds(3, [&] {
        for (std::uint32_t index = 1; index < database.stubCount(); ++index)
            static_cast<void>(database.fileGroups(*database.stub(index)));
    });
    const QString saved = folder.filePath(QStringLiteral("saved.dwg"));
    const double copying = bench::bestSeconds(5, [&] {
        const auto bytes = base::readFileBytes(path);
        static_cast<void>(
            base::writeFileAtomically(saved, QByteArrayView(bytes->data(), qsizetype(bytes->size()))));
    });
    const double saving = secondsOfSaving(**opened, saved);
    std::printf("%-28s %8u objects, %6.2f MB: opening %7.1f ms; as DXF %6.2f MB: %7.1f ms (%.2f x); decoding "
                "all %7.1f ms; saving %7.1f ms, copying %6.1f ms (%.1f x)\n",
                qPrintable(QFileInfo(path).fileName()), database.stubCount() - 1,
                double(QFileInfo(path).size()) / 1e6, dwgOpening * 1e3, double(dxf.size()) / 1e6,
                dxfOpening * 1e3, dwgOpening / dxfOpening, decoding * 1e3, saving * 1e3, copying * 1e3,
                saving / copying);
    return true;
}

int main(int argc, char **argv)
{
    bool good = argc > 1;
    for (int i = 1; i < argc; ++i)
        good = measure(QString::fromLocal8Bit(argv[i])) && good;
    return good ? 0 : 1;
}
