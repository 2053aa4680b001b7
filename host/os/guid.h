// Identities that are unique everywhere.
#pragma once

#include <QString>

namespace os
{

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}": 38 characters, upper-case hexadecimal, new at each call.
QString newGuidText();

} // namespace os
