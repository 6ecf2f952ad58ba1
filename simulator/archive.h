#pragma once

#include <QString>
#include <QVector>

#include <memory>

namespace Simulator {

/// When a datasource takes pictures.
enum class CadenceLaw {
    Regular,  ///< every spacing seconds
    Jittered, ///< as Regular, each moved by up to jitterSeconds
    Gaps,     ///< as Jittered, with whole stretches missing
    Bursts,   ///< runs of pictures with long pauses between
};

/// What the service knows of one datasource.
struct ArchiveSource
{
    QString path; ///< "SDO/AIA/171"
    QString nickname;
    int sourceId = 0;
    int widthPx = 4096; ///< native
    int heightPx = 4096;
    double rsunPx = 1600.0; ///< solar radius in native pixels
    double refPixelX = 2048.5;
    double refPixelY = 2048.5; ///< counted from the bottom edge
    QString start;             ///< "2010-06-02 00:05:36"; null without any image
    QString end;
    CadenceLaw law = CadenceLaw::Regular;
    int spacingSeconds = 36;
    int jitterSeconds = 0;
};

/// All datasources of a service.
class Archive
{
public:
    explicit Archive(QVector<ArchiveSource> sources);

    /// About forty datasources, as the public archive has them.
    static std::shared_ptr<const Archive> sample();

    const QVector<ArchiveSource> &sources() const { return m_sources; }

private:
    QVector<ArchiveSource> m_sources;
};

} // namespace Simulator
