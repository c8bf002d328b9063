#include "Kvx.h"
#include "PluginFixture.h"
#include "SequenceDiagram.h"
#include "SequencePicture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

SequencePicture pictureOf(const QList<SequenceEntry> &entries)
{
    SequenceDiagram diagram;
    for (const SequenceEntry &entry : entries)
        diagram.add(entry);
    return readSequence(diagram.svg(SequencePalette::light()));
}

SequenceEntry signal(const QString &text)
{
    return {1, 0, 1, 42, 1, u"signal"_s, text};
}

QByteArray bytesOf(const QString &file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

}  // namespace

class tst_KvxDiagram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_folder.isValid()); }
    void eachKindHasItsArrow();
    void severalDevicesAndReceivers();
    void aSideThatIsNotNamed_data();
    void aSideThatIsNotNamed();
    void resultsAreDividedOutsideQuotes();
    void hostileTexts_data();
    void hostileTexts();
    void longTextsAreShortened();
    void nothingToDraw();
    void tooManyEntries();
    void bandsShowTheSame();
    void textsAreFoundByTheirPlace();
    void palettesDifferInColoursOnly();
    void aRunIsDrawn();
    void jsonIsPrintedToo();
    void aRunThatFailsIsDrawn();
    void anEmptyScenarioIsDrawn();
    void unusableFiles_data();
    void unusableFiles();
    void nothingIsWrittenWithoutALibrary();
    void stepsAreNotDrawn();

private:
    struct Drawn
    {
        KvxRun run;
        QStringList files;
        SequencePicture picture;
    };
    Drawn draw(const QStringList &lines, const QStringList &options = {}) const;

    QTemporaryDir m_folder;
};

tst_KvxDiagram::Drawn tst_KvxDiagram::draw(const QStringList &lines, const QStringList &options) const
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"drawn & ü.svg"_s);
    const KvxRun run = runKvx(
        QStringList{u"run"_s, u"--plugin"_s, PluginFixture::builtPluginFile(), u"--diagram"_s, file, u"-"_s} +
            options,
        lines.join(u'\n').toUtf8());
    return {run, QDir(folder.path()).entryList(QDir::Files), readSequence(bytesOf(file))};
}

void tst_KvxDiagram::eachKindHasItsArrow()
{
    const SequencePicture picture = pictureOf({
        {7, 1500, 1, 42, 1, u"call"_s, u"call start() -> true"_s},
        {8, 1501, 1, 42, 1, u"receiver"_s, u"receiver setReportRate(500) -> true"_s},
        {9, 1502, 1, 42, 1, u"receiver"_s, u"receiver startSomething()"_s},
        {10, 2000, 3, 42, 1, u"report"_s, u"report reportRateConfirmed(500) on thread 3"_s},
        {11, 2001, 2, 42, 1, u"signal"_s, u"signal reportRateChanged(500) on thread 2"_s},
        {12, 2002, 1, {}, 1, u"log"_s, u"debug RV418: a  line"_s},
        {13, 2003, 2, {}, 1, u"log"_s, u"warning RV418: another on thread 2"_s},
        {14, 2004, 1, {}, 1, u"host"_s, u"host buttonEvent(\"id\", 1, true)"_s},
        {15, 1234567, 1, 42, 1, u"verdict"_s, u"verdict fault on setReportRate: drop"_s},
    });
    QCOMPARE(picture.error, QString());
    QCOMPARE(picture.lifelines,
             QStringList({u"host services"_s, u"host"_s, u"device 42"_s, u"receiver 1"_s, u"mouse 42"_s}));
    QCOMPARE(picture.heads, picture.lifelines + picture.lifelines);
    QCOMPARE(picture.rows,
             QStringList({u"call host -> device 42: start() -> true"_s,
                          u"receiver device 42 -> receiver 1: setReportRate(500)"_s,
                          u"answer receiver 1 -> device 42 dashed: true"_s,
                          u"receiver device 42 -> receiver 1: startSomething()"_s,
                          u"report mouse 42 -> device 42 dashed through receiver 1: "
                          "reportRateConfirmed(500) (thread 3)"_s,
                          u"signal device 42 -> host dashed: reportRateChanged(500) (thread 2)"_s,
                          u"note: debug RV418: a line"_s, u"note: warning RV418: another on thread 2"_s,
                          u"host device 42 -> host services: buttonEvent(\"id\", 1, true)"_s,
                          u"note: verdict fault on setReportRate: drop"_s}));
    QCOMPARE(picture.titles.value(3), u"report reportRateConfirmed(500) on thread 3"_s);
    QCOMPARE(picture.numbers.join(u' '), u"7 8 9 10 11 12 13 14 15"_s);
    QCOMPARE(picture.times.first(), u"1.500 ms"_s);
    QCOMPARE(picture.times.last(), u"1234.567 ms"_s);
    QCOMPARE(picture.cramped, QStringList());
    QCOMPARE(picture.remark, QString());
}

