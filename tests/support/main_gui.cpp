// main() of the test programs that draw or open windows.
#include "tests/support/environment.h"

#include <QApplication>

int main(int argc, char **argv)
{
    const tests::Environment environment;
    const QApplication application(argc, argv);
    return tests::runAll(argc, argv);
}
