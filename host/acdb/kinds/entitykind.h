// EntityKind: what the database knows of a kind of native entity. The kinds stand by family in the files
// beside this one, each with its rows and functions; transforming, grips, data lists and the class dictionary
// read them. How a kind draws stands in host/acgi/kinds, how DWG files hold it in host/formats/dwg.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acdb/kinds/grips.h"
#include "host/acdb/kinds/listedgroups.h"

#include <optional>
#include <span>
#include <vector>

/// What a similarity does to a kind.
struct TransformRules {
    std::span<const Rule> rules;
    /// What rules cannot say; runs after them.
    void (*finish)(EntityTransform &) = nullptr;
    /// Group 210 is the plane of the entity.
    bool hasNormal = true;
};

struct EntityKind {
    const char *dxfName;
    /// Of the run-time class that has nothing but a name; null where the class stands in dbents.h or where
    /// there is none.
    const char *className = nullptr;
    listed::Groups listed{};
    std::optional<TransformRules> transforming{}; ///< None: the kind cannot be transformed.
    gripping::Habits grips{};
};

/// All kinds, family by family.
std::span<const EntityKind> acdbEntityKinds();
/// Null for kinds that nothing is known of.
const EntityKind *acdbEntityKind(AcDbKind kind);
const EntityKind *acdbEntityKind(const QByteArray &dxfName);

// The families, for the table.
namespace entitykinds
{
std::vector<EntityKind> lines();
std::vector<EntityKind> curves();
std::vector<EntityKind> polylines();
std::vector<EntityKind> texts();
std::vector<EntityKind> areas();
std::vector<EntityKind> placed(); ///< What hangs on a point and a frame: inserts, images, viewports.
std::vector<EntityKind> notes();  ///< Dimensions and leaders.
std::vector<EntityKind> others(); ///< Of which only the class is known.
} // namespace entitykinds
