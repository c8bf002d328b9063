"""tools/contract-coverage: each kind of gap is reported, and each reason that does not hold any more."""

import json

from sandbox import ToolTest

TABLES = {
    "ILogicalDeviceGen3Mouse": "0 int IDevice::deviceType() const [pure]\n1 Mouse::~Mouse()\n",
    "ILogicalDeviceGen3": "0 void ILogicalDeviceGen3::ppidChanged(QString) [pure]\n",
    "ILogicalDevicePlugin": "0 bool IDevicePlugin::initialize(bool) [pure]\n1 ILogicalDevicePlugin::~ILogicalDevicePlugin()\n",
    "IPhysicalDevice": "0 quintptr IPhysicalDevice::forwardedCall(quintptr) [pure]\n1 IPhysicalDevice::~IPhysicalDevice()\n",
    "IPhysicalDeviceDongle": "0 void IPhysicalDeviceDongle::reserved0() [pure]\n1 bool Dongle::setRate(DeviceId, int) [pure]\n",
    "IHostServices": "0 void IHostServices::buttonEvent(const QString &, int, bool) [pure]\n",
}
SIGNALS = "device 1 none\nexpect method 0 signal ppidChanged(QString ppid)\n"
SLOTS = "expect method 1 private slot onPPIDChanged(QString ppid)\nexpect method 2\n"
PLUGIN_HEADER = """#define deviceDebug() \\
    GATED_LOG(debugLogEnabled(), qCDebug(deviceLog))
"""
PLUGIN = 'Plugin::~Plugin()\n{\n    pluginDebug() << "~Plugin";\n}\n'
DEVICE = """void Device::setRate(int rate)
{
    // deviceDebug() << "not a log line";
    deviceDebug() << "rate :" << rate << ", pending; :"
                  << m_pending;
    if (failure)
        deviceCritical() << failure->logText << rate;
}
std::optional<OwnLibraryFailure> locate()
{
    return OwnLibraryFailure{"locate failed, gle :", 1};
}
"""
UNSEEN = '[[unseen]]\nkind = "receiver operation"\nnames = ["reserved*"]\nreason = "Not for plugins."\n'
CATEGORY = "com.orvane.KVX.Plugin.LogicalDevice.RV418."


def log(severity, category, text):
    return {"kind": "log", "name": severity, "arguments": [text], "category": CATEGORY + category}


def entry(kind, name):
    return {"kind": kind, "name": name, "arguments": []}


RATE_LINE = log("debug", "LogicalDevice", "rate : 500 , pending; : 0")
WHOLE = [
    entry("call", "initialize"),
    entry("call", "deviceType"),
    entry("call", "~Mouse"),
    entry("call", "ppidChanged"),
    entry("signal", "ppidChanged"),
    entry("receiver", "forwardedCall"),
    entry("receiver", "setRate"),
    entry("host", "buttonEvent"),
    # The receiver's signal of that name, and a slot that is in no table.
    entry("report", "ppidChanged"),
    entry("call", "onPPIDChanged"),
    entry("verdict", "verdict"),
    RATE_LINE,
    log("critical", "LogicalDevice", "locate failed, gle : 0x7e"),
    log("debug", "LogicalDevicePlugin", "~Plugin"),
    {"kind": "log", "name": "warning", "arguments": ["somebody else's"], "category": "default"},
]
TABLE = """kind                  seen    of   not to be seen
device slot              3     3                0
factory slot             1     1                0
signal                   1     1                0
receiver operation       2     2                1
host operation           1     1                0
log text                 3     3                0
"""


