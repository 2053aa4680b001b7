// Evaluation: variables, special forms, calls. Depth follows the reader's bound, because the language has no
// functions of its own making.
#include "host/aced/edlisp_eval.h"

#include "host/acrx/rxmodule.h"

#include <algorithm>
#include <array>

namespace lisp
{

static constexpr int kMaxSteps = 200'000;

State &State::instance()
{
    static State state;
    return state;
}

Value Evaluator::fail(const QString &text, qsizetype position)
{
    if (!m_fault)
        m_fault = Fault{text, position};
    return Nil{};
}

base::Result<Value, Fault> Evaluator::run(const Value &form)
{
    Value value = evaluate(form);
    if (m_fault)
        return base::Failure{*m_fault};
    return value;
}

static Value variable(const QString &name)
{
    const auto &variables = State::instance().variables;
    const auto found = variables.find(name);
    if (found != variables.end())
        return found->second;
    if (name == QLatin1String("T"))
        return Symbol{name};
    if (name == QLatin1String("PI"))
        return kGePi;
    if (name == QLatin1String("PAUSE"))
        return QStringLiteral("\\");
    return Nil{};
}

Value Evaluator::evaluate(const Value &form)
{
    if (m_fault)
        return Nil{};
    if (++m_steps > kMaxSteps)
        return fail(QStringLiteral("the expression takes too many steps"), -1);
    if (const auto *symbol = std::get_if<Symbol>(&form))
        return variable(symbol->name);
    if (const auto *list = std::get_if<ListPointer>(&form))
        return evaluateList(**list);
    return form;
}

Evaluator::SpecialForm Evaluator::specialForm(const QString &name)
{
    static const std::unordered_map<QString, SpecialForm> forms{
        {QStringLiteral("QUOTE"), &Evaluator::quote}, {QStringLiteral("IF"), &Evaluator::ifForm},
        {QStringLiteral("PROGN"), &Evaluator::progn}, {QStringLiteral("COND"), &Evaluator::cond},
        {QStringLiteral("AND"), &Evaluator::andForm}, {QStringLiteral("OR"), &Evaluator::orForm},
        {QStringLiteral("SETQ"), &Evaluator::setq},
    };
    const auto found = forms.find(name);
    return found == forms.end() ? nullptr : found->second;
}

Value Evaluator::evaluateList(const List &form)
{
    const auto *head = std::get_if<Symbol>(&form.items[0]);
    if (!head)
        return fail(QStringLiteral("bad function: %1").arg(printed(form.items[0])), form.position);
    if (const SpecialForm special = specialForm(head->name))
        return (this->*special)(form);
    return apply(form, head->name);
}

Value Evaluator::apply(const List &form, const QString &name)
{
    const auto &moduleFunctions = State::instance().functions;
    const auto ofModule = moduleFunctions.find(name);
    const Function *const builtIn = ofModule == moduleFunctions.end() ? findFunction(name) : nullptr;
    if (ofModule == moduleFunctions.end() && !builtIn)
        return fail(QStringLiteral("no function definition: %1").arg(name), form.position);
    const auto target = builtIn ? State::ModuleFunction{} : ofModule->second;

    std::vector<Value> arguments;
    for (std::size_t i = 1; i < form.items.size(); ++i)
        arguments.push_back(evaluate(form.items[i]));
    if (m_fault)
        return Nil{};
    Call call(*this, form, name, std::move(arguments));
    if (!builtIn)
        return callModule(call, form, target);
    if (call.size() < builtIn->fewest)
        return call.fail(QStringLiteral("too few arguments: %1").arg(name));
    if (call.size() > builtIn->most)
        return call.fail(QStringLiteral("too many arguments: %1").arg(name));
    return builtIn->run(call);
}

Value Evaluator::callModule(Call &call, const List &form, const State::ModuleFunction &function)
{
    State &state = State::instance();
    ResbufList groups;
    for (const Value &argument : call.arguments())
        appendGroups(groups, argument);
    state.running.push_back({function.code, std::move(groups), Nil{}});
    const AcRx::AppRetCode answer = acrxDynamicLinker()->send(function.module, AcRx::kInvkSubrMsg);
    const Value result = state.running.back().result;
    state.running.pop_back();
    if (answer == AcRx::kRetError)
        return fail(QStringLiteral("the function failed: %1").arg(call.name()), form.position);
    return result;
}

Value Evaluator::sequence(const List &form, std::size_t first)
{
    Value value = Nil{};
    for (std::size_t i = first; i < form.items.size(); ++i)
        value = evaluate(form.items[i]);
    return value;
}

Value Evaluator::quote(const List &form)
{
    if (form.items.size() != 2)
        return fail(QStringLiteral("QUOTE takes one argument"), form.position);
    return form.items[1];
}

Value Evaluator::ifForm(const List &form)
{
    if (form.items.size() < 3 || form.items.size() > 4)
        return fail(QStringLiteral("IF takes a test, an expression and an optional other expression"),
                    form.position);
    if (!isNil(evaluate(form.items[1])))
        return evaluate(form.items[2]);
    return form.items.size() == 4 ? evaluate(form.items[3]) : Value(Nil{});
}

Value Evaluator::progn(const List &form)
{
    return sequence(form, 1);
}

Value Evaluator::cond(const List &form)
{
    for (std::size_t i = 1; i < form.items.size() && !m_fault; ++i) {
        const auto *clause = std::get_if<ListPointer>(&form.items[i]);
        if (!clause)
            return fail(QStringLiteral("bad clause in COND: %1").arg(printed(form.items[i])), form.position);
        Value test = evaluate((*clause)->items[0]);
        if (!isNil(test))
            return (*clause)->items.size() > 1 ? sequence(**clause, 1) : test;
    }
    return Nil{};
}

Value Evaluator::andForm(const List &form)
{
    return truth(std::all_of(form.items.begin() + 1, form.items.end(),
                             [this](const Value &item) { return !isNil(evaluate(item)); }));
}

Value Evaluator::orForm(const List &form)
{
    return truth(std::any_of(form.items.begin() + 1, form.items.end(),
                             [this](const Value &item) { return !isNil(evaluate(item)); }));
}

Value Evaluator::setq(const List &form)
{
    if (form.items.size() % 2 == 0)
        return fail(QStringLiteral("too few arguments: SETQ"), form.position);
    Value value = Nil{};
    for (std::size_t i = 1; i + 1 < form.items.size(); i += 2) {
        const auto *symbol = std::get_if<Symbol>(&form.items[i]);
        if (!symbol || symbol->name == QLatin1String("T"))
            return fail(QStringLiteral("bad argument type: SETQ cannot set %1").arg(printed(form.items[i])),
                        form.position);
        value = evaluate(form.items[i + 1]);
        if (m_fault)
            return Nil{};
        if (isNil(value))
            State::instance().variables.erase(symbol->name);
        else
            State::instance().variables.insert_or_assign(symbol->name, value);
    }
    return value;
}

// Calls ----------------------------------------------------------------------------------------------

Call::Call(Evaluator &evaluator, const List &form, QString name, std::vector<Value> arguments)
    : m_evaluator(evaluator), m_form(form), m_name(std::move(name)), m_arguments(std::move(arguments))
{
}

const Value &Call::at(std::size_t index) const
{
    static const Value nil = Nil{};
    return index < m_arguments.size() ? m_arguments[index] : nil;
}

Value Call::fail(const QString &text)
{
    return m_evaluator.fail(text, m_form.position);
}

bool Call::failed() const
{
    return m_evaluator.failed();
}

Value Call::badArgument(std::size_t index)
{
    return fail(QStringLiteral("bad argument type: %1 in %2").arg(printed(at(index)), m_name));
}

std::int32_t Call::integer(std::size_t index)
{
    if (const auto *number = std::get_if<std::int32_t>(&at(index)))
        return *number;
    badArgument(index);
    return 0;
}

double Call::number(std::size_t index)
{
    if (const auto *real = std::get_if<double>(&at(index)))
        return *real;
    return integer(index);
}

QString Call::text(std::size_t index)
{
    if (const auto *text = std::get_if<QString>(&at(index)))
        return *text;
    badArgument(index);
    return {};
}

std::vector<Value> Call::list(std::size_t index)
{
    if (const auto *list = std::get_if<ListPointer>(&at(index)))
        return (*list)->items;
    if (!isNil(at(index)))
        badArgument(index);
    return {};
}

Value Call::madeList(std::vector<Value> items)
{
    if (items.empty())
        return Nil{};
    ListPointer list = makeList(std::move(items));
    return list ? Value(std::move(list)) : fail(QStringLiteral("the list is too long: %1").arg(m_name));
}

} // namespace lisp