void tst_KvxDiagram::severalDevicesAndReceivers()
{
    const SequencePicture picture = pictureOf({
        {1, 0, 1, 18446744073709551615U, 2, u"report"_s, u"report 2 setBatteryLevel(5)"_s},
        {2, 0, 1, 7, 1, u"receiver"_s, u"receiver getBatteryLevel() -> 80"_s},
        {3, 0, 1, 10, 10, u"receiver"_s, u"receiver 10 getBatteryLevel() -> 70"_s},
    });
    QCOMPARE(picture.lifelines,
             QStringList({u"device 7"_s, u"device 10"_s, u"device 18446744073709551615"_s, u"receiver 1"_s,
                          u"receiver 2"_s, u"receiver 10"_s, u"mouse 18446744073709551615"_s}));
    QCOMPARE(picture.rows,
             QStringList({u"report mouse 18446744073709551615 -> device 18446744073709551615 through "
                          "receiver 2: setBatteryLevel(5)"_s,
                          u"receiver device 7 -> receiver 1: getBatteryLevel()"_s,
                          u"answer receiver 1 -> device 7 dashed: 80"_s,
                          u"receiver device 10 -> receiver 10: getBatteryLevel()"_s,
                          u"answer receiver 10 -> device 10 dashed: 70"_s}));
}

void tst_KvxDiagram::aSideThatIsNotNamed_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("devices");
    QTest::addColumn<QString>("ends");
    QTest::newRow("call-of-the-factory") << u"call"_s << 1 << u"host -> library"_s;
    QTest::newRow("only-device") << u"host"_s << 1 << u"device 1 -> host services"_s;
    QTest::newRow("one-of-two-devices") << u"host"_s << 2 << u"library -> host services"_s;
    QTest::newRow("no-device") << u"receiver"_s << 0 << u"library -> receiver 1"_s;
}

void tst_KvxDiagram::aSideThatIsNotNamed()
{
    QFETCH(const QString, kind);
    QFETCH(const int, devices);
    QFETCH(const QString, ends);
    QList<SequenceEntry> entries{{1, 0, 1, {}, 1, kind, kind + u" operation()"_s}};
    for (int device = 1; device <= devices; ++device)
        entries.append({2, 0, 1, static_cast<quint64>(device), 1, u"signal"_s, u"signal dpiMinChanged(1)"_s});
    QCOMPARE(pictureOf(entries).rows.first(), kind + u' ' + ends + u": operation()"_s);
}

void tst_KvxDiagram::resultsAreDividedOutsideQuotes()
{
    const SequencePicture picture =
        pictureOf({{1, 0, 1, 1, 1, u"receiver"_s, uR"(receiver ask("a -> \" -> b") -> "c -> d")"_s}});
    QCOMPARE(picture.rows, QStringList({uR"(receiver device 1 -> receiver 1: ask("a -> \" -> b"))"_s,
                                        uR"(answer receiver 1 -> device 1 dashed: "c -> d")"_s}));
}

