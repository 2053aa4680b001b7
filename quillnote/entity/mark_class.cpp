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

void registerEntityClass(AcRxClass *&registered, QStringView name, const char *dxfName,
                         AcRxClass::Factory factory)
{
    if (const AcRxClass *holder = acrxClassDictionary().at(name.toString())) {
        if (holder != registered)
            base::assertionFailed("Class mismatch", __FILE__, __LINE__);
        return;
    }
    auto added =
        std::make_unique<AcRxClass>(name.toString(), AcDbEntity::desc(), dxfName, std::move(factory));
    added->setApplication({.drawingVersion = 31,
                           .maintenanceVersion = 81,
                           .proxyFlags = 0,
                           .description = applicationDescription(name)});
    registered = acrxClassDictionary().add(std::move(added));
}

void unregisterEntityClass(AcRxClass *&registered)
{
    if (registered)
        deleteAcRxClass(registered);
    registered = nullptr;
}

void registerMarkClass()
{
    registerEntityClass(registeredClass, kMarkClassName, kMarkDxfName,
                        [] { return QuillnoteObj3::forReading().release(); });
}

void unregisterMarkClass()
{
    unregisterEntityClass(registeredClass);
}
