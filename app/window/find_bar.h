// The bar that finds text in the drawing and steps through what it found.
#pragma once

#include "app/window/drawing_search.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace window
{

class WindowFrontEnd;

class FindBar : public QWidget
{
    Q_OBJECT

public:
    explicit FindBar(WindowFrontEnd &front, QWidget *parent = nullptr);

    /// Shows the bar with the keyboard in it.
    void open();
    /// Looks for the text and goes to the first place.
    void search(const QString &wanted);
    /// Goes to the next place (1) or the one before (-1), round and round: the view zooms to it and it joins
    /// what is selected.
    void step(int by);

    /// Drawings were opened or closed: what was found is not good any more.
    void forget();

    std::size_t count() const { return m_found.size(); }
    QString status() const;

Q_SIGNALS:
    void closed();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void searchNow(const QString &wanted);
    void goTo(std::size_t place);
    void leave();

    WindowFrontEnd &m_front;
    QLineEdit *m_edit = nullptr;
    QLabel *m_status = nullptr;
    QToolButton *m_previous = nullptr;
    QToolButton *m_next = nullptr;
    QString m_wanted;
    const AcDbDatabase *m_searched = nullptr; ///< Null: none.
    std::uint64_t m_changeCount = 0;
    std::vector<FoundText> m_found;
    std::size_t m_at = 0;
    AcDbObjectId m_picked; ///< That the bar itself selected.
};

} // namespace window
