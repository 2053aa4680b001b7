#include "app/console/command_line.h"

#include "app/console/console_front_end.h"
#include "app/console/documents.h"
#include "app/console/info_verb.h"
#include "app/console/menu_verb.h"
#include "app/console/module_verbs.h"
#include "app/console/picture_verb.h"
#include "app/console/plot_verb.h"
#include "app/console/run_verb.h"
#include "app/console/settings_verb.h"
#include "host/base/path_name.h"
#include "host/base/terminal_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <memory>
#include <sstream>

namespace console
{

namespace
{

QString text(const std::string &bytes)
{
    return base::decodePath(bytes); // Most of them are names of files, which may be any bytes.
}

QStringList texts(const std::vector<std::string> &list)
{
    QStringList result;
    for (const std::string &each : list)
        result.append(text(each));
    return result;
}

/// What the parser fills in, and what to run once the whole line is understood.
struct CommandLine {
    CLI::App app{"Review marks in CAD drawings: the window, scripts of commands, and verbs."};
    std::function<int()> chosen;

    std::vector<std::string> files, wanted;
    std::string script, output, key, name, value, file;
    double autosave = -1.0;
    bool json = false, overwrite = false, echo = false, noModule = false;
    std::string drawing, layout, paper, size, window, background;
    bool all = false, monochrome = false, lineWeights = false;
    bool asNumber = false, asText = false;
    std::map<QString, std::string> values; ///< Options of a module's verb, by name.
    std::map<QString, bool> switches;

