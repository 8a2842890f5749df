#include "ElementName.h"

#include "ArgumentReader.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>
#include <vector>

namespace Tolvar::Varundo::Zelctl {

using Client::CommandInfo;
using Client::Verb;

namespace {

struct Alias
{
    const char* typed;
    const char* name;
};

// What people try first.
constexpr std::array Aliases{
    Alias{"codec", "text-codec"},
    Alias{"ext-temperature", "external-temperature"},
    Alias{"pan-position", "pan"},
    Alias{"sat-distance", "meter-counter-2"},
    Alias{"section-distance", "meter-counter-1"},
    Alias{"speed", "cable-speed"},
    Alias{"tilt-position", "tilt"},
    Alias{"total-distance", "meter-counter-3"},
    Alias{"version", "software-id"},
};

/// Which numbers an indexed element has. Beyond them the unit would say nothing, or nothing of use.
struct IndexRange
{
    const char* element;
    int first;
    int last;
};

constexpr std::array IndexRanges{
    IndexRange{"status-line", 1, 4},
    IndexRange{"laser-calibration", 1, 2},
    IndexRange{"line", 0, 255},
};

const IndexRange* rangeOf(const QString& name)
{
    const auto* found = std::find_if(IndexRanges.begin(), IndexRanges.end(), [&](const IndexRange& range) {
        return name == QLatin1String(range.element);
    });
    return found != IndexRanges.end() ? found : nullptr;
}

/// How many letters must be changed, added or removed to make one word of the other.
int distance(const QString& from, const QString& to)
{
    std::vector<int> row(static_cast<std::size_t>(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = std::exchange(row[0], i + 1);
        for (int j = 0; j < to.size(); ++j) {
            const auto at = static_cast<std::size_t>(j);
            const int replaced = diagonal + (from.at(i) == to.at(j) ? 0 : 1);
            diagonal = row[at + 1];
            row[at + 1] = std::min({replaced, row[at] + 1, row[at + 1] + 1});
        }
    }
    return row.back();
}

bool isMistyped(const QString& typed, const QString& word)
{
    return word.size() > 2 && distance(typed, word) <= std::max(1, word.size() / 3);
}

/// Also if only one word of the name was meant.
bool isNear(const QString& typed, const QString& name)
{
    const QStringList words = name.split(QLatin1Char('-'));
    return (typed.size() > 2 && name.contains(typed)) || isMistyped(typed, name) ||
           std::any_of(words.begin(), words.end(),
                       [&](const QString& word) { return isMistyped(typed, word); });
}

bool isKnown(const QString& name, Protocol::Group group)
{
    const auto commands = Client::allCommands();
    return std::any_of(commands.begin(), commands.end(), [&](const CommandInfo& info) {
        return info.group == group && name == QLatin1String(info.element);
    });
}

} // namespace

ElementName ElementName::read(ArgumentReader& arguments, Protocol::Group group)
{
    ElementName element;
    const QString typed = arguments.word(QStringLiteral("the element"));
    element.resolve(typed, group);
    if (element.m_name.isEmpty()) {
        arguments.fail(element.unknownText(typed, group));
    } else if (const IndexRange* range = rangeOf(element.m_name); range && group != Protocol::Execute) {
        const QString what = QStringLiteral("the number of the %1").arg(element.m_name);
        if (element.m_index < 0) {
            element.m_index = arguments.integer(what, range->first, range->last);
        } else if (element.m_index < range->first || element.m_index > range->last) {
            arguments.fail(QStringLiteral("%1 '%2': expected %3 to %4")
                               .arg(what)
                               .arg(element.m_index)
                               .arg(range->first)
                               .arg(range->last));
        }
    }
    return element;
}

QString ElementName::text() const
{
    return m_index < 0 ? m_name : QStringLiteral("%1-%2").arg(m_name).arg(m_index);
}

QVector<Verb> ElementName::verbs(Protocol::Group group) const
{
    QVector<Verb> verbs;
    for (const CommandInfo& info : Client::allCommands()) {
        if (info.group == group && m_name == QLatin1String(info.element)) {
            verbs.append(info.verb);
        }
    }
    if (!verbs.contains(Verb::Color) && command(group, Verb::Color)) {
        verbs.append(Verb::Color);
    }
    return verbs;
}

const CommandInfo* ElementName::command(Protocol::Group group, Verb verb) const
{
    const CommandInfo* own = Client::findCommand(group, m_name, verb);
    if (own || verb != Verb::Color || !Client::elementColorNumber(m_name)) {
        return own;
    }
    return Client::findCommand(group, u"element", Verb::Color);
}

QString ElementName::verbList(const QVector<Verb>& verbs)
{
    QStringList names;
    for (const Verb verb : verbs) {
        names.append(Client::verbName(verb));
    }
    return names.join(QStringLiteral(", "));
}

QStringList ElementName::all(Protocol::Group group)
{
    QStringList names;
    for (const CommandInfo& info : Client::allCommands()) {
        const QString name = QLatin1String(info.element);
        if (info.group == group && name != QLatin1String("element")) {
            names.append(Client::isIndexedElement(name) ? name + QStringLiteral("-N") : name);
        }
    }
    names.removeDuplicates();
    return names;
}

void ElementName::resolve(const QString& typed, Protocol::Group group)
{
    QString name = typed.toLower();
    for (const Alias& alias : Aliases) {
        if (name == QLatin1String(alias.typed)) {
            name = QLatin1String(alias.name);
        }
    }
    if (isKnown(name, group) && name != QLatin1String("element")) {
        m_name = name;
        return;
    }
    static const QRegularExpression Numbered(QStringLiteral("^(.+)-([0-9]{1,3})$"));
    const QRegularExpressionMatch match = Numbered.match(name);
    if (match.hasMatch() && Client::isIndexedElement(match.captured(1)) &&
        isKnown(match.captured(1), group)) {
        m_name = match.captured(1);
        m_index = match.captured(2).toInt();
    }
}

QString ElementName::unknownText(const QString& typed, Protocol::Group group) const
{
    for (const auto other : {Protocol::Read, Protocol::Write, Protocol::Execute}) {
        ElementName elsewhere;
        elsewhere.resolve(typed, other);
        if (!elsewhere.m_name.isEmpty()) {
            const QString way =
                other == Protocol::Execute ? QString() : Client::groupName(other) + QLatin1Char(' ');
            return QStringLiteral("'%1' has nothing of that kind; possible: %2%3")
                .arg(typed, way, verbList(elsewhere.verbs(other)));
        }
    }
    QStringList near;
    const QStringList names = all(group);
    for (const QString& name : names) {
        if (isNear(typed.toLower(), name)) {
            near.append(QStringLiteral("'%1'").arg(name));
        }
    }
    return QStringLiteral("unknown element '%1'; %2")
        .arg(typed, near.isEmpty() ? QStringLiteral("known: ") + names.join(QStringLiteral(", "))
                                   : QStringLiteral("did you mean ") + near.join(QStringLiteral(" or ")) +
                                         QLatin1Char('?'));
}

} // namespace Tolvar::Varundo::Zelctl
