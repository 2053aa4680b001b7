#include "host/formats/dxf/dxfreread.h"

#include "host/base/file_bytes.h"
#include "host/base/file_error.h"
#include "host/base/host_text.h"
#include "host/base/path_name.h"
#include "host/formats/dxf/dxftables.h"

#include <QFile>

#include <algorithm>

namespace dxf
{

/// New objects that do not stand in the file as themselves: heads are written with their tables, R12 has no
/// block records.
static bool standsAlone(const DxfSource &source, const AcDbStub &stub)
{
    static const AcDbKind kTable = acdbKind("TABLE");
    static const AcDbKind kBlockRecord = acdbKind("BLOCK_RECORD");
    return stub.kind != kTable && (stub.kind != kBlockRecord || source.version() > DrawingVersion::r12);
}

RereadCheck::RereadCheck(const AcDbDatabase &database, const DxfSource &source, const SavePlan &plan)
    : m_source(source), m_tolerant(!database.repairs().isEmpty())
{
    const bool sameBytes = plan.edits().empty(); // Nothing is mended then either.
    m_fromSource.reserve(database.stubCount());
    for (std::uint32_t index = 1; index < database.stubCount(); ++index) {
        const AcDbStub &stub = *database.stub(index);
        if (plan.isGone(stub) || stub.has(AcDbStub::kErased) || stub.has(AcDbStub::kNoFileForm))
            continue;
        const Expected expected{stub.handle, stub.kind, stub.has(AcDbStub::kNoFileHandle),
                                sameBytes && std::ranges::binary_search(source.layout().renumbered, index)};
        if (stub.has(AcDbStub::kHasSource)) // Those of the kept text come last.
            m_fromSource.push_back(expected);
        else if (!stub.has(AcDbStub::kHasSource) && stub.has(AcDbStub::kInChangeList) &&
                 standsAlone(source, stub))
            m_added.push_back(expected);
    }
    std::ranges::sort(m_added, {}, &Expected::handle);
    m_addedSeen.resize(m_added.size());
}

QString RereadCheck::name(const Expected &object) const
{
    return QStringLiteral("%1 %2").arg(QString::fromLatin1(acdbKindName(object.kind)),
                                       QString::number(object.handle, 16).toUpper());
}

// Groups -----------------------------------------------------------------------------------------

void RereadCheck::endObject()
{
    if (!std::exchange(m_found.inside, false))
        return;
    if (m_next < m_fromSource.size()) {
        const Expected &next = m_fromSource[m_next];
        const bool sameHandle =
            m_found.handle == next.handle || next.anyHandle || (next.handleOptional && m_found.handle == 0);
        if (sameHandle && m_found.kind == next.kind) {
            ++m_next;
            return;
        }
    }
    // What else stands in the file is new, or something that the drawing does not know.
    const auto added = std::ranges::lower_bound(m_added, m_found.handle, {}, &Expected::handle);
    if (added != m_added.end() && added->handle == m_found.handle && added->kind == m_found.kind)
        m_addedSeen[std::size_t(added - m_added.begin())] = true;
}

/// False for a group 0 that begins no object.
bool RereadCheck::take(const Group &group)
{
    switch (group.code) {
    case 0: {
        endObject();
        const Kind kind = m_kinds.find(group.value);
        m_ended = kind.role == Role::eof;
        m_found = {};
        m_found.kind = kind.number;
        m_found.inside = kind.role != Role::garbage;
        m_found.handleIn5 = kind.role != Role::dimensionStyle || m_source.version() > DrawingVersion::r12;
        return m_found.inside;
    }
    case 5:
        if (!m_found.headEnded && m_found.handleIn5 && m_found.handle == 0)
            m_found.handle = parseHandle(group.value);
        break;
    case 105:
        if (!m_found.headEnded)
            m_found.handle = parseHandle(group.value);
        break;
    case 100:
    case 1001:
        m_found.headEnded = true;
        break;
    default:
        break;
    }
    return true;
}

/// How many of the bytes are done with; the rest comes again with more behind it.
template <class Scanner>
base::Result<std::size_t, QString> RereadCheck::feed(Scanner scanner, std::string_view bytes, bool last)
{
    constexpr std::ptrdiff_t kLongestMarker = 300; // A 0 and a kind.
    const char *const end = bytes.data() + bytes.size();
    const char *done = bytes.data();
    Group group;
    while (!m_ended) {
        const Step step = scanner.next(group);
        if (step == Step::group) {
            if (!last && group.end == end)
                break; // Its value may go on.
            const bool isObject = take(group);
            done = group.end;
            if (isObject)
                continue;
        } else if (step == Step::end || step == Step::cut || (!last && done != bytes.data())) {
            if (step == Step::cut && last && !m_tolerant)
                return base::Failure{Host::tr("it ends inside a group")};
            break; // What looks damaged may only be cut off by the buffer; the next look tells.
        }
        if (!m_tolerant)
            return base::Failure{Host::tr("it holds something that is no group and no object")};
        scanner.resynchronise(); // As the reader does.
        done = scanner.position();
        if (done != end)
            continue;
        if (!last)
            done = end - std::min(kLongestMarker, end - bytes.data() - 1);
        break;
    }
    return std::size_t(done - bytes.data());
}

base::Result<std::size_t, QString> RereadCheck::feed(std::string_view bytes, bool last)
{
    if (m_source.form() == DrawingForm::dxfBinary)
        return feed(BinaryScanner(bytes, m_source.shortCodes()), bytes, last);
    return feed(TextScanner(bytes, m_source.lineEnd()), bytes, last);
}

// Files ------------------------------------------------------------------------------------------

base::Result<void, QString> RereadCheck::verdict() const
{
    if (!m_tolerant && !m_ended)
        return base::Failure{Host::tr("its end is missing")};
    if (m_next < m_fromSource.size())
        return base::Failure{Host::tr("%1 is missing").arg(name(m_fromSource[m_next]))};
    const auto unseen = std::ranges::find(m_addedSeen, false);
    if (unseen != m_addedSeen.end())
        return base::Failure{
            Host::tr("%1 is missing").arg(name(m_added[std::size_t(unseen - m_addedSeen.begin())]))};
    return {};
}

base::Result<void, QString> RereadCheck::read(const QString &path, const base::Progress &progress)
{
    constexpr std::size_t kBuffer = 1 << 20; // Small enough to stay in the processor's cache.
    QFile file;
    if (!base::openForReading(file, path))
        return base::Failure{file.errorString()};
    const double size = double(std::max<qint64>(file.size(), 1));
    file.seek(qint64(m_source.contentBegin()));
    std::vector<char> buffer(kBuffer);
    std::size_t held = 0;
    for (bool last = false; !last && !m_ended;) {
        const qint64 count = file.read(buffer.data() + held, qint64(buffer.size() - held));
        if (count < 0)
            return base::Failure{file.errorString()};
        last = count == 0;
        held += std::size_t(count);
        const auto done = feed({buffer.data(), held}, last);
        if (!done)
            return base::Failure{done.error()};
        std::copy(buffer.begin() + std::ptrdiff_t(*done), buffer.begin() + std::ptrdiff_t(held),
                  buffer.begin());
        held -= *done;
        if (held == buffer.size())
            buffer.resize(buffer.size() * 2);
        if (!base::report(progress, double(file.pos()) / size))
            return base::Failure{Host::tr("it was stopped")};
    }
    endObject();
    if (const auto kept = readKept(path); !kept)
        return kept;
    return verdict();
}

/// What stands in comments is found as the reader finds it.
base::Result<void, QString> RereadCheck::readKept(const QString &path)
{
    if (!m_source.keepsInComments())
        return {};
    const auto file = base::readFileBytes(path);
    if (!file)
        return base::Failure{file.error().text()};
    const KeptText kept = findKept(file->view(), m_source.lineEnd(), m_source.style().lineEnd);
    const bool mainEnded = std::exchange(m_ended, false);
    const auto read = feed({kept.text.constData(), std::size_t(kept.text.size())}, true);
    endObject();
    m_ended = mainEnded;
    if (!read)
        return base::Failure{read.error()};
    return {};
}

} // namespace dxf
