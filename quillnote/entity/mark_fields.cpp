#include "quillnote/entity/mark_fields.h"

#include "quillnote/entity/field_walk.h"

#include "host/base/assert.h"

#include <algorithm>
#include <array>

using Mark = QuillnoteObj3;

static int filedVertices(const Mark &mark)
{
    return mark.hasFiledVertices() ? mark.vertexCount : 0;
}

static void repairVertexCount(Mark &mark)
{
    mark.vertexCount = std::clamp<std::int16_t>(mark.vertexCount, 0, Mark::kSlots);
}

static void repairWeight(Mark &mark)
{
    if (mark.weight < 1 || mark.weight > 10)
        mark.weight = 5;
}

static void repairPasswordHash(Mark &mark)
{
    mark.chPwMD5.truncate(Mark::kPasswordHashLength);
}

static void repairEditVersion(Mark &mark)
{
    if (mark.editVersion < 0 || mark.editVersion > 255)
        mark.editVersion = 1;
}

static constexpr fields::PointRun<Mark> kVertices{&Mark::vertices, filedVertices};
static constexpr fields::PointSlots<Mark> kLeaders{&Mark::leaderEnds, &Mark::leaderUsed, 292};

// clang-format off
static constexpr std::array kFields = std::to_array<MarkField>({
    // name               member                     since  DXF code, place  repair
    {u"formatVersion",     &Mark::formatVersion,     1, {70, 1}},
    {u"erasable",          &Mark::erasable,          1, {290, 4}},
    {u"displayMode",       &Mark::displayMode,       1, {171, 5}},
    {u"markNumber",        &Mark::markNumber,        1, {172, 6}},
    {u"subNumber",         &Mark::subNumber,         1, {173, 7}},
    {u"suggestionContent", &Mark::suggestionContent, 1, {301, 8}},
    {u"feedbackContent",   &Mark::feedbackContent,   1, {302, 9}},
    {u"targetCorner1",     &Mark::targetCorner1,     1, {11, 10}},
    {u"targetCorner2",     &Mark::targetCorner2,     1, {11, 11}},
    {u"feedbackType",      &Mark::feedbackType,      1, {174, 12}},
    {u"targetStyle",       &Mark::targetStyle,       1, {175, 13}},
    {u"reservedShort",     &Mark::reservedShort,     1, {176, 14}},
    {u"color1",            &Mark::color1,            1, {63, 15}},
    {u"color2",            &Mark::color2,            1, {64, 16}},
    // Version 7 came last but stands in the middle.
    {u"normal",            &Mark::normal,            7, {210, 2}},
    {u"xDirection",        &Mark::xDirection,        7, {211, 3}},
    {u"targetCorner3",     &Mark::targetCorner3,     7, {11, 17}},
    {u"targetCorner4",     &Mark::targetCorner4,     7, {11, 18}},
    {u"textBoxCorner1",    &Mark::textBoxCorner1,    7, {12, 19}},
    {u"textBoxCorner2",    &Mark::textBoxCorner2,    7, {12, 20}},
    {u"textBoxCorner3",    &Mark::textBoxCorner3,    7, {12, 21}},
    {u"textBoxCorner4",    &Mark::textBoxCorner4,    7, {12, 22}},
    {u"flagStyle",         &Mark::flagStyle,         7, {177, 23}},
    {u"leaderMode",        &Mark::leaderMode,        7, {178, 24}},
    {u"reservedShort2",    &Mark::reservedShort2,    7, {179, 25}},
    {u"cornersValid",      &Mark::cornersValid,      7, {291, 26}},
    {u"flagPoint",         &Mark::flagPoint,         7, {13, 27}},
    {u"vertexCount",       &Mark::vertexCount,       7, {270, 28}, repairVertexCount},
    {u"vertices",          kVertices,                7, {14, 29}},
    {u"reservedDouble",    &Mark::reservedDouble,    7, {41, 38}},
    {u"bigCategory",       &Mark::bigCategory,       7, {305, 32}},
    {u"smallCategory",     &Mark::smallCategory,     7, {306, 33}},
    {u"weight",            &Mark::weight,            7, {71, 34}, repairWeight},
    {u"suggestionName",    &Mark::suggestionName,    1, {303, 30}},
    {u"feedbackName",      &Mark::feedbackName,      1, {304, 31}},
    {u"chPwMD5",           &Mark::chPwMD5,           1, {}, repairPasswordHash},
    {u"createTime",        &Mark::createTime,        1, {42, 35}},
    {u"feedbackTime",      &Mark::feedbackTime,      1, {43, 36}},
    {u"GUID",              &Mark::GUID,              1},
    {u"sketchData",        &Mark::sketchData,        1},
    {u"textHeight",        &Mark::textHeight,        4, {40, 37}},
    {u"leaders",           kLeaders,                 4, {15, 39}},
    {u"editVersion",       &Mark::editVersion,       4, {}, repairEditVersion},
    {u"reservedShortA",    &Mark::reservedShortA,    4},
    {u"reservedShortB",    &Mark::reservedShortB,    4},
    {u"reservedDoubleA",   &Mark::reservedDoubleA,   4},
    {u"reservedDoubleB",   &Mark::reservedDoubleB,   4},
    {u"reservedDoubleC",   &Mark::reservedDoubleC,   4},
    {u"reservedPointA",    &Mark::reservedPointA,    4},
    {u"reservedPointB",    &Mark::reservedPointB,    4},
    {u"reservedPointC",    &Mark::reservedPointC,    4},
    {u"autoTextHeight",    &Mark::autoTextHeight,    4},
    {u"reservedBoolA",     &Mark::reservedBoolA,     4},
    {u"reservedBoolB",     &Mark::reservedBoolB,     4},
    {u"snapEntityIds",     &Mark::snapEntityIds,     6},
    {u"snapNote",          &Mark::snapNote,          6},
    {u"snapChecksum",      &Mark::snapChecksum,      6},
    {u"snapImage",         &Mark::snapImage,         6},
    {u"fullImage",         &Mark::fullImage,         6},
});
// clang-format on

std::span<const MarkField> markFields()
{
    return kFields;
}

const std::vector<const MarkField *> &markDxfSequence()
{
    static const std::vector<const MarkField *> sequence = fields::dxfSequence(markFields());
    return sequence;
}

const MarkField &markField(QStringView name)
{
    const auto found = std::ranges::find(kFields, name, &MarkField::name);
    QUILL_ASSERT(found != kFields.end());
    return *found;
}

std::unique_ptr<QuillnoteObj3> copyOfMark(const QuillnoteObj3 &mark)
{
    auto copy = QuillnoteObj3::forReading();
    for (const MarkField &field : kFields)
        fields::copyField(mark, *copy, field);
    copy->textAnchor = mark.textAnchor;
    return copy;
}

std::vector<std::pair<QString, QJsonValue>> markFieldValues(const QuillnoteObj3 &mark)
{
    std::vector<std::pair<QString, QJsonValue>> values;
    values.reserve(kFields.size());
    for (const MarkField &field : kFields)
        values.emplace_back(field.name.toString(), fields::fieldToJson(mark, field));
    return values;
}

QStringList differingMarkFields(const QuillnoteObj3 &a, const QuillnoteObj3 &b)
{
    QStringList names;
    for (const MarkField &field : kFields) {
        if (!fields::sameField(a, b, field))
            names.append(field.name.toString());
    }
    return names;
}
