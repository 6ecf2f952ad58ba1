#include "sessiontool/sessionverifier.h"

#include "base/utctext.h"
#include "imaging/framedecoder.h"
#include "output/framesequence.h"
#include "output/manifestledger.h"
#include "output/sessionfiles.h"
#include "output/sessionkeys.h"
#include "sessiontool/filmverdict.h"
#include "sessiontool/sessioninterval.h"

#include <QFileInfo>
#include <QImage>

#include <array>
#include <utility>

namespace {

/// Whether @p file, as a manifest names it, lies inside the session by its name.
bool staysInside(const QString &file)
{
    return !file.isEmpty() && !QDir::isAbsolutePath(file) &&
           !file.split(QLatin1Char('/')).contains(QStringLiteral("..")) &&
           !file.contains(QLatin1Char('\\'));
}

QString filmOf(const QString &archiveName)
{
    return archiveName + QLatin1Char('/') + SessionFiles::film(archiveName);
}

} // namespace

SessionVerifier::SessionVerifier(const QDir &session, bool decodes, Sink onFinding,
                                 Progress onProgress)
    : m_session(session)
    , m_decodes(decodes)
    , m_onFinding(std::move(onFinding))
    , m_onProgress(std::move(onProgress))
{}

bool SessionVerifier::run(QString *errorText)
{
    const std::optional<SessionLedger> ledger = SessionLedgers::read(m_session, errorText);
    if (!ledger)
        return false;
    m_ledger = *ledger;
    QString reason;
    m_descriptor = StoredDescriptors::load(m_session, &reason);
    if (!m_descriptor)
        report(reason);
    for (const QString &remark : std::as_const(m_ledger.remarks))
        report(remark);
    checkFolderName();
    checkSources();
    return checkRows(errorText);
}

void SessionVerifier::report(const QString &finding)
{
    ++m_findings;
    m_onFinding(finding);
}

void SessionVerifier::reportRow(const QString &flaw)
{
    report(QStringLiteral("manifest.csv:%1: %2").arg(QString::number(m_line), flaw));
}

// The session as a whole

/// A folder may have been renamed; one that still names an interval has to name the right one.
void SessionVerifier::checkFolderName()
{
    const auto named = SessionIntervals::fromFolderName(m_session.dirName());
    if (!named || !m_descriptor)
        return;
    if (named->startUtc != m_descriptor->startUtc || named->endUtc != m_descriptor->endUtc)
        report(QStringLiteral("session.json: its interval, %1 to %2, is not that of the folder's "
                              "name")
                   .arg(UtcText::toText(m_descriptor->startUtc),
                        UtcText::toText(m_descriptor->endUtc)));
}

void SessionVerifier::checkSources()
{
    if (!m_descriptor)
        return;
    m_expectsFrames =
        m_descriptor->keepFrames || m_descriptor->canceled || !m_descriptor->createVideos;
    for (const DescribedSource &source : std::as_const(m_descriptor->sources)) {
        checkCounts(source);
        const bool hasFolder = StoredDescriptors::isFolderName(source.archiveName);
        m_courses[source.sourceId].archiveName = hasFolder ? source.archiveName : QString();
        if (hasFolder)
            checkFilm(source);
        else
            report(QStringLiteral("session.json: \"%1\" is no folder of %2 inside the session")
                       .arg(source.archiveName, source.nickname));
    }
    for (const SourceLedger &source : std::as_const(m_ledger.sources)) {
        if (!m_courses.contains(source.sourceId))
            report(QStringLiteral("session.json: %1 [%2] of manifest.csv is not in it")
                       .arg(source.nickname, QString::number(source.sourceId)));
    }
}

void SessionVerifier::checkCounts(const DescribedSource &source)
{
    struct Count
    {
        QLatin1String key;
        qint64 inManifest;
    };
    const SourceLedger ledger = m_ledger.source(source.sourceId);
    const std::array<Count, 4> counts = {{
        {SessionKeys::acceptedFrames, ledger.acceptedFrames()},
        {SessionKeys::timestampedVideoFrames, ledger.annotatedFrames},
        {SessionKeys::duplicateRequests, ledger.count(FrameStatus::Duplicate)},
        {SessionKeys::rejectedTimeRequests, ledger.count(FrameStatus::RejectedTime)},
    }};
    for (const Count &count : counts) {
        const QJsonValue described = source.record.value(count.key);
        if (!described.isUndefined() &&
            described.toDouble(-1) != static_cast<double>(count.inManifest))
            report(QStringLiteral("session.json: %1 of %2 is %3; manifest.csv has %4")
                       .arg(count.key, source.nickname, described.toVariant().toString(),
                            QString::number(count.inManifest)));
    }
}

/// Frames go only when every film is whole; so where one is not, they have to be there.
void SessionVerifier::checkFilm(const DescribedSource &source)
{
    using Kind = FilmVerdict::Kind;
    const qint64 frames = m_ledger.source(source.sourceId).acceptedFrames();
    const QString film = filmOf(source.archiveName);
    const FilmVerdict verdict = FilmVerdicts::judge(m_session.filePath(film), frames);
    const bool isDue = m_descriptor->createVideos && !m_descriptor->canceled && frames > 0;
    if (verdict.kind == Kind::Whole)
        ++m_films;
    else if (isDue)
        m_expectsFrames = true;
    if (verdict.kind == Kind::Missing && isDue)
        report(film + QStringLiteral(": is missing; \"orvik-session encode\" makes it"));
    else if (verdict.kind == Kind::Broken)
        report(QStringLiteral("%1: %2; \"orvik-session encode --replace-broken\" makes it anew")
                   .arg(film, verdict.flaw));
    else if (verdict.kind == Kind::Other)
        report(QStringLiteral("%1: %2").arg(film, verdict.flaw));
}

