// A small module for the console's tests: a command with a dialog, one with a window, one that hangs, a verb.
#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"
#include "host/aced/edverbs.h"
#include "host/acrx/rxmodule.h"
#include "tests/e2e/sample_windows.h"

#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

CSample::CSample()
{
    setWindowTitle(QStringLiteral("Sample"));
    auto *column = new QVBoxLayout(this);
    auto *edit = new QLineEdit;
    auto *confirm = new QPushButton(QStringLiteral("OK"));
    edit->setObjectName(acuiObjectName(1003));
    confirm->setObjectName(acuiObjectName(kAcUiOk));
    column->addWidget(edit);
    column->addWidget(confirm);
    connect(confirm, &QPushButton::clicked, this, [this] {
        if (acedAsk(QStringLiteral("Sure?"), AcEdButtons::yesNo) == AcEdButton::yes)
            accept();
    });
}

CPalette::CPalette()
{
    auto *button = new QPushButton(QStringLiteral("Circle"), this);
    button->setObjectName(acuiObjectName(1006));
    connect(button, &QPushButton::clicked, this, [] {
        ads_queueexpr(QStringLiteral("(command \"_CIRCLE\" \"5,5\" \"2\")"));
        acutPrintf(QStringLiteral("\nkeys:") + acedFrontEnd().heldKeys().join(u'+'));
    });
}

static std::unique_ptr<CPalette> &palette()
{
    static std::unique_ptr<CPalette> window;
    return window;
}

static void askInDialog()
{
    CSample dialog;
    const bool confirmed = dialog.doModal() == QDialog::Accepted;
    acutPrintf(QStringLiteral("\ndialog %1: %2").arg(confirmed ? u"ok" : u"left", dialog.itemText(1003)));
}

static void openPalette()
{
    palette() = std::make_unique<CPalette>();
    palette()->show();
}

static void openStranger()
{
    QMessageBox::question(nullptr, QStringLiteral("Stranger"), QStringLiteral("Wait?"));
}

/// Status 1 when there is none of the kind.
static int tally(const AcEdVerbCall &call)
{
    const auto wanted = call.options.find(QStringLiteral("--kind"));
    int count = 0;
    const AcDbDatabase &database = *acdbCurDwg();
    for (const AcDbObjectId id :
         AcDbObjectPointer<AcDbBlockTableRecord>(database.modelSpaceId(), AcDb::kForRead)->entities()) {
        const QString kind = QString::fromUtf8(acdbKindName(id.stub()->kind));
        count += wanted == call.options.end() || wanted->second == kind;
    }
    const QString shape = call.json ? QStringLiteral("{\"count\":%1}\n") : QStringLiteral("count %1\n");
    if (!call.has(QStringLiteral("--quiet")))
        acedPrintResult(shape.arg(count));
    return count > 0 ? 0 : 1;
}

static void start(void *packet)
{
    acrxDynamicLinker()->unlockApplication(packet);
    const QString group = QStringLiteral("SAMPLE");
    acedRegCmds()->addCommand({group, QStringLiteral("SAMPLEDIALOG"), {}, ACRX_CMD_MODAL, askInDialog});
    acedRegCmds()->addCommand({group, QStringLiteral("SAMPLEPALETTE"), {}, ACRX_CMD_MODAL, openPalette});
    acedRegCmds()->addCommand({group, QStringLiteral("SAMPLESTRANGER"), {}, ACRX_CMD_MODAL, openStranger});
    acedRegisterVerb({QStringLiteral("tally"),
                      QStringLiteral("Count entities of model space"),
                      {{QStringLiteral("--kind"), QStringLiteral("KIND"), QStringLiteral("Only this kind")},
                       {QStringLiteral("--quiet"), {}, QStringLiteral("Print nothing")}},
                      tally});
    acedAlert(QStringLiteral("sample module loaded"));
}

static void stop()
{
    palette().reset();
    acedRegCmds()->removeGroup(QStringLiteral("SAMPLE"));
    acedRemoveVerb(QStringLiteral("tally"));
    acutPrintf(QStringLiteral("\nsample module unloaded"));
}

extern "C" Q_DECL_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void *packet)
{
    if (message == AcRx::kInitAppMsg)
        start(packet);
    else if (message == AcRx::kUnloadAppMsg)
        stop();
    return AcRx::kRetOK;
}
