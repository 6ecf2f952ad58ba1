#include "roi/filmlist.h"
#include "roi/framepanel.h"
#include "roi/roicanvas.h"
#include "roi/roieditor.h"
#include "tests/roi/testsession.h"
#include "tests/support/literals.h"

#include <QtTest>
#include <QtWidgets>

namespace {

template<typename Widget>
Widget *part(const QObject &whole, const char *name)
{
    return whole.findChild<Widget *>(QLatin1String(name));
}

/// Which of these parts can be used, as in "101".
QString enabled(const QObject &whole, const std::vector<const char *> &names)
{
    QString seen;
    for (const char *name : names)
        seen += QString::number(part<QWidget>(whole, name)->isEnabled());
    return seen;
}

} // namespace

/// The parts of the region tool, each on its own.
class TestRegionParts final : public QObject
{
    Q_OBJECT

public slots:
    void openUrl(const QUrl &url) { m_seen += url.toLocalFile(); }

private slots:
    void init() { m_seen.clear(); }

    void mouseOnRegions()
    {
        QGraphicsView view;
        RoiCanvas canvas(&view);
        view.resize(600, 400);
        view.show();
        canvas.showFrame(QPixmap(400, 300));
        canvas.showRegions({{{50, 60, 100, 80}, "a"_s}, {{250, 60, 100, 80}, "b"_s}}, 0);
        const auto see = [this](const QRectF &at) {
            m_seen += "%1,%2 %3x%4"_s.arg(at.x()).arg(at.y()).arg(at.width()).arg(at.height());
        };
        connect(&canvas, &RoiCanvas::regionPicked, this, [&](int) { m_seen += "picked"_s; });
        connect(&canvas, &RoiCanvas::regionDragged, this, see);
        connect(&canvas, &RoiCanvas::dragEnded, this, [&](bool) { m_seen += "ended"_s; });
        connect(&canvas, &RoiCanvas::rectangleDrawn, this, see);
        const auto send = [&view](QEvent::Type type, const QPoint &at, Qt::MouseButton button) {
            QMouseEvent event(type, view.mapFromScene(at), button, button, {});
            QApplication::sendEvent(view.viewport(), &event);
        };
        const std::tuple<QPoint, Qt::CursorShape> places[] = {
            {{50, 60}, Qt::SizeFDiagCursor},    {{150, 60}, Qt::SizeBDiagCursor},
            {{100, 140}, Qt::SizeVerCursor},    {{50, 100}, Qt::SizeHorCursor},
            {{60, 50}, Qt::SizeAllCursor},      {{100, 100}, Qt::OpenHandCursor},
            {{260, 50}, Qt::PointingHandCursor}};
        for (const auto &[place, cursor] : places) {
            send(QEvent::MouseMove, place, Qt::NoButton);
            QCOMPARE(view.viewport()->cursor().shape(), cursor);
        }
        const auto drag = [&](const QPoint &from, const QPoint &to, auto button) {
            m_seen.clear();
            send(QEvent::MouseButtonDblClick, from, button); // a press soon after another one
            send(QEvent::MouseButtonRelease, to, button);
            return m_seen.join(QLatin1Char('|'));
        };
        QCOMPARE(drag({250, 100}, {250, 103}, Qt::LeftButton), "picked"_s);
        QCOMPARE(drag({250, 100}, {270, 100}, Qt::LeftButton), QString()); // panned
        QCOMPARE(drag({60, 50}, {70, 55}, Qt::LeftButton), "60,65 100x80|ended"_s);
        canvas.startDrawing();
        QCOMPARE(view.viewport()->cursor().shape(), Qt::CrossCursor);
        QCOMPARE(drag({10, 20}, {12, 22}, Qt::RightButton), QString());
        QCOMPARE(drag({10, 20}, {12, 22}, Qt::LeftButton), "10,20 2x2"_s); // the smallest
        for (const int delta : {120, -120, 0}) {
            view.resetTransform();
            QWheelEvent wheel(QPointF(9, 9), {}, {}, {0, delta}, {}, {}, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view.viewport(), &wheel);
            QCOMPARE(view.transform().m11(), delta > 0 ? 1.15 : 1 / 1.15);
        }
    }

