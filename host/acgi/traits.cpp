#include "host/acgi/traits.h"

#include "host/acdb/dbsymtb.h"

#include <cstdlib>

AcCmEntityColor AcCmEntityColor::fromIndex(int index)
{
    const int positive = std::abs(index);
    if (positive == 0)
        return byBlock();
    return positive > 255 ? byLayer() : AcCmEntityColor(kByACI, std::uint32_t(positive));
}

void AcGiSubEntityTraits::setLineType(AcDbObjectId linetype)
{
    const AcDbObjectPointer<AcDbSymbolTableRecord> record(linetype, AcDb::kForRead);
    const QString name = record ? record->getName() : QString();
    const auto is = [&](QLatin1String other) { return name.compare(other, Qt::CaseInsensitive) == 0; };
    m_traits.linetypeBy = is(QLatin1String("ByLayer"))   ? acgi::Stated::byLayer
                          : is(QLatin1String("ByBlock")) ? acgi::Stated::byBlock
                                                         : acgi::Stated::itself;
    m_traits.linetype = is(QLatin1String("Continuous")) ? AcDbObjectId() : linetype;
}
