#include "host/formats/dwg/dwgreread.h"

#include "host/base/host_text.h"
#include "host/formats/dwg/dwgmap.h"

#include <set>

namespace dwg
{
namespace
{

/// Says which one; empty when there is none.
QString differentSection(const Container &written, const FileContents &meant)
{
    const PackedSections sections(meant);
    std::set<QByteArray> names;
    for (const auto &[name, bytes] : meant.original.sections)
        names.insert(name);
    for (const auto &[name, bytes] : meant.sections)
        names.insert(name);
    for (const char *const placed : {"AcDb:AcDbObjects", "AcDb:Handles", "AcDb:Preview"})
        names.erase(placed); // These hold places in the file.
    for (const QByteArray &name : names) {
        std::string_view found = written.section(name);
        std::string_view wanted = sections.find(name);
        if (name == "AcDb:ObjFreeSpace" && written.version < DrawingVersion::r2004) {
            found = found.substr(0, std::min<std::size_t>(found.size(), 16));
            wanted = wanted.substr(0, std::min<std::size_t>(wanted.size(), 16));
        }
        if (found != wanted)
            return Host::tr("the section %1 is not as it was meant").arg(QString::fromLatin1(name));
    }
    return {};
}

QString differentObject(Container &written, const FileContents &meant)
{
    const FileFacts facts{written.version, base::TextCodec::fromDwgNumber(written.codePage)};
    const std::vector<MapEntry> map = readObjectMap(written);
    if (map.size() != meant.objects.size())
        return Host::tr("it names %1 objects instead of %2").arg(map.size()).arg(meant.objects.size());
    for (std::size_t i = 0; i < map.size(); ++i) {
        const PackedObject &object = meant.objects[i];
        const QString handle = QString::number(object.handle, 16).toUpper();
        if (map[i].handle != object.handle)
            return Host::tr("object %1 is missing").arg(handle);
        if (partOf(written.objects, map[i].offset, object.record.size()) != object.record)
            return Host::tr("object %1 is not as it was meant").arg(handle);
        const ObjectReader reader(facts, object.record);
        if (!reader.good() || reader.handle() != object.handle || reader.size() != object.record.size())
            return Host::tr("object %1 is damaged").arg(handle);
    }
    return {};
}

} // namespace

base::Result<void, QString> compareWritten(std::string_view file, const FileContents &meant)
{
    auto written = openContainer(file);
    if (!written)
        return base::Failure{written.error()};
    QString fault = differentSection(*written, meant);
    if (fault.isEmpty())
        fault = differentObject(*written, meant);
    if (fault.isEmpty() && !written->warnings.isEmpty())
        fault = written->warnings.front();
    if (!fault.isEmpty())
        return base::Failure{fault};
    return {};
}

} // namespace dwg
