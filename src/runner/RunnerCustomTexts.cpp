#include <Tolvar/Varundo/Runner.h>

#include "RunnerLog.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <Tolvar/Varundo/DataManager.h>

#include <QFontMetrics>

namespace Tolvar::Varundo {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;

namespace {

// The host's element types: what a command wrote, and what was typed.
constexpr int writtenTextType = 1;
constexpr int typedTextType = 3;

void fitToText(CVideoOverlayText& element, const QString& text)
{
    const QFontMetrics metrics(element.font());
    element.setHeight(metrics.height());
    element.setWidth(metrics.horizontalAdvance(text));
}

} // namespace

/// Written lines have fixed colours; the data model's line colours are deliberately not theirs.
void Runner::writeLine(int line, const QString& text)
{
    CVideoOverlayText* const element = m_overlayManager ? m_overlayManager->createText() : nullptr;
    if (!element) {
        return;
    }
    element->setRow(line);
    element->setColumn(0);
    element->setVisible(true);
    element->setTextColor(Qt::white);
    element->setBackgroundColor(Qt::blue);
    element->setEnabled(true);
    element->setText(text);
    element->setType(writtenTextType);
    fitToText(*element, text);
    m_customTexts.append(element);
}

/// NUL characters are removed from a new text, and stay in the text of an element that exists. Deliberate:
/// controllers pad with them, and read such an update as "leave the width alone".
void Runner::writeTextOnCursorPosition(const QString& text)
{
    if (CVideoOverlayText* const present = customTextAt(m_dataManager->cursorPosition())) {
        present->setText(text);
        return;
    }
    CVideoOverlayText* const element = createTextAtCursor();
    if (!element) {
        return;
    }
    QString cleaned = text;
    cleaned.remove(QChar(QChar::Null));
    element->setText(cleaned);
    element->setType(writtenTextType);
    fitToText(*element, cleaned);
    m_customTexts.append(element);
}

/// The cursor does not advance: characters gather in the text at the cursor until the cursor is moved. Typed
/// texts have a type of their own and no size, on purpose.
void Runner::onPrintableCharReceived(char printableChar)
{
    const QString typed{QLatin1Char(printableChar)};
    CVideoOverlayText* const present = customTextAt(m_dataManager->cursorPosition());
    if (present) {
        const QString text = m_entryContinues ? present->text() + typed : typed;
        m_entryContinues = true;
        present->setText(text);
        return;
    }
    CVideoOverlayText* const element = createTextAtCursor();
    if (!element) {
        return;
    }
    element->setText(typed);
    element->setType(typedTextType);
    m_customTexts.append(element);
    m_entryContinues = true;
}

void Runner::clearCustomElements()
{
    const auto texts = m_customTexts; // each deletion takes its element off the list
    for (const auto& text : texts) {
        if (text) {
            m_overlayManager->deleteElementFromModel(text);
        }
    }
}

void Runner::clearEmptyTexts()
{
    const auto texts = m_customTexts; // each deletion takes its element off the list
    bool anyGone = false;
    for (const auto& text : texts) {
        if (!text) {
            anyGone = true; // deleted by the host without a word
        } else if (text->text().trimmed().isEmpty()) {
            m_overlayManager->deleteElementFromModel(text);
        }
    }
    if (anyGone) {
        m_customTexts.removeAll(nullptr);
    }
}

/// Null if the overlay manager makes none.
CVideoOverlayText* Runner::createTextAtCursor()
{
    CVideoOverlayText* const element = m_overlayManager ? m_overlayManager->createText() : nullptr;
    if (element) {
        const QPoint cursor = m_dataManager->cursorPosition();
        const ColorPair colors = m_dataManager->lineColorPair();
        element->setRow(cursor.y());
        element->setColumn(cursor.x());
        element->setVisible(true);
        element->setTextColor(colors.first);
        element->setBackgroundColor(colors.second);
        element->setEnabled(true);
    }
    return element;
}

/// The oldest text that stands there; null if none does.
CVideoOverlayText* Runner::customTextAt(const QPoint& position) const
{
    for (const auto& text : m_customTexts) {
        if (text && text->column() == position.x() && text->row() == position.y()) {
            return text;
        }
    }
    return nullptr;
}

void Runner::forgetCustomText(CVideoOverlayElement* element)
{
    if (auto* const text = qobject_cast<CVideoOverlayText*>(element)) {
        m_customTexts.removeOne(text);
    }
}

} // namespace Tolvar::Varundo
