// The option "--mark N" of verbs that show a part of a drawing: the part around a mark.
#pragma once

#include "host/aced/edverbs.h"

/// Takes a mark by its number ("7", "2.2"); of several marks with that number the first.
AcEdAreaOption markAreaOption();
