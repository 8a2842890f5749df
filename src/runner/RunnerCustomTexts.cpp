#include <Tolvar/Varundo/Runner.h>

#include "InTurn.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <Tolvar/Varundo/DataManager.h>

#include <QFontMetrics>

#include <utility>

namespace Tolvar::Varundo {

// Whatever is asked of the overlay here may run an event loop, delete elements, load another profile or
// destroy the Runner before it returns. What is used afterwards is looked at first.

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;

namespace {

// The host's element types: what a command wrote, and what was typed.
constexpr int writtenTextType = 1;
constexpr int typedTextType = 3;

} // namespace

struct Runner::NewText
{
    QPoint position; // x the column, y the row
    ColorPair colors;
    QString text;
    int type;
};

/// Written lines have fixed colours; the data model's line colours are deliberately not theirs.
void Runner::writeLine(int line, const QString& text)
{
    makeText({QPoint(0, line), {Qt::white, Qt::blue}, text, writtenTextType});
}

/// NUL characters are removed from a new text, and stay in the text of an element that exists. Deliberate:
/// controllers pad with them, and read such an update as "leave the width alone".
void Runner::writeTextOnCursorPosition(const QString& text)
{
    const QPointer<Runner> self(this);
    const QPoint cursor = m_dataManager->cursorPosition();
    CVideoOverlayText* const present = customTextAt(cursor);
    if (present) {
        present->setText(text);
    } else if (self) {
        makeText({cursor, m_dataManager->lineColorPair(), QString(text).remove(QChar(QChar::Null)),
                  writtenTextType});
    }
}

/// The cursor does not advance: characters gather in the text at the cursor until the cursor is moved. Typed
/// texts have a type of their own and no size, on purpose.
void Runner::onPrintableCharReceived(char printableChar)
{
    const QPointer<Runner> self(this);
    const QString typed{QLatin1Char(printableChar)};
    const QPoint cursor = m_dataManager->cursorPosition();
    const QPointer<CVideoOverlayText> present = customTextAt(cursor);
    if (!self) {
        return;
    }
    if (present) {
        const QString text = std::exchange(m_entryContinues, true) ? present->text() + typed : typed;
        if (present) {
            present->setText(text);
        }
    } else if (makeText({cursor, m_dataManager->lineColorPair(), typed, typedTextType}) && self) {
        m_entryContinues = true;
    }
}

void Runner::clearCustomElements()
{
    const QPointer<Runner> self(this);
    const auto texts = m_customTexts; // each deletion takes its element off the list
    for (const auto& text : texts) {
        if (self && text) {
            deleteCustomText(text);
        }
    }
}

void Runner::clearEmptyTexts()
{
    const QPointer<Runner> self(this);
    const auto texts = m_customTexts; // each deletion takes its element off the list
    bool anyGone = false;
    for (const auto& text : texts) {
        if (!text) {
            anyGone = true; // deleted by the host without a word
        } else if (text->text().trimmed().isEmpty() && self && text) {
            deleteCustomText(text);
        }
        if (!self) {
            return;
        }
    }
    if (anyGone) {
        m_customTexts.removeAll(nullptr);
    }
}

/// Whether the overlay manager made one. A text that goes while it is being made is not kept; one whose
/// Runner goes is finished all the same, as the controller wanted it.
bool Runner::makeText(const NewText& wanted)
{
    const QPointer<Runner> self(this);
    const QPointer<CVideoOverlayText> element = m_overlayManager ? m_overlayManager->createText() : nullptr;
    if (!element) {
        return false;
    }
    if (self) {
        m_unfinishedTexts.append(element);
    }
    const auto lives = [&element] {
        return !element.isNull();
    };
    inTurn(
        lives, [&] { element->setRow(wanted.position.y()); },
        [&] { element->setColumn(wanted.position.x()); }, [&] { element->setVisible(true); },
        [&] { element->setTextColor(wanted.colors.first); },
        [&] { element->setBackgroundColor(wanted.colors.second); }, [&] { element->setEnabled(true); },
        [&] { element->setText(wanted.text); }, [&] { element->setType(wanted.type); });
    if (wanted.type == writtenTextType && element) {
        const QFontMetrics metrics(element->font());
        inTurn(
            lives, [&] { element->setHeight(metrics.height()); },
            [&] { element->setWidth(metrics.horizontalAdvance(wanted.text)); });
    }
    if (self && m_unfinishedTexts.removeOne(element) && element) {
        m_customTexts.append(element);
    }
    return true;
}

/// The oldest text that stands there; null if none does.
CVideoOverlayText* Runner::customTextAt(const QPoint& position) const
{
    const auto texts = m_customTexts;
    for (const auto& text : texts) {
        if (text && text->column() == position.x() && text && text->row() == position.y()) {
            return text;
        }
    }
    return nullptr;
}

/// One that has gone from the list meanwhile was deleted by somebody else.
void Runner::deleteCustomText(CVideoOverlayText* text)
{
    if (m_overlayManager && m_customTexts.contains(text)) {
        m_overlayManager->deleteElementFromModel(text);
    }
}

void Runner::forgetCustomText(CVideoOverlayElement* element)
{
    if (auto* const text = qobject_cast<CVideoOverlayText*>(element)) {
        m_customTexts.removeOne(text);
        m_unfinishedTexts.removeOne(text);
    }
}

} // namespace Tolvar::Varundo
