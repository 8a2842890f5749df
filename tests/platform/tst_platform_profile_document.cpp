#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

/// docs/profile-format.md says what is so.
class TestPlatformProfileDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void theExampleLoads();
    void theExampleShowsEveryKindAndEveryField();
    void everyBindingIsListed();
    void theMessageThatIsShownIsTheOneThatIsGiven();

private:
    /// The first block of a language; empty if there is none.
    QByteArray block(const QString& language) const;

    QString m_document;
};

void TestPlatformProfileDocument::initTestCase()
{
    QFile file(QStringLiteral(PROFILE_DOCUMENT));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    m_document = QString::fromUtf8(file.readAll());
}

QByteArray TestPlatformProfileDocument::block(const QString& language) const
{
    const QRegularExpression fence(QStringLiteral("^```%1\n(.*?)^```").arg(language),
                                   QRegularExpression::MultilineOption |
                                       QRegularExpression::DotMatchesEverythingOption);
    return fence.match(m_document).captured(1).toUtf8();
}

void TestPlatformProfileDocument::theExampleLoads()
{
    CVideoOverlayManager manager;
    QString error;
    QVERIFY2(manager.loadProfileData(block(QStringLiteral("json")), QStringLiteral("example"), &error),
             qPrintable(error));
    QCOMPARE(manager.currentProfile()->name(), QStringLiteral("Main pipe"));
    const auto elements = manager.getElementList();
    QCOMPARE(elements.size(), 6);
    auto* const counter = qobject_cast<CVideoOverlayText*>(elements.at(0));
    QVERIFY(counter);
    QCOMPARE(counter->getParamObject().value(ElementParam::NAME_COLUMNBOUND).toString(),
             ElementParam::NAME_TOTAL_DISTANCE_COUNTER);
    QCOMPARE(counter->backgroundColor(), QColor(0, 0, 0, 128));
}

void TestPlatformProfileDocument::theExampleShowsEveryKindAndEveryField()
{
    QSet<QString> kinds;
    QSet<QString> fields;
    const QJsonObject root = QJsonDocument::fromJson(block(QStringLiteral("json"))).object();
    for (const QJsonValue element : root.value(QStringLiteral("elements")).toArray()) {
        kinds.insert(element[QStringLiteral("kind")].toString());
        for (const QString& field : element.toObject().keys()) {
            fields.insert(field);
        }
    }
    QCOMPARE(kinds, (QSet<QString>{QStringLiteral("bound"), QStringLiteral("static"), QStringLiteral("free"),
                                   QStringLiteral("plain")}));
    const QRegularExpression row(QStringLiteral("^\\| `(\\w+)`(?:, `(\\w+)`)? \\| .* \\| .* \\|$"),
                                 QRegularExpression::MultilineOption);
    QSet<QString> listed;
    auto rows = row.globalMatch(m_document);
    while (rows.hasNext()) {
        const auto match = rows.next();
        listed.insert(match.captured(1));
        if (!match.captured(2).isEmpty()) {
            listed.insert(match.captured(2));
        }
    }
    QVERIFY(listed.size() > 10);
    QCOMPARE(fields, listed);
}

void TestPlatformProfileDocument::everyBindingIsListed()
{
    const QStringList bindings = QString::fromUtf8(block(QStringLiteral("text")))
                                     .split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    QCOMPARE(bindings.size(), 16);
    for (const QString& binding : bindings) {
        CVideoOverlayManager manager;
        QString error;
        QVERIFY2(manager.loadProfileData(R"({"elements": [{"kind": "bound", "binding": ")" +
                                             binding.toUtf8() + "\"}]}",
                                         binding, &error),
                 qPrintable(error));
    }
}

void TestPlatformProfileDocument::theMessageThatIsShownIsTheOneThatIsGiven()
{
    CVideoOverlayManager manager;
    QString error;
    QVERIFY(!manager.loadProfileData(
        R"({"elements": [{"kind": "free"}, {"kind": "static", "id": 1}, {"kind": "static", "id": 2},
                         {"kind": "static", "id": 3, "row": "x"}]})",
        QStringLiteral("main.json"), &error));
    QVERIFY2(m_document.contains(QLatin1Char('`') + error + QLatin1Char('`')), qPrintable(error));
}

QTEST_GUILESS_MAIN(TestPlatformProfileDocument)
#include "tst_platform_profile_document.moc"
