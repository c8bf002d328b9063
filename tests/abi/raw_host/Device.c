#include "Device.h"

#include "Call.h"
#include "HostSide.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#define MOUSE(name) ILogicalDeviceGen3Mouse_##name
#define GEN3(name) ILogicalDeviceGen3_##name

static Object mouse;
static Object gen3;

// What the getters answer now, except those with a fixed answer.
static struct
{
    unsigned firmwareVersion;
    int deviceValue, instanceNumber, batteryLevel, statusValue, levelValue;
    bool hasBatteryLevel, isSmartPointerSupported;
    int dpiValue, dpiMin, dpiMax;
    int activeDpiSlotIndex, dpiButtonId, reportRate;
    bool isActiveDpiSlotIndexPending, isDpiSlotValuesPending, isDpiButtonIdPending, isReportRatePending;
    const char *dpiSlotValues, *reportRateValues, *image, *ppid;
    char instanceId[64];
} state;

// --- getters ---

static void answers(int slot, const char *format, ...)
{
    char text[256] = "answers ";
    va_list values;
    va_start(values, format);
    vsnprintf(text + strlen(text), sizeof(text) - strlen(text), format, values);
    va_end(values);
    EXPECT(text, mouse, slot);
}

static const char *boolText(bool value)
{
    return value ? "true" : "false";
}

static void expectConstants(void)
{
    answers(MOUSE(deviceType), "2");
    answers(MOUSE(deviceClass), "7");
    answers(MOUSE(name), "\"Orvane Tessa Mouse\"");
    answers(MOUSE(iid), "\"" PLUGIN_IID "\"");
    answers(MOUSE(modelCode), "\"RV418\"");
    answers(MOUSE(physicalDevice), "physical device");
    answers(MOUSE(query24), "0");
    EXPECT("answers \"\"", mouse, MOUSE(pairedHostName), 3);
    answers(MOUSE(isDPILevelSupported), "false");
    answers(MOUSE(dpiLevel), "0");
    answers(MOUSE(query30), "[]");
    answers(MOUSE(isDPILevelChangePending), "false");
    answers(MOUSE(query33), "0");
    answers(MOUSE(query35), "false");
    answers(MOUSE(defaultProfile), "\"{\\x0d\\x0a  \"version\": 1,\\x0d\\x0a  \"defaultActions\": [\\x0d\\x0a"
                                   "  ]\\x0d\\x0a}\\x0d\\x0a\"");
    answers(MOUSE(query53), "false");
    answers(MOUSE(dpiDelta), "50");
    answers(MOUSE(isDPIValueChangePending), "false");
    answers(MOUSE(isDPIValueSupported), "true");
    answers(MOUSE(query70), "1");
    answers(MOUSE(isReportRateSupported), "true");
    answers(MOUSE(isScrollInversionEnabled), "false");
    answers(MOUSE(query88), "false");
    answers(MOUSE(query89), "false");
    answers(MOUSE(query91), "false");
}

static void expectGetters(void)
{
    expectConstants();
    answers(MOUSE(instanceId), "%s", state.instanceId);
    answers(MOUSE(firmwareVersion), "%u", state.firmwareVersion);
    answers(MOUSE(deviceValue), "%d", state.deviceValue);
    answers(MOUSE(deviceImage), "\"%s\"", state.image);
    answers(MOUSE(instanceNumber), "%d", state.instanceNumber);
    answers(MOUSE(hasBatteryLevel), boolText(state.hasBatteryLevel));
    answers(MOUSE(batteryLevel), "%d", state.batteryLevel);
    answers(MOUSE(statusValue), "%d", state.statusValue);
    answers(MOUSE(isSmartPointerSupported), boolText(state.isSmartPointerSupported));
    answers(MOUSE(levelValue), "%d", state.levelValue);
    answers(MOUSE(dpiValue), "%d", state.dpiValue);
    answers(MOUSE(dpiMin), "%d", state.dpiMin);
    answers(MOUSE(dpiMax), "%d", state.dpiMax);
    answers(MOUSE(activeDpiSlotIndex), "%d", state.activeDpiSlotIndex);
    answers(MOUSE(dpiSlotValues), "%s", state.dpiSlotValues);
    answers(MOUSE(dpiButtonId), "%d", state.dpiButtonId);
    answers(MOUSE(isActiveDpiSlotIndexChangePending), boolText(state.isActiveDpiSlotIndexPending));
    answers(MOUSE(isDpiSlotValuesChangePending), boolText(state.isDpiSlotValuesPending));
    answers(MOUSE(isDpiButtonIdChangePending), boolText(state.isDpiButtonIdPending));
    answers(MOUSE(reportRate), "%d", state.reportRate);
    answers(MOUSE(reportRateValues), "%s", state.reportRateValues);
    answers(MOUSE(isReportRateChangePending), boolText(state.isReportRatePending));
    char ppid[64];
    snprintf(ppid, sizeof(ppid), "answers \"%s\"", state.ppid);
    EXPECT(ppid, gen3, GEN3(ppid));
}