// Rows

bool SessionVerifier::checkRows(QString *errorText)
{
    ManifestLedger rows;
    if (!rows.open(m_session.filePath(SessionFiles::manifest()), errorText))
        return false;
    constexpr qint64 progressRows = 100;
    const qint64 all = m_ledger.requests();
    qint64 done = 0;
    while (const std::optional<ManifestRow> row = rows.next()) {
        m_line = rows.lineNumber();
        checkRow(*row);
        if (++done % progressRows == 0)
            m_onProgress(done, all);
    }
    return true;
}

void SessionVerifier::checkRow(const ManifestRow &row)
{
    checkIndex(row);
    checkTimes(row);
    if (row.status == FrameStatus::Ok)
        checkFrame(row);
}

/// A run writes its rows in the order of its plan.
void SessionVerifier::checkIndex(const ManifestRow &row)
{
    const int index = row.request.requestIndex;
    if (index > m_nextIndex)
        reportRow(QStringLiteral("the row of request %1 is missing before it").arg(m_nextIndex));
    else if (index < m_nextIndex)
        reportRow(QStringLiteral("request %1 comes too late").arg(index));
    m_nextIndex = index + 1;
}

void SessionVerifier::checkTimes(const ManifestRow &row)
{
    const QDateTime &requested = row.request.requestedUtc;
    if (!requested.isValid())
        reportRow(QStringLiteral("it has no requested time"));
    else if (m_descriptor && m_descriptor->startUtc.isValid() && m_descriptor->endUtc.isValid() &&
             (requested < m_descriptor->startUtc || requested > m_descriptor->endUtc))
        reportRow(QStringLiteral("%1 lies outside of the session's interval")
                      .arg(UtcText::toText(requested)));
    if (requested.isValid() && row.actualUtc.isValid())
        checkDelta(row);
    else if (row.status == FrameStatus::Ok && !row.actualUtc.isValid())
        reportRow(QStringLiteral("its frame has no time of observation"));
}

void SessionVerifier::checkDelta(const ManifestRow &row)
{
    const qint64 delta = row.request.requestedUtc.secsTo(row.actualUtc);
    const bool isNear = std::abs(delta) <= row.toleranceSeconds;
    if (delta != row.deltaSeconds)
        reportRow(QStringLiteral("its times differ by %1 s, DeltaSeconds is %2")
                      .arg(UtcText::signedDelta(delta), UtcText::signedDelta(row.deltaSeconds)));
    if (isNear == (row.status == FrameStatus::RejectedTime))
        reportRow(QStringLiteral("%1 at %2 s, with a tolerance of %3 s")
                      .arg(ManifestRows::toText(row.status), UtcText::signedDelta(delta),
                           QString::number(row.toleranceSeconds)));
}

void SessionVerifier::checkFrame(const ManifestRow &row)
{
    Course &course = m_courses[row.request.sourceId];
    if (course.archiveName.isEmpty())
        course.archiveName = m_ledger.source(row.request.sourceId).archiveName;
    checkNames(row, course);
    if (row.imageId > 0 && course.imageIds.contains(row.imageId))
        reportRow(QStringLiteral("image %1 was accepted before").arg(row.imageId));
    course.imageIds.insert(row.imageId);
    checkPicture(row.file);
    if (row.videoFrame.isEmpty())
        reportRow(QStringLiteral("%1 has no annotated copy").arg(row.file));
    else
        checkPicture(row.videoFrame);
}

/// Frames are numbered without a gap, and the annotated copy has its original's number.
void SessionVerifier::checkNames(const ManifestRow &row, Course &course)
{
    const QString given = row.file.mid(row.file.lastIndexOf(QLatin1Char('/')) + 1);
    const int number = SessionFiles::frameNumber(given);
    const QString due = SessionFiles::frame(course.next);
    const QString file = course.archiveName + QLatin1Char('/') + due;
    if (row.file != file)
        reportRow(QStringLiteral("it names \"%1\" in place of %2").arg(row.file, file));
    const QString copy =
        QStringLiteral("%1/%2/%3")
            .arg(course.archiveName, SessionFiles::videoFramesFolder(), number < 0 ? due : given);
    if (!row.videoFrame.isEmpty() && row.videoFrame != copy)
        reportRow(QStringLiteral("it names \"%1\" in place of %2").arg(row.videoFrame, copy));
    course.next = (number < 0 ? course.next : number) + 1;
}

void SessionVerifier::checkPicture(const QString &file)
{
    if (!staysInside(file)) {
        reportRow(QStringLiteral("\"%1\" is no file of this session; not looked at").arg(file));
        return;
    }
    const QString path = m_session.filePath(file);
    if (!QFileInfo::exists(path)) {
        if (m_expectsFrames)
            reportRow(file + QStringLiteral(" is missing"));
        return;
    }
    if (!FrameSequence::isWhole(path))
        reportRow(file + QStringLiteral(" is cut off, or no PNG"));
    else if (m_decodes && FrameDecoder::decode(path).isNull())
        reportRow(file + QStringLiteral(" does not decode"));
    else
        ++m_pictures;
}
