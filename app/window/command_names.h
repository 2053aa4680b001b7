// What can be typed: names of commands for completing them, titles of commands for people, and the keywords
// of a prompt as links.
#pragma once

#include "host/aced/edfrontend.h"

#include <QColor>

namespace window
{

struct CommandName {
    QString name;    ///< As typed.
    QString meaning; ///< What it stands for: the title of the command, or its global name.
};
/// Local names, global names and aliases of all commands: those of modules first, then the host's, then the
/// aliases; each name once, whatever its letter case.
std::vector<CommandName> commandNames();

/// What people call a command: its title, the label of a menu item that runs it, else the name that is typed.
QString commandTitle(const QString &globalName);
/// "放弃(&U)…" as "放弃".
QString withoutMnemonic(QString label);

/// The prompt's text as rich text on one line; options between brackets are links to the keyword that they
/// stand for, and so are the keywords when the text shows none.
QString promptAsHtml(const AcEdPrompt &prompt, const QColor &linkColor);

/// True where a blank ends what is typed: not inside quotes, a LISP expression, or where blanks are part of
/// the answer.
bool blankConfirms(const AcEdPrompt &prompt, const QString &typed);

} // namespace window
