#include "OtherThread.h"
#include "PluginFixture.h"
#include "ThisSystem.h"
#include "TimelineText.h"

#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

#include <array>
#include <cstddef>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

// Every method of the device's meta-object in index order: the binary contract. A deliberate change obliges
// one to a binary mark in the changelog, a new version, and hosts that are rebuilt together.
const char *const methodTable[] = {
    "signal stopped(IDevice* iDevice)",
    "signal instanceNumberChanged(int instanceNumber)",
    "signal batteryLevelChanged(int newBatteryLevel)",
    "signal pairedHostNameChanged(int switchIndex, QString newHostName)",
    "signal firmwareVersionChanged(uint fwVersion)",
    "signal dpiLevelChanged(int newDPILevel)",
    "signal isDPILevelChangePendingChanged(bool pending)",
    "signal isDPILevelSupportedChanged(bool newIsSupported)",
    "signal isSmartPointerSupportedChanged(bool newIsSupported)",
    "signal chargingStatusAndStateChanged(int newChargingStatusAndStateChanged)",
    "signal dpiValueChanged(int newDPILevel)",
    "signal dpiMinChanged(int newValue)",
    "signal dpiMaxChanged(int newValue)",
    "signal dpiDeltaChanged(int newValue)",
    "signal isDPIValueChangePendingChanged(bool pending)",
    "signal isDPIValueSupportedChanged(bool newIsSupported)",
    "signal activeDpiSlotIndexChanged(int index)",
    "signal dpiSlotValuesChanged(QStringList values)",
    "signal isActiveDpiSlotIndexChangePendingChanged(bool isPending)",
    "signal isDpiSlotValuesChangePendingChanged(bool isPending)",
    "signal dpiButtonIdChanged(int buttonId)",
    "signal isDpiButtonIdChangePendingChanged(bool isPending)",
    "signal isReportRateSupportedChanged(bool newIsSupported)",
    "signal reportRateChanged(int newDPILevel)",
    "signal reportRateValuesChanged(QStringList reportRateValues)",
    "signal isReportRateChangePendingChanged(bool pending)",
    "signal isScrollInversionEnabledChanged(bool newValue)",
    "signal isScrollInversionEnabledChangePendingChanged(bool isPending)",
    "signal ppidChanged(QString ppid)",
    "private slot onSmartPointerCtrReleaseTimerTimeout()",
    "private slot onDpiMinChanged(int value)",
    "private slot onDpiMaxChanged(int value)",
    "private slot onPPIDChanged(QString ppid)",
};

constexpr int signalCount = 29;
constexpr int methodCount = 33;

QString methodText(const QMetaMethod &method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i) {
        parameters.append(QString::fromLatin1(method.parameterTypeName(i)) + u' ' +
                          QString::fromLatin1(method.parameterNames().at(i)));
    }
    QString kind;
    if (method.access() == QMetaMethod::Private)
        kind += u"private "_s;
    if (method.access() == QMetaMethod::Protected)
        kind += u"protected "_s;
    kind += method.methodType() == QMetaMethod::Signal ? u"signal "_s : u"slot "_s;
    return kind + QString::fromLatin1(method.name()) + u'(' + parameters.join(u", "_s) + u')';
}

// What stays in the result where the meta-object finds nothing.
constexpr int noIndex = -7;
// More than the table of the device's virtual functions has.
constexpr std::ptrdiff_t tableEntries = 400;

// Asks the static call of the class, which the meta-object holds.
int indexOfMember(QObject *object, void *member)
{
    int index = noIndex;
    void *arguments[2] = {&index, member};
    object->metaObject()->d.static_metacall(object, QMetaObject::IndexOfMethod, 0, arguments);
    return index;
}

// A pointer to a virtual member function of the device as compilers make it on Linux: one more than the
// function's place in the table, and no shift of the object. The device's class is the library's own.
using VirtualMember = std::array<std::ptrdiff_t, 2>;

VirtualMember virtualMember(std::ptrdiff_t entry)
{
    return {1 + entry * static_cast<std::ptrdiff_t>(sizeof(void *)), 0};
}

template <typename... Arguments>
void callMember(const VirtualMember &member, QObject *object, Arguments... arguments)
{
    void (QObject::*function)(Arguments...) = nullptr;
    static_assert(ThisSystem::isWindows || sizeof(function) == sizeof(member));
    std::memcpy(&function, &member, sizeof(function));
    (object->*function)(arguments...);
}

