#include "host/aced/edfilter.h"

#include "host/acdb/dbapi.h"
#include "host/base/host_text.h"

#include <algorithm>
#include <array>
#include <cmath>

// Reading the list --------------------------------------------------------------------------------

/// Reads a filter list from left to right; groups nest between -4 operators.
class FilterReader
{
public:
    using Kind = AcEdFilter::Kind;
    using Node = AcEdFilter::Node;

    explicit FilterReader(const ResbufList &list) : m_list(list) {}

    std::optional<Node> readAll()
    {
        Node root;
        if (!readUntil(root, {}))
            return std::nullopt;
        return root;
    }
    const QString &error() const { return m_error; }
    bool asksApplications() const { return m_asksApplications; }

private:
    struct Operator {
        const char *word;
        Kind kind;
    };
    static constexpr std::array<Operator, 4> kOperators{
        {{"and", Kind::all}, {"or", Kind::any}, {"xor", Kind::oneOf}, {"not", Kind::negation}}};
    static constexpr int kDeepest = 100;

    bool fail(const QString &reason)
    {
        if (m_error.isEmpty())
            m_error = Host::tr("选择过滤器第 %1 项: %2").arg(m_at + 1).arg(reason);
        return false;
    }

    bool readUntil(Node &into, const QString &end)
    {
        for (; m_at < m_list.size(); ++m_at) {
            if (m_list[m_at].restype == -4 && m_list[m_at].text().compare(end, Qt::CaseInsensitive) == 0 &&
                !end.isEmpty())
                return checkCount(into);
            if (!readItem(into))
                return false;
        }
        return end.isEmpty() || fail(Host::tr("缺少“%1”").arg(end));
    }

    bool checkCount(const Node &node)
    {
        if (node.kind == Kind::negation && node.children.size() != 1)
            return fail(Host::tr("“not”需要一个条件"));
        if (node.kind == Kind::oneOf && node.children.size() != 2)
            return fail(Host::tr("“xor”需要两个条件"));
        return !node.children.empty() || fail(Host::tr("运算符中没有条件"));
    }

    bool readItem(Node &into)
    {
        const resbuf &group = m_list[m_at];
        if (group.restype == -3)
            return readApplications(into);
        if (group.restype != -4) {
            into.children.push_back(leaf(Kind::equal, group));
            return true;
        }
        const QString word = group.text().trimmed();
        for (const Operator &known : kOperators) {
            if (word.compare(u'<' + QLatin1String(known.word), Qt::CaseInsensitive) == 0)
                return readNested(into, known);
        }
        return readRelation(into, word);
    }

    bool readNested(Node &into, const Operator &opened)
    {
        if (++m_depth > kDeepest)
            return fail(Host::tr("嵌套过深"));
        Node nested;
        nested.kind = opened.kind;
        ++m_at;
        if (!readUntil(nested, QLatin1String(opened.word) + u'>'))
            return false;
        --m_depth;
        into.children.push_back(std::move(nested));
        return true;
    }

    bool readRelation(Node &into, const QString &word)
    {
        static const QStringList kRelations{"*", "=", "!=", "/=", "<>", "<", "<=", ">", ">=", "&", "&="};
        QStringList relations = word.split(u',');
        for (QString &relation : relations) {
            relation = relation.trimmed();
            if (!kRelations.contains(relation))
                return fail(Host::tr("未知的运算符“%1”").arg(word));
        }
        if (++m_at == m_list.size() || m_list[m_at].restype < 0)
            return fail(Host::tr("“%1”后面没有值").arg(word));
        Node node = leaf(Kind::relation, m_list[m_at]);
        node.relations = relations;
        if (!fits(node))
            return fail(Host::tr("“%1”不适用于这种值").arg(word));
        into.children.push_back(std::move(node));
        return true;
    }

    static bool fits(const Node &node)
    {
        const resbuf::Value &value = node.wanted.resval;
        const bool isPoint =
            std::holds_alternative<AcGePoint3d>(value) || std::holds_alternative<AcGePoint2d>(value);
        if (node.relations.size() > (isPoint ? 3 : 1))
            return false;
        return std::all_of(node.relations.begin(), node.relations.end(), [&](const QString &relation) {
            if (relation.startsWith(u'&'))
                return std::holds_alternative<std::int64_t>(value);
            const bool ordered = relation.startsWith(u'<') || relation.startsWith(u'>');
            return relation == u"<>" || !ordered || !std::holds_alternative<QString>(value);
        });
    }

