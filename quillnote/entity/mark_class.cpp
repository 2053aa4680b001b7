#include "quillnote/entity/mark_class.h"

#include "quillnote/entity/mark_record.h"

#include "host/base/assert.h"

static AcRxClass *registeredClass = nullptr;

QString applicationDescription(QStringView className)
{
    return QStringLiteral("\"%1|Product Desc: %2|Company: %3|WEB Address: %4\"")
        .arg(className, kProductName, kCompanyName, kWebAddress);
}

AcRxClass *markClass()
{
    return registeredClass;
}

void registerMarkClass()
{
    const QString name = kMarkClassName.toString();
    if (const AcRxClass *holder = acrxClassDictionary().at(name)) {
        if (holder != registeredClass)
            base::assertionFailed("Class mismatch", __FILE__, __LINE__);
        return;
    }
    auto added = std::make_unique<AcRxClass>(name, AcDbEntity::desc(), kMarkDxfName,
                                             [] { return QuillnoteObj3::forReading().release(); });
    added->setApplication({.drawingVersion = 31,
                           .maintenanceVersion = 81,
                           .proxyFlags = 0,
                           .description = applicationDescription(kMarkClassName)});
    registeredClass = acrxClassDictionary().add(std::move(added));
}

void unregisterMarkClass()
{
    if (registeredClass)
        deleteAcRxClass(registeredClass);
    registeredClass = nullptr;
}
