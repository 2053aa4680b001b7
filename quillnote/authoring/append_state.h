// What mark making and importing tell the reactors, for the whole process.
#pragma once

#include "host/acdb/dbid.h"

#include <utility>

struct AppendState {
    /// The program itself is adding marks: they are new ones, not a person's copies.
    bool importing = false;
    /// The last mark that a command made.
    AcDbObjectId lastCreatedMark;

    void reset() { *this = {}; }
};

AppendState &appendState();

/// Sets the importing flag for the life of a scope.
class ImportingScope
{
public:
    ImportingScope() : m_before(std::exchange(appendState().importing, true)) {}
    ~ImportingScope() { appendState().importing = m_before; }
    ImportingScope(const ImportingScope &) = delete;
    ImportingScope &operator=(const ImportingScope &) = delete;

private:
    bool m_before;
};
