// The LISP reader and evaluator, with a front end that swallows what is printed.
#include "fuzz/silent_front_end.h"
#include "host/aced/edlisp_eval.h"
#include "host/aced/edlisp_reader.h"
#include "host/os/settings_store.h"

#include <cstdlib>

/// (setvar) must not reach the settings of whoever runs this.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    static fuzz::SilentFrontEnd frontEnd;
    acedSetFrontEnd(&frontEnd);
    os::SettingsStore::setMessageHandler([](const QString &) {});
    qputenv("XDG_CONFIG_HOME", "/dev/null");
    return 0;
}

/// What was read prints, and reads again as what it printed; then it is evaluated.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto form = lisp::readExpression(text);
    if (!form)
        return 0;
    const QString printed = lisp::printed(*form);
    if (const auto again = lisp::readExpression(printed); again && lisp::printed(*again) != printed)
        std::abort();
    (void)lisp::Evaluator().run(*form);
    lisp::State::instance().reset();
    return 0;
}
