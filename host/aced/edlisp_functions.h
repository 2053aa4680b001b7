// The functions of the small LISP, in the two tables that findFunction() looks through.
#pragma once

#include "host/aced/edlisp_eval.h"

#include <span>

namespace lisp
{

/// Numbers, texts, lists.
std::span<const Function> pureFunctions();
/// Commands, menus, system variables, files, printing.
std::span<const Function> hostFunctions();

} // namespace lisp
