#include "ILogicalDevicePlugin.h"
#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QCborMap>
#include <QtCore/QCborStreamReader>
#include <QtCore/QCborValue>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>
#include <QtCore/QLoggingCategory>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

extern Q_CORE_EXPORT quintptr qtHookData[];

namespace {

// What an entry point of the Qt plugin protocol returns: where the metadata lie and how many bytes there are.
struct PluginMetaData
{
    const uchar *data;
    size_t size;
};

using QueryMetaData = PluginMetaData (*)();
using Instance = QObject *(*)();

/// The library loaded as a plain library, for calling its entry points by hand.
class PlainLibrary
{
public:
    PlainLibrary()
    {
        m_library.setLoadHints({});
        m_library.setFileName(PluginFixture::builtPluginFile());
        if (!m_library.load())
            qFatal("%s", qPrintable(m_library.errorString()));
    }
    ~PlainLibrary() { m_library.unload(); }
    Q_DISABLE_COPY_MOVE(PlainLibrary)

    template <typename Function>
    Function resolve(const char *symbol)
    {
        return reinterpret_cast<Function>(m_library.resolve(symbol));
    }

private:
    QLibrary m_library;
};

// A copy of the library whose devices have a line of each severity to write at their start.
QString renamedLibrary(const QTemporaryDir &folder)
{
    const QString copy =
        folder.filePath(u"renamed."_s + QFileInfo(PluginFixture::builtPluginFile()).suffix());
    if (!QFile::copy(PluginFixture::builtPluginFile(), copy))
        qFatal("the library cannot be copied to \"%s\"", qPrintable(copy));
    return copy;
}

constexpr QLatin1StringView deviceCategory("com.orvane.KVX.Plugin.LogicalDevice.RV418.LogicalDevice");
constexpr QLatin1StringView pluginCategory("com.orvane.KVX.Plugin.LogicalDevice.RV418.LogicalDevicePlugin");

/// Notes the library's logging categories as they are made, as long as it lives.
class MadeCategories
{
public:
    MadeCategories()
    {
        qtFilter = QLoggingCategory::installFilter(nullptr);
        QLoggingCategory::installFilter(note);
    }
    ~MadeCategories() { QLoggingCategory::installFilter(qtFilter); }
    Q_DISABLE_COPY_MOVE(MadeCategories)

    static QStringList take() { return std::exchange(names(), {}); }

private:
    static void note(QLoggingCategory *category)
    {
        qtFilter(category);
        const QString name = QString::fromLatin1(category->categoryName());
        if (name.startsWith(u"com.orvane."))
            names() += name;
    }

    static QStringList &names()
    {
        static QStringList list;
        return list;
    }

    static inline QLoggingCategory::CategoryFilter qtFilter = nullptr;
};

// A life with a line of each severity and category.
void liveAloud(PluginFixture &fixture)
{
    HostedDevice &device = fixture.createRecorded(nullptr, PluginFixture::mouse);
    device.start();
    fixture.destroy(device);
    fixture.host.unload();
}

/// Counts the objects that are made while it lives, by the hook that Qt has for debuggers.
class ObjectCount
{
public:
    ObjectCount()
    {
        created = 0;
        qtHookData[addObject] = reinterpret_cast<quintptr>(&countObject);
    }
    ~ObjectCount() { qtHookData[addObject] = 0; }
    Q_DISABLE_COPY_MOVE(ObjectCount)

    int count() const { return created; }

private:
    static constexpr int addObject = 3;

    static void countObject(QObject * /*object*/) { ++created; }

    inline static int created = 0;
};

/// A device of somebody else's making.
class ForeignDevice : public IDevice
{
public:
    int deviceType() const override { return 0; }
    int deviceClass() const override { return 0; }
    quintptr forwardToPhysicalDevice(quintptr /*argument1*/, quintptr /*argument2*/,
                                     quintptr /*argument3*/) override
    {
        return 0;
    }
    QString name() const override { return {}; }
    QUuid instanceId() const override { return {}; }
    uint firmwareVersion() const override { return 0; }
    QString iid() const override { return {}; }
    int deviceValue() const override { return 0; }
    QString modelCode() const override { return {}; }
    bool start() override { return false; }
    void stop() override {}
    void setFirmwareVersion(uint /*fwVersion*/) override {}
    void applySettings(const QVariantMap & /*settings*/) override {}
    void resetSettings() override {}
    void stopped(IDevice * /*iDevice*/) override {}
    void firmwareVersionChanged(uint /*fwVersion*/) override {}
    void capabilityChangedCallBack(quint8 /*capability*/) override {}
};

}  // namespace