// --- start and what it reads ---

static void expectFreshDevice(void)
{
    uint8_t instanceId[16];
    char text[sizeof(state.instanceId)];
    ((void *(*)(void *, void *))(*(void ***)mouse.self)[MOUSE(instanceId)])(mouse.self, instanceId);
    formatValue(text, sizeof(text), "QUuid", instanceId);
    strcpy(state.instanceId, text);
    if (strspn(text, "0") == strlen(text))
        deviation("the identity of the device is null");

    state.instanceNumber = 1;
    state.batteryLevel = -1;
    state.activeDpiSlotIndex = 2;
    state.dpiButtonId = 15;
    state.dpiSlotValues = state.reportRateValues = "[]";
    state.image = state.ppid = "";
    expectGetters();
}

static void start(void)
{
    receiverAnswers[IPhysicalDeviceDongle_getFirmwareVersion] = 0xffffffff80000001;
    receiverAnswers[IPhysicalDeviceDongle_hasBatteryLevel] = answeredBool(true);
    receiverAnswers[IPhysicalDeviceDongle_getBatteryLevel] = 63;
    receiverAnswers[IPhysicalDeviceDongle_getStatusValue] = 0xffffffff00000000 | (uint32_t)-23;
    receiverAnswers[IPhysicalDeviceDongle_getDeviceValue] = 107;
    receiverAnswers[IPhysicalDeviceDongle_isSmartPointerSupported] = answeredBool(false);
    receiverAnswers[IPhysicalDeviceDongle_getReportRateInfo] = answeredBool(true);
    receiverAnswers[IPhysicalDeviceDongle_getLevelValue] = 134;
    receiverRates = (ReportRates){9999, 500, {125, 250, 500, 0}};
    EXPECT("receiver getFirmwareVersion(mouse 1); receiver hasBatteryLevel(mouse 1); "
           "receiver getStatusValue(mouse 1); receiver getBatteryLevel(mouse 1); receiver "
           "getDeviceValue(mouse 1); "
           "receiver requestInitialState1(mouse 1); receiver requestInitialState2(mouse 1); "
           "receiver requestInitialState3(mouse 1); receiver isSmartPointerSupported(mouse 1); "
           "receiver getReportRateInfo(mouse 1, record); receiver getLevelValue(mouse 1); "
           "signal instanceNumberChanged(0); answers true",
           mouse, MOUSE(start));
    state.firmwareVersion = 0x80000001;
    state.hasBatteryLevel = true;
    state.batteryLevel = 63;
    state.statusValue = -23;
    state.deviceValue = 107;
    state.levelValue = 134;
    state.instanceNumber = 0;
    state.reportRate = 500;
    state.reportRateValues = "[\"125\", \"250\", \"500\"]";
    expectGetters();
}

// --- what host and receiver report ---

