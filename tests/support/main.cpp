// main() of the test programs without widgets.
#include "tests/support/environment.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const tests::Environment environment;
    const QCoreApplication application(argc, argv);
    return tests::runAll(argc, argv);
}
