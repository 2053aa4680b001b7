// dwg_gate FILE...: decodes every object of DWG files and encodes it again from its groups alone and what
// they do not show; and once more as an object whose own groups have not changed. Prints for each version and
// kind how many came out with the same bits, and where the first other one differs. Ends with status 1 when
// mayEncode() allows a kind that did not, or when an unchanged object changed.
#include "host/formats/dwg/dwgencoder.h"
#include "host/formats/dwg/dwgheader.h"
#include "host/formats/dwg/dwgkinds.h"
#include "host/formats/dwg/dwgmap.h"
#include "host/formats/dwg/dwgreader.h"
#include "host/formats/dwg/dwgsource.h"

#include <cstdio>
#include <map>

namespace
{

struct Tally {
    int count = 0, same = 0, kept = 0;
    bool isOpen = false; ///< May be encoded from groups.
    QString example;

    bool isFault() const { return kept != count || (isOpen && same != count); }
};

std::map<std::pair<int, QByteArray>, Tally> theTallies;

QString difference(std::string_view old, std::string_view made, const dwg::FileFacts &facts)
{
    std::size_t at = 0;
    while (at < std::min(old.size(), made.size()) && old[at] == made[at])
        ++at;
    const dwg::ObjectReader was(facts, old), is(facts, made);
    return QStringLiteral("byte %1 of %2, now %3; data end at %4, now %5; handles %6, now %7")
        .arg(at)
        .arg(old.size())
        .arg(made.size())
        .arg(was.dataEnd() / 8)
        .arg(is.dataEnd() / 8)
        .arg(was.handlesBegin() / 8)
        .arg(is.handlesBegin() / 8);
}

void tryObject(const AcDbDatabase &database, const DwgSource &source, const AcDbStub &stub, const char *file)
{
    const dwg::Names names{database, source.neighbours()};
    const ResbufList groups = source.read(stub);
    dwg::EncodePlace place = dwg::encodePlace(database, source, stub, groups);
    QByteArray kind = place.old.kindName;
    if (place.old.kind)
        kind = QByteArray::number(place.old.kind->type) + " " + kind;
    else if (kind != "TABLE")
        kind = "(no table)";
    Tally &tally = theTallies[{int(source.version()), kind}];
    tally.isOpen = place.old.kind && dwg::mayEncode(*place.old.kind, source.version());
    ++tally.count;
    const std::string_view old = place.old.record;
    const auto encode = [&](bool isTrial) {
        place.isTrial = isTrial && kind != "TABLE";
        return dwg::encodeObject(source.facts(), names, place, groups);
    };
    const auto isSame = [old](const base::Result<QByteArray, QString> &made) {
        return made && std::string_view(made->constData(), std::size_t(made->size())) == old;
    };
    tally.kept += isSame(encode(false));
    const auto made = encode(true);
    if (isSame(made)) {
        ++tally.same;
    } else if (tally.example.isEmpty()) {
        tally.example =
            QStringLiteral("%1 %2: ").arg(QString::fromUtf8(file)).arg(stub.handle, 0, 16) +
            (made ? difference(old, {made->constData(), std::size_t(made->size())}, source.facts())
                  : made.error());
    }
}

/// The sections of variables and of classes, written again without a change.
void trySections(const AcDbDatabase &database, DwgSource &source, const char *file)
{
    const dwg::Names names{database, source.neighbours()};
    const auto count = [&](const char *name, const base::Result<QByteArray, QString> &made,
                           const char *section) {
        Tally &tally = theTallies[{int(source.version()), name}];
        ++tally.count;
        const std::string_view old = source.container().section(section);
        const bool isSame = made && std::string_view(made->constData(), std::size_t(made->size())) == old;
        tally.same += isSame;
        tally.kept += isSame;
        if (!isSame)
            tally.example =
                QString::fromUtf8(file) + QStringLiteral(": ") +
                (made ? QStringLiteral("%1 bytes, now %2").arg(old.size()).arg(made->size()) : made.error());
    };
    const auto header = dwg::encodeHeader(source.facts(), source.container(), names, {});
    count("(variables)",
          header ? base::Result<QByteArray, QString>(header->section)
                 : base::Failure<QString>{header.error()},
          "AcDb:Header");
    count("(classes)", dwg::encodeClasses(source.facts(), source.container(), source.classes()),
          "AcDb:Classes");
}

} // namespace

int main(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        auto bytes = base::readFileBytes(path);
        if (!bytes) {
            std::fprintf(stderr, "%s cannot be read\n", argv[i]);
            return 2;
        }
        auto opened = readDwg(*std::move(bytes), path);
        if (!opened) {
            std::fprintf(stderr, "%s\n", qPrintable(opened.error()));
            return 2;
        }
        const AcDbDatabase &database = **opened;
        auto &source = dynamic_cast<DwgSource &>(*const_cast<DrawingSource *>(database.source()));
        trySections(database, source, argv[i]);
        for (std::uint32_t index = 0; index < database.stubCount(); ++index) {
            if (const AcDbStub *const stub = database.stub(index); stub->has(AcDbStub::kHasSource))
                tryObject(database, source, *stub, argv[i]);
        }
    }
    Tally all;
    bool isFault = false;
    for (const auto &[key, tally] : theTallies) {
        std::printf("%sAC%d %s: %d objects, %d alike, %d kept, %s%s%s\n", tally.isFault() ? "FAULT " : "",
                    key.first, key.second.constData(), tally.count, tally.same, tally.kept,
                    tally.isOpen ? "open" : "closed", tally.example.isEmpty() ? "" : "; ",
                    qPrintable(tally.example));
        isFault = isFault || tally.isFault();
        all.count += tally.count;
        all.same += tally.same;
        all.kept += tally.kept;
    }
    std::printf("%d objects and sections, %d alike when encoded from groups, %d when not changed\n",
                all.count, all.same, all.kept);
    return isFault ? 1 : 0;
}
