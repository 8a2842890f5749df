#include "SessionScript.h"

#include <Tolvar/Varundo/Protocol.h>

#include <QRegularExpression>

#include <algorithm>

namespace Tolvar::Varundo::Tests {

namespace {

constexpr int MaxRepetitions = 0x10000;

bool isMark(const QString& word)
{
    static const QStringList Marks{QStringLiteral(">"), QStringLiteral("<"), QStringLiteral("="),
                                   QStringLiteral("!")};
    return Marks.contains(word);
}

QChar unescaped(QChar escaped)
{
    return escaped == QLatin1Char('n')   ? QChar(QChar::LineFeed)
           : escaped == QLatin1Char('0') ? QChar(QChar::Null)
                                         : escaped;
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

} // namespace

SessionScript SessionScript::parse(const QString& text, const QString& fileName, int firstLine)
{
    SessionScript script;
    script.m_fileName = fileName;
    int number = firstLine;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        if (!script.parseLine(line, number)) {
            return script;
        }
        ++number;
    }
    const auto sends = [](const Step& step) {
        return step.action == Action::Send;
    };
    if (std::none_of(script.m_steps.begin(), script.m_steps.end(), sends)) {
        script.fail(firstLine, QStringLiteral("nothing is sent in this session"));
    }
    return script;
}

QString SessionScript::place(const Step& step) const
{
    return QStringLiteral("%1:%2: ").arg(m_fileName).arg(step.line);
}

/// One line may hold several steps: the marks > < = ! each begin one.
bool SessionScript::parseLine(const QString& line, int number)
{
    QVector<Word> words;
    if (!split(line, words)) {
        return fail(number, QStringLiteral("a quotation mark is not closed"));
    }
    QVector<Word> segment;
    for (const Word& word : words) {
        if (!word.quoted && isMark(word.text) && !segment.isEmpty()) {
            if (!addSegment(segment, number)) {
                return false;
            }
            segment.clear();
        }
        segment.append(word);
    }
    return segment.isEmpty() || addSegment(segment, number);
}

/// Separates words by blanks, keeps what is quoted together, and ends at a remark.
bool SessionScript::split(const QString& line, QVector<Word>& words)
{
    for (int at = 0; at < line.size(); ++at) {
        if (line.at(at).isSpace()) {
            continue;
        }
        if (line.at(at) == QLatin1Char('#')) {
            return true;
        }
        Word word{QString(), line.at(at) == QLatin1Char('"')};
        if (!word.quoted) {
            while (at < line.size() && !line.at(at).isSpace()) {
                word.text.append(line.at(at++));
            }
            words.append(word);
            continue;
        }
        for (++at; at < line.size() && line.at(at) != QLatin1Char('"'); ++at) {
            const bool escape = line.at(at) == QLatin1Char('\\') && at + 1 < line.size();
            word.text.append(escape ? unescaped(line.at(++at)) : line.at(at));
        }
        if (at == line.size()) {
            return false;
        }
        words.append(word);
    }
    return true;
}

bool SessionScript::addSegment(const QVector<Word>& segment, int number)
{
    const QString mark = segment.first().quoted ? QString() : segment.first().text;
    const QVector<Word> rest = segment.mid(1);
    if (rest.isEmpty() && mark == QLatin1String("connect")) {
        m_steps.append(Step{Action::Connect, number, {}, {}, {}});
        return true;
    }
    if (rest.isEmpty() && mark == QLatin1String("reset")) {
        m_steps.append(Step{Action::Reset, number, {}, {}, {}});
        return true;
    }
    if (!isMark(mark)) {
        return fail(number,
                    QStringLiteral("a line begins with >, <, =, !, connect, reset or #, not with \"%1\"")
                        .arg(segment.first().text));
    }
    if (rest.isEmpty()) {
        return fail(number, QStringLiteral("nothing stands after %1").arg(mark));
    }
    if (mark == QLatin1String(">")) {
        return addBytes(Action::Send, rest, number);
    }
    if (mark == QLatin1String("<")) {
        return addBytes(Action::Expect, rest, number);
    }
    Step step{mark == QLatin1String("=") ? Action::Check : Action::Happen, number, {}, {}, {}};
    for (const Word& word : rest) {
        step.words.append(word.text);
    }
    m_steps.append(step);
    return true;
}

bool SessionScript::addBytes(Action action, const QVector<Word>& words, int number)
{
    Step step{action, number, {}, {}, {}};
    for (const Word& word : words) {
        if (word.quoted && isAscii(word.text)) {
            step.bytes.append(word.text.toLatin1());
        } else if (word.quoted) {
            return fail(number, QStringLiteral("\"%1\" is not ASCII; write its bytes").arg(word.text));
        } else if (!appendNumber(step, word.text)) {
            return fail(number, QStringLiteral("\"%1\" is no byte: two hexadecimal digits, a quoted text, or "
                                               "a byte with a count (41*16)")
                                    .arg(word.text));
        }
    }
    if (!mayHaveWildcards(step)) {
        return fail(number,
                    QStringLiteral("?? may stand only in the answers that give the date or the time"));
    }
    if (action == Action::Expect && (m_steps.isEmpty() || (m_steps.last().action != Action::Send &&
                                                           m_steps.last().action != Action::Expect))) {
        return fail(number, QStringLiteral("an answer without bytes sent before it"));
    }
    m_steps.append(step);
    return true;
}

/// A byte, alone or repeated, or the wildcard.
bool SessionScript::appendNumber(Step& step, const QString& word)
{
    if (word == QLatin1String("??")) {
        step.wildcards.append(step.bytes.size());
        step.bytes.append('\0');
        return true;
    }
    static const QRegularExpression Number(QStringLiteral("^([0-9A-Fa-f]{2})(?:\\*([1-9][0-9]{0,4}))?$"));
    const QRegularExpressionMatch match = Number.match(word);
    const int byte = match.capturedRef(1).toInt(nullptr, 16);
    const int count = match.capturedRef(2).isEmpty() ? 1 : match.capturedRef(2).toInt();
    if (!match.hasMatch() || count > MaxRepetitions) {
        return false;
    }
    step.bytes.append(QByteArray(count, static_cast<char>(byte)));
    return true;
}

/// Only a clock cannot be written down beforehand.
bool SessionScript::mayHaveWildcards(const Step& step) const
{
    constexpr char Date = 0x40;
    constexpr char Time = 0x50;
    if (step.wildcards.isEmpty()) {
        return true;
    }
    const int frame = step.bytes.startsWith(static_cast<char>(Protocol::Ack)) ? 1 : 0;
    const QByteArray header = step.bytes.mid(frame, Protocol::HeaderSize);
    return step.action == Action::Expect && header.size() == Protocol::HeaderSize &&
           header.at(0) == Protocol::Stx && (header.at(1) == Date || header.at(1) == Time) &&
           header.at(2) == Protocol::Read && step.wildcards.first() >= frame + Protocol::HeaderSize;
}

bool SessionScript::fail(int line, const QString& what)
{
    m_error = QStringLiteral("%1:%2: %3").arg(m_fileName).arg(line).arg(what);
    m_steps.clear();
    return false;
}

} // namespace Tolvar::Varundo::Tests