// Emits a signal with the arguments that the expected lines have.
void callSignal(const VirtualMember &member, const HostedDevice &device, const QMetaMethod &signal)
{
    QObject *object = device.object();
    const QByteArray types = signal.parameterTypes().join(',');
    if (types == "int")
        callMember(member, object, 123);
    else if (types == "uint")
        callMember(member, object, 123U);
    else if (types == "bool")
        callMember(member, object, true);
    else if (types == "QString")
        callMember(member, object, u"text"_s);
    else if (types == "QStringList")
        callMember(member, object, QStringList{u"a"_s, u"b"_s});
    else if (types == "int,QString")
        callMember(member, object, 123, u"text"_s);
    else if (types == "IDevice*")
        callMember(member, object, static_cast<IDevice *>(device.device()));
}

int ownIndex(const QMetaObject *metaObject, int index)
{
    return metaObject->methodOffset() + index;
}

}  // namespace

/// Receives stopped() through a queued connection.
class StoppedReceiver : public QObject
{
    Q_OBJECT

public:
    IDevice *device = nullptr;
    int count = 0;

public Q_SLOTS:
    void onStopped(IDevice *iDevice)
    {
        device = iDevice;
        ++count;
    }
};

class tst_MetaObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classHasNothingBesideItsMethods();
    void methodsStandInOrder();
    void everyMethodReturnsVoid();
    void parameterTypesAreRegistered();
    void everySignalReachesItsEmitter_data();
    void everySignalReachesItsEmitter();
    void everyVirtualSignalReachesTheSameEmitter();
    void privateSlotsAreInvocable();
    void castAnswers_data();
    void castAnswers();
    void castsYieldTheViewsOfTheSameObject();
    void unknownMetaCallsChangeNothing();
    void registerMethodArgumentTypeAnswersInvalid();
    void unknownMemberPointerLeavesTheIndexAlone();
    void signalIsFoundByItsMemberPointer_data() { everySignalReachesItsEmitter_data(); }
    void signalIsFoundByItsMemberPointer();
    void stoppedThroughAQueuedConnection();
};

void tst_MetaObject::classHasNothingBesideItsMethods()
{
    PluginFixture fixture;
    const QMetaObject *metaObject = fixture.create().object()->metaObject();
    QCOMPARE(QByteArray(metaObject->className()), QByteArray("LogicalDevice"));
    QCOMPARE(metaObject->superClass(), &QObject::staticMetaObject);
    QCOMPARE(metaObject->propertyCount() - metaObject->propertyOffset(), 0);
    QCOMPARE(metaObject->enumeratorCount() - metaObject->enumeratorOffset(), 0);
    QCOMPARE(metaObject->classInfoCount() - metaObject->classInfoOffset(), 0);
    QCOMPARE(metaObject->constructorCount(), 0);
    QCOMPARE(metaObject->methodCount() - metaObject->methodOffset(), methodCount);
}

void tst_MetaObject::methodsStandInOrder()
{
    PluginFixture fixture;
    const QMetaObject *metaObject = fixture.create().object()->metaObject();
    QStringList actual;
    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i)
        actual.append(methodText(metaObject->method(i)));
    QStringList expected;
    for (const char *method : methodTable)
        expected.append(QString::fromLatin1(method));
    COMPARE_LINES(actual, expected);
}

void tst_MetaObject::everyMethodReturnsVoid()
{
    PluginFixture fixture;
    const QMetaObject *metaObject = fixture.create().object()->metaObject();
    for (int i = 0; i < methodCount; ++i) {
        const QMetaMethod method = metaObject->method(ownIndex(metaObject, i));
        QCOMPARE(QByteArray(method.typeName()), QByteArray("void"));
        if (i < signalCount)
            QCOMPARE(method.access(), QMetaMethod::Public);
    }
}

void tst_MetaObject::parameterTypesAreRegistered()
{
    PluginFixture fixture;
    const QMetaObject *metaObject = fixture.create().object()->metaObject();
    for (int i = 0; i < methodCount; ++i) {
        const QMetaMethod method = metaObject->method(ownIndex(metaObject, i));
        for (int parameter = 0; parameter < method.parameterCount(); ++parameter) {
            QVERIFY2(method.parameterMetaType(parameter).isValid(), method.methodSignature().constData());
            QCOMPARE(QByteArray(method.parameterMetaType(parameter).name()),
                     method.parameterTypeName(parameter));
        }
    }
}

