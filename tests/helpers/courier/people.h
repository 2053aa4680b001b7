// Several people who review one drawing, in one process: each has his own file of the drawing, his own
// synchronisation folder, his own courier, and a connection that fails as a test wants it.
#pragma once

#include "helpers/courier/courier.h"
#include "helpers/courier/folder_carrier.h"
#include "quillnote/exchange/synchronisation.h"

#include "host/acap/docman.h"
#include "tests/quillnote/authoring/authoring_fixture.h"
#include "tests/support/files.h"

#include <functional>
#include <memory>
#include <random>

namespace tests
{

/// A courier ends here as if it had been killed.
struct Killed {
};

/// What a connection does to a carrier: it is away, keeps messages back, repeats and reorders them, and ends
/// the courier between two steps.
class BadConnection : public courier::Carrier
{
public:
    BadConnection(std::unique_ptr<courier::Carrier> carrier, std::mt19937 &random)
        : m_carrier(std::move(carrier)), m_random(random)
    {
    }
    base::Result<std::vector<courier::Message>, QString> receive(const QString &drawing) override;
    base::Result<courier::Stamp, QString> publish(const QString &drawing, const QString &id,
                                                  const QByteArray &bytes, qint64 above) override;
    std::optional<courier::Stamp> published(const QString &drawing, const QString &id) override
    {
        return m_carrier->published(drawing, id);
    }
    base::Result<std::vector<courier::Person>, QString> keepHouse(const QString &drawing) override;
    void leave(const QString &drawing) override { m_carrier->leave(drawing); }

    bool isAway = false;
    bool isBad = true;

private:
    bool chance(int percent) { return isBad && int(m_random() % 100) < percent; }

    std::unique_ptr<courier::Carrier> m_carrier;
    std::mt19937 &m_random;
    std::vector<courier::Message> m_delivered; ///< To be repeated.
};

using OpenCarrier = std::function<std::unique_ptr<courier::Carrier>(const courier::Ledger &,
                                                                    const QString &name, courier::Knowledge)>;
OpenCarrier openFolder(const QString &share);

class Reviewer
{
public:
    /// `home` is his; the drawing lies in it as "plan.dxf".
    Reviewer(QString home, OpenCarrier openCarrier, QString name, std::mt19937 &random);

    ~Reviewer();
    Reviewer(const Reviewer &) = delete;
    Reviewer &operator=(const Reviewer &) = delete;

    /// Everything that follows happens in his program.
    void sit();
    AcDbDatabase &database() const { return *m_document->database(); }
    void open();
    void save();
    /// The program is gone, with what was not saved.
    void kill();
    void switchOn();

    /// One round of his courier; a killed one is started again.
    bool carry();
    /// The program takes the next file that arrived; false when there is none.
    bool take();
    BadConnection &connection() { return *m_connection; }
    const QString &name() const { return m_name; }

private:
    void startCourier();

    QString m_home, m_name;
    OpenCarrier m_openCarrier;
    std::mt19937 &m_random;
    AcApDocument *m_document = nullptr;
    SynchronisationState m_state;
    std::unique_ptr<courier::Ledger> m_ledger;
    std::unique_ptr<BadConnection> m_connection;
    std::unique_ptr<courier::Courier> m_courier;
    static Reviewer *s_sitting;
};

/// The marks of a drawing, each as its layout, its GUID and what it says; in the order of the GUIDs.
QStringList marksOf(const AcDbDatabase &database);

} // namespace tests
