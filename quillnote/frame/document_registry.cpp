#include "quillnote/frame/document_registry.h"

#include "quillnote/frame/database_reactor.h"

#include <algorithm>

DocumentRegistry::DocumentRegistry() = default;
DocumentRegistry::~DocumentRegistry() = default;

void DocumentRegistry::attach(AcApDocument *document)
{
    const auto known =
        std::ranges::find(m_records, document, [](const auto &record) { return record->document; });
    if (known != m_records.end()) {
        m_current = known->get();
        return;
    }
    m_records.push_back(std::make_unique<DocumentRecord>());
    m_current = m_records.back().get();
    m_current->document = document;
}

void DocumentRegistry::detach(const AcApDocument *document)
{
    const bool wasCurrent = m_current && m_current->document == document;
    std::erase_if(m_records, [document](const auto &record) { return record->document == document; });
    if (wasCurrent)
        m_current = m_records.empty() ? nullptr : m_records.front().get();
}

void DocumentRegistry::ensureDatabaseReactor()
{
    if (m_current && !m_current->reactor)
        m_current->reactor = std::make_unique<QNK_DbReactor>(*m_current->document->database());
}
