// QUILL_ASSERT: the check for programmers' faults. It is on in every build.
// File content and user input are never asserted on; they give status values.
#pragma once

namespace base
{

/// Prints where and what to standard error, then aborts.
[[noreturn]] void assertionFailed(const char *expression, const char *file, int line);

} // namespace base

#define QUILL_ASSERT(cond) ((cond) ? void(0) : ::base::assertionFailed(#cond, __FILE__, __LINE__))
