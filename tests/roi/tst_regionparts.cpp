#include "roi/filmlist.h"
#include "roi/framepanel.h"
#include "roi/frameplayer.h"
#include "roi/intervalslider.h"
#include "roi/playbutton.h"
#include "roi/resultview.h"
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

/// Where a widget shows exactly that colour.
QRegion where(const QColor &color, QWidget *widget)
{
    const QImage shown = widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
    return QRegion(QBitmap::fromImage(shown.createMaskFromColor(color.rgb(), Qt::MaskOutColor)));
}

/// A picture whose columns are of two colours by turns.
QImage stripes(const QSize &size, Qt::GlobalColor even, Qt::GlobalColor odd)
{
    QImage image(size, QImage::Format_RGB32);
    for (int x = 0; x < size.width(); ++x)
        QPainter(&image).fillRect(x, 0, 1, size.height(), x % 2 ? odd : even);
    return image;
}

void send(const QGraphicsView &view, QEvent::Type type, const QPoint &at, Qt::MouseButton button)
{
    QMouseEvent event(type, view.mapFromScene(at), button, button, {});
    QApplication::sendEvent(view.viewport(), &event);
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
        canvas.fit(); // nothing yet
        const auto see = [this](const QRectF &at) {
            m_seen += "%1,%2 %3x%4"_s.arg(at.x()).arg(at.y()).arg(at.width()).arg(at.height());
        };
        const auto tell = [this](int number) { m_seen += QString::number(number); };
        connect(&canvas, &RoiCanvas::left, this, [&] { m_seen += "left"_s; });
        connect(&canvas, &RoiCanvas::regionPicked, this, tell);
        connect(&canvas, &RoiCanvas::regionDragged, this, see);
        connect(&canvas, &RoiCanvas::dragEnded, this, tell);
        connect(&canvas, &RoiCanvas::rectangleDrawn, this, see);
        const auto act = [&](QEvent::Type type, const QPoint &at, Qt::MouseButton button) {
            send(view, type, at, button);
            const auto cursors = QMetaEnum::fromType<Qt::CursorShape>();
            m_seen += QLatin1String(cursors.valueToKey(view.viewport()->cursor().shape()));
        };
        const auto drag = [&](QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton,
                              QEvent::Type press = QEvent::MouseButtonPress) {
            m_seen.clear();
            act(QEvent::MouseMove, from, Qt::NoButton);
            send(view, press, from, button);
            act(QEvent::MouseMove, (from + to) / 2, button);
            act(QEvent::MouseButtonRelease, to, button);
            return m_seen.join(QLatin1Char('|')).remove("Cursor"_s);
        };
        const QVector<RegionMark> regions{{{50, 60, 100, 80}, "a"_s},
                                          {{250, 60, 100, 80}, "b"_s},
                                          {{150, 60, 60, 80}, "c"_s}}; // beside the first
        canvas.showFrame(QPixmap(400, 300));
        canvas.showRegions(regions, 0);
        const QPoint places[] = {{50, 60},  {150, 60},  {50, 140}, {150, 140}, {100, 140},
                                 {50, 100}, {150, 100}, {60, 50},  {260, 50},  {100, 100}};
        for (const QPoint &place : places)
            act(QEvent::MouseMove, place, Qt::NoButton);
        QCOMPARE(m_seen.join(QString()).remove(QRegularExpression("Size|Cursor"_s)),
                 "FDiagBDiagBDiagFDiagVerHorHorAllPointingHandOpenHand"_s);
        QCOMPARE(drag({60, 50}, {70, 56}, Qt::LeftButton, QEvent::MouseButtonDblClick),
                 "SizeAll|55,63 100x80|SizeAll|60,66 100x80|1|SizeAll"_s); // after another press
        canvas.showRegions(regions, 1);
        QCOMPARE(drag({50, 100}, {50, 103}), "PointingHand|ClosedHand|0|OpenHand"_s);   // picked
        QCOMPARE(drag({150, 100}, {150, 100}), "PointingHand|ClosedHand|2|OpenHand"_s); // on top
        QCOMPARE(drag({50, 100}, {50, 110}), "PointingHand|ClosedHand|OpenHand"_s); // far: panned
        canvas.startDrawing();
        QCOMPARE(drag({-10, -10}, {40, 40}), "Cross|Cross|Cross"_s); // begun outside
        QCOMPARE(drag({10, 20}, {12, 22}, Qt::RightButton), "Cross|Cross|Cross"_s);
        QCOMPARE(drag({10, 20}, {12, 22}), "Cross|Cross|10,20 2x2|OpenHand"_s);
        m_seen.clear();
        send(view, QEvent::MouseButtonPress, {250, 60}, Qt::LeftButton);
        canvas.showFrame(QPixmap(400, 300));
        canvas.showRegions(regions, 1);
        send(view, QEvent::MouseButtonPress, {250, 60}, Qt::LeftButton);
        canvas.showMessage({});
        QApplication::sendEvent(view.viewport(), std::make_unique<QEvent>(QEvent::Leave).get());
        QCOMPARE(m_seen.join(QString()), "11left"_s); // both drags are kept
        for (const int delta : {120, 1, -120, 0}) {
            view.resetTransform();
            QWheelEvent wheel(QPointF(9, 9), {}, {}, {0, delta}, {}, {}, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view.viewport(), &wheel);
            QCOMPARE(view.transform().m11(), delta > 0 ? 1.15 : 1 / 1.15);
        }
    }

    void regionsAreDrawn()
    {
        QGraphicsView view;
        QWidget *const port = view.viewport();
        RoiCanvas canvas(&view);
        view.setFont(QFont(QString(), 24)); // with letters that have pixels of the pure colour
        view.setFrameShape(QFrame::NoFrame);
        view.setAlignment(Qt::AlignLeft | Qt::AlignTop); // pixels of the frame are the screen's
        view.resize(440, 340);
        canvas.showFrame(QPixmap::fromImage(stripes({400, 300}, Qt::white, Qt::white)));
        canvas.fit(); // as soon as it has its size
        view.show();
        QTRY_VERIFY(!view.transform().isIdentity());
        view.resetTransform();
        QVector<RegionMark> regions{{{40, 80, 100, 80}, "one"_s},
                                    {{72, 120, 100, 80}, "two"_s},
                                    {{240, 40, 140, 220}, "three"_s}};
        const QFontMetricsF metrics(view.font(), &view);
        const int top = 122 - qRound(metrics.height()); // of the second name, and its right end
        const int end = 80 + static_cast<int>(metrics.horizontalAdvance("two"_s));
        // Outlines, a handle and its border, the second name, what is beside it, and what is faded.
        const QPoint points[] = {{110, 80},  {88, 78},  {86, 78},       {72, 160},      {72, 180},
                                 {310, 260}, {74, top}, {end - 2, top}, {end + 3, top}, {150, 130}};
        const auto colors = [&](int row) {
            canvas.showRegions(regions, row);
            const QImage shown = port->grab().toImage();
            const QVector<QRgb> known{0xffffffff, 0xffffff00, 0xff00ff00, 0xff000000, 0xff5a5a5a};
            QString seen;
            for (const QPoint &point : points)
                seen += "?wygkn"_s.at(1 + known.indexOf(shown.pixel(point)));
            return seen;
        };
        QCOMPARE(colors(0), "yykyggnnww"_s);
        QVERIFY(where(Qt::green, port).intersects(QRect(76, top, 40, 24))); // in its colour
        QCOMPARE(colors(2), "gnnggynnww"_s);
        regions[1].name += "!!"_s;
        QCOMPARE(colors(2), "gnnggynnnw"_s);
        view.scale(0.5, 0.5);
        QVERIFY(colors(0).endsWith("g"_s)); // the third is still to be seen
        canvas.showFrame(QPixmap::fromImage(stripes({200, 100}, Qt::white, Qt::black)));
        QCOMPARE(view.items().size(), 1); // without regions
        QCOMPARE(view.sceneRect(), QRectF(0, 0, 200, 100));
        QVERIFY(qAbs(qRed(port->grab().toImage().pixel(20, 10)) - 127) < 30); // smoothly
        view.resetTransform();
        canvas.showRegions(regions.mid(2), -1);
        canvas.startDrawing();
        send(view, QEvent::MouseButtonPress, {20, 30}, Qt::LeftButton);
        send(view, QEvent::MouseMove, {120, 90}, Qt::LeftButton);
        QCOMPARE(where(Qt::yellow, port).boundingRect(), QRect(20, 30, 101, 61));
        QString stack; // from the bottom
        const QList<QGraphicsItem *> items = view.items();
        for (const QGraphicsItem *item : items)
            stack += "%1/%2 "_s.arg(item->zValue()).arg(item->acceptedMouseButtons());
        QVERIFY2(stack.endsWith("10/31 1000/0 "_s), qPrintable(stack));
        canvas.showMessage("<i></i>"_s); // as it stands, in the middle
        QVERIFY(qAbs(where(Qt::black, port).boundingRect().center().x() - 220) < 9);
        QVERIFY(!canvas.isDrawing() && view.items().isEmpty());
        canvas.showMessage("<i></i> "_s.repeated(12)); // in several lines
        QVERIFY(where(Qt::black, port).boundingRect().height() > 60);
        QCOMPARE(view.scene()->itemIndexMethod(), QGraphicsScene::NoIndex);
        QCOMPARE(view.viewportUpdateMode(), QGraphicsView::FullViewportUpdate);
    }

    void resultIsDrawn()
    {
        ResultView view;
        auto *picture = part<QWidget>(view, "resultPicture");
        QCOMPARE(picture->accessibleName(), "Result"_s);
        auto *caption = part<QLabel>(view, "resultCaption");
        ResultView::Subject subject;
        const auto centre = [](QWidget &shown) {
            return QColor(shown.grab().toImage().pixel(shown.rect().center())).name();
        };
        const auto look = [&] { // at once, without what follows when nothing has changed
            QCoreApplication::processEvents();
            return centre(*picture) + caption->text();
        };
        const auto show = [&](const QImage &decoded, double share) {
            subject.decoded = decoded;
            subject.roi.rect = {0, 0, share, share};
            view.showSubject(subject);
            return look();
        };
        const QImage large = stripes({2400, 1800}, Qt::blue, Qt::red);
        const QImage other = stripes({2400, 1800}, Qt::green, Qt::green);
        QCOMPARE(show(large, 2 / 3.0), "#0000ff1600 x 1200 px, "_s); // every second column
        QCOMPARE(show(other, 2 / 3.0), "#00ff001600 x 1200 px, "_s);
        show(large, 2 / 3.0);
        QTRY_VERIFY(!look().startsWith("#0000ff"_s)); // all of them
        show(other, 1 / 6.0);
        QCOMPARE(where(Qt::green, picture).boundingRect().center(), picture->rect().center());
        show(large, 1);
        view.showMessage("none"_s); // what should follow is not shown any more
        ResultView later;           // whose timer runs out after that of the first would
        later.showSubject(subject);
        QTRY_COMPARE(centre(*part<QWidget>(later, "resultPicture")), "#7f007f"_s);
        QVERIFY(!where(Qt::black, picture).isEmpty());
        view.showSubject(subject);
        view.showMessage("none"_s);
        QCOMPARE(look(), QColor(view.palette().color(QPalette::Base)).name());
        QVERIFY(caption->wordWrap() && caption->textFormat() == Qt::PlainText);
    }

    void controlsAreDrawn()
    {
        PlayButton button;
        button.resize(50, 50);
        QCOMPARE(where(Qt::black, &button).boundingRect(), QRect(18, 16, 15, 18));
        QCOMPARE(button.accessibleName(), "Play"_s);
        button.showPlaying(true);
        const QRegion bars = QRegion(16, 15, 6, 20) + QRegion(28, 15, 6, 20);
        QVERIFY((where(Qt::black, &button) ^ bars).isEmpty());
        IntervalSlider slider(Qt::Horizontal);
        slider.resize(114, 50); // a pixel for each value
        slider.setInterval(qMakePair(20, 60));
        const QRegion kept = QRegion(27, 47, 41, 3) + QRegion(26, 43, 2, 7) + QRegion(66, 43, 2, 7);
        QVERIFY((where(Qt::black, &slider) ^ kept).isEmpty());
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
        stored.write("rois.json", R"({"rois": [
            {"name": "west", "x": 0.1, "y": 0.3, "width": 0.2, "height": 0.5, "rotation": 90},
            {"name": "east", "width": 1, "height": 1, "enabled": false}]})");
        RoiEditor editor;
        auto *name = part<QLineEdit>(editor, "nameEdit");
        auto *rotation = part<QComboBox>(editor, "rotationCombo");
        const auto fields = editor.findChildren<QSpinBox *>();
        QSpinBox *x = fields.constFirst();
        enum { Rename, Copy, Delete, Undo, Redo };
        const auto *list = part<QListWidget>(editor, "roiList");
        const auto actions = list->actions();
        const auto look = [&] { // what can be used, the fields, the regions and which of them
            QString seen = enabled(editor, {"deleteRoiButton", "nameEdit", "rotationCombo"});
            for (const QAction *action : actions)
                seen += QString::number(action->isEnabled());
            for (const QSpinBox *field : fields)
                seen += (field->isEnabled() ? " "_s : "-"_s) + field->cleanText();
            seen += " %1 %2|"_s.arg(rotation->currentIndex()).arg(name->text());
            for (int row = 0; row < list->count(); ++row)
                seen += editor.marks().at(row).name +
                        "=%1%2|"_s.arg(list->item(row)->text()).arg(list->item(row)->checkState());
            return seen + QString::number(editor.currentRow());
        };
        const auto press = [&](int action) {
            actions.at(action)->trigger();
            return look();
        };
        const auto load = [&] {
            editor.load(stored.path());
            editor.setFrameSize({200, 100});
        };
        const auto type = [](auto *field, const QString &text) { // and no Return
            field->selectAll();
            QTest::keyClicks(field, text);
        };
        QCOMPARE(look(), "00000000---- 0 |-1"_s);
        editor.load(stored.path());
        QCOMPARE(look(), "11111100---- 1 west|1 west=west2|[2 east]=east0|0"_s);
        load();
        QCOMPARE(look(), "11111100 20 30 40 50 1 west|1 west=west2|[2 east]=east0|0"_s);
        for (QSpinBox *field : fields)
            field->stepUp();
        QCOMPARE(editor.marks().constFirst().pixels, QRect(21, 31, 42, 52));
        load();
        editor.dragTo({44, 30, 40, 50});
        QCOMPARE(press(Undo) + press(Redo), // neither undone nor redone meanwhile
                 "11111100 44 30 40 50 1 west|1 west=west2|[2 east]=east0|0"_s.repeated(2));
        editor.endDrag(true);
        for (const int left : {46, 44})
            editor.dragTo({left, 30, 40, 50});
        editor.endDrag(true); // back at the start is no step
        QCOMPARE(press(Undo), "11111101 20 30 40 50 1 west|1 west=west2|[2 east]=east0|0"_s);
        load();
        press(Copy);
        QCOMPARE(press(Delete), "11111110 0 0 200 100 0 east|1 west=west2|[2 east]=east0|1"_s);
        editor.pick(0);
        press(Delete);
        rotation->setCurrentIndex(3);
        QCOMPARE(press(Delete), "00000010---- 0 |-1"_s);

        editor.show();
        QVERIFY(QTest::qWaitForWindowActive(&editor));
        load();
        for (const auto &letters : {"nn"_s, "o"_s}) { // typed together, one step
            name->setCursorPosition(1);
            QTest::keyClicks(name, letters);
            QTest::keyClick(name, Qt::Key_Return);
        }
        QCOMPARE(name->text().insert(name->cursorPosition(), QLatin1Char('^')), "wo^nnest"_s);
        QTest::keyClick(name, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(name->text() + QString::number(name->cursorPosition()), "wnnest0"_s);
        type(name, QString(90, QLatin1Char('n')));
        press(Copy);
        QCOMPARE(editor.rois().constFirst().name + editor.rois().constLast().name,
                 QString(80 + 75, QLatin1Char('n')) + " copy"_s);
        const std::function<void()> ways[] = {
            [&] { editor.setFrameSize(QSize(400, 200)); },
            [&] { press(Copy); },
            [&] { press(Delete), press(Undo); },
            [&] { press(Undo), press(Redo); },
            [&] { press(Undo), type(x, "78"_s), press(Redo); },
            [&] { editor.dragTo(QRect(44, 30, 40, 50)), editor.endDrag(false); },
            [&] { editor.store(); }};
        m_seen.clear();
        for (const auto &way : ways) { // in which what is being typed is applied
            load();
            rotation->setCurrentIndex(3);
            type(x, "77"_s);
            way();
            m_seen += QString::number(editor.marks().constFirst().pixels.x());
        }
        QCOMPARE(m_seen.join(QLatin1Char(' ')), "154 77 77 77 78 77 77"_s);
        press(Rename);
        QCOMPARE(editor.focusWidget()->accessibleName(), "Name of the region"_s);
        QTest::keyClicks(editor.focusWidget(), "ab"_s);
        QVERIFY(editor.store() && editor.mayBeLeft()); // nothing is left to be asked
        QCOMPARE(RoiSet::load(stored.path()).constFirst().name, "ab"_s);
        RegionHistory history([](const RegionState &) {});
        for (int step = 0; step < 501; ++step)
            history.take({}, {});
        QCOMPARE(history.stack().count(), 500);
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
