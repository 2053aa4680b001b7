// Headers of libraries that most sources of tests read: see quill_precompiled_headers in QuillTargets.cmake.
#pragma once

#include "tests/support/print.h"

#include "cmake/precompiled_core.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
