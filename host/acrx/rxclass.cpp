#include "host/acrx/rxclass.h"

#include "host/base/assert.h"

#include <algorithm>

bool AcRxObject::isKindOf(const AcRxClass *ancestor) const
{
    return isA()->isDerivedFrom(ancestor);
}

AcRxClass::AcRxClass(QString name, AcRxClass *parent, QByteArray dxfName, Factory factory)
    : m_name(std::move(name)), m_parent(parent), m_dxfName(std::move(dxfName)), m_factory(std::move(factory))
{
}

bool AcRxClass::isDerivedFrom(const AcRxClass *ancestor) const
{
    for (const AcRxClass *c = this; c; c = c->m_parent) {
        if (c == ancestor)
            return true;
    }
    return false;
}

void AcRxClass::setApplication(Application application)
{
    m_application = std::make_unique<Application>(std::move(application));
}

AcRxClass *AcRxClassDictionary::at(const QString &name) const
{
    const auto found = std::ranges::find(m_classes, name, [](const auto &c) { return c->name(); });
    return found == m_classes.end() ? nullptr : found->get();
}

AcRxClass *AcRxClassDictionary::atDxfName(const QByteArray &dxfName) const
{
    const auto found = std::ranges::find(m_classes, dxfName, [](const auto &c) { return c->dxfName(); });
    return dxfName.isEmpty() || found == m_classes.end() ? nullptr : found->get();
}

AcRxClass *AcRxClassDictionary::add(std::unique_ptr<AcRxClass> added)
{
    if (at(added->name()))
        return nullptr;
    ++m_generation;
    m_classes.push_back(std::move(added));
    return m_classes.back().get();
}

void AcRxClassDictionary::remove(AcRxClass *doomed)
{
    const auto found = std::ranges::find(m_classes, doomed, &std::unique_ptr<AcRxClass>::get);
    if (found == m_classes.end())
        return;
    for (AcRxClassObserver *observer : m_observers)
        observer->classToBeDeleted(doomed);
    m_classes.erase(found);
    ++m_generation;
}

AcRxClassDictionary &acrxClassDictionary()
{
    static AcRxClassDictionary dictionary;
    return dictionary;
}

AcRxClass *newAcRxClass(const QString &name, AcRxClass *parent, const QByteArray &dxfName,
                        AcRxClass::Factory factory)
{
    AcRxClass *const added =
        acrxClassDictionary().add(std::make_unique<AcRxClass>(name, parent, dxfName, std::move(factory)));
    QUILL_ASSERT(added != nullptr);
    return added;
}

void deleteAcRxClass(AcRxClass *doomed)
{
    acrxClassDictionary().remove(doomed);
}
