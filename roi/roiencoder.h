#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>

/**
 * One ffmpeg run that is waited for in an event loop of its own, so that windows stay alive.
 */
class RoiEncoder : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Whether there is an encoder at @p program; @p errorText, which may be null, says so if not.
    static bool isPresent(const QString &program, QString *errorText = nullptr);

    /**
     * Encodes frame_000000.png and its successors in @p framesFolder.
     *
     * A film that failed or was canceled half-way is removed: no player could show it. The earlier
     * film of the same name, if any, is there again then; it only goes when the new one stands.
     *
     * @param errorText  may be null; set on failure only: the last 4000 characters of what ffmpeg
     *                   wrote, or the system's words when it wrote nothing
     */
    bool run(const QString &program, const QString &framesFolder, const QString &outputFile,
             int fps, int crf, QString *errorText = nullptr);

public slots:
    /// Kills the encoder; run() then fails.
    void cancel();

private:
    bool waitForEnd(QProcess &process);
    void collectOutput();
    QString failureText(const QProcess &process) const;

    QProcess *m_process = nullptr; // not owned; exists only during a run
    QByteArray m_output;           // the end of it
};
