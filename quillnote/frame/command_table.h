// The complete list of the module's commands. How to add one: docs/guides/add-a-command.md.
#pragma once

#include "host/acrx/rxmodule.h"

#include <span>
#include <vector>

/// All commands are registered in this group and removed together.
inline constexpr char16_t kCommandGroup[] = u"Quillnote3";

/// How a command stands in the demand-load record; a null name: it does not; empty names: as in the table.
struct RecordedNames {
    const char *global;
    const char *local;
};

struct CommandRow {
    const char *globalName;
    const char *localName;
    int flags; ///< Of the host: AcEdCommandFlag.
    RecordedNames recorded;
    void (*function)();
};

/// In registration order.
std::span<const CommandRow> commandTable();

void registerCommands();
std::vector<AcadAppInfo::Command> recordedCommands();
