// Work that may fail, behind a button: Qt's event loop lets no exception through.
#pragma once

#include "helpers/database/database.h"

#include "host/aced/edmessage.h"

namespace bank
{

/// What fails is told; the window goes on.
template <class Work>
void telling(Work work)
{
    try {
        work();
    } catch (const sql::Trouble &trouble) {
        acedAlert(QString::fromUtf8(trouble.what()));
    }
}

} // namespace bank
