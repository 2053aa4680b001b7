#include "app/window/command_names.h"

#include "app/front_end/window_front_end.h"
#include "host/aced/edcommands.h"
#include "host/aced/edmenu.h"
#include "host/aced/edparse.h"
#include "host/base/host_text.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace window
{

// Names -------------------------------------------------------------------------------------------

std::vector<CommandName> commandNames()
{
    std::vector<CommandName> names;
    QSet<QString> seen;
    const auto add = [&](const QString &name, const AcEdCommand &command) {
        if (!seen.contains(name.toUpper())) {
            seen.insert(name.toUpper());
            names.push_back({name, commandTitle(command.globalName)});
        }
    };
    for (const bool ofHost : {false, true}) {
        for (const AcEdCommand &command : acedRegCmds()->commands()) {
            if ((command.group == u"HOST") == ofHost) {
                add(command.localName, command);
                add(command.globalName, command);
            }
        }
    }
    for (const AcEdCommand &command : acedRegCmds()->commands()) {
        for (const QString &alias : command.aliases)
            add(alias, command);
    }
    return names;
}

// Titles ------------------------------------------------------------------------------------------

QString withoutMnemonic(QString label)
{
    static const QRegularExpression mark(QStringLiteral(R"(\(&.\)|&(?=\S)|\.\.\.$|…$)"));
    return label.remove(mark).trimmed();
}

static QString labelIn(const std::vector<AcEdMenuItem> &items, const QString &globalName)
{
    for (const AcEdMenuItem &item : items) {
        const AcEdCommand *const command =
            item.kind == AcEdMenuItem::item ? acedCommandOfMacro(item.macro) : nullptr;
        if (command && command->globalName == globalName)
            return withoutMnemonic(item.label);
        if (const QString found = labelIn(item.children, globalName); !found.isEmpty())
            return found;
    }
    return {};
}

QString commandTitle(const QString &globalName)
{
    if (globalName.isEmpty())
        return Host::tr("修改");
    const auto &commands = acedRegCmds()->commands();
    const auto found = std::ranges::find(commands, globalName, &AcEdCommand::globalName);
    if (found != commands.end() && *found->title)
        return Host::tr(found->title);
    for (const auto &group : acedMenus().groups()) {
        if (const QString label = labelIn(group->popups, globalName); !label.isEmpty())
            return label;
    }
    return found == commands.end() ? globalName : found->localName;
}

// Prompts -----------------------------------------------------------------------------------------

/// The keyword that an option of the text stands for: "圆弧(A)" for "Arc"; none.
static QString keywordOf(const QString &option, const QStringList &keywords)
{
    const qsizetype open = option.lastIndexOf(u'(');
    const bool isShort = open >= 0 && option.endsWith(u')');
    const QString typed = isShort ? option.mid(open + 1, option.size() - open - 2) : option;
    return acedMatchKeyword(typed.trimmed(), keywords).index >= 0 ? typed.trimmed() : QString();
}

static QString link(const QString &keyword, const QString &shown, const QColor &color)
{
    return QStringLiteral("<a href=\"%1\" style=\"color:%2\">%3</a>")
        .arg(keyword.toHtmlEscaped(), color.name(), shown.toHtmlEscaped());
}

static QString optionsAsHtml(const QString &options, const QStringList &keywords, const QColor &color)
{
    QStringList shown;
    for (const QString &option : options.split(u'/')) {
        const QString keyword = keywordOf(option, keywords);
        shown += keyword.isEmpty() ? option.toHtmlEscaped() : link(keyword, option, color);
    }
    return u'[' + shown.join(u'/') + u']';
}

/// The options of a prompt whose text names none. "LType,LT" shows as "LType"; the ways to select are the
/// same for every command and have names in the language of the window.
static QString optionsOf(const AcEdPrompt &prompt)
{
    if (prompt.kind == AcEdPromptKind::selection)
        return Host::tr("窗口(W)/窗交(C)/框选(BOX)/全部(ALL)/上一个(L)/前一个(P)/添加(A)/删除(R)/单个(SI)");
    QStringList names;
    for (const QString &keyword : prompt.keywords)
        names += keyword.section(u',', 0, 0);
    return names.join(u'/');
}

/// Behind what is asked for, before the colon.
static QString withOptions(QString text, const AcEdPrompt &prompt, const QColor &color)
{
    if (prompt.keywords.isEmpty())
        return text.toHtmlEscaped();
    const bool hasColon = text.endsWith(u':') || text.endsWith(u'：');
    const QString colon = hasColon ? text.right(1) : QString();
    text.chop(colon.size());
    return text.toHtmlEscaped() + u' ' + optionsAsHtml(optionsOf(prompt), prompt.keywords, color) + colon;
}

QString promptAsHtml(const AcEdPrompt &prompt, const QColor &linkColor)
{
    const QString text = prompt.message.trimmed().section(u'\n', -1);
    const qsizetype open = text.indexOf(u'[');
    const qsizetype close = text.indexOf(u']', open + 1);
    if (open < 0 || close < 0)
        return withOptions(text, prompt, linkColor);
    return text.left(open).toHtmlEscaped() +
           optionsAsHtml(text.mid(open + 1, close - open - 1), prompt.keywords, linkColor) +
           text.mid(close + 1).toHtmlEscaped();
}

bool blankConfirms(const AcEdPrompt &prompt, const QString &typed)
{
    return !prompt.allowsBlanks && !typed.trimmed().startsWith(u'(') && typed.count(u'"') % 2 == 0;
}

} // namespace window
