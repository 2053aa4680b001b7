// Run-time classes: who derives from whom, the class's name in DXF files, and how to make one.
//
// A class is known to the process from the moment it enters the class dictionary until it is
// deleted from it. Objects of a class that is not in the dictionary stay as the bytes they came in.
#pragma once

#include "host/acrx/rxobject.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class AcRxClass
{
public:
    using Factory = std::function<AcRxObject *()>;

    /// What a drawing's class record says of a custom class.
    struct Application {
        int drawingVersion = 0; ///< Host format number that the class appeared in.
        int maintenanceVersion = 0;
        int proxyFlags = 0;  ///< Operations allowed while the class is missing.
        QString description; ///< "Name|Product Desc: ...|Company: ...|WEB Address: ..."
    };

    /// `dxfName` is empty for classes that never stand in a file by their own name.
    AcRxClass(QString name, AcRxClass *parent, QByteArray dxfName, Factory factory);

    const QString &name() const { return m_name; }
    const QByteArray &dxfName() const { return m_dxfName; }
    bool isDerivedFrom(const AcRxClass *ancestor) const;
    bool canCreate() const { return bool(m_factory); }
    /// A new object, owned by the caller; null when the class cannot be made.
    AcRxObject *create() const { return m_factory ? m_factory() : nullptr; }

    /// Custom classes carry application data; the host's own do not.
    const Application *application() const { return m_application.get(); }
    void setApplication(Application application);

private:
    QString m_name;
    AcRxClass *m_parent;
    QByteArray m_dxfName;
    Factory m_factory;
    std::unique_ptr<Application> m_application;
};

/// Hears of classes that leave; registered by the database layer, which then turns their objects
/// back into bytes.
class AcRxClassObserver
{
public:
    virtual ~AcRxClassObserver() = default;
    virtual void classToBeDeleted(AcRxClass *doomed) = 0;
};

/// The class dictionary of the process. Names are compared as they are written.
class AcRxClassDictionary
{
public:
    AcRxClass *at(const QString &name) const;
    AcRxClass *atDxfName(const QByteArray &dxfName) const;
    /// Takes the class; null when the name is taken.
    AcRxClass *add(std::unique_ptr<AcRxClass> added);
    /// Tells the observers, then deletes the class. Unknown classes are ignored.
    void remove(AcRxClass *doomed);
    void addObserver(AcRxClassObserver *observer) { m_observers.push_back(observer); }
    /// Grows with every class that comes or goes: what was looked up before may be wrong.
    unsigned generation() const { return m_generation; }

private:
    unsigned m_generation = 1;
    std::vector<std::unique_ptr<AcRxClass>> m_classes;
    std::vector<AcRxClassObserver *> m_observers;
};

AcRxClassDictionary &acrxClassDictionary();

/// Makes and registers a class of the host itself on first use; for `T::desc()` functions.
AcRxClass *newAcRxClass(const QString &name, AcRxClass *parent, const QByteArray &dxfName = {},
                        AcRxClass::Factory factory = {});
void deleteAcRxClass(AcRxClass *doomed);