static void reports(const char *pictures)
{
    beginAction("the receiver's signal dpiMinChanged");
    emitReceiverSignal(receiverObject(), 0, 100);
    expect("signal dpiMinChanged(100)");
    beginAction("the receiver's signal dpiMaxChanged");
    emitReceiverSignal(receiverObject(), 1, 8000);
    expect("signal dpiMaxChanged(8000)");
    state.dpiMin = 100;
    state.dpiMax = 8000;
    EXPECT("signal firmwareVersionChanged(11)", mouse, MOUSE(setFirmwareVersion), 11);
    state.firmwareVersion = 11;
    EXPECT("signal batteryLevelChanged(37)", mouse, MOUSE(setBatteryLevel), 37);
    state.batteryLevel = 37;
    EXPECT("signal dpiValueChanged(1250)", mouse, MOUSE(dpiValueChangedCallBack), 1250);
    state.dpiValue = 1250;
    Array given = textOf("P-18");
    EXPECT("signal ppidChanged(\"P-18\")", gen3, GEN3(ppidChangedCallBack), AT(&given));
    state.ppid = "P-18";
    if (!registerResources(pictures))
        deviation("%s is no resource collection", pictures);
    state.image = "not quite a picture\\x0a";
    expectGetters();

    receiverAnswers[IPhysicalDeviceDongle_isSmartPointerSupported] = answeredBool(true);
    EXPECT("receiver isSmartPointerSupported(mouse 1); signal isSmartPointerSupportedChanged(true)", mouse,
           MOUSE(capabilityChangedCallBack), 17);
    state.isSmartPointerSupported = true;
    expectGetters();
}

static void mouseEvents(void)
{
    EXPECT("host setCtrlKeyPressed(true); host buttonEvent(\"" PLUGIN_IID "\", 1, true); "
           "host buttonEvent(\"" PLUGIN_IID "\", 5, true)",
           mouse, MOUSE(mouseEventCallBack), 0x91);
    EXPECT("host setCtrlKeyPressed(false); host buttonEvent(\"" PLUGIN_IID "\", 1, false); "
           "host buttonEvent(\"" PLUGIN_IID "\", 5, false)",
           mouse, MOUSE(mouseEventCallBack), 0x60);
}

// --- requests, each with a report and a confirmation while it is pending ---

static void activeDpiSlot(void)
{
    receiverAnswers[IPhysicalDeviceDongle_setDpiButtonAndActiveSlot] = answeredBool(true);
    EXPECT("receiver setDpiButtonAndActiveSlot(mouse 1, 15, 4); signal "
           "isActiveDpiSlotIndexChangePendingChanged(true)",
           mouse, MOUSE(setActiveDpiSlotIndex), 4);
    state.isActiveDpiSlotIndexPending = true;
    expectGetters();
    EXPECT("signal activeDpiSlotIndexChanged(5)", mouse, MOUSE(activeDpiSlotIndexChangedCallBack), 5);
    state.activeDpiSlotIndex = 5;
    expectGetters();
    EXPECT("signal isActiveDpiSlotIndexChangePendingChanged(false); signal activeDpiSlotIndexChanged(4)",
           mouse, MOUSE(activeDpiSlotIndexConfirmed), 4);
    state.activeDpiSlotIndex = 4;
    state.isActiveDpiSlotIndexPending = false;
    expectGetters();
}

static void dpiSlotValues(void)
{
    static const char *const texts[] = {"800", "1600", "2400", "65535", "4000"};
    static const uint16_t reported[] = {100, 200, 300, 400, 500};
    static const uint16_t confirmed[] = {800, 1600, 2400, 65535, 4000};
    receiverAnswers[IPhysicalDeviceDongle_setDpiSlotValues] = answeredBool(true);
    Array given = textsOf(5, texts);
    EXPECT("receiver setDpiSlotValues(mouse 1, {800, 1600, 2400, 65535, 4000}, 15, 4); "
           "signal isDpiSlotValuesChangePendingChanged(true)",
           mouse, MOUSE(setDpiSlotValues), AT(&given));
    state.isDpiSlotValuesPending = true;
    expectGetters();
    EXPECT("signal dpiSlotValuesChanged([\"100\", \"200\", \"300\", \"400\", \"500\"])", mouse,
           MOUSE(dpiSlotValuesChangedCallBack), AT(reported));
    state.dpiSlotValues = "[\"100\", \"200\", \"300\", \"400\", \"500\"]";
    expectGetters();
    EXPECT("signal dpiSlotValuesChanged([\"800\", \"1600\", \"2400\", \"65535\", \"4000\"]); "
           "signal isDpiSlotValuesChangePendingChanged(false)",
           mouse, MOUSE(dpiSlotValuesConfirmed), AT(confirmed));
    state.dpiSlotValues = "[\"800\", \"1600\", \"2400\", \"65535\", \"4000\"]";
    state.isDpiSlotValuesPending = false;
    expectGetters();
}

