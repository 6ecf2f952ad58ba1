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

/// What the window says; a "-" follows what is hidden, off or cannot be used.
QString RoiWindowTest::shown() const
{
    const auto *message = view()->findChild<QLabel *>();
    QStringList seen{find<QComboBox>("sourceCombo")->currentText(),
                     message->isHidden() ? QString() : message->text()};
    for (const char *name :
         {"frameCounterLabel", "frameMetaLabel", "intervalLabel", "regionLabel", "resultCaption",
          "scaleLabel", "scaleWarningLabel", "statusLabel", "fromButton", "frameSlider", "fpsSpin",
          "crfSpin", "sourceOverlayCheck", "scaleOverlayCheck", "filmsBox"}) {
        const auto *part = find<QWidget>(name);
        const auto *box = qobject_cast<const QCheckBox *>(part);
        const bool off = !part->isEnabled() || part->isHidden() || (box && !box->isChecked());
        seen +=
            (box ? QString() : part->property("text").toString()) + QString(off, QLatin1Char('-'));
    }
    return seen.join(QLatin1Char('|'));
}

void RoiWindowTest::windowWithoutASession()
{
    const QTemporaryDir folder;
    show(folder.path());
    QCOMPARE(shown(), "|Open a session to inspect the captured full frames.|0 / 0|||||Scale: --|-||"
                      "From-|-|25|18|||-"_s);
    QCOMPARE(m_dialog->focusWidget()->objectName(), "browseButton"_s);
    QCOMPARE(m_dialog->windowFlags() &
                 (Qt::WindowMaximizeButtonHint | Qt::WindowContextHelpButtonHint),
             Qt::WindowMaximizeButtonHint);
    const QList<int> before = find<QSplitter>("splitter")->sizes();
    m_dialog->resize(m_dialog->width() + 300, m_dialog->height());
    const QList<int> after = find<QSplitter>("splitter")->sizes();
    QVERIFY(after[0] - before[0] > after[1] - before[1] && after[1] > before[1] &&
            after[2] == before[2]);
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

void RoiWindowTest::anotherSession()
{
    drawTwo();
    QTest::keyClick(view(), Qt::Key_Right);
    find<QAbstractButton>("fromButton")->click();
    QCOMPARE(status(), "Films are made of the frames of every datasource "
                       "from 2024-05-01 12:01:00 UTC on."_s);
    QTRY_COMPARE(find<QLabel>("resultCaption")->text(), "64 x 48 px, 2 frame(s), 0.40 s"_s);
    const TestSession other;
    const QByteArray more = R"("sourceOverlay": false, "scaleOverlay": false, "sources": [
                               {"sourceId": 0, "nickname": "Old", "archiveName": "OLD"},)";
    other.write("session.json", other.read("session.json").replace(R"("sources": [)", more));
    other.write("manifest.csv",
                other.read("manifest.csv")
                    .replace("HMI/frame_0.png,OK,4096,16", "HMI/frame_0.png,OK,4096,8"));
    other.write("rois.json", R"({"rois":[{"width":0.5,"height":1}]})");
    other.write("HMI/a.mp4.orvik-earlier", "a film");
    QFile::remove(other.filePath("HMI/frame_2.png"));
    m_answer = QMessageBox::Discard;
    m_choice = other.path();
    click("browseButton");
    QCOMPARE(m_dialog->focusWidget()->objectName(), "frameSlider"_s);
    m_choice = other.filePath("HMI");
    click("browseButton");
    QCOMPARE(boxes(), "The ROI definitions of this session have unsaved changes.\nSave them to "
                      "rois.json?|The selected directory does not contain a readable "
                      "session.json."_s);
    QCOMPARE(find<QLineEdit>("sessionEdit")->text(), other.path());
    QCOMPARE(find<QComboBox>("sourceCombo")->count() + m_log.size(), 4); // of the film restored
    const auto *line = find<QLabel>("regionLabel");
    QCOMPARE(line->minimumHeight(), line->sizeHint().height()); // as high without a text
    const auto expect = [this](int row, const QString &text) {
        find<QComboBox>("sourceCombo")->setCurrentIndex(row);
        QTRY_COMPARE(shown(), text);
    };
    const QString end =
        "Session loaded: 3 datasource(s), 2 with original PNG frames.|From||5|0|-|-|-"_s;
    expect(1, "AIA 171  [3 frames]||1 / 3|2024-05-01 12:00:00 UTC   |   256 x 192|Film: all frames|"
              "Region: 1.280 R\u2609   |   890.5 Mm wide|128 x 192 px, 3 frame(s), 0.60 s|"
              "Projected scale: 6957.0 km/pixel at the captured PNG resolution.|-|"_s +
                  end);
    toggle({"allSourcesCheck"});
    expect(2, "HMI  [2 frames]||1 / 2|2024-05-01 12:00:00 UTC   |   128 x 96|Film: all frames|"
              "Region: 2.560 R\u2609   |   1781 Mm wide|64 x 96 px, 2 frame(s), 0.40 s|"
              "Projected scale: 27828.0 km/pixel at the captured PNG resolution.|A region is not "
              "the same place on the Sun as in HMI: AIA 171 (0.5 times as wide).|"_s +
                  end);
    find<QComboBox>("sourceCombo")->setCurrentIndex(1); // not even decoded
    const QString none = "The original PNG frames are not present for this datasource."_s;
    expect(0, "Old  [no original PNGs]|%1|0 / 0|||||Scale: --|A region is not the same place on "
              "the Sun as in AIA 171: HMI (2 times as wide).|%1|From-|-|5|0|-|-|-"_s.arg(none));
    toggle({"allSourcesCheck"});
    click("generateButton");
    QCOMPARE(boxes(), "No original PNG frames are available for the selected datasource(s)."_s);
}

