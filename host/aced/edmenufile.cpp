// Reads a menu file: XML as docs/formats/menu-file.md lays it out.
#include "host/aced/edmenu.h"
#include "host/base/host_text.h"

#include <tinyxml2.h>

#include <optional>

using tinyxml2::XMLElement;

namespace
{

constexpr qsizetype kMaxBytes = 4 << 20;
constexpr int kMaxItems = 10'000;
constexpr int kMaxDepth = 16;
constexpr qsizetype kMaxText = 1024;

class MenuFileReader
{
public:
    explicit MenuFileReader(QString name) : m_name(std::move(name)) {}
    base::Result<AcEdMenuGroup, QString> read(const QByteArray &bytes);

private:
    void readRoot(const XMLElement *root);
    void readGroup(const XMLElement &element);
    AcEdMenuItem readMenu(const XMLElement &element, int depth);
    std::optional<AcEdMenuItem> readChild(const XMLElement &element, int depth);
    void readDoubleClick(const XMLElement &element);
    QString attribute(const XMLElement &element, const char *name, bool needed = false);
    void fail(int line, const QString &reason);

    QString m_name;
    AcEdMenuGroup m_group;
    int m_items = 0;
    QString m_error; ///< The first one; what follows it does not count.
};

bool isNamed(const XMLElement &element, const char *name)
{
    return qstrcmp(element.Name(), name) == 0;
}

void MenuFileReader::fail(int line, const QString &reason)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("%1:%2: %3").arg(m_name).arg(line).arg(reason);
}

QString MenuFileReader::attribute(const XMLElement &element, const char *name, bool needed)
{
    const char *const value = element.Attribute(name);
    if (needed && (!value || !*value)) {
        fail(element.GetLineNum(), Host::tr("<%1> lacks its attribute \"%2\"")
                                       .arg(QString::fromUtf8(element.Name()), QLatin1String(name)));
    }
    const QString text = QString::fromUtf8(value);
    if (text.size() > kMaxText) {
        fail(element.GetLineNum(), Host::tr("the attribute \"%1\" is longer than %2 characters")
                                       .arg(QLatin1String(name))
                                       .arg(kMaxText));
    }
    return text.left(kMaxText);
}

/// A pull-down, a submenu or a toolbar.
AcEdMenuItem MenuFileReader::readMenu(const XMLElement &element, int depth)
{
    AcEdMenuItem menu;
    menu.kind = AcEdMenuItem::popup;
    menu.id = attribute(element, "id", depth == 0);
    menu.label = attribute(element, "label", true);
    menu.help = attribute(element, "help");
    menu.icon = attribute(element, "icon");
    if (depth >= kMaxDepth) {
        fail(element.GetLineNum(), Host::tr("menus are nested deeper than %1 levels").arg(kMaxDepth));
        return menu;
    }
    for (auto *child = element.FirstChildElement(); child && m_error.isEmpty();
         child = child->NextSiblingElement()) {
        if (auto item = readChild(*child, depth + 1))
            menu.children.push_back(std::move(*item));
    }
    return menu;
}

std::optional<AcEdMenuItem> MenuFileReader::readChild(const XMLElement &element, int depth)
{
    const bool isSubmenu = isNamed(element, "submenu");
    const bool isSeparator = isNamed(element, "separator");
    if (!isSubmenu && !isSeparator && !isNamed(element, "item"))
        return std::nullopt;
    if (++m_items > kMaxItems) {
        fail(element.GetLineNum(), Host::tr("more than %1 menu items").arg(kMaxItems));
        return std::nullopt;
    }
    if (isSubmenu)
        return readMenu(element, depth);
    AcEdMenuItem item;
    item.kind = isSeparator ? AcEdMenuItem::separator : AcEdMenuItem::item;
    item.id = attribute(element, "id");
    if (!isSeparator) {
        item.label = attribute(element, "label", true);
        item.macro = attribute(element, "macro", true);
        item.help = attribute(element, "help");
        item.icon = attribute(element, "icon");
    }
    return item;
}

void MenuFileReader::readDoubleClick(const XMLElement &element)
{
    m_group.doubleClicks.push_back({attribute(element, "entity", true), attribute(element, "macro", true)});
}

void MenuFileReader::readGroup(const XMLElement &element)
{
    m_group.name = attribute(element, "name", true);
    for (auto *child = element.FirstChildElement(); child && m_error.isEmpty();
         child = child->NextSiblingElement()) {
        if (++m_items > kMaxItems)
            fail(child->GetLineNum(), Host::tr("more than %1 menu items").arg(kMaxItems));
        else if (isNamed(*child, "popup"))
            m_group.popups.push_back(readMenu(*child, 0));
        else if (isNamed(*child, "toolbar"))
            m_group.toolbars.push_back(readMenu(*child, 0));
        else if (isNamed(*child, "double-click"))
            readDoubleClick(*child);
    }
}

void MenuFileReader::readRoot(const XMLElement *root)
{
    if (!root || !isNamed(*root, "menu-file")) {
        fail(root ? root->GetLineNum() : 1,
             Host::tr("this is no menu file: it does not begin with <menu-file>"));
        return;
    }
    int version = 0;
    if (root->QueryIntAttribute("version", &version) != tinyxml2::XML_SUCCESS || version != 1) {
        fail(root->GetLineNum(), Host::tr("menu file version %1 is not supported")
                                     .arg(QString::fromUtf8(root->Attribute("version"))));
        return;
    }
    const XMLElement *const group = root->FirstChildElement("group");
    if (!group)
        fail(root->GetLineNum(), Host::tr("<group> is missing"));
    else if (const XMLElement *const second = group->NextSiblingElement("group"))
        fail(second->GetLineNum(), Host::tr("a menu file holds one <group>"));
    else
        readGroup(*group);
}

base::Result<AcEdMenuGroup, QString> MenuFileReader::read(const QByteArray &bytes)
{
    if (bytes.size() > kMaxBytes)
        return base::Failure{Host::tr("%1:1: the file is larger than 4 MiB").arg(m_name)};
    tinyxml2::XMLDocument document;
    const tinyxml2::XMLError status = document.Parse(bytes.constData(), std::size_t(bytes.size()));
    if (status != tinyxml2::XML_SUCCESS) {
        const QString reason = QLatin1String(tinyxml2::XMLDocument::ErrorIDToName(status));
        fail(std::max(1, document.ErrorLineNum()), Host::tr("not well-formed XML (%1)").arg(reason));
    } else {
        readRoot(document.RootElement());
    }
    if (!m_error.isEmpty())
        return base::Failure{m_error};
    m_group.file = m_name;
    return std::move(m_group);
}

} // namespace

base::Result<AcEdMenuGroup, QString> acedReadMenuFile(const QByteArray &bytes, const QString &name)
{
    return MenuFileReader(name).read(bytes);
}
