#include "quillnote/snapshot/fingerprint.h"

#include "host/acap/docman.h"
#include "host/acdb/dbapi.h"
#include "host/acgi/query/spatial_index.h"
#include "host/base/format_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <future>
#include <numeric>

static constexpr int kColor = 62;

template <class Text>
static void appendNumber(Text &text, double value)
{
    text += QLatin1String(base::formatPrintfG(value).view());
}

template <class Text>
static void appendInteger(Text &text, std::int32_t value)
{
    std::array<char, 16> buffer;
    const char *const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    text += QLatin1String(buffer.data(), end - buffer.data());
}

template <class Text>
static void appendPoint(Text &text, const AcGePoint3d &point)
{
    text += QLatin1Char('(');
    appendNumber(text, point.x);
    text += QLatin1String(", ");
    appendNumber(text, point.y);
    text += QLatin1String(", ");
    appendNumber(text, point.z);
    text += QLatin1Char(')');
}

template <class Text>
static void appendQuoted(Text &text, const resbuf &group)
{
    text += QLatin1Char('"');
    text += group.text();
    text += QLatin1Char('"');
}

template <class Text>
static void appendValue(Text &text, const resbuf &group)
{
    const int code = group.restype;
    if (code <= 9 && std::holds_alternative<std::monostate>(group.resval))
        text += QLatin1String("(NULL)");
    else if (code <= 9)
        appendQuoted(text, group);
    else if (code <= 17)
        appendPoint(text, group.point());
    else if (code >= 38 && code <= 59)
        appendNumber(text, group.real());
    else if (code >= 60 && code <= 79)
        appendInteger(text, static_cast<std::int16_t>(group.integer()));
    else if (code >= 90)
        appendInteger(text, static_cast<std::int32_t>(group.integer()));
    else
        text += QLatin1String("*Unknown*");
}

template <class Text>
static void appendData(Text &text, const ResbufList &data)
{
    for (const resbuf &group : data) {
        if (group.restype < 0 || group.restype > 99 || group.restype == kColor)
            continue;
        text += QLatin1Char('(');
        appendInteger(text, group.restype);
        text += QLatin1Char(',');
        appendValue(text, group);
        text += QLatin1Char(')');
    }
}

QString fingerprintText(const ResbufList &data)
{
    QString text;
    appendData(text, data);
    return text;
}

namespace
{

/// A text of which only the sum of its code units is kept.
struct UnitSum {
    std::uint32_t sum = 0; ///< Wraps.

    void operator+=(QLatin1Char unit) { sum += static_cast<unsigned char>(unit.toLatin1()); }
    void operator+=(QLatin1String text)
    {
        for (const char unit : text)
            sum += static_cast<unsigned char>(unit);
    }
    void operator+=(const QString &text)
    {
        for (const QChar unit : text)
            sum += unit.unicode();
    }
};

} // namespace

std::int32_t fingerprintSum(const QString &text, std::int32_t sum)
{
    UnitSum wrapping{static_cast<std::uint32_t>(sum)};
    wrapping += text;
    return static_cast<std::int32_t>(wrapping.sum);
}

bool isReviewMark(AcDbObjectId entity)
{
    return acdbKindName(entity.stub()->kind).startsWith("QUILLNOTE");
}

/// Of what crosses a target: without marks, the newest first.
static void orderAsSelected(std::vector<AcDbObjectId> &ids)
{
    std::erase_if(ids, isReviewMark);
    std::ranges::sort(ids, std::greater(), [](AcDbObjectId id) { return id.stub()->index; });
}

std::vector<AcDbObjectId> targetEntities(AcDbDatabase &database, AcDbObjectId space,
                                         const acgi::Window &window)
{
    std::vector<AcDbObjectId> ids = acgi::spatialIndexOf(database).crossingWindow(space, window);
    orderAsSelected(ids);
    return ids;
}

// Extended data cannot count, its codes being above 99, so it is not asked for.
static std::uint32_t sumOf(const ResbufList &data)
{
    UnitSum sum;
    appendData(sum, data);
    return sum.sum;
}

/// Some targets whose fingerprints are being taken.
struct FingerprintTaker::Batch {
    std::size_t first = 0;                               ///< Place of the first one in the order.
    std::vector<std::vector<AcDbObjectId>> entities;     ///< Of each target.
    std::unordered_map<AcDbObjectId, std::uint32_t> own; ///< Sums of those that are not as in the file.
    std::future<std::vector<std::uint32_t>> sums;        ///< Of each target.
};

