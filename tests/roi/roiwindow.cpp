#include "tests/roi/roiwindow.h"

#include "roi/framepanel.h"
#include "tests/support/literals.h"

void RoiWindowTest::init()
{
    TestFolder::clearKeys();
    m_stored = std::make_unique<TestSession>();
    m_answer = QMessageBox::Ok;
    m_choice.clear();
    m_boxes.clear();
    m_log.clear();
    m_hand.start(5);
    open();
}

/// All that the window says; a "-" follows what is hidden, off or cannot be used.
QString RoiWindowTest::shown() const
{
    const auto *sources = find<QComboBox>("sourceCombo");
    const auto *message = view()->findChild<QLabel *>();
    QStringList seen{message->isHidden() ? QString() : message->text()};
    for (int row = 0; row < sources->count(); ++row)
        seen += sources->itemText(row) + (row == sources->currentIndex() ? "<"_s : QString());
    for (const char *name :
         {"frameCounterLabel", "frameMetaLabel", "intervalLabel", "cursorLabel", "regionLabel",
          "resultCaption", "scaleLabel", "scaleWarningLabel", "statusLabel", "playButton",
          "fromButton", "allButton", "frameSlider", "sourceOverlayCheck", "scaleOverlayCheck",
          "fpsSpin", "filmsBox", "sessionEdit"}) {
        const auto *part = find<QWidget>(name);
        const auto *box = qobject_cast<const QCheckBox *>(part);
        const bool off = !part->isEnabled() || part->isHidden() || (box && !box->isChecked());
        seen += part->property(box ? "none" : "text").toString() +
                part->property("value").toString() + (off ? "-"_s : QString());
    }
    return seen.join(QLatin1Char('|')).replace(m_stored->path(), "*"_s);
}

void RoiWindowTest::windowWithoutASession()
{
    const QTemporaryDir folder;
    show(folder.path());
    QCOMPARE(
        shown(),
        "Open a session to inspect the captured full frames.|0 / 0||||||Scale: --|-||-|From-|All-|0-|||2525|-|"_s);
    QCOMPARE(m_dialog->focusWidget()->objectName(), "browseButton"_s);
    for (const char *button : {"newRoiButton", "generateButton"})
        click(button);
    QCOMPARE(boxes(), "Load a datasource with original PNG frames first.|"
                      "Create and check at least one ROI."_s);
    QTest::keyClick(find<QWidget>("framePanel"), Qt::Key_Escape); // is not kept from the window
    QVERIFY(!m_dialog->isVisible() && m_log.isEmpty());
    m_stored->write("session.json", "{");
    show(m_stored->path());
    QTRY_COMPARE(m_boxes, QStringList("Invalid session.json: unterminated object"_s));
}

