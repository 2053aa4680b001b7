#include "host/acgi/kinds/multileader.h"

namespace acgi
{

Multileader::Multileader(const AcDbEntity &entity)
{
    static constexpr QStringView kOpening[] = {u"CONTEXT_DATA{", u"LEADER{", u"LEADER_LINE{"};
    int depth = 0;
    for (const resbuf &group : EntityGroups(entity, u"AcDbMLeader")) {
        if (depth < 3 && group.restype == 300 + 2 * depth && group.text() == kOpening[depth]) {
            ++depth;
            if (depth == 2)
                roots.emplace_back();
            else if (depth == 3)
                roots.back().lines.emplace_back();
        } else if (depth > 0 && group.restype == 299 + 2 * depth && group.text() == u"}") {
            --depth;
        } else if (depth == 0) {
            readOverall(group);
        } else if (depth == 1) {
            readContent(group);
        } else if (depth == 2) {
            readRoot(group);
        } else {
            readLine(group);
        }
    }
}

void Multileader::readContent(const resbuf &group)
{
    switch (group.restype) {
    case 40:
        scale = group.real();
        break;
    case 140:
        arrowSize = group.real();
        break;
    case 145:
        gap = group.real();
        break;
    case 290:
        hasText = group.integer() != 0;
        break;
    case 296:
        hasBlock = group.integer() != 0;
        break;
    default:
        readText(group);
        readBlock(group);
        break;
    }
}

void Multileader::readText(const resbuf &group)
{
    switch (group.restype) {
    case 304:
        text.coded = group.text();
        break;
    case 340:
        text.style = group.handle();
        break;
    case 11:
        text.normal = group.point().asVector();
        break;
    case 12:
        text.position = group.point();
        break;
    case 13:
        text.along = group.point().asVector();
        break;
    case 41:
        text.height = group.real();
        break;
    case 43:
        text.width = group.real();
        break;
    case 45:
        text.spacing = group.real();
        break;
    case 170:
        text.spacingStyle = group.integer();
        break;
    case 171:
        text.alignment = group.integer();
        break;
    case 172:
        text.direction = group.integer();
        break;
    case 90:
        text.color = group.integer();
        break;
    case 91:
        text.maskColor = group.integer();
        break;
    case 141:
        text.maskFactor = group.real();
        break;
    case 291:
        text.maskIsWindow = group.integer() != 0;
        break;
    case 292:
        text.masked = group.integer() != 0;
        break;
    default:
        break;
    }
}

void Multileader::readBlock(const resbuf &group)
{
    switch (group.restype) {
    case 341:
        block.record = group.handle();
        break;
    case 14:
        block.normal = group.point().asVector();
        break;
    case 15:
        block.position = group.point();
        break;
    case 16:
        block.scale = group.point().asVector();
        break;
    case 46:
        block.rotation = group.real();
        break;
    case 93:
        block.color = group.integer();
        break;
    default:
        break;
    }
}

void Multileader::readRoot(const resbuf &group)
{
    MultileaderRoot &root = roots.back();
    if (group.restype == 10)
        root.landing = group.point();
    else if (group.restype == 11)
        root.dogleg = group.point().asVector();
    else if (group.restype == 40)
        root.doglegLength = group.real();
    else if (group.restype == 271)
        root.isVertical = group.integer() != 0;
}

void Multileader::readLine(const resbuf &group)
{
    MultileaderLine &line = roots.back().lines.back();
    switch (group.restype) {
    case 10:
        line.points.push_back(group.point());
        break;
    case 91:
        line.index = group.integer();
        break;
    case 93:
        line.overrides = group.integer();
        break;
    case 170:
        line.type = group.integer();
        break;
    case 92:
        line.color = group.integer();
        break;
    case 340:
        line.linetype = group.handle();
        break;
    case 171:
        line.weight = group.integer();
        break;
    case 40:
        line.arrowSize = group.real();
        break;
    case 341:
        line.arrow = group.handle();
        break;
    default:
        break;
    }
}

void Multileader::readOverall(const resbuf &group)
{
    switch (group.restype) {
    case 170:
        type = group.integer();
        break;
    case 91:
        color = group.integer();
        break;
    case 341:
        linetype = group.handle();
        break;
    case 171:
        weight = group.integer();
        break;
    case 291:
        hasDogleg = group.integer() != 0;
        break;
    case 292:
        hasFrame = group.integer() != 0;
        break;
    case 342:
        arrow = group.handle();
        break;
    case 173:
        leftAttachment = group.integer();
        break;
    case 95:
        rightAttachment = group.integer();
        break;
    case 94:
        arrows.emplace_back(group.integer(), AcDbHandle());
        break;
    case 345:
        if (!arrows.empty())
            arrows.back().second = group.handle();
        break;
    case 330:
        attributes.push_back({group.handle(), {}});
        break;
    case 302:
        if (!attributes.empty())
            attributes.back().text = group.text();
        break;
    default:
        break;
    }
}

} // namespace acgi
