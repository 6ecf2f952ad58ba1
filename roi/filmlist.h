#pragma once

#include "roi/roivideogenerator.h"

#include <QGroupBox>

#include <memory>

class QTreeWidgetItem;

namespace Ui {
class FilmList;
}

/// The films that a run has made, to be played; hidden while there are none.
class FilmList final : public QGroupBox
{
    Q_OBJECT

public:
    explicit FilmList(QWidget *parent = nullptr);
    ~FilmList() override;

    void showFilms(const QVector<MadeFilm> &films);

signals:
    /// A line for the log.
    void logMessage(const QString &text);

private:
    void play();
    void openFolder();
    QString currentFile() const;

    std::unique_ptr<Ui::FilmList> m_ui;
};
