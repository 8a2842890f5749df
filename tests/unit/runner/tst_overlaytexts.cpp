// The static texts, the free text box, and the Runner's own way to an element.

#include "HostedUnit.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

namespace {

const ColorPair RedOnTransparent{QColor(Qt::red), QColor(Qt::transparent)};

struct StatusLine
{
    QString (DataManager::*text)() const;
    bool (DataManager::*visible)() const;
    ColorPair (DataManager::*colours)() const;
    void (DataManager::*setText)(QString);
    void (DataManager::*setVisible)(bool);
    void (DataManager::*setColours)(const ColorPair&);
    void (Runner::*bind)(Mavril::VideoOverlay::CVideoOverlayText*);
};

using D = DataManager;
const StatusLine StatusLines[] = {
    {&D::statusLine1Text, &D::statusLine1Visible, &D::statusLine1ColorPair, &D::setStatusLine1Text,
     &D::setStatusLine1Visible, &D::setStatusLine1ColorPair, &Runner::connectStaticText1},
    {&D::statusLine2Text, &D::statusLine2Visible, &D::statusLine2ColorPair, &D::setStatusLine2Text,
     &D::setStatusLine2Visible, &D::setStatusLine2ColorPair, &Runner::connectStaticText2},
    {&D::statusLine3Text, &D::statusLine3Visible, &D::statusLine3ColorPair, &D::setStatusLine3Text,
     &D::setStatusLine3Visible, &D::setStatusLine3ColorPair, &Runner::connectStaticText3},
    {&D::statusLine4Text, &D::statusLine4Visible, &D::statusLine4ColorPair, &D::setStatusLine4Text,
     &D::setStatusLine4Visible, &D::setStatusLine4ColorPair, &Runner::connectStaticText4},
};

} // namespace

class TestOverlayTexts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void staticTextIsBoundToItsStatusLine_data();
    void staticTextIsBoundToItsStatusLine();
    void bindingOneStaticTextAloneDoesTheSame_data() { everyLine(); }
    void bindingOneStaticTextAloneDoesTheSame();
    void bindingAStaticTextFindsItsLine_data() { staticTextIsBoundToItsStatusLine_data(); }
    void bindingAStaticTextFindsItsLine();
    void otherStaticIdsStayUnbound_data();
    void otherStaticIdsStayUnbound();
    void unknownColumnDoesNotKeepAStaticTextFromItsLine();
    void columnComesBeforeStaticIdAndCaption();
    void captionComesBeforeStaticId();

    void freeTextLinesAreTrimmedAndJoined_data();
    void freeTextLinesAreTrimmedAndJoined();
    void freeTextIsHiddenWhileItIsSet();
    void repeatedFreeTextIsShownAgainUnlessItStays();
    void otherListenersGetTheLinesAsTheyCame();
    void captionMustEqualExactly();
    void writtenFreeTextReachesTheBox();

    void elementIsChangedByItsName();
    void unitIsFahrenheitForFormat1Alone_data();
    void unitIsFahrenheitForFormat1Alone();
    void changesToUnknownNamesDoNothing();

private:
    static void everyLine();
    static RecordingText* addFreeTextBox(HostedUnit& unit);
};

void TestOverlayTexts::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestOverlayTexts::everyLine()
{
    QTest::addColumn<int>("line");
    for (int line = 1; line <= 4; ++line) {
        QTest::addRow("line %d", line) << line;
    }
}

RecordingText* TestOverlayTexts::addFreeTextBox(HostedUnit& unit)
{
    return unit.addText(QStringLiteral("box"), ElementParam::NAME_COLUMNCAPTION,
                        ElementParam::NAME_OSD_FREE_TEXT_BOX);
}

void TestOverlayTexts::staticTextIsBoundToItsStatusLine_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QVariant>("staticId");
    for (int line = 1; line <= 4; ++line) {
        QTest::addRow("%d as a number", line) << line << QVariant(line);
        QTest::addRow("%d as a text", line) << line << QVariant(QString::number(line));
    }
}

