// Hosts that do in a slot what they may not: a debug build stops at it and says what is wrong, and does not
// stop at what is permitted. Each row is a unit in a process of its own.

#include "ChildProcess.h"
#include "Isolation.h"

#include <QTemporaryDir>
#include <QtTest>

#include <vector>

using namespace Tolvar::Varundo::Test;

namespace {

/// Something that a host does in a call of the library's. Most of it is forbidden; some is what is permitted
/// beside that.
struct HostMistake
{
    /// What becomes of it where nobody looks: the unit goes on, or nobody can tell.
    enum class Unseen : quint8 { Survived, Undefined };

    const char* name;
    const char* refusal; ///< part of what a debug build says when it stops; empty if it does not
    Unseen unseen = Unseen::Survived;
};

const std::vector<HostMistake>& hostMistakes()
{
    using Unseen = HostMistake::Unseen;
    constexpr const char* whileReading = "while the library holds the overlay's mutex";
    constexpr const char* managerGone = "the overlay manager is destroyed in its own mutex()";
    constexpr const char* childDeleted = "the data model, a parser or the responder is deleted";
    constexpr const char* permitted = "";
    static const std::vector<HostMistake> mistakes{
        {"a frame comes while the elements are listed", whileReading},
        {"a frame comes over a road that is not selected while the elements are listed", whileReading},
        {"a frame comes while an element is read", whileReading},
        {"a character comes while the elements are listed", whileReading},
        {"the clean-up comes while the elements are listed", whileReading},
        {"texts are cleared while the elements are listed", whileReading},
        {"a profile is removed while an element is read", whileReading},
        {"no profile is announced while the elements are listed", whileReading},
        {"the profile is announced while the elements are listed", whileReading, Unseen::Undefined},
        {"the elements are bound while they are listed", whileReading, Unseen::Undefined},
        {"an element is deleted while another is read", whileReading, Unseen::Undefined},

        {"an event loop turns while the mutex is asked for", permitted},
        {"an event loop turns when the elements were read", permitted},
        {"an event loop turns when nothing was bound to the end", permitted},
        {"the Runner is destroyed while the elements are listed", permitted},

        {"the manager goes in mutex()", managerGone},
        {"the manager goes in getElementList()", managerGone, Unseen::Undefined},
        {"the manager goes in createText()", managerGone},
        {"the manager goes while a text is being made", permitted},

        {"the data model is deleted", childDeleted},
        {"the data model is deleted when a profile was removed", childDeleted},
        {"the data model is deleted later", childDeleted},
        {"the command parser is deleted", childDeleted},
        {"the execute parser is deleted", childDeleted},
        {"the read parser is deleted", childDeleted},
        {"the write parser is deleted", childDeleted},
        {"the responder is deleted", childDeleted},
        {"the Runner is destroyed in its own signal", permitted},
        {"the Runner is destroyed in the data model's signal", permitted},
        {"the Runner is destroyed with its parent", permitted},
    };
    return mistakes;
}

} // namespace

class TestHostMistakes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void mistakeIsRefused_data();
    void mistakeIsRefused();
};

void TestHostMistakes::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestHostMistakes::mistakeIsRefused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("refusal");
    for (const HostMistake& mistake : hostMistakes()) {
#ifdef QT_NO_DEBUG
        // Nobody looks: nothing is refused, and some of it nobody can tell the outcome of.
        if (mistake.unseen == HostMistake::Unseen::Survived) {
            QTest::newRow(mistake.name) << QByteArray(mistake.name) << QByteArray();
        }
#else
        QTest::newRow(mistake.name) << QByteArray(mistake.name) << QByteArray(mistake.refusal);
#endif
    }
}

void TestHostMistakes::mistakeIsRefused()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, refusal);
    const QTemporaryDir directory;
    QVERIFY(directory.isValid());
    QFile verdict(directory.filePath(QStringLiteral("verdict")));
    ChildProcess process({MISTAKEN_HOST, name, QFile::encodeName(verdict.fileName())});
    const QByteArray end = process.waitForEnd();
    const QByteArray told = verdict.open(QIODevice::ReadOnly) ? verdict.readAll() : QByteArray();
    const QByteArray expectedEnd = refusal.isEmpty() ? "exit 0" : "signal 6";
    QVERIFY2(end == expectedEnd, end + ' ' + told);
    QVERIFY2(refusal.isEmpty() ? told.isEmpty() : told.contains(refusal), told);
}

QTEST_GUILESS_MAIN(TestHostMistakes)
#include "tst_host_mistakes.moc"
