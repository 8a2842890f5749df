#ifndef TOLVAR_VARUNDO_SIMULATOR_SNAPSHOTWRITER_H
#define TOLVAR_VARUNDO_SIMULATOR_SNAPSHOTWRITER_H

#include <QString>

namespace Tolvar::Varundo::Simulator {

class FrameRenderer;
class StateReport;

/// Writes the picture and the state to files, on demand. A file is there whole or as it was before. GUI
/// thread; must not outlive what it asks.
class SnapshotWriter
{
public:
    /// Either file name may be empty: then that file is not written.
    SnapshotWriter(const FrameRenderer& renderer, const StateReport& state, QString pictureFile,
                   QString stateFile);

    /// Both files, the picture last: whoever waits for it finds the state too. On failure error says what
    /// could not be written, where and why.
    bool write(QString* error) const;

private:
    const FrameRenderer& m_renderer;
    const StateReport& m_state;
    QString m_pictureFile;
    QString m_stateFile;
};

} // namespace Tolvar::Varundo::Simulator

#endif
