#include "host/os/guid.h"

#include <QUuid>

namespace os
{

QString newGuidText()
{
    return QUuid::createUuid().toString(QUuid::WithBraces).toUpper();
}

} // namespace os