class ContractCoverage(ToolTest):
    tool = "contract-coverage"

    def setUp(self):
        super().setUp()
        self.copy_tool()
        self.timelines = self.base / "timelines"
        for name, text in TABLES.items():
            self.write(f"tests/abi/tables/{name}.txt", text)
        self.write("contract/entry-points/signals.kvx", SIGNALS)
        self.write("contract/entry-points/slots.kvx", SLOTS)
        self.write("plugin/GatedLog.h", PLUGIN_HEADER)
        self.write("plugin/Plugin.cpp", PLUGIN)
        self.write("plugin/Device.cpp", DEVICE)
        self.unseen(UNSEEN)
        self.write_timelines(WHOLE)

    def unseen(self, text):
        self.write("tests/coverage/unseen.toml", text)

    def write_timelines(self, entries):
        """In two files: what one program did not see another one may have."""
        for number, part in enumerate((entries[::2], entries[1::2])):
            lines = [{"schemaVersion": 1}, *part]
            self.write(f"timelines/tst_{number}-1.jsonl", "".join(json.dumps(line) + "\n" for line in lines))

    def check(self):
        return self.run_tool("timelines")

    def assert_problems(self, *problems):
        process = self.check()
        self.assert_ends(process, 1, *problems, out=process.stdout)
        self.assertIn("device slot ", process.stdout)

    def test_all_was_seen(self):
        self.assert_ends(self.check(), 0, out=TABLE)

    def test_report_calls_its_slot(self):
        self.write_timelines([entry("report", "deviceType") if line["name"] == "deviceType" else line for line in WHOLE])
        self.assert_ends(self.check(), 0, out=TABLE)

    def test_gaps(self):
        """A signal does not stand for the call of its slot."""
        gaps = {
            "device slot never seen: deviceType": 1,
            "device slot never seen: ~Mouse": 2,
            "device slot never seen: ppidChanged": 3,
            "factory slot never seen: initialize": 0,
            "signal never seen: ppidChanged": 4,
            "receiver operation never seen: setRate": 6,
            "host operation never seen: buttonEvent": 7,
            "log text never seen: debug LogicalDevice: rate : * , pending; : *": 11,
            "log text never seen: critical LogicalDevice: locate failed, gle : *": 12,
            "log text never seen: debug LogicalDevicePlugin: ~Plugin": 13,
        }
        for sentence, index in gaps.items():
            with self.subTest(sentence):
                self.write_timelines(WHOLE[:index] + WHOLE[index + 1 :])
                self.assert_problems(sentence)
        self.write_timelines(WHOLE[1:])
        self.assertIn("factory slot             0     1                0\n", self.check().stdout)

    def test_other_severity_or_category_is_another_text(self):
        for severity, category in (("warning", "LogicalDevice"), ("debug", "LogicalDevicePlugin")):
            other = log(severity, category, "rate : 500 , pending; : 0")
            self.write_timelines([other if line is RATE_LINE else line for line in WHOLE])
            self.assert_problems(
                "log text never seen: debug LogicalDevice: rate : * , pending; : *",
                f"log text seen that is in no list: {severity} {category}: rate : 500 , pending; : 0",
            )

    def test_new_log_line(self):
        """A longer text does not stand for its beginning."""
        for code, text in {
            'deviceWarning() << "new (text)";': "warning LogicalDevice: new (text)",
            'deviceDebug() << "rate :" << rate;': "debug LogicalDevice: rate : *",
        }.items():
            self.write("plugin/New.cpp", f"void f()\n{{\n    {code}\n}}\n")
            self.assert_problems(f"log text never seen: {text}")

    def test_what_nothing_tells_of(self):
        kinds = {"call": "device slot", "report": "device slot", "receiver": "receiver operation", "host": "host operation"}
        for kind, name in kinds.items():
            self.write_timelines([*WHOLE, entry(kind, "unheardOf")])
            self.assert_problems(f"{name} seen that is in no list: unheardOf")

    def test_reason_that_does_not_hold(self):
        self.unseen(UNSEEN.replace('"reserved*"', '"reserved*", "gone"'))
        self.assert_problems("tests/coverage/unseen.toml: there is no receiver operation 'gone' any more")
        self.unseen(UNSEEN)
        self.write_timelines([*WHOLE, entry("receiver", "reserved0")])
        self.assert_problems("tests/coverage/unseen.toml: the receiver operation 'reserved0' was seen all the same")

    def test_bad_input(self):
        needs = "unseen.toml: each [[unseen]] needs kind, names and reason"
        kinds = "device slot, factory slot, signal, receiver operation, host operation, log text"
        first = "timelines/tst_0-1.jsonl"
        for name, text, part in (
            ("tests/coverage/unseen.toml", UNSEEN.replace("receiver operation", "operation"),
             f"unseen.toml: no kind is called 'operation' (there are: {kinds})"),
            ("tests/coverage/unseen.toml", UNSEEN.replace('"Not for plugins."', '" "'), needs),
            ("tests/coverage/unseen.toml", UNSEEN.replace('reason = "Not for plugins."\n', ""), needs),
            ("tests/coverage/unseen.toml", "[[unseen]\n", "unseen.toml: "),
            *((first, f'{{"schemaVersion":1}}\n{text}\n', f"{first}:2: this is no entry of a timeline: '{text}'")
              for text in ("[]", "{", '{"kind": "call"}')),
            (first, '{"schemaVersion":2}\n', f"{first}: its schema version is 2, not 1"),
            ("tests/abi/tables/IHostServices.txt", "nothing\n",
             "IHostServices.txt:1: this is no slot of a table: 'nothing'"),
            ("contract/entry-points/signals.kvx", "", "entry-points: no scenario expects a signal"),
            ("plugin/New.cpp", "void f()\n{\n    deviceDebug() << rate;\n}\n",
             "New.cpp: the log line '<< rate' does not begin with a literal text"),
            ("plugin/New.cpp", 'void f()\n{\n    deviceDebug().nospace() << "text";\n    deviceDebug()\n',
             "New.cpp: one of its log lines cannot be read; write it as deviceDebug() << ...;"),
        ):
            with self.subTest(part):
                self.setUp()
                self.write(name, text)
                self.assert_refused(part, "timelines")

    def test_no_timelines(self):
        for path in self.timelines.iterdir():
            path.unlink()
        self.assert_refused("timelines holds no timelines (*.jsonl); the test cli_check writes them", "timelines")
        self.timelines.rmdir()
        self.assert_refused("timelines holds no timelines", "timelines")
