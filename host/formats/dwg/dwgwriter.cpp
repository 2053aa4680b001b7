#include "host/formats/dwg/dwgwriter.h"

#include "host/base/backup_file.h"
#include "host/base/file_bytes.h"
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgreader.h"
#include "host/formats/dwg/dwgreread.h"
#include "host/formats/dwg/dwgsaveplan.h"

namespace
{

/// What is wrong with the drawing that a written file holds; empty when every object of the database is in
/// it, in its place.
QString faultOf(const AcDbDatabase &database, base::FileBytes bytes, const dwg::SavePlan &plan)
{
    const auto reread = readDwg(std::move(bytes), QStringLiteral("it"));
    if (!reread)
        return reread.error();
    for (const QString &repair : (*reread)->repairs()) {
        if (!database.repairs().contains(repair))
            return repair;
    }
    for (std::uint32_t index = 1; index < database.stubCount(); ++index) {
        const AcDbStub &stub = *database.stub(index);
        if (!plan.isLive(stub))
            continue;
        const AcDbStub *const found = (*reread)->getAcDbObjectId({stub.handle}).stub();
        const auto ownerOf = [](const AcDbStub &each) {
            return each.owner == 0 ? 0 : each.database->stub(each.owner)->handle;
        };
        const bool isSame = found && acdbKindName(found->kind) == acdbKindName(stub.kind) &&
                            ownerOf(*found) == ownerOf(stub) &&
                            found->has(AcDbStub::kSubEntity) == stub.has(AcDbStub::kSubEntity);
        if (!isSame)
            return Host::tr("%1 %2 is not where it should be")
                .arg(QString::fromLatin1(acdbKindName(stub.kind)),
                     QString::number(stub.handle, 16).toUpper());
    }
    return {};
}

/// The error is a sentence's end.
base::Result<void, QString> checkWritten(const QString &written, const AcDbDatabase &database,
                                         const dwg::SavePlan &plan)
{
    auto file = base::readFileBytes(written);
    if (!file)
        return base::Failure{file.error().text()};
    if (const auto same = dwg::compareWritten(file->view(), plan.contents()); !same)
        return base::Failure{same.error()};
    if (const QString fault = faultOf(database, *std::move(file), plan); !fault.isEmpty())
        return base::Failure{fault};
    return {};
}

base::Result<base::WrittenFile, QString> replace(base::AtomicFileWriter &file, const QString &path,
                                                 const base::MayReplace &mayReplace)
{
    auto backup = base::BackupFile::take(path);
    if (!backup)
        return base::Failure{backup.error().text()};
    auto done = file.commit(mayReplace);
    if (!done)
        return base::Failure{done.error().text()};
    if (const auto kept = backup->keep(); !kept)
        done->notKept.append(Host::tr("the file before it as a backup (%1)").arg(kept.error().text()));
    return *std::move(done);
}

class SavedAsDwg : public DrawingImage
{
public:
    explicit SavedAsDwg(std::unique_ptr<dwg::SavePlan> plan) : m_plan(std::move(plan)) {}

    QString suffix() const override { return QStringLiteral("dwg"); }
    base::Result<void, QString> write(const QString &path, const base::Progress &) const override
    {
        const auto packed = dwg::packFile(m_plan->contents());
        if (!packed)
            return base::Failure{packed.error()};
        if (const auto written = base::writeFileAtomically(path, *packed); !written)
            return base::Failure{written.error().text()};
        return {};
    }

private:
    std::unique_ptr<dwg::SavePlan> m_plan;
};

} // namespace

std::unique_ptr<DrawingImage> dwgImage(const AcDbDatabase &database, const DwgSource &source)
{
    auto plan = dwg::SavePlan::make(database, source);
    return plan ? std::make_unique<SavedAsDwg>(*std::move(plan)) : nullptr;
}

base::Result<base::WrittenFile, QString> writeDwg(const AcDbDatabase &database, const DwgSource &source,
                                                  const QString &path, const base::Progress &progress,
                                                  const base::MayReplace &mayReplace)
{
    const auto failed = [&path](const QString &reason) {
        return base::Failure<QString>{path + QStringLiteral(": ") + reason};
    };
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{file.error().text()};
    if (!database.hasChanges()) {
        const std::string_view bytes = source.bytes();
        file->write(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
        return replace(*file, path, mayReplace);
    }
    const auto plan = dwg::SavePlan::make(database, source);
    if (!plan)
        return failed(plan.error());
    const auto stopped = [&] { return failed(Host::tr("saving was stopped")); };
    if (!base::report(progress, 0.2))
        return stopped();
    {
        const auto packed = dwg::packFile((*plan)->contents());
        if (!packed)
            return failed(packed.error());
        file->write(*packed);
    }
    const auto written = file->finishWriting();
    if (!written)
        return base::Failure{written.error().text()};
    if (!base::report(progress, 0.6))
        return stopped();
    if (const auto good = checkWritten(*written, database, **plan); !good)
        return failed(Host::tr("what was written cannot be read again (%1); the file stays as it was")
                          .arg(good.error()));
    if (!base::report(progress, 1.0))
        return stopped();
    return replace(*file, path, mayReplace);
}
