#ifndef TOLVAR_VARUNDO_TEST_RECORDINGELEMENT_H
#define TOLVAR_VARUNDO_TEST_RECORDINGELEMENT_H

#include "CallLog.h"

#include <Mavril/VideoOverlay/CVideoOverlayElement.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <functional>

namespace Tolvar::Varundo::Test {

/// An overlay element that writes every setter call to a log, and does it. The log must outlive it.
template <class Base>
class Recording : public Base
{
public:
    Recording(const QString& name, CallLog& log, QObject* parent = nullptr)
        : Base(parent)
        , m_log(log)
    {
        this->setObjectName(name);
    }

    void setColumn(int column) override
    {
        note("setColumn", QString::number(column));
        Base::setColumn(column);
    }
    void setRow(int row) override
    {
        note("setRow", QString::number(row));
        Base::setRow(row);
    }
    void setEnabled(bool enabled) override
    {
        note("setEnabled", inWords(enabled));
        Base::setEnabled(enabled);
        if (whenEnabled) {
            whenEnabled();
        }
    }
    void setVisible(bool visible) override
    {
        note("setVisible", inWords(visible));
        Base::setVisible(visible);
    }
    void setType(int type) override
    {
        note("setType", QString::number(type));
        Base::setType(type);
    }
    void setWidth(qreal width) override
    {
        note("setWidth", QString::number(width));
        Base::setWidth(width);
    }
    void setHeight(qreal height) override
    {
        note("setHeight", QString::number(height));
        Base::setHeight(height);
    }
    Mavril::VideoOverlay::ElementParam& getParamObject() override
    {
        if (whenAsked) {
            whenAsked();
        }
        return Base::getParamObject();
    }

    /// Called whenever somebody asks for the parameters.
    std::function<void()> whenAsked;
    /// Called whenever somebody enables or disables it.
    std::function<void()> whenEnabled;

protected:
    void note(const char* operation, const QString& argument)
    {
        m_log.add(this->objectName(), operation, argument);
    }

private:
    CallLog& m_log;
};

/// An element that is no text.
using RecordingElement = Recording<Mavril::VideoOverlay::CVideoOverlayElement>;

class RecordingText : public Recording<Mavril::VideoOverlay::CVideoOverlayText>
{
public:
    using Recording::Recording;

    void setText(const QString& text) override
    {
        note("setText", text);
        CVideoOverlayText::setText(text);
    }
    void setTextColor(const QColor& color) override
    {
        note("setTextColor", inWords(color));
        CVideoOverlayText::setTextColor(color);
    }
    void setBackgroundColor(const QColor& color) override
    {
        note("setBackgroundColor", inWords(color));
        CVideoOverlayText::setBackgroundColor(color);
    }
    void setFont(const QFont& font) override
    {
        note("setFont", font.toString());
        CVideoOverlayText::setFont(font);
    }
    void setTimeout(int seconds) override
    {
        note("setTimeout", QString::number(seconds));
        CVideoOverlayText::setTimeout(seconds);
    }
    void setUnit(const QString& unit) override
    {
        note("setUnit", unit);
        CVideoOverlayText::setUnit(unit);
    }
};

} // namespace Tolvar::Varundo::Test

#endif
