// The evaluator of the small LISP, and what functions written in C++ see of it.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/aced/edlisp_value.h"
#include "host/base/result.h"

#include <QHashFunctions>

#include <optional>
#include <unordered_map>

struct AcRxModulePacket;

namespace lisp
{

/// What the interpreter of the process remembers between expressions.
struct State {
    /// A function of a module, called through kInvkSubrMsg.
    struct ModuleFunction {
        AcRxModulePacket *module = nullptr;
        int code = 0;
    };
    /// A module function that is running.
    struct Invocation {
        int code = 0;
        ResbufList arguments;
        Value result;
    };
    std::unordered_map<QString, Value> variables;
    std::unordered_map<QString, ModuleFunction> functions;
    std::vector<Invocation> running;
    int nesting = 0; ///< Expressions that wait for a command or module function to return.

    static State &instance();
    void reset() { *this = State(); }
};

class Evaluator;

/// One call of a function, arguments evaluated. Asking for an argument of the wrong type is a fault of the
/// expression: the call goes on with an empty value and its result is dropped.
class Call
{
public:
    Call(Evaluator &evaluator, const List &form, QString name, std::vector<Value> arguments);

    std::size_t size() const { return m_arguments.size(); }
    const Value &at(std::size_t index) const;
    const std::vector<Value> &arguments() const { return m_arguments; }
    const QString &name() const { return m_name; }

    std::int32_t integer(std::size_t index);
    double number(std::size_t index);
    bool isReal(std::size_t index) const { return std::holds_alternative<double>(at(index)); }
    QString text(std::size_t index);
    /// Items; none for nil.
    std::vector<Value> list(std::size_t index);
    Value fail(const QString &text);
    Value badArgument(std::size_t index);
    Value madeList(std::vector<Value> items);
    bool failed() const;

private:
    Evaluator &m_evaluator;
    const List &m_form;
    QString m_name;
    std::vector<Value> m_arguments;
};

/// A function of the language itself.
struct Function {
    const char *name;
    std::size_t fewest;
    std::size_t most;
    Value (*run)(Call &call);
};
inline constexpr std::size_t kAny = SIZE_MAX;
/// Numbers, texts and lists; the host's functions; null when there is no such function.
const Function *findFunction(const QString &name);

/// Evaluates one expression; the first fault ends it.
class Evaluator
{
public:
    base::Result<Value, Fault> run(const Value &form);
    Value evaluate(const Value &form);
    Value fail(const QString &text, qsizetype position);
    bool failed() const { return m_fault.has_value(); }

private:
    using SpecialForm = Value (Evaluator::*)(const List &);
    static SpecialForm specialForm(const QString &name);

    Value evaluateList(const List &form);
    Value apply(const List &form, const QString &name);
    Value callModule(Call &call, const List &form, const State::ModuleFunction &function);
    /// The forms from `first` on, one after the other; the value of the last.
    Value sequence(const List &form, std::size_t first);

    Value quote(const List &form);
    Value ifForm(const List &form);
    Value progn(const List &form);
    Value cond(const List &form);
    Value andForm(const List &form);
    Value orForm(const List &form);
    Value setq(const List &form);

    std::optional<Fault> m_fault;
    int m_steps = 0;
};

// Values for modules and system variables: the platform's type codes.
enum TypeCode : int {
    kReal = 5001,
    kPoint = 5002,
    kShort = 5003,
    kText = 5005,
    kPoint3d = 5009,
    kLong = 5010,
    kListBegin = 5016,
    kListEnd = 5017,
    kNil = 5019,
    kTrue = 5021,
};
void appendGroups(ResbufList &groups, const Value &value);
Value fromGroup(const resbuf &group);
/// A list of two or three numbers.
std::optional<AcGePoint3d> asPoint(const Value &value);

} // namespace lisp
