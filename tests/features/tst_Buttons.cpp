#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QPluginLoader>
#include <QtCore/QResource>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryFile>
#include <QtCore/QtEndian>
#include <QtTest/QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QLatin1StringView profilePath = ":/com.orvane.KVX.Plugin.LogicalDevice.RV418/DefaultProfile.json"_L1;
const QLatin1StringView imagePath =
    ":/com.orvane.KVX.Plugin.LogicalDevice.RV418/Images/DarkTheme_Device_Selection_Mouse.png"_L1;

QByteArray profileBytes()
{
    return "{\r\n  \"version\": 1,\r\n  \"defaultActions\": [\r\n  ]\r\n}\r\n";
}

QStringList disableCall(const QString &ids, int mask)
{
    return {u"call disbaleButtonsOrKeys([%1])"_s.arg(ids),
            debugLine(u"disbaleButtonsOrKeys enter, buttonOrKeys : QList(%1)"_s.arg(ids)),
            u"receiver setDisabledButtonsOrKeysMask(%1) -> true"_s.arg(mask),
            debugLine(u"disbaleButtonsOrKeys exit"_s)};
}

// All that is registered in this process.
QStringList resourcePaths()
{
    QStringList paths;
    QDirIterator entries(u":/"_s, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        paths += entries.next();
    paths.sort();
    return paths;
}

/// A resource collection that is registered as long as it lives.
class RegisteredResource
{
public:
    explicit RegisteredResource(const QString &file)
        : m_file(file), m_isRegistered(QResource::registerResource(file))
    {}
    ~RegisteredResource()
    {
        if (m_isRegistered)
            QResource::unregisterResource(m_file);
    }
    Q_DISABLE_COPY_MOVE(RegisteredResource)

    bool isRegistered() const { return m_isRegistered; }

private:
    QString m_file;
    bool m_isRegistered;
};

// A copy of a resource collection with one compressed file, whose compressed bytes are spoilt: the file is
// found but cannot be opened. The place of the data is in the fourth word of the collection, each file
// there begins with its length and the length that it has unpacked.
QByteArray damagedCollection(const QString &file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = source.readAll();
    const auto dataOffset = qFromBigEndian<quint32>(bytes.constData() + 12);
    const auto length = qFromBigEndian<quint32>(bytes.constData() + dataOffset);
    constexpr qsizetype lengths = 8;
    const qsizetype begin = qsizetype(dataOffset) + lengths;
    const qsizetype end = qsizetype(dataOffset) + length;
    for (qsizetype i = begin; i < end; ++i)
        bytes[i] = '\xff';
    return bytes;
}

}  // namespace

class tst_Buttons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void profileIsServedByteForByte();
    void profileIsAResourceWhileTheLibraryIsLoaded();
    void profileIsStoredUncompressed();
    void profileIsTheSameInEveryLocale_data();
    void profileIsTheSameInEveryLocale();
    void resourceTreeHoldsNothingElse();
    void profileThatCannotBeReadIsWarnedOf_data();
    void profileThatCannotBeReadIsWarnedOf();
    void imageIsEmptyWithoutAResource();
    void imageComesFromTheHostsResources();
    void buttonsAreDisabled_data();
    void buttonsAreDisabled();
    void maskIsReplacedNotMerged();
    void setToDefaultSendsZero();
    void setToDefaultAfterDisabling();
    void refusalIsIgnored();
    void withoutReceiver();
    void maskIsSentOncePerCall();
    void requestInsideTheEnterLine_data();
    void requestInsideTheEnterLine();
};

void tst_Buttons::profileIsServedByteForByte()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QCOMPARE(profileBytes().size(), qsizetype(51));
    QCOMPARE(device.device()->defaultProfile(), profileBytes());
    device.start();
    fixture.take();
    QCOMPARE(device.device()->defaultProfile(), profileBytes());
    COMPARE_LINES(fixture.take(), {});
}

void tst_Buttons::profileIsAResourceWhileTheLibraryIsLoaded()
{
    QVERIFY(!QFile::exists(profilePath));
    {
        // Without its factory.
        QPluginLoader loader;
        loader.setLoadHints({});
        loader.setFileName(PluginFixture::builtPluginFile());
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        QFile profile(profilePath);
        QVERIFY(profile.open(QIODevice::ReadOnly));
        QCOMPARE(profile.readAll(), profileBytes());
        profile.close();
        QVERIFY(loader.unload());
    }
    QVERIFY(!QFile::exists(profilePath));
}

