// The verbs "data export" and "data import": mark data files on the console.
#pragma once

#include "host/aced/edverbs.h"

AcEdVerb dataExportVerb();
AcEdVerb dataImportVerb();
