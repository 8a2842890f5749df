#include "SnapshotWriter.h"

#include "FrameRenderer.h"
#include "StateReport.h"

#include <QJsonDocument>
#include <QSaveFile>

#include <utility>

namespace Tolvar::Varundo::Simulator {

namespace {

bool saved(const QString& fileName, const QByteArray& content, QString* error)
{
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit()) {
        return true;
    }
    *error = QStringLiteral("cannot write %1: %2").arg(fileName, file.errorString());
    return false;
}

} // namespace

SnapshotWriter::SnapshotWriter(const FrameRenderer& renderer, const StateReport& state, QString pictureFile,
                               QString stateFile)
    : m_renderer(renderer)
    , m_state(state)
    , m_pictureFile(std::move(pictureFile))
    , m_stateFile(std::move(stateFile))
{}

bool SnapshotWriter::write(QString* error) const
{
    return (m_stateFile.isEmpty() || saved(m_stateFile, QJsonDocument(m_state.toJson()).toJson(), error)) &&
           (m_pictureFile.isEmpty() || saved(m_pictureFile, m_renderer.renderPng(), error));
}

} // namespace Tolvar::Varundo::Simulator
