#include "base/terminationsignals.h"
#include "tests/roi/roiwindow.h"
#include "tests/support/literals.h"
#include "ui/mainwindow.h"

#include <csignal>

/// What a person does: open, look, draw, adjust, save, reload, film.
class TestRoiVideoDialog final : public RoiWindowTest
{
    Q_OBJECT

private slots:
    void drawing()
    {
        click("newRoiButton");
        const QPoint mouse = view()->viewport()->rect().center() / 2;
        view()->scale(10, 10);
        QTest::mouseMove(view()->viewport(), mouse);
        const QPointF looked = view()->mapToScene(mouse);
        QWheelEvent wheel(mouse, {}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view()->viewport(), &wheel);
        QVERIFY((view()->mapToScene(mouse) - looked).manhattanLength() < 1); // it stays in sight
        view()->resetTransform(); // a screen pixel is a pixel of the frame
        drag(QPoint(-5, -5), QPoint(50, 50));
        QCOMPARE(status(), "Start the ROI selection inside the image."_s);
        drag(QPoint(128, 96), QPoint(400, -50)); // upwards and over the edge
        QCOMPARE(geometry(), QRect(128, 0, 128, 96));
        QCOMPARE(status(), "Created ROI 1. Adjust X/Y/Width/Height or rotation if needed."_s);
        QCOMPARE(view()->dragMode(), QGraphicsView::ScrollHandDrag);
        QTRY_COMPARE(find<QLabel>("resultCaption")->text(), "128 x 96 px, 3 frame(s), 0.60 s"_s);
        const QImage result = find<QWidget>("resultPicture")->grab().toImage(); // green, centred
        QCOMPARE(result.pixel({0, 0}), result.pixel(result.rect().bottomRight()));
        click("newRoiButton");
        drag(QPoint(20, 20), QPoint(90, 90), Qt::Key_Escape); // ends no more than the drawing
        QVERIFY(m_dialog->isVisible() && status().isEmpty());
        click("newRoiButton");
        drag(QPoint(10, 10), QPoint(60, 11));
        QCOMPARE(status(), "ROI creation canceled: rectangle too small."_s);
        QCOMPARE(list()->count(), 1);
        QString intervals;
        for (const char *name : {"xSpin", "ySpin", "widthSpin", "heightSpin", "fpsSpin", "crfSpin"})
            intervals += "%1-%2 "_s.arg(spin(name)->minimum()).arg(spin(name)->maximum());
        QCOMPARE(intervals, "0-254 0-190 2-256 2-192 1-120 0-51 "_s);
    }

