#include "roi/resultview.h"

#include "roi/roigeometry.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double quickPixels = 1e6; // cut, turned, annotated and shown within a few milliseconds
constexpr int restMs = 150;
constexpr QSize smallestPx(200, 150);
constexpr QSize usualPx(300, 260);

/// By what both sides of a frame are to be divided so that a region of @p size is shown quickly; 1
/// when it is small enough.
int draftDivisor(const QSize &size)
{
    const double pixels = static_cast<double>(size.width()) * size.height();
    return std::max(1, static_cast<int>(std::ceil(std::sqrt(pixels / quickPixels))));
}

/// Size in pixels of the film of a region.
QSize filmSize(const Roi &roi, const QSize &frame)
{
    const QSize size = RoiGeometry::pixelRect(roi.rect, frame).size();
    return RoiGeometry::reducedRotation(roi.rotation) % 180 == 0 ? size : size.transposed();
}

} // namespace

/// One picture, as large as it fits; or a text in its place.
class ResultView::Picture final : public QWidget
{
public:
    explicit Picture(QWidget *parent) : QWidget(parent)
    {
        setMinimumSize(smallestPx);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

    QSize sizeHint() const override { return usualPx; }

    void showImage(const QImage &image, const QString &text)
    {
        m_image = image;
        m_text = text;
        m_fitted = {};
        update();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().base());
        if (m_image.isNull()) {
            painter.setPen(palette().color(QPalette::Text));
            painter.drawText(rect().adjusted(8, 8, -8, -8),
                             static_cast<int>(Qt::AlignCenter) | static_cast<int>(Qt::TextWordWrap),
                             m_text);
            return;
        }
        const QSize size = m_image.size().scaled(rect().size(), Qt::KeepAspectRatio);
        const QSize pixels = size * devicePixelRatioF();
        if (m_fitted.size() != pixels)
            m_fitted = QPixmap::fromImage(
                m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        QRect place(QPoint(), size);
        place.moveCenter(rect().center());
        painter.drawPixmap(place, m_fitted);
    }

private:
    QImage m_image;
    QString m_text;
    QPixmap m_fitted; // in pixels of the screen
};

ResultView::ResultView(QWidget *parent)
    : QGroupBox(parent), m_picture(new Picture(this)), m_caption(new QLabel(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_picture);
    layout->addWidget(m_caption);
    m_picture->setObjectName(QStringLiteral("resultPicture"));
    m_picture->setAccessibleName(tr("Result"));
    m_caption->setObjectName(QStringLiteral("resultCaption"));
    m_caption->setWordWrap(true);
    m_caption->setTextFormat(Qt::PlainText);
    for (QTimer *timer : {&m_drafting, &m_finishing})
        timer->setSingleShot(true);
    connect(&m_drafting, &QTimer::timeout, this, &ResultView::showDraft);
    connect(&m_finishing, &QTimer::timeout, this, &ResultView::finish);
}

ResultView::~ResultView() = default;

void ResultView::showSubject(const Subject &subject)
{
    m_subject = subject;
    m_finishing.stop();
    m_drafting.start();
}

void ResultView::showMessage(const QString &text)
{
    m_drafting.stop();
    m_finishing.stop();
    m_subject = {};
    m_draftFrame = {};
    m_picture->showImage({}, text);
    m_caption->clear();
}

void ResultView::showDraft()
{
    const QSize size = filmSize(m_subject.roi, m_subject.decoded.size());
    m_caption->setText(
        tr("%1 x %2 px, %3")
            .arg(QString::number(size.width()), QString::number(size.height()), m_subject.caption));
    const int divisor = draftDivisor(size);
    if (divisor == 1) {
        finish();
        return;
    }
    render(draftFrame(divisor));
    m_finishing.start(restMs);
}

void ResultView::finish()
{
    render(m_subject.decoded);
    m_subject = {};
    m_draftFrame = {};
}

/// The reduced frame; made once for each frame.
const QImage &ResultView::draftFrame(int divisor)
{
    const QSize size = m_subject.decoded.size() / divisor;
    const qint64 key = m_subject.decoded.cacheKey();
    if (std::exchange(m_draftKey, key) != key || m_draftFrame.size() != size)
        m_draftFrame = m_subject.decoded.scaled(size);
    return m_draftFrame;
}

void ResultView::render(const QImage &frame)
{
    m_picture->showImage(RoiPicture::ofFrame(frame, m_subject.frame, m_subject.roi, m_subject.look),
                         {});
}