class tst_PluginEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void metaDataHeader();
    void metaDataMap();
    void metaDataQueryCreatesNothing();
    void instanceIsOneUntilDeleted();
    void instanceHasNoParent();
    void factoryCastAnswers_data();
    void factoryCastAnswers();
    void closedSwitchesMakeNoCategory();
    void categoriesAreMadeWithTheirFirstLine();
    void createParentsTheDevice();
    void createChecksNothing();
    void createOffTheFactorysThread();
    void destroyNull();
    void destroyForeignDevice();
};

void tst_PluginEntry::metaDataHeader()
{
    PlainLibrary library;
    const auto query = library.resolve<QueryMetaData>("qt_plugin_query_metadata_v2");
    QVERIFY(query);
    const PluginMetaData metaData = query();
    // 4 bytes of header and 67 of map; ELF libraries pad the record to a multiple of 8.
#ifdef Q_OF_ELF
    QCOMPARE(metaData.size, size_t(72));
#else
    QCOMPARE(metaData.size, size_t(71));
#endif
    QCOMPARE(int(metaData.data[0]), 1);
    QCOMPARE(int(metaData.data[1]), QT_VERSION_MAJOR);
    QCOMPARE(int(metaData.data[2]), QT_VERSION_MINOR);
#ifdef KVX_DEBUG_BUILD
    QCOMPARE(int(metaData.data[3]), 0x80);
#else
    QCOMPARE(int(metaData.data[3]), 0);
#endif
}

void tst_PluginEntry::metaDataMap()
{
    PlainLibrary library;
    const PluginMetaData metaData = library.resolve<QueryMetaData>("qt_plugin_query_metadata_v2")();
    constexpr qsizetype headerSize = 4;
    constexpr qsizetype mapSize = 67;
    const QByteArray map(reinterpret_cast<const char *>(metaData.data) + headerSize, mapSize);
    // Without a length, with two entries, and whole.
    QCOMPARE(uchar(map.front()), uchar(0xbf));
    QCOMPARE(uchar(map.back()), uchar(0xff));
    QCborParserError error;
    const QCborValue value = QCborValue::fromCbor(map, &error);
    QCOMPARE(error.error, QCborError::NoError);
    QCOMPARE(error.offset, mapSize);
    QCOMPARE(value.toMap(),
             QCborMap({{2, u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s}, {3, u"LogicalDevicePlugin"_s}}));
}

void tst_PluginEntry::metaDataQueryCreatesNothing()
{
    // Loading makes the test's own QLibrary, the query nothing, and the instance is the factory.
    const ObjectCount made;
    PlainLibrary library;
    QCOMPARE(made.count(), 1);
    const auto query = library.resolve<QueryMetaData>("qt_plugin_query_metadata_v2");
    QVERIFY(query);
    QCOMPARE(query().data, query().data);
    QCOMPARE(made.count(), 1);
    const std::unique_ptr<QObject> factory(library.resolve<Instance>("qt_plugin_instance")());
    QCOMPARE(made.count(), 2);
}

void tst_PluginEntry::instanceIsOneUntilDeleted()
{
    PlainLibrary library;
    const auto instance = library.resolve<Instance>("qt_plugin_instance");
    QVERIFY(instance);
    QPointer<QObject> first(instance());
    QVERIFY(first);
    QCOMPARE(instance(), first.data());
    delete first.data();
    QVERIFY(!first);
    std::unique_ptr<QObject> second(instance());
    QVERIFY(second);
    QVERIFY(qobject_cast<ILogicalDevicePlugin *>(second.get()));
    QCOMPARE(instance(), second.get());
}

void tst_PluginEntry::instanceHasNoParent()
{
    PluginFixture fixture;
    QCOMPARE(fixture.host.root()->parent(), nullptr);
    QCOMPARE(fixture.host.root()->thread(), QThread::currentThread());
}

