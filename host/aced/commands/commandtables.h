// The host's commands, one table for each concern.
#pragma once

#include "host/aced/edcommands.h"

#include <span>

namespace hostcommands
{

struct Entry {
    const char *name;
    const char *title; ///< What people call it; marked for translation by Host::tr().
    int flags;
    void (*run)();
    const char *aliases = ""; ///< Other names as people type them, parted by blanks.
};

std::span<const Entry> fileCommands();
std::span<const Entry> editCommands();
std::span<const Entry> gripCommands();
std::span<const Entry> undoCommands();
std::span<const Entry> viewCommands();
std::span<const Entry> coordinateCommands(); ///< UCS, PLAN.
std::span<const Entry> layerCommands();
std::span<const Entry> drawCommands();
std::span<const Entry> blockCommands(); ///< INSERT.
std::span<const Entry> xrefCommands();  ///< XREF.
std::span<const Entry> inquiryCommands();
std::span<const Entry> menuCommands();
std::span<const Entry> plotCommands();
std::span<const Entry> layoutCommands(); ///< LAYOUT, MODEL, MSPACE, PSPACE, VIEW.

} // namespace hostcommands