    void framesAreWalkedThrough()
    {
        const TestSession stored;
        QVector<RoiSourceFrame> frames = RoiSession::load(stored.path())->sources.first().frames;
        const char *const corner = // of the frame: the centre of the Sun
            R"({"rsun": 96, "width": 256, "height": 192, "refPixelX": 1.5, "refPixelY": 192.5})";
        frames.first().metadata = QJsonDocument::fromJson(corner).object();
        frames += QVector<RoiSourceFrame>(96, frames.constLast()); // for long enough to be played
        FramePanel panel;
        connect(&panel, &FramePanel::statusChanged, this, [&](auto &s) { m_seen += s; });
        const auto look = [&panel] {
            QString seen = enabled(
                panel, {"playButton", "fromButton", "toButton", "allButton", "frameSlider"});
            for (const char *name :
                 {"frameCounterLabel", "frameMetaLabel", "intervalLabel", "cursorLabel"})
                seen += QLatin1Char('|') + part<QLabel>(panel, name)->text();
            return seen;
        };
        const auto press = [&panel](const char *name) {
            part<QAbstractButton>(panel, name)->click();
            return part<QAbstractButton>(panel, "playButton")->accessibleName();
        };
        auto *slider = part<QSlider>(panel, "frameSlider");
        auto *view = part<QGraphicsView>(panel, "frameView");
        QCOMPARE(look(), "00000|0 / 0|||"_s);
        panel.show();
        panel.showFrames(frames, 0);
        QTRY_COMPARE(
            look(),
            "11101|1 / 99|2024-05-01 12:00:00 UTC   |   256 x 192|Film: all frames|Cursor: --"_s);
        QTest::mouseMove(view->viewport(), view->mapFromScene(97, 0));
        QTRY_VERIFY(look().contains("Cursor: x +"_s));
        QString values;
        for (const Qt::Key key : {Qt::Key_End, Qt::Key_Home, Qt::Key_Right, Qt::Key_Left,
                                  Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_End}) {
            QTest::keyClick(values.size() % 2 ? view : static_cast<QWidget *>(&panel), key);
            values += QString::number(slider->value());
        }
        QCOMPARE(values, "980109098"_s);
        panel.setRate(1);
        QCOMPARE(press("playButton"), "Pause"_s); // from the beginning: all have been seen
        QTRY_VERIFY(slider->value() < 98);
        QCOMPARE(press("playButton"), "Play"_s);
        press("playButton");
        QTest::keyClick(slider, Qt::Key_Home); // somebody looks
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(press("fromButton"), "Play"_s);
        QVERIFY(look().startsWith("11111"_s) && look().contains("Film: frames 2 to 99"_s));
        frames[0] = {stored.filePath("session.json"), {}, {}};
        panel.showFrames(frames, 0);
        press("fromButton");
        QCOMPARE(m_seen.constLast(), "This frame has no time. Choose one that has."_s);
        panel.showFrames(frames.mid(0, 1), 0);
        QTRY_COMPARE(look(), "00010|1 / 1|session.json   |   0 x 0|Film: no frame|"_s);
        panel.startDrawing();
        QVERIFY(!panel.canvas().isDrawing());
        QCOMPARE(m_seen.constLast(), "Cannot decode "_s + frames.constFirst().file);
        panel.clear();
        QCOMPARE(look(), "00000|0 / 0|||"_s);
    }

    void regionsAreEdited()
    {
        const TestSession stored;
        RoiEditor editor;
        const auto actions = part<QListWidget>(editor, "roiList")->actions();
        const auto press = [&](int action) { // then what can be used; where the first is; which
            actions.at(action)->trigger();
            QString seen = enabled(editor, {"deleteRoiButton", "nameEdit", "rotationCombo"});
            for (const QAction *other : actions)
                seen += QString::number(other->isEnabled());
            const int x = editor.rois().isEmpty() ? 0 : editor.marks().constFirst().pixels.x();
            return seen + "|%1|%2"_s.arg(x).arg(editor.currentRow());
        };
        const auto drag = [&](int x) {
            editor.dragTo({x, 30, 40, 50});
            press(3); // neither undone nor redone meanwhile
            press(4);
            editor.endDrag(true);
        };
        enum { Copy = 1, Delete = 2, Undo = 3, Redo = 4 };
        editor.load(stored.path());
        editor.setFrameSize({200, 100});
        QCOMPARE(press(Delete), "00000000|0|-1"_s);
        editor.add({20, 30, 40, 50});
        drag(44);
        QCOMPARE(press(Undo), "11111111|20|0"_s);
        drag(20); // back at the start is no step
        QCOMPARE(press(Redo), "11111110|44|0"_s);
        press(Copy);
        press(Copy);
        QCOMPARE(press(Delete), "11111110|44|1"_s); // the last of three
        editor.load(stored.path());
        QCOMPARE(press(Undo), "00000000|0|-1"_s); // of another session
    }

    void filmsAreOpened()
    {
        const TestSession stored;
        stored.write("a&b.mp4", "a film");
        const QString film = stored.filePath("a&b.mp4");
        FilmList films;
        QSignalSpy log(&films, &FilmList::logMessage);
        QDesktopServices::setUrlHandler("file"_s, this, "openUrl");
        films.showFilms({{"AIA"_s, "west"_s, film, 63, 25}});
        const auto *item = part<QTreeWidget>(films, "filmTree")->topLevelItem(0);
        QCOMPARE(item->text(1) + item->text(2) + item->text(3), "west632.52"_s);
        QCOMPARE(item->toolTip(0) + item->toolTip(3), stored.filePath("a&amp;b.mp4").repeated(2));
        for (const bool shown : {true, false}) {
            QCOMPARE(films.isHidden(), !shown);
            for (const char *button : {"openFolderButton", "playFilmButton"})
                part<QAbstractButton>(films, button)->click();
            films.showFilms({});
        }
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(m_seen, QStringList({stored.path(), film}));
        QCOMPARE(log, QList<QVariantList>({{"Playing video: "_s + film}}));
    }

private:
    QStringList m_seen; // signals, and what was opened
};

QTEST_MAIN(TestRegionParts)
#include "tst_regionparts.moc"
