#pragma once

#include "output/manifestrow.h"
#include "session/framerequest.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>

/// A request in flight and what is known of its image so far.
struct FrameLookup
{
    FrameRequest request;
    QDateTime actualUtc;      ///< invalid until the service has named an image
    qint64 imageId = -1;      ///< as above
    QJsonObject answer;       ///< as above
    int toleranceSeconds = 0; ///< that applies to this request; read once for verdict and row
    QString frameFile;        ///< where the image is downloaded to; empty until accepted
    QString videoFrameFile;   ///< where its annotated copy is written; as above
    int decodeRetries = 0;

    /// Whole seconds by which the image is late; 0 while none is known.
    qint64 deltaSeconds() const;

    /// The row of its outcome, without files.
    ManifestRow toRow(FrameStatus status) const;
};
