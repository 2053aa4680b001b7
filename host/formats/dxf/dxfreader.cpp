#include "host/formats/dxf/dxfreader.h"

#include "host/base/host_text.h"
#include "host/formats/dxf/dxfidentity.h"
#include "host/formats/dxf/dxfmapper.h"

using dxf::RepairLog;

/// The loader settles handles that occur twice; the source remembers whose bytes hold another handle.
static void noteRenumbered(const AcDbDatabase &database, DxfSource &source)
{
    for (std::uint32_t index = 1; index < database.stubCount(); ++index) {
        const AcDbStub &stub = *database.stub(index);
        if (!stub.has(AcDbStub::kHasSource) || stub.has(AcDbStub::kNoFileHandle))
            continue;
        if (dxf::findHandleGroup(source, source.bytes(stub)).handle != stub.handle)
            source.editLayout().renumbered.push_back(index);
    }
}

enum class MapResult { mapped, noSection, stopped };

template <class Scanner>
static MapResult mapWith(dxf::Mapper<Scanner> mapper)
{
    const bool mapped = mapper.run();
    return mapper.isStopped() ? MapResult::stopped : mapped ? MapResult::mapped : MapResult::noSection;
}

static MapResult map(AcDbLoader &loader, DxfSource &source, RepairLog &log, const base::Progress &progress)
{
    const std::string_view groups = source.bytes().substr(source.contentBegin());
    source.learnStyle(groups);
    if (source.form() == DrawingForm::dxfBinary)
        return mapWith(
            dxf::Mapper(loader, source, log, dxf::BinaryScanner(groups, source.shortCodes()), progress));
    return mapWith(dxf::Mapper(loader, source, log, dxf::TextScanner(groups, source.lineEnd()), progress));
}

base::Result<std::unique_ptr<AcDbDatabase>, DxfError> readDxf(base::FileBytes bytes, const QString &name,
                                                              const base::Progress &progress)
{
    constexpr std::size_t kUsualObjectSize = 220;
    if (bytes.size() == 0)
        return base::Failure{DxfError{name, -1, Host::tr("the file is empty")}};
    auto database = std::make_unique<AcDbDatabase>();
    auto owned = std::make_unique<DxfSource>(std::move(bytes));
    DxfSource &source = *owned;
    AcDbLoader loader(*database, std::move(owned));
    loader.reserve(source.bytes().size() / kUsualObjectSize);
    RepairLog log(source);
    const MapResult result = map(loader, source, log, progress);
    if (result == MapResult::stopped)
        return base::Failure{DxfError{name, -1, Host::tr("opening was stopped")}};
    if (result == MapResult::noSection)
        return base::Failure{DxfError{name, log.place(source.contentBegin()),
                                      Host::tr("this is no DXF drawing, it has no section"),
                                      source.form() == DrawingForm::dxfBinary}};
    for (const QString &sentence : log.sentences())
        loader.addRepair(sentence);
    const qsizetype repairsBefore = database->repairs().size();
    loader.finish();
    if (database->repairs().size() != repairsBefore)
        noteRenumbered(*database, source);
    return database;
}

base::Result<std::unique_ptr<AcDbDatabase>, DxfError> readDxf(const QString &path,
                                                              const base::Progress &progress)
{
    auto bytes = base::readFileBytes(path);
    if (!bytes)
        return base::Failure{DxfError{QString(), -1, bytes.error().text()}};
    return readDxf(*std::move(bytes), path, progress);
}