    void regionsAreWorkedOnThePicture()
    {
        drawTwo();
        const auto press = [this](Qt::Key key) { // on whatever field has the focus
            QTest::keyClick(m_dialog->focusWidget(), key, Qt::ControlModifier);
            return geometry();
        };
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, view()->mapFromScene(64, 99));
        QCOMPARE(list()->currentRow(), 0);
        const QImage shown = view()->viewport()->grab().toImage();
        QCOMPARE(shown.pixelColor(view()->mapFromScene(64, 120)), QColor(Qt::yellow)); // current
        QCOMPARE(shown.pixelColor(view()->mapFromScene(192, 35)), QColor(Qt::green));
        drag({192, 144}, {207, 300}); // the corner, beyond the frame and at an odd width
        QCOMPARE(geometry(), QRect(64, 48, 142, 144));
        drag({64, 100}, {90, 100}, Qt::Key_Escape);
        QCOMPARE(geometry(), QRect(64, 48, 142, 144));
        drag({70, 40}, {300, 50}); // the name
        QCOMPARE(geometry(), QRect(114, 48, 142, 144));
        find<QComboBox>("shapeCombo")->setCurrentIndex(3);
        drag({185, 48}, {185, 100}); // of a side, 16:9 as far as the frame goes
        QCOMPARE(geometry(), QRect(92, 100, 164, 92));
        click("newRoiButton");
        QVERIFY(view()->hasFocus());
        QTest::keyClick(m_dialog->focusWidget(), Qt::Key_Return);
        QCOMPARE(geometry(), QRect(64, 60, 128, 72));
        QCOMPARE(press(Qt::Key_D), QRect(64, 60, 128, 72));
        QTest::keyClick(list(), Qt::Key_F2);
        QTest::keyClicks(list()->findChild<QLineEdit *>(), QString(90, QLatin1Char('n')));
        QTest::keyClick(list()->findChild<QLineEdit *>(), Qt::Key_Return);
        QTRY_COMPARE(list()->currentItem()->text(), QString(80, QLatin1Char('n')));
        find<QComboBox>("rotationCombo")->setCurrentIndex(1);
        QTRY_COMPARE(find<QLabel>("resultCaption")->text(), "72 x 128 px, 3 frame(s), 0.60 s"_s);
        spin("xSpin")->setFocus();
        for (int step = 0; step < 3; ++step)
            QTest::keyClick(spin("xSpin"), Qt::Key_Up);
        QCOMPARE(press(Qt::Key_Z), QRect(64, 60, 128, 72)); // three spins are one step
        QCOMPARE(press(Qt::Key_Y), QRect(67, 60, 128, 72));
        for (int step = 0; step < 3; ++step) // and the turn, and the name
            press(Qt::Key_Z);
        QCOMPARE(find<QComboBox>("rotationCombo")->currentIndex(), 0);
        QCOMPARE(list()->currentItem()->text(), "ROI 3 copy"_s);
        for (int step = 0; step < 3; ++step) // and the copy, the third region, the side
            press(Qt::Key_Z);
        QCOMPARE(list()->count(), 2);
        QCOMPARE(geometry(), QRect(114, 48, 142, 144));
        QTest::keyClick(list(), Qt::Key_F2);
        QTest::keyClicks(list()->findChild<QLineEdit *>(), "typed as the window goes"_s);
    }

    void editsAreNotLostUnsaved()
    {
        drawTwo();
        find<QLineEdit>("nameEdit")->clear();
        QTest::keyClicks(find<QLineEdit>("nameEdit"), "West <b>limb</b>"_s);
        find<QComboBox>("rotationCombo")->setCurrentIndex(2);
        list()->item(0)->setCheckState(Qt::Unchecked);
        click("saveRoisButton");
        QCOMPARE(boxes(), "ROI definitions saved to rois.json."_s);
        spin("xSpin")->selectAll();
        QTest::keyClicks(spin("xSpin"), "101"_s); // and no Return
        m_answer = QMessageBox::Cancel;
        m_dialog->close(); // as by the window's own button
        QVERIFY(m_dialog->isVisible() && boxes().contains("unsaved changes"_s));
        find<QComboBox>("sourceCombo")->setCurrentIndex(1); // half the size
        QTRY_COMPARE(geometry(), QRect(51, 0, 32, 24));
        QFile::remove(m_stored->filePath("rois.json"));
        QDir(m_stored->path()).mkdir("rois.json"_s); // in the way
        m_answer = QMessageBox::Save;
        click("closeButton");
        QVERIFY(m_dialog->isVisible() && boxes().contains("|Cannot "_s));
        QDir(m_stored->path()).rmdir("rois.json"_s);
        click("closeButton");
        QVERIFY(!m_dialog->isVisible());

        open();
        list()->setCurrentRow(1);
        QCOMPARE(list()->item(0)->checkState(), Qt::Unchecked);
        QCOMPARE(list()->currentItem()->text(), "West <b>limb</b>"_s);
        QCOMPARE(geometry(), QRect(101, 0, 64, 48));
        QCOMPARE(find<QComboBox>("rotationCombo")->currentIndex(), 2);
        list()->setFocus();
        QTest::keyClick(list(), Qt::Key_Delete);
        QCOMPARE(list()->count(), 1);
        m_answer = QMessageBox::Discard;
        click("closeButton");
        QVERIFY(!m_dialog->isVisible());
    }

    void filmsAreAsTheBoxesSay()
    {
        FakeProgram::Reply reply;
        reply.standardOutput = R"({"id":1,"date":"2024-05-01 12:00:00","rsun":1600,"width":4096})";
        const QString curl = useStandIn("curl"_s, reply);
        m_stored->write("rois.json", R"({"rois":[{"width":1,"height":1,"enabled":false},
                                                 {"name":"all","width":1,"height":1}]})");
        QFile::remove(m_stored->filePath("manifest.csv")); // and with it the scale
        const auto before = m_stored->contents();
        open();
        spin("fpsSpin")->setValue(7);
        spin("crfSpin")->setValue(9);
        toggle({"timestampCheck", "scaleOverlayCheck", "allSourcesCheck"});
        m_answer = QMessageBox::Cancel;
        click("generateButton");
        expectCanceled();
        m_answer = QMessageBox::Ok;
        click("generateButton");
        QCOMPARE(boxes(), "Created 2 ROI video(s).\n\nOriginal PNG frames "
                          "were not modified."_s);
        QCOMPARE(status(), "Completed: 2 ROI video(s) created."_s);
        QCOMPARE(filmShape(film()), "256,192,7/1,3"_s);
        QVERIFY(m_log.contains("ROI video completed: "_s + film())); // not turned
        QCOMPARE(filmShape(m_stored->filePath("HMI/HMI__ROI_02_all.mp4")), "128,96,7/1,3"_s);
        QVERIFY(m_stored->read("AIA_171/AIA_171__ROI_02_all.mp4").contains("crf=9.0")); // by x264
        QCOMPARE(drawnCorners(2), "---x"_s);
        QVERIFY(FakeProgram::runs(curl).isEmpty());

        toggle({"sourceOverlayCheck", "scaleOverlayCheck", "allSourcesCheck", "introCheck"});
        find<QDoubleSpinBox>("zoomDurationSpin")->setValue(0.5);
        const auto *scale = find<QLabel>("scaleLabel");
        QVERIFY(scale->text().startsWith("Scale: metadata not stored in this "_s));
        for (int round = 0; round < 2; ++round)
            click("generateButton");
        QCOMPARE(filmShape(film()), "256,192,7/1,7"_s);
        QCOMPARE(drawnCorners(6), "-x--"_s);
        QVERIFY(scale->text().startsWith("Projected scale: 6957.0 km/pixel"_s));
        QVERIFY(find<QLabel>("regionLabel")->text().endsWith(" Mm wide"_s)); // as it is known now
        QCOMPARE(FakeProgram::runs(curl).size(), 1); // with the session's start
        QCOMPARE(find<QTreeWidget>("filmTree")->topLevelItemCount(), 1);
        QVERIFY(FakeProgram::runs(curl).constFirst().arguments.last().contains("00:00Z"_s));
        QCOMPARE(m_stored->contents(), before);
    }

    void onlyTheGoodFramesAreFilmed()
    {
        drawTwo();
        for (const char *frame : {"AIA_171/frame_0.png", "AIA_171/frame_2.png"})
            m_stored->write(frame, "damaged");
        find<QAbstractButton>("playButton")->click();
        QTRY_COMPARE(find<QSlider>("frameSlider")->value(), 2);
        QTest::keyClick(view(), Qt::Key_PageUp);
        for (const char *end : {"fromButton", "toButton"})
            find<QAbstractButton>(end)->click();
        toggle({"allSourcesCheck"});
        click("generateButton");
        const QString last = m_stored->filePath("HMI/HMI__ROI_02_ROI_2.mp4");
        QCOMPARE(filmShape(last), "32,24,5/1,1"_s);
        const auto *films = find<QTreeWidget>("filmTree");
        const QTreeWidgetItem *film = films->topLevelItem(3);
        QCOMPARE(film->text(0) + film->text(3), "HMI0.20"_s);
        QCOMPARE(film->data(0, Qt::UserRole).toString(), last);
        QCOMPARE(films->currentItem(), films->topLevelItem(0));
        const QHeaderView *columns = films->header(); // names take the rest
        QVERIFY(columns->sectionResizeMode(1) == QHeaderView::Stretch &&
                columns->sectionResizeMode(3) == QHeaderView::ResizeToContents &&
                !columns->stretchLastSection() && film->textAlignment(3) & Qt::AlignRight);
    }

    void closeEndsAWaitForTheService()
    {
        QFile::remove(m_stored->filePath("manifest.csv")); // and with it the scale
        open();
        drawTwo();
        FakeProgram::Reply hanging;
        hanging.hang = true;
        useStandIn("curl"_s, hanging);
        QTimer::singleShot(0, this, [this] {
            QVERIFY(!find<QPushButton>("generateButton")->isEnabled());
            click("closeButton");
        });
        click("generateButton");
        QVERIFY(m_dialog->isVisible() && find<QPushButton>("generateButton")->isEnabled());
        expectCanceled();
        QCOMPARE(m_log.constLast(), "WARNING scale metadata AIA 171: The lookup was canceled."_s);
    }

    void terminationWhileFilmingAndWhileAsked()
    {
        const QByteArray film = "AIA_171/AIA_171__ROI_01_a.mp4";
        m_stored->write("rois.json", R"({"rois":[{"name":"a","width":1,"height":1}]})");
        m_stored->write(film, "an earlier film");
        const auto before = m_stored->contents();
        FakeProgram::Reply hanging;
        hanging.hang = true;
        hanging.files.insert("$last"_s, "half a film");
        const QString ffmpeg = useStandIn("ffmpeg"_s, hanging);
        useStandIn("curl"_s, hanging);
        TestFolder::setKey("paths/output"_s, m_stored->path());
        TerminationSignals terminations;
        m_hand.stop();
        for (const int number : {SIGTERM, SIGHUP}) {
            MainWindow window;
            connect(&terminations, &TerminationSignals::received, &window, &MainWindow::shutDown);
            window.show();
            QTimer hand;
            connect(&hand, &QTimer::timeout, &window, [&] {
                const bool filming = number == SIGTERM;
                const auto *dialog = window.findChild<RoiVideoDialog *>();
                if (QApplication::activeModalWidget() == dialog) {
                    QTest::keyClick(part<QLineEdit>(*dialog, "nameEdit"), Qt::Key_X);
                    const char *button = filming ? "generateButton" : "closeButton";
                    QTimer::singleShot(0, part<QPushButton>(*dialog, button), &QPushButton::click);
                } else if (!filming || !FakeProgram::runs(ffmpeg).isEmpty()) {
                    hand.stop();
                    std::raise(number);
                }
            });
            hand.start(50);
            QMetaObject::invokeMethod(&window, "createRoiVideo"); // until the tool is closed
            QVERIFY(!window.isVisible());
            QCOMPARE(kill(pid_t(FakeProgram::runs(ffmpeg).constFirst().processId), 0), -1);
            QCOMPARE(m_stored->contents(), before);
            QCOMPARE(m_stored->read(film), QByteArray("an earlier film"));
        }
    }

    void logTellsWhatWasFoundInTheSession()
    {
        m_stored->write("manifest.csv",
                        m_stored->read("manifest.csv") + QByteArray(1100000, 'x') + "\nmore\n");
        m_stored->write("HMI/a.mp4.orvik-earlier", "a film");
        m_stored->write("rois.json", "[]");
        open();
        QCOMPARE(m_log, QStringList({"WARNING line 8 of manifest.csv is longer than "
                                     "1 MB. Only the rows before it are read."_s,
                                     "WARNING rois.json of this session is damaged: no region "
                                     "was loaded. The file is kept as rois.json.bad when regions "
                                     "are saved."_s,
                                     "ROI video restored after a run that was cut "
                                     "short: "_s +
                                         m_stored->filePath("HMI/a.mp4")}));

        for (const char *name : {"manifest.csv", "HMI/frame_1.png", "HMI/frame_2.png"})
            QFile::remove(m_stored->filePath(name));
        open();
        find<QComboBox>("sourceCombo")->setCurrentIndex(1);
        QTest::keyClick(view(), Qt::Key_Right); // with nowhere to go
        QTRY_COMPARE(find<QLabel>("frameCounterLabel")->text(), "1 / 1"_s);
    }

private:
    void expectCanceled()
    {
        QCOMPARE(status(), "ROI video generation canceled. Original frames were not "
                           "modified."_s);
        QCOMPARE(boxes(), status());
    }

    QString film() const { return m_stored->filePath("AIA_171/AIA_171__ROI_02_all.mp4"); }
    /// An x for each corner in which frame @p index of the film is not as the stored ones, by rows.
    QString drawnCorners(int index) const
    {
        const QImage shown = filmFrame(film(), index);
        const QImage plain = TestSession::frame(shown.size());
        QString drawn;
        for (const QPoint &corner : {QPoint(0, 0), {132, 0}, {0, 100}, {132, 100}}) {
            const QRect part(corner, QSize(124, 92));
            drawn += QLatin1Char(shown.copy(part) == plain.copy(part) ? '-' : 'x');
        }
        return drawn;
    }
};

QTEST_MAIN(TestRoiVideoDialog)
#include "tst_roivideodialog.moc"
