#include "roi/roivideodialog.h"

#include "tests/roi/testsession.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QGraphicsView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

/// The road of a person: open, look, draw, adjust, save, reload, film.
class TestRoiVideoDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        TestFolder::clearKeys();
        connect(&m_hand, &QTimer::timeout, this, &TestRoiVideoDialog::closeBox);
        m_hand.start(5);
    }
    void init()
    {
        m_stored = std::make_unique<TestSession>();
        m_answer = QMessageBox::Ok;
        open();
    }
    void cleanup() { m_dialog.reset(); }

    void drawing()
    {
        view()->resetTransform(); // a screen pixel is a pixel of the frame
        click("newRoiButton");
        QCOMPARE(status(), QStringLiteral("Drag a rectangle on the image to define the new ROI."));
        drag(QPoint(-5, -5), QPoint(50, 50));
        QCOMPARE(status(), QStringLiteral("Start the ROI selection inside the image."));
        drag(QPoint(128, 96), QPoint(400, -50)); // upwards and over the edge
        QCOMPARE(geometry(), QRect(128, 0, 128, 96));
        QCOMPARE(status(),
                 QStringLiteral("Created ROI 1. Adjust X/Y/Width/Height or rotation if needed."));
        QCOMPARE(view()->dragMode(), QGraphicsView::ScrollHandDrag);
        click("newRoiButton");
        drag(QPoint(20, 20), QPoint(90, 90), Qt::Key_Escape); // ends no more than the drawing
        QVERIFY(m_dialog->isVisible() && status().isEmpty());
        click("newRoiButton");
        drag(QPoint(10, 10), QPoint(60, 11));
        QCOMPARE(status(), QStringLiteral("ROI creation canceled: rectangle too small."));
        QCOMPARE(find<QListWidget>("roiList")->count(), 1);
    }

    void editsAreNotLostUnsaved()
    {
        drawTwo();
        auto *list = find<QListWidget>("roiList");
        find<QLineEdit>("nameEdit")->clear();
        QTest::keyClicks(find<QLineEdit>("nameEdit"), QStringLiteral("West <b>limb</b>"));
        find<QSpinBox>("xSpin")->setValue(101);
        find<QComboBox>("rotationCombo")->setCurrentIndex(2);
        list->item(0)->setCheckState(Qt::Unchecked);
        find<QComboBox>("sourceCombo")->setCurrentIndex(1); // half the size
        QCOMPARE(geometry(), QRect(51, 0, 32, 24));
        find<QComboBox>("sourceCombo")->setCurrentIndex(0);
        click("newRoiButton");
        drag(QPoint(10, 10), QPoint(40, 40));
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Delete);
        QCOMPARE(list->count(), 2);

        m_answer = QMessageBox::Cancel;
        click("closeButton");
        m_dialog->close(); // as by the window's own button
        QTest::keyClick(view(), Qt::Key_Escape);
        click("browseButton");
        QCOMPARE(m_boxes.size(), 4); // and no file dialog
        QVERIFY(m_boxes.last().contains(QLatin1String("unsaved changes")));
        QDir(m_stored->path()).mkdir(QStringLiteral("rois.json")); // in the way
        m_answer = QMessageBox::Save;
        click("closeButton");
        QVERIFY(m_dialog->isVisible() && m_boxes.last().startsWith(QLatin1String("Cannot ")));
        QDir(m_stored->path()).rmdir(QStringLiteral("rois.json"));
        click("closeButton");
        QVERIFY(!m_dialog->isVisible());

        open();
        list = find<QListWidget>("roiList");
        list->setCurrentRow(1);
        QCOMPARE(list->item(0)->checkState(), Qt::Unchecked);
        QCOMPARE(list->currentItem()->text(), QStringLiteral("West <b>limb</b>"));
        QCOMPARE(geometry(), QRect(101, 0, 64, 48));
        QCOMPARE(find<QComboBox>("rotationCombo")->currentIndex(), 2);
        click("closeButton"); // nothing to ask for
        QVERIFY(!m_dialog->isVisible() && m_boxes.isEmpty());
    }

    void savingAndDiscarding()
    {
        drawTwo();
        click("saveRoisButton");
        QCOMPARE(m_boxes, QStringList(QStringLiteral("ROI definitions saved to rois.json.")));
        click("deleteRoiButton");
        m_answer = QMessageBox::Discard;
        click("browseButton");
        QCOMPARE(m_boxes.last(), QStringLiteral("Select Orvik acquisition session"));
        click("closeButton");
        QVERIFY(!m_dialog->isVisible());
        open();
        QCOMPARE(find<QListWidget>("roiList")->count(), 2);
    }

    void filmsOfAllDatasources()
    {
        const auto before = m_stored->contents();
        drawTwo();
        find<QListWidget>("roiList")->item(0)->setCheckState(Qt::Unchecked);
        find<QCheckBox>("allSourcesCheck")->setChecked(true);
        m_answer = QMessageBox::Cancel;
        click("generateButton");
        expectCanceled();
        m_answer = QMessageBox::Ok;
        click("generateButton");
        QCOMPARE(m_boxes.last(), QStringLiteral("Created 2 ROI video(s).\n\nOriginal PNG frames "
                                                "were not modified."));
        QCOMPARE(status(), QStringLiteral("Completed: 2 ROI video(s) created."));
        QCOMPARE(filmShape(m_stored->filePath("AIA_171/AIA_171__ROI_02_ROI_2.mp4")),
                 QStringLiteral("64,48,5/1,3"));
        QCOMPARE(filmShape(m_stored->filePath("HMI/HMI__ROI_02_ROI_2.mp4")),
                 QStringLiteral("32,24,5/1,3"));
        QVERIFY(m_stored->read("rois.json").contains("\"enabled\": false"));
        QCOMPARE(m_stored->contents(), before);
    }

    void closeEndsAWaitForTheService()
    {
        QFile::remove(m_stored->filePath("manifest.csv")); // and with it the scale
        open();
        drawTwo();
        const QString curl = FakeProgram::install(QStringLiteral("bin/fake-curl"));
        FakeProgram::Reply hanging;
        hanging.hang = true;
        FakeProgram::setScript(curl, {hanging});
        TestFolder::setKey(QStringLiteral("paths/curl"), curl);
        QTimer::singleShot(0, this, [this] {
            QVERIFY(!find<QPushButton>("generateButton")->isEnabled());
            click("closeButton");
        });
        click("generateButton");
        QVERIFY(m_dialog->isVisible() && find<QPushButton>("generateButton")->isEnabled());
        expectCanceled();
    }