void TestOverlayTexts::staticTextIsBoundToItsStatusLine()
{
    QFETCH(int, line);
    QFETCH(QVariant, staticId);
    HostedUnit unit;
    for (int other = 1; other <= 4; ++other) {
        if (other != line) {
            unit.addText(QStringLiteral("other"), ElementParam::NAME_STATIC_ID, other);
        }
    }
    RecordingText* const text = unit.addText(QStringLiteral("text"), ElementParam::NAME_STATIC_ID, staticId);
    text->setText(QStringLiteral(" before "));
    text->setEnabled(true);
    text->setTextColor(RedOnTransparent.first);
    text->setBackgroundColor(RedOnTransparent.second);
    unit.discardCalls();
    emit unit.manager.profileLoaded();
    QCOMPARE(unit.log.take(), QStringList()); // no echo

    DataManager& model = unit.model();
    const StatusLine& status = StatusLines[line - 1];
    QCOMPARE((model.*status.text)(), QStringLiteral(" before "));
    QCOMPARE((model.*status.visible)(), true);
    QCOMPARE((model.*status.colours)(), RedOnTransparent);

    (model.*status.setText)(QStringLiteral("after"));
    QCOMPARE(unit.log.take(), inOrder("text.setText(after)"));
    (model.*status.setVisible)(false);
    QCOMPARE(unit.log.take(), inOrder("text.setEnabled(false)"));
    (model.*status.setColours)({QColor(Qt::yellow), QColor(Qt::black)});
    QCOMPARE(unit.log.take(), inOrder("text.setTextColor(#ffffff00)", "text.setBackgroundColor(#ff000000)"));
}

void TestOverlayTexts::bindingOneStaticTextAloneDoesTheSame()
{
    QFETCH(int, line);
    HostedUnit unit;
    auto* const text = unit.add<RecordingText>(QStringLiteral("text"));
    unit.accessor.registerElement(QString::number(line), text);
    text->setText(QStringLiteral("before"));
    unit.discardCalls();
    const StatusLine& status = StatusLines[line - 1];
    (unit.runner.get()->*status.bind)(text);
    QCOMPARE((unit.model().*status.text)(), QStringLiteral("before"));
    (unit.model().*status.setText)(QStringLiteral("after"));
    QCOMPARE(unit.log.take(), inOrder("text.setText(after)"));
}

void TestOverlayTexts::bindingAStaticTextFindsItsLine()
{
    QFETCH(int, line);
    QFETCH(QVariant, staticId);
    HostedUnit unit;
    RecordingText* const text = unit.addText(QStringLiteral("text"), ElementParam::NAME_STATIC_ID, staticId);
    text->setText(QStringLiteral("before"));
    unit.discardCalls();
    unit.runner->connectStaticText(text);
    const StatusLine& status = StatusLines[line - 1];
    QCOMPARE((unit.model().*status.text)(), QStringLiteral("before"));
    (unit.model().*status.setText)(QStringLiteral("after"));
    QCOMPARE(unit.log.take(), inOrder("text.setText(after)"));
}

void TestOverlayTexts::otherStaticIdsStayUnbound_data()
{
    QTest::addColumn<QVariant>("staticId");
    QTest::newRow("5") << QVariant(5);
    QTest::newRow("5 as a text") << QVariant(QStringLiteral("5"));
    QTest::newRow("0") << QVariant(0);
    QTest::newRow("-1") << QVariant(-1);
    QTest::newRow("11") << QVariant(QStringLiteral("11"));
    QTest::newRow("no number") << QVariant(QStringLiteral("one"));
    QTest::newRow("empty") << QVariant(QStringLiteral(""));
    QTest::newRow("nothing in it") << QVariant();
    QTest::newRow("no text") << QVariant(QPoint(1, 1));
}

