// Console verbs that modules bring: "quillnote marks FILE". The program opens the file, makes it current and
// calls the verb; the module never sees a command line parser and the program never sees the module.
#pragma once

#include "host/acap/docman.h"
#include "host/acge/geextents.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <vector>

struct AcEdVerbOption {
    QString name; ///< "--pictures"
    QString
        value; ///< Placeholder "DIR"; empty for a switch. "FILE" is a file that the verb writes for one
               ///< drawing, "OUT" one that it writes for all of them, which replaces another only with "-f".
    QString help;
};

struct AcEdVerbCall {
    bool json = false;                  ///< Every verb knows it.
    std::map<QString, QString> options; ///< Given options, "-o" and "-f" of AcEdVerbSaving among them;
                                        ///< switches have an empty value.
    QStringList more;                   ///< The files of AcEdVerb::more.
    bool has(const QString &name) const { return options.count(name) > 0; }
};

/// Whether the program saves the drawing elsewhere when the verb is done: "-o OUT", which overwrites with
/// "-f".
enum class AcEdVerbSaving { never, optional, required };

struct AcEdVerb {
    QString name; ///< "report", or two words for one of several that belong together ("data export").
    QString help;
    std::vector<AcEdVerbOption> options;
    /// Prints to standard output; the result is the exit status (0 done, 1 findings, 2 trouble).
    std::function<int(const AcEdVerbCall &)> run;
    /// Called once when `run` has seen every drawing without trouble, with no drawing open: for results of
    /// all of them. May be empty.
    std::function<int(const AcEdVerbCall &)> finish = {};
    AcEdVerbSaving saving = AcEdVerbSaving::never;
    /// Placeholder "DATA": the verb takes one drawing, and behind it files that are none, at least one.
    /// Empty: it takes drawings, one after the other.
    QString more = {};
};

/// Part of a drawing that something of a module names.
struct AcEdNamedArea {
    AcDbObjectId space; ///< Block record of model space or a layout.
    AcDbExtents box;    ///< World coordinates of the space.
};
/// An option of verbs that show a part of a drawing ("--mark 7"). `find` gets the option's value; its error
/// says why there is no such area.
struct AcEdAreaOption {
    AcEdVerbOption option;
    std::function<base::Result<AcEdNamedArea, QString>(AcApDocument &, const QString &)> find;
};
/// One of the same name takes the place of the earlier one.
void acedRegisterAreaOption(AcEdAreaOption option);
void acedRemoveAreaOption(const QString &name);
const std::vector<AcEdAreaOption> &acedAreaOptions();

void acedRegisterVerb(AcEdVerb verb);
void acedRemoveVerb(const QString &name);
const std::vector<AcEdVerb> &acedVerbs();
/// Where verbs print their results; a terminal's own signs are written out (base::terminalText).
void acedPrintResult(const QString &text);
/// With --json: a verb prints its results as objects, one a line.
void acedPrintResult(const QJsonObject &object);
/// Why results did not reach standard output, as a sentence; empty when all of them did.
QString acedResultTrouble();
