#include "host/base/assert.h"

#include <cstdio>
#include <cstdlib>

namespace base
{

void assertionFailed(const char *expression, const char *file, int line)
{
    std::fprintf(stderr, "%s:%d: assertion failed: %s\n", file, line, expression);
    std::abort();
}

} // namespace base
