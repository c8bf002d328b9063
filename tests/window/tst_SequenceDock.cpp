#include "SequenceDock.h"
#include "SequenceView.h"
#include "StartedEngine.h"

#include <QtCore/QDir>
#include <QtCore/QMimeData>
#include <QtCore/QTemporaryDir>
#include <QtCore/QXmlStreamReader>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QHelpEvent>
#include <QtGui/QTextDocumentFragment>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QToolTip>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

Entry entry(const QString &kind, const QString &text)
{
    Entry entry;
    entry.sequence = 1;
    entry.device = 42;
    entry.kind = kind;
    entry.text = text;
    return entry;
}

QList<Entry> manyEntries()
{
    QList<Entry> entries(60, entry(u"signal"_s, u"signal dpiMinChanged(100)"_s));
    entries.append(entry(u"report"_s, u"report reportRateConfirmed(500)"_s));
    return entries;
}

// The full texts that the picture has for its lines.
QStringList titlesOf(const QByteArray &svg)
{
    QStringList titles;
    QXmlStreamReader xml(svg);
    while (!xml.atEnd()) {
        if (xml.readNextStartElement() && xml.name() == "title"_L1)
            titles.append(xml.readElementText());
    }
    return titles;
}

int colourCount(const QImage &image)
{
    QSet<QRgb> colours;
    constexpr int mostLines = 300;
    for (int y = 0; y < std::min(image.height(), mostLines); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    return static_cast<int>(colours.size());
}

struct Shown
{
    Shown()
    {
        dock.resize(500, 300);
        dock.show();
        view = dock.findChild<SequenceView *>(u"sequenceView"_s);
        picture = dock.findChild<QWidget *>(u"sequencePicture"_s);
        message = dock.findChild<QLabel *>(u"sequenceMessage"_s);
        empty = dock.findChild<QLabel *>(u"sequenceEmpty"_s);
    }

    QToolButton *button(const QString &name) const { return dock.findChild<QToolButton *>(name); }
    void click(const QString &name) const { QTest::mouseClick(button(name), Qt::LeftButton); }

    /// Chooses the file in the dialog that the button opens.
    void exportTo(const QString &file)
    {
        click(u"exportSequence"_s);
        auto *dialog = dock.findChild<QFileDialog *>();
        QVERIFY(dialog);
        QVERIFY(QTest::qWaitFor([&] { return dialog->isVisible(); }, StartedEngine::limit));
        auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
        QVERIFY(name);
        name->setText(file);
        QTest::keyClick(name, Qt::Key_Return);
        QVERIFY(QTest::qWaitFor([&] { return !dock.findChild<QFileDialog *>(); }, StartedEngine::limit));
        QVERIFY(message->isVisible());
    }

    SequenceDock dock;
    SequenceView *view = nullptr;
    QWidget *picture = nullptr;
    QLabel *message = nullptr;
    QLabel *empty = nullptr;
};

}  // namespace

class tst_SequenceDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutEntriesItSaysWhatToDo();
    void entriesAreDrawn();
    void whatTheChildPrintsIsDrawn();
    void buttonsZoom();
    void keysZoom();
    void theWheelZoomsAtThePointer();
    void theWheelAloneScrolls();
    void namesStayInSight();
    void aToolTipHasTheFullText();
    void darkAndLight();
    void exportsSvg();
    void exportsPng();
    void aHugePictureIsExportedInItsLimits();
    void whatCannotBeWrittenIsSaid();
    void copiesAPicture();
    void everythingHasAName();
};

void tst_SequenceDock::withoutEntriesItSaysWhatToDo()
{
    Shown shown;
    QVERIFY(shown.empty->isVisible());
    QVERIFY(shown.empty->text().contains(u"Select lines in the timeline"_s));
    QVERIFY(!shown.view->isVisible());
    QVERIFY(!shown.button(u"exportSequence"_s)->isEnabled());
    shown.dock.showEntries(manyEntries());
    QVERIFY(!shown.empty->isVisible());
    QVERIFY(shown.button(u"exportSequence"_s)->isEnabled());
    shown.dock.showEntries({});
    QVERIFY(shown.empty->isVisible());
    QVERIFY(!shown.button(u"exportSequence"_s)->isEnabled());
}

void tst_SequenceDock::entriesAreDrawn()
{
    Shown shown;
    shown.dock.showEntries({entry(u"signal"_s, u"signal dpiMinChanged(100)"_s)});
    QVERIFY(shown.view->isVisible());
    const QSize one = shown.picture->size();
    const QImage few = shown.picture->grab().toImage();
    QVERIFY(colourCount(few) > 4);
    shown.dock.showEntries(manyEntries());
    QVERIFY(shown.picture->height() > one.height());
    QVERIFY(shown.picture->width() > one.width());
    QVERIFY(shown.picture->grab().toImage() != few);
}

