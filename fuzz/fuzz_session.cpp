// A session that somebody handed over: session.json, a form feed, manifest.csv.

#include "fuzz/scratch.h"
#include "output/sessionfiles.h"
#include "roi/roisession.h"

#include <QFileInfo>

namespace {

void check(const StoredSession &session)
{
    Scratch::require(!session.sources.isEmpty(), "a session has a datasource");
    Scratch::require(session.firstWithFrames() < session.sources.size(), "one of them is shown");
    for (const RoiSource &source : session.sources) {
        for (const RoiSourceFrame &frame : source.frames)
            Scratch::require(QFileInfo(frame.file).isFile(), "a frame is on disk");
        if (RoiSession::mayWriteTo(source, session.directory))
            Scratch::require(source.folder.startsWith(session.directory + QLatin1Char('/')),
                             "what is written lies in the session");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    static const bool hasFrame = QFileInfo::exists(
        Scratch::write(QStringLiteral("AIA/") + SessionFiles::frame(0), "no picture"));
    Scratch::require(hasFrame, "a frame to find");
    const QByteArray content = Scratch::bytes(data, size);
    const int split = content.indexOf('\f');
    const QString descriptor = Scratch::write(SessionFiles::descriptor(), content.left(split));
    Scratch::write(SessionFiles::manifest(), split < 0 ? QByteArray() : content.mid(split + 1));
    QString errorText;
    const auto session = RoiSession::load(QFileInfo(descriptor).path(), &errorText);
    Scratch::require(session.has_value() == errorText.isEmpty(), "a session or a reason");
    if (session)
        check(*session);
    return 0;
}
