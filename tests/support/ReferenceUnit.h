#ifndef TOLVAR_VARUNDO_TEST_REFERENCEUNIT_H
#define TOLVAR_VARUNDO_TEST_REFERENCEUNIT_H

#include "HostedUnit.h"

#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <memory>

namespace Tolvar::Varundo::Test {

/// A whole unit as a host would build it: the reference overlay with a profile in which every element
/// stands, all devices, a clock, the TCP interface.
class ReferenceUnit
{
public:
    using Text = Mavril::VideoOverlay::CVideoOverlayText;

    explicit ReferenceUnit(const QString& storedInterface = QStringLiteral("Tcp"))
    {
        settings.storeInterface(storedInterface);
        manager.setElementAccessor(&accessor);
        runner = std::make_unique<Runner>(&backend, &manager, &accessor);
        runner->setZelTcpPort(port);
        profileLoaded = loadProfile();
    }

    DataManager& model() const { return *runner->getDataManager(); }

    bool loadProfile()
    {
        QFile file(m_dir.filePath(QStringLiteral("profile.json")));
        const QByteArray json = QJsonDocument(profile()).toJson();
        return file.open(QIODevice::WriteOnly) && file.write(json) == json.size() && file.flush() &&
               manager.loadProfile(file.fileName(), &error);
    }

    /// The profile's text under a key; null when there is none.
    Text* text(const QString& key)
    {
        for (auto* const element : manager.getElementList()) {
            if (accessor.generateElementKey(element->getParamObject()) == key) {
                return qobject_cast<Text*>(element);
            }
        }
        return nullptr;
    }
    /// The texts that the controller made, in order.
    QList<Text*> customTexts()
    {
        QList<Text*> texts;
        for (auto* const element : manager.getElementList()) {
            if (accessor.generateElementKey(element->getParamObject()).isEmpty()) {
                texts.append(qobject_cast<Text*>(element));
            }
        }
        return texts;
    }

    StoredSettings settings;
    FakeDevices devices;
    RecordingClock clock;
    RecordingControlBackend backend;
    ZelVideoOverlayElementAccessor accessor;
    Mavril::VideoOverlay::CVideoOverlayManager manager;
    const int port = portOfItsOwn();
    bool profileLoaded = false;
    QString error;

private:
    static QJsonObject profile()
    {
        using E = Mavril::VideoOverlay::ElementParam;
        QJsonArray elements;
        const QString kind = QStringLiteral("kind");
        for (const QString& column :
             {E::NAME_TOTAL_DISTANCE_COUNTER, E::NAME_SECTION_DISTANCE_COUNTER, E::NAME_SAT_DISTANCE_COUNTER,
              E::NAME_SPEED, E::NAME_DATE, E::NAME_TIME, E::NAME_VIDEO_TIME_COUNTER, E::NAME_CAMERA_TILT,
              E::NAME_CAMERA_TEMPERATURE, E::NAME_CAMERA_PAN, E::NAME_CAMERA_PRESSURE, E::NAME_CRAWLER_PITCH,
              E::NAME_CRAWLER_ROLL, E::NAME_CRAWLER_TEMPERATURE, E::NAME_CRAWLER_PRESSURE,
              E::NAME_OBJECT_TEMPERATURE}) {
            elements.append(QJsonObject{{kind, QStringLiteral("bound")},
                                        {QStringLiteral("binding"), column},
                                        {QStringLiteral("column"), 1},
                                        {QStringLiteral("row"), elements.size()}});
        }
        for (int id = 1; id <= 4; ++id) {
            elements.append(QJsonObject{{kind, QStringLiteral("static")},
                                        {QStringLiteral("id"), id},
                                        {QStringLiteral("text"), QStringLiteral("line %1").arg(id)}});
        }
        elements.append(QJsonObject{{kind, QStringLiteral("free")}, {QStringLiteral("enabled"), false}});
        return {{QStringLiteral("name"), QStringLiteral("test")}, {QStringLiteral("elements"), elements}};
    }

    QTemporaryDir m_dir;

public:
    std::unique_ptr<Runner> runner; // goes first
};

} // namespace Tolvar::Varundo::Test

#endif
