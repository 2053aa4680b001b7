#include "quillnote/aids/links/link_set.h"

#include "quillnote/entity/display_mode.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/acgi/display/display.h"

#include <algorithm>

std::vector<AcDbObjectId> linkIds(const AcDbDatabase &database)
{
    return acdbEntitiesOfKind(database, acdbKind(kLinkDxfName));
}

int setLinksDisplayMode(const std::vector<AcDbObjectId> &links, std::int16_t mode)
{
    return int(std::ranges::count_if(
        links, [mode](AcDbObjectId id) { return !setDisplayMode<QuillLinkObj>(id, mode); }));
}

void saySkippedLinks(int count, std::size_t of)
{
    if (count == 0)
        return;
    const QString text = QStringLiteral("%1 个热点链接无法修改（所在图层可能已锁定），已跳过。").arg(count);
    if (std::size_t(count) == of)
        acedRefuse(text);
    else
        acutPrintf(u'\n' + text);
}

void redrawPartner(const QuillLinkObj &link)
{
    if (link.linkRole == QuillLinkObj::target && link.linkKind == QuillLinkObj::sameDrawing &&
        link.partnerId.isValid())
        acgi::displayOf(*link.database()).regenerate(link.partnerId);
}
