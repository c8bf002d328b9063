#include "HostTranslator.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>
#include <QtCore/QUuid>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// What identifies a device, as far as its constructor has come.
QString identity(const PluginFixture &fixture)
{
    const auto *device =
        dynamic_cast<const ILogicalDeviceGen3Mouse *>(fixture.host.root()->children().constLast());
    return u"%1, %2, name \"%3\""_s.arg(device->physicalDevice() ? u"receiver"_s : u"no receiver"_s,
                                        device->instanceId().isNull() ? u"no id"_s : u"id"_s, device->name());
}

}  // namespace

class tst_Identity : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void instanceIdStaysTheSame();
    void everyDeviceHasItsOwnInstanceId();
    void nameIsTranslatable();
    void constructionSeenFromItsLines();
    void constructionSeenByATranslator();
};

void tst_Identity::instanceIdStaysTheSame()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    const QUuid id = device.device()->instanceId();
    device.start();
    QCOMPARE(device.device()->instanceId(), id);
    device.stop();
    QCOMPARE(device.device()->instanceId(), id);
}

void tst_Identity::everyDeviceHasItsOwnInstanceId()
{
    PluginFixture fixture;
    const QUuid one = fixture.create(1).device()->instanceId();
    const QUuid other = fixture.create(1).device()->instanceId();
    QVERIFY(one != other);
}

void tst_Identity::nameIsTranslatable()
{
    class Translator : public QTranslator
    {
    public:
        bool isEmpty() const override { return false; }
        QString translate(const char *context, const char *sourceText, const char * /*disambiguation*/,
                          int /*n*/) const override
        {
            const bool isName =
                qstrcmp(context, "LogicalDevice") == 0 && qstrcmp(sourceText, "Orvane Tessa Mouse") == 0;
            return isName ? u"Souris Tessa"_s : QString();
        }
    };

    PluginFixture fixture;
    Translator translator;
    HostedDevice &before = fixture.create(1);
    QCoreApplication::installTranslator(&translator);
    HostedDevice &during = fixture.create(2);
    QCoreApplication::removeTranslator(&translator);
    // Translated once, when the device is made.
    QCOMPARE(before.device()->name(), u"Orvane Tessa Mouse"_s);
    QCOMPARE(during.device()->name(), u"Souris Tessa"_s);
}

void tst_Identity::constructionSeenFromItsLines()
{
    PluginFixture fixture;
    QStringList seen;
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.kind == TimelineEntry::Kind::Log)
            seen += identity(fixture);
    });
    fixture.createRecorded(PluginFixture::mouse);
    fixture.timeline.setObserver({});
    COMPARE_LINES(seen, {u"no receiver, no id, name \"\""_s, u"receiver, id, name \"Orvane Tessa Mouse\""_s});
}

void tst_Identity::constructionSeenByATranslator()
{
    PluginFixture fixture;
    QStringList seen;
    const HostTranslator translator([&] { seen += identity(fixture); });
    fixture.create();
    COMPARE_LINES(seen, {u"receiver, id, name \"\""_s});
}

QTEST_GUILESS_MAIN(tst_Identity)
#include "tst_Identity.moc"