void tst_MetaObject::everySignalReachesItsEmitter_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("expected");
    for (int i = 0; i < signalCount; ++i) {
        const QByteArray text(methodTable[i]);
        const QByteArray name = text.mid(7, text.indexOf('(') - 7);
        const QByteArray parameters = text.mid(text.indexOf('('));
        QString arguments = u"123"_s;
        if (parameters.startsWith("(bool"))
            arguments = u"true"_s;
        else if (parameters.startsWith("(QStringList"))
            arguments = u"[\"a\", \"b\"]"_s;
        else if (parameters.startsWith("(QString"))
            arguments = u"\"text\""_s;
        else if (parameters.startsWith("(IDevice"))
            arguments = u"\"this\""_s;
        else if (parameters.startsWith("(int switchIndex"))
            arguments = u"123, \"text\""_s;
        QTest::newRow(name.constData()) << i << u"signal %1(%2)"_s.arg(QString::fromLatin1(name), arguments);
    }
}

void tst_MetaObject::everySignalReachesItsEmitter()
{
    QFETCH(const int, index);
    QFETCH(const QString, expected);
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    const QMetaObject *metaObject = device.object()->metaObject();
    const QMetaMethod method = metaObject->method(ownIndex(metaObject, index));

    int number = 123;
    uint unsignedNumber = 123;
    bool flag = true;
    QString text = u"text"_s;
    QStringList list{u"a"_s, u"b"_s};
    IDevice *self = device.device();
    void *arguments[3] = {nullptr, nullptr, nullptr};
    for (int i = 0; i < method.parameterCount(); ++i) {
        const QByteArray type = method.parameterTypeName(i);
        void *argument = &number;
        if (type == "uint")
            argument = &unsignedNumber;
        else if (type == "bool")
            argument = &flag;
        else if (type == "QString")
            argument = &text;
        else if (type == "QStringList")
            argument = &list;
        else if (type == "IDevice*")
            argument = static_cast<void *>(&self);
        arguments[i + 1] = argument;
    }
    const int rest =
        device.object()->qt_metacall(QMetaObject::InvokeMetaMethod, ownIndex(metaObject, index), arguments);
    QVERIFY(rest < 0);
    COMPARE_LINES(fixture.take(), {expected});
}

void tst_MetaObject::everyVirtualSignalReachesTheSameEmitter()
{
    PluginFixture fixture;
    HostedDevice &hosted = fixture.create();
    ILogicalDeviceGen3Mouse &device = *hosted.device();
    device.stopped(&device);
    device.firmwareVersionChanged(16);
    device.instanceNumberChanged(45);
    device.batteryLevelChanged(46);
    device.pairedHostNameChanged(47, u"host"_s);
    device.dpiLevelChanged(48);
    device.isDPILevelChangePendingChanged(true);
    device.isDPILevelSupportedChanged(false);
    device.isSmartPointerSupportedChanged(true);
    device.chargingStatusAndStateChanged(52);
    device.dpiValueChanged(94);
    device.dpiMinChanged(95);
    device.dpiMaxChanged(96);
    device.dpiDeltaChanged(97);
    device.isDPIValueChangePendingChanged(false);
    device.isDPIValueSupportedChanged(true);
    device.activeDpiSlotIndexChanged(100);
    device.dpiSlotValuesChanged({u"101"_s});
    device.dpiButtonIdChanged(102);
    device.isActiveDpiSlotIndexChangePendingChanged(false);
    device.isDpiSlotValuesChangePendingChanged(true);
    device.isDpiButtonIdChangePendingChanged(false);
    device.reportRateChanged(106);
    device.reportRateValuesChanged({u"107"_s});
    device.isReportRateChangePendingChanged(true);
    device.isReportRateSupportedChanged(false);
    device.isScrollInversionEnabledChanged(true);
    device.isScrollInversionEnabledChangePendingChanged(false);
    hosted.gen3()->ppidChanged(u"G3 3"_s);
    COMPARE_LINES(fixture.take(), {u"signal stopped(\"this\")"_s,
                                   u"signal firmwareVersionChanged(16)"_s,
                                   u"signal instanceNumberChanged(45)"_s,
                                   u"signal batteryLevelChanged(46)"_s,
                                   u"signal pairedHostNameChanged(47, \"host\")"_s,
                                   u"signal dpiLevelChanged(48)"_s,
                                   u"signal isDPILevelChangePendingChanged(true)"_s,
                                   u"signal isDPILevelSupportedChanged(false)"_s,
                                   u"signal isSmartPointerSupportedChanged(true)"_s,
                                   u"signal chargingStatusAndStateChanged(52)"_s,
                                   u"signal dpiValueChanged(94)"_s,
                                   u"signal dpiMinChanged(95)"_s,
                                   u"signal dpiMaxChanged(96)"_s,
                                   u"signal dpiDeltaChanged(97)"_s,
                                   u"signal isDPIValueChangePendingChanged(false)"_s,
                                   u"signal isDPIValueSupportedChanged(true)"_s,
                                   u"signal activeDpiSlotIndexChanged(100)"_s,
                                   u"signal dpiSlotValuesChanged([\"101\"])"_s,
                                   u"signal dpiButtonIdChanged(102)"_s,
                                   u"signal isActiveDpiSlotIndexChangePendingChanged(false)"_s,
                                   u"signal isDpiSlotValuesChangePendingChanged(true)"_s,
                                   u"signal isDpiButtonIdChangePendingChanged(false)"_s,
                                   u"signal reportRateChanged(106)"_s,
                                   u"signal reportRateValuesChanged([\"107\"])"_s,
                                   u"signal isReportRateChangePendingChanged(true)"_s,
                                   u"signal isReportRateSupportedChanged(false)"_s,
                                   u"signal isScrollInversionEnabledChanged(true)"_s,
                                   u"signal isScrollInversionEnabledChangePendingChanged(false)"_s,
                                   u"signal ppidChanged(\"G3 3\")"_s});
}

