#include "quillnote/ui/phrase_library.h"

#include "host/base/file_bytes.h"

#include <QDir>

static constexpr qsizetype kLongestName = 12;

QString phraseMenuName(const QString &title)
{
    constexpr qsizetype kCutName = 8;
    return title.size() > kLongestName ? title.first(kCutName) : title;
}

void addPhraseMenu(PhraseLibrary &library, PhraseMenu menu, const QString &category,
                   std::vector<Phrase> phrases)
{
    for (Phrase &phrase : phrases) {
        phrase.category = category;
        library.phrases.push_back(std::move(phrase));
    }
    menu.end = int(library.phrases.size());
    library.menus.push_back(std::move(menu));
}

static std::optional<PhraseText> readPhraseText(const QFileInfo &file, PhraseTroubles &troubles)
{
    const QString path = file.absoluteFilePath();
    const auto bytes = base::readFileBytes(path);
    if (!bytes || qsizetype(bytes->size()) > kLargestPhraseFile) {
        troubles.messages.append(QStringLiteral("读写知识条目文件<%1>错误！").arg(path));
        return {};
    }
    auto text = decodePhraseBytes(QByteArrayView(bytes->data(), qsizetype(bytes->size())));
    if (!text)
        troubles.messages.append(
            QStringLiteral("< %1 >文件不是ANSI编码，请用记事本打开并以ANSI格式保存。").arg(path));
    return text;
}

static void addFile(PhraseLibrary &library, const QFileInfo &file, PhraseTroubles &troubles)
{
    const auto text = readPhraseText(file, troubles);
    if (!text)
        return;
    const QString title = file.completeBaseName();
    if (title.size() > kLongestName) {
        troubles.messages.append(
            QStringLiteral("以文件名作为菜单名，但< %1 >文字较多，建议减少文件名的字数。").arg(title));
        troubles.showsFolder = true;
    }
    PhraseFile parsed = parsePhraseFile(text->text);
    if (parsed.hasMore)
        troubles.messages.append(QStringLiteral("< %1 >文件中多于%2个的条目不能显示，建议减少。")
                                     .arg(file.absoluteFilePath())
                                     .arg(kMostPhrasesOfFile));
    const QString name = phraseMenuName(title);
    addPhraseMenu(library, {name, file.absoluteFilePath()}, name, std::move(parsed.phrases));
}

QFileInfoList phraseFiles(const QString &folder)
{
    return QDir(folder).entryInfoList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name);
}

PhraseLibrary loadPhraseFolder(const QString &folder, PhraseTroubles &troubles)
{
    PhraseLibrary library;
    library.bigCategory = QDir(folder).dirName();
    QFileInfoList files = phraseFiles(folder);
    if (files.isEmpty())
        troubles.messages.append(
            QStringLiteral("文件夹< %1 >中没有找到常用知识条目文件(*.txt)！").arg(folder));
    if (files.size() > kMostPhraseMenus) {
        troubles.messages.append(
            QStringLiteral("文件夹< %1 >中有 %2 个.TXT 后缀的文本文件，菜单中只能显示最多%3个。\n\n"
                           "建议把多余的移到其它文件夹。")
                .arg(folder)
                .arg(files.size())
                .arg(kMostPhraseMenus));
        files.resize(kMostPhraseMenus);
    }
    for (const QFileInfo &file : files)
        addFile(library, file, troubles);
    return library;
}
