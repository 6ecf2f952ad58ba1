#pragma once

#include "roi/roivideoplan.h"

#include <QGroupBox>

#include <memory>

namespace Ui {
class FilmOptions;
}

/// How films are encoded and annotated, and of which datasources they are made.
class FilmOptions final : public QGroupBox
{
    Q_OBJECT

public:
    explicit FilmOptions(QWidget *parent = nullptr);
    ~FilmOptions() override;

    RoiOverlays overlays() const;
    int fps() const;
    bool allSources() const; ///< rather than the current one
    /// Puts all choices but the datasources into @p plan.
    void fill(RoiVideoPlan &plan) const;

    /// Sets the choices that a session has stored.
    void preset(const StoredSession &session);
    void showScaleLine(const QString &text);
    /// Shows a warning that the chosen datasources differ; hidden when empty.
    void showScaleWarning(const QString &text);

signals:
    /// A choice has changed; sent once for each.
    void changed();

private:
    std::unique_ptr<Ui::FilmOptions> m_ui;
};
