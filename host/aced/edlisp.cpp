// The small LISP as the rest of the host sees it: one expression in, its printed value out; and the functions
// that modules define.
#include "host/aced/edlisp.h"

#include "host/aced/edinput.h"
#include "host/aced/edlisp_eval.h"
#include "host/aced/edlisp_reader.h"
#include "host/acrx/rxmodule.h"

using lisp::State;

/// Commands in expressions in commands: more than anybody means to write.
static constexpr int kMaxNesting = 16;

static QString sentence(const lisp::Fault &fault, QStringView expression)
{
    if (fault.position < 0)
        return fault.text;
    const QStringView before = expression.left(fault.position);
    const qsizetype line = before.count(u'\n') + 1;
    const qsizetype column = fault.position - before.lastIndexOf(u'\n');
    return QStringLiteral("%1 (line %2, column %3)").arg(fault.text).arg(line).arg(column);
}

base::Result<QString, QString> acedEvaluateLisp(const QString &expression)
{
    State &state = State::instance();
    if (state.nesting >= kMaxNesting)
        return base::Failure{QStringLiteral("expressions are nested too deeply")};
    const auto form = lisp::readExpression(expression);
    if (!form)
        return base::Failure{sentence(form.error(), expression)};
    ++state.nesting;
    const auto value = lisp::Evaluator().run(*form);
    --state.nesting;
    if (!value)
        return base::Failure{sentence(value.error(), expression)};
    return lisp::printed(*value);
}

int acedDefun(const QString &name, int code)
{
    AcRxModulePacket *const module = acrxDynamicLinker()->current();
    if (!module || name.isEmpty())
        return RTERROR;
    State::instance().functions.insert_or_assign(name.toUpper(), State::ModuleFunction{module, code});
    return RTNORM;
}

int acedUndef(const QString &name)
{
    return State::instance().functions.erase(name.toUpper()) > 0 ? RTNORM : RTERROR;
}

int acedGetFunCode()
{
    const auto &running = State::instance().running;
    return running.empty() ? RTERROR : running.back().code;
}

ResbufList acedGetArgs()
{
    const auto &running = State::instance().running;
    return running.empty() ? ResbufList() : running.back().arguments;
}

static int setResult(lisp::Value value)
{
    auto &running = State::instance().running;
    if (running.empty())
        return RTERROR;
    running.back().result = std::move(value);
    return RTNORM;
}

int acedRetInt(int value)
{
    return setResult(std::int32_t(value));
}

int acedRetNil()
{
    return setResult(lisp::Nil{});
}