void tst_SequenceDock::whatTheChildPrintsIsDrawn()
{
    StartedEngine started;
    QVERIFY(started.play({u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s}));
    QVERIFY(!started.entries.isEmpty());
    Shown shown;
    shown.dock.showEntries(started.entries);
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"drawn.svg"_s);
    shown.exportTo(file);
    const QStringList titles = titlesOf(contentOf(file));
    QVERIFY(titles.contains(u"mouse 1"_s));
    QStringList texts;
    for (const Entry &printed : std::as_const(started.entries))
        texts.append(printed.text);
    QCOMPARE(titles.mid(titles.size() - texts.size()), texts);
}

void tst_SequenceDock::buttonsZoom()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    const QSize size = shown.picture->size();
    shown.click(u"zoomIn"_s);
    QCOMPARE(shown.view->zoom(), 1.2);
    QCOMPARE(shown.picture->size(), size * 1.2);
    shown.click(u"zoomOut"_s);
    shown.click(u"zoomOut"_s);
    QVERIFY(shown.view->zoom() < 1);
    shown.click(u"originalSize"_s);
    QCOMPARE(shown.picture->size(), size);
    shown.click(u"fitWidth"_s);
    QVERIFY(shown.view->zoom() < 1);
    QVERIFY(!shown.view->horizontalScrollBar()->isVisible());
    QVERIFY(shown.picture->width() > shown.view->viewport()->width() - 30);
    for (int click = 0; click < 50; ++click)
        shown.click(u"zoomOut"_s);
    QCOMPARE(shown.view->zoom(), 0.1);
    for (int click = 0; click < 50; ++click)
        shown.click(u"zoomIn"_s);
    QCOMPARE(shown.view->zoom(), 5.0);
}

void tst_SequenceDock::keysZoom()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    QTest::keyClick(shown.view, Qt::Key_Plus);
    QCOMPARE(shown.view->zoom(), 1.2);
    QTest::keyClick(shown.view, Qt::Key_Equal);
    QCOMPARE(shown.view->zoom(), 1.2 * 1.2);
    QTest::keyClick(shown.view, Qt::Key_Minus);
    QCOMPARE(shown.view->zoom(), 1.2);
    QTest::keyClick(shown.view, Qt::Key_0);
    QCOMPARE(shown.view->zoom(), 1.0);
    QTest::keyClick(shown.view, Qt::Key_PageDown);
    QVERIFY(shown.view->verticalScrollBar()->value() > 0);
}

void tst_SequenceDock::theWheelZoomsAtThePointer()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    shown.view->verticalScrollBar()->setValue(400);
    const QPoint place(100, 120);
    const QPointF before = QPointF(place - shown.picture->pos()) / shown.view->zoom();
    QWheelEvent event(place, shown.view->viewport()->mapToGlobal(place), {}, {0, 240}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(shown.view->viewport(), &event);
    QCOMPARE(shown.view->zoom(), 1.2 * 1.2);
    const QPointF after = QPointF(place - shown.picture->pos()) / shown.view->zoom();
    QVERIFY((after - before).manhattanLength() < 2);
}

void tst_SequenceDock::theWheelAloneScrolls()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    const QPoint place(100, 120);
    QWheelEvent event(place, shown.view->viewport()->mapToGlobal(place), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(shown.view->viewport(), &event);
    QCOMPARE(shown.view->zoom(), 1.0);
    QVERIFY(shown.view->verticalScrollBar()->value() > 0);
}

void tst_SequenceDock::namesStayInSight()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    const auto *heads = shown.dock.findChild<QWidget *>(u"sequenceHeads"_s);
    QVERIFY(!heads->isVisible());
    shown.view->verticalScrollBar()->setValue(500);
    QVERIFY(heads->isVisible());
    QCOMPARE(heads->width(), shown.view->viewport()->width());
    const QImage left = shown.view->grab(heads->geometry()).toImage();
    QVERIFY(colourCount(left) > 4);
    shown.view->horizontalScrollBar()->setValue(60);
    QVERIFY(shown.view->grab(heads->geometry()).toImage() != left);
    shown.view->verticalScrollBar()->setValue(0);
    QVERIFY(!heads->isVisible());
}

