#ifndef TOLVAR_VARUNDO_TEST_HOOKEDOVERLAY_H
#define TOLVAR_VARUNDO_TEST_HOOKEDOVERLAY_H

#include "HookPoints.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/ElementParam.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QMutex>
#include <QPointer>
#include <QVector>

#include <utility>

namespace Tolvar::Varundo::Test {

/// A text whose every operation is a hook point, "bound.setRow" or "created.setRow". A setter reaches it
/// after its work, and touches nothing afterwards: the text may be gone.
class HookedText : public Mavril::VideoOverlay::CVideoOverlayText
{
public:
    using Base = Mavril::VideoOverlay::CVideoOverlayText;

    HookedText(QByteArray kind, HookPoints& points)
        : m_kind(std::move(kind))
        , m_points(points)
    {}

    // clang-format off
    void setColumn(int column) override                 { Base::setColumn(column);         at(".setColumn"); }
    void setRow(int row) override                       { Base::setRow(row);               at(".setRow"); }
    void setEnabled(bool enabled) override              { Base::setEnabled(enabled);       at(".setEnabled"); }
    void setVisible(bool visible) override              { Base::setVisible(visible);       at(".setVisible"); }
    void setType(int type) override                     { Base::setType(type);             at(".setType"); }
    void setWidth(qreal width) override                 { Base::setWidth(width);           at(".setWidth"); }
    void setHeight(qreal height) override               { Base::setHeight(height);         at(".setHeight"); }
    void setTextColor(const QColor& color) override     { Base::setTextColor(color);       at(".setTextColor"); }
    void setBackgroundColor(const QColor& color) override { Base::setBackgroundColor(color); at(".setBackgroundColor"); }
    void setTimeout(int seconds) override               { Base::setTimeout(seconds);       at(".setTimeout"); }
    void setUnit(const QString& unit) override          { Base::setUnit(unit);             at(".setUnit"); }
    // clang-format on

    /// Set before and after: what it is given must still be there when the host has done what it wanted.
    void setText(const QString& text) override
    {
        const QPointer<HookedText> self(this);
        Base::setText(text);
        at(".setText");
        if (self) {
            Base::setText(text);
        }
    }

    int column() const override { return asked(".column", Base::column()); }
    int row() const override { return asked(".row", Base::row()); }
    QString text() const override { return asked(".text", Base::text()); }
    QFont font() const override { return asked(".font", Base::font()); }
    Mavril::VideoOverlay::ElementParam& getParamObject() override
    {
        at(".getParamObject");
        return Base::getParamObject();
    }

    [[nodiscard]] bool isCreated() const { return m_kind == "created"; }

private:
    void at(const char* operation) const { m_points.reached(m_kind + operation); }
    template <class Value>
    Value asked(const char* operation, Value value) const
    {
        at(operation);
        return value;
    }

    QByteArray m_kind;
    HookPoints& m_points;
};

/// There is one thread: who finds the mutex taken would wait for itself.
class OverlayLock
{
public:
    explicit OverlayLock(QMutex& mutex)
        : m_mutex(mutex)
    {
        if (!m_mutex.tryLock()) {
            qFatal("the overlay is changed by who holds its mutex");
        }
    }
    ~OverlayLock() { m_mutex.unlock(); }
    OverlayLock(const OverlayLock&) = delete;
    OverlayLock& operator=(const OverlayLock&) = delete;

private:
    QMutex& m_mutex;
};

/// A host's overlay: deletes its elements at once, as the harshest host may, unless it is told otherwise, and
/// takes its mutex where a host would.
class HookedManager : public Mavril::VideoOverlay::CVideoOverlayManager
{
public:
    using Element = Mavril::VideoOverlay::CVideoOverlayElement;
    using Text = Mavril::VideoOverlay::CVideoOverlayText;
    using Profile = Mavril::VideoOverlay::CVideoOverlayProfile;

    HookedManager(HookPoints& points, ZelVideoOverlayElementAccessor* accessor)
        : m_points(points)
        , m_accessor(accessor)
    {}
    ~HookedManager() override { qDeleteAll(m_elements); }

