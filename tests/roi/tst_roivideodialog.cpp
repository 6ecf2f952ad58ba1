#include "roi/roivideodialog.h"

#include "tests/roi/film.h"
#include "tests/roi/testsession.h"
#include "tests/support/testfolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGraphicsRectItem>
#include <QGraphicsView>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QListWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>
#include <QWheelEvent>

namespace {

/// Closes message boxes as they come up and remembers what they said.
class BoxReader : public QObject
{
public:
    BoxReader()
    {
        connect(&m_timer, &QTimer::timeout, this, &BoxReader::look);
        m_timer.start(5);
    }
    bool isEmpty() const { return m_texts.isEmpty(); }
    QStringList takeTexts() { return std::exchange(m_texts, {}); }

private:
    void look()
    {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        QCOMPARE(box->windowTitle(), QStringLiteral("ROI video"));
        m_texts.append(box->text());
        box->accept();
    }

    QTimer m_timer;
    QStringList m_texts;
};

QString onlyText(BoxReader &reader)
{
    const QStringList texts = reader.takeTexts();
    return texts.size() == 1 ? texts.first() : QString::number(texts.size());
}

} // namespace

/// The road of a person: open, look, draw, adjust, save, reload, film.
class TestRoiVideoDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { TestFolder::clearKeys(); }
    void init()
    {
        m_stored = std::make_unique<TestSession>();
        open();
    }
    void cleanup() { m_dialog.reset(); }

    void opensEmpty()
    {
        const QTemporaryDir folder;
        m_dialog = std::make_unique<RoiVideoDialog>(folder.path());
        m_dialog->show();
        QVERIFY(view()->findChild<QLabel *>()->text().startsWith(
            QLatin1String("Open a session to inspect")));
        QCOMPARE(textOf("frameCounterLabel"), QStringLiteral("0 / 0"));
        click("newRoiButton");
        QCOMPARE(onlyText(m_boxes),
                 QStringLiteral("Load a datasource with original PNG frames first."));
        click("saveRoisButton");
        QCOMPARE(onlyText(m_boxes), QStringLiteral("No session is loaded."));
        click("generateButton");
        QCOMPARE(onlyText(m_boxes), QStringLiteral("Create and check at least one ROI."));
    }

    void damagedSessionIsToldWhenTheDialogShows()
    {
        m_stored->write(QStringLiteral("session.json"), "{");
        m_dialog = std::make_unique<RoiVideoDialog>(m_stored->path());
        QVERIFY(m_boxes.isEmpty());
        m_dialog->show();
        QTRY_VERIFY(!m_boxes.isEmpty());
        QVERIFY(onlyText(m_boxes).startsWith(QLatin1String("Invalid session.json: ")));
        QVERIFY(find<QLineEdit>("sessionEdit")->text().isEmpty());
    }

    void failedLoadKeepsTheSession()
    {
        QString errorText;
        QVERIFY(!m_dialog->loadSession(QDir::tempPath(), &errorText));
        QCOMPARE(find<QLineEdit>("sessionEdit")->text(), m_stored->path());
        QCOMPARE(find<QComboBox>("sourceCombo")->count(), 2);
    }

    void showsTheSession()
    {
        QCOMPARE(textOf("statusLabel"),
                 QStringLiteral("Session loaded: 2 datasource(s), 2 with original PNG frames."));
        QCOMPARE(find<QComboBox>("sourceCombo")->currentText(),
                 QStringLiteral("AIA 171  [3 frames]"));
        QCOMPARE(find<QSpinBox>("fpsSpin")->value(), 5);
        QCOMPARE(textOf("frameMetaLabel"),
                 QStringLiteral("2024-05-01 12:00:00 UTC   |   256 x 192"));
        QCOMPARE(textOf("scaleLabel"), QStringLiteral("Projected scale: 6957.0 km/pixel at the "
                                                      "captured PNG resolution."));
        QTest::mouseClick(view()->viewport(), Qt::LeftButton);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(textOf("frameCounterLabel"), QStringLiteral("2 / 3"));
    }

    void missingAndUnreadableFrames()
    {
        QDir(m_stored->filePath(QStringLiteral("HMI"))).removeRecursively();
        m_stored->write(QStringLiteral("AIA_171/frame_1.png"), "no picture");
        open();
        find<QSlider>("frameSlider")->setValue(1);
        QCOMPARE(textOf("statusLabel"),
                 QStringLiteral("Cannot decode ") +
                     m_stored->filePath(QStringLiteral("AIA_171/frame_1.png")));
        QCOMPARE(textOf("scaleLabel"), QStringLiteral("Scale: --"));
        find<QComboBox>("sourceCombo")->setCurrentIndex(1);
        QCOMPARE(find<QComboBox>("sourceCombo")->currentText(),
                 QStringLiteral("HMI  [no original PNGs]"));
        QCOMPARE(textOf("statusLabel"),
                 QStringLiteral("The original PNG frames are not present for this datasource."));
        QCOMPARE(textOf("frameCounterLabel"), QStringLiteral("0 / 0"));
    }

    void wheelZoomsWithoutLimit()
    {
        const double before = view()->transform().m11();
        for (int step = 0; step < 10; ++step)
            turnWheel(120);
        QCOMPARE(view()->transform().m11(), before * std::pow(1.15, 10));
        turnWheel(-120);
        QCOMPARE(view()->transform().m22(), before * std::pow(1.15, 9));
    }

    void drawing_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<QRect>("pixels"); // empty: no region
        QTest::newRow("down to the right")
            << QPoint(64, 48) << QPoint(192, 144) << QRect(64, 48, 128, 96);
        QTest::newRow("up to the left")
            << QPoint(192, 144) << QPoint(64, 48) << QRect(64, 48, 128, 96);
        QTest::newRow("leaves the frame")
            << QPoint(128, 96) << QPoint(400, -50) << QRect(128, 0, 128, 96);
        QTest::newRow("a pixel high") << QPoint(10, 10) << QPoint(60, 11) << QRect();
    }
    void drawing()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, to);
        QFETCH(QRect, pixels);
        view()->resetTransform(); // a screen pixel is a pixel of the frame
        click("newRoiButton");
        QCOMPARE(textOf("statusLabel"),
                 QStringLiteral("Drag a rectangle on the image to define the new ROI."));
        drag(QPoint(-5, -5), QPoint(-5, -5));
        QCOMPARE(textOf("statusLabel"),
                 QStringLiteral("Start the ROI selection inside the image."));
        drag(from, to);
        QCOMPARE(view()->dragMode(), QGraphicsView::ScrollHandDrag);
        QCOMPARE(find<QListWidget>("roiList")->count(), pixels.isEmpty() ? 0 : 1);
        if (pixels.isEmpty()) {
            QCOMPARE(textOf("statusLabel"),
                     QStringLiteral("ROI creation canceled: rectangle too small."));
        } else {
            QCOMPARE(geometry(), pixels);
            QCOMPARE(outlines(), QVector<QRectF>{pixels});
            QCOMPARE(textOf("statusLabel"),
                     QStringLiteral("Created ROI 1. Adjust X/Y/Width/Height or rotation if "
                                    "needed."));
        }
    }

    void editsSurviveUnsaved()
    {
        drawTwo();
        auto *list = find<QListWidget>("roiList");
        find<QLineEdit>("nameEdit")->setFocus();
        find<QLineEdit>("nameEdit")->selectAll();
        QTest::keyClicks(find<QLineEdit>("nameEdit"), QStringLiteral("West <b>limb</b>"));
        find<QSpinBox>("xSpin")->setValue(101);
        find<QComboBox>("rotationCombo")->setCurrentIndex(2);
        list->item(0)->setCheckState(Qt::Unchecked);

        find<QComboBox>("sourceCombo")->setCurrentIndex(1); // half the size
        QCOMPARE(geometry(), QRect(51, 0, 32, 24));
        find<QComboBox>("sourceCombo")->setCurrentIndex(0);
        QCOMPARE(geometry(), QRect(101, 0, 64, 48));
        click("newRoiButton");
        drag(QPoint(10, 10), QPoint(40, 40));
        QCOMPARE(list->item(0)->checkState(), Qt::Unchecked);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Delete);
        QCOMPARE(list->count(), 2);
        QCOMPARE(list->item(0)->checkState(), Qt::Unchecked);
        QCOMPARE(list->currentItem()->text(), QStringLiteral("West <b>limb</b>"));
        QCOMPARE(find<QComboBox>("rotationCombo")->currentIndex(), 2);

        click("saveRoisButton");
        QCOMPARE(onlyText(m_boxes), QStringLiteral("ROI definitions saved to rois.json."));
        open();
        QCOMPARE(find<QListWidget>("roiList")->item(0)->checkState(), Qt::Unchecked);
        find<QListWidget>("roiList")->setCurrentRow(1);
        QCOMPARE(geometry(), QRect(101, 0, 64, 48));
        QCOMPARE(find<QComboBox>("rotationCombo")->currentIndex(), 2);
    }

    void currentRegionIsYellow()
    {
        drawTwo();
        find<QListWidget>("roiList")->setCurrentRow(0);
        const QList<QGraphicsItem *> items = view()->scene()->items(Qt::AscendingOrder);
        QVector<QColor> colours;
        for (QGraphicsItem *item : items) {
            if (const auto *region = dynamic_cast<QGraphicsRectItem *>(item))
                colours.append(region->pen().color());
        }
        QCOMPARE(colours, QVector<QColor>({Qt::yellow, Qt::green}));
    }

    void filmsOfAllDatasources()
    {
        const auto before = m_stored->checksums();
        drawTwo();
        find<QListWidget>("roiList")->item(0)->setCheckState(Qt::Unchecked);
        find<QCheckBox>("allSourcesCheck")->setChecked(true);
        QSignalSpy log(m_dialog.get(), &RoiVideoDialog::logMessage);
        click("generateButton");
        QCOMPARE(onlyText(m_boxes), QStringLiteral("Created 2 ROI video(s).\n\nOriginal PNG frames "
                                                   "were not modified."));
        QCOMPARE(textOf("statusLabel"), QStringLiteral("Completed: 2 ROI video(s) created."));
        QCOMPARE(log.size(), 4);
        const QString film = QStringLiteral("%1/%1__ROI_02_ROI_2.mp4");
        QCOMPARE(Film::probe(m_stored->filePath(film.arg(QStringLiteral("AIA_171")))).size,
                 QSize(64, 48));
        QCOMPARE(Film::probe(m_stored->filePath(film.arg(QStringLiteral("HMI")))).size,
                 QSize(32, 24));
        QVERIFY(m_stored->read(QStringLiteral("rois.json")).contains("\"enabled\": false"));
        QCOMPARE(m_stored->checksums(), before);
    }

    void cancelInTheProgressDialog()
    {
        drawTwo();
        QTimer hand;
        connect(&hand, &QTimer::timeout, m_dialog.get(), [] {
            if (auto *progress = qobject_cast<QProgressDialog *>(QApplication::activeModalWidget()))
                progress->findChild<QPushButton *>()->click();
        });
        hand.start(0);
        click("generateButton");
        const QString text =
            QStringLiteral("ROI video generation canceled. Original frames were not modified.");
        QCOMPARE(onlyText(m_boxes), text);
        QCOMPARE(textOf("statusLabel"), text);
    }