void tst_MetaObject::privateSlotsAreInvocable()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QVERIFY(QMetaObject::invokeMethod(device.object(), "onPPIDChanged", Q_ARG(QString, u"PP1"_s)));
    QVERIFY(QMetaObject::invokeMethod(device.object(), "onDpiMinChanged", Q_ARG(int, 100)));
    QVERIFY(QMetaObject::invokeMethod(device.object(), "onDpiMaxChanged", Q_ARG(int, 8000)));
    QVERIFY(QMetaObject::invokeMethod(device.object(), "onSmartPointerCtrReleaseTimerTimeout"));
    COMPARE_LINES(fixture.take(),
                  {debugLine(u"onPPIDChanged enter"_s), debugLine(u"Updating ppid :  \"PP1\""_s),
                   u"signal ppidChanged(\"PP1\")"_s, debugLine(u"onPPIDChanged exit"_s),
                   debugLine(u"Updating dpiMin :  100"_s), u"signal dpiMinChanged(100)"_s,
                   debugLine(u"Updating dpiMax :  8000"_s), u"signal dpiMaxChanged(8000)"_s,
                   debugLine(u"onSmartPointerCtrReleaseTimerTimeout,  isSmartPointerCtrPressed false"_s)});
}

void tst_MetaObject::castAnswers_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("view");
    const auto row = [](const char *name, const QString &view) {
        QTest::newRow(name) << QByteArray(name) << view;
    };
    row("LogicalDevice", u"object"_s);
    row("ILogicalDeviceGen3Mouse", u"mouse"_s);
    row("ILogicalDeviceGen3", u"gen3"_s);
    row("com.orvane.KVX.Plugin.IDevice", u"mouse"_s);
    row("com.orvane.KVX.Plugin.ILogicalDevice", u"mouse"_s);
    row("com.orvane.KVX.Plugin.ILogicalDeviceGen3Mouse", u"mouse"_s);
    row("com.orvane.KVX.Plugin.ILogicalDeviceGen3", u"gen3"_s);
    row("QObject", u"object"_s);
    row("IDevice", u"none"_s);
    row("ILogicalDevice", u"none"_s);
    row("com.orvane.KVX.Plugin.IDevicePlugin", u"none"_s);
    row("com.orvane.KVX.Plugin.LogicalDevice.RV418", u"none"_s);
    row("logicaldevice", u"none"_s);
    QTest::newRow("empty") << QByteArray("") << u"none"_s;
    QTest::newRow("null") << QByteArray() << u"none"_s;
}