    CLI::App *addVerb(CLI::App &parent, const std::string &verb, const std::string &help,
                      std::function<int()> run);
    void addFiles(CLI::App &verb) { verb.add_option("FILE", files, "Drawings (DXF, DWG)")->required(); }
    /// Of verbs that make one file of one drawing.
    void addOneToOne(CLI::App &verb, const std::string &kind)
    {
        verb.add_option("FILE", drawing, "Drawing (DXF, DWG)")->required();
        verb.add_option("OUT", output, kind)->required();
        verb.add_option("--layout", layout, "Layout, or Model; otherwise what the drawing was saved in")
            ->type_name("NAME");
        verb.add_flag("-f", overwrite, "Overwrite OUT");
        addJson(verb);
    }
    void addJson(CLI::App &verb) { verb.add_flag("--json", json, "Print JSON"); }
};

CLI::App *CommandLine::addVerb(CLI::App &parent, const std::string &verb, const std::string &help,
                               std::function<int()> run)
{
    CLI::App *added = parent.add_subcommand(verb, help);
    added->fallthrough();
    added->callback([this, run = std::move(run)] { chosen = run; });
    return added;
}

// Verbs of the program ---------------------------------------------------------------------------

void addRun(CommandLine &line)
{
    CLI::App *verb = line.addVerb(line.app, "run", "Run a script of commands on each file", [&line] {
        RunOptions options;
        options.script = text(line.script);
        options.files = texts(line.files);
        options.output = text(line.output);
        options.overwrite = line.overwrite ? Overwrite::yes : Overwrite::no;
        options.autosave = line.autosave;
        options.echo = line.echo ? ScriptFrontEnd::Echo::on : ScriptFrontEnd::Echo::off;
        return runScript(options);
    });
    verb->add_option("SCRIPT", line.script, "Script, or - for standard input")->required();
    line.addFiles(*verb);
    verb->add_option("-o", line.output, "Save the result: a file for one FILE, a folder for several");
    verb->add_flag("-f", line.overwrite, "Let -o overwrite");
    verb->add_option(
            "--autosave", line.autosave,
            "Keep recovery copies of changed drawings, this many seconds behind; what a killed run leaves "
            "is offered by the window")
        ->type_name("SECONDS")
        ->check(CLI::NonNegativeNumber);
    verb->add_flag("--echo", line.echo, "Print each prompt and dialog with the line that answers it");
}

void addInfo(CommandLine &line)
{
    CLI::App *verb = line.addVerb(line.app, "info", "Tell what drawings hold",
                                  [&line] { return printInfo(texts(line.files), line.json); });
    line.addFiles(*verb);
    line.addJson(*verb);
}

void addMenu(CommandLine &line)
{
    CLI::App *verb = line.addVerb(line.app, "menu", "Print the menus that modules load with a drawing",
                                  [&line] { return printMenus(text(line.file), line.json); });
    verb->add_option("FILE", line.file, "Drawing; a new one without it");
    line.addJson(*verb);
}

void addPlot(CommandLine &line)
{
    CLI::App *verb = line.addVerb(line.app, "plot", "Plot layouts to a PDF file", [&line] {
        PlotOptions options;
        options.files = {text(line.drawing)};
        options.output = text(line.output);
        options.overwrite = line.overwrite ? Overwrite::yes : Overwrite::no;
        options.layout = text(line.layout);
        options.all = line.all;
        options.paper = text(line.paper);
        options.monochrome = line.monochrome;
        options.json = line.json;
        return writePlot(options);
    });
    line.addOneToOne(*verb, "PDF file");
    verb->add_flag("--all", line.all, "Every paper layout, a page each")->excludes("--layout");
    verb->add_option("--paper", line.paper, "Paper size (A0 to A4, ANSI_A to ANSI_E, ARCH_A to ARCH_E)")
        ->type_name("SIZE");
    verb->add_flag("--monochrome", line.monochrome, "Everything in black");
}

PictureOptions pictureOptions(const CommandLine &line, const CLI::App &parsed)
{
    PictureOptions options;
    options.files = {text(line.drawing)};
    options.output = text(line.output);
    options.overwrite = line.overwrite ? Overwrite::yes : Overwrite::no;
    options.size = text(line.size);
    options.window = text(line.window);
    options.layout = text(line.layout);
    options.background = text(line.background);
    options.lineWeights = line.lineWeights;
    options.json = line.json;
    for (const AcEdAreaOption &each : acedAreaOptions()) {
        if (parsed.count(each.option.name.toStdString()) > 0)
            options.areas[each.option.name] = text(line.values.at(each.option.name));
    }
    return options;
}

void addPicture(CommandLine &line)
{
    auto parsed = std::make_shared<CLI::App *>(nullptr);
    CLI::App *verb = line.addVerb(line.app, "picture", "Draw a drawing into a PNG file",
                                  [&line, parsed] { return writePicture(pictureOptions(line, **parsed)); });
    *parsed = verb;
    line.addOneToOne(*verb, "PNG file");
    verb->add_option("--size", line.size, "Pixels; 1600x1000 without it")->type_name("WxH");
    CLI::Option *window = verb->add_option("--window", line.window, "Part to show; everything without it")
                              ->type_name("X1,Y1,X2,Y2");
    verb->add_option("--background", line.background, "white, black or #rrggbb; white without it")
        ->type_name("COLOR");
    verb->add_flag("--lineweights", line.lineWeights, "Lines as thick as they plot");
    for (const AcEdAreaOption &each : acedAreaOptions()) {
        const AcEdVerbOption &option = each.option;
        verb->add_option(option.name.toStdString(), line.values[option.name], option.help.toStdString())
            ->type_name(option.value.toStdString())
            ->excludes(window)
            ->excludes("--layout");
    }
}

SettingType typeOf(const CommandLine &line)
{
    return line.asNumber ? SettingType::number : line.asText ? SettingType::text : SettingType::fitting;
}

void addSettings(CommandLine &line)
{
    CLI::App *settings = line.app.add_subcommand("settings", "Read and change your settings");
    settings->require_subcommand(1);
    settings->fallthrough();

    CLI::App *list = line.addVerb(*settings, "list", "Print all settings, or those below KEY",
                                  [&line] { return listSettings(text(line.key), line.json); });
    list->add_option("KEY", line.key, "Key path");
    line.addJson(*list);

    CLI::App *get = line.addVerb(*settings, "get", "Print one setting",
                                 [&line] { return getSetting(text(line.key), text(line.name), line.json); });
    line.addJson(*get);
    CLI::App *set = line.addVerb(*settings, "set", "Store one setting", [&line] {
        return setSetting(text(line.key), text(line.name), text(line.value), typeOf(line));
    });
    CLI::App *remove = line.addVerb(*settings, "remove", "Remove one setting",
                                    [&line] { return removeSetting(text(line.key), text(line.name)); });
    for (CLI::App *verb : {get, set, remove}) {
        verb->add_option("KEY", line.key, "Key path, for example Software\\Quillnote3")->required();
        verb->add_option("NAME", line.name, "Name of the value")->required();
    }
    set->add_option("VALUE", line.value, "A number or a text; -- before a negative number")->required();
    auto *asNumber = set->add_flag("--number", line.asNumber, "VALUE is a number");
    set->add_flag("--text", line.asText, "VALUE is a text")->excludes(asNumber);

    CLI::App *exportTo = line.addVerb(*settings, "export", "Write all settings to a text file",
                                      [&line] { return exportSettingsTo(text(line.file), line.overwrite); });
    exportTo->add_option("FILE", line.file, "File, or - for standard output")->required();
    exportTo->add_flag("-f", line.overwrite, "Overwrite FILE");
    CLI::App *importFrom = line.addVerb(*settings, "import", "Store the settings of a text file", [&line] {
        return importSettingsFrom(text(line.file), texts(line.wanted));
    });
    importFrom->add_option("FILE", line.file, "File, or - for standard input")->required();
    importFrom
        ->add_option("--with", line.wanted,
                     "Take values of this name although they make the program load or run "
                     "something")
        ->type_name("NAME");
}

// Verbs of modules -------------------------------------------------------------------------------

/// Its own, and those of saving.
std::vector<AcEdVerbOption> optionsOf(const AcEdVerb &verb)
{
    std::vector<AcEdVerbOption> options = verb.options;
    if (verb.saving != AcEdVerbSaving::never) {
        options.push_back({QStringLiteral("-o"), QStringLiteral("OUT"),
                           QStringLiteral("Save the result: a file for one FILE, a folder for several")});
        options.push_back({QStringLiteral("-f"), {}, QStringLiteral("Overwrite what exists")});
    }
    return options;
}

AcEdVerbCall moduleCall(const CommandLine &line, const CLI::App &parsed, const AcEdVerb &verb)
{
    AcEdVerbCall call;
    call.json = line.json;
    for (const AcEdVerbOption &option : optionsOf(verb)) {
        if (parsed.count(option.name.toStdString()) == 0)
            continue;
        const auto value = line.values.find(option.name);
        call.options[option.name] = value == line.values.end() ? QString() : text(value->second);
    }
    return call;
}

void addModuleVerb(CommandLine &line, const AcEdVerb &verb)
{
    auto parsed = std::make_shared<CLI::App *>(nullptr);
    *parsed = line.addVerb(line.app, verb.name.toStdString(), verb.help.toStdString(), [&line, parsed, verb] {
        return runModuleVerb(verb, texts(line.files), moduleCall(line, **parsed, verb));
    });
    line.addFiles(**parsed);
    line.addJson(**parsed);
    for (const AcEdVerbOption &option : optionsOf(verb)) {
        const std::string name = option.name.toStdString();
        if (option.value.isEmpty())
            (*parsed)->add_flag(name, line.switches[option.name], option.help.toStdString());
        else
            (*parsed)
                ->add_option(name, line.values[option.name], option.help.toStdString())
                ->type_name(option.value.toStdString());
    }
    if (verb.saving == AcEdVerbSaving::required)
        (*parsed)->get_option("-o")->required();
}

// Without a verb ---------------------------------------------------------------------------------

int refuseWindow(const std::vector<std::string> &files)
{
    if (!files.empty() && !base::pathExists(text(files.front()))) {
        printMessageLine(
            QStringLiteral("%1 is neither a verb nor a file; see quillnote --help").arg(text(files.front())));
        return kTrouble;
    }
    printMessageLine(
        QStringLiteral("There is no display to show the window on (DISPLAY and WAYLAND_DISPLAY are "
                       "not set); the console needs none: see quillnote --help."));
    return kTrouble;
}

void build(CommandLine &line)
{
    line.app.name("quillnote");
    line.app.set_version_flag("--version", "quillnote " QUILLNOTE_VERSION);
    line.app.add_flag("--no-module", line.noModule, "Load no modules");
    line.app.add_option("FILE", line.files, "Drawings to open in the window");
    line.app.require_subcommand(0, 1);
    line.app.footer("Exit status: 0 done, 1 findings, 2 trouble.");
    line.chosen = [&line] { return refuseWindow(line.files); };
    addRun(line);
    addInfo(line);
    addPlot(line);
    addPicture(line);
    addMenu(line);
    addSettings(line);
    for (const AcEdVerb &verb : acedVerbs())
        addModuleVerb(line, verb);
}

} // namespace

bool runsWithoutModules(const std::vector<std::string> &arguments)
{
    if (std::ranges::find(arguments, "--no-module") != arguments.end() ||
        std::ranges::find(arguments, "--version") != arguments.end())
        return true;
    const auto isWord = [](const std::string &each) { return !each.starts_with('-'); };
    const auto verb = std::ranges::find_if(arguments, isWord);
    if (verb == arguments.end() || *verb != "settings")
        return false;
    // Modules know the types of their settings, which only storing needs.
    const auto what = std::find_if(verb + 1, arguments.end(), isWord);
    return what == arguments.end() || *what != "set";
}

/// Verbs are single words; a drawing has at least an ending.
static bool isFile(const std::string &argument)
{
    return argument.find_first_of("./") != std::string::npos;
}

bool asksForWindow(const std::vector<std::string> &arguments)
{
    return std::ranges::all_of(arguments, [](const std::string &each) {
        return each == "--no-module" || (!each.starts_with('-') && isFile(each));
    });
}

QStringList filesOf(const std::vector<std::string> &arguments)
{
    QStringList files;
    for (const std::string &each : arguments) {
        if (!each.starts_with('-'))
            files.append(text(each));
    }
    return files;
}

/// Results that did not arrive are trouble, whatever was done.
static int withOutput(int status)
{
    const QString trouble = acedResultTrouble();
    if (trouble.isEmpty())
        return status;
    printMessageLine(trouble);
    return kTrouble;
}

int runCommandLine(const std::vector<std::string> &arguments)
{
    CommandLine line;
    build(line);
    try {
        // The parser takes the last argument first.
        line.app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError &error) {
        std::ostringstream results, complaints;
        const int status = line.app.exit(error, results, complaints);
        if (!results.str().empty())
            acedPrintResult(text(results.str()));
        printMessage(text(complaints.str()));
        return withOutput(status == 0 ? kDone : kTrouble);
    }
    return withOutput(line.chosen());
}

} // namespace console
