#pragma once

#include "roi/roivideodialog.h"
#include "tests/roi/testsession.h"
#include "tests/support/testfolder.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

/// The window on a stored session, with hands that answer its boxes: what it shows and refuses.
class RoiWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { connect(&m_hand, &QTimer::timeout, this, &RoiWindowTest::answerBox); }
    void init();
    void cleanup() { m_dialog.reset(); }
    void windowWithoutASession();
    void anotherSession();
    void refusals();
    void frames();

protected:
    /// A window that begins in @p folder.
    void show(const QString &folder)
    {
        m_dialog = std::make_unique<RoiVideoDialog>(folder);
        connect(m_dialog.get(), &RoiVideoDialog::logMessage, this,
                [this](const QString &line) { m_log += line; });
        m_dialog->show();
    }
    void open()
    {
        show(m_stored->path());
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
        QTRY_VERIFY(!view()->transform().isIdentity());     // the frame is fitted
        QVERIFY(view()->findChild<QLabel *>()->isHidden()); // what stands there without a frame
    }

    /// Presses a button of the box that is open, if any.
    void answerBox()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *box = qobject_cast<QMessageBox *>(modal)) {
            QCOMPARE(box->windowTitle(), QStringLiteral("ROI video"));
            m_boxes.append(box->text());
            QAbstractButton *button = box->button(m_answer);
            QTest::mouseClick(button ? button : box->button(QMessageBox::Ok), Qt::LeftButton);
        } else if (auto *chooser = qobject_cast<QFileDialog *>(modal)) {
            chooser->findChild<QLineEdit *>()->setText(m_choice);
            static_cast<QDialog *>(chooser)->done(m_choice.isEmpty() ? 0 : 1);
        } else if (modal && m_answer == QMessageBox::Cancel) { // the progress dialog
            modal->findChild<QPushButton *>()->click();
            m_dialog->close(); // of no use: the run is still there
            QVERIFY(m_dialog->isVisible() && !find<QPushButton>("generateButton")->isEnabled());
        }
    }

    /// What the boxes have said since it was asked last.
    QString boxes() { return std::exchange(m_boxes, QStringList()).join(QLatin1Char('|')); }

    template<typename Widget>
    static Widget *part(const QObject &whole, const char *name)
    {
        return whole.findChild<Widget *>(QLatin1String(name));
    }
    template<typename Widget>
    Widget *find(const char *name) const
    {
        return part<Widget>(*m_dialog, name);
    }
    QGraphicsView *view() const { return find<QGraphicsView>("frameView"); }
    QSpinBox *spin(const char *name) const { return find<QSpinBox>(name); }
    QListWidget *list() const { return find<QListWidget>("roiList"); }
    QString status() const { return find<QLabel>("statusLabel")->text(); }
    void toggle(const std::vector<const char *> &boxes) const
    {
        for (const char *box : boxes)
            QTest::mouseClick(find<QCheckBox>(box), Qt::LeftButton, {}, {5, 5});
    }
    void click(const char *button) const
    {
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    }
    QRect geometry() const
    {
        return {spin("xSpin")->value(), spin("ySpin")->value(), spin("widthSpin")->value(),
                spin("heightSpin")->value()};
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
        QCOMPARE(list()->count(), 2);
    }

    std::unique_ptr<TestSession> m_stored;
    std::unique_ptr<RoiVideoDialog> m_dialog;
    QTimer m_hand;       // presses the buttons of boxes as they come up
    QStringList m_boxes; // what they said
    QStringList m_log;
    QString m_choice; // the folder that is browsed for; none when it is empty
    QMessageBox::StandardButton m_answer = QMessageBox::Ok; // where there is a choice

private:
    QString shown() const;
};