void RoiWindowTest::windowOfASession()
{
    const QByteArray sources = R"("sources": [)";
    const QByteArray more = R"("sourceOverlay": false, "scaleOverlay": false, "sources": [
                               {"sourceId": 0, "nickname": "Old", "archiveName": "OLD"},)";
    m_stored->write("session.json", m_stored->read("session.json").replace(sources, more));
    const QByteArray manifest = m_stored->read("manifest.csv");
    m_stored->write("manifest.csv", QByteArray(manifest).replace("HMI/frame_0.png,OK,4096,16",
                                                                 "HMI/frame_0.png,OK,4096,8"));
    m_stored->write("rois.json", R"({"rois":[{"width":0.5,"height":1}]})");
    QFile::remove(m_stored->filePath("HMI/frame_2.png"));
    open();
    const auto expect = [this](int row, const QString &text) {
        find<QComboBox>("sourceCombo")->setCurrentIndex(row);
        QTRY_COMPARE(shown(), text);
    };
    expect(
        1,
        "|Old  [no original PNGs]|AIA 171  [3 frames]<|HMI  [2 frames]|1 / 3|2024-05-01 12:00:00 UTC   |   256 x 192|Film: all frames||Region: 1.280 R\u2609   |   890.5 Mm wide|128 x 192 px, 3 frame(s), 0.60 s|Projected scale: 6957.0 km/pixel at the captured PNG resolution.|-|Session loaded: 3 datasource(s), 2 with original PNG frames.||From|All-|0|-|-|55|-|*"_s);
    for (const QLabel *line : {find<QLabel>("regionLabel"), find<QLabel>("cursorLabel")})
        QCOMPARE(line->minimumHeight(), line->sizeHint().height()); // as high without a text
    toggle({"allSourcesCheck"});
    expect(
        2,
        "|Old  [no original PNGs]|AIA 171  [3 frames]|HMI  [2 frames]<|1 / 2|2024-05-01 12:00:00 UTC   |   128 x 96|Film: all frames||Region: 2.560 R\u2609   |   1781 Mm wide|64 x 96 px, 2 frame(s), 0.40 s|Projected scale: 27828.0 km/pixel at the captured PNG resolution.|A region is not the same place on the Sun as in HMI: AIA 171 (0.5 times as wide).|Session loaded: 3 datasource(s), 2 with original PNG frames.||From|All-|0|-|-|55|-|*"_s);
    find<QComboBox>("sourceCombo")->setCurrentIndex(1); // not even decoded
    expect(
        0,
        "The original PNG frames are not present for this datasource.|Old  [no original PNGs]<|AIA 171  [3 frames]|HMI  [2 frames]|0 / 0||||||Scale: --|A region is not the same place on the Sun as in AIA 171: HMI (2 times as wide).|The original PNG frames are not present for this datasource.|-|From-|All-|0-|-|-|55|-|*"_s);
    toggle({"allSourcesCheck"});
    click("generateButton");
    QCOMPARE(boxes(), "No original PNG frames are available for the selected datasource(s)."_s);
}

void RoiWindowTest::anotherSession()
{
    drawTwo();
    QTest::keyClick(view(), Qt::Key_Right);
    find<QAbstractButton>("fromButton")->click();
    QCOMPARE(status(), "Films are made of the frames of every datasource "
                       "from 2024-05-01 12:01:00 UTC on."_s);
    QTRY_COMPARE(find<QLabel>("resultCaption")->text(), "64 x 48 px, 2 frame(s), 0.40 s"_s);
    const TestSession other;
    other.write("rois.json", "[]");
    other.write("manifest.csv", "");
    m_choice = other.path();
    m_answer = QMessageBox::Discard;
    click("browseButton");
    QCOMPARE(m_dialog->focusWidget()->objectName(), "frameSlider"_s);
    QTRY_COMPARE(
        shown().remove(other.path()),
        "|AIA 171  [3 frames]<|HMI  [3 frames]|1 / 3|frame_0.png   |   256 x 192|Film: all frames||||Scale: metadata not stored in this session; Orvik will query Helioviewer once per datasource when needed.|-|Session loaded: 2 datasource(s), 2 with original PNG frames.||From|All-|0|||55|-|"_s);
    QCOMPARE(m_log.size(), 1); // of the damaged regions
    m_choice = m_stored->filePath("HMI");
    click("browseButton");
    QCOMPARE(boxes(), "The ROI definitions of this session have unsaved changes.\nSave them to "
                      "rois.json?|The selected directory does not contain a readable "
                      "session.json."_s);
}

