// What a DWG file says of its classes and of the places of its objects.
#pragma once

#include "host/formats/dwg/dwgsource.h"

namespace dwg
{

struct MapEntry {
    std::uint64_t handle;
    std::uint64_t offset;
};

/// The object map, in ascending order of handles. What is wrong with it is told in the container's warnings.
std::vector<MapEntry> readObjectMap(Container &container);

std::vector<DwgClass> readClasses(const FileFacts &facts, Container &container);
/// The whole section AcDb:Classes again with these classes: all that the file has, in their order, perhaps
/// with another number of instances, and new ones behind them. The same classes have the same bits. The error
/// is a sentence without the file's name.
base::Result<QByteArray, QString> encodeClasses(const FileFacts &facts, const Container &container,
                                                const std::vector<DwgClass> &classes);

} // namespace dwg