void tst_SequenceDock::aToolTipHasTheFullText()
{
    const QString text = u"<b>&"_s + QString(200, u'x') + u"</b>"_s;
    Shown shown;
    shown.dock.showEntries({entry(u"signal"_s, u"signal first()"_s), entry(u"log"_s, text)});
    shown.click(u"zoomIn"_s);
    const auto tipAt = [&](int y) {
        const QPoint place(100, static_cast<int>(y * shown.view->zoom()));
        QHelpEvent event(QEvent::ToolTip, place, shown.picture->mapToGlobal(place));
        QCoreApplication::sendEvent(shown.picture, &event);
        return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
    };
    // The heads are above 52; an arrow takes 34 pixels, a note 28.
    QCOMPARE(tipAt(53), u"signal first()"_s);
    QCOMPARE(tipAt(85), u"signal first()"_s);
    QCOMPARE(tipAt(88), text);
    QCOMPARE(tipAt(112), text);
}

void tst_SequenceDock::darkAndLight()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    const auto background = [&] { return shown.picture->grab().toImage().pixelColor(2, 2).lightness(); };
    QPalette dark;
    dark.setColor(QPalette::Base, Qt::black);
    dark.setColor(QPalette::Text, Qt::white);
    shown.dock.setPalette(dark);
    QVERIFY(background() < 64);
    QPalette light;
    light.setColor(QPalette::Base, Qt::white);
    light.setColor(QPalette::Text, Qt::black);
    shown.dock.setPalette(light);
    QVERIFY(background() > 192);
}

void tst_SequenceDock::exportsSvg()
{
    Shown shown;
    QPalette dark;
    dark.setColor(QPalette::Base, Qt::black);
    dark.setColor(QPalette::Text, Qt::white);
    shown.dock.setPalette(dark);
    shown.dock.showEntries(manyEntries());
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"a name.svg"_s);
    shown.exportTo(file);
    QCOMPARE(shown.message->text(), u"Saved as "_s + file);
    QCOMPARE(titlesOf(contentOf(file)).constLast(), u"report reportRateConfirmed(500)"_s);
    // The background is the light one, whatever the window's.
    QVERIFY(contentOf(file).contains("fill=\"#ffffff\""));
    shown.dock.showEntries(manyEntries());
    QVERIFY(!shown.message->isVisible());
    shown.exportTo(folder.filePath(u"without suffix"_s));
    QCOMPARE(contentOf(folder.filePath(u"without suffix.svg"_s)), contentOf(file));
}

void tst_SequenceDock::exportsPng()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"x.PNG"_s);
    shown.exportTo(file);
    const QImage image(file, "PNG");
    QCOMPARE(image.size(), shown.picture->size() * 2);
    QVERIFY(colourCount(image) > 4);
}

void tst_SequenceDock::aHugePictureIsExportedInItsLimits()
{
    Shown shown;
    shown.dock.showEntries(QList<Entry>(5000, entry(u"receiver"_s, u"receiver x() -> 1"_s)));
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"x.png"_s);
    shown.exportTo(file);
    const QImage image(file);
    QVERIFY(!image.isNull());
    QCOMPARE(image.height(), 32000);
}

void tst_SequenceDock::whatCannotBeWrittenIsSaid()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"nowhere/x.png"_s);
    shown.exportTo(file);
    QVERIFY2(shown.message->text().startsWith(file + u" cannot be written: "_s),
             qPrintable(shown.message->text()));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void tst_SequenceDock::copiesAPicture()
{
    Shown shown;
    shown.dock.showEntries(manyEntries());
    shown.click(u"copySequence"_s);
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    QCOMPARE(shown.message->text(), u"Copied as a picture"_s);
    QVERIFY(data->hasImage());
    QCOMPARE(data->imageData().value<QImage>().size(), shown.picture->size() * 2);
    QCOMPARE(titlesOf(data->data(u"image/svg+xml"_s)).constLast(), u"report reportRateConfirmed(500)"_s);
}

void tst_SequenceDock::everythingHasAName()
{
    Shown shown;
    const QList<QToolButton *> buttons = shown.dock.findChildren<QToolButton *>();
    int count = 0;
    for (const QToolButton *button : buttons) {
        if (!button->defaultAction())
            continue;  // the tool bar's own
        ++count;
        QVERIFY(!button->accessibleName().isEmpty());
        QVERIFY(!button->toolTip().isEmpty());
    }
    QCOMPARE(count, 6);
    QVERIFY(!shown.view->accessibleName().isEmpty());
    QVERIFY(!shown.picture->accessibleName().isEmpty());
}

QTEST_MAIN(tst_SequenceDock)
#include "tst_SequenceDock.moc"
