#include <Tolvar/Varundo/Runner.h>

#include "HostMistakes.h"
#include "InTurn.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <Tolvar/Varundo/DataManager.h>

#include <QFontMetrics>

#include <algorithm>
#include <utility>

namespace Tolvar::Varundo {

// Whatever is asked of the overlay here may run an event loop, delete elements, load another profile or
// destroy the Runner before it returns. What is used afterwards is looked at first.

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
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
    deleteCustomTexts([](const CVideoOverlayText&) { return true; });
}

void Runner::clearEmptyTexts()
{
    deleteCustomTexts([](const CVideoOverlayText& text) { return text.text().trimmed().isEmpty(); });
}

/// Each deletion takes its element off the list; while they go on, its place is kept, so that neither the
/// next one's has to be searched for nor all behind it have to move. A controller may have made a hundred
/// thousand.
void Runner::deleteCustomTexts(bool (*isToGo)(const CVideoOverlayText& text))
{
    refuseWhileElementsAreRead(m_readsElements);
    const QPointer<Runner> self(this);
    const auto texts = m_customTexts;
    const bool withinAnother = std::exchange(m_keepPlaces, true);
    bool anyGone = false;
    for (const auto& text : texts) {
        anyGone = anyGone || !text; // deleted by the host without a word
        // One that has gone from the list meanwhile was deleted by somebody else.
        if (text && isToGo(*text) && self && text && m_overlayManager && placeOfCustomText(text) >= 0) {
            anyGone = true;
            m_overlayManager->deleteElementFromModel(text);
        }
        if (!self) {
            return;
        }
    }
    m_keepPlaces = withinAnother;
    if (anyGone && !withinAnother) {
        m_customTexts.removeAll(nullptr);
    }
}

/// -1 if it is not on the list. Searched from where the last one was found, since they are asked for in
/// order.
int Runner::placeOfCustomText(const CVideoOverlayText* text)
{
    const auto searched = [&](int from, int to) {
        const auto begin = m_customTexts.constBegin();
        const auto found = std::find(begin + from, begin + to, text);
        return found == begin + to ? -1 : static_cast<int>(found - begin);
    };
    const int hint = qMin(m_lastPlace, m_customTexts.size());
    const int ahead = searched(hint, m_customTexts.size());
    const int place = ahead >= 0 ? ahead : searched(0, hint);
    m_lastPlace = qMax(place, 0);
    return place;
}

/// Whether the overlay manager made one. A text that goes while it is being made is not kept; one whose
/// Runner goes is finished all the same, as the controller wanted it.
bool Runner::makeText(const NewText& wanted)
{
    const QPointer<Runner> self(this);
    const QPointer<CVideoOverlayManager> manager = m_overlayManager;
    if (!manager) {
        return false;
    }
    CVideoOverlayText* const made = manager->createText();
    refuseEndOfManager(manager);
    const QPointer<CVideoOverlayText> element = made;
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
        CVideoOverlayText* const candidate = text;
        if (candidate && candidate->column() == position.x() && text && candidate->row() == position.y()) {
            return text; // null if looking at it has deleted it
        }
    }
    return nullptr;
}

void Runner::forgetCustomText(CVideoOverlayElement* element)
{
    refuseWhileElementsAreRead(m_readsElements);
    auto* const text = qobject_cast<CVideoOverlayText*>(element);
    if (!text) {
        return;
    }
    m_unfinishedTexts.removeOne(text);
    const int place = placeOfCustomText(text);
    if (place >= 0 && m_keepPlaces) {
        m_customTexts[place] = nullptr;
    } else if (place >= 0) {
        m_customTexts.removeAt(place);
    }
}

} // namespace Tolvar::Varundo
