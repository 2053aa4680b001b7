// usage: dwg_repack FILE.dwg OUT.dwg
//        dwg_repack --compare OLD.dwg NEW.dwg
//
// Packs a drawing again with every object as it is, and compares what was written with the original, record
// by record and section by section. Prints "AC1027 856 objects, 345600 bits kept, 102258 to 103010 bytes,
// packing it again gives the same bytes"; fails with the reason when something differs. Comparing tells which
// records of a drawing another one has: "842 objects, 838 with the same bits, 31 added; others 1F 2 C 10".
// real_dwg_test.py runs it.
#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"
#include "host/formats/dwg/dwgheader.h"
#include "host/formats/dwg/dwgreread.h"

#include <cstdio>
#include <map>

namespace
{

base::Result<QByteArray, QString> packedAgain(std::string_view file, std::size_t &objects, std::size_t &bytes)
{
    auto container = dwg::openContainer(file);
    if (!container)
        return base::Failure{container.error()};
    const dwg::FileFacts facts{container->version, base::TextCodec::fromDwgNumber(container->codePage)};
    const std::uint64_t seed = dwg::readHeader(facts, *container).handleSeed;
    const dwg::FileContents contents{*container, {}, dwg::storedObjects(*container), seed};
    auto packed = dwg::packFile(contents);
    if (!packed)
        return base::Failure{packed.error()};
    if (const auto same = dwg::compareWritten(dwg::viewOf(*packed), contents); !same)
        return base::Failure{same.error()};
    objects = contents.objects.size();
    bytes = 0;
    for (const dwg::PackedObject &object : contents.objects)
        bytes += object.record.size();
    return packed;
}

base::Result<void, QString> repack(const QString &from, const QString &to)
{
    const auto file = base::readFileBytes(from);
    if (!file)
        return base::Failure{file.error().text()};
    std::size_t objects = 0, bytes = 0;
    const auto packed = packedAgain(file->view(), objects, bytes);
    if (!packed)
        return base::Failure{packed.error()};
    const auto twice = packedAgain(dwg::viewOf(*packed), objects, bytes);
    if (!twice)
        return base::Failure{twice.error()};
    if (const auto written = base::writeFileAtomically(to, *packed); !written)
        return base::Failure{written.error().text()};
    std::printf("%.6s %zu objects, %zu bits kept, %zu to %zu bytes, packing it again gives %s bytes\n",
                file->data(), objects, bytes * 8, file->size(), std::size_t(packed->size()),
                *twice == *packed ? "the same" : "other");
    return {};
}

std::map<std::uint64_t, QByteArray> recordsOf(const base::FileBytes &file)
{
    std::map<std::uint64_t, QByteArray> records;
    auto container = dwg::openContainer(file.view());
    if (!container)
        return records;
    for (const dwg::PackedObject &object : dwg::storedObjects(*container))
        records[object.handle] = QByteArray(object.record.data(), qsizetype(object.record.size()));
    return records;
}

bool compare(const QString &oldPath, const QString &newPath)
{
    const auto oldFile = base::readFileBytes(oldPath), newFile = base::readFileBytes(newPath);
    if (!oldFile || !newFile)
        return false;
    const auto before = recordsOf(*oldFile);
    auto after = recordsOf(*newFile);
    std::size_t same = 0;
    QString others;
    for (const auto &[handle, record] : before) {
        const auto found = after.find(handle);
        if (found != after.end() && found->second == record)
            ++same;
        else
            others += u' ' + QString::number(handle, 16).toUpper();
        if (found != after.end())
            after.erase(found);
    }
    std::printf("%zu objects, %zu with the same bits, %zu added; others%s\n", before.size(), same,
                after.size(), qPrintable(others));
    return !before.empty();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 4)
        return compare(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3])) ? 0 : 1;
    if (argc != 3)
        return 2;
    const auto done = repack(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    if (!done)
        std::fprintf(stderr, "%s: %s\n", argv[1], qPrintable(done.error()));
    return done ? 0 : 1;
}
