#include "quillnote/frame/reactors.h"

#include "quillnote/entity/mark_state.h"
#include "quillnote/exchange/synchronisation.h"
#include "quillnote/frame/document_registry.h"
#include "quillnote/review/review_palette.h"

#include "host/aced/edcommands.h"

#include <utility>

/// Keeps the registry in step with the documents.
class QNK2_DocReactor : public AcApDocManagerReactor
{
public:
    explicit QNK2_DocReactor(DocumentRegistry &registry) : m_registry(registry)
    {
        acDocManager()->addReactor(this);
    }
    ~QNK2_DocReactor() override { acDocManager()->removeReactor(this); }

    void documentCreated(AcApDocument *document) override
    {
        m_registry.attach(document);
        m_registry.ensureDatabaseReactor();
    }
    void documentToBeDestroyed(AcApDocument *document) override
    {
        m_registry.detach(document);
        leaveDrawing(*document->database());
    }
    void documentToBeActivated(AcApDocument *document) override { m_registry.attach(document); }
    void documentActivated(AcApDocument *document) override
    {
        m_registry.ensureDatabaseReactor();
        shareDrawing(*document->database());
    }

private:
    DocumentRegistry &m_registry;
};

/// Keeps the review palette in step with the documents.
class QNNK_DocumentReactor : public AcApDocManagerReactor
{
public:
    QNNK_DocumentReactor() { acDocManager()->addReactor(this); }
    ~QNNK_DocumentReactor() override { acDocManager()->removeReactor(this); }

    void documentActivated(AcApDocument *) override { refreshReviewPalette(); }
    void documentToBeDeactivated(AcApDocument *document) override { storeReviewInput(*document, false); }
    void documentToBeDestroyed(AcApDocument *document) override { forgetReviewed(*document); }
    void inputWanted(AcApDocument *document, bool forSaving) override
    {
        storeReviewInput(*document, forSaving);
        if (forSaving)
            keepExchanged(*document->database());
    }
};

/// Sees commands begin and end.
class QNK2_CommandReactor : public AcEditorReactor
{
public:
    explicit QNK2_CommandReactor(DocumentRegistry &registry) : m_registry(registry)
    {
        acedEditor()->addReactor(this);
    }
    ~QNK2_CommandReactor() override { acedEditor()->removeReactor(this); }

    void commandWillStart(const QString &) override { m_registry.ensureDatabaseReactor(); }
    void commandEnded(const QString &) override
    {
        markDrawingState().commandEnded();
        refreshReviewPalette();
    }
    void commandCancelled(const QString &) override { refreshReviewPalette(); }

private:
    DocumentRegistry &m_registry;
};

/// Deleted from the last member to the first.
struct Reactors {
    DocumentRegistry registry;
    QNK2_DocReactor documents{registry};
    std::unique_ptr<QNNK_DocumentReactor> palette;
    std::unique_ptr<QNK2_CommandReactor> commands;
};

static std::unique_ptr<Reactors> s_reactors;

void createDocumentRegistry()
{
    s_reactors = std::make_unique<Reactors>();
    if (acDocManager()->curDocument())
        s_reactors->registry.attach(acDocManager()->curDocument());
}

void createReactors()
{
    s_reactors->palette = std::make_unique<QNNK_DocumentReactor>();
    s_reactors->commands = std::make_unique<QNK2_CommandReactor>(s_reactors->registry);
    s_reactors->registry.ensureDatabaseReactor();
}

void deleteReactors()
{
    s_reactors.reset();
}