void TestOverlayTexts::otherStaticIdsStayUnbound()
{
    QFETCH(QVariant, staticId);
    HostedUnit unit;
    RecordingText* const text = unit.addText(QStringLiteral("text"), ElementParam::NAME_STATIC_ID, staticId);
    text->setText(QStringLiteral("before"));
    text->setEnabled(true);
    unit.loadProfile();
    unit.runner->connectStaticText(text);
    for (int line = 1; line <= 4; ++line) {
        unit.accessor.registerElement(QString::number(line), text);
        const StatusLine& status = StatusLines[line - 1];
        QCOMPARE((unit.model().*status.text)(), QString());
        QCOMPARE((unit.model().*status.visible)(), false);
        (unit.model().*status.setText)(QStringLiteral("after"));
    }
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayTexts::unknownColumnDoesNotKeepAStaticTextFromItsLine()
{
    HostedUnit unit;
    RecordingText* const text = unit.addText(QStringLiteral("text"), ElementParam::NAME_COLUMNBOUND,
                                             QStringLiteral("a column of the host's own"));
    text->getParamObject().insert(ElementParam::NAME_STATIC_ID, 2);
    text->setText(QStringLiteral("before"));
    unit.loadProfile();
    QCOMPARE(unit.model().statusLine2Text(), QStringLiteral("before"));
    // Its key is the column, so the line's changes do not find it.
    unit.model().setStatusLine2Text(QStringLiteral("after"));
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayTexts::columnComesBeforeStaticIdAndCaption()
{
    HostedUnit unit;
    RecordingText* const text = unit.addBoundText(ElementParam::NAME_SPEED);
    text->getParamObject().insert(ElementParam::NAME_STATIC_ID, 2);
    text->getParamObject().insert(ElementParam::NAME_COLUMNCAPTION, ElementParam::NAME_OSD_FREE_TEXT_BOX);
    unit.accessor.registerElement(ElementParam::NAME_OSD_FREE_TEXT_BOX, text);
    text->setText(QStringLiteral("before"));
    text->setColumn(5);
    unit.loadProfile();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint(5, 0));
    QCOMPARE(unit.model().statusLine2Text(), QString());
    unit.model().setLineText({QStringLiteral("free")}, 5);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayTexts::captionComesBeforeStaticId()
{
    HostedUnit unit;
    RecordingText* const text = addFreeTextBox(unit);
    text->getParamObject().insert(ElementParam::NAME_STATIC_ID, 2);
    text->setText(QStringLiteral("before"));
    unit.loadProfile();
    QCOMPARE(unit.model().statusLine2Text(), QString());
    unit.model().setLineText({QStringLiteral("free")}, 5);
    QVERIFY(unit.log.take().contains(QStringLiteral("box.setText(free)")));
}

void TestOverlayTexts::freeTextLinesAreTrimmedAndJoined_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("shown");
    QTest::newRow("a and b") << inOrder(" a ", "", "   ", "b") << "a\nb";
    QTest::newRow("one") << inOrder("one") << "one";
    QTest::newRow("order is kept") << inOrder("c", "", "a", "b", "") << "c\na\nb";
    QTest::newRow("equal lines are kept") << inOrder("a", "a") << "a\na";
    QTest::newRow("blanks inside are kept") << inOrder("a  b") << "a  b";
    QTest::newRow("tabs and line ends are trimmed") << inOrder("\ta\r\n", "\t\n") << "a";
    QTest::newRow("nothing left") << inOrder(" ", "", "\t") << "";
    QTest::newRow("five") << inOrder("1", "2", "3", "4", "5") << "1\n2\n3\n4\n5";
}

void TestOverlayTexts::freeTextLinesAreTrimmedAndJoined()
{
    QFETCH(QStringList, lines);
    HostedUnit unit;
    const RecordingText* const box = addFreeTextBox(unit);
    unit.loadProfile();
    unit.model().setLineText(lines, 30);
    QTEST(box->text(), "shown");
    QCOMPARE(box->timeout(), 30);
    QVERIFY(box->enabled());
    QVERIFY(box->visible());
}

void TestOverlayTexts::freeTextIsHiddenWhileItIsSet()
{
    HostedUnit unit;
    addFreeTextBox(unit);
    unit.loadProfile();
    unit.model().setLineText({QStringLiteral("a"), QStringLiteral("b")}, 30);
    QCOMPARE(unit.log.take(), inOrder("box.setVisible(false)", "box.setTimeout(30)", "box.setText(a\nb)",
                                      "box.setEnabled(true)", "box.setVisible(true)"));
}

void TestOverlayTexts::repeatedFreeTextIsShownAgainUnlessItStays()
{
    HostedUnit unit;
    addFreeTextBox(unit);
    unit.loadProfile();
    unit.model().setLineText({QStringLiteral("a")}, 30);
    unit.discardCalls();
    unit.model().setLineText({QStringLiteral("a")}, 30);
    QCOMPARE(unit.log.take().size(), 5);
    unit.model().setLineText({QStringLiteral("a")}, 0);
    QCOMPARE(unit.log.take(), QStringList()); // the same lines with no time-out are no change
}

void TestOverlayTexts::otherListenersGetTheLinesAsTheyCame()
{
    HostedUnit unit;
    addFreeTextBox(unit);
    unit.loadProfile();
    QStringList heard;
    connect(&unit.model(), &DataManager::lineTextChanged, this,
            [&](const QString&, const QStringList& lines) { heard = lines; });
    const QStringList lines{QStringLiteral(" a "), QString(), QStringLiteral("b")};
    unit.model().setLineText(lines, 0);
    QCOMPARE(heard, lines);
    QCOMPARE(unit.model().lineText(), lines);
}

void TestOverlayTexts::captionMustEqualExactly()
{
    HostedUnit unit;
    RecordingText* const text = unit.addText(QStringLiteral("text"), ElementParam::NAME_COLUMNCAPTION,
                                             ElementParam::NAME_OSD_FREE_TEXT_BOX + QLatin1Char(' '));
    unit.accessor.registerElement(ElementParam::NAME_OSD_FREE_TEXT_BOX, text);
    unit.loadProfile();
    unit.model().setLineText({QStringLiteral("free")}, 0);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayTexts::writtenFreeTextReachesTheBox()
{
    HostedUnit unit;
    const RecordingText* const box = addFreeTextBox(unit);
    unit.loadProfile();
    unit.command(Protocol::Write, 0xD7,
                 QByteArray("\x00\x1E\x00"
                            "AB\0  C \0\0D\0E\0F",
                            17));
    QCOMPARE(box->text(), QStringLiteral("AB\nC\nD\nE")); // the fifth slot is E, the sixth piece is dropped
    QCOMPARE(box->timeout(), 30);
}

void TestOverlayTexts::elementIsChangedByItsName()
{
    HostedUnit unit;
    auto* const text = unit.add<RecordingText>(QStringLiteral("text"));
    const QString name = QStringLiteral("NAME");
    unit.accessor.registerElement(name, text);
    Runner& runner = *unit.runner;
    runner.setOsdElementPosition(name, QPoint(3, 9));
    QCOMPARE(unit.log.take(), inOrder("text.setColumn(3)", "text.setRow(9)"));
    runner.setOsdElementVisibility(name, true);
    QCOMPARE(unit.log.take(), inOrder("text.setEnabled(true)"));
    runner.setOsdElementText(name, QStringLiteral("words"));
    QCOMPARE(unit.log.take(), inOrder("text.setText(words)"));
    ColorPair colours = RedOnTransparent;
    runner.setOsdElementColors(name, colours);
    QCOMPARE(unit.log.take(), inOrder("text.setTextColor(#ffff0000)", "text.setBackgroundColor(#00000000)"));
    QCOMPARE(colours, RedOnTransparent);
    runner.setOsdFreeText(name, 5, QStringLiteral("words"));
    QCOMPARE(unit.log.take(), inOrder("text.setVisible(false)", "text.setTimeout(5)", "text.setText(words)",
                                      "text.setEnabled(true)", "text.setVisible(true)"));
}

void TestOverlayTexts::unitIsFahrenheitForFormat1Alone_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("letter");
    QTest::newRow("0") << 0 << "C";
    QTest::newRow("1") << 1 << "F";
    QTest::newRow("2") << 2 << "C";
    QTest::newRow("-1") << -1 << "C";
    QTest::newRow("257") << 257 << "C";
}

void TestOverlayTexts::unitIsFahrenheitForFormat1Alone()
{
    QFETCH(int, format);
    QFETCH(QString, letter);
    HostedUnit unit;
    const RecordingText* const text =
        unit.addText(QStringLiteral("text"), ElementParam::NAME_COLUMNBOUND, QStringLiteral("NAME"));
    unit.runner->setOsdElementUnit(QStringLiteral("NAME"), format);
    QCOMPARE(text->unit(), QChar(0x00B0) + letter);
}

void TestOverlayTexts::changesToUnknownNamesDoNothing()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED);
    unit.discardCalls();
    const QString name = QStringLiteral("NAME");
    ColorPair colours = RedOnTransparent;
    unit.runner->setOsdElementPosition(name, QPoint(3, 9));
    unit.runner->setOsdElementVisibility(name, true);
    unit.runner->setOsdElementText(name, QStringLiteral("words"));
    unit.runner->setOsdElementColors(name, colours);
    unit.runner->setOsdElementUnit(name, 1);
    unit.runner->setOsdFreeText(name, 5, QStringLiteral("words"));
    QCOMPARE(unit.log.take(), QStringList());
}

QTEST_MAIN(TestOverlayTexts)
#include "tst_overlaytexts.moc"
