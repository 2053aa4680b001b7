// What the database asks of the drawing layer.
#pragma once

namespace acgi
{

/// Gives native entities their extents and custom ones their proxy graphics; to be called once, before
/// drawings are used.
void install();

} // namespace acgi
