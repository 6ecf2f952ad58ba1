#include "sessiontool/linkedframes.h"

#include "base/errortext.h"
#include "output/sessionfiles.h"

#include <QDir>
#include <QFile>

#include <algorithm>

bool LinkedFrames::areNeeded(const QString &videoFrames, const QVector<int> &numbers)
{
    for (int i = 0; i < numbers.size(); ++i) {
        if (numbers.at(i) != i)
            return true;
    }
    const QStringList names = QDir(videoFrames)
                                  .entryList({SessionFiles::frameFilter()},
                                             QDir::AllEntries | QDir::System, QDir::Unsorted);
    return std::any_of(names.cbegin(), names.cend(), [&numbers](const QString &name) {
        return SessionFiles::frameNumber(name) >= numbers.size();
    });
}

bool LinkedFrames::create(const QString &videoFrames, const QVector<int> &numbers,
                          QString *errorText)
{
    const QDir links(m_folder.filePath(SessionFiles::videoFramesFolder()));
    if (!m_folder.isValid() || !QDir().mkdir(links.path()))
        return ErrorText::fail(
            errorText, QStringLiteral("no temporary folder: %1").arg(m_folder.errorString()));
    const QDir frames(QDir(videoFrames).absolutePath());
    for (int i = 0; i < numbers.size(); ++i) {
        const QString link = links.filePath(SessionFiles::frame(i));
        if (!QFile::link(frames.filePath(SessionFiles::frame(numbers.at(i))), link))
            return ErrorText::fail(errorText, QStringLiteral("cannot make the link %1").arg(link));
    }
    return true;
}
