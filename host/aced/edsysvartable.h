// The table of system variables: name, type, range, where the value is kept.
//
// Variables of one concern stand together. A row with a `get` is computed; without a `set` it is read-only.
#pragma once

#include "host/acap/docman.h"

#include <limits>
#include <optional>
#include <span>

/// The platform's type codes.
enum class AcEdVarType : int {
    integer = 5003,
    longInteger = 5010,
    real = 5001,
    text = 5005,
    point2d = 5002,
    point3d = 5009
};

enum class AcEdVarStorage {
    header,   ///< Drawing variable "$NAME".
    settings, ///< The user's settings store.
    session,  ///< Until the program ends.
    computed,
};

struct AcEdVariable {
    using Value = resbuf::Value;
    using Getter = Value (*)(AcApDocument *);
    /// False refuses the value.
    using Setter = bool (*)(AcApDocument *, const Value &);
    /// Checks what is about to be stored.
    using Check = bool (*)(const AcDbDatabase &, const Value &);

    const char *name = nullptr;
    AcEdVarType type = AcEdVarType::integer;
    AcEdVarStorage storage = AcEdVarStorage::session;
    double low = -std::numeric_limits<double>::infinity();
    double high = std::numeric_limits<double>::infinity();
    double number = 0;     ///< Value until somebody sets it.
    const char *text = ""; ///< The same for texts.
    int code = 0;          ///< Group code in the drawing's header.
    bool readOnly = false;
    bool needsDocument = false;
    Check check = nullptr;
    Getter get = nullptr;
    Setter set = nullptr;
};

std::span<const AcEdVariable> acedVariables();
/// Ignores letter case; null for names that are not in the table.
const AcEdVariable *acedFindVariable(const QString &name);
/// A dimension variable (DIMSCALE ...) is whatever the drawing's header holds under its name.
std::optional<AcEdVariable> acedDimensionVariable(const AcDbDatabase &database, const QString &name);
