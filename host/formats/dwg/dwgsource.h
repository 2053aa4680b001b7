// DwgSource: the bytes of an opened DWG file, and how its objects decode.
//
// `begin` and `size` of a stub are bytes of the object data: of the file up to AC1015, of the section
// AcDb:AcDbObjects later. Nothing changes after opening, so that any thread may decode.
#pragma once

#include "host/acdb/dbfieldsource.h"
#include "host/base/file_bytes.h"
#include "host/formats/dwg/dwgcontainer.h"
#include "host/formats/dwg/dwgdecoder.h"

/// A class record of the file; objects name it by its place.
struct DwgClass {
    int number = 0;
    int proxyFlags = 0;
    QString application, className;
    QByteArray dxfName;
    bool wasProxy = false;
    bool isEntity = false;
    int instances = 0; ///< Since AC1018.
    int version = 0, maintenance = 0;

    friend bool operator==(const DwgClass &, const DwgClass &) = default;
};

class DwgSource : public DrawingSource, public AcDbFieldSource
{
public:
    DwgSource(base::FileBytes bytes, dwg::Container container);

    DrawingForm form() const override { return DrawingForm::dwg; }
    DrawingVersion version() const override { return m_facts.version; }
    std::string_view bytes() const override { return m_bytes.view(); }
    QString notUnderstood() const override { return m_notUnderstood; }
    ResbufList read(const AcDbStub &stub) const override;
    std::unique_ptr<AcDbDwgFiler> fieldsOf(const AcDbStub &stub) const override;

    const dwg::FileFacts &facts() const { return m_facts; }
    const std::vector<DwgClass> &classes() const { return m_classes; }
    /// An object's record with what follows it; empty past the end.
    std::string_view recordAt(std::uint64_t offset) const;
    std::string_view record(const AcDbStub &stub) const;
    /// The class that a type names; null for those with a number of their own.
    const DwgClass *classOf(int type) const;
    const DwgClass *classNamed(const QByteArray &dxfName) const;
    const dwg::Container &container() const { return m_container; }
    const dwg::Neighbours &neighbours() const { return m_neighbours; }
    /// What decoding an object of the file needs to know.
    dwg::ObjectPlace placeOf(const AcDbStub &stub) const;
    /// The object's row; null when it has no table.
    const dwg::Kind *kindOf(int type) const;

    // For the reader.
    dwg::Container &container() { return m_container; }
    dwg::Neighbours &editNeighbours() { return m_neighbours; }
    std::vector<DwgClass> &editClasses() { return m_classes; }
    void setNotUnderstood(const QString &kinds) { m_notUnderstood = kinds; }

private:
    base::FileBytes m_bytes;
    dwg::Container m_container;
    dwg::FileFacts m_facts;
    std::vector<DwgClass> m_classes;
    dwg::Neighbours m_neighbours;
    QString m_notUnderstood;
};

/// "LAYER": the name of the table whose head has that type.
QString dwgTableName(int controlType);
