#include "app/console/console_front_end.h"

#include "host/acui/acuimessage.h"
#include "host/base/terminal_text.h"

#include <cstdio>

namespace console
{

std::optional<AcEdAnswer> ConsoleFrontEnd::answer(const AcEdPrompt &prompt)
{
    if (prompt.kind != AcEdPromptKind::command)
        printMessageLine(QStringLiteral("no answer for the prompt \"%1\"").arg(prompt.message.trimmed()));
    return std::nullopt;
}

std::optional<QString> ConsoleFrontEnd::dialogLine(const QString &what)
{
    if (!acuiIsAlert(what))
        printMessageLine(QStringLiteral("no answer for the %1").arg(what));
    return std::nullopt;
}

void ConsoleFrontEnd::print(const QString &text)
{
    printMessage(text);
}

void ConsoleFrontEnd::refuseAnswer(const QString &reason)
{
    printMessageLine(reason);
}

static bool &atLineStart()
{
    static bool isStart = true;
    return isStart;
}

void printMessage(const QString &text)
{
    QByteArray bytes = base::terminalText(text).toUtf8();
    if (atLineStart() && bytes.startsWith('\n'))
        bytes.remove(0, 1);
    if (bytes.isEmpty())
        return;
    atLineStart() = bytes.endsWith('\n');
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
}

void printMessageLine(const QString &text)
{
    endMessageLine();
    printMessage(text + QLatin1Char('\n'));
}

void endMessageLine()
{
    if (!atLineStart())
        printMessage(QStringLiteral("\n"));
}

} // namespace console