void tst_KvxDiagram::hostileTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("title");
    const auto row = [](const char *tag, const QString &text, const QString &shown) {
        QTest::newRow(tag) << u"signal "_s + text << shown << u"signal "_s + shown;
    };
    row("markup", u"x(\"<b>&amp;'</title><script>\")"_s, u"x(\"<b>&amp;'</title><script>\")"_s);
    row("end-of-cdata", u"x(]]>)"_s, u"x(]]>)"_s);
    row("control-characters", u"x(\u0001\u001b[0m\u007f)"_s,
        u"x(\u27e8U+0001\u27e9\u27e8U+001B\u27e9[0m\u27e8U+007F\u27e9)"_s);
    row("nul", u"x("_s + QChar::Null + u')', u"x(\u27e8U+0000\u27e9)"_s);
    row("half-a-pair", u"x("_s + QChar(0xd83d) + u')', u"x(\u27e8U+D83D\u27e9)"_s);
    row("turned", u"x(\u202eabc)"_s, u"x(\u27e8U+202E\u27e9abc)"_s);
    row("other-scripts", u"x(\"鼠标 עכבר 🖱 é\")"_s, u"x(\"鼠标 עכבר 🖱 é\")"_s);
    QTest::newRow("lines") << u"signal x(a\n\tb)"_s << u"x(a b)"_s << u"signal x(a\n\tb)"_s;
    QTest::newRow("empty") << QString() << QString() << QString();
    QTest::newRow("no-kind") << u"signals"_s << u"signals"_s << u"signals"_s;
}

void tst_KvxDiagram::hostileTexts()
{
    QFETCH(const QString, text);
    QFETCH(const QString, label);
    QFETCH(const QString, title);
    SequenceEntry note = signal(text);
    note.kind = u"<kind \"of\" its & own>"_s;
    const SequencePicture picture = pictureOf({signal(text), note});
    QCOMPARE(picture.error, QString());
    QCOMPARE(picture.rows, QStringList({u"signal device 42 -> host: "_s + label,
                                        u"note: "_s + QString(title).simplified()}));
    QCOMPARE(picture.titles, QStringList({title, title}));
}

void tst_KvxDiagram::longTextsAreShortened()
{
    const QString text = u"signal x("_s + QString(100000, u'a') + u')';
    const QString wide = u"signal "_s + QString(1000, u'鼠');
    const QString marks = u"signal e"_s + QString(5000, QChar(0x301));
    SequenceEntry note = signal(text);
    note.kind = u"log"_s;
    const SequencePicture picture =
        pictureOf({signal(text),
                   signal(wide),
                   note,
                   {2, 0, 1, 42, 1, u"receiver"_s, u"receiver x() -> "_s + QString(1000, u'b')}});
    QCOMPARE(picture.error, QString());
    const QString ends = u"signal device 42 -> host: "_s;
    QCOMPARE(picture.rows.value(0), ends + u"x("_s + QString(61, u'a') + u'…');
    QCOMPARE(picture.rows.value(1), ends + QString(31, u'鼠') + u'…');
    QCOMPARE(picture.rows.value(2).left(31), u"note: signal x(aaaaaaaaaaaaaaaa"_s);
    QVERIFY(picture.rows.value(2).endsWith(u'…'));
    QVERIFY(picture.rows.value(2).size() < 150);
    QCOMPARE(picture.rows.value(4), u"answer receiver 1 -> device 42 dashed: "_s + QString(39, u'b') + u'…');
    QCOMPARE(picture.titles.mid(0, 2), QStringList({text, wide}));
    QCOMPARE(picture.cramped, QStringList());
    QCOMPARE(pictureOf({signal(marks)}).rows, QStringList{ends + u'e' + QString(511, QChar(0x301)) + u'…'});
}

void tst_KvxDiagram::nothingToDraw()
{
    const SequencePicture picture = pictureOf({});
    QCOMPARE(picture.error, QString());
    QCOMPARE(picture.remark, u"There are no entries to draw."_s);
    QCOMPARE(picture.rows, QStringList());
    QCOMPARE(picture.lifelines, QStringList());
}

