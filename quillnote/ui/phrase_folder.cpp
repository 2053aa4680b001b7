#include "quillnote/ui/phrase_folder.h"

#include "quillnote/frame/settings/install_folder.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/installed_programs.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edshell.h"
#include "host/acui/acuifile.h"
#include "host/base/atomic_file.h"
#include "host/base/file_update.h"
#include "host/os/temp_files.h"

#include <QFileInfo>

// The folder -------------------------------------------------------------------------------------

QString phraseFolder()
{
    QString folder = settings::text(u"CYZSLocation");
    if (folder.isEmpty())
        folder = installedFile(QStringLiteral("常用知识"));
    folder = folder.trimmed().replace(u'\\', u'/');
    return folder.isEmpty() || folder.endsWith(u'/') ? folder : folder + u'/';
}

bool choosePhraseFolder()
{
    const QString now = phraseFolder();
    QString chosen;
    if (acedGetFileD(QStringLiteral("请选择一个您的[常用知识条目]所在的文件夹"),
                     QFileInfo(now).isDir() ? now : QString(), {}, kAcUiFolder, chosen) != RTNORM)
        return false;
    settings::setText(u"CYZSLocation", chosen);
    acedOpenWithDesktop(chosen);
    return true;
}

void showPhraseFolder()
{
    const QString folder = phraseFolder();
    if (QFileInfo(folder).isDir())
        acedOpenWithDesktop(folder);
    else
        acedAlert(QStringLiteral("文件夹<%1>没有找到！").arg(folder));
}

// Loading ----------------------------------------------------------------------------------------

PhraseFolderMemory &phraseFolderMemory()
{
    static PhraseFolderMemory memory;
    return memory;
}

/// Empty when one of them cannot be told from what it will be in a moment.
static std::vector<std::pair<QString, base::FileStamp>> stampsOf(const QString &folder)
{
    std::vector<std::pair<QString, base::FileStamp>> stamps;
    for (const QFileInfo &file : phraseFiles(folder)) {
        const auto stamp = base::fileStamp(file.absoluteFilePath());
        if (!stamp || stamp->isYoung())
            return {};
        stamps.emplace_back(file.absoluteFilePath(), *stamp);
    }
    return stamps;
}

static PhraseLibrary loadLocalLibrary()
{
    const QString folder = phraseFolder();
    if (folder.isEmpty()) {
        acedAlert(QStringLiteral("常用知识条目文件夹没有定义！"));
        return {};
    }
    PhraseFolderMemory &memory = phraseFolderMemory();
    auto files = stampsOf(folder);
    if (!files.empty() && memory.folder == folder && memory.files == files)
        return memory.library;
    PhraseTroubles troubles;
    PhraseLibrary library = loadPhraseFolder(folder, troubles);
    // Troubles are told at each opening.
    memory.reset();
    if (!files.empty() && troubles.messages.isEmpty())
        memory = {folder, std::move(files), library};
    for (const QString &message : troubles.messages)
        acedAlert(message);
    if (troubles.showsFolder)
        acedOpenWithDesktop(folder);
    return library;
}

PhraseLibrary loadPhraseLibrary()
{
    if (settings::number(u"useXmlMenu") != 1)
        return loadLocalLibrary();
    auto library = loadPhraseXml(settings::text(u"XmlMenuFile").trimmed());
    if (library)
        return *std::move(library);
    if (!library.error().isEmpty())
        acedAlert(library.error());
    acedAlert(QStringLiteral("加载来自评图云的常用知识失败！\n\n改用本地常用知识."));
    settings::setNumber(u"useXmlMenu", 0);
    return loadLocalLibrary();
}

// Adding -----------------------------------------------------------------------------------------

static QString whyNotAdded(PhraseAddition result, const QString &file)
{
    switch (result) {
    case PhraseAddition::added:
    case PhraseAddition::alreadyThere:
        break;
    case PhraseAddition::notReadable:
        return QStringLiteral("< %1 >文件不是ANSI编码，请用记事本打开并以ANSI格式保存。").arg(file);
    case PhraseAddition::commentInside:
        return QStringLiteral(
            "条目中的 //、;;; 或 ''' 在知识条目文件中是注释，其后的文字会丢失，因此没有写入。");
    case PhraseAddition::notInCodePage:
        return QStringLiteral("文件<%1>是ANSI编码，条目中有它不能表示的字符，因此没有写入。").arg(file);
    }
    return {};
}

bool storePhrase(const QString &file, const QString &phrase)
{
    if (!QFileInfo::exists(file)) {
        acedAlert(QStringLiteral("准备写知识条目到文件<%1>，但发现该文件已经丢失了！").arg(file));
        return false;
    }
    PhraseAddition result = PhraseAddition::added;
    const auto written = base::updateFile(file, [&](QByteArrayView content) -> std::optional<QByteArray> {
        QByteArray bytes = content.toByteArray();
        result = addPhrase(bytes, phrase);
        return result == PhraseAddition::added ? std::optional(bytes) : std::nullopt;
    });
    if (!written)
        acedAlert(QStringLiteral("写知识条目到文件<%1>错误！请检查这个文件或其所在的文件夹是不是只读的。")
                      .arg(file));
    else if (const QString reason = whyNotAdded(result, file); !reason.isEmpty())
        acedAlert(reason);
    return written.valueOr(false);
}

// The cloud --------------------------------------------------------------------------------------

static QString writeExport(const PhraseLibrary &library)
{
    const auto reserved = os::temporaryFileName(QStringLiteral("QNS"));
    const QString path = reserved.valueOr(QString()) + QStringLiteral(".XML");
    if (reserved && QFileInfo::exists(path)) {
        acutPrintf(QStringLiteral("\nfile has been existed !"));
        return {};
    }
    const QByteArray xml = exportPhraseXml(library, settings::text(u"Yun_LoginName"));
    if (!reserved || !base::writeFileAtomically(path, xml)) {
        acedAlert(QStringLiteral("生成XML文件错误！"));
        return {};
    }
    return path;
}

void uploadPhrases(const PhraseLibrary &library)
{
    if (settings::text(u"Yun_LoginName").isEmpty() ||
        settings::text(u"Yun_status").compare(u"online", Qt::CaseInsensitive) != 0) {
        acutPrintf(QStringLiteral("\n请先登录QuillnoteYun评图云，再执行本命令."));
        return;
    }
    settings::setText(u"Yun_tmpXmlFn", u"");
    const QString path = writeExport(library);
    if (path.isEmpty())
        return;
    acedOpenWithDesktop(path);
    settings::setText(u"Yun_tmpXmlFn", path);
    const QString program = QStringLiteral("Yun\\phraseImportExe.exe");
    if (!startInstalledProgram(program))
        acedAlert(QStringLiteral("XML格式的常用知识中间文件已经生成：\n%1 \n\n但是，%2程序文件未找到，"
                                 "请重新安装CAD评图标签软件云模块！")
                      .arg(path, installedFile(program)));
}

void downloadPhrases()
{
    startCloudProgram(QStringLiteral("Yun\\phraseExportExe.exe"));
}
