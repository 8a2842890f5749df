#ifndef TOLVAR_VARUNDO_TEST_CALLLOG_H
#define TOLVAR_VARUNDO_TEST_CALLLOG_H

#include <QColor>
#include <QPoint>
#include <QString>
#include <QStringList>

namespace Tolvar::Varundo::Test {

/// What the library did to its host, in order and in words: "speed.setRow(4)". One log is shared by all the
/// recording objects of a test, so that the order between them shows too.
class CallLog
{
public:
    void add(const QString& who, const char* operation, const QString& argument)
    {
        const QString words = QStringLiteral("%1(%2)").arg(QLatin1String(operation), argument);
        m_calls.append(who.isEmpty() ? words : who + QLatin1Char('.') + words);
    }

    /// The calls since the last time.
    [[nodiscard]] QStringList take()
    {
        QStringList calls;
        calls.swap(m_calls);
        return calls;
    }

private:
    QStringList m_calls;
};

inline QString inWords(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

inline QString inWords(const QColor& color)
{
    return color.isValid() ? color.name(QColor::HexArgb) : QStringLiteral("invalid");
}

inline QString inWords(const QPoint& position)
{
    return QStringLiteral("%1, %2").arg(position.x()).arg(position.y());
}

inline QString asText(const char* text)
{
    return QString::fromUtf8(text);
}

inline QString asText(const QString& text)
{
    return text;
}

/// What a test expects a log, or any other list of texts, to hold.
template <class... Texts>
QStringList inOrder(const Texts&... texts)
{
    return {asText(texts)...};
}

} // namespace Tolvar::Varundo::Test

#endif
