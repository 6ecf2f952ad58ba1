#include "roi/resultview.h"

#include "roi/roigeometry.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

constexpr int quickPixels = 1'000'000; // cut, turned, annotated and reduced in some milliseconds
constexpr int restMs = 150;
constexpr QSize smallestPx(200, 150);
constexpr QSize usualPx(300, 260);

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
                             int(Qt::AlignCenter) | int(Qt::TextWordWrap), m_text);
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
    layout->addWidget(m_picture, 1);
    layout->addWidget(m_caption);
    m_picture->setObjectName(QStringLiteral("resultPicture"));
    m_picture->setAccessibleName(tr("Result"));
    m_caption->setObjectName(QStringLiteral("resultCaption"));
    m_caption->setWordWrap(true);
    m_caption->setTextFormat(Qt::PlainText);
    m_rendering.setSingleShot(true);
    connect(&m_rendering, &QTimer::timeout, this, &ResultView::render);
}

ResultView::~ResultView() = default;

void ResultView::showSubject(const Subject &subject)
{
    m_subject = subject;
    const QSize size = RoiGeometry::pixelRect(subject.roi.rect, subject.decoded.size()).size();
    m_rendering.start(size.width() * size.height() > quickPixels ? restMs : 0);
}

void ResultView::showMessage(const QString &text)
{
    m_rendering.stop();
    m_subject = {};
    m_picture->showImage({}, text);
    m_caption->clear();
}

void ResultView::render()
{
    const Subject subject = std::exchange(m_subject, {});
    const QImage picture =
        RoiPicture::ofFrame(subject.decoded, subject.frame, subject.roi, subject.look);
    m_picture->showImage(picture, {});
    m_caption->setText(tr("%1 x %2 px, %3")
                           .arg(QString::number(picture.width()), QString::number(picture.height()),
                                subject.caption));
}
