#include "roi/filmlist.h"

#include "base/desktopactions.h"
#include "ui_filmlist.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>

namespace {

QTreeWidgetItem *makeItem(const MadeFilm &film)
{
    const double seconds = static_cast<double>(film.pictures) / film.fps;
    auto *item = new QTreeWidgetItem({film.nickname, film.region, QString::number(film.pictures),
                                      QString::number(seconds, 'f', 2)});
    item->setData(0, Qt::UserRole, film.file);
    for (const int number : {2, 3})
        item->setTextAlignment(number, Qt::AlignRight | Qt::AlignVCenter);
    for (int column = 0; column < item->columnCount(); ++column)
        item->setToolTip(column, QDir::toNativeSeparators(film.file).toHtmlEscaped());
    return item;
}

} // namespace

FilmList::FilmList(QWidget *parent) : QGroupBox(parent), m_ui(std::make_unique<Ui::FilmList>())
{
    m_ui->setupUi(this);
    constexpr int regionColumn = 1; // names take what the others leave
    m_ui->filmTree->header()->setStretchLastSection(false);
    m_ui->filmTree->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_ui->filmTree->header()->setSectionResizeMode(regionColumn, QHeaderView::Stretch);
    connect(m_ui->playFilmButton, &QPushButton::clicked, this, &FilmList::play);
    connect(m_ui->openFolderButton, &QPushButton::clicked, this, &FilmList::openFolder);
    connect(m_ui->filmTree, &QTreeWidget::itemActivated, this, &FilmList::play);
    hide();
}

FilmList::~FilmList() = default;

void FilmList::showFilms(const QVector<MadeFilm> &films)
{
    m_ui->filmTree->clear();
    for (const MadeFilm &film : films)
        m_ui->filmTree->addTopLevelItem(makeItem(film));
    m_ui->filmTree->setCurrentItem(m_ui->filmTree->topLevelItem(0));
    setVisible(!films.isEmpty());
}

void FilmList::play()
{
    const QString file = currentFile();
    if (!file.isEmpty() && DesktopActions::playVideo(window(), file))
        emit logMessage(QStringLiteral("Playing video: %1").arg(QDir::toNativeSeparators(file)));
}

void FilmList::openFolder()
{
    const QString file = currentFile();
    if (!file.isEmpty())
        DesktopActions::openFolder(QFileInfo(file).absolutePath());
}

/// Empty when no film is selected.
QString FilmList::currentFile() const
{
    const QTreeWidgetItem *item = m_ui->filmTree->currentItem();
    return item ? item->data(0, Qt::UserRole).toString() : QString();
}
