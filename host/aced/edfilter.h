// Selection filters: group lists compiled into a test on an entity's data.
//
// A filter that only asks for entity kinds is answered from the kind alone; the entity is not decoded.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/base/result.h"
#include "host/base/wildcard.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <unordered_map>

class AcEdFilter
{
public:
    /// The error says which group makes no sense.
    static base::Result<AcEdFilter, QString> compile(const ResbufList &filter);

    /// Erased entities never pass.
    bool passes(AcDbObjectId entity) const;
    bool isEmpty() const { return m_root.children.empty(); }

private:
    friend class FilterReader;

    enum class Kind { all, any, oneOf, negation, equal, relation, application };
    struct Node {
        Kind kind = Kind::all;
        std::vector<Node> children;
        resbuf wanted;
        std::shared_ptr<const base::Wildcard> pattern; ///< For texts.
        QStringList relations;                         ///< One, or one for each coordinate.
    };

    static bool test(const Node &node, const ResbufList &data);
    static bool testValue(const Node &node, const resbuf &value);
    static std::optional<bool> testKind(const Node &node, const QString &kindName);
    static std::optional<bool> testKinds(const Node &node, const QString &kindName);
    std::optional<bool> verdictOfKind(AcDbKind kind) const;

    Node m_root;
    bool m_asksApplications = false;
    mutable std::unordered_map<AcDbKind, std::optional<bool>> m_kindVerdicts;
};
