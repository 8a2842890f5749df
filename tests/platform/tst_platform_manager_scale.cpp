#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QtTest>

#include <algorithm>
#include <ctime>
#include <functional>
#include <random>

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;

namespace {

constexpr int few = 10'000;
constexpr int many = 100'000;
/// Ten times as many may take so many times as long: 10 would be linear, 100 quadratic.
constexpr qint64 tolerated = 35;

using Elements = QList<CVideoOverlayElement*>;
using Arrange = void (*)(Elements&);

/// Of this process: what else the machine does hardly counts.
qint64 microseconds(const std::function<void()>& work)
{
    const std::clock_t begin = std::clock();
    work();
    return static_cast<qint64>(std::clock() - begin) * 1'000'000 / CLOCKS_PER_SEC + 1;
}

QByteArray profileOf(int count)
{
    QByteArray json = R"({"elements": [)";
    for (int id = 1; id <= count; ++id) {
        json += (id > 1 ? ",\n" : "\n") + QByteArray(R"({"kind": "static", "text": "line", "id": )") +
                QByteArray::number(id) + '}';
    }
    return json + "]}";
}

void keep(Elements&) {}

void reverse(Elements& elements)
{
    std::reverse(elements.begin(), elements.end());
}

void shuffle(Elements& elements)
{
    std::shuffle(elements.begin(), elements.end(), std::mt19937(1));
}

qint64 removalTime(int count, Arrange arrange)
{
    CVideoOverlayManager manager;
    for (int i = 0; i < count; ++i) {
        manager.createText();
    }
    Elements elements = manager.getElementList();
    arrange(elements);
    const qint64 time = microseconds([&] {
        for (CVideoOverlayElement* const element : qAsConst(elements)) {
            manager.deleteElementFromModel(element);
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    return manager.getElementList().isEmpty() ? time : 0;
}

qint64 loadTime(int count)
{
    const QByteArray profile = profileOf(count);
    CVideoOverlayManager manager;
    bool loaded = false;
    const qint64 time = microseconds([&] {
        loaded = manager.loadProfileData(profile, QStringLiteral("first")) &&
                 manager.loadProfileData(profile, QStringLiteral("second"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    return loaded && manager.getElementList().size() == count ? time : 0;
}

} // namespace

Q_DECLARE_METATYPE(Arrange)

/// A controller can write a hundred thousand texts and clear them with one command.
class TestPlatformManagerScale : public QObject
{
    Q_OBJECT

private slots:
    void removalOfVeryManyTextsIsNotQuadratic_data();
    void removalOfVeryManyTextsIsNotQuadratic();
    void loadingAVeryLargeProfileTwiceIsNotQuadratic();

private:
    static void check(const std::function<qint64(int count)>& timeOf);
};

void TestPlatformManagerScale::removalOfVeryManyTextsIsNotQuadratic_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::newRow("in the order of creation") << Arrange(keep);
    QTest::newRow("from the last to the first") << Arrange(reverse);
    QTest::newRow("in any order") << Arrange(shuffle);
}

void TestPlatformManagerScale::removalOfVeryManyTextsIsNotQuadratic()
{
    QFETCH(Arrange, arrange);
    check([arrange](int count) { return removalTime(count, arrange); });
}

void TestPlatformManagerScale::loadingAVeryLargeProfileTwiceIsNotQuadratic()
{
    check(loadTime);
}

/// A busy machine makes a measurement worse, never better: one good measurement is enough.
void TestPlatformManagerScale::check(const std::function<qint64(int count)>& timeOf)
{
    bool isLinear = false;
    for (int attempt = 0; attempt < 3 && !isLinear; ++attempt) {
        const qint64 fewTook = timeOf(few);
        const qint64 manyTook = timeOf(many);
        QVERIFY2(fewTook > 0 && manyTook > 0, "the work was not done");
        qInfo("%d took %lld us, %d took %lld us", few, static_cast<long long>(fewTook), many,
              static_cast<long long>(manyTook));
        isLinear = manyTook < tolerated * fewTook;
    }
    QVERIFY(isLinear);
}

QTEST_GUILESS_MAIN(TestPlatformManagerScale)
#include "tst_platform_manager_scale.moc"
