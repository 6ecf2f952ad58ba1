#include "tools/pictures/regionpictures.h"

#include "imaging/frameannotation.h"
#include "imaging/metricscale.h"
#include "roi/roiframe.h"
#include "roi/roigeometry.h"
#include "roi/roipicture.h"
#include "roi/roisession.h"
#include "roi/roiset.h"
#include "roi/roivideodialog.h"
#include "tools/pictures/album.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSlider>

namespace {

constexpr QSize dialogSize(1340, 760);
constexpr int zoomSteps = 4;
constexpr int zoomGapPx = 8;

QVector<Roi> regions()
{
    Roi group;
    group.name = QStringLiteral("Active region");
    group.rect = {0.16, 0.26, 0.3125, 0.234375};
    Roi limb;
    limb.name = QStringLiteral("West limb");
    limb.rect = {0.80, 0.50, 0.16, 0.24};
    limb.rotation = 90;
    return {group, limb};
}

template<typename Widget>
Widget *find(const RoiVideoDialog &dialog, const char *name)
{
    auto *widget = dialog.findChild<Widget *>(QLatin1String(name));
    if (!widget)
        qFatal("the region tool has no %s", name);
    return widget;
}

int indexOf(const StoredSession &session, const QString &nickname)
{
    for (int index = 0; index < session.sources.size(); ++index) {
        if (session.sources.at(index).nickname == nickname)
            return index;
    }
    return -1;
}

void takeRotations(Album &album, const RoiSource &source, const RoiSourceFrame &frame)
{
    Roi roi = regions().constFirst();
    for (int choice = 0; choice < 4; ++choice) {
        roi.rotation = RoiGeometry::rotationAt(choice);
        album.addPhotograph(
            QStringLiteral("rotation%1").arg(choice),
            RoiPicture::ofFrame(QImage(frame.file), frame, roi, {{}, source.nickname, {}}));
    }
}

/// Steps of the zoom introduction side by side.
void takeZoom(Album &album, const RoiSourceFrame &frame)
{
    const ZoomSource zoom{QImage(frame.file)};
    const QRect region = RoiGeometry::pixelRect(regions().constFirst().rect, zoom.frameSize());
    const int stepWidth = region.width() + zoomGapPx;
    QImage strip(zoomSteps * stepWidth - zoomGapPx, region.height(), QImage::Format_RGB32);
    strip.fill(Qt::white);
    QPainter painter(&strip);
    for (int step = 0; step < zoomSteps; ++step) {
        const QRectF view = RoiGeometry::zoomView(region, zoom.frameSize(), step, zoomSteps);
        painter.drawImage(step * stepWidth, 0, zoom.picture(view, region.size()));
    }
    painter.end();
    album.addPhotograph(QStringLiteral("zoom"), strip);
}

void takeDialog(Album &album, const QString &sessionDirectory, int sourceIndex, int frameIndex)
{
    RoiVideoDialog dialog(sessionDirectory);
    dialog.resize(dialogSize);
    dialog.show();
    find<QComboBox>(dialog, "sourceCombo")->setCurrentIndex(sourceIndex);
    find<QSlider>(dialog, "frameSlider")->setValue(frameIndex);
    const auto *caption = find<QLabel>(dialog, "resultCaption");
    while (caption->text().isEmpty()) // the frame is decoded, then the result is made of it
        QCoreApplication::processEvents();
    find<QPushButton>(dialog, "fitButton")->click();
    album.addWidget(QStringLiteral("roi"), &dialog);
}

/// The annotated copy of a frame, at the size that the page shows.
void takeAnnotated(Album &album, const RoiSource &source, const RoiSourceFrame &frame)
{
    constexpr int shownPx = 720;
    QImage picture = QImage(frame.file).scaledToWidth(shownPx, Qt::SmoothTransformation);
    drawFrameAnnotations(picture, frame.actualUtc, source.nickname, true, true, true,
                         MetricScale::kmPerPixel(frame.metadata, picture.width()));
    album.addPhotograph(QStringLiteral("annotated"), picture);
}

} // namespace

bool RegionPictures::take(Album &album, const QString &sessionDirectory, const QString &nickname)
{
    if (!RoiSet::save(regions(), sessionDirectory))
        return false;
    const std::optional<StoredSession> session = RoiSession::load(sessionDirectory);
    const int index = session ? indexOf(*session, nickname) : -1;
    if (index < 0 || session->sources.at(index).frames.isEmpty())
        return false;
    const RoiSource &source = session->sources.at(index);
    const int middle = source.frames.size() / 2;
    takeDialog(album, sessionDirectory, index, middle);
    takeRotations(album, source, source.frames.at(middle));
    takeZoom(album, source.frames.at(middle));
    takeAnnotated(album, source, source.frames.at(middle));
    return true;
}
