#ifndef TOLVAR_VARUNDO_TEST_RECORDINGOVERLAYMANAGER_H
#define TOLVAR_VARUNDO_TEST_RECORDINGOVERLAYMANAGER_H

#include "CallLog.h"
#include "RecordingElement.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>

#include <QList>
#include <QMutex>

#include <algorithm>

namespace Tolvar::Varundo::Test {

/// A host's overlay manager that the test drives: it holds the elements that the test adds, makes recording
/// texts ("custom1", "custom2", ...), and deletes an element at once, as the harshest host may.
class RecordingOverlayManager : public Mavril::VideoOverlay::CVideoOverlayManager
{
public:
    using Element = Mavril::VideoOverlay::CVideoOverlayElement;
    using Text = Mavril::VideoOverlay::CVideoOverlayText;

    explicit RecordingOverlayManager(CallLog& log)
        : m_log(log)
    {}

    Mavril::VideoOverlay::CVideoOverlayProfile* currentProfile() const override
    {
        // Nobody looks into a profile; that there is one is all that counts.
        return hasProfile ? reinterpret_cast<Mavril::VideoOverlay::CVideoOverlayProfile*>(&m_profile)
                          : nullptr;
    }
    QMutex* mutex() const override { return hasMutex ? &m_mutex : nullptr; }
    QList<Element*> getElementList() const override
    {
        if (whenListed) {
            whenListed();
        }
        return elements;
    }
    Text* createText() override
    {
        if (!makesTexts) {
            return nullptr;
        }
        auto* const text = new RecordingText(QStringLiteral("custom%1").arg(++m_createdSoFar), m_log, this);
        if (!createdFont.family().isEmpty()) {
            text->CVideoOverlayText::setFont(createdFont);
        }
        created.append(text);
        if (whenCreated) {
            whenCreated(*text);
        }
        return text;
    }
    void deleteElementFromModel(Element* element) override
    {
        m_log.add(QString(), "delete", element ? element->objectName() : QStringLiteral("null"));
        if (announcesRemoval) {
            emit beforeRemoveElement(element);
        }
        if (whenDeleting) {
            whenDeleting();
        }
        if (deletes) {
            forget(element);
            delete element;
        }
    }

    /// What the texts that were created, and not deleted yet, show.
    [[nodiscard]] QStringList createdTexts() const
    {
        QStringList texts;
        for (const RecordingText* const text : created) {
            texts.append(text->text());
        }
        return texts;
    }

    /// An element goes away without a word, as no host should do it.
    void drop(Element* element)
    {
        forget(element);
        delete element;
    }

    QList<Element*> elements;      ///< of the profile; owned by whoever made them
    QList<RecordingText*> created; ///< by createText(), and not deleted yet
    QFont createdFont{QString()};  ///< of the texts created from now on, if it names a family
    bool hasProfile = true;
    bool hasMutex = true;
    bool makesTexts = true;
    bool announcesRemoval = true;
    bool deletes = true;
    std::function<void()> whenListed;
    std::function<void()> whenDeleting;
    std::function<void(RecordingText&)> whenCreated;

private:
    void forget(Element* element)
    {
        elements.removeAll(element);
        created.erase(std::remove(created.begin(), created.end(), element), created.end());
    }

    CallLog& m_log;
    mutable QMutex m_mutex;
    mutable char m_profile = 0;
    int m_createdSoFar = 0;
};

} // namespace Tolvar::Varundo::Test

#endif