FingerprintTaker::Batch FingerprintTaker::begin(std::size_t first, std::span<const acgi::Window> targets,
                                                const AcDbFiledData &filed)
{
    Batch batch{first, acgi::spatialIndexOf(m_database).crossingWindows(filed.block(), targets), {}, {}};
    for (std::vector<AcDbObjectId> &ids : batch.entities) {
        orderAsSelected(ids);
        for (const AcDbObjectId id : ids) {
            if (!filed.holds(id) && !batch.own.contains(id))
                batch.own.emplace(id, sumOf(acdbEntGetX(id)));
        }
    }
    return batch;
}

// Runs beside the drawing's own thread.
std::vector<std::uint32_t> FingerprintTaker::sumUp(const Batch &batch, const AcDbFiledData &filed)
{
    std::vector<std::uint32_t> sums;
    for (const std::vector<AcDbObjectId> &ids : batch.entities) {
        std::uint32_t &sum = sums.emplace_back(0); // Wraps.
        for (const AcDbObjectId id : ids) {
            if (const auto own = batch.own.find(id); own != batch.own.end()) {
                sum += own->second;
                continue;
            }
            const auto [place, isNew] = m_sums.try_emplace(id, 0);
            if (isNew)
                place->second = sumOf(filed.of(id));
            sum += place->second;
        }
    }
    return sums;
}

static TargetFingerprint fingerprintOf(std::vector<AcDbObjectId> ids, std::uint32_t sum)
{
    TargetFingerprint fingerprint;
    if (!ids.empty())
        fingerprint.checksum = QStringLiteral("SUM=%1").arg(static_cast<std::int32_t>(sum));
    fingerprint.ids = std::move(ids);
    return fingerprint;
}

/// So that those which share entities come one after the other.
static std::vector<std::size_t> orderByPlace(std::span<const acgi::Window> targets)
{
    std::vector<std::size_t> order(targets.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return targets[i].corners()[0].x; });
    return order;
}

// While one batch is added up, the entities of the next are found.
bool FingerprintTaker::takeEach(AcDbObjectId space, std::span<const acgi::Window> targets, const Use &use)
{
    const std::vector<std::size_t> order = orderByPlace(targets);
    std::vector<acgi::Window> ordered;
    ordered.reserve(targets.size());
    for (const std::size_t target : order)
        ordered.push_back(targets[target]);
    const auto finish = [&](Batch &batch) {
        const std::vector<std::uint32_t> sums = batch.sums.get();
        for (std::size_t i = 0; i < sums.size(); ++i) {
            if (!use(order[batch.first + i], fingerprintOf(std::move(batch.entities[i]), sums[i])))
                return false;
        }
        return true;
    };
    const AcDbFiledData filed(space);
    const auto policy = targets.size() > 1 ? std::launch::async : std::launch::deferred;
    std::unique_ptr<Batch> adding;
    for (std::size_t begun = 0; begun < ordered.size();) {
        auto next = std::make_unique<Batch>(begin(begun, std::span(ordered).subspan(begun), filed));
        begun += next->entities.size();
        if (adding && !finish(*adding))
            return false;
        next->sums = std::async(policy, [&, batch = next.get()] { return sumUp(*batch, filed); });
        adding = std::move(next);
    }
    return !adding || finish(*adding);
}

TargetFingerprint FingerprintTaker::take(AcDbObjectId space, const acgi::Window &window)
{
    TargetFingerprint taken;
    takeEach(space, std::span(&window, 1), [&](std::size_t, TargetFingerprint fingerprint) {
        taken = std::move(fingerprint);
        return true;
    });
    return taken;
}

static acgi::Window windowOf(const MarkCorners &target)
{
    const auto flat = [](const AcGePoint3d &corner) { return AcGePoint2d(corner.x, corner.y); };
    return acgi::Window(
        {flat(target.corner1), flat(target.corner4), flat(target.corner2), flat(target.corner3)});
}

acgi::Window targetWindow(const QuillnoteObj3 &mark)
{
    return windowOf(targetCorners(mark));
}

TargetFingerprint computeTargetFingerprint(const MarkCorners &target)
{
    const AcApDocument *const document = curDoc();
    if (!document)
        return {};
    AcDbDatabase &database = *document->database();
    return FingerprintTaker(database).take(database.currentSpaceId(), windowOf(target));
}