void tst_Buttons::profileIsStoredUncompressed()
{
    PluginFixture fixture;
    const QResource profile(profilePath);
    QVERIFY(profile.isValid());
    QCOMPARE(profile.compressionAlgorithm(), QResource::NoCompression);
    QCOMPARE(profile.size(), qint64(51));
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(profile.data()), 51), profileBytes());
}

void tst_Buttons::profileIsTheSameInEveryLocale_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("C") << QLocale::c();
    QTest::newRow("english-us") << QLocale(QLocale::English, QLocale::UnitedStates);
    QTest::newRow("german") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("chinese") << QLocale(QLocale::Chinese, QLocale::China);
}

void tst_Buttons::profileIsTheSameInEveryLocale()
{
    QFETCH(const QLocale, locale);
    const auto resetLocale = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
    QLocale::setDefault(locale);
    PluginFixture fixture;
    QCOMPARE(fixture.create().device()->defaultProfile(), profileBytes());
}

void tst_Buttons::resourceTreeHoldsNothingElse()
{
    const QStringList before = resourcePaths();
    const PluginFixture fixture;
    QStringList added = resourcePaths();
    added.removeIf([&](const QString &path) { return before.contains(path); });
    COMPARE_LINES(added, {u":/com.orvane.KVX.Plugin.LogicalDevice.RV418"_s, QString(profilePath)});
}

void tst_Buttons::profileThatCannotBeReadIsWarnedOf_data()
{
    QTest::addColumn<bool>("isWarningEnabled");
    QTest::newRow("warning-on") << true;
    QTest::newRow("warning-off") << false;
}

void tst_Buttons::profileThatCannotBeReadIsWarnedOf()
{
    QFETCH(const bool, isWarningEnabled);
    // Registered before the library is loaded, a damaged resource under the same path is found first.
    QTemporaryFile file;
    QVERIFY(file.open());
    const QByteArray collection = damagedCollection(QStringLiteral(OTHER_PROFILE_RCC));
    QCOMPARE(file.write(collection), collection.size());
    file.close();
    const RegisteredResource damaged(file.fileName());
    QVERIFY(damaged.isRegistered());
    PluginFixture fixture({true, isWarningEnabled, true});
    HostedDevice &device = fixture.create();
    QCOMPARE(device.device()->defaultProfile(), QByteArray());
    QVERIFY(device.device()->defaultProfile().isEmpty());
    const QString line = warningLine(u"Unable to load default profile from :  \""_s + profilePath + u'"');
    QStringList lines = fixture.take();
    lines.removeIf([](const QString &text) { return !text.contains(u"RV418.LogicalDevice"_s); });
    QCOMPARE(lines, isWarningEnabled ? QStringList({line, line}) : QStringList());
}

void tst_Buttons::imageIsEmptyWithoutAResource()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QCOMPARE(device.device()->deviceImage(), QByteArray());
    device.start();
    fixture.take();
    QCOMPARE(device.device()->deviceImage(), QByteArray());
    COMPARE_LINES(fixture.take(), {});
}

void tst_Buttons::imageComesFromTheHostsResources()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    {
        const RegisteredResource images(QStringLiteral(DEVICE_IMAGE_RCC));
        QVERIFY(images.isRegistered());
        QVERIFY(QFile::exists(imagePath));
        QCOMPARE(device.device()->deviceImage(), QByteArray("not quite a picture\n"));
    }
    QCOMPARE(device.device()->deviceImage(), QByteArray());
}

void tst_Buttons::buttonsAreDisabled_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("mask");
    QTest::newRow("first") << u"1"_s << 0x01;
    QTest::newRow("last") << u"5"_s << 0x10;
    QTest::newRow("odd-ones") << u"1, 3, 5"_s << 0x15;
    QTest::newRow("all") << u"5, 4, 3, 2, 1"_s << 0x1f;
    QTest::newRow("twice-and-unknown") << u"2, 2, 7"_s << 0x02;
    QTest::newRow("none") << QString() << 0;
    QTest::newRow("only-unknown") << u"0, 6, 8, -1, 128"_s << 0;
    QTest::newRow("smart-pointer-bit-is-no-button") << u"8"_s << 0;
    QTest::newRow("extremes") << u"-2147483648, 2147483647, 4"_s << 0x08;
    QTest::newRow("word-multiples") << u"33, 257, 65537"_s << 0;
}

void tst_Buttons::buttonsAreDisabled()
{
    QFETCH(const QString, text);
    QFETCH(const int, mask);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    QList<int> ids;
    const QStringList texts = text.split(u", "_s, Qt::SkipEmptyParts);
    for (const QString &id : texts)
        ids.append(id.toInt());
    device.disbaleButtonsOrKeys(ids);
    COMPARE_LINES(fixture.take(), disableCall(text, mask));
}

