#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>

namespace dwg
{

const SpecialRow *findSpecial(std::string_view name)
{
    for (const auto rows :
         {textSpecials(), curveSpecials(), blockSpecials(), dimensionSpecials(), hatchSpecials(),
          pictureSpecials(), tableSpecials(), viewSpecials(), dictionarySpecials(), multileaderSpecials()}) {
        const auto known = std::ranges::find(rows, name, &SpecialRow::name);
        if (known != rows.end())
            return &*known;
    }
    return nullptr;
}

} // namespace dwg
