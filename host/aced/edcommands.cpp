#include "host/aced/edcommands.h"

#include <algorithm>

static bool sameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool AcEdCommandStack::addCommand(AcEdCommand command)
{
    const bool taken = std::ranges::any_of(m_commands, [&](const AcEdCommand &known) {
        return sameName(known.group, command.group) && sameName(known.globalName, command.globalName);
    });
    if (taken)
        return false;
    m_commands.push_back(std::move(command));
    return true;
}

bool AcEdCommandStack::removeCmd(const QString &group, const QString &globalName)
{
    return std::erase_if(m_commands, [&](const AcEdCommand &command) {
               return sameName(command.group, group) && sameName(command.globalName, globalName);
           }) > 0;
}

void AcEdCommandStack::removeGroup(const QString &group)
{
    std::erase_if(m_commands, [&](const AcEdCommand &command) { return sameName(command.group, group); });
}

/// Marks in front of a name: "_" asks for the global name, "." for the host's own meaning (which nobody can
/// take away here), "'" for running inside another command. The "-" of "-LAYER" is part of the name, wherever
/// it stands among the marks.
static QString withoutMarks(const QString &name, bool &globalOnly)
{
    const QString marks = QStringLiteral("_.'-");
    qsizetype begin = 0;
    while (begin + 1 < name.size() && marks.contains(name[begin]))
        ++begin;
    const QStringView prefix = QStringView(name).first(begin);
    globalOnly = prefix.contains(u'_');
    return prefix.contains(u'-') ? u'-' + name.mid(begin) : name.mid(begin);
}

const AcEdCommand *AcEdCommandStack::lookup(const QString &name) const
{
    const auto find = [this](const QString &wanted, QString AcEdCommand::*member) -> const AcEdCommand * {
        const auto found =
            std::find_if(m_commands.rbegin(), m_commands.rend(), [&](const AcEdCommand &command) {
                return sameName(command.*member, wanted) ||
                       command.aliases.contains(wanted, Qt::CaseInsensitive);
            });
        return found == m_commands.rend() ? nullptr : &*found;
    };
    bool globalOnly = false;
    const QString plain = withoutMarks(name, globalOnly);
    const AcEdCommand *command = globalOnly ? nullptr : find(plain, &AcEdCommand::localName);
    if (!command)
        command = find(plain, &AcEdCommand::globalName);
    if (!command && plain != name)
        command = find(name, &AcEdCommand::globalName);
    return command;
}

AcEdCommandStack *acedRegCmds()
{
    static AcEdCommandStack stack;
    return &stack;
}

const AcEdCommand *acedCommandOfMacro(const QString &macro)
{
    QStringView typed(macro);
    while (typed.startsWith(u"^C") || typed.startsWith(u"^c"))
        typed = typed.sliced(2);
    const qsizetype end = typed.indexOf(u' ');
    return acedRegCmds()->lookup((end < 0 ? typed : typed.first(end)).toString());
}