void tst_Buttons::maskIsReplacedNotMerged()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.disbaleButtonsOrKeys({4});
    device.disbaleButtonsOrKeys({1});
    COMPARE_LINES(fixture.take(), disableCall(u"4"_s, 0x08) + disableCall(u"1"_s, 0x01));
}

void tst_Buttons::setToDefaultSendsZero()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setButtonsOrKeysToDefault();
    COMPARE_LINES(fixture.take(),
                  {u"call setButtonsOrKeysToDefault()"_s, debugLine(u"setButtonsOrKeysToDefault enter"_s),
                   u"receiver setDisabledButtonsOrKeysMask(0) -> true"_s,
                   debugLine(u"setButtonsOrKeysToDefault exit"_s)});
}

void tst_Buttons::setToDefaultAfterDisabling()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.disbaleButtonsOrKeys({1, 2, 3, 4, 5});
    fixture.take();
    device.setButtonsOrKeysToDefault();
    COMPARE_LINES(fixture.take(), {u"call setButtonsOrKeysToDefault()"_s,
                                   u"receiver setDisabledButtonsOrKeysMask(0) -> true"_s});
}

void tst_Buttons::refusalIsIgnored()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.acceptsRequests = false;
    device.setButtonsOrKeysToDefault();
    device.disbaleButtonsOrKeys({1});
    COMPARE_LINES(fixture.take(),
                  {u"call setButtonsOrKeysToDefault()"_s, debugLine(u"setButtonsOrKeysToDefault enter"_s),
                   u"receiver setDisabledButtonsOrKeysMask(0) -> false"_s,
                   debugLine(u"setButtonsOrKeysToDefault exit"_s), u"call disbaleButtonsOrKeys([1])"_s,
                   debugLine(u"disbaleButtonsOrKeys enter, buttonOrKeys : QList(1)"_s),
                   u"receiver setDisabledButtonsOrKeysMask(1) -> false"_s,
                   debugLine(u"disbaleButtonsOrKeys exit"_s)});
}

void tst_Buttons::withoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.disbaleButtonsOrKeys({1});
    device.setButtonsOrKeysToDefault();
    COMPARE_LINES(fixture.take(),
                  {u"call disbaleButtonsOrKeys([1])"_s,
                   debugLine(u"disbaleButtonsOrKeys enter, buttonOrKeys : QList(1)"_s),
                   warningLine(u"Unknown IPhysicalDevice interface"_s),
                   debugLine(u"disbaleButtonsOrKeys exit"_s), u"call setButtonsOrKeysToDefault()"_s,
                   debugLine(u"setButtonsOrKeysToDefault enter"_s),
                   warningLine(u"Unknown IPhysicalDevice interface"_s),
                   debugLine(u"setButtonsOrKeysToDefault exit"_s)});
}

void tst_Buttons::maskIsSentOncePerCall()
{
    // The same mask again is sent again: the mouse may have lost it.
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.disbaleButtonsOrKeys({3});
    device.disbaleButtonsOrKeys({3});
    COMPARE_LINES(fixture.take(), disableCall(u"3"_s, 0x04) + disableCall(u"3"_s, 0x04));
}

void tst_Buttons::requestInsideTheEnterLine_data()
{
    QTest::addColumn<bool>("isReset");
    QTest::newRow("default") << true;
    QTest::newRow("disable") << false;
}

void tst_Buttons::requestInsideTheEnterLine()
{
    // What a log handler disables from inside the line is replaced, not merged.
    QFETCH(const bool, isReset);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    const QString enter = isReset ? u"setButtonsOrKeysToDefault enter"_s
                                  : u"disbaleButtonsOrKeys enter, buttonOrKeys : QList(2)"_s;
    fixture.onceInside(debugLine(enter), [&] { device.disbaleButtonsOrKeys({1}); });
    if (isReset)
        device.setButtonsOrKeysToDefault();
    else
        device.disbaleButtonsOrKeys({2});
    COMPARE_LINES(fixture.take().filter(u"receiver "_s),
                  {u"receiver setDisabledButtonsOrKeysMask(1) -> true"_s,
                   u"receiver setDisabledButtonsOrKeysMask(%1) -> true"_s.arg(isReset ? 0 : 2)});
}

QTEST_GUILESS_MAIN(tst_Buttons)
#include "tst_Buttons.moc"