    /// -3, then one group 1001 for each application asked for.
    bool readApplications(Node &into)
    {
        m_asksApplications = true;
        bool any = false;
        while (m_at + 1 < m_list.size() && m_list[m_at + 1].restype >= 1000) {
            ++m_at;
            if (m_list[m_at].restype == 1001) {
                into.children.push_back(leaf(Kind::application, m_list[m_at]));
                any = true;
            }
        }
        if (!any && !m_list[m_at].text().isEmpty()) {
            into.children.push_back(leaf(Kind::application, m_list[m_at]));
            any = true;
        }
        return any || fail(Host::tr("-3 后面没有应用程序名"));
    }

    static Node leaf(Kind kind, const resbuf &group)
    {
        Node node;
        node.kind = kind;
        node.wanted = group;
        if (const auto *text = std::get_if<QString>(&group.resval))
            node.pattern = std::make_shared<base::Wildcard>(*text);
        return node;
    }

    const ResbufList &m_list;
    std::size_t m_at = 0;
    int m_depth = 0;
    bool m_asksApplications = false;
    QString m_error;
};

base::Result<AcEdFilter, QString> AcEdFilter::compile(const ResbufList &filter)
{
    FilterReader reader(filter);
    auto root = reader.readAll();
    if (!root)
        return base::Failure{reader.error()};
    AcEdFilter compiled;
    compiled.m_root = std::move(*root);
    compiled.m_asksApplications = reader.asksApplications();
    return compiled;
}

// Comparing values --------------------------------------------------------------------------------

static std::optional<double> numberOf(const resbuf &group)
{
    if (const auto *whole = std::get_if<std::int64_t>(&group.resval))
        return double(*whole);
    if (const auto *real = std::get_if<double>(&group.resval))
        return *real;
    return std::nullopt;
}

static bool nearlyEqual(double a, double b)
{
    return std::abs(a - b) <= 1e-9 * std::max({1.0, std::abs(a), std::abs(b)});
}

static bool compareNumbers(const QString &relation, double value, double wanted)
{
    if (relation == u"*")
        return true;
    if (relation == u"=")
        return nearlyEqual(value, wanted);
    if (relation == u"!=" || relation == u"/=" || relation == u"<>")
        return !nearlyEqual(value, wanted);
    if (relation == u"<")
        return value < wanted;
    if (relation == u"<=")
        return value <= wanted;
    return relation == u">" ? value > wanted : value >= wanted;
}

static bool isPoint(const resbuf &group)
{
    return std::holds_alternative<AcGePoint3d>(group.resval) ||
           std::holds_alternative<AcGePoint2d>(group.resval);
}

/// Coordinates without a relation of their own use the last one given.
static bool comparePoints(const QStringList &relations, const resbuf &value, const resbuf &wanted)
{
    const AcGePoint3d a = value.point();
    const AcGePoint3d b = wanted.point();
    const bool plane = std::holds_alternative<AcGePoint2d>(value.resval) ||
                       std::holds_alternative<AcGePoint2d>(wanted.resval);
    const double values[] = {a.x, a.y, a.z};
    const double wanteds[] = {b.x, b.y, b.z};
    for (qsizetype i = 0; i < (plane ? 2 : 3); ++i) {
        if (!compareNumbers(relations[std::min(i, relations.size() - 1)], values[i], wanteds[i]))
            return false;
    }
    return true;
}

static bool isUnequal(const QString &relation)
{
    return relation == u"!=" || relation == u"/=" || relation == u"<>";
}

