// Documents that the module follows: each has a database reactor.
#pragma once

#include "host/acap/docman.h"
#include "host/acdb/dbreactor.h"

#include <memory>
#include <vector>

class QNK_DbReactor;

struct DocumentRecord {
    AcApDocument *document = nullptr;
    std::unique_ptr<QNK_DbReactor> reactor; ///< Null until the document's database is watched.
};

/// One record a document, in the order of their first appearance; one of them is current.
class DocumentRegistry
{
public:
    DocumentRegistry();
    ~DocumentRegistry();
    DocumentRegistry(const DocumentRegistry &) = delete;
    DocumentRegistry &operator=(const DocumentRegistry &) = delete;

    /// Makes the document's record current, adding one when there is none.
    void attach(AcApDocument *document);
    /// Forgets the document; the first record becomes current when its record was.
    void detach(const AcApDocument *document);
    DocumentRecord *current() const { return m_current; }
    /// The current record gets a reactor on its document's database when it has none.
    void ensureDatabaseReactor();

private:
    std::vector<std::unique_ptr<DocumentRecord>> m_records;
    DocumentRecord *m_current = nullptr;
};
