#include "OtherThread.h"
#include "PluginFixture.h"
#include "ThisSystem.h"
#include "TimelineText.h"

#include <QtCore/QHash>
#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

#include <array>
#include <cstddef>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

// The methods of the device's own class, in the order of their indices.
QList<QMetaMethod> ownMethods(const QObject *object)
{
    const QMetaObject *metaObject = object->metaObject();
    QList<QMetaMethod> methods;
    for (int index = metaObject->methodOffset(); index < metaObject->methodCount(); ++index)
        methods += metaObject->method(index);
    return methods;
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
    void everyMethodReturnsVoid();
    void parameterTypesAreRegistered();
    void everySignalReachesItsEmitter_data();
    void everySignalReachesItsEmitter();
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

void tst_MetaObject::everyMethodReturnsVoid()
{
    PluginFixture fixture;
    const QList<QMetaMethod> methods = ownMethods(fixture.create().object());
    for (const QMetaMethod &method : methods) {
        QCOMPARE(QByteArray(method.typeName()), QByteArray("void"));
        if (method.methodType() == QMetaMethod::Signal)
            QCOMPARE(method.access(), QMetaMethod::Public);
    }
}

void tst_MetaObject::parameterTypesAreRegistered()
{
    PluginFixture fixture;
    const QList<QMetaMethod> methods = ownMethods(fixture.create().object());
    for (const QMetaMethod &method : methods) {
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
    const QHash<QByteArray, QString> values{
        {"int", u"123"_s},          {"uint", u"123"_s},          {"bool", u"true"_s},
        {"QString", u"\"text\""_s}, {"IDevice*", u"\"this\""_s}, {"QStringList", u"[\"a\", \"b\"]"_s}};
    PluginFixture fixture;
    const QList<QMetaMethod> methods = ownMethods(fixture.create().object());
    for (qsizetype index = 0; index < methods.size(); ++index) {
        const QMetaMethod &method = methods.at(index);
        if (method.methodType() != QMetaMethod::Signal)
            continue;
        QStringList arguments;
        const QList<QByteArray> types = method.parameterTypes();
        for (const QByteArray &type : types)
            arguments += values.value(type);
        QTest::newRow(method.name().constData())
            << int(index)
            << u"signal %1(%2)"_s.arg(QString::fromLatin1(method.name()), arguments.join(u", "_s));
    }
}

void tst_MetaObject::everySignalReachesItsEmitter()
{
    QFETCH(const int, index);
    QFETCH(const QString, expected);
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    const QMetaMethod method = ownMethods(device.object()).at(index);

    int number = 123;
    uint unsignedNumber = 123;
    bool flag = true;
    QString text = u"text"_s;
    QStringList list{u"a"_s, u"b"_s};
    IDevice *self = device.device();
    const QHash<QByteArray, void *> values{{"int", &number},    {"uint", &unsignedNumber},
                                           {"bool", &flag},     {"QString", &text},
                                           {"IDevice*", &self}, {"QStringList", &list}};
    void *arguments[3] = {nullptr, nullptr, nullptr};
    for (int i = 0; i < method.parameterCount(); ++i)
        arguments[i + 1] = values.value(method.parameterTypeName(i));
    QVERIFY(device.object()->qt_metacall(QMetaObject::InvokeMetaMethod, method.methodIndex(), arguments) < 0);
    COMPARE_LINES(fixture.take(), {expected});
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
    const int behindTheLast = device.object()->metaObject()->methodCount();
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
    const QList<QMetaMethod> methods = ownMethods(device.object());
    for (const QMetaMethod &method : methods) {
        QMetaType type = QMetaType::fromType<int>();
        int argument = 0;
        void *arguments[2] = {&type, &argument};
        const int rest = device.object()->qt_metacall(QMetaObject::RegisterMethodArgumentMetaType,
                                                      method.methodIndex(), arguments);
        QVERIFY(rest < 0);
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
        callSignal(found.constFirst(), device, ownMethods(device.object()).at(index));
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
