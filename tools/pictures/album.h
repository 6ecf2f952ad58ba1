#pragma once

#include <QImage>
#include <QString>

#include <functional>

class QWidget;

/// The folder that the pictures are put into.
class Album final
{
public:
    explicit Album(const QString &folder);

    bool isComplete() const { return m_complete; } ///< false as soon as one was not written

    /// What @p widget shows now, as "<name>.png".
    void addWidget(const QString &name, QWidget *widget);
    /// Drawn lines and letters, without loss, as "<name>.png".
    void addDrawing(const QString &name, const QImage &image);
    /// A view of the Sun, compressed as a photograph, as "<name>.jpg".
    void addPhotograph(const QString &name, const QImage &image);
    /// A copy of a text file, as "<name>.txt".
    void addText(const QString &name, const QString &file);

private:
    void keep(bool written, const QString &path);
    QString path(const QString &fileName) const;

    QString m_folder;
    bool m_complete = true;
};

/// Processes events until @p isTrue, for @p limitMs at most; returns its last result.
bool waitUntil(const std::function<bool()> &isTrue, int limitMs = 120000);