void RoiWindowTest::refusals()
{
    m_stored->write("manifest.csv", m_stored->read("manifest.csv").replace("HMI,2024", "HMI,2025"));
    open();
    drawTwo();
    auto *film = find<QPushButton>("generateButton");
    list()->item(1)->setCheckState(Qt::Unchecked);
    spin("xSpin")->selectAll();
    QTest::keyClicks(spin("xSpin"), "100"_s);
    find<QAbstractButton>("toButton")->click();
    useStandIn("ffmpeg"_s, {1, {}, "no\n\nroom", {}, false, false});
    film->click(); // which does not take the focus first
    QCOMPARE(status(), "FFmpeg failed for AIA 171 / ROI 1:"_s);
    QVERIFY(m_stored->read("rois.json").contains(QByteArray::number(100.0 / 256)));
    QCOMPARE(m_dialog->focusWidget(), film);
    m_stored->write("AIA_171/frame_0.png", "damaged");
    find<QAbstractButton>("playButton")->click();
    film->click();
    QCOMPARE(status(), "Cannot decode frame: %1/AIA_171/frame_0.png"_s.arg(m_stored->path()));
    QCOMPARE(find<QAbstractButton>("playButton")->accessibleName(), "Play"_s);
    TestFolder::setKey("paths/ffmpeg"_s, "/missing"_s);
    toggle({"allSourcesCheck"});
    for (const auto answer : {QMessageBox::Cancel, QMessageBox::Ok}) {
        m_answer = answer;
        film->click();
    }
    toggle({"allSourcesCheck"});
    find<QComboBox>("sourceCombo")->setCurrentIndex(1);
    film->click();
    QFile::remove(m_stored->filePath("rois.json"));
    QDir(m_stored->path()).mkdir("rois.json"_s); // in the way
    film->click();
    const QString none = "No frame up to 2024-05-01 12:00:00 UTC in:\nHMI\n\n"_s;
    const QString others = none + "The others are filmed.|"_s;
    QCOMPARE(boxes().remove(m_stored->path()),
             "FFmpeg failed for AIA 171 / ROI 1:\n\nno\n\nroom|"
             "Cannot decode frame:\n/AIA_171/frame_0.png|"_s +
                 others + others +
                 "ffmpeg not found: /missing|%1Choose another interval with From and To.|"
                 "Cannot create rois.json in the session directory."_s.arg(none));
}

void RoiWindowTest::frames()
{
    auto *slider = find<QSlider>("frameSlider");
    auto *player = find<QAbstractButton>("playButton");
    QSignalSpy decoded(find<FramePanel>("framePanel"), &FramePanel::frameChanged);
    QString seen;
    for (const Qt::Key key :
         {Qt::Key_PageDown, Qt::Key_Right, Qt::Key_Home, Qt::Key_Return, Qt::Key_Right}) {
        view()->resetTransform();
        view()->scale(10, 10);
        const int x = view()->horizontalScrollBar()->value();
        QTest::keyClick(view(), key);
        QCoreApplication::processEvents();
        const bool kept = view()->horizontalScrollBar()->value() == x;
        seen += "%1%2%3 "_s.arg(slider->value()).arg(decoded.size()).arg(kept);
        decoded.clear();
    }
    QCOMPARE(seen, "111 211 010 001 111 "_s); // the first frame is fitted
    for (const char *const end : {"fromButton", "allButton", "fromButton"}) {
        const QImage bar = slider->grab().toImage(); // of what is filmed, to the end
        QCOMPARE(bar.pixelColor(bar.width() * 3 / 4, bar.height() - 2) ==
                     slider->palette().color(QPalette::Text),
                 end[0] == 'a');
        find<QAbstractButton>(end)->click();
    }
    for (const Qt::Key key : {Qt::Key_Enter, Qt::Key_Right, Qt::Key_unknown}) {
        player->animateClick(0);
        QTRY_COMPARE(player->accessibleName(), "Pause"_s);
        if (key == Qt::Key_unknown)
            break;
        click("newRoiButton");
        QCOMPARE(player->accessibleName() + status(),
                 "PlayDrag a rectangle on the image to define the new ROI."_s);
        QTest::keyClick(view(), key);
        QCOMPARE(view()->dragMode(), QGraphicsView::ScrollHandDrag);
    }
    QVERIFY(list()->count() == 1 && status().isEmpty());
    find<QComboBox>("sourceCombo")->setCurrentIndex(1);
    QCOMPARE(player->accessibleName() + find<QLabel>("frameCounterLabel")->text(), "Play1 / 3"_s);
}
