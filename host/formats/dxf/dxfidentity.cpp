#include "host/formats/dxf/dxfidentity.h"

namespace dxf
{

HandleGroup findHandleGroup(const DxfSource &source, std::string_view object)
{
    HandleGroup found;
    bool handleIn5 = true;
    source.visitGroups(object, [&](const Group &group) {
        const std::string_view bytes(group.begin, std::size_t(group.end - group.begin));
        if (found.firstGroup.empty()) {
            found.firstGroup = bytes;
            handleIn5 = trimmed(group.value) != "DIMSTYLE" || source.version() > DrawingVersion::r12;
        }
        const bool isHandle = (group.code == 5 && handleIn5 && found.handle == 0) || group.code == 105;
        if (isHandle) {
            found.handle = parseHandle(group.value);
            found.bytes = bytes;
        }
        return group.code != 100 && group.code != 1001;
    });
    return found;
}

} // namespace dxf
