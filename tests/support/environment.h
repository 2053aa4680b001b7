// The surroundings that every test program sets up for itself, so that a test run by hand, under a
// debugger or by ctest sees the same: no display, fixed locale, time zone and fonts, scratch settings.
#pragma once

#include <QTemporaryDir>

namespace tests
{

/// To be made before the application object. Variables that somebody set on purpose to another screen
/// platform stay; the others are replaced. The scratch folders vanish with the object.
class Environment
{
public:
    Environment();

private:
    QTemporaryDir m_scratch;
};

/// Runs every test in a shuffled order; GoogleTest prints the seed. `--gtest_shuffle=0` and
/// `--gtest_random_seed=N` take that back or repeat it. Needs the application object.
int runAll(int argc, char **argv);

} // namespace tests