private:
    void open()
    {
        m_boxes.clear();
        m_dialog = std::make_unique<RoiVideoDialog>(m_stored->path());
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
        QTRY_VERIFY(!view()->transform().isIdentity()); // the frame is fitted
    }

    void closeBox()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *box = qobject_cast<QMessageBox *>(modal)) {
            QCOMPARE(box->windowTitle(), QStringLiteral("ROI video"));
            m_boxes.append(box->text());
            QAbstractButton *button = box->button(m_answer);
            QTest::mouseClick(button ? button : box->button(QMessageBox::Ok), Qt::LeftButton);
        } else if (auto *chooser = qobject_cast<QFileDialog *>(modal)) {
            m_boxes.append(chooser->windowTitle());
            chooser->reject();
        } else if (modal && m_answer == QMessageBox::Cancel) { // the progress dialog
            modal->findChild<QPushButton *>()->click();
        }
    }

    void expectCanceled() const
    {
        const QString text =
            QStringLiteral("ROI video generation canceled. Original frames were not modified.");
        QCOMPARE(m_boxes, QStringList(text));
        QCOMPARE(status(), text);
    }

    template<typename Widget>
    Widget *find(const char *name) const
    {
        return m_dialog->findChild<Widget *>(QLatin1String(name));
    }
    QGraphicsView *view() const { return find<QGraphicsView>("frameView"); }
    QString status() const { return find<QLabel>("statusLabel")->text(); }
    void click(const char *button) const
    {
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    }
    QRect geometry() const
    {
        return {find<QSpinBox>("xSpin")->value(), find<QSpinBox>("ySpin")->value(),
                find<QSpinBox>("widthSpin")->value(), find<QSpinBox>("heightSpin")->value()};
    }
    /// Presses at one pixel of the frame, moves, strikes @p key, and releases at another.
    void drag(const QPoint &from, const QPoint &to, Qt::Key key = Qt::Key_Shift) const
    {
        QWidget *viewport = view()->viewport();
        const QPoint end = view()->mapFromScene(to);
        QTest::mousePress(viewport, Qt::LeftButton, {}, view()->mapFromScene(from));
        QMouseEvent move(QEvent::MouseMove, end, viewport->mapToGlobal(end), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &move); // QTest moves without a button held
        QTest::keyClick(view(), key);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, end);
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
    QTimer m_hand;       // presses the buttons of boxes as they come up
    QStringList m_boxes; // what they said
    QMessageBox::StandardButton m_answer = QMessageBox::Ok; // where there is a choice
};

QTEST_MAIN(TestRoiVideoDialog)
#include "tst_roivideodialog.moc"