bool AcEdFilter::testValue(const Node &node, const resbuf &value)
{
    static const QStringList kEqual{QStringLiteral("=")};
    const QStringList &relations = node.kind == Kind::equal ? kEqual : node.relations;
    const QString &relation = relations.front();
    if (relation == u"*" && relations.size() == 1)
        return true;
    if (relation.startsWith(u'&')) {
        const std::int64_t shared = value.integer() & node.wanted.integer();
        return relation == u"&" ? shared != 0 : shared == node.wanted.integer();
    }
    if (isPoint(node.wanted))
        return isPoint(value) && comparePoints(relations, value, node.wanted);
    if (const auto wanted = numberOf(node.wanted)) {
        const auto number = numberOf(value);
        return number && compareNumbers(relation, *number, *wanted);
    }
    if (node.pattern && std::holds_alternative<QString>(value.resval))
        return node.pattern->matches(value.text()) != isUnequal(relation);
    return (value.resval == node.wanted.resval) != isUnequal(relation);
}

// Testing an entity -------------------------------------------------------------------------------

/// What an entity has when its data does not say.
static std::optional<resbuf> defaultGroup(int code)
{
    switch (code) {
    case 6:
        return resbuf(code, QStringLiteral("BYLAYER"));
    case 62:
        return resbuf(code, std::int64_t(256));
    case 48:
        return resbuf(code, 1.0);
    case 370:
        return resbuf(code, std::int64_t(-1));
    case 60:
    case 67:
        return resbuf(code, std::int64_t(0));
    default:
        return std::nullopt;
    }
}

bool AcEdFilter::test(const Node &node, const ResbufList &data)
{
    const auto passes = [&data](const Node &child) { return test(child, data); };
    switch (node.kind) {
    case Kind::all:
        return std::all_of(node.children.begin(), node.children.end(), passes);
    case Kind::any:
        return std::any_of(node.children.begin(), node.children.end(), passes);
    case Kind::oneOf:
        return passes(node.children[0]) != passes(node.children[1]);
    case Kind::negation:
        return !passes(node.children[0]);
    case Kind::application:
        return std::any_of(data.begin(), data.end(), [&node](const resbuf &group) {
            return group.restype == 1001 && node.pattern && node.pattern->matches(group.text());
        });
    case Kind::equal:
    case Kind::relation:
        break;
    }
    bool present = false;
    for (const resbuf &group : data) {
        if (group.restype != node.wanted.restype)
            continue;
        present = true;
        if (testValue(node, group))
            return true;
    }
    const auto assumed = present ? std::nullopt : defaultGroup(node.wanted.restype);
    return assumed && testValue(node, *assumed);
}

// The kind decides what it can: yes, no, or nothing (no value).

std::optional<bool> AcEdFilter::testKinds(const Node &node, const QString &kindName)
{
    const bool deciding = node.kind == Kind::any; // One "yes" decides an "or", one "no" an "and".
    bool allKnown = true;
    for (const Node &child : node.children) {
        const auto verdict = testKind(child, kindName);
        if (verdict == deciding)
            return deciding;
        allKnown = allKnown && verdict;
    }
    return allKnown ? std::optional(!deciding) : std::nullopt;
}

std::optional<bool> AcEdFilter::testKind(const Node &node, const QString &kindName)
{
    switch (node.kind) {
    case Kind::all:
    case Kind::any:
        return testKinds(node, kindName);
    case Kind::oneOf: {
        const auto first = testKind(node.children[0], kindName);
        const auto second = testKind(node.children[1], kindName);
        return first && second ? std::optional(*first != *second) : std::nullopt;
    }
    case Kind::negation: {
        const auto inner = testKind(node.children[0], kindName);
        return inner ? std::optional(!*inner) : std::nullopt;
    }
    case Kind::application:
        return std::nullopt;
    case Kind::equal:
    case Kind::relation:
        break;
    }
    return node.wanted.restype == 0 ? std::optional(testValue(node, resbuf(0, kindName))) : std::nullopt;
}

std::optional<bool> AcEdFilter::verdictOfKind(AcDbKind kind) const
{
    const auto known = m_kindVerdicts.find(kind);
    if (known != m_kindVerdicts.end())
        return known->second;
    const auto verdict = testKind(m_root, QString::fromLatin1(acdbKindName(kind)));
    m_kindVerdicts.emplace(kind, verdict);
    return verdict;
}

bool AcEdFilter::passes(AcDbObjectId entity) const
{
    if (!entity.isValid() || !entity.isEntity())
        return false;
    if (const auto verdict = verdictOfKind(entity.stub()->kind))
        return *verdict;
    return test(m_root, acdbEntGetX(entity, m_asksApplications ? QStringLiteral("*") : QString()));
}