static void dpiButton(void)
{
    EXPECT(
        "receiver setDpiButtonAndActiveSlot(mouse 1, 9, 0); signal isDpiButtonIdChangePendingChanged(true)",
        mouse, MOUSE(setDpiButtonId), 9);
    state.isDpiButtonIdPending = true;
    expectGetters();
    EXPECT("signal dpiButtonIdChanged(7)", mouse, MOUSE(dpiButtonIdChangedCallBack), 7);
    state.dpiButtonId = 7;
    expectGetters();
    EXPECT("signal isDpiButtonIdChangePendingChanged(false); signal dpiButtonIdChanged(9)", mouse,
           MOUSE(dpiButtonIdConfirmed), 9);
    state.dpiButtonId = 9;
    state.isDpiButtonIdPending = false;
    expectGetters();
}

static void reportRate(void)
{
    static const ReportRates rates = {1, 1000, {1000, 2000, 4000, 8000}};
    receiverAnswers[IPhysicalDeviceDongle_setReportRate] = answeredBool(true);
    EXPECT("signal isReportRateChangePendingChanged(true); receiver setReportRate(mouse 1, 250); "
           "signal reportRateChanged(250)",
           mouse, MOUSE(setReportRate), 250);
    state.reportRate = 250;
    state.isReportRatePending = true;
    expectGetters();
    // The reported rate is not the requested one, so the request is sent again.
    EXPECT("signal reportRateValuesChanged([\"1000\", \"2000\", \"4000\", \"8000\"]); "
           "receiver setReportRate(mouse 1, 250); signal reportRateChanged(250)",
           mouse, MOUSE(reportRateChangedCallBack), AT(&rates));
    state.reportRateValues = "[\"1000\", \"2000\", \"4000\", \"8000\"]";
    expectGetters();
    EXPECT("signal isReportRateChangePendingChanged(false)", mouse, MOUSE(reportRateConfirmed), 250);
    state.isReportRatePending = false;
    expectGetters();
    receiverAnswers[IPhysicalDeviceDongle_setReportRate] = answeredBool(false);
    EXPECT("signal isReportRateChangePendingChanged(true); receiver setReportRate(mouse 1, 2000); "
           "signal isReportRateChangePendingChanged(false); signal reportRateChanged(2000)",
           mouse, MOUSE(setReportRate), 2000);
    state.reportRate = 2000;
    expectGetters();
}

static void buttons(void)
{
    static const int32_t ids[] = {1, 3, 5};
    Array given = numbersOf(3, ids);
    EXPECT("receiver setDisabledButtonsOrKeysMask(mouse 1, 21)", mouse, MOUSE(disbaleButtonsOrKeys),
           AT(&given));
    EXPECT("receiver setDisabledButtonsOrKeysMask(mouse 1, 0)", mouse, MOUSE(setButtonsOrKeysToDefault));
}

// --- calls that are passed on, and those without any effect ---

static void forwardedCalls(void)
{
    physicalDeviceAnswers[IPhysicalDevice_forwardedCall] = 0xaaaabbbbccccdddd;
    receiverAnswers[IPhysicalDeviceDongle_forwardedOperation] = 0xddddccccbbbbaaaa;
    EXPECT("physical device forwardedCall(0xfedcba9876543210, 0x8000000000000001, 0x123456789abcdef); "
           "answers 0xaaaabbbbccccdddd",
           mouse, MOUSE(forwardToPhysicalDevice), 0xfedcba9876543210, 0x8000000000000001, 0x123456789abcdef);
    EXPECT("receiver forwardedOperation(mouse 1, 0x8000000000000001, 0x123456789abcdef); answers "
           "0xddddccccbbbbaaaa",
           mouse, MOUSE(query26), 0xfedcba9876543210, 0x8000000000000001, 0x123456789abcdef);
}

