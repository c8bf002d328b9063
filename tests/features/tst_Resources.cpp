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

using namespace Qt::StringLiterals;

namespace {

const QLatin1StringView profilePath = ":/com.orvane.KVX.Plugin.LogicalDevice.RV418/DefaultProfile.json"_L1;
const QLatin1StringView imagePath =
    ":/com.orvane.KVX.Plugin.LogicalDevice.RV418/Images/DarkTheme_Device_Selection_Mouse.png"_L1;

QByteArray profileBytes()
{
    return "{\r\n  \"version\": 1,\r\n  \"defaultActions\": [\r\n  ]\r\n}\r\n";
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

class tst_Resources : public QObject
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
    void imageComesFromTheHostsResources();
};

void tst_Resources::profileIsServedByteForByte()
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

void tst_Resources::profileIsAResourceWhileTheLibraryIsLoaded()
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

void tst_Resources::profileIsStoredUncompressed()
{
    PluginFixture fixture;
    const QResource profile(profilePath);
    QVERIFY(profile.isValid());
    QCOMPARE(profile.compressionAlgorithm(), QResource::NoCompression);
    QCOMPARE(profile.size(), qint64(51));
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(profile.data()), 51), profileBytes());
}

void tst_Resources::profileIsTheSameInEveryLocale_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("C") << QLocale::c();
    QTest::newRow("english-us") << QLocale(QLocale::English, QLocale::UnitedStates);
    QTest::newRow("german") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("chinese") << QLocale(QLocale::Chinese, QLocale::China);
}

void tst_Resources::profileIsTheSameInEveryLocale()
{
    QFETCH(const QLocale, locale);
    const auto resetLocale = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
    QLocale::setDefault(locale);
    PluginFixture fixture;
    QCOMPARE(fixture.create().device()->defaultProfile(), profileBytes());
}

void tst_Resources::resourceTreeHoldsNothingElse()
{
    const QStringList before = resourcePaths();
    const PluginFixture fixture;
    QStringList added = resourcePaths();
    added.removeIf([&](const QString &path) { return before.contains(path); });
    COMPARE_LINES(added, {u":/com.orvane.KVX.Plugin.LogicalDevice.RV418"_s, QString(profilePath)});
}

void tst_Resources::profileThatCannotBeReadIsWarnedOf_data()
{
    QTest::addColumn<bool>("isWarningEnabled");
    QTest::newRow("warning-on") << true;
    QTest::newRow("warning-off") << false;
}

void tst_Resources::profileThatCannotBeReadIsWarnedOf()
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

void tst_Resources::imageComesFromTheHostsResources()
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

QTEST_GUILESS_MAIN(tst_Resources)
#include "tst_Resources.moc"