void tst_PluginEntry::factoryCastAnswers_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("view");
    const auto row = [](const char *name, const QString &view) {
        QTest::newRow(name) << QByteArray(name) << view;
    };
    row("LogicalDevicePlugin", u"object"_s);
    row("ILogicalDevicePlugin", u"factory"_s);
    row("com.orvane.KVX.Plugin.IDevicePlugin", u"factory"_s);
    row("com.orvane.KVX.Plugin.ILogicalDevicePlugin", u"factory"_s);
    row("QObject", u"object"_s);
    row("IDevicePlugin", u"none"_s);
    row("com.orvane.KVX.Plugin.IDevice", u"none"_s);
    row("com.orvane.KVX.Plugin.LogicalDevice.RV418", u"none"_s);
    QTest::newRow("null") << QByteArray() << u"none"_s;
}

void tst_PluginEntry::factoryCastAnswers()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QString, view);
    PluginFixture fixture;
    QObject *root = fixture.host.root();
    const void *expected = nullptr;
    if (view == u"object")
        expected = root;
    else if (view == u"factory")
        expected = dynamic_cast<ILogicalDevicePlugin *>(root);
    QCOMPARE(root->qt_metacast(name.isNull() ? nullptr : name.constData()), expected);
}

void tst_PluginEntry::closedSwitchesMakeNoCategory()
{
    const QTemporaryDir folder;
    const MadeCategories made;
    PluginFixture fixture({false, false, false}, renamedLibrary(folder));
    liveAloud(fixture);
    COMPARE_LINES(MadeCategories::take(), {});
}

void tst_PluginEntry::categoriesAreMadeWithTheirFirstLine()
{
    const MadeCategories made;
    PluginFixture fixture({true, true, true});
    COMPARE_LINES(MadeCategories::take(), {});
    fixture.destroy(fixture.create());
    COMPARE_LINES(MadeCategories::take(), {deviceCategory});
    fixture.host.unload();
    COMPARE_LINES(MadeCategories::take(), {pluginCategory});
}

void tst_PluginEntry::createParentsTheDevice()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QCOMPARE(device.object()->parent(), fixture.host.root());
    QCOMPARE(device.object()->thread(), fixture.host.root()->thread());
    QCOMPARE(device.device()->physicalDevice(), static_cast<IPhysicalDevice *>(&fixture.receiver));
}

void tst_PluginEntry::createChecksNothing()
{
    PluginFixture fixture;
    HostedDevice &first = fixture.create(nullptr, 0);
    HostedDevice &second = fixture.create(nullptr, 0);
    QCOMPARE(first.device()->physicalDevice(), nullptr);
    QVERIFY(first.device() != second.device());
}

void tst_PluginEntry::createOffTheFactorysThread()
{
    PluginFixture fixture;
    OtherThread other;
    HostedDevice *device = nullptr;
    other.run([&] { device = &fixture.createRecorded(PluginFixture::mouse); });
    // It lives where it was made, and Qt refuses the parent.
    QCOMPARE(device->object()->thread(), other.thread());
    QCOMPARE(device->object()->parent(), nullptr);
    QCOMPARE(fixture.take().filter(u"warning default: QObject: Cannot create children for a parent"_s).size(),
             1);
    other.run([&] { device->start(); });
    QVERIFY(fixture.take().contains(u"signal instanceNumberChanged(0) on thread 2"_s));
    other.run([&] { fixture.destroy(*device); });
}

void tst_PluginEntry::destroyNull()
{
    PluginFixture fixture;
    fixture.host.factory()->destroyDevice(nullptr);
    COMPARE_LINES(fixture.take(), {});
}

void tst_PluginEntry::destroyForeignDevice()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    ForeignDevice foreign;
    fixture.host.factory()->destroyDevice(&foreign);
    COMPARE_LINES(fixture.take(), {});
    QCOMPARE(device.device()->instanceNumber(), 0);
    QCOMPARE(fixture.host.root()->children().size(), qsizetype(1));
}

QTEST_GUILESS_MAIN(tst_PluginEntry)
#include "tst_PluginEntry.moc"