void tst_MetaObject::castAnswers()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QString, view);
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    const void *answer = device.object()->qt_metacast(name.isNull() ? nullptr : name.constData());
    const void *expected = nullptr;
    if (view == u"object")
        expected = device.object();
    else if (view == u"mouse")
        expected = dynamic_cast<ILogicalDeviceGen3Mouse *>(device.object());
    else if (view == u"gen3")
        expected = dynamic_cast<ILogicalDeviceGen3 *>(device.object());
    QCOMPARE(expected == nullptr, view == u"none");
    QCOMPARE(answer, expected);
}

void tst_MetaObject::castsYieldTheViewsOfTheSameObject()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QObject *object = device.object();
    QCOMPARE(qobject_cast<IDevice *>(object), static_cast<IDevice *>(device.device()));
    QCOMPARE(qobject_cast<ILogicalDevice *>(object), static_cast<ILogicalDevice *>(device.device()));
    QCOMPARE(qobject_cast<ILogicalDeviceGen3Mouse *>(object), device.device());
    QCOMPARE(qobject_cast<ILogicalDeviceGen3 *>(object), device.gen3());
    QCOMPARE(dynamic_cast<QObject *>(device.gen3()), object);
}

void tst_MetaObject::unknownMetaCallsChangeNothing()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    void *arguments[2] = {nullptr, nullptr};
    const int behindTheLast = ownIndex(device.object()->metaObject(), methodCount);
    QCOMPARE(device.object()->qt_metacall(QMetaObject::InvokeMetaMethod, behindTheLast, arguments), 0);
    // There are no properties, so these leave the number as QObject left it.
    const int property = QObject::staticMetaObject.propertyCount() + 3;
    QCOMPARE(device.object()->qt_metacall(QMetaObject::ReadProperty, property, arguments), 3);
    QCOMPARE(device.object()->qt_metacall(QMetaObject::WriteProperty, property, arguments), 3);
    QCOMPARE(device.object()->qt_metacall(QMetaObject::ResetProperty, property, arguments), 3);
    COMPARE_LINES(fixture.take(), {});
}

void tst_MetaObject::registerMethodArgumentTypeAnswersInvalid()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    const QMetaObject *metaObject = device.object()->metaObject();
    for (int i = 0; i < methodCount; ++i) {
        QMetaType type = QMetaType::fromType<int>();
        int argument = 0;
        void *arguments[2] = {&type, &argument};
        const int rest = device.object()->qt_metacall(QMetaObject::RegisterMethodArgumentMetaType,
                                                      ownIndex(metaObject, i), arguments);
        QCOMPARE(rest, i - methodCount);
        QVERIFY(!type.isValid());
    }
}

void tst_MetaObject::unknownMemberPointerLeavesTheIndexAlone()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    auto member = &QObject::objectNameChanged;
    QCOMPARE(indexOfMember(device.object(), &member), noIndex);
}

void tst_MetaObject::signalIsFoundByItsMemberPointer()
{
    QFETCH(const int, index);
    QFETCH(const QString, expected);
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QList<VirtualMember> found;
    for (std::ptrdiff_t entry = 0; entry < tableEntries; ++entry) {
        VirtualMember member = virtualMember(entry);
        if (indexOfMember(device.object(), &member) == index)
            found += member;
    }
    // On Windows such a pointer is the address of code inside the library, which nobody else has.
    QCOMPARE(found.size(), qsizetype(ThisSystem::isWindows ? 0 : 1));
    if (!ThisSystem::isWindows) {
        const QMetaObject *metaObject = device.object()->metaObject();
        callSignal(found.constFirst(), device, metaObject->method(ownIndex(metaObject, index)));
        COMPARE_LINES(fixture.take(), {expected});
    }
}

void tst_MetaObject::stoppedThroughAQueuedConnection()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    StoppedReceiver receiver;
    QVERIFY(connect(device.object(), "2stopped(IDevice*)", &receiver, "1onStopped(IDevice*)",
                    Qt::QueuedConnection));
    device.stop();
    QCOMPARE(receiver.count, 0);
    deliverQueuedCalls();
    QCOMPARE(receiver.count, 1);
    QCOMPARE(receiver.device, static_cast<IDevice *>(device.device()));
    // No line about an unregistered type either.
    COMPARE_LINES(fixture.take(), {u"call stop()"_s, debugLine(u"stop enter"_s),
                                   u"signal stopped(\"this\")"_s, debugLine(u"stop exit"_s)});
}

QTEST_GUILESS_MAIN(tst_MetaObject)
#include "tst_MetaObject.moc"
