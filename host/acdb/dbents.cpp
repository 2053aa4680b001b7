#include "host/acdb/dbents.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"

static const resbuf *ownGroup(const AcDbEntity &entity, int code, QStringView subclass)
{
    const std::size_t begin = subclassBegin(entity.groups(), subclass);
    const resbuf *const found = findGroup(entity.groups(), code, begin);
    return found ? found : findGroup(entity.groups(), code);
}

QString AcDbText::textString() const
{
    const resbuf *const text = ownGroup(*this, 1, u"AcDbText");
    return text ? text->text() : QString();
}

void AcDbText::setTextString(const QString &text)
{
    setGroup(1, text, u"AcDbText");
}

AcGePoint3d AcDbText::position() const
{
    const resbuf *const point = ownGroup(*this, 10, u"AcDbText");
    return point ? point->point() : AcGePoint3d();
}

double AcDbText::height() const
{
    const resbuf *const height = ownGroup(*this, 40, u"AcDbText");
    return height ? height->real() : 0.0;
}

QString AcDbMText::contents() const
{
    QString text;
    const ResbufList &list = groups();
    for (std::size_t i = 0; i < list.size() && list[i].restype != 101 && list[i].restype != 1001; ++i) {
        if (list[i].restype == 1 || list[i].restype == 3)
            text += list[i].text();
    }
    return text;
}

QString AcDbBlockReference::blockName() const
{
    const resbuf *const name = ownGroup(*this, 2, u"AcDbBlockReference");
    return name ? name->text() : QString();
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const
{
    return database() ? database()->tableRecord(SymbolTable::block, blockName()) : AcDbObjectId();
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const
{
    const auto real = [this](int code, double fallback) {
        const resbuf *const group = ownGroup(*this, code, u"AcDbBlockReference");
        return group ? group->real() : fallback;
    };
    const resbuf *const at = ownGroup(*this, 10, u"AcDbBlockReference");
    const resbuf *const normal = findGroup(groups(), 210);
    const AcGePoint3d position = at ? at->point() : AcGePoint3d();
    return AcGeMatrix3d::planeToWorld(normal ? normal->point().asVector() : AcGeVector3d::kZAxis) *
           AcGeMatrix3d::translation(position.asVector()) *
           AcGeMatrix3d::rotation(real(50, 0.0) * kGePi / 180.0, AcGeVector3d::kZAxis) *
           AcGeMatrix3d::scaling(real(41, 1.0), real(42, 1.0), real(43, 1.0)) *
           AcGeMatrix3d::translation(-acdbBasePoint(blockTableRecord()).asVector());
}

QString AcDbAttribute::tag() const
{
    const resbuf *const tag = findGroup(groups(), 2);
    return tag ? tag->text() : QString();
}
