// The phrase library as an XML file: what the cloud programs write, and what they are given.
#include "quillnote/ui/phrase_library.h"

#include "host/base/file_bytes.h"

#include <QFileInfo>

#include <tinyxml2.h>

namespace
{

constexpr std::size_t kMostCategories = 29;
constexpr std::size_t kMostOfCategory = 29;
constexpr std::size_t kLargestLibrary = 16 * 1024 * 1024;

struct Category {
    QString name;
    std::vector<Phrase> phrases;
};

/// No value when the record lacks the element.
std::optional<QString> childText(const tinyxml2::XMLElement &record, const char *name)
{
    const tinyxml2::XMLElement *const child = record.FirstChildElement(name);
    if (!child)
        return {};
    const char *const text = child->GetText();
    return text ? QString::fromUtf8(text) : QString();
}

int decimal(const QString &text)
{
    const QString trimmed = text.trimmed();
    bool isNumber = false;
    const int value = trimmed.toInt(&isNumber);
    return isNumber ? value : 0;
}

class Categories
{
public:
    void add(const QString &name, const QString &content, int weight)
    {
        std::vector<Phrase> &phrases = find(name).phrases;
        const auto isSame = [&](const Phrase &phrase) { return phrase.text == content; };
        if (phrases.size() < kMostOfCategory && std::none_of(phrases.begin(), phrases.end(), isSame))
            phrases.push_back({content, weight, {}});
    }
    std::vector<Category> all;

private:
    /// When there is no room for another one, the first.
    Category &find(const QString &name)
    {
        const auto found = std::find_if(all.begin(), all.end(),
                                        [&](const Category &category) { return category.name == name; });
        if (found != all.end())
            return *found;
        if (all.size() >= kMostCategories)
            return all.front();
        return all.emplace_back(Category{name, {}});
    }
};

PhraseLibrary asLibrary(const QString &bigCategory, std::vector<Category> categories)
{
    PhraseLibrary library;
    library.bigCategory = bigCategory;
    library.fromXml = true;
    for (Category &category : categories)
        addPhraseMenu(library, {phraseMenuName(category.name), {}}, category.name,
                      std::move(category.phrases));
    return library;
}

} // namespace

std::optional<PhraseLibrary> parsePhraseXml(QByteArrayView bytes)
{
    constexpr QByteArrayView kMark("\xEF\xBB\xBF");
    const bool hasMark = bytes.startsWith(kMark);
    if (hasMark)
        bytes = bytes.sliced(kMark.size());
    // The parser knows UTF-8 alone.
    QString text = QString::fromUtf8(bytes);
    if (const auto decoded = hasMark ? std::nullopt : decodePhraseBytes(bytes))
        text = decoded->text;
    const QByteArray utf8 = text.toUtf8();
    tinyxml2::XMLDocument document;
    if (document.Parse(utf8.constData(), std::size_t(utf8.size())) != tinyxml2::XML_SUCCESS ||
        !document.RootElement())
        return {};
    QString bigCategory;
    Categories categories;
    for (const auto *record = document.RootElement()->FirstChildElement("oneRecord"); record;
         record = record->NextSiblingElement("oneRecord")) {
        const auto big = childText(*record, "bigCategory");
        const auto small = childText(*record, "smallCategory");
        const auto weight = childText(*record, "weight");
        const auto content = childText(*record, "content");
        if (!childText(*record, "subject") || !big || !small || !weight || !content)
            continue;
        if (bigCategory.isEmpty())
            bigCategory = *big;
        if (!content->trimmed().isEmpty())
            categories.add(*small, *content, decimal(*weight));
    }
    return asLibrary(bigCategory, std::move(categories.all));
}

base::Result<PhraseLibrary, QString> loadPhraseXml(const QString &path)
{
    if (path.isEmpty())
        return base::Failure{QString()};
    if (!QFileInfo::exists(path))
        return base::Failure{QStringLiteral("\n文件 %1 未找到！").arg(path)};
    const auto bytes = base::readFileBytes(path);
    if (!bytes || bytes->size() > kLargestLibrary)
        return base::Failure{QStringLiteral("读写XML知识条目文件<%1>错误！").arg(path)};
    auto library = parsePhraseXml(QByteArrayView(bytes->data(), qsizetype(bytes->size())));
    if (!library)
        return base::Failure{QStringLiteral("xml文件读取失败！")};
    return *std::move(library);
}

// Export -----------------------------------------------------------------------------------------

static void addChild(tinyxml2::XMLElement &record, const char *name, const QString &text)
{
    // Control characters have no place in XML.
    QString clean = text;
    clean.removeIf([](QChar c) { return c.unicode() < 0x20 && c != u'\n' && c != u'\r' && c != u'\t'; });
    record.InsertNewChildElement(name)->SetText(clean.toUtf8().constData());
}

QByteArray exportPhraseXml(const PhraseLibrary &library, const QString &user)
{
    tinyxml2::XMLDocument document;
    document.InsertEndChild(document.NewDeclaration("xml version=\"1.0\" encoding=\"UTF-8\""));
    tinyxml2::XMLElement *const root = document.NewElement("frequentOpinion");
    document.InsertEndChild(root);
    for (const Phrase &phrase : library.phrases) {
        tinyxml2::XMLElement *const record = root->InsertNewChildElement("oneRecord");
        addChild(*record, "company", QStringLiteral("null"));
        addChild(*record, "user", user);
        addChild(*record, "subject", QStringLiteral("null"));
        addChild(*record, "bigCategory", library.bigCategory);
        addChild(*record, "smallCategory", phrase.category);
        addChild(*record, "weight", QString::number(phrase.weight));
        addChild(*record, "content", phrase.text);
    }
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    return QByteArray(printer.CStr(), printer.CStrSize() - 1);
}
