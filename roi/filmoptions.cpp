#include "roi/filmoptions.h"

#include "ui_filmoptions.h"

FilmOptions::FilmOptions(QWidget *parent)
    : QGroupBox(parent), m_ui(std::make_unique<Ui::FilmOptions>())
{
    m_ui->setupUi(this);
    for (const QSpinBox *spin : {m_ui->fpsSpin, m_ui->crfSpin})
        connect(spin, qOverload<int>(&QSpinBox::valueChanged), this, &FilmOptions::changed);
    for (const QCheckBox *check :
         {m_ui->timestampCheck, m_ui->sourceOverlayCheck, m_ui->scaleOverlayCheck, m_ui->introCheck,
          m_ui->allSourcesCheck})
        connect(check, &QCheckBox::toggled, this, &FilmOptions::changed);
    connect(m_ui->zoomDurationSpin, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
            &FilmOptions::changed);
}

FilmOptions::~FilmOptions() = default;

RoiOverlays FilmOptions::overlays() const
{
    return {m_ui->timestampCheck->isChecked(), m_ui->sourceOverlayCheck->isChecked(),
            m_ui->scaleOverlayCheck->isChecked()};
}

int FilmOptions::fps() const
{
    return m_ui->fpsSpin->value();
}

bool FilmOptions::allSources() const
{
    return m_ui->allSourcesCheck->isChecked();
}

void FilmOptions::fill(RoiVideoPlan &plan) const
{
    plan.fps = fps();
    plan.crf = m_ui->crfSpin->value();
    plan.overlays = overlays();
    plan.intro = m_ui->introCheck->isChecked();
    plan.introSeconds = m_ui->zoomDurationSpin->value();
}

void FilmOptions::preset(const StoredSession &session)
{
    m_ui->fpsSpin->setValue(session.videoFps);
    m_ui->crfSpin->setValue(session.videoCrf);
    m_ui->sourceOverlayCheck->setChecked(session.sourceOverlay);
    m_ui->scaleOverlayCheck->setChecked(session.scaleOverlay);
}

void FilmOptions::showScaleLine(const QString &text)
{
    m_ui->scaleLabel->setText(text);
}

void FilmOptions::showScaleWarning(const QString &text)
{
    m_ui->scaleWarningLabel->setText(text);
    m_ui->scaleWarningLabel->setVisible(!text.isEmpty());
}
