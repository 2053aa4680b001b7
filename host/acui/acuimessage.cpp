#include "host/acui/acuimessage.h"

#include "host/aced/edfrontend.h"

#include <QApplication>
#include <QMessageBox>

#include <array>

namespace
{

struct ButtonRow {
    AcEdButton button;
    const char *word;
    QMessageBox::StandardButton standard;
};
constexpr std::array<ButtonRow, 4> kButtons{{
    {AcEdButton::cancel, "cancel", QMessageBox::Cancel},
    {AcEdButton::no, "no", QMessageBox::No},
    {AcEdButton::yes, "yes", QMessageBox::Yes},
    {AcEdButton::ok, "ok", QMessageBox::Ok},
}};

QMessageBox::StandardButtons standardButtons(AcEdButtons buttons)
{
    switch (buttons) {
    case AcEdButtons::ok:
        break;
    case AcEdButtons::okCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case AcEdButtons::yesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case AcEdButtons::yesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

/// The rows are ordered from the button that changes least.
const ButtonRow &mostCareful(QMessageBox::StandardButtons offered)
{
    for (const ButtonRow &row : kButtons) {
        if (offered & row.standard)
            return row;
    }
    return kButtons.back();
}

AcEdButton askPerson(const QString &text, QMessageBox::StandardButtons offered)
{
    const bool isQuestion = offered != QMessageBox::StandardButtons(QMessageBox::Ok);
    QMessageBox box(isQuestion ? QMessageBox::Question : QMessageBox::Information,
                    QGuiApplication::applicationDisplayName(), text, offered, QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    // Enter is hit by habit.
    box.setDefaultButton(mostCareful(offered).standard);
    const int pressed = box.exec();
    for (const ButtonRow &row : kButtons) {
        if (pressed == row.standard)
            return row.button;
    }
    return mostCareful(offered).button;
}

QString offeredLines(QMessageBox::StandardButtons offered)
{
    QStringList lines;
    for (const ButtonRow &row : kButtons) {
        if (offered & row.standard)
            lines.prepend(QLatin1Char('@') + QLatin1String(row.word));
    }
    return lines.join(QStringLiteral(", "));
}

AcEdButton askScript(const QString &text, QMessageBox::StandardButtons offered)
{
    const QString what = QStringLiteral("message box \"%1\" (%2)").arg(text, offeredLines(offered));
    acutPrintf(QLatin1Char('\n') + text);
    const std::optional<QString> line = acedFrontEnd().dialogLine(what);
    for (const ButtonRow &row : kButtons) {
        if (line && (offered & row.standard) && line->trimmed() == QLatin1String(row.word))
            return row.button;
    }
    if (line)
        acedFrontEnd().refuseAnswer(QStringLiteral("%1: @%2 is none of its buttons").arg(what, *line));
    return mostCareful(offered).button;
}

} // namespace

AcEdButton AcUiMessageBox::show(const QString &text, AcEdButtons buttons)
{
    const QMessageBox::StandardButtons offered = standardButtons(buttons);
    return acedFrontEnd().isScripted() ? askScript(text, offered) : askPerson(text, offered);
}

bool acuiIsAlert(const QString &what)
{
    return what.startsWith(u"message box ") && what.endsWith(u"(@ok)");
}