static void operationsWithoutEffect(void)
{
    EXPECT("", mouse, MOUSE(setDpiLevel), 3);
    EXPECT("", mouse, MOUSE(setDpiValue), 800);
    EXPECT("", mouse, MOUSE(setScrollInversionEnabled), true);
    static const int notifications[] = {MOUSE(notify38), MOUSE(notify42), MOUSE(notify43), MOUSE(notify44),
                                        MOUSE(notify87), MOUSE(notify90), MOUSE(notify92), MOUSE(notify93)};
    for (size_t index = 0; index < sizeof(notifications) / sizeof(*notifications); ++index)
        EXPECT("", mouse, notifications[index]);
    expectGetters();
}

// --- signals, called as operations ---

static void signals(void)
{
    static const char *const texts[] = {"1", "two"};
    Array host = textOf("host"), slotValues = textsOf(2, texts), rates = textsOf(2, texts),
          ppid = textOf("P");
    EXPECT("signal stopped(null)", mouse, MOUSE(stopped), 0);
    EXPECT("signal firmwareVersionChanged(4294967295)", mouse, MOUSE(firmwareVersionChanged), 0xffffffff);
    EXPECT("signal pairedHostNameChanged(-47, \"host\")", mouse, MOUSE(pairedHostNameChanged), (uint64_t)-47,
           AT(&host));
    EXPECT("signal dpiSlotValuesChanged([\"1\", \"two\"])", mouse, MOUSE(dpiSlotValuesChanged),
           AT(&slotValues));
    EXPECT("signal reportRateValuesChanged([\"1\", \"two\"])", mouse, MOUSE(reportRateValuesChanged),
           AT(&rates));
    EXPECT("signal ppidChanged(\"P\")", gen3, GEN3(ppidChanged), AT(&ppid));

    // The others have one parameter, a number or a bool.
    static const int numbers[] = {MOUSE(instanceNumberChanged),
                                  MOUSE(batteryLevelChanged),
                                  MOUSE(dpiLevelChanged),
                                  MOUSE(chargingStatusAndStateChanged),
                                  MOUSE(dpiValueChanged),
                                  MOUSE(dpiMinChanged),
                                  MOUSE(dpiMaxChanged),
                                  MOUSE(dpiDeltaChanged),
                                  MOUSE(activeDpiSlotIndexChanged),
                                  MOUSE(dpiButtonIdChanged),
                                  MOUSE(reportRateChanged)};
    static const int bools[] = {
        MOUSE(isDPILevelChangePendingChanged),      MOUSE(isDPILevelSupportedChanged),
        MOUSE(isSmartPointerSupportedChanged),      MOUSE(isDPIValueChangePendingChanged),
        MOUSE(isDPIValueSupportedChanged),          MOUSE(isActiveDpiSlotIndexChangePendingChanged),
        MOUSE(isDpiSlotValuesChangePendingChanged), MOUSE(isDpiButtonIdChangePendingChanged),
        MOUSE(isReportRateChangePendingChanged),    MOUSE(isReportRateSupportedChanged),
        MOUSE(isScrollInversionEnabledChanged),     MOUSE(isScrollInversionEnabledChangePendingChanged)};
    char text[128];
    for (size_t index = 0; index < sizeof(numbers) / sizeof(*numbers); ++index) {
        snprintf(text, sizeof(text), "signal %s(%d)", mouse.interface->slots[numbers[index]].name,
                 -numbers[index]);
        EXPECT(text, mouse, numbers[index], (uint64_t)-numbers[index]);
    }
    for (size_t index = 0; index < sizeof(bools) / sizeof(*bools); ++index) {
        snprintf(text, sizeof(text), "signal %s(%s)", mouse.interface->slots[bools[index]].name,
                 boolText(index % 2));
        EXPECT(text, mouse, bools[index], index % 2);
    }
    expectGetters();
}

void callDevice(Object calledMouse, Object calledGen3, const char *pictures)
{
    mouse = calledMouse;
    gen3 = calledGen3;
    expectFreshDevice();
    start();
    reports(pictures);
    mouseEvents();
    activeDpiSlot();
    dpiSlotValues();
    dpiButton();
    reportRate();
    buttons();
    forwardedCalls();
    operationsWithoutEffect();
    signals();
    EXPECT("signal stopped(device)", mouse, MOUSE(stop));
    expectGetters();
}