void tst_KvxDiagram::tooManyEntries()
{
    QList<SequenceEntry> entries(SequenceDiagram::mostEntries, signal(u"signal x()"_s));
    const SequencePicture whole = pictureOf(entries);
    QCOMPARE(whole.rows.size(), SequenceDiagram::mostEntries);
    QCOMPARE(whole.remark, QString());
    entries.append(signal(u"signal last()"_s));
    const SequencePicture cut = pictureOf(entries);
    QCOMPARE(cut.rows, whole.rows);
    QCOMPARE(cut.remark, u"The first 1000 of 1001 entries; the others are not drawn."_s);
}

void tst_KvxDiagram::bandsShowTheSame()
{
    SequenceDiagram diagram;
    for (quint64 number = 1; number <= 200; ++number)
        diagram.add({number, 0, 1, 1, 1, u"receiver"_s, u"receiver x(%1) -> true"_s.arg(number)});
    const SequencePicture whole = readSequence(diagram.svg(SequencePalette::light()));
    const QList<SequenceBand> bands = diagram.bands(SequencePalette::light());
    QVERIFY(bands.size() > 5);
    QStringList numbers;
    int bottom = 0;
    for (const SequenceBand &band : bands) {
        QCOMPARE(band.place.top(), bottom);
        QCOMPARE(band.place.width(), whole.size.width());
        QVERIFY(band.place.height() < 1000);
        bottom += band.place.height();
        const SequencePicture part = readSequence(band.svg);
        QCOMPARE(part.error, QString());
        QCOMPARE(part.size, band.place.size());
        QCOMPARE(part.lifelines, whole.lifelines);
        numbers += part.numbers;
    }
    QCOMPARE(bottom, whole.size.height());
    // What is cut by an edge is in both bands.
    QVERIFY(numbers.removeDuplicates() < bands.size());
    QCOMPARE(numbers, whole.numbers);
}

void tst_KvxDiagram::textsAreFoundByTheirPlace()
{
    SequenceDiagram diagram;
    diagram.add(signal(u"signal x()"_s));
    diagram.add({2, 0, 1, {}, 1, u"log"_s, u"debug y"_s});
    const int height = readSequence(diagram.svg(SequencePalette::light())).size.height();
    QStringList texts;
    for (int y = -1; y <= height; ++y)
        texts.append(diagram.textAt(y));
    texts.removeDuplicates();
    QCOMPARE(texts, QStringList({QString(), u"signal x()"_s, u"debug y"_s}));
    QCOMPARE(SequenceDiagram().textAt(0), QString());
}

void tst_KvxDiagram::palettesDifferInColoursOnly()
{
    SequenceDiagram diagram;
    diagram.add(signal(u"signal x()"_s));
    const auto withoutColours = [&](const SequencePalette &palette) {
        return QString::fromUtf8(diagram.svg(palette)).remove(QRegularExpression(u"#[0-9a-f]{6}"_s));
    };
    QCOMPARE(withoutColours(SequencePalette::dark()), withoutColours(SequencePalette::light()));
    QVERIFY(diagram.svg(SequencePalette::dark()) != diagram.svg(SequencePalette::light()));
}

void tst_KvxDiagram::aRunIsDrawn()
{
    const QStringList lines{u"log debug off"_s, u"mouse 1"_s, u"start"_s,
                            u"other-thread setReportRate 1000"_s};
    const Drawn drawn = draw(lines);
    QCOMPARE(drawn.run.errors, QStringList());
    QCOMPARE(drawn.run.exitCode, 0);
    QCOMPARE(drawn.run.output, playLines(lines).output);
    QCOMPARE(drawn.picture.error, QString());
    QCOMPARE(drawn.picture.titles, drawn.run.output.filter(QRegularExpression(u"^[^>]"_s)));
    QCOMPARE(drawn.picture.lifelines,
             QStringList({u"host"_s, u"library"_s, u"device 1"_s, u"receiver 1"_s, u"mouse 1"_s}));
    const qsizetype call =
        drawn.picture.rows.indexOf(u"call host -> device 1 dashed: setReportRate(1000) (thread 2)"_s);
    QCOMPARE(drawn.picture.rows.mid(call + 1),
             QStringList({u"receiver device 1 -> receiver 1 dashed: setReportRate(1000) (thread 2)"_s,
                          u"answer receiver 1 -> device 1 dashed: true"_s,
                          u"signal device 1 -> host: isReportRateChangePendingChanged(true)"_s,
                          u"signal device 1 -> host: reportRateChanged(1000)"_s,
                          u"report mouse 1 -> device 1 through receiver 1: reportRateConfirmed(1000)"_s,
                          u"signal device 1 -> host: isReportRateChangePendingChanged(false)"_s}));
}