void RoiWindowTest::refusals()
{
    const QByteArray manifest = m_stored->read("manifest.csv");
    m_stored->write("manifest.csv", QByteArray(manifest).replace("HMI,2024", "HMI,2025"));
    open();
    drawTwo();
    const auto film = [this] { // which does not take the focus first
        find<QPushButton>("generateButton")->click();
    };
    list()->item(1)->setCheckState(Qt::Unchecked);
    spin("xSpin")->selectAll();
    QTest::keyClicks(spin("xSpin"), "100"_s);
    find<QAbstractButton>("toButton")->click();
    useStandIn("ffmpeg"_s, {1, {}, "no\n\nroom", {}, false, false});
    film();
    QCOMPARE(status(), "FFmpeg failed for AIA 171 / ROI 1:"_s);
    QVERIFY(m_stored->read("rois.json").contains(QByteArray::number(100.0 / 256)));
    QCOMPARE(m_dialog->focusWidget()->objectName(), "generateButton"_s);
    m_stored->write("AIA_171/frame_0.png", "damaged");
    find<QAbstractButton>("playButton")->click();
    film();
    QCOMPARE(status(), "Cannot decode frame: %1/AIA_171/frame_0.png"_s.arg(m_stored->path()));
    QCOMPARE(find<QAbstractButton>("playButton")->accessibleName(), "Play"_s);
    TestFolder::setKey("paths/ffmpeg"_s, "/missing"_s);
    toggle({"allSourcesCheck"});
    for (const auto answer : {QMessageBox::Cancel, QMessageBox::Ok}) {
        m_answer = answer;
        film();
    }
    toggle({"allSourcesCheck"});
    find<QComboBox>("sourceCombo")->setCurrentIndex(1);
    film();
    QFile::remove(m_stored->filePath("rois.json"));
    QDir(m_stored->path()).mkdir("rois.json"_s); // in the way
    film();
    QCOMPARE(boxes().remove(m_stored->path()),
             "FFmpeg failed for AIA 171 / ROI 1:\n\nno\n\nroom|Cannot decode "
             "frame:\n/AIA_171/frame_0.png|%1The others are filmed.|%1The others are "
             "filmed.|ffmpeg not found: /missing|%1Choose another interval with From and "
             "To.|Cannot create rois.json in the session directory."_s.arg(
                 "No frame up to 2024-05-01 12:00:00 UTC in:\nHMI\n\n"_s));
}

void RoiWindowTest::frames()
{
    auto *slider = find<QSlider>("frameSlider");
    auto *player = find<QAbstractButton>("playButton");
    int decoded = 0;
    connect(find<FramePanel>("framePanel"), &FramePanel::frameChanged, [&decoded] { ++decoded; });
    const auto press = [&](Qt::Key key) { // on the picture, ten times as large
        view()->resetTransform();
        view()->scale(10, 10);
        const int x = view()->horizontalScrollBar()->value();
        QTest::keyClick(view(), key);
        QTest::qWait(1);
        const bool kept = view()->horizontalScrollBar()->value() == x;
        return "%1%2%3"_s.arg(slider->value()).arg(std::exchange(decoded, 0)).arg(kept);
    };
    QString seen;
    for (const Qt::Key key :
         {Qt::Key_PageDown, Qt::Key_Right, Qt::Key_Home, Qt::Key_Return, Qt::Key_Right})
        seen += press(key);
    QCOMPARE(seen, "111211010001111"_s); // the first frame is fitted
    const auto barred = [slider] {       // a part of the slider that is filmed
        const QImage drawn = slider->grab().toImage();
        return drawn.pixelColor(drawn.width() * 3 / 4, drawn.height() - 2) ==
               slider->palette().color(QPalette::Text);
    };
    for (const char *const end : {"fromButton", "allButton"}) {
        QCOMPARE(barred(), end[0] == 'a');
        find<QAbstractButton>(end)->click();
    }
    QVERIFY(!barred() && status() == "Films are made of all frames."_s);
    for (const Qt::Key key : {Qt::Key_Enter, Qt::Key_Right, Qt::Key_Slash}) {
        player->animateClick(0);
        QTRY_COMPARE(player->accessibleName(), "Pause"_s);
        if (key == Qt::Key_Slash)
            break;
        click("newRoiButton");
        QCOMPARE(status(), "Drag a rectangle on the image to define the new ROI."_s);
        QCOMPARE(player->accessibleName(), "Play"_s);
        QTest::keyClick(view(), key);
        QCOMPARE(view()->dragMode(), QGraphicsView::ScrollHandDrag);
    }
    QVERIFY(list()->count() == 1 && status().isEmpty());
    find<QComboBox>("sourceCombo")->setCurrentIndex(1);
    QCOMPARE(player->accessibleName() + find<QLabel>("frameCounterLabel")->text(), "Play1 / 3"_s);
}
