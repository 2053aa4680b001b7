#include "quillnote/frame/lisp_functions.h"

#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edlisp.h"

#include <iterator>

struct LispRow {
    const char *lispName;
    const char *command; ///< The command that does the same.
};

// The function code is the row's index.
static constexpr LispRow kFunctions[] = {
    {"qnnk_SynningOn", "QN8_SynningOn"},
    {"qnnk_SynningOff", "QN8_SynningOff"},
};

int defineLispFunctions()
{
    for (int code = 0; code < int(std::size(kFunctions)); ++code) {
        if (acedDefun(QString::fromLatin1(kFunctions[code].lispName), code) != RTNORM)
            return RTERROR;
    }
    return RTNORM;
}

int invokeLispFunction()
{
    const int code = acedGetFunCode();
    if (code < 0 || code >= int(std::size(kFunctions))) {
        acdbFail(QStringLiteral("Received nonexistent function code."));
        return RTERROR;
    }
    const AcEdCommand *const command = acedRegCmds()->lookup(QString::fromLatin1(kFunctions[code].command));
    if (command)
        command->function();
    acedRetInt(1);
    return RTNORM;
}