private:
    void open()
    {
        m_dialog = std::make_unique<RoiVideoDialog>(m_stored->path());
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
        QTRY_VERIFY(!view()->transform().isIdentity() || !view()->scene()->items().size());
    }

    template<typename Widget>
    Widget *find(const char *name) const
    {
        return m_dialog->findChild<Widget *>(QLatin1String(name));
    }
    QGraphicsView *view() const { return find<QGraphicsView>("frameView"); }
    QString textOf(const char *label) const { return find<QLabel>(label)->text(); }
    void click(const char *button) const
    {
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    }
    QRect geometry() const
    {
        return {find<QSpinBox>("xSpin")->value(), find<QSpinBox>("ySpin")->value(),
                find<QSpinBox>("widthSpin")->value(), find<QSpinBox>("heightSpin")->value()};
    }
    QVector<QRectF> outlines() const
    {
        QVector<QRectF> rects;
        const QList<QGraphicsItem *> items = view()->scene()->items(Qt::AscendingOrder);
        for (QGraphicsItem *item : items) {
            if (const auto *region = dynamic_cast<QGraphicsRectItem *>(item))
                rects.append(region->rect());
        }
        return rects;
    }
    void turnWheel(int delta) const
    {
        QWheelEvent event(QPointF(5, 5), view()->viewport()->mapToGlobal(QPoint(5, 5)), QPoint(),
                          QPoint(0, delta), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view()->viewport(), &event);
    }
    /// Presses at one pixel of the frame, moves, and releases at another.
    void drag(const QPoint &from, const QPoint &to) const
    {
        QWidget *viewport = view()->viewport();
        const QPoint end = view()->mapFromScene(to);
        QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, view()->mapFromScene(from));
        QMouseEvent move(QEvent::MouseMove, end, viewport->mapToGlobal(end), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move); // QTest moves without a button held
        QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, end);
    }
    void drawTwo() const
    {
        view()->resetTransform();
        click("newRoiButton");
        drag(QPoint(64, 48), QPoint(192, 144));
        click("newRoiButton");
        drag(QPoint(192, 0), QPoint(256, 48));
        QCOMPARE(find<QListWidget>("roiList")->count(), 2);
    }

    std::unique_ptr<TestSession> m_stored;
    std::unique_ptr<RoiVideoDialog> m_dialog;
    BoxReader m_boxes;
};

QTEST_MAIN(TestRoiVideoDialog)
#include "tst_roivideodialog.moc"