    Profile* currentProfile() const override
    {
        Profile* const profile = hasProfile ? reinterpret_cast<Profile*>(&m_profile) : nullptr;
        m_points.reached("manager.currentProfile");
        return profile;
    }
    QMutex* mutex() const override
    {
        QMutex* const mutex = &m_mutex;
        m_points.reached("manager.mutex");
        return mutex;
    }
    QList<Element*> getElementList() const override
    {
        const QList<Element*> elements = m_elements;
        m_points.reached("manager.getElementList");
        return elements;
    }
    Text* createText() override
    {
        m_points.reached("manager.createText");
        if (!makesTexts) {
            return nullptr;
        }
        auto* const text = new HookedText("created", m_points);
        add(text);
        return text;
    }
    void deleteElementFromModel(Element* element) override
    {
        const QPointer<HookedManager> self(this);
        const QPointer<Element> remaining(element);
        if (!m_elements.contains(element) || m_removing.contains(element)) {
            return;
        }
        m_removing.append(element);
        emit beforeRemoveElement(element);
        if (self) {
            m_points.reached("manager.deleteElementFromModel");
        }
        if (self && remaining) {
            drop(element);
        }
    }

    /// Deletes an element without a word.
    void drop(Element* element)
    {
        if (m_accessor) {
            m_accessor->unregisterElement(element);
        }
        m_removing.removeAll(element);
        {
            const OverlayLock lock(m_mutex);
            m_elements.removeAll(element);
        }
        if (deletesLater) {
            element->deleteLater();
        } else {
            delete element;
        }
    }

    void load()
    {
        using E = Mavril::VideoOverlay::ElementParam;
        const QPointer<HookedManager> self(this);
        remove();
        if (!self) {
            return;
        }
        for (const QString& column :
             {E::NAME_SECTION_DISTANCE_COUNTER, E::NAME_SAT_DISTANCE_COUNTER, E::NAME_OBJECT_TEMPERATURE}) {
            addToProfile(E::NAME_COLUMNBOUND, column);
        }
        addToProfile(E::NAME_STATIC_ID, QStringLiteral("1"));
        addToProfile(E::NAME_STATIC_ID, QStringLiteral("2"));
        addToProfile(E::NAME_COLUMNCAPTION, E::NAME_OSD_FREE_TEXT_BOX);
        hasProfile = true;
        emit profileLoaded();
    }
    void remove()
    {
        const QPointer<HookedManager> self(this);
        emit beforeRemoveElements();
        while (self && !m_elements.isEmpty()) {
            Element* const element = m_elements.first();
            emit beforeRemoveElement(element);
            if (self && m_elements.contains(element)) {
                drop(element);
            }
        }
        if (self) {
            hasProfile = false;
        }
    }

    /// The element under a key; null when there is none.
    [[nodiscard]] Text* text(const QString& key) const
    {
        for (Element* const element : m_elements) {
            const auto& params = element->Element::getParamObject();
            for (const QString& name : {Mavril::VideoOverlay::ElementParam::NAME_COLUMNBOUND,
                                        Mavril::VideoOverlay::ElementParam::NAME_STATIC_ID}) {
                if (params.value(name).toString() == key) {
                    return qobject_cast<Text*>(element);
                }
            }
        }
        return nullptr;
    }
    [[nodiscard]] QList<Element*> elements() const { return m_elements; }

    bool makesTexts = true;
    bool hasProfile = false;
    bool deletesLater = false; ///< off the list at once, deleted by the event loop

private:
    void addToProfile(const QString& parameter, const QString& value)
    {
        auto* const text = new HookedText("bound", m_points);
        text->Base::getParamObject().insert(parameter, value);
        text->Base::setEnabled(true);
        text->Base::setText(QStringLiteral("of the profile"));
        add(text);
        if (m_accessor) {
            m_accessor->registerElement(value, text);
        }
    }
    void add(HookedText* text)
    {
        const OverlayLock lock(m_mutex);
        m_elements.append(text);
    }

    using Base = HookedText::Base;
    HookPoints& m_points;
    QPointer<ZelVideoOverlayElementAccessor> m_accessor;
    QList<Element*> m_elements;
    QVector<Element*> m_removing;
    mutable QMutex m_mutex;
    mutable char m_profile = 0;
};

} // namespace Tolvar::Varundo::Test

#endif
