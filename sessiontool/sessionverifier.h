#pragma once

#include "sessiontool/sessionledger.h"
#include "sessiontool/storeddescriptor.h"

#include <QDir>
#include <QHash>
#include <QSet>

#include <functional>

/**
 * Compares a stored session's manifest, descriptor, pictures and films with each other.
 *
 * Only reads, and opens only regular files, whatever the session's files refer to.
 */
class SessionVerifier final
{
public:
    /// Receives a finding: one line without a full stop.
    using Sink = std::function<void(const QString &finding)>;
    /// Receives how many of the manifest's rows have been checked.
    using Progress = std::function<void(qint64 rows, qint64 ofRows)>;

    /// Checks the beginning and the end of each picture; with @p decodes also decodes it.
    SessionVerifier(const QDir &session, bool decodes, Sink onFinding, Progress onProgress);

    /// Runs all checks; false when the manifest cannot be read, and @p errorText then says why.
    bool run(QString *errorText);

    qint64 findings() const { return m_findings; }
    qint64 rows() const { return m_ledger.requests(); }
    qint64 pictures() const { return m_pictures; } ///< that were found whole
    int films() const { return m_films; }          ///< that were found whole

private:
    /// What the rows of a datasource have shown so far.
    struct Course
    {
        QString archiveName; ///< empty when it is not known
        int next = 0;        ///< number of its next frame
        QSet<qint64> imageIds;
    };

    void report(const QString &finding);
    void checkFolderName();
    void checkSources();
    void checkCounts(const DescribedSource &source);
    void checkFilm(const DescribedSource &source);
    bool checkRows(QString *errorText);
    void checkRow(const ManifestRow &row);
    void checkIndex(const ManifestRow &row);
    void checkTimes(const ManifestRow &row);
    void checkDelta(const ManifestRow &row);
    void checkFrame(const ManifestRow &row);
    void checkNames(const ManifestRow &row, Course &course);
    void checkPicture(const QString &file);
    void reportRow(const QString &flaw);

    QDir m_session;
    bool m_decodes;
    Sink m_onFinding;
    Progress m_onProgress;

    SessionLedger m_ledger;
    std::optional<StoredDescriptor> m_descriptor;
    bool m_expectsFrames = true;  // they may have been removed on purpose
    QHash<int, Course> m_courses; // by sourceId
    qint64 m_line = 0;            // of the row being checked
    int m_nextIndex = 0;
    qint64 m_findings = 0;
    qint64 m_pictures = 0;
    int m_films = 0;
};
