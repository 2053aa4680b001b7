#include "host/acdb/resbuf.h"

#include <algorithm>
#include <array>

template <class T>
static T valueOr(const resbuf::Value &value)
{
    const T *const held = std::get_if<T>(&value);
    return held ? *held : T();
}

QString resbuf::text() const
{
    return valueOr<QString>(resval);
}

std::int64_t resbuf::integer() const
{
    return valueOr<std::int64_t>(resval);
}

double resbuf::real() const
{
    return valueOr<double>(resval);
}

AcGePoint3d resbuf::point() const
{
    if (const auto *const plane = std::get_if<AcGePoint2d>(&resval))
        return {plane->x, plane->y, 0.0};
    return valueOr<AcGePoint3d>(resval);
}

AcDbHandle resbuf::handle() const
{
    if (const auto *const object = std::get_if<AcDbObjectId>(&resval))
        return object->handle();
    return valueOr<AcDbHandle>(resval);
}

AcDbObjectId resbuf::id() const
{
    return valueOr<AcDbObjectId>(resval);
}

QByteArray resbuf::bytes() const
{
    return valueOr<QByteArray>(resval);
}

void resbuf::assign(Value value)
{
    resval = std::move(value);
    source = {};
}

const resbuf *findGroup(const ResbufList &list, int code, std::size_t from)
{
    ApplicationGroups applications;
    const auto part = std::span(list).subspan(std::min(from, list.size()));
    for (const resbuf &group : part.first(ownGroupsEnd(part))) {
        if (!applications.holds(group) && group.restype == code)
            return &group;
    }
    return nullptr;
}

resbuf *findGroup(ResbufList &list, int code, std::size_t from)
{
    return const_cast<resbuf *>(findGroup(std::as_const(list), code, from));
}

std::size_t subclassBegin(const ResbufList &list, QStringView subclass)
{
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].restype == 100 && list[i].text() == subclass)
            return i + 1;
    }
    return list.size();
}

std::size_t ownGroupsEnd(std::span<const resbuf> groups)
{
    const auto foreign = [](const resbuf &group) { return group.restype == 101 || group.restype == 1001; };
    return std::size_t(std::ranges::find_if(groups, foreign) - groups.begin());
}

std::size_t extendedDataBegin(const ResbufList &list)
{
    const auto found = std::ranges::find(list, 1001, &resbuf::restype);
    return std::size_t(found - list.begin());
}

struct CodeRange {
    int first;
    int last;
    GroupKind kind;
};

// clang-format off
static constexpr CodeRange kCodeRanges[] = {
    {0, 4, GroupKind::text},          {5, 5, GroupKind::handle},        {6, 9, GroupKind::text},
    {10, 18, GroupKind::point},       {19, 59, GroupKind::real},        {60, 79, GroupKind::integer16},
    {90, 99, GroupKind::integer32},   {100, 104, GroupKind::text},      {105, 105, GroupKind::handle},
    {110, 112, GroupKind::point},     {113, 149, GroupKind::real},      {160, 169, GroupKind::integer64},
    {170, 179, GroupKind::integer16}, {210, 213, GroupKind::point},     {214, 239, GroupKind::real},
    {270, 289, GroupKind::integer16}, {290, 299, GroupKind::boolean},   {300, 309, GroupKind::text},
    {310, 319, GroupKind::binary},    {320, 369, GroupKind::handle},    {370, 389, GroupKind::integer16},
    {390, 399, GroupKind::handle},    {400, 409, GroupKind::integer16}, {410, 419, GroupKind::text},
    {420, 429, GroupKind::integer32}, {430, 439, GroupKind::text},      {440, 459, GroupKind::integer32},
    {460, 469, GroupKind::real},      {470, 479, GroupKind::text},      {480, 481, GroupKind::handle},
    {999, 1003, GroupKind::text},     {1004, 1004, GroupKind::binary},  {1005, 1005, GroupKind::handle},
    {1006, 1009, GroupKind::text},    {1010, 1013, GroupKind::point},   {1014, 1059, GroupKind::real},
    {1060, 1070, GroupKind::integer16}, {1071, 1071, GroupKind::integer32},
};
// clang-format on

static constexpr int kHighestCode = 1071;

// One look-up a group: a drawing has tens of millions of them.
static constexpr auto kKindOfCode = [] {
    std::array<GroupKind, kHighestCode + 1> kinds{};
    for (const CodeRange &range : kCodeRanges) {
        for (int code = range.first; code <= range.last; ++code)
            kinds[std::size_t(code)] = range.kind;
    }
    return kinds;
}();

GroupKind groupKind(int code)
{
    return code >= 0 && code <= kHighestCode ? kKindOfCode[std::size_t(code)] : GroupKind::text;
}

bool beginsPoint(int code)
{
    return groupKind(code) == GroupKind::point;
}