void tst_KvxDiagram::jsonIsPrintedToo()
{
    const QStringList lines{u"mouse 1"_s, u"start"_s};
    const Drawn drawn = draw(lines, {u"--json"_s});
    QCOMPARE(drawn.run.exitCode, 0);
    QCOMPARE(drawn.run.output.value(0), u"{\"schemaVersion\":1}"_s);
    QVERIFY(drawn.run.output.size() > 1);
    QCOMPARE(drawn.picture.titles.size(), drawn.run.output.size() - 1);
}

void tst_KvxDiagram::aRunThatFailsIsDrawn()
{
    const Drawn drawn = draw({u"mouse 1"_s, u"expect dpiButtonId 4"_s});
    QCOMPARE(drawn.run.exitCode, 1);
    QCOMPARE(drawn.picture.error, QString());
    QVERIFY(drawn.picture.titles.contains(u"call createLogicalDevice()"_s));
}

void tst_KvxDiagram::anEmptyScenarioIsDrawn()
{
    // The library is initialized before the first line, and that is on the timeline.
    const Drawn drawn = draw({});
    QCOMPARE(drawn.run.exitCode, 0);
    QCOMPARE(drawn.picture.error, QString());
    QCOMPARE(drawn.picture.titles, drawn.run.output);
}

void tst_KvxDiagram::unusableFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("no-such-folder") << m_folder.filePath(u"nowhere/x.svg"_s);
    QTest::newRow("folder") << m_folder.path();
    QTest::newRow("no-name") << QString();
}

void tst_KvxDiagram::unusableFiles()
{
    QFETCH(const QString, file);
    const KvxRun run = runKvx({u"run"_s, u"--plugin"_s, PluginFixture::builtPluginFile(), u"--diagram"_s,
                               file, QStringLiteral(KVX_EXAMPLES "/01-dpi-slots.kvx")});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), qsizetype(1));
    QVERIFY2(run.errors.first().startsWith(u"kvx: \"%1\" cannot be written: "_s.arg(file)),
             qPrintable(run.errors.first()));
    QVERIFY(run.errors.first().endsWith(u"; give the path of an SVG file behind --diagram"_s));
}

void tst_KvxDiagram::nothingIsWrittenWithoutALibrary()
{
    const QString file = m_folder.filePath(u"x.svg"_s);
    const KvxRun run = runKvx({u"run"_s, u"--plugin"_s, wrongLibrary(u"NoPlugin"_s), u"--diagram"_s, file,
                               QStringLiteral(KVX_EXAMPLES "/01-dpi-slots.kvx")});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.errors.size(), qsizetype(1));
    QVERIFY(run.errors.first().contains(u"NoPlugin"_s));
    QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files), QStringList());
}

void tst_KvxDiagram::stepsAreNotDrawn()
{
    const Drawn drawn = draw({u"mouse 1"_s}, {u"--steps"_s});
    QCOMPARE(drawn.run.exitCode, 2);
    QCOMPARE(drawn.run.output, QStringList());
    QCOMPARE(drawn.run.errors.size(), qsizetype(1));
    QVERIFY(drawn.run.errors.first().contains(u"--diagram"_s));
    QCOMPARE(drawn.files, QStringList());
}

QTEST_GUILESS_MAIN(tst_KvxDiagram)
#include "tst_KvxDiagram.moc"
